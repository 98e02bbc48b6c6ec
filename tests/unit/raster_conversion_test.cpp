// Picture to logo raster: sizes, the dither against its plain float-plane form, the packing and
// the band layout, the native loader's stretch and transparency, and bad picture files.
#include "logos/raster_conversion.h"

#include <gtest/gtest.h>

#include <random>

#include "platform/trace.h"
#include "logos/raster_reference.h"
#include "platform/memory/memory_files.h"
#include "platform/memory/native_pictures.h"
#include "platform/picture_stretch.h"
#include "sim/sim_state.h"
#include "trace_capture.h"
#include "unit/test_pictures.h"

namespace kx20::logos {
namespace {

constexpr LogoLimits kFull{576, 2040};
constexpr LogoLimits kNarrow{472, 40};

bool Bit(const Raster& r, int x, int y) {
    return (r.bits[static_cast<std::size_t>(y) * (r.width / 8) + x / 8] >> (7 - x % 8)) & 1;
}

int CountBlack(const Raster& r) {
    int n = 0;
    for (std::uint8_t b : r.bits) n += __builtin_popcount(b);
    return n;
}

TEST(LogoGrid, TargetAndGridFollowTheLongerSideOnly) {
    struct Case {
        PixelSize picture;
        LogoLimits limits;
        bool scale;
        PixelSize target, grid;
    };
    const Case cases[] = {
        {{100, 10}, kFull, false, {100, 10}, {128, 16}},
        {{600, 300}, kFull, true, {576, 288}, {576, 288}},
        {{300, 3000}, kFull, true, {204, 2040}, {224, 2040}},
        {{1000, 900}, kNarrow, true, {472, 424}, {472, 40}},
        {{460, 30}, kNarrow, false, {460, 30}, {472, 32}},  // 480 cropped to 472
        {{500, 500}, kFull, true, {500, 500}, {512, 504}},  // square: height rule, no change
        {{3000, 1}, kFull, true, {576, 0}, {576, 0}},       // too thin to keep a row
        {{1, 1}, kFull, false, {1, 1}, {32, 8}},
    };
    for (const Case& c : cases) {
        const PixelSize target = TargetSize(c.picture, c.limits, c.scale);
        EXPECT_EQ(target, c.target) << c.picture.width << "x" << c.picture.height;
        EXPECT_EQ(GridSize(target, c.limits), c.grid) << c.picture.width << "x" << c.picture.height;
    }
}

TEST(LogoDither, FastRasterEqualsThePlainFloatPlaneBitForBit) {
    struct Case {
        int canvasW, canvasH;
        PixelSize grid;
    };
    const Case cases[] = {
        {576, 2040, {576, 2040}}, {100, 10, {128, 16}}, {1, 1, {32, 8}},
        {300, 70, {224, 72}},  // canvas wider and taller than the grid
        {64, 17, {64, 17 + 15}},
    };
    std::uint32_t seed = 1;
    for (const Case& c : cases) {
        for (int variant = 0; variant < 3; ++variant, ++seed) {
            RgbCanvas canvas;
            if (variant == 0) {
                canvas = testpics::PhotoLike(c.canvasW, c.canvasH, seed);
            } else {
                // Uniform noise reaches the clamps from both sides often.
                std::mt19937 rng(seed);
                canvas = testpics::Painted(c.canvasW, c.canvasH, [&](int, int) {
                    return variant == 1 ? rng() : ((rng() & 1) ? 0xFFFFFFu : 0x7F7F7Fu);
                });
            }
            const Raster fast = DitherToRaster(canvas, c.grid);
            const Raster plain = DitherToRasterReference(canvas, c.grid);
            ASSERT_EQ(fast.width, c.grid.width);
            ASSERT_EQ(fast.height, c.grid.height);
            ASSERT_EQ(fast.bits, plain.bits)
                << c.canvasW << "x" << c.canvasH << " grid " << c.grid.width << "x" << c.grid.height
                << " variant " << variant;
        }
    }
}

TEST(LogoDither, GreyLevelsBecomeTheirShareOfDotsAndPaddingStaysBlank) {
    // A black 100 x 10 picture in a 128 x 16 grid: every dot of the picture, none of the
    // padding (which reads as the invalid colour and can never be set).
    const Raster black = DitherToRaster(testpics::Filled(100, 10, 0), {128, 16});
    EXPECT_EQ(CountBlack(black), 100 * 10);
    EXPECT_TRUE(Bit(black, 99, 9));
    EXPECT_FALSE(Bit(black, 100, 9));
    EXPECT_FALSE(Bit(black, 0, 10));

    const Raster white = DitherToRaster(testpics::Filled(64, 64, 0xFFFFFF), {64, 64});
    EXPECT_EQ(CountBlack(white), 0);

    for (std::uint8_t level : {64, 128, 192}) {
        const Raster r =
            DitherToRaster(testpics::Filled(128, 128, RgbPixel(level, level, level)), {128, 128});
        const double darkness = 1.0 - GreyValue(RgbPixel(level, level, level));
        EXPECT_NEAR(CountBlack(r) / (128.0 * 128.0), darkness, 0.02) << int(level);
    }
}

TEST(LogoBands, TopRowOfEachBandLandsInBitZeroAndTheBandsRoundTrip) {
    Raster rows{16, 16, Bytes(32, 0)};
    rows.bits[0] = 0x80;          // (0, 0): band 0, column 0, bit 0
    rows.bits[7 * 2 + 1] = 0x01;  // (15, 7): band 0, column 15, bit 7
    rows.bits[8 * 2] = 0x40;      // (1, 8): band 1, column 1, bit 0
    const Bytes bands = RegroupToColumnBands(rows);
    ASSERT_EQ(bands.size(), 32u);
    Bytes expected(32, 0);
    expected[0] = 0x01;
    expected[15] = 0x80;
    expected[16 + 1] = 0x01;
    EXPECT_EQ(bands, expected);

    std::mt19937 rng(7);
    Raster random{472, 40, Bytes(472 / 8 * 40)};
    for (auto& b : random.bits) b = static_cast<std::uint8_t>(rng());
    const auto back = ColumnBandsToRows(RegroupToColumnBands(random), 472, 40);
    ASSERT_TRUE(back);
    EXPECT_EQ(back->bits, random.bits);
    EXPECT_TRUE(RegroupToColumnBands(Raster{472, 36, Bytes(472 / 8 * 36)}).empty());
}

TEST(PictureStretch, ShrinkAndsEachBlockAndEnlargeRepeats) {
    DecodedPicture p;
    p.colours = RgbCanvas(3, 1);
    p.colours.pixels = {0xF0F0F0, 0x3C3C3C, 0x0F0F0F};
    RgbCanvas two(2, 1);
    ASSERT_TRUE(StretchPicture(p, two, 0, 0, 2, 1));
    EXPECT_EQ(two.pixels, (std::vector<std::uint32_t>{0xF0F0F0 & 0x3C3C3C, 0x0F0F0F}));

    RgbCanvas one(1, 1);  // one column: the last source column is left out
    ASSERT_TRUE(StretchPicture(p, one, 0, 0, 1, 1));
    EXPECT_EQ(one.pixels[0], 0xF0F0F0u & 0x3C3C3Cu);

    DecodedPicture q;
    q.colours = RgbCanvas(2, 2);
    q.colours.pixels = {1, 2, 3, 4};
    RgbCanvas big(3, 3);
    ASSERT_TRUE(StretchPicture(q, big, 0, 0, 3, 3));
    EXPECT_EQ(big.pixels, (std::vector<std::uint32_t>{1, 1, 2, 1, 1, 2, 3, 3, 4}));

    // Drawn partly outside the canvas: the rest is cut off, the canvas around stays.
    RgbCanvas shifted(3, 3);
    ASSERT_TRUE(StretchPicture(q, shifted, 2, 1, 2, 2));
    EXPECT_EQ(shifted.pixels, (std::vector<std::uint32_t>{0, 0, 0, 0, 0, 1, 0, 0, 3}));
    EXPECT_FALSE(StretchPicture(q, shifted, 0, 0, 0, 2));

    // Every source pixel lands in exactly one destination pixel of a shrink.
    for (int src = 1; src <= 40; ++src) {
        for (int dst = 1; dst <= src; ++dst) {
            const StretchSteps s = StretchStepsFor(dst, src);
            int d = 0, err = s.errStart;
            for (int i = 0; i < s.length; ++i) {
                ASSERT_LT(d, dst) << src << "->" << dst;
                if (err > 0) {
                    ++d;
                    err += s.errAdd1;
                } else {
                    err += s.errAdd2;
                }
            }
            EXPECT_EQ(d, dst) << src << "->" << dst;
        }
    }
}

class PictureFiles : public ::testing::Test {
  protected:
    void SetUp() override {
        SetTraceTarget(&files, &clock, {u"marker", u"out"});
        files.Put(u"marker", {});
    }
    void TearDown() override { SetTraceTarget(nullptr, nullptr); }

    std::optional<Raster> Convert(Bytes file, LogoLimits limits, bool scale) {
        files.Put(u"C:\\pic", std::move(file));
        return ConvertPictureToRaster(files, pictures, limits, scale, u"C:\\pic");
    }

    MemoryFileSystem files;
    ManualClock clock;
    NativePictures pictures;
};

TEST_F(PictureFiles, ScaledPortraitLeavesTheUndrawnColumnsOfItsBitmapBlack) {
    // 300 x 3000 white, scaled to 204 x 2040 inside a bitmap of 300 x 3000 that starts black:
    // the grid's columns 204 to 223 lie in the bitmap but outside the picture.
    const auto raster =
        Convert(testpics::Bmp24(testpics::Filled(300, 3000, 0xFFFFFF)), kFull, true);
    ASSERT_TRUE(raster);
    EXPECT_EQ(raster->width, 224);
    EXPECT_EQ(raster->height, 2040);
    EXPECT_EQ(CountBlack(*raster), 20 * 2040);
    EXPECT_FALSE(Bit(*raster, 203, 100));
    EXPECT_TRUE(Bit(*raster, 204, 100));
}

TEST_F(PictureFiles, NarrowFormKeepsTheTopRowsOfATallScaledPicture) {
    // 944 x 848: landscape, width 472, height 424 cropped to 40; the first 60 rows black.
    const auto picture =
        testpics::Painted(944, 848, [](int, int y) { return y < 60 ? 0u : 0xFFFFFFu; });
    const auto raster = Convert(testpics::Bmp24(picture), kNarrow, true);
    ASSERT_TRUE(raster);
    EXPECT_EQ(raster->width, 472);
    EXPECT_EQ(raster->height, 40);
    EXPECT_EQ(CountBlack(*raster), 472 * 30);  // halved: rows 0..29
}

TEST_F(PictureFiles, TransparentPixelsAreNotDrawnAndStayBlack) {
    RgbCanvas white = testpics::Filled(16, 8, 0xFFFFFF);
    std::vector<std::uint8_t> alpha(white.pixels.size(), 255);
    for (int x = 0; x < 8; ++x) alpha[static_cast<std::size_t>(x)] = 0;  // left half of row 0
    const auto raster = Convert(EncodePng(white, &alpha), kFull, false);
    ASSERT_TRUE(raster);
    EXPECT_EQ(CountBlack(*raster), 8);
    EXPECT_TRUE(Bit(*raster, 7, 0));
    EXPECT_FALSE(Bit(*raster, 8, 0));
    // A bitmap file's fourth byte is not transparency.
    const auto bmp = Convert(testpics::Bmp32(white, alpha), kFull, false);
    ASSERT_TRUE(bmp);
    EXPECT_EQ(CountBlack(*bmp), 0);
}

TEST_F(PictureFiles, MeasuredSizeIsThePixelSizeThroughHimetric) {
    for (int w : {1, 95, 96, 97, 577, 2041}) {
        files.Put(u"C:\\pic", testpics::Bmp24(testpics::Filled(w, 3, 0)));
        PixelSize size;
        ASSERT_TRUE(LoadPictureFile(files, pictures, u"C:\\pic", nullptr, 0, 0, 0, 0, size));
        EXPECT_EQ(size, (PixelSize{w, 3}));
    }
    EXPECT_EQ(MulDiv(5, 3, 2), 8);  // 7.5 rounds away from zero
    EXPECT_EQ(MulDiv(-5, 3, 2), -8);
    EXPECT_EQ(MulDiv(5, 3, 0), -1);
}

// The pixels each decoder gives at the picture's own size (transparent ones stay black).
RgbCanvas Decoded(Pictures& pictures, const Bytes& file) {
    auto picture = pictures.Load(file);
    if (!picture)
        return {};
    RgbCanvas c(MulDiv(picture->HimetricWidth(), 96, 2540),
                MulDiv(picture->HimetricHeight(), 96, 2540));
    picture->Render(c, 0, 0, c.width, c.height);
    return c;
}

TEST_F(PictureFiles, EveryDecoderGivesTheFilesPixelsAndOversizedHeadersAreRefusedUnread) {
    const RgbCanvas photo = testpics::PhotoLike(37, 23, 5);
    EXPECT_EQ(Decoded(pictures, testpics::Bmp24(photo)).pixels, photo.pixels);
    EXPECT_EQ(Decoded(pictures, EncodePng(photo)).pixels, photo.pixels);
    std::vector<std::uint8_t> alpha(photo.pixels.size());
    RgbCanvas holes = photo;
    for (std::size_t i = 0; i < alpha.size(); ++i) {
        alpha[i] = static_cast<std::uint8_t>(i * 37);
        if (alpha[i] < 0x80)
            holes.pixels[i] = 0;
    }
    EXPECT_EQ(Decoded(pictures, EncodePng(photo, &alpha)).pixels, holes.pixels);
    EXPECT_EQ(Decoded(pictures, testpics::StoredPng(photo, &alpha)).pixels, holes.pixels);

    // A 4-bit top-down bitmap with its colour table, and 16-bit 5-5-5 pixels widened.
    Bytes four = testpics::BmpHeader(3, -2, 4, 8);
    WriteU32(four, 10, 54 + 64);
    for (std::uint8_t i = 0; i < 16; ++i) AppendBytes(four, Bytes{i, 0x40, static_cast<std::uint8_t>(i * 16), 0});
    AppendBytes(four, Bytes{0x12, 0x30, 0, 0, 0xF0, 0x70, 0, 0});
    const auto entry = [](std::uint32_t i) { return RgbPixel(static_cast<std::uint8_t>(i * 16), 0x40, static_cast<std::uint8_t>(i)); };
    EXPECT_EQ(Decoded(pictures, four).pixels,
              (std::vector<std::uint32_t>{entry(1), entry(2), entry(3), entry(15), entry(0), entry(7)}));
    Bytes sixteen = testpics::BmpHeader(2, 1, 16, 4);
    AppendBytes(sixteen, Bytes{0xFF, 0x7F, 0x10, 0x42});
    EXPECT_EQ(Decoded(pictures, sixteen).pixels, (std::vector<std::uint32_t>{0xFFFFFF, 0x848484}));

    // GIF: indices through the table, the transparent index left out.
    const std::vector<std::uint8_t> indices = {0, 1, 2, 1, 0, 0, 2, 2};
    const auto gif = Decoded(pictures, testpics::Gif(4, 2, {0x102030, 0xA0B0C0, 0xFFFFFF}, indices, 2));
    EXPECT_EQ(gif.pixels, (std::vector<std::uint32_t>{0x102030, 0xA0B0C0, 0, 0xA0B0C0, 0x102030,
                                                      0x102030, 0, 0}));

    // JPEG: lossy, close to a smooth source.
    const RgbCanvas smooth = testpics::Painted(48, 32, [](int x, int y) { return RgbPixel(x * 5, y * 7, 128); });
    const RgbCanvas jpeg = Decoded(pictures, EncodeJpeg(smooth, 95));
    ASSERT_EQ(jpeg.pixels.size(), smooth.pixels.size());
    for (std::size_t i = 0; i < jpeg.pixels.size(); ++i)
        for (int shift : {0, 8, 16})
            ASSERT_LE(std::abs(int(jpeg.pixels[i] >> shift & 255) - int(smooth.pixels[i] >> shift & 255)), 12) << i;

    // Headers claiming 4800 x 4000 pixels (over 16 largest logos) are refused by every decoder.
    auto big16 = [](Bytes f, std::size_t at, bool bigEndian) {  // JPEG: height first
        for (std::size_t k = 0; k < 2; ++k) {
            const std::uint16_t v = (k == 1) == bigEndian ? 4800 : 4000;
            f[at + 2 * k] = static_cast<std::uint8_t>(bigEndian ? v >> 8 : v);
            f[at + 2 * k + 1] = static_cast<std::uint8_t>(bigEndian ? v : v >> 8);
        }
        return f;
    };
    Bytes png = EncodePng(photo);
    std::fill(png.begin() + 16, png.begin() + 24, 0);
    png[18] = 4800 >> 8, png[19] = 4800 & 255, png[22] = 4000 >> 8, png[23] = 4000 & 255;
    const std::uint32_t crc = Crc32(ByteSpan(png).subspan(12, 17));
    for (int k = 0; k < 4; ++k) png[29 + k] = static_cast<std::uint8_t>(crc >> (24 - 8 * k));
    Bytes jpegFile = EncodeJpeg(smooth, 95);
    std::size_t sof = 2;  // the frame header: length, precision, height, width
    while (sof + 1 < jpegFile.size() && !(jpegFile[sof] == 0xFF && jpegFile[sof + 1] == 0xC0)) ++sof;
    Bytes bmp = testpics::Bmp24(photo);
    WriteU32(bmp, 18, 4800);
    WriteU32(bmp, 22, 4000);
    for (const Bytes& file : {png, big16(jpegFile, sof + 5, true),
                              big16(testpics::Gif(1, 1, {0}, {0}), 6, false), bmp}) {
        EXPECT_FALSE(pictures.Load(file));
        EXPECT_NE(pictures.LastRefusal().find(u"4800 x 4000 pixels refused"), std::u16string::npos)
            << std::string(pictures.LastRefusal().begin(), pictures.LastRefusal().end());
    }
}

TEST_F(PictureFiles, BadFilesFailWithATraceAndNeverReadOutside) {
    const Bytes good = EncodePng(testpics::PhotoLike(40, 30, 3));
    const Bytes bmp = testpics::Bmp24(testpics::PhotoLike(40, 30, 4));
    std::vector<Bytes> bad = {
        {},                                      // empty
        Bytes(1000, 0x41),                       // not a picture
        Bytes(good.begin(), good.begin() + 60),  // truncated PNG
        Bytes(bmp.begin(), bmp.begin() + 30),    // truncated bitmap header
        {'B', 'M'},
    };
    // A bitmap header claiming 100000 x 100000 pixels.
    Bytes huge = bmp;
    WriteU32(huge, 18, 100000);
    WriteU32(huge, 22, 100000);
    bad.push_back(huge);
    // A header of width 0.
    Bytes zero = bmp;
    WriteU32(zero, 18, 0);
    bad.push_back(zero);
    // A JPEG Huffman table with more than 256 codes (past the file's end, read as zeros).
    bad.push_back({0xFF, 0xD8, 0xFF, 0xC4, 0x01, 0xA2, 0x00, 0x00, 0x01, 0x05, 0x01, 0x01, 0xAE,
                   0x0F, 0x00, 0xD9});
    // Rows beyond the end of the file.
    Bytes cut = bmp;
    cut.resize(bmp.size() - 1);
    bad.push_back(cut);
    for (std::size_t i = 0; i < bad.size(); ++i) {
        files.Put(u"out", {});
        EXPECT_FALSE(Convert(bad[i], kFull, true)) << i;
        EXPECT_FALSE(TraceMessages(files).empty()) << i;
    }
    EXPECT_FALSE(ConvertPictureToRaster(files, pictures, kFull, true, u"C:\\missing"));

    // An empty image-data chunk adds nothing to a PNG.
    const std::ptrdiff_t idat =
        std::search(good.begin(), good.end(), std::begin("IDAT"), std::begin("IDAT") + 4) -
        good.begin() - 4;  // the first image-data chunk's length
    Bytes padded(good.begin(), good.begin() + idat);
    const Bytes emptyChunk = {0, 0, 0, 0, 'I', 'D', 'A', 'T', 0x35, 0xAF, 0x06, 0x1E};
    AppendBytes(padded, emptyChunk);
    padded.insert(padded.end(), good.begin() + idat, good.end());
    const auto plain = Convert(good, kFull, true);
    const auto withEmpty = Convert(padded, kFull, true);
    ASSERT_TRUE(plain && withEmpty);
    EXPECT_EQ(withEmpty->bits, plain->bits);

    // One pixel converts, scaled or not; a picture too thin to keep a row when scaled fails.
    EXPECT_TRUE(Convert(testpics::Bmp24(testpics::Filled(1, 1, 0)), kFull, true));
    EXPECT_TRUE(Convert(testpics::Bmp24(testpics::Filled(1, 1, 0)), kNarrow, false));
    EXPECT_FALSE(Convert(testpics::Bmp24(testpics::Filled(3000, 1, 0)), kFull, true));
    // Far beyond the limits without scaling: cropped, not refused.
    const auto wide = Convert(testpics::Bmp24(testpics::Filled(5000, 3, 0)), kFull, false);
    ASSERT_TRUE(wide);
    EXPECT_EQ(wide->width, 576);
}

}  // namespace
}  // namespace kx20::logos
