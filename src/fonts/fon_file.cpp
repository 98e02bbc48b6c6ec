#include "fonts/fon_file.h"

#include <algorithm>
#include <new>

namespace kx20::fonts {

namespace {

// The walks read from memory: a record that runs past the end is what a short read of the file
// would be, and is reported with the trace line of that read. The system leaves no error code
// for a read that merely reaches the end of a file.
constexpr std::uint32_t kShortReadError = 0;

// Allocation failures of the character lists are reported as the system reports them.
constexpr std::uint32_t kErrorNotEnoughMemory = 8;

struct Header {
    std::uint16_t tag = 0;
    std::uint16_t length = 0;
};

bool ReadHeader(ByteSpan file, std::size_t pos, Header& h) {
    if (!FitsIn(file.size(), pos, kRecordHeaderSize))
        return false;
    h.tag = ReadU16(file, pos);
    h.length = ReadU16(file, pos + 2);
    return true;
}

// The metadata values with a legal range: stored and traced when in range, else traced as
// invalid.
struct RangedValue {
    std::uint16_t tag;
    std::uint16_t max;
    std::uint16_t FONMetaData::*field;
    std::u16string_view okFormat;
    std::u16string_view badFormat;
};
constexpr RangedValue kRangedValues[] = {
    {kTagThermalWidth, 24, &FONMetaData::thermalWidth, u"GetFONFileMetaData - THERMAL_WIDTH(%d)\n",
     u"GetFONFileMetaData - Invalid THERMAL_WIDTH value - %d!\n"},
    {kTagThermalHeight, 24, &FONMetaData::thermalHeight,
     u"GetFONFileMetaData - THERMAL_HEIGHT(%d)\n",
     u"GetFONFileMetaData - Invalid THERMAL_HEIGHT value - %d!\n"},
    {kTagImpactWidth, 16, &FONMetaData::impactWidth, u"GetFONFileMetaData - IMPACT_WIDTH(%d)\n",
     u"GetFONFileMetaData - Invalid IMPACT_WIDTH value - %d!\n"},
    {kTagImpactHeight, 16, &FONMetaData::impactHeight, u"GetFONFileMetaData - IMPACT_HEIGHT(%d)\n",
     u"GetFONFileMetaData - Invalid IMPACT_HEIGHT value - %d!\n"},
    {kTagDbcsSpacing, 32, &FONMetaData::dbcsSpacing, u"GetFONFileMetaData - DBCS_SPACING(%d)\n",
     u"GetFONFileMetaData - Invalid DBCS_SPACING value - %d!\n"},
    {kTagSbcsSpacing, 8, &FONMetaData::sbcsSpacing, u"GetFONFileMetaData - SBCS_SPACING(%d)\n",
     u"GetFONFileMetaData - Invalid SBCS_SPACING value - %d!\n"},
    {kTagDbcsMatrix, 1, &FONMetaData::dbcsMatrix, u"GetFONFileMetaData - DBCS_MATRIX(%d)\n",
     u"GetFONFileMetaData - Invalid DBCS_MATRIX value - %d!\n"},
};

const RangedValue* FindRangedValue(std::uint16_t tag) {
    for (const RangedValue& v : kRangedValues)
        if (v.tag == tag)
            return &v;
    return nullptr;
}

// Counting walk: the character records of each kind up to the end record.
bool CountCharacters(ByteSpan file, std::size_t& sbcs, std::size_t& dbcs, TraceNotes* notes) {
    std::size_t pos = 0;
    for (;;) {
        Header h;
        if (!ReadHeader(file, pos, h)) {
            TraceNote(notes,
                      u"ParseFONFile(counting the chars) - Get tempRec Failed. LastError():%d\n",
                      kShortReadError);
            return false;
        }
        if (h.tag == kTagDbcsChar)
            ++dbcs;
        else if (h.tag == kTagSbcsChar)
            ++sbcs;
        if (sbcs + dbcs > kMaxFontCharacters) {
            TraceNote(notes, u"ParseFONFile - more than %d characters!\n", kMaxFontCharacters);
            return false;
        }
        if (h.tag == kTagEndOfFile)
            return true;
        pos += kRecordHeaderSize + h.length;
    }
}

bool Reserve(std::vector<CharRecord>& list, std::size_t count) {
    try {
        list.reserve(count);
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

// A single-byte glyph is sent with the length its record states; a length beyond the glyph's
// field would send bytes of the next field or past the record.
bool SbcsLengthsFit(const CharRecord& r, TraceNotes* notes) {
    if (r[kCharThermalFlag] && r[kCharThermalLength] > kThermalGlyphBytes) {
        TraceNote(notes, u"ParseFONFile - SBCS char 0x%02x: thermal glyph of %d bytes, over %d!\n",
                  r[kCharSecond], r[kCharThermalLength], kThermalGlyphBytes);
        return false;
    }
    if (r[kCharImpactFlag] && r[kCharImpactLength] > kImpactGlyphBytes) {
        TraceNote(notes, u"ParseFONFile - SBCS char 0x%02x: impact glyph of %d bytes, over %d!\n",
                  r[kCharSecond], r[kCharImpactLength], kImpactGlyphBytes);
        return false;
    }
    return true;
}

// Collecting walk: every character record into its list, with the glyph counts.
bool CollectCharacters(ByteSpan file, FONCharacters& out, TraceNotes* notes) {
    std::size_t pos = 0;
    for (;;) {
        Header h;
        if (!ReadHeader(file, pos, h)) {
            TraceNote(notes,
                      u"ParseFONFile(obtaining font data) - Get tempRec Failed. LastError():%d\n",
                      kShortReadError);
            return false;
        }
        pos += kRecordHeaderSize;
        if (h.tag == kTagDbcsChar || h.tag == kTagSbcsChar) {
            const bool dbcs = h.tag == kTagDbcsChar;
            if (h.length > kCharRecordSize) {
                TraceNote(notes, u"ParseFONFile - %s character record of %d bytes, over %d!\n",
                          dbcs ? u"DBCS" : u"SBCS", h.length, kCharRecordSize);
                return false;
            }
            if (!FitsIn(file.size(), pos, h.length)) {
                TraceNote(notes,
                          dbcs ? u"ParseFONFile - Get DBCS tempFont Fail, LastError():%d\n"
                               : u"ParseFONFile - Get SBCS tempFont Fail, LastError():%d\n",
                          kShortReadError);
                return false;
            }
            CharRecord r{};
            std::copy_n(file.begin() + static_cast<std::ptrdiff_t>(pos), h.length, r.begin());
            if (!dbcs && !SbcsLengthsFit(r, notes))
                return false;
            const bool thermal = r[kCharThermalFlag] != 0;
            const bool impact = r[kCharImpactFlag] != 0;
            if (dbcs) {
                out.dbcs.push_back(r);
                out.dbcsThermalCount += thermal;
                out.dbcsImpactCount += impact;
            } else {
                out.sbcs.push_back(r);
                out.sbcsThermalCount += thermal;
                out.sbcsImpactCount += impact;
            }
        }
        if (h.tag == kTagEndOfFile)
            return true;
        pos += h.length;
    }
}

}  // namespace

bool ReadFONMetaData(ByteSpan file, FONMetaData& meta, TraceNotes* notes) {
    bool valid = true;
    std::size_t pos = 0;
    int vectors = 0;
    for (int i = 0; i < kMetadataRecords; ++i) {
        std::array<std::uint8_t, kMaxMetadataBytes> data{};
        Header h;
        if (!ReadHeader(file, pos, h)) {
            TraceNote(notes, u"GetFONFileMetaData - Get tempRec Fail, LastError():%d\n",
                      kShortReadError);
            return false;
        }
        pos += kRecordHeaderSize;
        if (!FitsIn(file.size(), pos, h.length)) {
            TraceNote(notes, u"GetFONFileMetaData - Get metadata Fail, LastError():%d\n",
                      kShortReadError);
            return false;
        }
        if (h.length > kMaxMetadataBytes) {
            TraceNote(notes,
                      u"GetFONFileMetaData - Invalid metadata record %d: %d bytes, over %d!\n",
                      h.tag, h.length, kMaxMetadataBytes);
            valid = false;
            pos += h.length;
            continue;
        }
        std::copy_n(file.begin() + static_cast<std::ptrdiff_t>(pos), h.length, data.begin());
        pos += h.length;
        const std::uint16_t value = ReadU16(data, 0);

        switch (h.tag) {
            case kTagCreateDate:
                for (std::size_t c = 0; c < h.length; ++c)
                    TraceNote(notes, u"GetFONFileMetaData - CREATEDATE(%c)\n", data[c]);
                break;
            case kTagVersionInfo:
                TraceNote(notes, u"GetFONFileMetaData - VERSION_INFO(%d)\n", value);
                break;
            case kTagCodePage:
                TraceNote(notes, u"GetFONFileMetaData - CODEPAGE(%d)\n", value);
                // The printer's PRC font is known to the system as code page 936.
                meta.codePage = value == kCodePagePrcFont ? kCodePageSimplifiedChinese : value;
                break;
            case kTagDbcsVector:
                if (vectors >= kDbcsVectors) {
                    TraceNote(notes, u"GetFONFileMetaData - Invalide DBCS Vector Count!\n");
                    valid = false;
                    break;
                }
                meta.vectors[static_cast<std::size_t>(vectors++)] = {data[0], data[1]};
                TraceNote(notes, u"GetFONFileMetaData - DBCS_VECTOR(0x%02x,0x%02x)\n", data[0],
                          data[1]);
                break;
            default:
                if (const RangedValue* v = FindRangedValue(h.tag)) {
                    if (value > v->max) {
                        TraceNote(notes, v->badFormat, value);
                        valid = false;
                    } else {
                        meta.*(v->field) = value;
                        TraceNote(notes, v->okFormat, value);
                    }
                    break;
                }
                // Character records, the end record, 238 and unknown tags have no place among
                // the metadata.
                valid = false;
                break;
        }
    }
    return valid;
}

bool ReadFONCharacters(ByteSpan file, FONCharacters& out, TraceNotes* notes) {
    std::size_t sbcs = 0, dbcs = 0;
    if (!CountCharacters(file, sbcs, dbcs, notes))
        return false;
    FONCharacters found;
    if (sbcs) {
        TraceNote(notes, u"ParseFONFile - SBCSCharCount:%d\n", sbcs);
        if (!Reserve(found.sbcs, sbcs)) {
            TraceNote(notes,
                      u"ParseFONFile - SBCSCharList Memory Allocation Failed! GetLastError():%d\n",
                      kErrorNotEnoughMemory);
            return false;
        }
    }
    if (dbcs) {
        TraceNote(notes, u"ParseFONFile - DBCSCharCount:%d\n", dbcs);
        if (!Reserve(found.dbcs, dbcs)) {
            TraceNote(notes,
                      u"ParseFONFile - DBCSCharList Memory Allocation Failed! GetLastError():%d\n",
                      kErrorNotEnoughMemory);
            return false;
        }
    }
    if (!CollectCharacters(file, found, notes))
        return false;
    out = std::move(found);
    return true;
}

bool GetFONFileMetaData(FileSystem& fs, std::u16string_view path, FONMetaData& meta,
                        TraceNotes* notes) {
    FileReadResult file = ReadLimitedFile(fs, path, kMaxFontFileBytes);
    switch (file.status) {
        case FileReadStatus::Ok:
            return ReadFONMetaData(file.data, meta, notes);
        case FileReadStatus::OpenFailed:
            TraceNote(notes, u"GetFONFileMetaData - CreateFile failed, GetLastError():%d\n",
                      file.error);
            return false;
        case FileReadStatus::SizeInvalid:
        case FileReadStatus::ReadFailed:
            // An empty file fails at the first record header, as a larger unreadable one does.
            TraceNote(notes, u"GetFONFileMetaData - Get tempRec Fail, LastError():%d\n",
                      file.error);
            return false;
    }
    return false;
}

bool ParseFONFile(FileSystem& fs, std::u16string_view path, FONCharacters& out, TraceNotes* notes) {
    FileReadResult file = ReadLimitedFile(fs, path, kMaxFontFileBytes);
    if (file.status == FileReadStatus::OpenFailed) {
        TraceNote(notes, u"ParseFONFile - CreateFile Failed\n");
        return false;
    }
    bool ok = false;
    if (file.status == FileReadStatus::Ok) {
        ok = ReadFONCharacters(file.data, out, notes);
    } else {
        TraceNote(notes, u"ParseFONFile(counting the chars) - Get tempRec Failed. LastError():%d\n",
                  file.error);
    }
    TraceNote(notes, u"ParseFONFile - Return %d\n", ok ? 1 : 0);
    return ok;
}

}  // namespace kx20::fonts
