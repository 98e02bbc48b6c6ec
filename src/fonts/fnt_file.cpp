#include "fonts/fnt_file.h"

#include <algorithm>

#include "fonts/fon_file.h"
#include "store/registry_layout.h"

namespace kx20::fonts {

namespace {

// The geometry of the glyphs of one file.
struct GlyphShape {
    std::uint32_t width = 0;     // dots: 16 or 24
    std::uint32_t height = 0;    // the header's height
    std::uint32_t rows = 0;      // rows stored per glyph
    std::uint32_t rowBytes = 0;  // width / 8
    std::size_t glyphBytes = 0;  // in the file: a 4-byte cell per row
};

GlyphShape ShapeOf(std::uint32_t width, std::uint32_t height) {
    GlyphShape g;
    g.width = width;
    g.height = height;
    g.rows = width == kThermalDots ? 24 : height;
    g.rowBytes = width / 8;
    g.glyphBytes = std::size_t{g.rows} * 4;
    return g;
}

// The glyph's rows top first, width / 8 bytes each, into `out` as far as `room` allows (the
// file stores them bottom first, one 4-byte cell per row).
void RowsTopFirst(ByteSpan glyph, const GlyphShape& g, std::uint8_t* out, std::size_t room) {
    for (std::uint32_t r = 0; r < g.rows; ++r) {
        const std::size_t at = std::size_t{r} * g.rowBytes;
        if (at + g.rowBytes > room)
            return;
        const std::size_t cell = std::size_t{g.rows - 1 - r} * 4;
        std::copy_n(glyph.begin() + static_cast<std::ptrdiff_t>(cell), g.rowBytes, out + at);
    }
}

// Room for the columns of the widest glyph with the most rows: 24 columns of at most
// 32 / 8 + 1 bytes each.
constexpr std::size_t kColumnScratch = 24 * (kMaxNarrowGlyphRows / 8 + 2) + 1;

// Transposes an 8 x 8 dot block: byte i from the top is row i (most significant bit the left
// column); afterwards byte c from the top is column c, row 0 in its most significant bit.
std::uint64_t Transpose8(std::uint64_t x) {
    std::uint64_t t = (x ^ (x >> 7)) & 0x00AA00AA00AA00AAull;
    x = x ^ t ^ (t << 7);
    t = (x ^ (x >> 14)) & 0x0000CCCC0000CCCCull;
    x = x ^ t ^ (t << 14);
    t = (x ^ (x >> 28)) & 0x00000000F0F0F0F0ull;
    return x ^ t ^ (t << 28);
}

// The impact head prints columns: for each column from the left the dots from the bottom row
// up, most significant bit first, a new byte after every 8 rows, and one byte more after a
// column when the glyph is one byte wide or 9 rows high. A column of rows not a multiple of 8
// ends inside a byte, which the next column starts in again. The record takes width x 2 bytes.
//
// Walking from the bottom row up is the order the file stores the rows in, so each group of
// 8 stored rows of one byte-column, transposed, gives one byte of each of its 8 columns.
std::size_t Columns(ByteSpan glyph, const GlyphShape& g,
                    std::array<std::uint8_t, kColumnScratch>& out) {
    const bool skip = g.rowBytes == 1 || g.height == 9;
    const std::size_t stride = g.rows / 8 + (skip ? 1 : 0);  // bytes from a column to the next
    const std::uint32_t groups = (g.rows + 7) / 8;
    out.fill(0);
    for (std::uint32_t cb = 0; cb < g.rowBytes; ++cb) {
        for (std::uint32_t j = 0; j < groups; ++j) {
            std::uint64_t block = 0;
            for (std::uint32_t i = 0; i < 8; ++i) {
                const std::uint32_t k = j * 8 + i;
                const std::uint8_t row = k < g.rows ? glyph[std::size_t{k} * 4 + cb] : 0;
                block |= std::uint64_t{row} << (56 - 8 * i);
            }
            const std::uint64_t columns = Transpose8(block);
            for (std::uint32_t cc = 0; cc < 8; ++cc) {
                const std::size_t c = std::size_t{cb} * 8 + cc;
                out[c * stride + j] |= static_cast<std::uint8_t>(columns >> (56 - 8 * cc));
            }
        }
    }
    return std::min<std::size_t>(std::size_t{g.width} * 2, kImpactGlyphBytes);
}

}  // namespace

std::u16string UpperCasePath(std::u16string_view path) {
    std::u16string upper(path.substr(0, store::kPathChars - 1));
    for (char16_t& c : upper) {
        if (c >= u'a' && c <= u'z')
            c = static_cast<char16_t>(c - u'a' + u'A');
    }
    return upper;
}

const RegionMark* FindRegionMark(std::u16string_view path) {
    const std::u16string upper = UpperCasePath(path);
    for (const RegionMark& m : kRegionMarks) {
        if (upper.find(m.mark) != std::u16string::npos)
            return &m;
    }
    return nullptr;
}

bool CheckFntFile(ByteSpan file, std::u16string_view path, bool thermal, TraceNotes* notes) {
    if (file.size() < kFntMagic.size() ||
        !std::equal(kFntMagic.begin(), kFntMagic.end(), file.begin())) {
        TraceNote(notes, u"ValidateDBCSFontFile - the file does not begin with the font magic\n");
        return false;
    }
    if (!FindRegionMark(path)) {
        TraceNote(notes, u"ValidateDBCSFontFile - no region mark in the path\n");
        return false;
    }
    const std::uint32_t dots = ReadU32(file, kFntWidth);
    if (dots != (thermal ? kThermalDots : kImpactDots)) {
        TraceNote(notes, u"ValidateDBCSFontFile - dot size %d does not fit the %s station\n", dots,
                  thermal ? u"thermal" : u"impact");
        return false;
    }
    return true;
}

bool ReadFntRecords(ByteSpan file, std::u16string_view path, bool thermal, std::uint32_t& codePage,
                    std::vector<FntRecord>& records, TraceNotes* notes) {
    records.clear();
    if (const RegionMark* mark = FindRegionMark(path))
        codePage = mark->codePage;

    std::array<std::uint8_t, kFntHeaderSize> header{};
    std::copy_n(file.begin(), std::min(file.size(), kFntHeaderSize), header.begin());
    const ByteSpan h(header);
    const std::uint32_t highest = ReadU16(h, kFntHighestCode);
    const GlyphShape shape = ShapeOf(ReadU32(h, kFntWidth), ReadU32(h, kFntHeight));
    const bool knownWidth = shape.width == kImpactDots || shape.width == kThermalDots;
    if (knownWidth && shape.width == kImpactDots && shape.height > kMaxNarrowGlyphRows) {
        TraceNote(notes, u"ParseFNTFile - glyph height %d over %d rows!\n", shape.height,
                  kMaxNarrowGlyphRows);
        return false;
    }

    FntRecord blank{};
    WriteU32(blank, kFntRecCodePage, codePage);
    WriteU32(blank, kFntRecWidth, shape.width);
    WriteU32(blank, kFntRecHeight, shape.height);
    std::copy_n(header.begin() + kFntVectors, 8, blank.begin() + kFntRecVectors);
    if (!thermal)
        WriteU16(blank, kFntRecHeight9, shape.height == 9 ? 1 : 0);

    std::array<std::uint8_t, kColumnScratch> columns{};
    std::size_t pos = kFntHeaderSize;
    for (std::size_t lr = 0; lr < 4; ++lr) {
        const int leadFirst = header[kFntLeadRanges + 2 * lr];
        const int leadLast = header[kFntLeadRanges + 2 * lr + 1];
        if (leadFirst == 0)
            break;
        for (int lead = leadFirst; lead <= leadLast; ++lead) {
            for (std::size_t sr = 0; sr < 4; ++sr) {
                const int secondFirst = header[kFntSecondRanges + 2 * sr];
                const int secondLast = header[kFntSecondRanges + 2 * sr + 1];
                if (secondFirst == 0)
                    continue;
                for (int second = secondFirst; second <= secondLast; ++second) {
                    if (static_cast<std::uint32_t>(lead * 256 + second) > highest || !knownWidth)
                        break;
                    if (!FitsIn(file.size(), pos, shape.glyphBytes)) {
                        TraceNote(notes,
                                  u"ParseFNTFile - glyph data ends before character 0x%04x!\n",
                                  lead * 256 + second);
                        records.clear();
                        return false;
                    }
                    const ByteSpan glyph = file.subspan(pos, shape.glyphBytes);
                    pos += shape.glyphBytes;
                    FntRecord r = blank;
                    r[kFntRecLead] = static_cast<std::uint8_t>(lead);
                    r[kFntRecSecond] = static_cast<std::uint8_t>(second);
                    if (thermal) {
                        RowsTopFirst(glyph, shape, r.data() + kFntRecThermalGlyph,
                                     kThermalGlyphBytes);
                    } else {
                        const std::size_t taken = Columns(glyph, shape, columns);
                        // A glyph with no dot is consumed but not kept.
                        if (std::all_of(columns.begin(), columns.begin() + taken,
                                        [](std::uint8_t b) { return b == 0; })) {
                            continue;
                        }
                        std::copy_n(columns.begin(), taken, r.begin() + kFntRecImpactGlyph);
                    }
                    if (records.size() >= kMaxFntRecords) {
                        TraceNote(notes, u"ParseFNTFile - more than %d characters!\n",
                                  kMaxFntRecords);
                        records.clear();
                        return false;
                    }
                    records.push_back(r);
                }
            }
        }
    }
    return true;
}

bool ValidateDBCSFontFile(Platform& p, std::u16string_view printerName, std::u16string_view path,
                          bool thermal, TraceNotes* notes) {
    bool valid = false;
    store::ConnectionStatus status;
    if (store::GetConnectionStatus(p, store::PrinterPortName(p, printerName), status)) {
        if (status.modelCode == 9) {
            FONMetaData scratch;
            valid = GetFONFileMetaData(p.files, path, scratch, notes);
        } else {
            FileReadResult file = ReadLimitedFile(p.files, path, kMaxFontFileBytes);
            valid =
                file.status == FileReadStatus::Ok && CheckFntFile(file.data, path, thermal, notes);
        }
    }
    TraceNote(notes, u"<- ValidateDBCSFontFile returns %d\n", valid ? 1 : 0);
    return valid;
}

bool ParseFNTFile(Platform& p, std::u16string_view printerName, std::u16string_view path,
                  bool thermal, std::uint32_t& codePage, std::vector<FntRecord>& records,
                  TraceNotes* notes) {
    records.clear();
    if (!ValidateDBCSFontFile(p, printerName, path, thermal, notes))
        return false;
    FileReadResult file = ReadLimitedFile(p.files, path, kMaxFontFileBytes);
    switch (file.status) {
        case FileReadStatus::Ok:
            return ReadFntRecords(file.data, path, thermal, codePage, records, notes);
        case FileReadStatus::OpenFailed:
            TraceNote(notes, u"ParseFNTFile - CreateFile Failed. GetLastError:%d\n", file.error);
            return false;
        case FileReadStatus::SizeInvalid:
            TraceNote(notes, u"ParseFNTFile - dwFileSize(0x%08x) invalid!\n",
                      static_cast<std::uint32_t>(file.size));
            return false;
        case FileReadStatus::ReadFailed:
            TraceNote(notes, u"ParseFNTFile - ReadFile Failed! GetLastError:%d\n", file.error);
            return false;
    }
    return false;
}

}  // namespace kx20::fonts
