// The driver's command channel and registry layout against the simulated printer: both sides
// were written from the byte tables independently, so agreement here checks both.
#include <gtest/gtest.h>

#include "channel/command_start.h"
#include "channel/job_channel.h"
#include "channel/printer_queries.h"
#include "platform/memory/memory_files.h"
#include "platform/memory/memory_monitor.h"
#include "platform/memory/memory_registry.h"
#include "platform/memory/memory_spooler.h"
#include "platform/resources.h"
#include "sim/sim_printer.h"
#include "store/registry_layout.h"

namespace kx20 {
namespace {

constexpr char16_t kPrinter[] = u"KX20";
constexpr char16_t kPort[] = u"KX20_USB1";

class PrinterRoundTrip : public ::testing::Test {
  protected:
    void SetUp() override {
        spooler_.AddPrinter(kPrinter, kPort);
        printer_.AttachRegistry(&registry_);
        monitor_.handler = printer_.Handler();
        spooler_.onJobEnd = [this](const MemoryJob& job) { printer_.ReceiveJob(job.data); };
    }

    std::uint32_t LogosChecksum() {
        std::uint8_t crc[4] = {};
        EXPECT_TRUE(channel::GetLogosCRC(p_, true, kPrinter, crc));
        return ReadU32(ByteSpan(crc, 4), 0);
    }

    MemoryRegistry registry_;
    MemorySpooler spooler_;
    MemoryFileSystem files_;
    ManualClock clock_;
    MemoryCommandChannel monitor_;
    Platform p_{registry_, spooler_, files_, clock_, monitor_};
    sim::SimulatedPrinter printer_{kPort};
    BuiltinStrings strings_;
};

Bytes LogoBlock(std::uint8_t number) {
    Bytes block(channel::kCommandStart.begin(), channel::kCommandStart.end());
    block.insert(block.end(), {0x0F, number, 1, 1});
    for (int i = 0; i < 8; ++i) block.push_back(static_cast<std::uint8_t>(0x80 >> i));
    block.push_back(0xFF);
    return block;
}

TEST_F(PrinterRoundTrip, ConnectionStatusPublishedByThePrinterReadsBack) {
    ASSERT_EQ(printer_.Control(u"identity=AAAAAAAA"), 0u);
    ASSERT_EQ(printer_.Control(u"model=7"), 0u);
    store::ConnectionStatus status;
    ASSERT_TRUE(store::GetConnectionStatus(p_, kPort, status));
    EXPECT_EQ(status.identity, u"AAAAAAAA");
    EXPECT_EQ(status.modelCode, 7u);
    EXPECT_TRUE(status.connected);
    EXPECT_EQ(status.firmwareLevel, printer_.state().firmwareLevel);

    ASSERT_EQ(printer_.Control(u"invalidate"), 0u);
    EXPECT_FALSE(store::GetConnectionStatus(p_, kPort, status));
    ASSERT_EQ(printer_.Control(u"serial=1"), 0u);
    EXPECT_TRUE(store::IsSerialConnection(p_, kPort));
}

TEST_F(PrinterRoundTrip, ChecksumsReadTheSameOnlineAndFromThePortKey) {
    ASSERT_TRUE(channel::SendRawJobAndWait(strings_, p_, kPrinter, 1, 5, LogoBlock(5)));
    EXPECT_NE(LogosChecksum(), 0u);
    EXPECT_EQ(LogosChecksum(), printer_.Checksum(1));
    std::uint8_t stored[4] = {};
    ASSERT_TRUE(channel::GetLogosCRC(p_, false, kPrinter, stored));
    EXPECT_EQ(ReadU32(ByteSpan(stored, 4), 0), printer_.Checksum(1));
}

TEST_F(PrinterRoundTrip, FlashProtectionBlocksDownloadsUntilLifted) {
    ASSERT_TRUE(channel::OutSetFlashWritable(p_, kPrinter, false));
    EXPECT_FALSE(channel::IsFlashWritable(p_, kPrinter));
    channel::SendRawJobAndWait(strings_, p_, kPrinter, 1, 1, LogoBlock(1));
    EXPECT_TRUE(printer_.state().flash.logos.empty());

    ASSERT_TRUE(channel::OutSetFlashWritable(p_, kPrinter, true));
    EXPECT_TRUE(channel::IsFlashWritable(p_, kPrinter));
    channel::SendRawJobAndWait(strings_, p_, kPrinter, 1, 1, LogoBlock(1));
    EXPECT_EQ(printer_.state().flash.logos.size(), 1u);
}

TEST_F(PrinterRoundTrip, DoubleByteReadinessFollowsTheConfigurationTable) {
    EXPECT_TRUE(channel::IsHaldenPrinterDBCSReady(p_, kPrinter));
    EXPECT_EQ(clock_.TotalSlept(), 200u);
    ASSERT_EQ(printer_.Control(u"config=0xA6:13"), 0u);
    clock_.sleeps.clear();
    EXPECT_FALSE(channel::IsHaldenPrinterDBCSReady(p_, kPrinter));
    EXPECT_EQ(clock_.TotalSlept(), 100u);
    std::uint8_t value[2] = {};
    ASSERT_TRUE(channel::GetMctValueFromPrinter(p_, kPrinter, 0xA6, value));
    EXPECT_EQ(value[0], 13);  // the reply's low byte, swapped into place
    EXPECT_EQ(value[1], 0);
}

}  // namespace
}  // namespace kx20
