#include "entry/capabilities.h"

#include <algorithm>

#include "devmode/devmode.h"
#include "devmode/printer_settings.h"
#include "entry/resource_module.h"
#include "platform/trace.h"

namespace kx20 {

namespace {

constexpr std::array<Paper, kPaperCount> kPapers = {{
    {1, 257, 343, 1754, 580, 2970, 2000},
    {2, 258, 343, 19346, 580, 32760, 2001},
    {4, 259, 472, 1754, 800, 2970, 2002},
    {8, 260, 472, 19346, 800, 32760, 2003},
    {16, 261, 283, 1618, 480, 2740, 2004},
    {32, 262, 506, 1618, 857, 2740, 2005},
}};

// Every capability answered: its number, its name in the trace and the bytes it writes.
struct CapabilityName {
    std::uint32_t id;
    std::u16string_view name;
};

constexpr CapabilityName kNames[] = {
    {dc::kFields, u"DC_FIELDS"},
    {dc::kPapers, u"DC_PAPERS"},
    {dc::kPaperSize, u"DC_PAPERSIZE"},
    {dc::kMinExtent, u"DC_MINEXTENT"},
    {dc::kMaxExtent, u"DC_MAXEXTENT"},
    {dc::kBins, u"DC_BINS"},
    {dc::kDuplex, u"DC_DUPLEX"},
    {dc::kSize, u"DC_SIZE"},
    {dc::kExtra, u"DC_EXTRA"},
    {dc::kVersion, u"DC_VERSION"},
    {dc::kDriver, u"DC_DRIVER"},
    {dc::kBinNames, u"DC_BINNAMES"},
    {dc::kEnumResolutions, u"DC_ENUMRESOLUTIONS"},
    {dc::kFileDependencies, u"DC_FILEDEPENDENCIES"},
    {dc::kTrueType, u"DC_TRUETYPE"},
    {dc::kPaperNames, u"DC_PAPERNAMES"},
    {dc::kOrientation, u"DC_ORIENTATION"},
    {dc::kCopies, u"DC_COPIES"},
    {dc::kBinAdjust, u"DC_BINADJUST"},
    {dc::kEmfCompliant, u"DC_EMF_COMPLIANT"},
    {dc::kDatatypeProduced, u"DC_DATATYPE_PRODUCED"},
    {dc::kCollate, u"DC_COLLATE"},
    {dc::kPersonality, u"DC_PERSONALITY"},
    {dc::kPrintRate, u"DC_PRINTRATE"},
    {dc::kPrintRateUnit, u"DC_PRINTRATEUNIT"},
    {dc::kPrinterMem, u"DC_PRINTERMEM"},
    {dc::kMediaReady, u"DC_MEDIAREADY"},
    {dc::kStaple, u"DC_STAPLE"},
    {dc::kPrintRatePpm, u"DC_PRINTRATEPPM"},
    {dc::kColorDevice, u"DC_COLORDEVICE"},
    {dc::kNup, u"DC_NUP"},
};

// dmFields of the members the driver supports: orientation, paper size, paper length, paper
// width, copies, default source, print quality, Y resolution, TrueType option.
constexpr std::uint32_t kSupportedFields = 0x670F;
constexpr std::int32_t kResolutions[] = {150, 200};
constexpr std::u16string_view kPersonalities[] = {u"RS-232", u"RS-485"};
constexpr std::int32_t kPrintRate = 2340;
constexpr std::int32_t kPrintRateLinesPerMinute = 3;
constexpr std::int32_t kMaxCopies = 1000;
constexpr std::int32_t kLandscapeRotation = 90;
constexpr std::uint32_t kDefaultPaperName = 2002;

// The paper of each enumeration bit 1, 2, 4, ... 32, in that order.
template <class F>
std::int32_t ForEachPaperBit(F&& f) {
    std::int32_t count = 0;
    for (std::uint32_t bit = 1; bit <= 32; bit <<= 1) {
        f(count, bit);
        ++count;
    }
    return count;
}

const Paper& PaperOfBit(std::uint32_t bit) {
    const std::uint32_t shifts = ShiftsOfBit(bit);
    return kPapers[std::clamp<std::uint32_t>(shifts, 1, kPaperCount) - 1];
}

// Width / 10 in the low 16 bits, length / 10 in the high 16 bits: whole millimetres.
std::int32_t Extent(std::int32_t width, std::int32_t length) {
    return static_cast<std::int32_t>((static_cast<std::uint32_t>(width / 10) & 0xFFFF) |
                                     (static_cast<std::uint32_t>(length / 10) << 16));
}

std::int32_t PaperExtent(bool largest) {
    // Starts from the paper of bit 1, reached through its paper id.
    const Paper& first = PaperOfBit(BitFromPaperId(PaperIdFromBit(1)));
    std::int32_t width = first.width, length = first.length;
    ForEachPaperBit([&](std::int32_t, std::uint32_t bit) {
        const Paper& p = PaperOfBit(bit);
        width = largest ? std::max(width, p.width) : std::min(width, p.width);
        length = largest ? std::max(length, p.length) : std::min(length, p.length);
    });
    return Extent(width, length);
}

// A text and its terminator into a field of `chars` characters, as the system's string copy
// leaves it: the units after the terminator are not touched, so a caller whose buffer is only
// as long as the text needs is never written past.
void WriteText(MutableByteSpan out, std::size_t offset, std::size_t chars,
               std::u16string_view text) {
    const std::size_t n = std::min(text.size(), chars - 1);
    for (std::size_t i = 0; i < n; ++i)
        WriteU16(out, offset + 2 * i, static_cast<std::uint16_t>(text[i]));
    WriteU16(out, offset + 2 * n, 0);
}

// A string of the resource module into a text field: nothing is written when the module has
// no such string, as the system's string loader leaves the buffer then.
void LoadName(ResourceStrings& strings, std::uint32_t id, MutableByteSpan out, std::size_t offset,
              std::size_t chars) {
    if (auto text = strings.Load(id))
        WriteText(out, offset, chars, *text);
}

}  // namespace

const std::array<Paper, kPaperCount>& PaperTable() {
    return kPapers;
}

std::int32_t PaperIdFromBit(std::uint32_t bit) {
    for (const Paper& p : kPapers)
        if (p.bit == bit)
            return p.id;
    return static_cast<std::int32_t>(kDefaultPaperName);
}

std::uint32_t BitFromPaperId(std::int32_t id) {
    for (const Paper& p : kPapers)
        if (p.id == id)
            return p.bit;
    return 4;
}

std::uint32_t ShiftsOfBit(std::uint32_t bit) {
    std::uint32_t shifts = 0;
    while (bit != 0) {
        bit >>= 1;
        ++shifts;
    }
    return shifts;
}

std::size_t CapabilityOutputSize(std::uint32_t capability) {
    switch (capability & 0xFFFF) {
        case dc::kPapers:
            return kPaperCount * 2;
        case dc::kPaperSize:
            return kPaperCount * 8;
        case dc::kEnumResolutions:
            return std::size(kResolutions) * 8;
        case dc::kPaperNames:
            return kPaperCount * kPaperNameChars * 2;
        case dc::kPersonality:
            return std::size(kPersonalities) * kPersonalityChars * 2;
        case dc::kMediaReady:
            return kMediaReadyChars * 2;
        default:
            return 0;
    }
}

std::int32_t AnswerCapability(Platform& platform, SystemServices& system,
                              std::u16string_view deviceName, std::uint32_t capability,
                              MutableByteSpan output, bool hasOutput) {
    PrinterSettings settings(platform, deviceName, kPrinterRead);
    DrvTrace(u"   pDeviceName = %ls, pvOutput non-NULL? = %d, \n", settings.PrinterName(),
             hasOutput ? 1 : 0);
    const std::uint32_t cap = capability & 0xFFFF;
    const auto named = std::find_if(std::begin(kNames), std::end(kNames),
                                    [&](const CapabilityName& n) { return n.id == cap; });
    if (named != std::end(kNames)) {
        DrvTrace(u"  iDevCap = %ls\n", named->name);
    } else {
        DrvTrace(u"  UNKNOWN iDevCap = %d\n", cap);
    }
    if (!hasOutput)
        output = {};

    std::int32_t result = 0;
    switch (cap) {
        case dc::kFields:
            result = kSupportedFields;
            break;
        case dc::kPapers:
            result = ForEachPaperBit([&](std::int32_t i, std::uint32_t bit) {
                WriteU16(output, static_cast<std::size_t>(i) * 2,
                         static_cast<std::uint16_t>(PaperIdFromBit(bit)));
            });
            break;
        case dc::kPaperSize: {
            ResourceModule resources(system, settings);
            result = ForEachPaperBit([&](std::int32_t i, std::uint32_t bit) {
                const Paper& p = PaperOfBit(bit);
                WriteU32(output, static_cast<std::size_t>(i) * 8,
                         static_cast<std::uint32_t>(p.width));
                WriteU32(output, static_cast<std::size_t>(i) * 8 + 4,
                         static_cast<std::uint32_t>(p.length));
            });
            break;
        }
        case dc::kMinExtent:
            result = PaperExtent(false);
            break;
        case dc::kMaxExtent:
            result = PaperExtent(true);
            break;
        case dc::kSize:
            result = static_cast<std::int32_t>(kDevModePublicSize);
            break;
        case dc::kExtra:
            result = static_cast<std::int32_t>(kDevModePrivateSize);
            break;
        case dc::kVersion:
            result = kDevModeSpecVersion;
            break;
        case dc::kDriver:
            result = kDevModeDriverVersion;
            break;
        case dc::kEnumResolutions:
            for (std::size_t i = 0; i < std::size(kResolutions); ++i) {
                WriteU32(output, i * 8, static_cast<std::uint32_t>(kResolutions[i]));
                WriteU32(output, i * 8 + 4, static_cast<std::uint32_t>(kResolutions[i]));
            }
            result = static_cast<std::int32_t>(std::size(kResolutions));
            break;
        case dc::kFileDependencies:
            result = hasOutput ? -1 : 0;
            break;
        case dc::kTrueType:
            result = 1;
            break;
        case dc::kPaperNames: {
            ResourceModule resources(system, settings);
            result = ForEachPaperBit([&](std::int32_t i, std::uint32_t bit) {
                if (!output.empty())
                    LoadName(resources.Strings(), PaperOfBit(bit).nameId, output,
                             static_cast<std::size_t>(i) * kPaperNameChars * 2, kPaperNameChars);
            });
            break;
        }
        case dc::kOrientation:
            result = kLandscapeRotation;
            break;
        case dc::kCopies:
            result = kMaxCopies;
            break;
        case dc::kBinAdjust:
        case dc::kEmfCompliant:
        case dc::kDatatypeProduced:
            result = -1;
            break;
        case dc::kPersonality:
            for (std::size_t i = 0; i < std::size(kPersonalities); ++i)
                WriteText(output, i * kPersonalityChars * 2, kPersonalityChars, kPersonalities[i]);
            result = static_cast<std::int32_t>(std::size(kPersonalities));
            break;
        case dc::kPrintRate:
            result = kPrintRate;
            break;
        case dc::kPrintRateUnit:
            result = kPrintRateLinesPerMinute;
            break;
        case dc::kMediaReady: {
            ResourceModule resources(system, settings);
            if (!output.empty())
                LoadName(resources.Strings(), kDefaultPaperName, output, 0, kMediaReadyChars);
            result = 1;
            break;
        }
        case dc::kColorDevice:
            result = 1;  // although the default record is monochrome
            break;
        default:  // bins, duplex, bin names, collate, printer memory, staple, pages per
                  // minute, n-up and every capability not known: 0
            result = 0;
            break;
    }
    DrvTrace(u"   Return %X\n", result);
    return result;
}

}  // namespace kx20
