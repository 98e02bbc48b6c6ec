#include "devmode/devmode.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/trace.h"
#include "platform/memory/memory_files.h"
#include "tests/unit/trace_capture.h"

namespace kx20 {
namespace {

// Clears `count` bytes after checking they are not all zero, so that the rest of the image can
// be checked for zeros at the end.
void Take(Bytes& image, std::size_t offset, Bytes expected) {
    ASSERT_LE(offset + expected.size(), image.size());
    EXPECT_EQ(Bytes(image.begin() + offset, image.begin() + offset + expected.size()), expected)
        << "at offset " << offset;
    std::fill(image.begin() + offset, image.begin() + offset + expected.size(), 0);
}

Bytes Utf16Le(std::u16string_view s, std::size_t units) {
    Bytes b(units * 2, 0);
    for (std::size_t i = 0; i < s.size(); ++i) {
        b[2 * i] = static_cast<std::uint8_t>(s[i]);
        b[2 * i + 1] = static_cast<std::uint8_t>(s[i] >> 8);
    }
    return b;
}

TEST(DefaultDevMode, ImageIsByteExact) {
    Bytes image(gsDevMode().begin(), gsDevMode().end());
    ASSERT_EQ(image.size(), 6004u);
    // Public part.
    Take(image, 0, Utf16Le(u"KVO KX20", 32));
    Take(image, 64, {0x01, 0x04, 0x00, 0x04, 0xDC, 0x00, 0x98, 0x16});  // versions, sizes
    Take(image, 72, {0x03, 0xF7, 0x00, 0x00});                          // dmFields
    Take(image, 76, {0x01, 0x00, 0x03, 0x01});                          // portrait, paper 259
    Take(image, 84, {100, 0, 1, 0});                                    // scale, copies
    Take(image, 90, {150, 0, 1, 0, 1, 0, 150, 0, 2, 0});  // quality .. TrueType option
    Take(image, 102, Utf16Le(u"Letter", 32));
    Take(image, 166, {150, 0, 1, 0, 0, 0});                  // log pixels, bits per pel
    Take(image, 172, {0xEC, 0x13, 0, 0, 0xC8, 0x19, 0, 0});  // 5100 x 6600
    Take(image, 188, {1, 0, 0, 0});                          // ICM method
    // Private part, from 220.
    Take(image, 220, {0xCD, 0xCD, 0xAB, 0xAB});
    Take(image, 220 + 8, {4, 0, 0, 0, 1, 0, 0, 0});
    Take(image, 220 + 20, {1, 0, 0, 0, 1, 0, 0, 0, 162, 0, 0, 0});
    Take(image, 220 + 44, {1, 0, 0, 0});
    Take(image, 220 + 52, {1, 0, 0, 0});
    Take(image, 220 + 64, {1, 0, 0, 0});
    Take(image, 220 + 72, {2, 0, 0, 0, 2, 0, 0, 0});
    Take(image, 220 + 80, Utf16Le(u"Do not override font", 256));
    for (std::size_t block : {220u + 592u, 220u + 3188u}) {
        Take(image, block + 2072, Utf16Le(u"Font A", 256));
        Take(image, block + 2584, {2, 0, 0, 0, 2, 0, 0, 0});
    }
    // Every other byte, the whole second station block's last choice included, is zero.
    EXPECT_EQ(std::count(image.begin(), image.end(), 0), 6004);
}

class DevModeDump : public ::testing::Test {
  protected:
    void SetUp() override {
        SetTraceTarget(&files, &clock, {u"marker", u"out"});
        files.Put(u"marker", {});
    }
    void TearDown() override { SetTraceTarget(nullptr, nullptr); }

    MemoryFileSystem files;
    ManualClock clock;
};

TEST_F(DevModeDump, PublicThenPrivateLinesOfOwnRecord) {
    DumpDevMode(gsDevMode());
    const std::vector<std::string> expected = {
        "\n DEVMODE public data\n",         "   dmDeviceName       KVO KX20\n",
        "   dmSpecVersion      0x0401\n",   "   dmDriverVersion    0x0400\n",
        "   dmSize=            220\n",      "   dmDriverExtra=     5784\n",
        "   dmOrientation=     1\n",        "   dmPaperSize=       259\n",
        "   dmPaperLength=     0\n",        "   dmPaperWidth=      0\n",
        "   dmCopies=          1\n",        "   dmDefaultSource=   0\n",
        "   dmCollate=         0\n",        "\n DEVMODE private data\n",
        "   ulVersion=       0xABABCDCD\n", "   bReceiptStation= 1\n"};
    EXPECT_EQ(TraceMessages(files), expected);
}

TEST_F(DevModeDump, PrivateLinesOnlyForOwnPrivateSizeReadAtOwnPublicSize) {
    // A foreign private size: public lines only, shorts shown signed.
    DevModeImage foreign = gsDevMode();
    WriteU16(foreign, kOffDmDriverExtra, 5783);
    WriteDmShort(foreign, kOffDmPaperLength, -5);
    DumpDevMode(foreign);
    std::vector<std::string> lines = TraceMessages(files);
    ASSERT_EQ(lines.size(), 13u);
    EXPECT_EQ(lines[5], "   dmDriverExtra=     5783\n");
    EXPECT_EQ(lines[8], "   dmPaperLength=     -5\n");

    // A short public part: the private part is read where the record says it begins.
    files.Remove(u"out");
    Bytes shortPublic(156 + 5784, 0);
    WriteU16(shortPublic, kOffDmSize, 156);
    WriteU16(shortPublic, kOffDmDriverExtra, 5784);
    WriteU32(shortPublic, 156, 0x11223344);
    WriteU32(shortPublic, 156 + 12, 7);
    DumpDevMode(shortPublic);
    lines = TraceMessages(files);
    ASSERT_EQ(lines.size(), 16u);
    EXPECT_EQ(lines[14], "   ulVersion=       0x11223344\n");
    EXPECT_EQ(lines[15], "   bReceiptStation= 7\n");
}

TEST_F(DevModeDump, NothingForNoRecordAndZerosBeyondAShortOne) {
    DumpDevMode({});
    EXPECT_EQ(files.Get(u"out"), nullptr);

    // 72 bytes claim a whole record: the missing members and private part read as zero.
    Bytes tiny(72, 0);
    for (std::size_t i = 0; i < 32; ++i) WriteU16(tiny, 2 * i, u'X');  // no terminator
    WriteU16(tiny, kOffDmSize, 220);
    WriteU16(tiny, kOffDmDriverExtra, 5784);
    DumpDevMode(tiny);
    const std::vector<std::string> lines = TraceMessages(files);
    ASSERT_EQ(lines.size(), 16u);
    EXPECT_EQ(lines[1], "   dmDeviceName       " + std::string(32, 'X') + "\n");
    EXPECT_EQ(lines[6], "   dmOrientation=     0\n");
    EXPECT_EQ(lines[14], "   ulVersion=       0x00000000\n");
}

}  // namespace
}  // namespace kx20
