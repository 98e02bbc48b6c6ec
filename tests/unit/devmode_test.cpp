#include "devmode/devmode.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/trace.h"
#include "platform/memory/memory_files.h"
#include "tests/unit/trace_capture.h"

namespace kx20 {
namespace {

// The default record holds together: its sizes, one resolution everywhere, the driver's name,
// both station blocks alike. The words carried for the rendering module are read by that
// module, so they are pinned as it reads them.
TEST(DefaultDevMode, HoldsTogether) {
    const Bytes d(gsDevMode().begin(), gsDevMode().end());
    ASSERT_EQ(d.size(), std::size_t{ReadU16(d, kOffDmSize)} + ReadU16(d, kOffDmDriverExtra));
    EXPECT_EQ(ReadUtf16Field(d, kOffDmDeviceName, kDmNameChars), kDefaultDeviceName);
    const std::int16_t dpi = ReadDmShort(d, kOffDmPrintQuality);
    EXPECT_GT(dpi, 0);
    EXPECT_EQ(ReadDmShort(d, kOffDmYResolution), dpi);
    EXPECT_EQ(ReadU16(d, kOffDmLogPixels), dpi);
    EXPECT_EQ(ReadDmShort(d, kOffDmPaperSize), kDefaultPaperSize);
    for (std::size_t m : {kOffDmOrientation, kOffDmCopies, kOffDmScale})
        EXPECT_GT(ReadDmShort(d, m), 0) << m;
    // Color and media type are left out of dmFields: they are always completed from here.
    EXPECT_EQ(ReadU32(d, kOffDmFields) & (kDmColor | kDmMediaType), 0u);
    EXPECT_TRUE(ReadU32(d, kOffDmFields) & kDmPaperSize);

    const ByteSpan priv = ByteSpan(d).subspan(kDevModePublicSize);
    EXPECT_EQ(ReadU32(priv, kPrivUlVersion), kDevModeSignature);
    EXPECT_EQ(ReadUtf16Field(priv, kPrivFontOverrideName, kPrivFontNameChars), kNoFontOverride);
    const ByteSpan first = priv.subspan(kPrivFirstStation, kStationBlockSize);
    EXPECT_TRUE(std::equal(first.begin(), first.end(), priv.begin() + kPrivSecondStation));
    EXPECT_EQ(ReadUtf16Field(first, kStationFontName, kPrivFontNameChars), kDefaultStationFont);
    const std::pair<std::size_t, std::uint32_t> rendering[] = {
        {kPrivOptionWord8, 4}, {kPrivOptionWord20, 1}, {kPrivOptionWord24, 1}, {kPrivOptionWord28, 162}};
    for (auto [at, value] : rendering) EXPECT_EQ(ReadU32(priv, at), value) << at;
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

TEST_F(DevModeDump, PrivateLinesOnlyForOwnPrivateSizeReadAtTheRecordsPublicSize) {
    DumpDevMode(gsDevMode());
    EXPECT_TRUE(TraceHas(files, "KVO KX20"));
    EXPECT_TRUE(TraceHas(files, "0xABABCDCD"));

    // A foreign private size: public members only, shorts shown signed.
    files.Remove(u"out");
    DevModeImage foreign = gsDevMode();
    WriteU16(foreign, kOffDmDriverExtra, 5783);
    WriteDmShort(foreign, kOffDmPaperLength, -5);
    DumpDevMode(foreign);
    EXPECT_TRUE(TraceHas(files, "5783"));
    EXPECT_TRUE(TraceHas(files, "-5\n"));
    EXPECT_FALSE(TraceHas(files, "0xABABCDCD"));

    // A short public part: the private part is read where the record says it begins.
    files.Remove(u"out");
    Bytes shortPublic(156 + 5784, 0);
    WriteU16(shortPublic, kOffDmSize, 156);
    WriteU16(shortPublic, kOffDmDriverExtra, 5784);
    WriteU32(shortPublic, 156, 0x11223344);
    DumpDevMode(shortPublic);
    EXPECT_TRUE(TraceHas(files, "0x11223344"));
}

TEST_F(DevModeDump, NothingForNoRecordAndZerosBeyondAShortOne) {
    DumpDevMode({});
    EXPECT_EQ(files.Get(u"out"), nullptr);
    // 72 bytes claim a whole record: the name has no terminator, the rest reads as zero.
    Bytes tiny(72, 0);
    for (std::size_t i = 0; i < 32; ++i) WriteU16(tiny, 2 * i, u'X');
    WriteU16(tiny, kOffDmSize, 220);
    WriteU16(tiny, kOffDmDriverExtra, 5784);
    DumpDevMode(tiny);
    EXPECT_TRUE(TraceHas(files, std::string(32, 'X') + "\n"));
    EXPECT_TRUE(TraceHas(files, "0x00000000"));
}

}  // namespace
}  // namespace kx20
