// The device-mode record of the KX20: the system's 220-byte wide DEVMODE followed by the
// driver's private part, 6004 bytes in all. The record travels between the spooler, the
// applications and the rendering module (KVORSUSR.DLL), so it is handled as bytes at fixed
// little-endian offsets, never as a structure.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/bytes.h"

namespace kx20 {

// Sizes and versions of every record this driver produces.
inline constexpr std::size_t kDevModePublicSize = 220;    // dmSize
inline constexpr std::size_t kDevModePrivateSize = 5784;  // dmDriverExtra
inline constexpr std::size_t kDevModeSize = kDevModePublicSize + kDevModePrivateSize;
inline constexpr std::uint16_t kDevModeSpecVersion = 0x0401;
inline constexpr std::uint16_t kDevModeDriverVersion = 0x0400;
inline constexpr std::uint32_t kDevModeSignature = 0xABABCDCD;  // ulVersion

using DevModeImage = std::array<std::uint8_t, kDevModeSize>;

// Public part: byte offsets of the DEVMODEW members. Members marked short are 16-bit signed,
// WORD members 16-bit unsigned, DWORD members 32-bit unsigned.
inline constexpr std::size_t kDmNameChars = 32;             // dmDeviceName, dmFormName
inline constexpr std::size_t kOffDmDeviceName = 0;          // WCHAR[32]
inline constexpr std::size_t kOffDmSpecVersion = 64;        // WORD
inline constexpr std::size_t kOffDmDriverVersion = 66;      // WORD
inline constexpr std::size_t kOffDmSize = 68;               // WORD
inline constexpr std::size_t kOffDmDriverExtra = 70;        // WORD
inline constexpr std::size_t kOffDmFields = 72;             // DWORD
inline constexpr std::size_t kOffDmOrientation = 76;        // short
inline constexpr std::size_t kOffDmPaperSize = 78;          // short
inline constexpr std::size_t kOffDmPaperLength = 80;        // short
inline constexpr std::size_t kOffDmPaperWidth = 82;         // short
inline constexpr std::size_t kOffDmScale = 84;              // short
inline constexpr std::size_t kOffDmCopies = 86;             // short
inline constexpr std::size_t kOffDmDefaultSource = 88;      // short
inline constexpr std::size_t kOffDmPrintQuality = 90;       // short
inline constexpr std::size_t kOffDmColor = 92;              // short
inline constexpr std::size_t kOffDmDuplex = 94;             // short
inline constexpr std::size_t kOffDmYResolution = 96;        // short
inline constexpr std::size_t kOffDmTTOption = 98;           // short
inline constexpr std::size_t kOffDmCollate = 100;           // short
inline constexpr std::size_t kOffDmFormName = 102;          // WCHAR[32]
inline constexpr std::size_t kOffDmLogPixels = 166;         // WORD
inline constexpr std::size_t kOffDmBitsPerPel = 168;        // DWORD
inline constexpr std::size_t kOffDmPelsWidth = 172;         // DWORD
inline constexpr std::size_t kOffDmPelsHeight = 176;        // DWORD
inline constexpr std::size_t kOffDmDisplayFlags = 180;      // DWORD, shared with dmNup
inline constexpr std::size_t kOffDmNup = 180;               // DWORD
inline constexpr std::size_t kOffDmDisplayFrequency = 184;  // DWORD
inline constexpr std::size_t kOffDmICMMethod = 188;         // DWORD
inline constexpr std::size_t kOffDmICMIntent = 192;         // DWORD
inline constexpr std::size_t kOffDmMediaType = 196;         // DWORD
inline constexpr std::size_t kOffDmDitherType = 200;        // DWORD
inline constexpr std::size_t kOffDmReserved1 = 204;         // DWORD
inline constexpr std::size_t kOffDmReserved2 = 208;         // DWORD
inline constexpr std::size_t kOffDmPanningWidth = 212;      // DWORD
inline constexpr std::size_t kOffDmPanningHeight = 216;     // DWORD

// dmFields bits the driver looks at.
inline constexpr std::uint32_t kDmOrientation = 0x1;
inline constexpr std::uint32_t kDmPaperSize = 0x2;
inline constexpr std::uint32_t kDmCopies = 0x100;
inline constexpr std::uint32_t kDmDefaultSource = 0x200;
inline constexpr std::uint32_t kDmPrintQuality = 0x400;
inline constexpr std::uint32_t kDmColor = 0x800;
inline constexpr std::uint32_t kDmDuplex = 0x1000;
inline constexpr std::uint32_t kDmYResolution = 0x2000;
inline constexpr std::uint32_t kDmTTOption = 0x4000;
inline constexpr std::uint32_t kDmCollate = 0x8000;
inline constexpr std::uint32_t kDmMediaType = 0x2000000;

// The driver's own roll paper, the default paper of every record.
inline constexpr std::int16_t kDefaultPaperSize = 259;

// Private part (dmpprivate): offsets from its start, which is the record's own dmSize.
// Every integer field is a 32-bit word.
inline constexpr std::size_t kPrivUlVersion = 0;
inline constexpr std::size_t kPrivReserved4 = 4;
inline constexpr std::size_t kPrivOptionWord8 = 8;  // carried for the rendering module
inline constexpr std::size_t kPrivBReceiptStation = 12;
inline constexpr std::size_t kPrivReserved16 = 16;
inline constexpr std::size_t kPrivOptionWord20 = 20;  // carried for the rendering module
inline constexpr std::size_t kPrivOptionWord24 = 24;  // carried for the rendering module
inline constexpr std::size_t kPrivOptionWord28 = 28;  // carried for the rendering module
inline constexpr std::size_t kPrivReserved32 = 32;    // three words, 32..43
inline constexpr std::size_t kPrivOptionsModeFlag = 44;
inline constexpr std::size_t kPrivOptionsChoice = 48;
inline constexpr std::size_t kPrivBCutPaper = 52;
inline constexpr std::size_t kPrivOptionFlag56 = 56;
inline constexpr std::size_t kPrivOptionFlag60 = 60;
inline constexpr std::size_t kPrivOptionFlag64 = 64;
inline constexpr std::size_t kPrivOptionFlag68 = 68;
inline constexpr std::size_t kPrivFlow = 72;              // the options page's flow list
inline constexpr std::size_t kPrivDensity = 76;           // the options page's density list
inline constexpr std::size_t kPrivFontOverrideName = 80;  // UTF-16, 256 units
inline constexpr std::size_t kPrivFontNameChars = 256;
inline constexpr std::size_t kPrivFirstStation = 592;
inline constexpr std::size_t kPrivSecondStation = 3188;
inline constexpr std::size_t kStationBlockSize = 2596;

// Station block: offsets from the start of the block.
inline constexpr std::size_t kStationChoice0 = 0;
inline constexpr std::size_t kStationChoice4 = 4;
inline constexpr std::size_t kStationSelections = 8;  // logo and message selections, 8..2051
inline constexpr std::size_t kStationSelectionsSize = 2044;
inline constexpr std::size_t kStationListSelections = 2052;  // five words, 2052..2071
inline constexpr std::size_t kStationListSelectionCount = 5;
inline constexpr std::size_t kStationFontName = 2072;  // UTF-16, 256 units
inline constexpr std::size_t kStationChoice2584 = 2584;
inline constexpr std::size_t kStationChoice2588 = 2588;
inline constexpr std::size_t kStationChoice2592 = 2592;

inline constexpr std::u16string_view kDefaultDeviceName = u"KVO KX20";
inline constexpr std::u16string_view kDefaultFormName = u"Letter";
inline constexpr std::u16string_view kNoFontOverride = u"Do not override font";
inline constexpr std::u16string_view kDefaultStationFont = u"Font A";

static_assert(kPrivSecondStation + kStationBlockSize == kDevModePrivateSize);
static_assert(kPrivFirstStation + kStationBlockSize == kPrivSecondStation);
static_assert(kOffDmPanningHeight + 4 == kDevModePublicSize);

// Short (16-bit signed) members of the public part. Like the other byte helpers they read 0
// and write nothing when the member does not lie inside the span.
inline std::int16_t ReadDmShort(ByteSpan record, std::size_t offset) {
    return static_cast<std::int16_t>(ReadU16(record, offset));
}
inline void WriteDmShort(MutableByteSpan record, std::size_t offset, std::int16_t value) {
    WriteU16(record, offset, static_cast<std::uint16_t>(value));
}

// The built-in default record, gsDevMode.
const DevModeImage& gsDevMode();

// Writes the record to the diagnostic trace: the public members, and the private signature and
// station flag when dmDriverExtra says the private part is this driver's. Nothing for an empty
// span; members outside the span read as 0.
void DumpDevMode(ByteSpan record);

}  // namespace kx20
