#include "fonts/fnt_file.h"

#include <gtest/gtest.h>

#include <random>

#include "device_page_fixture.h"
#include "font_file_generators.h"
#include "fonts/fon_file.h"

namespace kx20::fonts {
namespace {

using testfiles::FntFile;

// A 16-dot glyph of `rows` rows, stored bottom row first, with the dots given as (row from the
// top, column).
Bytes NarrowGlyph(std::uint32_t rows, std::initializer_list<std::pair<int, int>> dots) {
    Bytes g(std::size_t{rows} * 4, 0);
    for (auto [row, col] : dots) {
        const std::size_t cell = std::size_t{rows - 1 - static_cast<std::uint32_t>(row)} * 4;
        g[cell + static_cast<std::size_t>(col / 8)] |= static_cast<std::uint8_t>(0x80 >> (col % 8));
    }
    return g;
}

TEST(FntFileCheck, MagicRegionMarkAndDotSizeDecide) {
    const Bytes thermal = FntFile{}.Build(4);
    EXPECT_TRUE(CheckFntFile(thermal, u"c:\\fonts\\jpn24.bin", true));
    EXPECT_FALSE(CheckFntFile(thermal, u"c:\\fonts\\jpn24.bin", false));
    EXPECT_FALSE(CheckFntFile(thermal, u"c:\\fonts\\font24.bin", true));  // no region mark
    FntFile impact;
    impact.width = 16;
    impact.height = 16;
    EXPECT_TRUE(CheckFntFile(impact.Build(4), u"C:\\Kud\\x.fnt", false));
    for (const char* magic : {"KVOPosDBCSFont\0\0", "KVOPosDBCSFontXX", "kvoposdbcsfont  "}) {
        FntFile f;
        f.magic = std::string(magic, 16);
        EXPECT_FALSE(CheckFntFile(f.Build(4), u"c:\\jpn.bin", true)) << magic;
    }
    EXPECT_FALSE(CheckFntFile(ByteSpan(thermal).first(10), u"c:\\jpn.bin", true));
}

TEST(FntFileCheck, RegionMarksAreTriedInOrderOverTheWholePath) {
    EXPECT_EQ(FindRegionMark(u"d:\\x\\kud16.fnt")->codePage, 949u);
    EXPECT_EQ(FindRegionMark(u"d:\\jpn\\prc24.fnt")->codePage, 936u);  // PRC is tried first
    EXPECT_EQ(FindRegionMark(u"d:\\roc\\a.fnt")->codePage, 950u);
    EXPECT_EQ(FindRegionMark(u"d:\\fonts\\jud.fnt")->codePage, 932u);
    EXPECT_EQ(FindRegionMark(u"d:\\fonts\\a.fnt"), nullptr);
    // Only the first 259 characters of a path are looked at.
    EXPECT_EQ(FindRegionMark(std::u16string(259, u'x') + u"jpn"), nullptr);
}

TEST(FntRecords, WalkOrderCodePageAndRowsTopFirst) {
    FntFile f;  // lead 0x88-0x89, second 0x40-0x41, 24 x 24
    f.glyph = [](std::size_t n) {
        Bytes g(96, 0);
        for (std::size_t row = 0; row < 24; ++row)  // stored bottom first: cell 0 is row 23
            g[row * 4] = static_cast<std::uint8_t>(n * 16 + (23 - row) % 16);
        return g;
    };
    std::uint32_t codePage = 7;
    std::vector<FntRecord> records;
    ASSERT_TRUE(ReadFntRecords(f.Build(4), u"c:\\fonts\\roc24.fnt", true, codePage, records));
    EXPECT_EQ(codePage, 950u);
    ASSERT_EQ(records.size(), 4u);
    const std::uint16_t expected[] = {0x8840, 0x8841, 0x8940, 0x8941};
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_EQ(records[i][kFntRecLead] << 8 | records[i][kFntRecSecond], expected[i]);
    EXPECT_EQ(ReadU32(records[3], kFntRecCodePage), 950u);
    EXPECT_EQ(ReadU32(records[3], kFntRecWidth), 24u);
    EXPECT_EQ(records[3][kFntRecVectors + 2], 0xE0);
    // Row r (from the top) of character n, its first byte, at 20 + 3r.
    EXPECT_EQ(records[2][kFntRecThermalGlyph + 0], 2 * 16 + 0);
    EXPECT_EQ(records[2][kFntRecThermalGlyph + 3 * 5], 2 * 16 + 5);
    EXPECT_EQ(records[2][kFntRecThermalGlyph + 3 * 23], 2 * 16 + 7);
    EXPECT_EQ(records[2][kFntRecThermalGlyph + 1], 0);

    // A second lead-byte range follows the first.
    f.leadRanges = {0x88, 0x88, 0x8A, 0x8B, 0, 0, 0, 0};
    ASSERT_TRUE(ReadFntRecords(f.Build(6), u"c:\\fonts\\roc24.fnt", true, codePage, records));
    ASSERT_EQ(records.size(), 6u);
    EXPECT_EQ(records[2][kFntRecLead], 0x8A);
    EXPECT_EQ(records[5][kFntRecLead], 0x8B);

    // The code page stays as given when the path has no mark.
    codePage = 7;
    ASSERT_TRUE(ReadFntRecords(f.Build(6), u"c:\\fonts\\x.fnt", true, codePage, records));
    EXPECT_EQ(codePage, 7u);
}

TEST(FntRecords, HighestCodeEndsOnlyTheCurrentSecondByteRange) {
    FntFile f;
    f.leadRanges = {0x88, 0x88, 0, 0, 0, 0, 0, 0};
    f.secondRanges = {0x40, 0x45, 0, 0, 0x30, 0x31, 0, 0};  // the empty second range is skipped
    f.highest = 0x8842;
    std::uint32_t codePage = 0;
    std::vector<FntRecord> records;
    // 3 glyphs of the first range and 2 of the last are consumed: exactly 5 are needed.
    ASSERT_TRUE(ReadFntRecords(f.Build(5), u"prc.fnt", true, codePage, records));
    std::vector<int> codes;
    for (const auto& r : records) codes.push_back(r[kFntRecLead] << 8 | r[kFntRecSecond]);
    EXPECT_EQ(codes, (std::vector<int>{0x8840, 0x8841, 0x8842, 0x8830, 0x8831}));
    EXPECT_EQ(records[4][kFntRecThermalGlyph], 5);  // the fifth glyph of the data
    EXPECT_FALSE(ReadFntRecords(f.Build(4), u"prc.fnt", true, codePage, records));
    EXPECT_TRUE(records.empty());
}

TEST(FntRecords, EmptyImpactGlyphsAreDroppedAndNineRowsAreFlagged) {
    FntFile f;
    f.width = 16;
    f.height = 9;
    f.leadRanges = {0x88, 0x88, 0, 0, 0, 0, 0, 0};
    f.secondRanges = {0x40, 0x42, 0, 0, 0, 0, 0, 0};
    f.glyph = [](std::size_t n) { return n == 1 ? Bytes(9 * 4, 0) : NarrowGlyph(9, {{8, 1}}); };
    std::uint32_t codePage = 0;
    std::vector<FntRecord> records;
    ASSERT_TRUE(ReadFntRecords(f.Build(3), u"kor.fnt", false, codePage, records));
    ASSERT_EQ(records.size(), 2u);  // the empty glyph is consumed, not kept
    EXPECT_EQ(records[1][kFntRecSecond], 0x42);
    EXPECT_EQ(ReadU16(records[0], kFntRecHeight9), 1);
    f.height = 16;
    f.glyph = [](std::size_t) { return NarrowGlyph(16, {{0, 0}}); };
    ASSERT_TRUE(ReadFntRecords(f.Build(3), u"kor.fnt", false, codePage, records));
    EXPECT_EQ(ReadU16(records[0], kFntRecHeight9), 0);
}

// The column walk bit by bit, as the impact head takes it: each column from the bottom row up,
// a new byte after 8 rows, one more byte after a column 9 rows high.
Bytes ReferenceColumns(ByteSpan stored, std::uint32_t rows) {
    Bytes out(16 * (rows / 8 + 2) + 1, 0);
    std::size_t at = 0;
    for (std::uint32_t c = 0; c < 16; ++c) {
        std::uint8_t mask = 0x80;
        for (std::uint32_t k = 0; k < rows; ++k) {  // stored row k is the k-th from the bottom
            if (stored[k * 4 + c / 8] & (0x80 >> (c % 8)))
                out[at] |= mask;
            mask >>= 1;
            if (mask == 0) {
                mask = 0x80;
                ++at;
            }
        }
        if (rows == 9)
            ++at;
    }
    out.resize(32);
    return out;
}

TEST(FntRecords, ColumnsOfEveryHeightAgreeWithTheBitByBitWalk) {
    std::mt19937 random(20240305);
    for (std::uint32_t rows = 1; rows <= kMaxNarrowGlyphRows; ++rows) {
        SCOPED_TRACE(rows);
        FntFile f;
        f.width = 16;
        f.height = rows;
        f.leadRanges = {0x88, 0x88, 0, 0, 0, 0, 0, 0};
        f.secondRanges = {0x40, 0x47, 0, 0, 0, 0, 0, 0};
        std::vector<Bytes> glyphs;
        for (int n = 0; n < 8; ++n) {
            Bytes g(rows * 4);
            for (auto& b : g) b = static_cast<std::uint8_t>(random() & random());
            g[0] |= 1;  // never a glyph without a dot
            glyphs.push_back(g);
        }
        f.glyph = [&](std::size_t n) { return glyphs[n]; };
        std::uint32_t codePage = 0;
        std::vector<FntRecord> records;
        ASSERT_TRUE(ReadFntRecords(f.Build(8), u"kor.fnt", false, codePage, records));
        ASSERT_EQ(records.size(), 8u);
        for (std::size_t n = 0; n < 8; ++n) {
            EXPECT_EQ(Bytes(records[n].begin() + kFntRecImpactGlyph,
                            records[n].begin() + kFntRecImpactGlyph + 32),
                      ReferenceColumns(glyphs[n], rows));
        }
    }
}

TEST(FntRecords, BoundsFailTheParse) {
    FntFile tall;
    tall.width = 16;
    tall.height = 33;
    std::uint32_t codePage = 0;
    std::vector<FntRecord> records;
    TraceNotes notes;
    EXPECT_FALSE(ReadFntRecords(tall.Build(4), u"jpn.fnt", false, codePage, records, &notes));
    EXPECT_EQ(notes.back(), u"ParseFNTFile - glyph height 33 over 32 rows!\n");

    FntFile many;  // 61 lead bytes x 250 second bytes: 15,250 characters
    many.leadRanges = {0x81, 0xBD, 0, 0, 0, 0, 0, 0};
    many.secondRanges = {0x01, 0xFA, 0, 0, 0, 0, 0, 0};
    EXPECT_FALSE(ReadFntRecords(many.Build(15250), u"jpn.fnt", true, codePage, records, &notes));
    EXPECT_EQ(notes.back(), u"ParseFNTFile - more than 15000 characters!\n");
    many.leadRanges = {0x81, 0xBA, 0, 0, 0, 0, 0, 0};  // 58 x 250 = 14,500
    EXPECT_TRUE(ReadFntRecords(many.Build(14500), u"jpn.fnt", true, codePage, records));
    EXPECT_EQ(records.size(), 14500u);
}

class FntValidation : public DevicePageTest {};

TEST_F(FntValidation, ModelCodeChoosesTheCheckAndTheParseValidatesFirst) {
    files.Put(u"C:\\fonts\\jpn24.bin", FntFile{}.Build(4));
    files.Put(u"C:\\fonts\\jpn.fon", testfiles::FonFile{}.Build());
    // Model 9 reads the tagged file's metadata.
    EXPECT_TRUE(ValidateDBCSFontFile(p, kPrinter, u"C:\\fonts\\jpn.fon", true));
    EXPECT_FALSE(ValidateDBCSFontFile(p, kPrinter, u"C:\\fonts\\jpn24.bin", true));
    printer.Control(u"model=2");
    EXPECT_TRUE(ValidateDBCSFontFile(p, kPrinter, u"C:\\fonts\\jpn24.bin", true));
    EXPECT_FALSE(ValidateDBCSFontFile(p, kPrinter, u"C:\\fonts\\jpn.fon", true));
    std::uint32_t codePage = 0;
    std::vector<FntRecord> records;  // the parse checks the file for the station first
    EXPECT_FALSE(ParseFNTFile(p, kPrinter, u"C:\\fonts\\jpn24.bin", false, codePage, records));

    printer.Control(u"invalidate");
    EXPECT_FALSE(ValidateDBCSFontFile(p, kPrinter, u"C:\\fonts\\jpn24.bin", true));
}

}  // namespace
}  // namespace kx20::fonts
