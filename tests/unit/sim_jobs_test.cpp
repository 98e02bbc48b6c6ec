#include "sim/sim_jobs.h"

#include <gtest/gtest.h>

#include "platform/text.h"
#include "unit/sim_test_blocks.h"

namespace kx20::sim {
namespace {

using namespace kx20::simtest;

TEST(SimJobs, FirmwareOfAnotherFamilyOrWithoutABootLevelIsRefused) {
    PrinterState s = FreshPrinter(u"P");  // model 9: family 3
    for (const char* header :
         {"EcLevel 30\nBootLevel 1\nDevType 1\n", "EcLevel 30\nBootLevel 0\nDevType 3\n",
          "BootLevel 1\nEcLevel 30\nDevType 3\n"}) {
        EXPECT_FALSE(ReceiveJob(s, Cat({Cmd({0x6B}), Text(header), Marker()})).accepted) << header;
        EXPECT_EQ(s.firmwareUpdates, 0u);
    }
    // No closing marker.
    EXPECT_FALSE(
        ReceiveJob(s, Cat({Cmd({0x6B}), Text("EcLevel 31\nBootLevel 1\nDevType 3\n")})).accepted);
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
        EXPECT_EQ(s.flash.logos.size(), 1u) << c.name;
        EXPECT_EQ(s.rejections, 1u) << c.name;
    }
}

TEST(SimJobs, ModelAndPortRefuseWhatTheyDoNotHave) {
    PrinterState s = FreshPrinter(u"P");
    // Model 7 has no impact double-byte area; model 4 no double-byte area at all.
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
