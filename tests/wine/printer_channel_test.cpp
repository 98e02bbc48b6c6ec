// The command channel and the job channel through the real Win32 adapters: commands reach the
// simulated kvorsmon.dll, raw jobs go through the Wine spooler to the port file, and the
// simulated printer takes them in on its next command. What the printer does with a command or
// a broken block, and the offline answers, are the unit suite's (printer_round_trip_test).
#include "platform/win32/windows_clean.h"

#include <gtest/gtest.h>

#include "channel/command_start.h"
#include "channel/job_channel.h"
#include "channel/printer_queries.h"
#include "platform/memory/memory_files.h"
#include "platform/resources.h"
#include "platform/win32/win32_platform.h"
#include "tests/wine/wine_environment.h"
#include "tools/winhost/sim_control.h"

namespace kx20::winetest {
namespace {

constexpr char16_t kPrinter[] = u"KX20";

class PrinterChannel : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(sim_.Loaded());
        ASSERT_EQ(sim_.Control(L"reset"), 0u);
        ASSERT_EQ(sim_.Control(L"connect"), 0u);
    }

    bool Contains(const std::wstring& text, const wchar_t* part) {
        return text.find(part) != std::wstring::npos;
    }

    // Real adapters, except that waits are recorded instead of slept.
    Win32Platform win32_;
    ManualClock clock_;
    Platform ports_{win32_.registry, win32_.spooler, win32_.files, clock_, win32_.monitor};
    winhost::SimulatedPrinterControl sim_{PortPath()};
};

TEST_F(PrinterChannel, ChecksumEraseAndResetReachTheMonitor) {
    std::uint8_t crc[4] = {9, 9, 9, 9};
    ASSERT_TRUE(channel::GetLogosCRC(ports_, true, kPrinter, crc));
    EXPECT_EQ(crc[0] | crc[1] | crc[2] | crc[3], 0) << "an empty logo area has checksum 0";

    EXPECT_TRUE(channel::OutEraseAllSectors(ports_, kPrinter, 9));
    channel::ResetKX20Printer(ports_, false, true, kPrinter, 10000);
    ASSERT_EQ(clock_.sleeps.size(), 1u);
    EXPECT_EQ(clock_.sleeps[0], 5000u);

    std::wstring state = sim_.Describe();
    EXPECT_TRUE(Contains(state, L"resets (last 0x79 10000)")) << state;
}

TEST_F(PrinterChannel, RawJobReachesThePrinterAndGetsAVerdict) {
    BuiltinStrings strings;
    // A 16 x 8 logo block, as the logo download builds it.
    Bytes block(channel::kCommandStart.begin(), channel::kCommandStart.end());
    block.insert(block.end(), {0x0F, 3, 2, 1});
    for (int i = 0; i < 16; ++i) block.push_back(static_cast<std::uint8_t>(i));
    block.push_back(0xFF);
    ASSERT_TRUE(channel::SendRawJobAndWait(strings, ports_, kPrinter, 1, 3, block));

    std::uint8_t crc[4] = {};
    ASSERT_TRUE(channel::GetLogosCRC(ports_, true, kPrinter, crc));
    EXPECT_NE(crc[0] | crc[1] | crc[2] | crc[3], 0) << "the logo area now holds a logo";
    std::wstring state = sim_.Describe();
    EXPECT_TRUE(Contains(state, L"logo 3: 16 x 8 dots")) << state;
}

}  // namespace
}  // namespace kx20::winetest
