// Printer events and the upgrade: the initialisation against the in-memory spooler and
// registry with the simulated printer behind the port, and the upgrade's copy rule.
#include "entry/printer_event.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "devmode/devmode.h"
#include "platform/trace.h"
#include "platform/memory/memory_platform.h"
#include "platform/memory/memory_prompts.h"
#include "sim/sim_printer.h"
#include "store/catalogue.h"
#include "tests/unit/trace_capture.h"

namespace kx20 {
namespace {

constexpr char16_t kPrinter[] = u"KX20";
constexpr char16_t kPort[] = u"KX20_USB1";
constexpr char16_t kId[] = u"KX20SIM1";
constexpr char16_t kOther[] = u"OTHERID1";

TEST(PrinterNames, ServerAndSuffixAreTakenOff) {
    EXPECT_EQ(UpToComma(WithoutServer(u"\\\\srv\\KX20,LocalOnly")), u"KX20");
    EXPECT_EQ(WithoutServer(u"\\\\srv\\q\\x"), u"q\\x");
    EXPECT_EQ(WithoutServer(u"KX20,x"), u"KX20,x");
    EXPECT_EQ(WithoutServer(u"\\\\srv"), u"\\\\srv") << "no queue part: kept as given";
    EXPECT_EQ(UpToComma(u"KX20"), u"KX20");
}

class PrinterEventTest : public ::testing::Test, protected MemoryPlatform {
  protected:
    void SetUp() override {
        SetTraceTarget(&files, &clock, {u"marker", u"out"});
        files.Put(u"marker", {});
        printer = &spooler.AddPrinter(kPrinter, kPort);
        sim.AttachRegistry(&registry);
        monitor.handler = sim.Handler();
    }
    void TearDown() override { SetTraceTarget(nullptr, nullptr); }

    bool Initialize(std::u16string_view name = kPrinter) {
        return HandlePrinterEvent(p, prompts, name, printerevent::kInitialize);
    }

    // A printer holding one logo, one message and one single-byte glyph, and a catalogue that
    // agrees with it (plus a logo of another printer that used the port before).
    void FillPrinterAndCatalogue() {
        sim.state().flash.logos[1] = {1, 1, Bytes(8, 0xA5)};
        sim.state().flash.messages[1] = Bytes{'H', 'i'};
        sim.state().flash.sbcsThermal[0x41] = {8, 8, Bytes(8, 0x3C)};
        sim.Publish();
        const Bytes picture(10, 0x42);
        ASSERT_TRUE(store::RegisterLogo(p, 1, 1, 1, 10, picture, kId, kPrinter));
        ASSERT_TRUE(store::RegisterLogo(p, 2, 1, 1, 10, picture, kOther, kPrinter));
        ASSERT_TRUE(store::RegisterMessage(p, 1, u"Hi", kId, kPrinter));
        ASSERT_TRUE(store::SetLogoCRC(p, kPrinter, kId, sim.Checksum(1)));
        ASSERT_TRUE(store::SetMessageCRC(p, kPrinter, kId, sim.Checksum(2)));
        ASSERT_TRUE(store::SetSBCSFontCRC(p, kPrinter, kId, sim.Checksum(4)));
        sim.Control(u"clearlog");
    }

    std::vector<std::u16string> PrinterLog() const {
        std::vector<std::u16string> out;
        for (const auto& r : sim.state().log) out.push_back(r.text);
        return out;
    }
    bool Erased(int area) const {
        const std::u16string text = u"erased flash area " + std::u16string(1, u'0' + area);
        for (const auto& r : sim.state().log)
            if (r.text.find(text) != std::u16string::npos)
                return true;
        return false;
    }

    MemorySpooler::Printer* printer = nullptr;
    sim::SimulatedPrinter sim{kPort};
    ScriptedPrompts prompts;
};

TEST_F(PrinterEventTest, InitializeNamesTheRenderingModuleAndKeepsOwnRecord) {
    printer->info.devMode = Bytes(gsDevMode().begin(), gsDevMode().end());
    ASSERT_TRUE(Initialize(u"\\\\server\\KX20"));
    const auto& value = printer->data.at({u"", u"splusermodeprinterdriver"});
    EXPECT_EQ(value.first, kRegString);
    Bytes expected;
    AppendUtf16z(expected, u"KVORSUSR.DLL");
    EXPECT_EQ(value.second, expected);
    EXPECT_EQ(value.second.size(), 26u);
    EXPECT_EQ(registry.flushes, 1);
    // The printer's own record goes back through level 2; the per-user record is untouched.
    EXPECT_EQ(printer->setPrinterCalls, 1);
    EXPECT_FALSE(printer->userDevMode.has_value());
}

TEST_F(PrinterEventTest, ForeignRecordIsReplacedGloballyAndPerUser) {
    Bytes foreign(220 + 100, 0x33);
    WriteU16(foreign, kOffDmSize, 220);
    WriteU16(foreign, kOffDmDriverExtra, 100);
    printer->info.devMode = foreign;
    ASSERT_TRUE(Initialize());
    const Bytes defaults(gsDevMode().begin(), gsDevMode().end());
    EXPECT_EQ(printer->info.devMode, defaults);
    EXPECT_EQ(printer->userDevMode, defaults);
}

TEST_F(PrinterEventTest, InitializeStopsAtTheFirstFailingStep) {
    registry.flushResult = 5;
    EXPECT_FALSE(Initialize());
    EXPECT_TRUE(printer->data.empty());
    EXPECT_TRUE(TraceHas(files, "RegFlushKey"));

    registry.flushResult = kRegOk;
    printer->grantable = kPrinterRead;  // no all-access open
    EXPECT_FALSE(Initialize());
    EXPECT_EQ(registry.flushes, 1);
}

TEST_F(PrinterEventTest, EqualChecksumsChangeNothing) {
    FillPrinterAndCatalogue();
    ASSERT_TRUE(Initialize());
    EXPECT_EQ(monitor.calls.size(), 3u) << "the three checksums were asked";
    EXPECT_FALSE(Erased(1) || Erased(2) || Erased(4));
    EXPECT_EQ(store::ReadLogoRecords(p, kPrinter, kId).size(), 1u);
    EXPECT_EQ(store::ReadMessageRecords(p, kPrinter, kId).size(), 1u);
    EXPECT_EQ(store::GetSBCSFontCRC(p, kPrinter, kId), sim.Checksum(4));
    EXPECT_TRUE(prompts.broadcasts.empty());
}

TEST_F(PrinterEventTest, DifferingChecksumsEraseAndClear) {
    FillPrinterAndCatalogue();
    ASSERT_TRUE(store::SetLogoCRC(p, kPrinter, kId, 0x1234));
    ASSERT_TRUE(store::SetMessageCRC(p, kPrinter, kId, 0x5678));
    ASSERT_TRUE(store::SetSBCSFontCRC(p, kPrinter, kId, 0x9ABC));
    ASSERT_TRUE(Initialize());
    EXPECT_TRUE(Erased(1));
    EXPECT_TRUE(Erased(2));
    EXPECT_TRUE(Erased(4));
    EXPECT_TRUE(sim.state().flash.logos.empty());
    EXPECT_TRUE(store::ReadLogoRecords(p, kPrinter, kId).empty());
    EXPECT_EQ(store::GetLogoCRC(p, kPrinter, kId), 0u);
    EXPECT_EQ(store::ReadLogoRecords(p, kPrinter, kOther).size(), 1u) << "another printer's";
    EXPECT_TRUE(store::ReadMessageRecords(p, kPrinter, kId).empty());
    EXPECT_EQ(store::GetSBCSFontCRC(p, kPrinter, kId), 0u);
    ASSERT_EQ(prompts.broadcasts.size(), 3u);
    EXPECT_EQ(prompts.broadcasts[0].which, RefreshMessage::Logos);
    EXPECT_EQ(prompts.broadcasts[1].which, RefreshMessage::Messages);
    EXPECT_EQ(prompts.broadcasts[2].which, RefreshMessage::Fonts);
}

TEST_F(PrinterEventTest, EmptyPrinterAreaIsClearedWithoutErasing) {
    // The catalogue claims a logo the printer no longer holds (checksum 0 in the printer).
    FillPrinterAndCatalogue();
    sim.Control(u"erase=1");
    sim.Control(u"clearlog");
    ASSERT_TRUE(Initialize());
    EXPECT_FALSE(Erased(1)) << "nothing to erase in an empty area";
    EXPECT_TRUE(store::ReadLogoRecords(p, kPrinter, kId).empty());
    EXPECT_EQ(store::ReadMessageRecords(p, kPrinter, kId).size(), 1u);
}

TEST_F(PrinterEventTest, StoredMessageChecksumZeroAlwaysClears) {
    FillPrinterAndCatalogue();
    ASSERT_TRUE(store::SetMessageCRC(p, kPrinter, kId, 0));
    ASSERT_TRUE(store::SetLogoCRC(p, kPrinter, kId, 0x1234));
    // The monitor cannot be loaded: no checksum can be asked of the printer.
    monitor.loadResult = MonitorLoad::LibraryMissing;
    ASSERT_TRUE(Initialize());
    EXPECT_EQ(store::ReadLogoRecords(p, kPrinter, kId).size(), 1u) << "logos need an answer";
    EXPECT_TRUE(store::ReadMessageRecords(p, kPrinter, kId).empty()) << "0 clears regardless";
    EXPECT_EQ(store::GetSBCSFontCRC(p, kPrinter, kId), sim.Checksum(4)) << "font query failed";
}

TEST_F(PrinterEventTest, UnreachablePrinterIsNotReconciled) {
    FillPrinterAndCatalogue();
    ASSERT_TRUE(store::SetLogoCRC(p, kPrinter, kId, 0x1234));
    sim.Control(u"disconnect");
    sim.Control(u"clearlog");
    ASSERT_TRUE(Initialize());
    EXPECT_EQ(store::ReadLogoRecords(p, kPrinter, kId).size(), 1u);
    EXPECT_TRUE(monitor.calls.empty());
}

TEST_F(PrinterEventTest, OtherEventsAnswerTrue) {
    for (std::int32_t event : {1, 2, 4, 5, 6, 0, 99})
        EXPECT_TRUE(HandlePrinterEvent(p, prompts, kPrinter, event)) << event;
    EXPECT_TRUE(monitor.calls.empty());
    EXPECT_TRUE(printer->data.empty());
}

class UpgradeTest : public PrinterEventTest {
  protected:
    static Bytes OldRecord(std::uint16_t extra, std::uint8_t fill) {
        Bytes r(220 + extra, fill);
        WriteU16(r, kOffDmSize, 220);
        WriteU16(r, kOffDmDriverExtra, extra);
        return r;
    }
};

TEST_F(UpgradeTest, OlderRecordsAreCopiedGlobalThenPerUser) {
    printer->info.devMode = OldRecord(1000, 0x11);
    Bytes user = OldRecord(1000, 0x22);
    WriteU16(user, kOffDmDriverExtra, 900);
    printer->userDevMode = user;
    EXPECT_TRUE(UpgradePrinter(p, 2, u"\\\\srv\\KX20,extra"));
    ASSERT_TRUE(printer->info.devMode.has_value());
    const Bytes& stored = *printer->info.devMode;
    ASSERT_EQ(stored.size(), kDevModeSize);
    // 1000 - 300 = 700 bytes of each, the per-user record last; the sizes are its own.
    EXPECT_EQ(stored[0], 0x22);
    EXPECT_EQ(stored[699], 0x22);
    EXPECT_EQ(stored[700], 0x00);
    EXPECT_EQ(ReadU16(stored, kOffDmDriverExtra), 900);
    EXPECT_EQ(printer->userDevMode, stored);
}

TEST_F(UpgradeTest, OnlyLevelTwoAndForeignRecordsAreTouched) {
    printer->info.devMode = OldRecord(1000, 0x11);
    EXPECT_TRUE(UpgradePrinter(p, 1, kPrinter));
    EXPECT_EQ(printer->setPrinterCalls, 0);
    printer->info.devMode = Bytes(gsDevMode().begin(), gsDevMode().end());
    EXPECT_TRUE(UpgradePrinter(p, 2, kPrinter));
    EXPECT_EQ(printer->setPrinterCalls, 0);
    EXPECT_TRUE(UpgradePrinter(p, 2, u"Nowhere"));
}

TEST_F(UpgradeTest, ShortPrivatePartCopiesNothing) {
    // 100 - 300 is negative: the new record stays zero apart from its private size.
    printer->info.devMode = OldRecord(100, 0x11);
    printer->userDevMode = OldRecord(100, 0x22);
    EXPECT_TRUE(UpgradePrinter(p, 2, kPrinter));
    Bytes expected(kDevModeSize, 0);
    WriteU16(expected, kOffDmDriverExtra, 5784);
    EXPECT_EQ(printer->info.devMode, expected);
    EXPECT_EQ(printer->userDevMode, expected);
}

}  // namespace
}  // namespace kx20
