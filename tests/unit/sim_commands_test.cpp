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
    Bytes Checksum(std::uint8_t area) {
        EXPECT_EQ(Send({0x19, area}), kOk);
        return reply.data;
    }

    SimulatedPrinter printer{u"KX20_USB1"};
    MonitorReply reply;
};

TEST_F(SimCommands, ChecksumsFollowContentAndErasure) {
    ASSERT_TRUE(printer.ReceiveJob(LogoBlock(1, 1, 1)).accepted);
    Bytes one = Checksum(1);
    EXPECT_NE(one, (Bytes{0, 0, 0, 0}));
    auto expected = AreaChecksumBytes(printer.state().flash, 1);
    EXPECT_EQ(one, Bytes(expected.begin(), expected.end()));

    // The same content gives the same checksum on another printer; other content another one.
    SimulatedPrinter twin;
    twin.ReceiveJob(LogoBlock(1, 1, 1));
    EXPECT_EQ(twin.Checksum(1), printer.Checksum(1));
    twin.ReceiveJob(LogoBlock(1, 1, 1, 2));
    EXPECT_NE(twin.Checksum(1), printer.Checksum(1));

    ASSERT_TRUE(printer.ReceiveJob(LogoBlock(2, 1, 1)).accepted);
    EXPECT_NE(Checksum(1), one);
    EXPECT_EQ(Send({0x15, 0x01}), kOk);
    EXPECT_EQ(Checksum(1), (Bytes{0, 0, 0, 0}));

    // 0x15 0x06 erases the whole double-byte flash, the impact area with it.
    ASSERT_TRUE(
        printer
            .ReceiveJob(Cat({Cmd({0x14, 0x00, 1}), Fill(74, 0), Cmd({0x14, 0x01, 1}), Fill(34, 0)}))
            .accepted);
    EXPECT_NE(Checksum(7), (Bytes{0, 0, 0, 0}));
    EXPECT_EQ(Send({0x15, 0x06}), kOk);
    EXPECT_EQ(Checksum(6), (Bytes{0, 0, 0, 0}));
    EXPECT_EQ(Checksum(7), (Bytes{0, 0, 0, 0}));
}

TEST_F(SimCommands, SetupWriteTakesEffectOnTheCommitOfThePortsInterface) {
    EXPECT_EQ(Send({0x16, 0x10, 0xFE, 0xFF}), kOk);
    EXPECT_EQ(Send({0x17, 0x10}), kOk);
    EXPECT_EQ(reply.data, (Bytes{0xFE, 0x3F}));  // not yet committed
    EXPECT_NE(Send({0x05}), kOk);                // the serial commit on a USB port
    EXPECT_EQ(Send({0x06}), kOk);
    EXPECT_EQ(Send({0x17, 0x10}), kOk);
    EXPECT_EQ(reply.data, (Bytes{0xFE, 0xFF}));
    EXPECT_FALSE(FlashWritable(printer.state()));
    EXPECT_EQ(printer.ReceiveJob(LogoBlock(1, 1, 1)).error, kErrWriteProtect);
    EXPECT_EQ(Send({0x15, 0x01}), kOk);  // erasing stays possible

    printer.Control(u"serial=1");
    EXPECT_EQ(Send({0x16, 0x10, 0xFE, 0x3F}), kOk);
    EXPECT_NE(Send({0x06}), kOk);
    EXPECT_EQ(Send({0x05}), kOk);
    EXPECT_TRUE(FlashWritable(printer.state()));
    EXPECT_NE(Send({0x16, 0x33, 0x81, 0x9F}), kOk);  // only the setup goes this way
}

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

TEST_F(SimCommands, DisconnectedPrinterFailsEveryCommand) {
    ASSERT_EQ(printer.Control(u"disconnect"), kOk);
    const Bytes all[] = {{0x15, 0x01},
                         {0x16, 0x10, 0xFE, 0x3F},
                         {0x17, 0x10},
                         {0x17, 0x14},
                         {0x17, 0xA0},
                         {0x19, 0x01},
                         {0x06},
                         {0x6E},
                         {0x79, 0, 0, 0, 0}};
    for (const auto& command : all) {
        EXPECT_EQ(Send(command), kErrNotReady);
        EXPECT_FALSE(reply.hasBuffer);
        EXPECT_TRUE(printer.state().log.back().rejected);
    }
    printer.Control(u"connect");
    EXPECT_EQ(Send({0x19, 0x01}), kOk);
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
