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

// The glyph's rows top first, width / 8 bytes each (the file stores them bottom first, one
// 4-byte cell per row).
Bytes RowsTopFirst(ByteSpan glyph, const GlyphShape& g) {
    Bytes rows(std::size_t{g.rows} * g.rowBytes);
    for (std::uint32_t r = 0; r < g.rows; ++r) {
        const std::size_t cell = std::size_t{g.rows - 1 - r} * 4;
        std::copy_n(glyph.begin() + static_cast<std::ptrdiff_t>(cell), g.rowBytes,
                    rows.begin() + static_cast<std::ptrdiff_t>(std::size_t{r} * g.rowBytes));
    }
    return rows;
}

// The impact head prints columns: for each column from the left the dots from the bottom row
// up, most significant bit first, a new byte after every 8 rows, and one byte more after a
// column when the glyph is one byte wide or 9 rows high. The record takes width x 2 bytes.
Bytes Columns(const Bytes& rows, const GlyphShape& g) {
    const bool skip = g.rowBytes == 1 || g.height == 9;
    Bytes out(std::size_t{g.width} * (g.rows / 8 + 2) + 1, 0);
    std::size_t at = 0;
    for (std::uint32_t c = 0; c < g.width; ++c) {
        std::uint8_t mask = 0x80;
        for (std::uint32_t k = 0; k < g.rows; ++k) {
            const std::uint32_t r = g.rows - 1 - k;
            const std::uint8_t row = rows[std::size_t{r} * g.rowBytes + c / 8];
            if (row & (0x80 >> (c % 8)))
                out[at] |= mask;
            mask >>= 1;
            if (mask == 0) {
                mask = 0x80;
                ++at;
            }
        }
        if (skip)
            ++at;
    }
    out.resize(std::min<std::size_t>(std::size_t{g.width} * 2, kImpactGlyphBytes));
    return out;
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
                    const Bytes rows = RowsTopFirst(glyph, shape);
                    FntRecord r = blank;
                    r[kFntRecLead] = static_cast<std::uint8_t>(lead);
                    r[kFntRecSecond] = static_cast<std::uint8_t>(second);
                    if (thermal) {
                        std::copy_n(rows.begin(), std::min(rows.size(), kThermalGlyphBytes),
                                    r.begin() + kFntRecThermalGlyph);
                    } else {
                        const Bytes columns = Columns(rows, shape);
                        // A glyph with no dot is consumed but not kept.
                        if (std::all_of(columns.begin(), columns.end(),
                                        [](std::uint8_t b) { return b == 0; })) {
                            continue;
                        }
                        std::copy(columns.begin(), columns.end(), r.begin() + kFntRecImpactGlyph);
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
