// The headered double-byte font file (printers of every model code but 9): a 64-byte header
// that opens with the magic "KVOPosDBCSFont  ", then one glyph per character in the order of
// the header's lead-byte and second-byte ranges. Its code page follows from a region mark in
// the file's name. The parse turns every glyph into a 132-byte character record ready for
// download: thermal glyphs as rows top first, impact glyphs turned into columns.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/trace_notes.h"
#include "platform/bytes.h"
#include "platform/platform.h"

namespace kx20::fonts {

inline constexpr std::string_view kFntMagic = "KVOPosDBCSFont  ";  // 16 bytes, no terminator
inline constexpr std::size_t kFntHeaderSize = 64;
inline constexpr std::size_t kFntHighestCode = 22;   // u16 lead * 256 + second
inline constexpr std::size_t kFntWidth = 24;         // u32 dots: 24 thermal, 16 impact
inline constexpr std::size_t kFntHeight = 28;        // u32 rows
inline constexpr std::size_t kFntVectors = 32;       // four (first, last) lead-byte ranges
inline constexpr std::size_t kFntLeadRanges = 48;    // four (first, last); first 0 ends the list
inline constexpr std::size_t kFntSecondRanges = 56;  // four (first, last); first 0 is skipped
inline constexpr std::uint32_t kThermalDots = 24;
inline constexpr std::uint32_t kImpactDots = 16;
// A 24-dot glyph has 24 rows; a 16-dot glyph as many rows as the header's height says, at most
// this many (more would not fit the record's glyph fields).
inline constexpr std::uint32_t kMaxNarrowGlyphRows = 32;

// Character record of a headered font.
inline constexpr std::size_t kFntRecordSize = 132;
inline constexpr std::size_t kFntRecCodePage = 4;
inline constexpr std::size_t kFntRecWidth = 8;
inline constexpr std::size_t kFntRecHeight = 12;
inline constexpr std::size_t kFntRecHeight9 = 16;  // u16: 1 for an impact glyph 9 rows high
inline constexpr std::size_t kFntRecLead = 18;
inline constexpr std::size_t kFntRecSecond = 19;
inline constexpr std::size_t kFntRecThermalGlyph = 20;  // 72 bytes: rows top first
inline constexpr std::size_t kFntRecImpactGlyph = 92;   // 32 bytes: columns
inline constexpr std::size_t kFntRecVectors = 124;      // the header's four vectors
inline constexpr std::size_t kMaxFntRecords = 15000;

using FntRecord = std::array<std::uint8_t, kFntRecordSize>;

// The eight region marks in the order they are tried, with the code page each gives.
struct RegionMark {
    std::u16string_view mark;
    std::uint32_t codePage;
};
inline constexpr std::array<RegionMark, 8> kRegionMarks = {{{u"PRC", 936},
                                                            {u"PUD", 936},
                                                            {u"ROC", 950},
                                                            {u"RUD", 950},
                                                            {u"JPN", 932},
                                                            {u"JUD", 932},
                                                            {u"KOR", 949},
                                                            {u"KUD", 949}}};

// The path as the checks read it: at most 260 characters, upper-cased.
std::u16string UpperCasePath(std::u16string_view path);
// The first region mark found in the upper-cased path, or null.
const RegionMark* FindRegionMark(std::u16string_view path);

// The header checks of a headered file over its bytes: the magic, a region mark in the path
// and the dot size against the station (24 for thermal, 16 for impact).
bool CheckFntFile(ByteSpan file, std::u16string_view path, bool thermal,
                  TraceNotes* notes = nullptr);

// The records of a headered file, in walk order. `codePage` keeps the caller's value when the
// path holds no region mark. False (and the records cleared) when the glyph data ends before
// the walk does, a record would be the 15,001st, or a 16-dot glyph is higher than
// kMaxNarrowGlyphRows rows.
bool ReadFntRecords(ByteSpan file, std::u16string_view path, bool thermal, std::uint32_t& codePage,
                    std::vector<FntRecord>& records, TraceNotes* notes = nullptr);

// Whether the file may be loaded for the station on this printer: for model code 9 the tagged
// file's metadata check, for the others CheckFntFile. False without a connection status.
bool ValidateDBCSFontFile(Platform& p, std::u16string_view printerName, std::u16string_view path,
                          bool thermal, TraceNotes* notes = nullptr);

// ValidateDBCSFontFile, then ReadFntRecords over the file. `records` is emptied first.
bool ParseFNTFile(Platform& p, std::u16string_view printerName, std::u16string_view path,
                  bool thermal, std::uint32_t& codePage, std::vector<FntRecord>& records,
                  TraceNotes* notes = nullptr);

}  // namespace kx20::fonts
