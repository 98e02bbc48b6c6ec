// The device settings page model: station and paper between the page and the device mode, the
// apply-state record, the session flag, and the offer to erase what a narrower paper makes
// unusable, against the simulated printer.
#include "devmode/device_settings_page.h"

#include "channel/printer_queries.h"
#include "devmode/roll_papers.h"
#include "tests/unit/document_page_fixture.h"

namespace kx20 {
namespace {

constexpr int k58x297 = 0;
constexpr int k80x297 = 2;
constexpr int k80x3276 = 3;
constexpr int k48x274 = 4;
constexpr int k857x274 = 5;

class DeviceSettingsPage : public DocumentPageTest {
  protected:
    void SetUp() override {
        DocumentPageTest::SetUp();
        sim::Flash& flash = printer.state().flash;
        flash.logos[1] = {1, 1, Bytes(8, 0xAA)};
        flash.messages[1] = {'H', 'i'};
        flash.sbcsThermal[0x41] = {8, 8, Bytes(8, 0x18)};
    }

    std::unique_ptr<DeviceSettingsPageModel> Open() {
        auto page = std::make_unique<DeviceSettingsPageModel>(ctx);
        page->Init(ctx.applyState);
        return page;
    }
    // A fresh page on the default record with `row` chosen, applied.
    void ApplyPaper(int row, WindowId owner = 0) {
        ctx.pageCopy = gsDevMode();
        auto page = Open();
        page->SelectPaper(row, ctx.applyState);
        outcome = page->Apply(owner, ctx.applyState);
    }
    std::vector<std::u16string> BoxTextsShown() {
        std::vector<std::u16string> out;
        for (const auto& b : prompts.boxes) out.push_back(b.text);
        return out;
    }
    std::optional<std::uint32_t> SessionFlag() {
        auto key = store::OpenDriverDataKey(p, kPrinter);
        return key ? ReadDwordValue(*key, u"4242_ss") : std::nullopt;
    }
    std::int16_t PaperSize() { return ReadDmShort(ctx.pageCopy, kOffDmPaperSize); }
    EraseOutcome outcome{};
};

TEST_F(DeviceSettingsPage, StationAndPaperGoToTheDeviceModeAndTheSessionFlag) {
    DeviceSettingsPageModel page(ctx);
    page.Init(ctx.applyState);
    EXPECT_EQ(page.Station(), kReceiptStationEntry);
    EXPECT_EQ(page.PaperRow(), k80x297);
    EXPECT_EQ(page.PaperEntries().size(), 6u);

    EXPECT_TRUE(page.SelectStation(kDocumentStationEntry, ctx.applyState));
    EXPECT_EQ(ctx.applyState.stationSelection, 1) << "the options page follows at once";
    EXPECT_FALSE(page.SelectStation(kDocumentStationEntry, ctx.applyState));
    EXPECT_FALSE(page.SelectStation(2, ctx.applyState));
    EXPECT_TRUE(page.SelectPaper(k857x274, ctx.applyState));
    EXPECT_EQ(ctx.applyState.paperRow, k857x274);
    EXPECT_EQ(ReadU32(Priv(), kPrivBReceiptStation), 1u) << "nothing is written before Apply";
    EXPECT_FALSE(SessionFlag());

    page.Apply(0, ctx.applyState);
    EXPECT_EQ(ReadU32(Priv(), kPrivBReceiptStation), 0u);
    EXPECT_EQ(PaperSize(), 262);
    EXPECT_EQ(SessionFlag(), 1u) << "1 while the page's receipt-station flag is clear";

    page.SelectStation(kReceiptStationEntry, ctx.applyState);
    page.Apply(0, ctx.applyState);
    EXPECT_EQ(ReadU32(Priv(), kPrivBReceiptStation), 1u);
    EXPECT_EQ(SessionFlag(), 0u);
    EXPECT_TRUE(prompts.boxes.empty()) << "a wider paper asks nothing";

    EXPECT_EQ(Open()->PaperRow(), k857x274);
}

TEST_F(DeviceSettingsPage, UnknownPaperShowsTheDefaultAndApplyDeclaresThePaper) {
    WriteDmShort(ctx.pageCopy, kOffDmPaperSize, 9);  // A4: none of the rolls
    WriteU32(ctx.pageCopy, kOffDmFields, 0);
    WriteU32(Priv(), kPrivBReceiptStation, 0);
    auto page = Open();
    EXPECT_EQ(page->PaperRow(), kDefaultRollPaperRow);
    EXPECT_EQ(page->Station(), kDocumentStationEntry);
    EXPECT_EQ(ctx.applyState.stationSelection, 1);
    page->Apply(0, ctx.applyState);
    EXPECT_EQ(PaperSize(), 259);
    EXPECT_EQ(ReadU32(ctx.pageCopy, kOffDmFields), kDmPaperSize);
}

TEST_F(DeviceSettingsPage, NarrowerPaperOffersToEraseEachStoredKind) {
    AddLogo(1);
    AddLogo(2);
    AddLogo(1, u"BBBBBBBB");  // another printer's catalogue on the same port
    AddMessage(1, u"Hi");
    AddSbcsFont(u"Shop Font");
    prompts.answers = {box::kIdYes, box::kIdNo, box::kIdYes};
    ApplyPaper(k58x297, 77);
    EXPECT_EQ(BoxTextsShown(), (std::vector{Text(3012), Text(3013), Text(3014)}));
    EXPECT_EQ(prompts.boxes[0].owner, 77u);
    EXPECT_EQ(prompts.boxes[0].style, box::kYesNo | box::kIconQuestion);

    EXPECT_TRUE(outcome.logos);
    EXPECT_FALSE(outcome.messages);
    EXPECT_TRUE(outcome.font);
    EXPECT_EQ(Erases(), (std::vector<int>{1, 4}));
    EXPECT_TRUE(printer.state().flash.logos.empty());
    EXPECT_FALSE(printer.state().flash.messages.empty());
    EXPECT_TRUE(printer.state().flash.sbcsThermal.empty());

    EXPECT_TRUE(store::ReadLogoRecords(p, kPrinter, kId).empty());
    EXPECT_EQ(store::ReadLogoRecords(p, kPrinter, u"BBBBBBBB").size(), 1u);
    EXPECT_EQ(store::ReadMessageRecords(p, kPrinter, kId).size(), 1u);
    std::u16string font;
    EXPECT_FALSE(store::GetDownloadedSBCSFontName(p, kPrinter, font));
    ASSERT_EQ(prompts.broadcasts.size(), 2u);
    EXPECT_EQ(prompts.broadcasts[0].which, RefreshMessage::Logos);
    EXPECT_EQ(prompts.broadcasts[1].which, RefreshMessage::Fonts);
    EXPECT_EQ(prompts.broadcasts[0].sender, 77u);
    EXPECT_EQ(prompts.waits, 2);
}

TEST_F(DeviceSettingsPage, OnlyANarrowerPaperWithStoredItemsOnAConnectedPrinterAsks) {
    AddLogo(1);
    ApplyPaper(k80x3276);  // same width, longer roll
    EXPECT_TRUE(prompts.boxes.empty());
    ASSERT_EQ(printer.Control(u"disconnect"), 0u);
    ApplyPaper(k48x274);  // narrower, but nothing can be erased
    EXPECT_TRUE(prompts.boxes.empty());
    ASSERT_EQ(printer.Control(u"connect"), 0u);

    // Only messages stored: only they are asked about.
    store::DeleteLogoEntries(p, kPrinter, kId);
    AddMessage(4, u"Thanks");
    prompts.answers = {box::kIdNo};
    ApplyPaper(k48x274);
    EXPECT_EQ(BoxTextsShown(), std::vector{Text(3013)});
    EXPECT_TRUE(Erases().empty());
}

TEST_F(DeviceSettingsPage, EachApplyJudgesAgainstThePaperLastApplied) {
    AddLogo(1);
    prompts.answers = {box::kIdNo, box::kIdNo};
    DeviceSettingsPageModel page(ctx);
    page.Init(ctx.applyState);
    page.SelectPaper(k58x297, ctx.applyState);
    page.Apply(0, ctx.applyState);
    EXPECT_EQ(prompts.boxes.size(), 1u);
    page.Apply(0, ctx.applyState);
    EXPECT_EQ(prompts.boxes.size(), 1u) << "the same paper again asks nothing";
    page.SelectPaper(k48x274, ctx.applyState);
    page.Apply(0, ctx.applyState);
    EXPECT_EQ(prompts.boxes.size(), 2u);
    page.SelectPaper(k58x297, ctx.applyState);
    page.Apply(0, ctx.applyState);
    EXPECT_EQ(prompts.boxes.size(), 2u) << "wider again";
}

TEST_F(DeviceSettingsPage, RefusedEraseKeepsTheCatalogueAndSaysSo) {
    AddLogo(1);
    auto simulated = monitor.handler;
    monitor.handler = [&](std::u16string_view port, const std::u16string* name, ByteSpan command,
                          MonitorReply& reply) -> std::uint32_t {
        if (command.size() == 2 && command[0] == 0x15)
            return 31;  // the printer refuses
        return simulated(port, name, command, reply);
    };
    prompts.answers = {box::kIdYes};
    ApplyPaper(k58x297);
    EXPECT_FALSE(outcome.logos);
    ASSERT_EQ(prompts.boxes.size(), 2u);
    EXPECT_EQ(prompts.boxes[1].text, Text(3015));
    EXPECT_EQ(prompts.boxes[1].style, box::kOk | box::kIconError);
    EXPECT_EQ(prompts.waitDepth, 0) << "the error shows after the wait cursor";
    EXPECT_EQ(store::ReadLogoRecords(p, kPrinter, kId).size(), 1u);
    EXPECT_TRUE(prompts.broadcasts.empty());
    EXPECT_EQ(PaperSize(), 257) << "the paper is applied all the same";
}

}  // namespace
}  // namespace kx20
