// Printer events and the upgrade: the initialisation against the in-memory spooler and
// registry with the simulated printer behind the port, and the upgrade's copy rule.
#include "entry/printer_event.h"

#include <gtest/gtest.h>

#include "devmode/devmode.h"
#include "platform/memory/memory_platform.h"
#include "platform/memory/memory_prompts.h"
#include "platform/trace.h"
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
    EXPECT_EQ(WithoutServer(u"\\\\srv"), u"\\\\srv") << "no queue part: kept as given";
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
        ASSERT_TRUE(store::RegisterLogo(p, 1, 1, 1, 10, Bytes(10, 0x42), kId, kPrinter));
        ASSERT_TRUE(store::RegisterLogo(p, 2, 1, 1, 10, Bytes(10, 0x42), kOther, kPrinter));
        ASSERT_TRUE(store::RegisterMessage(p, 1, u"Hi", kId, kPrinter));
        SetChecksums(sim.Checksum(1), sim.Checksum(2), sim.Checksum(4));
        sim.Control(u"clearlog");
    }
    void SetChecksums(std::uint32_t logo, std::uint32_t message, std::uint32_t font) {
        ASSERT_TRUE(store::SetLogoCRC(p, kPrinter, kId, logo));
        ASSERT_TRUE(store::SetMessageCRC(p, kPrinter, kId, message));
        ASSERT_TRUE(store::SetSBCSFontCRC(p, kPrinter, kId, font));
    }
    std::size_t Logos() { return store::ReadLogoRecords(p, kPrinter, kId).size(); }
    std::size_t Messages() { return store::ReadMessageRecords(p, kPrinter, kId).size(); }
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
    EXPECT_EQ(registry.flushes, 1);
    // The printer's own record goes back through level 2; the per-user record is untouched.
    EXPECT_EQ(printer->setPrinterCalls, 1);
    EXPECT_FALSE(printer->userDevMode.has_value());

    // A foreign record is replaced globally and per user.
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

TEST_F(PrinterEventTest, EqualChecksumsChangeNothingDifferingOnesEraseAndClear) {
    FillPrinterAndCatalogue();
    ASSERT_TRUE(Initialize());
    EXPECT_EQ(monitor.calls.size(), 3u) << "the three checksums were asked";
    EXPECT_FALSE(Erased(1) || Erased(2) || Erased(4));
    EXPECT_EQ(Logos() + Messages(), 2u);
    EXPECT_EQ(store::GetSBCSFontCRC(p, kPrinter, kId), sim.Checksum(4));
    EXPECT_TRUE(prompts.broadcasts.empty());

    SetChecksums(0x1234, 0x5678, 0x9ABC);
    ASSERT_TRUE(Initialize());
    EXPECT_TRUE(Erased(1) && Erased(2) && Erased(4));
    EXPECT_TRUE(sim.state().flash.logos.empty());
    EXPECT_EQ(Logos() + Messages(), 0u);
    EXPECT_EQ(store::GetLogoCRC(p, kPrinter, kId), 0u);
    EXPECT_EQ(store::GetSBCSFontCRC(p, kPrinter, kId), 0u);
    EXPECT_EQ(store::ReadLogoRecords(p, kPrinter, kOther).size(), 1u) << "another printer's";
    ASSERT_EQ(prompts.broadcasts.size(), 3u);
    EXPECT_EQ(prompts.broadcasts[0].which, RefreshMessage::Logos);
    EXPECT_EQ(prompts.broadcasts[1].which, RefreshMessage::Messages);
    EXPECT_EQ(prompts.broadcasts[2].which, RefreshMessage::Fonts);
}

TEST_F(PrinterEventTest, EmptyPrinterAreaIsClearedWithoutErasing) {
    FillPrinterAndCatalogue();
    sim.Control(u"erase=1");  // the printer's logo area now answers checksum 0
    sim.Control(u"clearlog");
    ASSERT_TRUE(Initialize());
    EXPECT_FALSE(Erased(1)) << "nothing to erase in an empty area";
    EXPECT_EQ(Logos(), 0u);
    EXPECT_EQ(Messages(), 1u);
}

TEST_F(PrinterEventTest, StoredMessageChecksumZeroAlwaysClears) {
    FillPrinterAndCatalogue();
    SetChecksums(0x1234, 0, sim.Checksum(4));
    monitor.loadResult = MonitorLoad::LibraryMissing;  // no checksum can be asked
    ASSERT_TRUE(Initialize());
    EXPECT_EQ(Logos(), 1u) << "logos need an answer";
    EXPECT_EQ(Messages(), 0u) << "0 clears regardless";
    EXPECT_EQ(store::GetSBCSFontCRC(p, kPrinter, kId), sim.Checksum(4)) << "font query failed";
}

TEST_F(PrinterEventTest, UnreachablePrinterIsNotReconciledAndOtherEventsOnlyAnswer) {
    FillPrinterAndCatalogue();
    ASSERT_TRUE(store::SetLogoCRC(p, kPrinter, kId, 0x1234));
    sim.Control(u"disconnect");
    ASSERT_TRUE(Initialize());
    EXPECT_EQ(Logos(), 1u);
    printer->data.clear();
    for (std::int32_t event : {1, 2, 4, 5, 6, 0, 99})
        EXPECT_TRUE(HandlePrinterEvent(p, prompts, kPrinter, event)) << event;
    EXPECT_TRUE(monitor.calls.empty());
    EXPECT_TRUE(printer->data.empty());
}

Bytes OldRecord(std::uint16_t extra, std::uint8_t fill) {
    Bytes r(220 + extra, fill);
    WriteU16(r, kOffDmSize, 220);
    WriteU16(r, kOffDmDriverExtra, extra);
    return r;
}

TEST_F(PrinterEventTest, UpgradeCopiesOlderRecordsGlobalThenPerUser) {
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

    // 100 - 300 is negative: the new record stays zero apart from its private size.
    printer->info.devMode = OldRecord(100, 0x11);
    printer->userDevMode = OldRecord(100, 0x22);
    EXPECT_TRUE(UpgradePrinter(p, 2, kPrinter));
    Bytes expected(kDevModeSize, 0);
    WriteU16(expected, kOffDmDriverExtra, 5784);
    EXPECT_EQ(printer->info.devMode, expected);
    EXPECT_EQ(printer->userDevMode, expected);
}

TEST_F(PrinterEventTest, UpgradeTouchesOnlyLevelTwoAndForeignRecords) {
    printer->info.devMode = OldRecord(1000, 0x11);
    EXPECT_TRUE(UpgradePrinter(p, 1, kPrinter));
    printer->info.devMode = Bytes(gsDevMode().begin(), gsDevMode().end());
    EXPECT_TRUE(UpgradePrinter(p, 2, kPrinter));
    EXPECT_EQ(printer->setPrinterCalls, 0);
    EXPECT_TRUE(UpgradePrinter(p, 2, u"Nowhere"));
}

}  // namespace
}  // namespace kx20
