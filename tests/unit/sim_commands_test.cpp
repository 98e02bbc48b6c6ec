#include "sim/sim_commands.h"

#include <gtest/gtest.h>

#include "platform/memory/memory_monitor.h"
#include "platform/text.h"
#include "sim/sim_printer.h"
#include "unit/sim_test_blocks.h"

namespace kx20::sim {
namespace {

using namespace kx20::simtest;

class SimCommands : public ::testing::Test {
  protected:
    std::uint32_t Send(Bytes command, const std::u16string* printerName = nullptr) {
        return printer.HandleCommand(u"KX20_USB1", printerName, command, reply);
    }

    SimulatedPrinter printer{u"KX20_USB1"};
    MonitorReply reply;
};

TEST_F(SimCommands, MalformedCommandsAreRefusedAndLogged) {
    printer.state().modelCode = 4;
    const Bytes bad[] = {
        {0x42, 0x01},        // unknown class
        {0x19},              // too short
        {0x15, 0x01, 0x00},  // too long
        {0x78, 0x10, 0x27},  // reset without its whole parameter
        {0x19, 0x06},        // model 4 has no double-byte area
        {0x15, 0x06},
        {0x15, 0x05},  // no area 5 on any model
        {},
    };
    std::uint32_t rejections = 0;
    for (const auto& command : bad) {
        EXPECT_NE(Send(command), kOk) << testing::PrintToString(command);
        EXPECT_FALSE(reply.hasBuffer);
        EXPECT_TRUE(printer.state().log.back().rejected);
        EXPECT_EQ(printer.state().rejections, ++rejections);
    }
    // A command for another port does not reach this printer.
    Bytes query = {0x19, 0x01};
    EXPECT_EQ(printer.HandleCommand(u"COM1:", nullptr, query, reply), kErrInvalidName);
    EXPECT_EQ(printer.HandleCommand(u"kx20_usb1", nullptr, query, reply), kOk);
}

TEST_F(SimCommands, ControlsChangeThePrinterOrAreRefused) {
    EXPECT_EQ(printer.Control(u"identity=ABCD1234"), kOk);
    EXPECT_EQ(IdentityText(printer.state()), u"ABCD1234");
    EXPECT_EQ(printer.Control(u"model=0x07"), kOk);
    EXPECT_EQ(printer.state().modelCode, 7);
    EXPECT_EQ(printer.Control(u"protect=1"), kOk);
    EXPECT_EQ(printer.state().setup[1], 0xFF);
    for (const char16_t* bad :
         {u"identity=SHORT", u"identity=\u4E2D\u4E2D\u4E2D\u4E2DABCD", u"model=256", u"firmware=x",
          u"protect=2", u"erase=7", u"launch", u"config=0xA6"}) {
        EXPECT_EQ(printer.Control(bad), kErrInvalidParameter) << Utf16ToUtf8(bad);
        EXPECT_TRUE(printer.state().log.back().rejected);
    }
    printer.ReceiveJob(LogoBlock(1, 1, 1));
    EXPECT_EQ(printer.Control(u"reset"), kOk);
    EXPECT_TRUE(printer.state().flash.logos.empty());
    EXPECT_EQ(printer.state().modelCode, 9);
    EXPECT_FALSE(printer.state().log.empty());  // the history stays
}

}  // namespace
}  // namespace kx20::sim
