// Faults at every point of a download: the link cut after each byte boundary of a logo, a
// message and a double-byte font download, a garbled or cut checksum answer, and the power lost
// at each byte of a firmware flash (long jobs: every boundary in the first and last 4 KB, a
// stride between). After each fault the printer comes back and the driver reconciles; the
// catalogue must stay true to the printer, nothing stored before may be lost, the status line
// must say what happened, and the next attempt must succeed.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <set>

#include "pages/page_status.h"
#include "firmware/firmware_file.h"
#include "firmware/maintenance_page.h"
#include "fonts/font_download.h"
#include "font_file_generators.h"
#include "printer_rig.h"
#include "test_pictures.h"

namespace kx20 {
namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr std::size_t kEdge = 128, kStride = 197;  // the sanitizer build: a sparser sweep
#else
constexpr std::size_t kEdge = 4096, kStride = 61;
#endif

// Bytes delivered before the fault, for a job of `length` bytes.
std::vector<std::size_t> CutPoints(std::size_t length) {
    std::vector<std::size_t> cuts;
    for (std::size_t n = 0; n < length;) {
        cuts.push_back(n);
        n = n < kEdge || n + kEdge >= length ? n + 1 : std::min(n + kStride, length - kEdge);
    }
    return cuts;
}

class FaultSweep : public PrinterRig {
  protected:
    static constexpr WindowId kPage = 0x1234;

    void SetUp() override {
        PrinterRig::SetUp();
        SetTraceTarget(nullptr, nullptr);  // thousands of flows: no trace
        // What was stored before the swept operations: two logos and two messages.
        for (std::uint8_t n : {1, 2}) {
            const Bytes picture = testpics::Bmp24(testpics::PhotoLike(40 * n, 16, n));
            ASSERT_TRUE(logos::ConvertAndDownloadLogo(Target(), n, true, false, picture));
            ASSERT_TRUE(store::RegisterLogo(p, n, 1, 0, static_cast<std::uint32_t>(picture.size()),
                                            picture, kId, kPrinter));
            ASSERT_TRUE(logos::DownloadMessageAndStoreCrc(Target(), n, u"kept"));
            ASSERT_TRUE(store::RegisterMessage(p, n, u"kept", kId, kPrinter));
        }
    }

    std::u16string StatusLine() {
        store::ConnectionStatus status;
        const bool known = store::GetConnectionStatus(p, kPort, status);
        return PrinterStatusText(strings, known ? &status : nullptr);
    }
    std::u16string Connected(bool notReady = false) { return ModelStatusText(strings, 9, notReady); }

    // The catalogue holds nothing the printer lacks (and, with `keep`, keeps with the printer
    // what was there before).
    void CheckTruth(const char* what, std::size_t cut, bool keep = true) {
        const auto& flash = printer.state().flash;
        auto logos = StoredLogos();
        auto messages = StoredMessages();
        if (!logos.empty()) {
            ASSERT_EQ(store::GetLogoCRC(p, kPrinter, kId), printer.Checksum(1)) << what << cut;
        }
        if (!messages.empty()) {
            ASSERT_EQ(store::GetMessageCRC(p, kPrinter, kId), printer.Checksum(2)) << what << cut;
        }
        for (std::uint8_t n : {1, 2}) {
            ASSERT_TRUE(!keep || (logos.count(n) && flash.logos.count(n))) << what << cut;
            ASSERT_TRUE(!keep || (messages.count(n) && flash.messages.count(n))) << what << cut;
        }
        for (auto& [n, picture] : logos) ASSERT_TRUE(flash.logos.count(static_cast<std::uint8_t>(n))) << what << cut;
        for (auto& [n, text] : messages) ASSERT_TRUE(flash.messages.count(static_cast<std::uint8_t>(n))) << what << cut;
        const std::uint32_t font = store::GetDBCSFontCRC(p, kPrinter, kId, true);
        if (font != 0) {
            ASSERT_EQ(font, printer.Checksum(6)) << what << cut;
        }
    }

    // The job the operation sends, measured on a run without faults.
    template <class Op>
    std::size_t JobLength(Op op) {
        const std::size_t before = spooler.jobs.size();
        EXPECT_TRUE(op());
        return spooler.jobs.size() > before ? spooler.jobs.back().data.size() : 0;
    }

    // Cuts the link at every cut point of the operation's job; after each, the printer is
    // reconnected, the driver reconciles, and the operation runs again without a fault.
    template <class Op>
    std::size_t SweepLinkCuts(const char* what, Op op) {
        const std::size_t length = JobLength(op);
        const auto cuts = CutPoints(length);
        for (std::size_t n : cuts) {
            printer.faults.cutJobAfter = n;
            spooler.jobStatusScript = {kJobStatusSpooling, kJobStatusError};
            EXPECT_FALSE(op()) << what << n;
            EXPECT_EQ(StatusLine(), strings.Load(kStringStatusNoPrinter)) << what << n;
            spooler.jobStatusScript = {kJobStatusSpooling, kJobStatusPrinting, kJobStatusPrinted};
            printer.Control(u"connect");
            printer.Control(u"publish");
            EXPECT_FALSE(logos::ReconcileLogos(Target())) << what << n;
            EXPECT_FALSE(logos::ReconcileMessages(Target())) << what << n;
            CheckTruth(what, n);
            EXPECT_EQ(StatusLine(), Connected()) << what << n;
            EXPECT_TRUE(op()) << what << n;
            CheckTruth(what, n);
            if (HasFailure())
                break;
        }
        std::printf("fault sweep: %s: job of %zu bytes, %zu cut points\n", what, length, cuts.size());
        return cuts.size();
    }

    std::function<bool()> AddLogo() {
        const Bytes picture = testpics::Bmp24(testpics::PhotoLike(576, 56, 9));
        return [this, picture] {
            return logos::ConvertAndDownloadLogo(Target(), 3, true, false, picture) &&
                   store::RegisterLogo(p, 3, 1, 0, static_cast<std::uint32_t>(picture.size()),
                                       picture, kId, kPrinter);
        };
    }
    std::function<bool()> AddMessage() {
        return [this] {
            return logos::DownloadMessageAndStoreCrc(Target(), 3, u"Thank you for shopping") &&
                   store::RegisterMessage(p, 3, u"Thank you for shopping", kId, kPrinter);
        };
    }
    // A tagged font file of 80 double-byte and 20 single-byte characters through
    // SelectDBCSFont, as the fonts page loads it for the printer's model.
    std::function<bool()> LoadFont() {
        files.Put(u"C:\\fonts\\big5.fon", testfiles::LargeFonFile(80, 20).Build());
        return [this] {
            fonts::FontNames names;
            const std::size_t jobs = spooler.jobs.size();
            fonts::SelectDBCSFont({p, prompts, strings, 0, kPrinter}, names, true, [](const FileDialogRequest&) {
                return std::optional<std::u16string>(u"C:\\fonts\\big5.fon");
            });
            return spooler.jobs.size() > jobs && store::GetDBCSFontCRC(p, kPrinter, kId, true) != 0 &&
                   !printer.state().flash.dbcsThermal.empty();
        };
    }
};

TEST_F(FaultSweep, LinkCutAtEveryByteOfALogoAndAMessageDownload) {
    EXPECT_GT(SweepLinkCuts("logo, cut after byte ", AddLogo()), 200u);
    EXPECT_GT(SweepLinkCuts("message, cut after byte ", AddMessage()), 30u);
}

TEST_F(FaultSweep, LinkCutAtEveryByteOfADoubleByteFontDownload) {
    EXPECT_GT(SweepLinkCuts("double-byte font, cut after byte ", LoadFont()), 200u);
}

TEST_F(FaultSweep, GarbledOrCutChecksumAnswersLoseNothingStoredBefore) {
    for (auto fault : {sim::FaultPlan::Reply::Garbled, sim::FaultPlan::Reply::Truncated}) {
        for (auto op : {AddLogo(), AddMessage()}) {
            // The download arrives; the checksum answer after it is damaged on the way back.
            spooler.onJobEnd = [&](const MemoryJob& job) {
                printer.ReceiveJob(job.data);
                printer.faults.nextReply = fault;
            };
            op();
            spooler.onJobEnd = [&](const MemoryJob& job) { printer.ReceiveJob(job.data); };
            printer.faults.nextReply = sim::FaultPlan::Reply::Intact;
            logos::ReconcileLogos(Target());
            logos::ReconcileMessages(Target());
            CheckTruth(fault == sim::FaultPlan::Reply::Garbled ? "garbled" : "cut", 0);
            EXPECT_TRUE(op());
        }
    }
}

TEST_F(FaultSweep, PowerLostAtEveryByteOfAFirmwareFlashLeavesAPrinterThatTakesTheNextOne) {
    const Bytes file = testfiles::FirmwareFile(0x41, 1, 3, 12000);
    files.Put(u"C:\\fw\\kx20.bin", file);
    auto flash = [&] { return firmware::OutFlashFirmware(strings, p, kPrinter, u"C:\\fw\\kx20.bin"); };
    const std::size_t length = JobLength(flash);
    const auto cuts = CutPoints(length);
    std::size_t bootLoaderOnly = 0;
    for (std::size_t n : cuts) {
        printer.faults.powerLossAfter = n;
        spooler.jobStatusScript = {kJobStatusSpooling, kJobStatusError};
        EXPECT_FALSE(flash()) << n;
        spooler.jobStatusScript = {kJobStatusSpooling, kJobStatusPrinting, kJobStatusPrinted};
        const bool erased = printer.state().firmwareLevel == 0;
        bootLoaderOnly += erased;
        // The maintenance page says so and flashes again.
        firmware::MaintenancePageModel page(context, kPage);
        page.Open();
        EXPECT_EQ(page.Text(IDC_PRINTER_STATUS), Connected(erased)) << n;
        ASSERT_TRUE(page.Enabled(IDC_FIRMWARE_UPDATE)) << n;
        page.SetFilePath(u"C:\\fw\\kx20.bin");
        prompts.answers = {box::kIdYes, box::kIdOk};
        page.Update();
        EXPECT_EQ(printer.state().firmwareLevel, 0x41) << n;
        page.Open();
        EXPECT_EQ(page.Text(IDC_PRINTER_STATUS), Connected()) << n;
        CheckTruth("firmware, power lost after byte ", n);
        if (HasFailure())
            break;
    }
    // A loss before the header lines have arrived leaves the old firmware; after, the boot loader.
    EXPECT_GT(bootLoaderOnly, 0u);
    EXPECT_LT(bootLoaderOnly, cuts.size());
    std::printf("fault sweep: firmware flash: job of %zu bytes, %zu cut points, %zu left the boot "
                "loader only\n", length, cuts.size(), bootLoaderOnly);
}

}  // namespace
}  // namespace kx20
