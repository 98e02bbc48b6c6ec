// The tagged double-byte font file (printers of model code 9): a flat sequence of records, each
// a u16 tag, a u16 length and that many data bytes, little-endian. It opens with exactly 13
// metadata records (sizes, spacings, code page, the three lead-byte ranges), followed by the
// character records and an end record.
//
// The file functions read the whole file once (read-only, shared for reading) and walk it in
// memory; the walks over bytes are public so that the command-line tool, the fuzz targets and
// the benchmarks use the very same checks. Every problem is traced; `notes`, when given, also
// receives each traced line.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/trace_notes.h"
#include "platform/bytes.h"
#include "platform/files.h"

namespace kx20::fonts {

// Record tags.
inline constexpr std::uint16_t kTagCreateDate = 234;
inline constexpr std::uint16_t kTagVersionInfo = 235;
inline constexpr std::uint16_t kTagCodePage = 236;
inline constexpr std::uint16_t kTagDbcsVector = 237;
inline constexpr std::uint16_t kTagThermalWidth = 239;
inline constexpr std::uint16_t kTagThermalHeight = 240;
inline constexpr std::uint16_t kTagImpactWidth = 241;
inline constexpr std::uint16_t kTagImpactHeight = 242;
inline constexpr std::uint16_t kTagDbcsSpacing = 243;
inline constexpr std::uint16_t kTagSbcsSpacing = 244;
inline constexpr std::uint16_t kTagDbcsChar = 245;
inline constexpr std::uint16_t kTagSbcsChar = 246;
inline constexpr std::uint16_t kTagDbcsMatrix = 247;
inline constexpr std::uint16_t kTagEndOfFile = 254;

inline constexpr std::size_t kRecordHeaderSize = 4;  // tag, length
inline constexpr int kMetadataRecords = 13;
inline constexpr std::size_t kMaxMetadataBytes = 6;
inline constexpr int kDbcsVectors = 3;

// The code page of the printer's PRC font, and the one under which the system knows it.
inline constexpr std::uint16_t kCodePagePrcFont = 1381;
inline constexpr std::uint16_t kCodePageSimplifiedChinese = 936;

// Character record: code (byte 2 lead, byte 3 second or single-byte code), thermal flag and
// glyph length, impact flag and glyph length, the 72-byte thermal glyph (24 x 24 dots) and the
// 32-byte impact glyph (16 x 16 dots).
inline constexpr std::size_t kCharRecordSize = 112;
inline constexpr std::size_t kCharLead = 2;
inline constexpr std::size_t kCharSecond = 3;
inline constexpr std::size_t kCharThermalFlag = 4;
inline constexpr std::size_t kCharThermalLength = 5;
inline constexpr std::size_t kCharImpactFlag = 6;
inline constexpr std::size_t kCharImpactLength = 7;
inline constexpr std::size_t kCharThermalGlyph = 8;
inline constexpr std::size_t kCharImpactGlyph = 80;
inline constexpr std::size_t kThermalGlyphBytes = 72;
inline constexpr std::size_t kImpactGlyphBytes = 32;

// No font file the printer can hold comes near this; a larger file is refused before it is
// read, so that a hostile file cannot make the module take any amount of memory.
inline constexpr std::uint64_t kMaxFontFileBytes = 32u * 1024u * 1024u;

// The most characters (single- and double-byte together) a font file may hold.
inline constexpr std::size_t kMaxFontCharacters = 15000;

using CharRecord = std::array<std::uint8_t, kCharRecordSize>;

struct DbcsVector {
    std::uint8_t first = 0;  // first lead byte of the range
    std::uint8_t last = 0;   // last lead byte
};

// What the metadata records say. A zero size stands for the printer's default size.
struct FONMetaData {
    std::uint16_t codePage = 0;
    std::uint16_t thermalWidth = 0;
    std::uint16_t thermalHeight = 0;
    std::uint16_t impactWidth = 0;
    std::uint16_t impactHeight = 0;
    std::uint16_t dbcsSpacing = 0;
    std::uint16_t sbcsSpacing = 0;
    std::uint16_t dbcsMatrix = 0;
    std::array<DbcsVector, kDbcsVectors> vectors{};
};

// The characters of a file, each kind in file order, with the number of records of each kind
// that carry a thermal and an impact glyph.
struct FONCharacters {
    std::vector<CharRecord> sbcs;
    std::vector<CharRecord> dbcs;
    std::uint32_t sbcsThermalCount = 0;
    std::uint32_t sbcsImpactCount = 0;
    std::uint32_t dbcsThermalCount = 0;
    std::uint32_t dbcsImpactCount = 0;
};

// The 13 metadata records at the start of `file`. Fields the records do not set keep the
// caller's values. Every value out of range is traced and the walk goes on, so one pass shows
// every problem; any of them makes the answer false.
bool ReadFONMetaData(ByteSpan file, FONMetaData& meta, TraceNotes* notes = nullptr);
// The character records of `file`, counted in a first walk and collected in a second one up to
// the end record. `out` is written only on success.
bool ReadFONCharacters(ByteSpan file, FONCharacters& out, TraceNotes* notes = nullptr);

// The same over a file.
bool GetFONFileMetaData(FileSystem& fs, std::u16string_view path, FONMetaData& meta,
                        TraceNotes* notes = nullptr);
bool ParseFONFile(FileSystem& fs, std::u16string_view path, FONCharacters& out,
                  TraceNotes* notes = nullptr);

}  // namespace kx20::fonts
