#include "fonts/font_blocks.h"

#include <new>

#include "channel/command_start.h"
#include "channel/job_channel.h"
#include "platform/trace.h"
#include "store/registry_layout.h"

namespace kx20::fonts {

namespace {

constexpr std::uint32_t kErrorNotEnoughMemory = 8;

constexpr std::uint8_t kCmdSetting = 0x16;
constexpr std::uint8_t kCmdSbcsChar = 0x12;
constexpr std::uint8_t kCmdDbcsGroup = 0x14;
constexpr std::uint8_t kCmdEnd = 0x00;
constexpr std::uint8_t kCmdResetImmediate = 0x78;
constexpr std::uint8_t kCmdResetSerial = 0x7A;
constexpr std::uint8_t kCmdRestartSerial = 0x05;
constexpr std::uint8_t kCmdRestartOther = 0x07;

constexpr std::uint8_t kSetVectorFirst = 51;   // 51, 52, 53
constexpr std::uint8_t kSetVectorSecond = 81;  // 81, 82, 83
constexpr std::uint8_t kSetMatrix = 1;         // 1, 255, matrix / height-9 flag
constexpr std::uint8_t kSetSetup = 16;         // 16, 254, 0x3F
constexpr std::uint8_t kSetThermalSize = 0x02;
constexpr std::uint8_t kSetImpactSize = 0x04;
constexpr std::uint8_t kSetCodePage = 0x50;
constexpr std::uint8_t kSetSbcsSpacing = 0x54;
constexpr std::uint8_t kSetDbcsSpacing = 0x55;

constexpr std::uint8_t kDbcsThermalStation = 0x00;
constexpr std::uint8_t kDbcsImpactStation = 0x01;
constexpr std::uint8_t kSbcsThermalStation = 0x01;
constexpr std::uint8_t kSbcsImpactStation = 0x05;

constexpr std::uint16_t kCodePageSimplified = 936;
constexpr std::uint16_t kCodePageTraditional = 950;

void AppendCommand(Bytes& out, std::initializer_list<std::uint8_t> bytes) {
    out.insert(out.end(), channel::kCommandStart.begin(), channel::kCommandStart.end());
    out.insert(out.end(), bytes.begin(), bytes.end());
}

bool TryReserve(Bytes& b, std::size_t n) {
    try {
        b.reserve(n);
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

std::uint8_t Byte(std::uint16_t v) {
    return static_cast<std::uint8_t>(v);
}

// Double-byte characters in groups of at most 255: marker, 0x14, station, count, then each
// character's two code bytes and its glyph.
struct GroupGlyph {
    std::uint8_t lead;
    std::uint8_t second;
    const std::uint8_t* glyph;
};

template <class Next>
void AppendGroups(Bytes& out, std::size_t count, std::uint8_t station, std::size_t glyphBytes,
                  Next next) {
    for (std::size_t done = 0; done < count;) {
        const std::size_t inGroup = std::min(kMaxGroupCharacters, count - done);
        AppendCommand(out, {kCmdDbcsGroup, station, static_cast<std::uint8_t>(inGroup)});
        for (std::size_t i = 0; i < inGroup; ++i) {
            const GroupGlyph g = next();
            out.push_back(g.lead);
            out.push_back(g.second);
            out.insert(out.end(), g.glyph, g.glyph + glyphBytes);
        }
        done += inGroup;
    }
}

std::size_t GroupsSize(std::size_t count, std::size_t glyphBytes) {
    const std::size_t groups = (count + kMaxGroupCharacters - 1) / kMaxGroupCharacters;
    return kGroupHeaderSize * groups + count * (2 + glyphBytes);
}

// The records carrying the station's glyph, in list order, at most `count`.
std::vector<const CharRecord*> StationRecords(std::span<const CharRecord> list, std::uint32_t count,
                                              bool thermal) {
    std::vector<const CharRecord*> out;
    const std::size_t flag = thermal ? kCharThermalFlag : kCharImpactFlag;
    for (const CharRecord& r : list) {
        if (out.size() >= count)
            break;
        if (r[flag])
            out.push_back(&r);
    }
    return out;
}

}  // namespace

void AppendSetting(Bytes& out, std::uint8_t p1, std::uint8_t p2, std::uint8_t p3) {
    AppendCommand(out, {kCmdSetting, p1, p2, p3});
}

std::optional<Bytes> PreFONDownloadAdminSettings(const FONMetaData& meta) {
    Bytes out;
    if (!TryReserve(out, kPreSettingsSize)) {
        DrvTrace(u"PreFONDownloadAdminSettings - Memory Allocation failed! GetLastError:%d\n",
                 kErrorNotEnoughMemory);
        return std::nullopt;
    }
    DrvTrace(u"PreFONDownloadAdminSettings - Calculated Size:%d bytes\n", kPreSettingsSize);
    for (std::size_t i = 0; i < kDbcsVectors; ++i) {
        AppendSetting(out, static_cast<std::uint8_t>(kSetVectorFirst + i), meta.vectors[i].first,
                      meta.vectors[i].last);
    }
    for (std::size_t i = 0; i < kDbcsVectors; ++i) {
        AppendSetting(out, static_cast<std::uint8_t>(kSetVectorSecond + i), meta.vectors[i].first,
                      meta.vectors[i].last);
    }
    AppendSetting(out, kSetMatrix, 255, Byte(meta.dbcsMatrix));
    AppendSetting(out, kSetSetup, 254, 0x3F);
    return out;
}

std::optional<Bytes> PrepDBCSFONFontsForPrinter(std::span<const CharRecord> list,
                                                std::uint32_t count, bool thermal) {
    if (count == 0) {
        DrvTrace(u"PrepDBCSFONFontsForPrinter - CharCount = 0\n");
        return Bytes{};
    }
    const std::vector<const CharRecord*> chars = StationRecords(list, count, thermal);
    const std::size_t glyphBytes = thermal ? kThermalGlyphBytes : kImpactGlyphBytes;
    const std::size_t glyphAt = thermal ? kCharThermalGlyph : kCharImpactGlyph;
    Bytes out;
    if (!TryReserve(out, GroupsSize(chars.size(), glyphBytes))) {
        DrvTrace(u"PrepDBCSFONFontsForPrinter - Memory Alloction Failed. GetLastError: %d\n",
                 kErrorNotEnoughMemory);
        return std::nullopt;
    }
    std::size_t at = 0;
    AppendGroups(out, chars.size(), thermal ? kDbcsThermalStation : kDbcsImpactStation, glyphBytes,
                 [&] {
                     const CharRecord& r = *chars[at++];
                     return GroupGlyph{r[kCharLead], r[kCharSecond], r.data() + glyphAt};
                 });
    DrvTrace(u"<- PrepDBCSFONFontsForPrinter returns (%d Bytes, %d)\n", out.size(), 1);
    return out;
}

std::optional<Bytes> PrepSBCSFONFontsForPrinter(const FONMetaData& meta,
                                                std::span<const CharRecord> list,
                                                std::uint32_t count, bool thermal) {
    if (count == 0) {
        DrvTrace(u"PrepSBCSFONFontsForPrinter - CharCount = 0\n");
        return Bytes{};
    }
    const std::vector<const CharRecord*> chars = StationRecords(list, count, thermal);
    const std::size_t lengthAt = thermal ? kCharThermalLength : kCharImpactLength;
    const std::size_t glyphAt = thermal ? kCharThermalGlyph : kCharImpactGlyph;
    const std::size_t glyphField = thermal ? kThermalGlyphBytes : kImpactGlyphBytes;
    // Each character carries the glyph length its own record states, within its field.
    std::size_t size = kSettingSize;
    for (const CharRecord* r : chars)
        size += kSettingSize + std::min<std::size_t>((*r)[lengthAt], glyphField);
    Bytes out;
    if (!TryReserve(out, size)) {
        DrvTrace(u"PrepSBCSFONFontsForPrinter - Memory Allocation Failed! GetLastError(): %d\n",
                 kErrorNotEnoughMemory);
        return std::nullopt;
    }
    if (thermal) {
        AppendSetting(out, kSetThermalSize,
                      meta.thermalWidth ? Byte(meta.thermalWidth) : kDefaultThermalDots,
                      meta.thermalHeight ? Byte(meta.thermalHeight) : kDefaultThermalDots);
    } else {
        AppendSetting(out, kSetImpactSize,
                      meta.impactWidth ? Byte(meta.impactWidth) : kDefaultImpactDots,
                      meta.impactHeight ? Byte(meta.impactHeight) : kDefaultImpactDots);
    }
    const std::uint8_t station = thermal ? kSbcsThermalStation : kSbcsImpactStation;
    for (const CharRecord* r : chars) {
        const std::uint8_t code = (*r)[kCharSecond];
        AppendCommand(out, {kCmdSbcsChar, station, code, code});
        const std::size_t length = std::min<std::size_t>((*r)[lengthAt], glyphField);
        out.insert(out.end(), r->begin() + static_cast<std::ptrdiff_t>(glyphAt),
                   r->begin() + static_cast<std::ptrdiff_t>(glyphAt + length));
    }
    DrvTrace(u"<- PrepSBCSFONFontsForPrinter returns (%d Bytes, %d)\n", out.size(), 1);
    return out;
}

std::optional<Bytes> PostFONDownloadAdminSettings(const FONMetaData& meta, bool serialPort) {
    Bytes out;
    if (!TryReserve(out, kPostSettingsSize)) {
        DrvTrace(u"PostFONDownloadAdminSettings - Memory Allocation Failed. GetLastError():%d\n",
                 kErrorNotEnoughMemory);
        return std::nullopt;
    }
    AppendSetting(out, kSetCodePage, Byte(meta.codePage), Byte(meta.codePage >> 8));
    AppendSetting(out, kSetSbcsSpacing, 0,
                  meta.sbcsSpacing ? Byte(meta.sbcsSpacing) : kDefaultSbcsSpacing);
    AppendSetting(out, kSetDbcsSpacing, 0,
                  meta.dbcsSpacing ? Byte(meta.dbcsSpacing) : kDefaultDbcsSpacing);
    const bool wide = meta.codePage == kCodePageSimplified || meta.codePage == kCodePageTraditional;
    AppendCommand(out, {serialPort ? kCmdResetSerial : kCmdResetImmediate});
    AppendU32(out, wide ? kResetWideFonts : kResetOtherFonts);
    AppendCommand(out, {kCmdEnd});
    DrvTrace(u"<- PostFONDownloadAdminSettings returns %d\n", out.size());
    return out;
}

std::optional<Bytes> BuildFONDownloadBlock(const FONMetaData& meta, const FONCharacters& chars,
                                           bool serialPort) {
    const std::optional<Bytes> parts[] = {
        PreFONDownloadAdminSettings(meta),
        PrepDBCSFONFontsForPrinter(chars.dbcs, chars.dbcsThermalCount, true),
        PrepDBCSFONFontsForPrinter(chars.dbcs, chars.dbcsImpactCount, false),
        PrepSBCSFONFontsForPrinter(meta, chars.sbcs, chars.sbcsThermalCount, true),
        PrepSBCSFONFontsForPrinter(meta, chars.sbcs, chars.sbcsImpactCount, false),
        PostFONDownloadAdminSettings(meta, serialPort),
    };
    std::size_t size = 0;
    for (const auto& part : parts) {
        if (!part)
            return std::nullopt;
        size += part->size();
    }
    Bytes block;
    if (!TryReserve(block, size)) {
        DrvTrace(u"OutDownloadFONFontToPrinter - Failed to Allocate Memory. GetLastError: %d\n",
                 kErrorNotEnoughMemory);
        return std::nullopt;
    }
    for (const auto& part : parts) AppendBytes(block, *part);
    return block;
}

Bytes BuildFNTDownloadBlock(std::span<const FntRecord> records, bool thermal, bool serialPort) {
    static const FntRecord kNone{};
    const FntRecord& first = records.empty() ? kNone : records.front();
    const std::size_t glyphBytes = thermal ? kThermalGlyphBytes : kImpactGlyphBytes;
    Bytes out;
    out.reserve(6 * kSettingSize + kSettingSize + GroupsSize(records.size(), glyphBytes) +
                kSettingSize + 16 + 16);
    for (std::size_t i = 0; i < kDbcsVectors; ++i) {
        AppendSetting(out, static_cast<std::uint8_t>(kSetVectorFirst + i),
                      first[kFntRecVectors + 2 * i], first[kFntRecVectors + 2 * i + 1]);
    }
    for (std::size_t i = 0; i < kDbcsVectors; ++i) {
        AppendSetting(out, static_cast<std::uint8_t>(kSetVectorSecond + i),
                      first[kFntRecVectors + 2 * i], first[kFntRecVectors + 2 * i + 1]);
    }
    if (!thermal)
        AppendSetting(out, kSetMatrix, 255, Byte(ReadU16(first, kFntRecHeight9)));
    std::size_t at = 0;
    const std::size_t glyphAt = thermal ? kFntRecThermalGlyph : kFntRecImpactGlyph;
    AppendGroups(out, records.size(), thermal ? kDbcsThermalStation : kDbcsImpactStation,
                 glyphBytes, [&] {
                     const FntRecord& r = records[at++];
                     return GroupGlyph{r[kFntRecLead], r[kFntRecSecond], r.data() + glyphAt};
                 });
    const std::uint32_t codePage = ReadU32(first, kFntRecCodePage);
    AppendSetting(out, kSetCodePage, static_cast<std::uint8_t>(codePage),
                  static_cast<std::uint8_t>(codePage >> 8));
    AppendCommand(out, {serialPort ? kCmdRestartSerial : kCmdRestartOther});
    AppendCommand(out, {kCmdEnd});
    return out;
}

bool OutDownloadFONFontToPrinter(ResourceStrings& strings, Platform& p,
                                 std::u16string_view printerName, const FONMetaData& meta,
                                 const FONCharacters& chars) {
    const bool serial = store::IsSerialConnection(p, store::PrinterPortName(p, printerName));
    const std::optional<Bytes> block = BuildFONDownloadBlock(meta, chars, serial);
    const bool sent =
        block && channel::SendRawJobAndWait(
                     strings, p, printerName,
                     static_cast<std::uint32_t>(channel::JobKind::DoubleByteFont), 0, *block);
    DrvTrace(u"<- OutDownloadFONFontToPrinter returns %d\n", sent ? 1 : 0);
    return sent;
}

bool OutDownloadFNTFontToPrinter(ResourceStrings& strings, Platform& p,
                                 std::u16string_view printerName,
                                 std::span<const FntRecord> records, bool thermal) {
    const bool serial = store::IsSerialConnection(p, store::PrinterPortName(p, printerName));
    const Bytes block = BuildFNTDownloadBlock(records, thermal, serial);
    return channel::SendRawJobAndWait(strings, p, printerName,
                                      static_cast<std::uint32_t>(channel::JobKind::DoubleByteFont),
                                      0, block);
}

}  // namespace kx20::fonts
