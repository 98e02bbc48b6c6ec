#include "fonts/fon_file.h"

#include <gtest/gtest.h>

#include "font_file_generators.h"
#include "platform/memory/memory_files.h"
#include "platform/text.h"

namespace kx20::fonts {
namespace {

using testfiles::FonFile;
using testfiles::TagRecord;

bool HasNote(const TraceNotes& notes, std::u16string_view text) {
    for (const auto& n : notes)
        if (n == text)
            return true;
    return false;
}

TEST(FonMetaData, ReadsTheThirteenRecordsAndMapsThePrcCodePage) {
    FonFile f;
    f.codePage = 1381;
    f.vectors = {{{0x81, 0xA0}, {0xB0, 0xB1}, {0xE0, 0xFE}}};
    f.thermalWidth = 0;
    f.sbcsSpacing = 8;
    FONMetaData meta;
    meta.thermalWidth = 99;  // a field the file sets is overwritten
    TraceNotes notes;
    ASSERT_TRUE(ReadFONMetaData(f.Build(), meta, &notes));
    EXPECT_EQ(meta.codePage, 936);
    EXPECT_EQ(meta.thermalWidth, 0);
    EXPECT_EQ(meta.impactHeight, 16);
    EXPECT_EQ(meta.sbcsSpacing, 8);
    EXPECT_EQ(meta.dbcsMatrix, 1);
    EXPECT_EQ(meta.vectors[1].first, 0xB0);
    EXPECT_EQ(meta.vectors[2].last, 0xFE);
    // The trace shows the file's value and the creation date one character a line.
    EXPECT_TRUE(HasNote(notes, u"GetFONFileMetaData - CODEPAGE(1381)\n"));
    EXPECT_TRUE(HasNote(notes, u"GetFONFileMetaData - CREATEDATE(5)\n"));
    EXPECT_TRUE(HasNote(notes, u"GetFONFileMetaData - DBCS_VECTOR(0xb0,0xb1)\n"));

    f.codePage = 950;
    ASSERT_TRUE(ReadFONMetaData(f.Build(), meta));
    EXPECT_EQ(meta.codePage, 950);
}

TEST(FonMetaData, EveryValueIsCheckedAtItsBoundary) {
    struct Case {
        std::uint16_t FonFile::*field;
        std::uint16_t ok, bad;
        const char16_t* badNote;
    };
    const Case cases[] = {
        {&FonFile::thermalWidth, 24, 25,
         u"GetFONFileMetaData - Invalid THERMAL_WIDTH value - 25!\n"},
        {&FonFile::thermalHeight, 24, 25,
         u"GetFONFileMetaData - Invalid THERMAL_HEIGHT value - 25!\n"},
        {&FonFile::impactWidth, 16, 17, u"GetFONFileMetaData - Invalid IMPACT_WIDTH value - 17!\n"},
        {&FonFile::impactHeight, 16, 17,
         u"GetFONFileMetaData - Invalid IMPACT_HEIGHT value - 17!\n"},
        {&FonFile::dbcsSpacing, 32, 33, u"GetFONFileMetaData - Invalid DBCS_SPACING value - 33!\n"},
        {&FonFile::sbcsSpacing, 8, 9, u"GetFONFileMetaData - Invalid SBCS_SPACING value - 9!\n"},
        {&FonFile::dbcsMatrix, 1, 2, u"GetFONFileMetaData - Invalid DBCS_MATRIX value - 2!\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(Utf16ToUtf8(c.badNote));
        FonFile f;
        FONMetaData meta;
        f.*c.field = c.ok;
        EXPECT_TRUE(ReadFONMetaData(f.Build(), meta));
        f.*c.field = c.bad;
        TraceNotes notes;
        EXPECT_FALSE(ReadFONMetaData(f.Build(), meta, &notes));
        EXPECT_TRUE(HasNote(notes, c.badNote));
    }
}

TEST(FonMetaData, ForeignRecordsAmongTheFirstThirteenMakeTheFileInvalid) {
    // Every problem is traced in one pass: the walk goes on after each.
    FonFile f;
    f.thermalWidth = 30;
    f.dbcsMatrix = 7;
    TraceNotes notes;
    FONMetaData meta;
    EXPECT_FALSE(ReadFONMetaData(f.Build(), meta, &notes));
    EXPECT_TRUE(HasNote(notes, u"GetFONFileMetaData - Invalid THERMAL_WIDTH value - 30!\n"));
    EXPECT_TRUE(HasNote(notes, u"GetFONFileMetaData - Invalid DBCS_MATRIX value - 7!\n"));

    for (std::uint16_t tag : {238, 245, 246, 254, 233, 300}) {
        SCOPED_TRACE(tag);
        Bytes file;
        auto records = FonFile().Metadata();
        records[5] = TagRecord(tag, {1, 0});  // in place of VERSION_INFO, values all in range
        for (const auto& r : records) AppendBytes(file, r);
        EXPECT_FALSE(ReadFONMetaData(file, meta));
    }

    // A fourth lead-byte range.
    auto records = FonFile().Metadata();
    records[5] = TagRecord(0xED, {0x90, 0x91});
    Bytes file;
    for (const auto& r : records) AppendBytes(file, r);
    notes.clear();
    EXPECT_FALSE(ReadFONMetaData(file, meta, &notes));
    EXPECT_TRUE(HasNote(notes, u"GetFONFileMetaData - Invalide DBCS Vector Count!\n"));

    // A metadata record with more than 6 data bytes is refused; the next record is still read.
    records = FonFile().Metadata();
    records[1] = TagRecord(0xEA, Bytes(7, '2'));
    records[4] = TagRecord(0xEF, {25, 0});
    file.clear();
    for (const auto& r : records) AppendBytes(file, r);
    notes.clear();
    EXPECT_FALSE(ReadFONMetaData(file, meta, &notes));
    EXPECT_TRUE(HasNote(notes, u"GetFONFileMetaData - Invalid THERMAL_WIDTH value - 25!\n"));
}

TEST(FonMetaData, ShortFilesStopTheWalk) {
    const Bytes whole = FonFile().Build();
    TraceNotes notes;
    FONMetaData meta;
    EXPECT_FALSE(ReadFONMetaData(ByteSpan(whole).first(3), meta, &notes));
    EXPECT_EQ(notes.back(), u"GetFONFileMetaData - Get tempRec Fail, LastError():0\n");
    // The header of the first record whole, its data cut.
    EXPECT_FALSE(ReadFONMetaData(ByteSpan(whole).first(5), meta, &notes));
    EXPECT_EQ(notes.back(), u"GetFONFileMetaData - Get metadata Fail, LastError():0\n");

    MemoryFileSystem fs;
    EXPECT_FALSE(GetFONFileMetaData(fs, u"C:\\none.fon", meta, &notes));
    EXPECT_EQ(notes.back().rfind(u"GetFONFileMetaData - CreateFile failed, GetLastError():", 0),
              0u);
}

TEST(FonCharacters, ListsKeepFileOrderAndCountGlyphsPerStation) {
    FonFile f;
    f.Dbcs(0x81, 0x40).Sbcs('A', true, false).Dbcs(0x81, 0x41, true, false);
    f.body.push_back(TagRecord(0x10, {1, 2, 3}));  // any other record is stepped over
    f.Sbcs('B', false, true).Dbcs(0x82, 0x40, false, true);
    FONCharacters chars;
    TraceNotes notes;
    ASSERT_TRUE(ReadFONCharacters(f.Build(), chars, &notes));
    ASSERT_EQ(chars.dbcs.size(), 3u);
    ASSERT_EQ(chars.sbcs.size(), 2u);
    EXPECT_EQ(chars.dbcs[1][kCharLead], 0x81);
    EXPECT_EQ(chars.dbcs[1][kCharSecond], 0x41);
    EXPECT_EQ(chars.dbcs[2][kCharLead], 0x82);
    EXPECT_EQ(chars.sbcs[1][kCharSecond], 'B');
    EXPECT_EQ(chars.dbcs[0][kCharThermalGlyph], testfiles::GlyphByte(0x8140, 0, 0x10));
    EXPECT_EQ(chars.dbcsThermalCount, 2u);
    EXPECT_EQ(chars.dbcsImpactCount, 2u);
    EXPECT_EQ(chars.sbcsThermalCount, 1u);
    EXPECT_EQ(chars.sbcsImpactCount, 1u);
    EXPECT_TRUE(HasNote(notes, u"ParseFONFile - DBCSCharCount:3\n"));

    // No single-byte record: no list, no count, no count line.
    FonFile onlyDbcs;
    onlyDbcs.Dbcs(0x81, 0x40);
    notes.clear();
    ASSERT_TRUE(ReadFONCharacters(onlyDbcs.Build(), chars, &notes));
    EXPECT_TRUE(chars.sbcs.empty());
    EXPECT_EQ(chars.sbcsThermalCount + chars.sbcsImpactCount, 0u);
    EXPECT_FALSE(HasNote(notes, u"ParseFONFile - SBCSCharCount:0\n"));
}

TEST(FonCharacters, RecordsOutsideTheFormatFailTheParseAndLeaveTheResultAlone) {
    FONCharacters chars;
    chars.dbcsThermalCount = 77;
    auto failsWith = [&](const Bytes& file, std::u16string_view note) {
        TraceNotes notes;
        EXPECT_FALSE(ReadFONCharacters(file, chars, &notes));
        EXPECT_EQ(chars.dbcsThermalCount, 77u);
        EXPECT_TRUE(HasNote(notes, note)) << Utf16ToUtf8(notes.empty() ? u"" : notes.back());
    };
    FonFile big;
    big.body.push_back(TagRecord(0xF5, Bytes(113, 1)));
    failsWith(big.Build(), u"ParseFONFile - DBCS character record of 113 bytes, over 112!\n");

    FonFile longGlyph;
    longGlyph.Sbcs('A', true, false, 73);
    failsWith(longGlyph.Build(),
              u"ParseFONFile - SBCS char 0x41: thermal glyph of 73 bytes, over 72!\n");

    Bytes noEnd = FonFile().Dbcs(0x81, 0x40).Build();
    noEnd.resize(noEnd.size() - 4);
    failsWith(noEnd, u"ParseFONFile(counting the chars) - Get tempRec Failed. LastError():0\n");

    // A record whose data runs past the end hides the end record from the counting walk.
    Bytes cut = FonFile().Dbcs(0x81, 0x40).Build();
    cut.resize(cut.size() - 4 - 50);
    cut.insert(cut.end(), {0xFE, 0, 0, 0});
    failsWith(cut, u"ParseFONFile(counting the chars) - Get tempRec Failed. LastError():0\n");

    failsWith(testfiles::LargeFonFile(14000, 1001).Build(),
              u"ParseFONFile - more than 15000 characters!\n");
    EXPECT_TRUE(ReadFONCharacters(testfiles::LargeFonFile(14000, 1000).Build(), chars));
    EXPECT_EQ(chars.dbcs.size() + chars.sbcs.size(), 15000u);
}

TEST(FonCharacters, FileErrorsAreTraced) {
    MemoryFileSystem fs;
    FONCharacters chars;
    TraceNotes notes;
    EXPECT_FALSE(ParseFONFile(fs, u"C:\\fonts\\none.fon", chars, &notes));
    EXPECT_EQ(notes, TraceNotes{u"ParseFONFile - CreateFile Failed\n"});
    fs.Put(u"C:\\fonts\\f.fon", FonFile().Dbcs(0x81, 0x40).Build());
    notes.clear();
    EXPECT_TRUE(ParseFONFile(fs, u"C:\\fonts\\f.fon", chars, &notes));
    EXPECT_EQ(notes.back(), u"ParseFONFile - Return 1\n");
}

}  // namespace
}  // namespace kx20::fonts
