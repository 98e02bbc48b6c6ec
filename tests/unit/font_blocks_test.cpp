#include "fonts/font_blocks.h"

#include <gtest/gtest.h>

#include "font_file_generators.h"
#include "sim_test_blocks.h"

namespace kx20::fonts {
namespace {

using simtest::Cat;
using simtest::Cmd;

Bytes Setting(std::uint8_t p1, std::uint8_t p2, std::uint8_t p3) {
    return Cmd({0x16, p1, p2, p3});
}

CharRecord Record(std::uint8_t lead, std::uint8_t second, bool thermal, bool impact,
                  std::uint8_t thermalLen = 72, std::uint8_t impactLen = 32) {
    const Bytes data = testfiles::CharData(lead, second, thermal, thermalLen, impact, impactLen);
    CharRecord r{};
    std::copy(data.begin(), data.end(), r.begin());
    return r;
}

TEST(FontBlocks, PreAndPostSettingsByteForByte) {
    FONMetaData meta;
    meta.vectors = {{{0x81, 0xA0}, {0xB0, 0xB1}, {0xE0, 0xFE}}};
    meta.dbcsMatrix = 1;
    EXPECT_EQ(*PreFONDownloadAdminSettings(meta),
              Cat({Setting(51, 0x81, 0xA0), Setting(52, 0xB0, 0xB1), Setting(53, 0xE0, 0xFE),
                   Setting(81, 0x81, 0xA0), Setting(82, 0xB0, 0xB1), Setting(83, 0xE0, 0xFE),
                   Setting(1, 255, 1), Setting(16, 254, 0x3F)}));

    // Spacings of 0 go as 3 and 6; the wide code pages reset with 60000, the others 45000.
    meta.codePage = 950;
    Bytes post = *PostFONDownloadAdminSettings(meta, false);
    ASSERT_EQ(post.size(), kPostSettingsSize);
    EXPECT_EQ(post, Cat({Setting(0x50, 0xB6, 0x03), Setting(0x54, 0, 3), Setting(0x55, 0, 6),
                         Cmd({0x78, 0x60, 0xEA, 0, 0}), Cmd({0x00})}));
    meta.codePage = 936;
    meta.sbcsSpacing = 8;
    meta.dbcsSpacing = 32;
    post = *PostFONDownloadAdminSettings(meta, true);
    EXPECT_EQ(post, Cat({Setting(0x50, 0xA8, 0x03), Setting(0x54, 0, 8), Setting(0x55, 0, 32),
                         Cmd({0x7A, 0x60, 0xEA, 0, 0}), Cmd({0x00})}));
}

TEST(FontBlocks, DoubleByteGroupsHoldAtMost255Characters) {
    std::vector<CharRecord> list;
    for (int i = 0; i < 256; ++i)
        list.push_back(Record(static_cast<std::uint8_t>(0x81 + i / 200),
                              static_cast<std::uint8_t>(0x40 + i % 200), true, i != 5));
    Bytes thermal = *PrepDBCSFONFontsForPrinter(list, 256, true);
    ASSERT_EQ(thermal.size(), 18u * 2 + 256u * 74);
    EXPECT_EQ(Bytes(thermal.begin(), thermal.begin() + 18), Cmd({0x14, 0x00, 255}));
    const std::size_t second = 18 + 255 * 74;
    EXPECT_EQ(Bytes(thermal.begin() + second, thermal.begin() + second + 18), Cmd({0x14, 0x00, 1}));
    EXPECT_EQ(thermal[second + 18], 0x82);  // the 256th character: lead, second, glyph
    EXPECT_EQ(thermal[second + 19], 0x40 + 55);
    EXPECT_EQ(Bytes(thermal.begin() + second + 20, thermal.end()),
              Bytes(list[255].begin() + 8, list[255].begin() + 80));

    // Impact: the characters that have an impact glyph (all but one), 32 glyph bytes each.
    Bytes impact = *PrepDBCSFONFontsForPrinter(list, 255, false);
    ASSERT_EQ(impact.size(), 18u + 255u * 34);
    EXPECT_EQ(impact[17], 255);
    EXPECT_EQ(impact[15 + 1], 0x01);
    EXPECT_EQ(impact[18 + 5 * 34 + 1], 0x40 + 6);  // the record without an impact glyph is left out
    EXPECT_EQ(Bytes(impact.begin() + 20, impact.begin() + 52),
              Bytes(list[0].begin() + 80, list[0].end()));
    EXPECT_TRUE(PrepDBCSFONFontsForPrinter(list, 0, true)->empty());
}

TEST(FontBlocks, SingleByteCharactersCarryTheirOwnGlyphLengths) {
    FONMetaData meta;  // sizes 0: the defaults
    std::vector<CharRecord> list = {Record(0, 'A', true, true, 48, 32),
                                    Record(0, 'B', false, true, 0, 16),
                                    Record(0, 'C', true, false, 48, 0)};
    Bytes thermal = *PrepSBCSFONFontsForPrinter(meta, list, 2, true);
    EXPECT_EQ(thermal,
              Cat({Setting(0x02, 24, 24), Cmd({0x12, 0x01, 'A', 'A'}),
                   Bytes(list[0].begin() + 8, list[0].begin() + 56), Cmd({0x12, 0x01, 'C', 'C'}),
                   Bytes(list[2].begin() + 8, list[2].begin() + 56)}));
    EXPECT_EQ(thermal.size(), 19u + 2 * (19 + 48));
    meta.impactWidth = 12;
    Bytes impact = *PrepSBCSFONFontsForPrinter(meta, list, 2, false);
    EXPECT_EQ(impact, Cat({Setting(0x04, 12, 16), Cmd({0x12, 0x05, 'A', 'A'}),
                           Bytes(list[0].begin() + 80, list[0].end()), Cmd({0x12, 0x05, 'B', 'B'}),
                           Bytes(list[1].begin() + 80, list[1].begin() + 96)}));
    EXPECT_TRUE(PrepSBCSFONFontsForPrinter(meta, list, 0, false)->empty());
}

TEST(FontBlocks, HeaderedBlockForEachStation) {
    std::vector<FntRecord> records(256);
    for (std::size_t i = 0; i < records.size(); ++i) {
        FntRecord& r = records[i];
        WriteU32(r, kFntRecCodePage, 949);
        WriteU16(r, kFntRecHeight9, 1);
        r[kFntRecLead] = 0xB0;
        r[kFntRecSecond] = static_cast<std::uint8_t>(i);
        for (std::size_t b = 0; b < 8; ++b)
            r[kFntRecVectors + b] = static_cast<std::uint8_t>(0xA0 + b);
        r[kFntRecThermalGlyph] = 0x11;
        r[kFntRecImpactGlyph] = 0x22;
    }
    const Bytes ranges =
        Cat({Setting(0x33, 0xA0, 0xA1), Setting(0x34, 0xA2, 0xA3), Setting(0x35, 0xA4, 0xA5),
             Setting(0x51, 0xA0, 0xA1), Setting(0x52, 0xA2, 0xA3), Setting(0x53, 0xA4, 0xA5)});
    const Bytes tail = Cat({Setting(0x50, 0xB5, 0x03), Cmd({0x07}), Cmd({0x00})});
    Bytes thermal = BuildFNTDownloadBlock(records, true, false);
    ASSERT_EQ(thermal.size(), 114u + 18 * 2 + 256 * 74 + 19 + 16 + 16);
    EXPECT_EQ(Bytes(thermal.begin(), thermal.begin() + 114), ranges);
    EXPECT_EQ(Bytes(thermal.begin() + 114, thermal.begin() + 132), Cmd({0x14, 0x00, 255}));
    EXPECT_EQ(thermal[132 + 2], 0x11);
    EXPECT_EQ(Bytes(thermal.end() - 51, thermal.end()), tail);

    records.resize(3);
    Bytes impact = BuildFNTDownloadBlock(records, false, true);
    ASSERT_EQ(impact.size(), 114u + 19 + 18 + 3 * 34 + 19 + 16 + 16);
    EXPECT_EQ(Bytes(impact.begin() + 114, impact.begin() + 133), Setting(0x01, 0xFF, 1));
    EXPECT_EQ(Bytes(impact.begin() + 133, impact.begin() + 151), Cmd({0x14, 0x01, 3}));
    EXPECT_EQ(impact[151 + 2], 0x22);
    EXPECT_EQ(Bytes(impact.end() - 32, impact.end() - 16), Cmd({0x05}));
}

}  // namespace
}  // namespace kx20::fonts
