// The logos page's model against the simulated printer: filling and enablement, adding a
// picture end to end, the logo memory check, deleting with re-download, and the connection
// timer driving the other device pages.
#include "logos/logos_page.h"

#include "channel/printer_hours.h"

#include "pages/preview_fit.h"
#include "printer_rig.h"
#include "unit/test_pictures.h"

namespace kx20::logos {
namespace {

constexpr WindowId kPage = 0x100;
constexpr WindowId kDialog = 0x200;

class LogosPage : public PrinterRig {
  protected:
    std::unique_ptr<LogosPageModel> Open() {
        auto page = std::make_unique<LogosPageModel>(context, kPage);
        page->Initialise();
        return page;
    }
    Bytes Picture(int w, int h) {
        return testpics::Bmp24(testpics::Painted(
            w, h, [](int x, int y) { return (x / 4 + y / 4) % 2 ? 0u : 0xFFFFFFu; }));
    }
    // The adding flow through a file dialog that picks form `choice` and confirms the file
    // when the dialog's check lets it through.
    bool Add(LogosPageModel& page, int row, const Bytes& file, int choice = 0) {
        files.Put(u"C:\\pics\\logo.bmp", file);
        page.SetSelection({row});
        return page.AddThrough(
            [&](const FileDialogRequest& r) -> std::optional<std::u16string> {
                r.onChoice(choice);
                if (!r.acceptOverDialog(u"C:\\pics\\logo.bmp", kDialog))
                    return std::nullopt;
                return u"C:\\pics\\logo.bmp";
            },
            nullptr);
    }
    int Broadcasts(RefreshMessage which) {
        int n = 0;
        for (const auto& b : prompts.broadcasts) n += b.which == which && b.sender == kPage;
        return n;
    }
};

TEST_F(LogosPage, AddedPictureReachesPrinterCatalogueAndList) {
    auto page = Open();
    EXPECT_EQ(page->StatusText(), u"Printer: KX20 II Receipt/Slip DBCS");
    ASSERT_EQ(page->Slots().size(), 40u);
    EXPECT_EQ(page->Slots()[4].name, u"Logo 5");

    const Bytes file = Picture(100, 24);
    ASSERT_TRUE(Add(*page, 4, file, 1));  // full width, not scaled
    // The printer holds the picture's raster, the port's checksum is the printer's, and the
    // catalogue keeps the file's own bytes with the form.
    ASSERT_TRUE(printer.state().flash.logos.count(5));
    EXPECT_EQ(printer.state().flash.logos.at(5).widthBytes, 128 / 8);
    EXPECT_EQ(store::GetLogoCRC(p, kPrinter, kId), printer.Checksum(1));
    const auto records = store::ReadLogoRecords(p, kPrinter, kId);
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].picture, file);
    EXPECT_EQ(records[0].fullWidth * 2 + records[0].scaleToFit, 2u);
    EXPECT_EQ(page->Slots()[4].state, u"Stored (full width, actual size)");
    EXPECT_EQ(page->Selection(), std::vector<int>{4});
    ASSERT_NE(page->PreviewSlot(), nullptr);
    EXPECT_EQ(Broadcasts(RefreshMessage::Logos), 1);
    std::u16string folder;
    ASSERT_TRUE(store::GetLogosPath(p, kPrinter, folder));
    EXPECT_EQ(folder, u"C:\\pics\\");  // as the dialog gives it, with its separator
    EXPECT_EQ(prompts.waits, 1);
    EXPECT_EQ(prompts.waitDepth, 0);
}

TEST_F(LogosPage, EnablementFollowsTheSelection) {
    // The printer holds what the catalogue says (same checksum), so start-up keeps it.
    ASSERT_TRUE(ConvertAndDownloadLogo(Target(), 2, true, true, Picture(8, 8)));
    store::RegisterLogo(p, 2, 1, 1, 3, Bytes{1, 2, 3}, kId, kPrinter);
    store::RegisterLogo(p, 3, 0, 1, 3, Bytes{1, 2, 3}, kId, kPrinter);
    auto page = Open();
    EXPECT_TRUE(Erases().empty());
    EXPECT_EQ(page->Slots()[2].state, u"Stored (narrow, scaled to fit)");
    struct Case {
        std::vector<int> rows;
        bool add, del;
    } cases[] = {{{}, 0, 0}, {{0}, 1, 0}, {{1}, 0, 1}, {{1, 2}, 0, 1}, {{0, 1}, 0, 0}};
    for (const Case& c : cases) {
        page->SetSelection(c.rows);
        EXPECT_EQ(page->AddEnabled(), c.add) << c.rows.size();
        EXPECT_EQ(page->DeleteEnabled(), c.del) << c.rows.size();
        EXPECT_EQ(page->DeleteKeyActs(), c.del);
    }
    page->SetSelection({1});
    EXPECT_FALSE(page->AddLogoNumber());
    EXPECT_FALSE(page->AddLogo(u"C:\\x.bmp", {}, u"C:\\"));  // a used slot is never overwritten
    EXPECT_EQ(spooler.jobs.size(), 1u);                      // only the set-up's download
}

TEST_F(LogosPage, FailuresAreReportedAndTheListShowsTheCatalogue) {
    auto page = Open();
    // Not a picture: the file dialog lets it through, the conversion fails.
    EXPECT_FALSE(Add(*page, 0, Bytes(300, 'x')));
    EXPECT_EQ(BoxTexts(), std::vector<std::uint32_t>{2234});
    EXPECT_EQ(prompts.boxes.back().style, box::kOk | box::kIconError);
    EXPECT_FALSE(page->Slots()[0].used);
    EXPECT_TRUE(StoredLogos().empty());

    // Outside the printer's hours (UTC 08:07; open 09:00 to 17:00): nothing is sent.
    spooler.Find(kPrinter)->info.startTime = 9 * 60;
    spooler.Find(kPrinter)->info.untilTime = 17 * 60;
    EXPECT_FALSE(Add(*page, 1, Picture(16, 16)));
    EXPECT_TRUE(spooler.jobs.empty());
    clock.utc.hour = 16;
    clock.utc.minute = 59;
    EXPECT_TRUE(Add(*page, 1, Picture(16, 16)));
    EXPECT_FALSE(channel::WithinAvailabilityHours(9 * 60, 17 * 60, LocalTime{2024, 1, 1, 17, 0}));
}

TEST_F(LogosPage, LogoMemoryCheckUsesThePicturesOwnSizeAndTheStoredRecordsAsMisread) {
    auto page = Open();
    page->SetSelection({0});
    // 1024 x 512 at one bit a pixel is the whole memory: refused before anything is stored.
    files.Put(u"C:\\big.bmp", testpics::Bmp24(testpics::Filled(1024, 512, 0xFFFFFF)));
    EXPECT_FALSE(page->AcceptLogoFile(u"C:\\big.bmp", kDialog));
    ASSERT_EQ(prompts.boxes.size(), 1u);
    EXPECT_EQ(prompts.boxes[0].owner, kDialog);
    EXPECT_EQ(prompts.boxes[0].style, box::kOk | box::kIconWarning);
    EXPECT_EQ(BoxTexts(), std::vector<std::uint32_t>{2231});
    files.Put(u"C:\\fits.bmp", testpics::Bmp24(testpics::Filled(1024, 511, 0xFFFFFF)));
    EXPECT_TRUE(page->AcceptLogoFile(u"C:\\fits.bmp", kDialog));

    // A stored logo is read with its size from the identity's last characters ("1" = 49 bytes)
    // and its picture from the length field on: no picture, so it takes no memory.
    const Bytes stored = testpics::Bmp24(testpics::Filled(1000, 400, 0));
    store::RegisterLogo(p, 7, 1, 1, static_cast<std::uint32_t>(stored.size()), stored, kId,
                        kPrinter);
    EXPECT_EQ(page->LogoMemoryInUse(), 0u);
    EXPECT_TRUE(page->AcceptLogoFile(u"C:\\fits.bmp", kDialog));

    // A value whose misread bytes do form a bitmap counts with that bitmap's size.
    Bytes crafted(30, 0);
    const Bytes inner = testpics::Bmp24(testpics::Filled(64, 64, 0));
    WriteU32(crafted, 26, static_cast<std::uint32_t>(inner.size()));
    AppendBytes(crafted, inner);
    store::OpenLogosKey(p, kPrinter)->SetValue(store::LogoValueName(kId, 8), kRegBinary, crafted);
    EXPECT_EQ(page->LogoMemoryInUse(), 64u * 64 / 8);
    EXPECT_FALSE(files.Get(TempPicturePath(files)));  // deleted after each reading
}

TEST_F(LogosPage, DeletingOneOfThreeErasesAndDownloadsTheOthersAgain) {
    auto page = Open();
    ASSERT_TRUE(Add(*page, 0, Picture(16, 16)));
    ASSERT_TRUE(Add(*page, 2, Picture(24, 8), 3));
    ASSERT_TRUE(Add(*page, 5, Picture(32, 32)));
    const Bytes sixth = printer.state().flash.logos.at(6).raster;
    spooler.jobs.clear();
    monitor.calls.clear();
    prompts.broadcasts.clear();

    page->SetSelection({2});
    prompts.answers = {box::kIdNo};
    page->DeleteSelected();
    EXPECT_TRUE(Erases().empty());
    EXPECT_EQ(prompts.boxes.back().text, u"Delete this logo (Stored (narrow, actual size)) from the printer?");

    prompts.answers = {box::kIdYes};
    page->DeleteSelected();
    EXPECT_EQ(Erases(), std::vector<int>{1});
    EXPECT_EQ(JobNames(), (std::vector<std::u16string>{u"KX20 Logo 1", u"KX20 Logo 6"}));
    EXPECT_EQ(printer.state().flash.logos.size(), 2u);
    EXPECT_EQ(printer.state().flash.logos.at(6).raster, sixth);
    EXPECT_EQ(store::GetLogoCRC(p, kPrinter, kId), printer.Checksum(1));
    EXPECT_EQ(StoredLogos().size(), 2u);
    EXPECT_FALSE(page->Slots()[2].used);
    EXPECT_EQ(page->Slots()[2].state, u"(empty)");
    EXPECT_EQ(Broadcasts(RefreshMessage::Logos), 1);

    // A re-download that fails takes the whole catalogue with it.
    spooler.jobStatusScript = {kJobStatusError};
    page->SetSelection({0});
    prompts.answers = {box::kIdYes};
    page->DeleteSelected();
    EXPECT_TRUE(StoredLogos().empty());
    EXPECT_TRUE(page->Slots().empty());
}

TEST_F(LogosPage, StartupReconcilesAndTheTimerFollowsTheConnection) {
    store::RegisterLogo(p, 1, 1, 1, 3, Bytes{1, 2, 3}, kId, kPrinter);
    store::SetLogoCRC(p, kPrinter, kId, 0);  // never recorded: the printer's logos go
    auto page = Open();
    EXPECT_EQ(Erases(), std::vector<int>{1});
    EXPECT_FALSE(page->Slots()[0].used);
    ASSERT_EQ(context.devicePages->At(DevicePageSlot::Logos), page.get());

    struct Watcher : DevicePage {
        std::u16string status;
        int lost = 0, changed = 0, enablement = 0;
        void SetStatusText(std::u16string_view t) override { status = t; }
        void OnConnectionLost() override { ++lost; }
        void OnConnectionChanged(const store::ConnectionStatus&) override { ++changed; }
        void UpdateEnablement() override { ++enablement; }
    } fonts, statusOnly;
    context.devicePages->Attach(DevicePageSlot::Fonts, &fonts);
    context.devicePages->Attach(DevicePageSlot::StatusOnly, &statusOnly);

    monitor.calls.clear();
    // Nothing changed: no command, no broadcast, no page does anything.
    EXPECT_EQ(page->Watch().Tick(), ConnectionChange::Unchanged);
    EXPECT_TRUE(monitor.calls.empty());
    EXPECT_TRUE(prompts.broadcasts.empty());
    EXPECT_EQ(fonts.enablement, 0);

    ASSERT_EQ(printer.Control(u"disconnect"), 0u);
    EXPECT_EQ(page->Watch().Tick(), ConnectionChange::Lost);
    EXPECT_FALSE(page->Connected());
    EXPECT_TRUE(page->Slots().empty());
    EXPECT_FALSE(page->ListEnabled());
    EXPECT_EQ(fonts.lost, 1);
    EXPECT_EQ(statusOnly.lost, 0);
    EXPECT_EQ(fonts.status, Text(2201));
    EXPECT_EQ(statusOnly.status, Text(2201));
    EXPECT_EQ(Broadcasts(RefreshMessage::Logos), 1);
    EXPECT_EQ(Broadcasts(RefreshMessage::Messages), 1);

    ASSERT_EQ(printer.Control(u"model=7"), 0u);
    ASSERT_EQ(printer.Control(u"connect"), 0u);
    EXPECT_EQ(page->Watch().Tick(), ConnectionChange::Changed);
    EXPECT_TRUE(page->Connected());
    EXPECT_EQ(page->Slots().size(), 40u);
    EXPECT_EQ(fonts.changed, 1);
    EXPECT_EQ(fonts.status, u"Printer: KX20 Receipt DBCS");
    EXPECT_EQ(page->StatusText(), fonts.status);

    // Another printer on the port: its own (empty) catalogue, reconciled.
    ASSERT_EQ(printer.Control(u"identity=OTHERPRN"), 0u);
    EXPECT_EQ(page->Watch().Tick(), ConnectionChange::Changed);
    EXPECT_EQ(fonts.changed, 2);
    page.reset();
    EXPECT_EQ(context.devicePages, nullptr);
}

TEST(PreviewFit, KeepsAspectNeverEnlargesAndTruncates) {
    EXPECT_EQ(FitPictureInFrame({2, 1000}, {100, 100}), (PixelSize{0, 100}));
    EXPECT_EQ(FitPictureInFrame({50, 20}, {100, 100}), (PixelSize{50, 20}));
    EXPECT_EQ(FitPictureInFrame({400, 100}, {100, 100}), (PixelSize{100, 25}));
    EXPECT_EQ(FitPictureInFrame({300, 200}, {200, 100}), (PixelSize{150, 100}));  // clamped twice
    EXPECT_EQ(FitPictureInFrame({0, 10}, {100, 100}), (PixelSize{0, 0}));
}

}  // namespace
}  // namespace kx20::logos
