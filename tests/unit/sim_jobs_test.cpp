#include "sim/sim_jobs.h"

#include <gtest/gtest.h>

#include "platform/text.h"
#include "unit/sim_test_blocks.h"

namespace kx20::sim {
namespace {

using namespace kx20::simtest;

std::vector<std::uint8_t> Commands(const JobResult& r) {
    std::vector<std::uint8_t> out;
    for (const auto& b : r.blocks) out.push_back(b.command);
    return out;
}

TEST(SimJobs, LogoAndMessageAreStoredWithTheirSlots) {
    PrinterState s = FreshPrinter(u"P");
    Bytes job = Cat({LogoBlock(2, 1, 1, 0x10), MessageBlock(5, "Hi there")});
    JobResult r = ReceiveJob(s, job);
    ASSERT_TRUE(r.accepted) << Utf16ToUtf8(r.reason);
    EXPECT_EQ(Commands(r), (std::vector<std::uint8_t>{0x0F, 0x10, 0x00}));
    ASSERT_EQ(s.flash.logos.count(2), 1u);
    EXPECT_EQ(s.flash.logos[2].widthBytes, 1);
    EXPECT_EQ(s.flash.logos[2].height8, 1);
    EXPECT_EQ(s.flash.logos[2].raster, Fill(8, 0x10));
    EXPECT_EQ(s.flash.messages[5], Text("Hi there"));
    EXPECT_NE(AreaChecksum(s.flash, kAreaLogos), 0u);
    EXPECT_NE(AreaChecksum(s.flash, kAreaMessages), 0u);
    EXPECT_EQ(AreaChecksum(s.flash, kAreaSbcsThermal), 0u);
    EXPECT_FALSE(s.log.back().rejected);

    // A full-width logo: 576 x 2040 dots is 146,880 raster bytes in a 146,900-byte block.
    Bytes big = LogoBlock(40, 72, 255);
    ASSERT_EQ(big.size(), 146900u);
    EXPECT_TRUE(ReceiveJob(s, big).accepted);
    EXPECT_EQ(s.flash.logos[40].raster.size(), 146880u);
}

TEST(SimJobs, FirmwareSetsTheLevelAndMayBeFollowedByAnotherJob) {
    PrinterState s = FreshPrinter(u"P");  // model 9: family 3
    // A marker inside the image followed by ordinary bytes is image data.
    Bytes image = Cat(
        {Text("EcLevel 5A\r\nBootLevel 1\r\nDevType 3\r\n"), Marker(), Bytes{0x42, 0x00, 0x13}});
    Bytes job = Cat({Cmd({0x6B}), image, Marker(), LogoBlock(1, 2, 1)});
    JobResult r = ReceiveJob(s, job);
    ASSERT_TRUE(r.accepted) << Utf16ToUtf8(r.reason);
    EXPECT_EQ(Commands(r), (std::vector<std::uint8_t>{0x6B, 0x0F}));
    EXPECT_EQ(s.firmwareLevel, 0x5A);
    EXPECT_EQ(s.firmwareImageSize, image.size());
    EXPECT_EQ(s.firmwareUpdates, 1u);
    EXPECT_EQ(s.flash.logos.size(), 1u);

    // Firmware of another family, or without a boot level, is refused and changes nothing.
    for (const char* header :
         {"EcLevel 30\nBootLevel 1\nDevType 1\n", "EcLevel 30\nBootLevel 0\nDevType 3\n",
          "BootLevel 1\nEcLevel 30\nDevType 3\n"}) {
        r = ReceiveJob(s, Cat({Cmd({0x6B}), Text(header), Marker()}));
        EXPECT_FALSE(r.accepted) << header;
        EXPECT_EQ(s.firmwareLevel, 0x5A);
    }
    r = ReceiveJob(s, Cat({Cmd({0x6B}), Text("EcLevel 31\nBootLevel 1\nDevType 3\n")}));
    EXPECT_FALSE(r.accepted);  // no closing marker
}

struct Broken {
    const char* name;
    Bytes block;
    const char* reasonPart;
};

TEST(SimJobs, BrokenFramingIsRejectedAfterKeepingWhatCameBefore) {
    const Broken cases[] = {
        {"wrong marker",
         Cat({Bytes{'C', 1, 'M', 1, 'D', 1, 'S', 1, 't', 1, 'a', 1, 'r', 1, 'T'}, Bytes{0x00}}),
         "marker"},
        {"truncated logo", Cat({Cmd({0x0F, 3, 2, 1}), Fill(15, 0)}), "truncated"},
        {"logo raster too long", Cat({Cmd({0x0F, 3, 1, 1}), Fill(9, 0), Bytes{0xFF}}), "0xFF"},
        {"logo slot 41", LogoBlock(41, 1, 1), "outside"},
        {"group count too small",
         Cat({Cmd({0x14, 0x00, 1}), Fill(74, 0), Fill(74, 0), Cmd({0x00})}), "count"},
        {"group count 0", Cmd({0x14, 0x00, 0}), "count 0"},
        {"unknown command", Cmd({0x42, 1, 2, 3}), "unknown command 0x42"},
        {"message not closed by 0x11", Cat({Cmd({0x10, 1}), Cmd({0x00}), Text("abc"), Cmd({0x00})}),
         "expected 0x11"},
        {"message without closing marker", Cat({Cmd({0x10, 1}), Cmd({0x00}), Text("abc")}),
         "truncated"},
        {"single-byte character without size header",
         Cat({Cmd({0x12, 0x01, 0x41, 0x41}), Fill(72, 0)}), "size header"},
        {"glyph length not matching the header",
         Cat({Cmd({0x12, 0x05, 0x41, 0x41}), Fill(20, 0), LogoBlock(8, 1, 1)}), "glyph length"},
        {"marker cut short", Bytes{'C', 1, 'M', 1}, "cut short"},
        {"marker without command", Marker(), "without a command"},
    };
    for (const auto& c : cases) {
        PrinterState s = FreshPrinter(u"P");
        // A logo and the impact size header (16 x 16 dots: 32-byte glyphs) decode first.
        Bytes good = Cat({LogoBlock(7, 1, 1), Cmd({0x16, 0x04, 16, 16})});
        JobResult r = ReceiveJob(s, Cat({good, c.block}));
        EXPECT_FALSE(r.accepted) << c.name;
        EXPECT_EQ(r.error, kErrInvalidData) << c.name;
        EXPECT_EQ(r.errorOffset, good.size()) << c.name;
        EXPECT_NE(Utf16ToUtf8(r.reason).find(c.reasonPart), std::string::npos)
            << c.name << ": " << Utf16ToUtf8(r.reason);
        EXPECT_EQ(r.blocks.size(), 2u) << c.name;
        EXPECT_EQ(s.flash.logos.size(), 1u) << c.name;
        EXPECT_TRUE(s.flash.dbcsThermal.empty()) << c.name;
        ASSERT_FALSE(s.log.empty());
        EXPECT_TRUE(s.log.back().rejected) << c.name;
        EXPECT_EQ(s.rejections, 1u) << c.name;
    }
}

TEST(SimJobs, PrinterConditionsRefuseDownloads) {
    // Write-protected flash: the logo is refused, nothing is stored.
    PrinterState s = FreshPrinter(u"P");
    s.setup[1] = 0x7F;
    JobResult r = ReceiveJob(s, LogoBlock(1, 1, 1));
    EXPECT_EQ(r.error, kErrWriteProtect);
    EXPECT_TRUE(s.flash.logos.empty());

    // Disconnected: nothing is taken.
    s = FreshPrinter(u"P");
    s.connected = false;
    r = ReceiveJob(s, LogoBlock(1, 1, 1));
    EXPECT_EQ(r.error, kErrNotReady);
    EXPECT_TRUE(s.flash.logos.empty());
    EXPECT_TRUE(s.log.back().rejected);

    // Model 7 has no impact double-byte area; model 4 no double-byte area at all.
    s = FreshPrinter(u"P");
    s.modelCode = 7;
    EXPECT_EQ(ReceiveJob(s, Cat({Cmd({0x14, 0x01, 1}), Fill(34, 0)})).error, kErrNotSupported);
    EXPECT_TRUE(ReceiveJob(s, Cat({Cmd({0x14, 0x00, 1}), Fill(74, 0)})).accepted);
    s.modelCode = 4;
    EXPECT_EQ(ReceiveJob(s, Cat({Cmd({0x14, 0x00, 1}), Fill(74, 0)})).error, kErrNotSupported);

    // The serial reset and the serial restart belong to a serial port, the others not.
    s = FreshPrinter(u"P");
    s.serialPort = true;
    EXPECT_FALSE(ReceiveJob(s, Cmd({0x78, 0x10, 0x27, 0, 0})).accepted);
    EXPECT_FALSE(ReceiveJob(s, Cmd({0x07})).accepted);
    EXPECT_TRUE(ReceiveJob(s, Cat({Cmd({0x7A, 0x10, 0x27, 0, 0}), Cmd({0x05})})).accepted);
    s.serialPort = false;
    EXPECT_FALSE(ReceiveJob(s, Cmd({0x05})).accepted);
    EXPECT_TRUE(ReceiveJob(s, Cat({Cmd({0x79, 0x10, 0x27, 0, 0}), Cmd({0x07})})).accepted);
    EXPECT_EQ(s.resets, 4u);
}

}  // namespace
}  // namespace kx20::sim
