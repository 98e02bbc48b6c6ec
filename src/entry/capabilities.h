// The printer's capabilities as the system asks for them (DrvDeviceCapabilities): nearly all
// are constants of the driver; the papers come from one table of six roll-paper forms whose
// names are strings of the resource module.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/bytes.h"
#include "platform/platform.h"
#include "platform/system.h"

namespace kx20 {

struct Paper {
    std::uint32_t bit;
    std::int16_t id;
    std::int32_t widthDots;  // at 150 dots per inch
    std::int32_t lengthDots;
    std::int32_t width;  // tenths of a millimetre
    std::int32_t length;
    std::uint32_t nameId;  // string of the resource module
};

inline constexpr std::size_t kPaperCount = 6;
const std::array<Paper, kPaperCount>& PaperTable();

// Bit to paper id; any other bit gives 2002 (the default paper's name id, kept as it is).
std::int32_t PaperIdFromBit(std::uint32_t bit);
// Paper id to bit; any other id gives 4 (the default paper).
std::uint32_t BitFromPaperId(std::int32_t id);
// The number of right shifts that bring the bit to 0 (1 -> 1, 2 -> 2, 32 -> 6, 0 -> 0).
std::uint32_t ShiftsOfBit(std::uint32_t bit);

// Capability numbers.
namespace dc {
inline constexpr std::uint32_t kFields = 1, kPapers = 2, kPaperSize = 3, kMinExtent = 4,
                               kMaxExtent = 5, kBins = 6, kDuplex = 7, kSize = 8, kExtra = 9,
                               kVersion = 10, kDriver = 11, kBinNames = 12, kEnumResolutions = 13,
                               kFileDependencies = 14, kTrueType = 15, kPaperNames = 16,
                               kOrientation = 17, kCopies = 18, kBinAdjust = 19, kEmfCompliant = 20,
                               kDatatypeProduced = 21, kCollate = 22, kPersonality = 25,
                               kPrintRate = 26, kPrintRateUnit = 27, kPrinterMem = 28,
                               kMediaReady = 29, kStaple = 30, kPrintRatePpm = 31,
                               kColorDevice = 32, kNup = 33;
}  // namespace dc

// Output fields of the text answers, in characters.
inline constexpr std::size_t kPaperNameChars = 64;
inline constexpr std::size_t kPersonalityChars = 32;
inline constexpr std::size_t kMediaReadyChars = 256;

// The bytes the answer to a capability writes at most (only the low 16 bits are looked at);
// 0 for those that write nothing. The caller's buffer is taken to be this large.
std::size_t CapabilityOutputSize(std::uint32_t capability);

// One capability query for the printer `deviceName`. `output` is the caller's buffer (empty
// when the caller gave none), at most CapabilityOutputSize bytes of it are written.
std::int32_t AnswerCapability(Platform& platform, SystemServices& system,
                              std::u16string_view deviceName, std::uint32_t capability,
                              MutableByteSpan output, bool hasOutput);

}  // namespace kx20
