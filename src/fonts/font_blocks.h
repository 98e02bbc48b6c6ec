// The printer data blocks that load double-byte fonts into flash, byte for byte. Every command
// opens with the command start marker; a setting is the marker, 0x16 and three operands.
//
// Tagged file (model code 9), in this order:
//   pre-settings    lead-byte ranges (51-53 and 81-83), matrix (1, 255, m), setup (16, 254, 0x3F)
//   DBCS thermal, DBCS impact     groups of at most 255: 0x14 station count, then per
//                                 character lead, second and a 72- or 32-byte glyph
//   SBCS thermal, SBCS impact     size header 0x16 0x02|0x04 width height, then per character
//                                 0x12 station code code glyph
//   post-settings   code page (0x50), spacings (0x54, 0x55), reset with 60000 or 45000, end
// Headered file (other model codes): the six range settings, for impact the height flag, the
// groups of one station, the code page, the restart byte (0x05 serial, 0x07 other) and the end.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "fonts/fnt_file.h"
#include "fonts/fon_file.h"
#include "platform/bytes.h"
#include "platform/platform.h"
#include "platform/resources.h"

namespace kx20::fonts {

inline constexpr std::size_t kSettingSize = 19;
inline constexpr std::size_t kPreSettingsSize = 8 * kSettingSize;  // 152
inline constexpr std::size_t kPostSettingsSize = 93;
inline constexpr std::size_t kGroupHeaderSize = 18;
inline constexpr std::size_t kMaxGroupCharacters = 255;

// Default sizes, spacings and the reset parameters of the post-settings.
inline constexpr std::uint8_t kDefaultThermalDots = 24;
inline constexpr std::uint8_t kDefaultImpactDots = 16;
inline constexpr std::uint8_t kDefaultSbcsSpacing = 3;
inline constexpr std::uint8_t kDefaultDbcsSpacing = 6;
inline constexpr std::uint32_t kResetWideFonts = 60000;  // code pages 936 and 950
inline constexpr std::uint32_t kResetOtherFonts = 45000;

// Marker, 0x16, p1, p2, p3.
void AppendSetting(Bytes& out, std::uint8_t p1, std::uint8_t p2, std::uint8_t p3);

// Each piece answers its bytes, or nothing when its buffer could not be had. A station with no
// characters gives an empty piece (and counts as success).
std::optional<Bytes> PreFONDownloadAdminSettings(const FONMetaData& meta);
// The records of `list` that carry the station's glyph, at most `count` of them.
std::optional<Bytes> PrepDBCSFONFontsForPrinter(std::span<const CharRecord> list,
                                                std::uint32_t count, bool thermal);
std::optional<Bytes> PrepSBCSFONFontsForPrinter(const FONMetaData& meta,
                                                std::span<const CharRecord> list,
                                                std::uint32_t count, bool thermal);
// `serialPort`: the reset is the serial one (0x7A) instead of the immediate one (0x78).
std::optional<Bytes> PostFONDownloadAdminSettings(const FONMetaData& meta, bool serialPort);

// The whole block of a tagged file.
std::optional<Bytes> BuildFONDownloadBlock(const FONMetaData& meta, const FONCharacters& chars,
                                           bool serialPort);
// The whole block of a headered file's records for one station; the first record gives the
// ranges, the height flag and the code page (all zero when there is none).
Bytes BuildFNTDownloadBlock(std::span<const FntRecord> records, bool thermal, bool serialPort);

// Builds the tagged file's block and sends it as a double-byte font job; true when the job
// printed. The reset inside the block follows the port's connection type.
bool OutDownloadFONFontToPrinter(ResourceStrings& strings, Platform& p,
                                 std::u16string_view printerName, const FONMetaData& meta,
                                 const FONCharacters& chars);
// The same for a headered file's records.
bool OutDownloadFNTFontToPrinter(ResourceStrings& strings, Platform& p,
                                 std::u16string_view printerName,
                                 std::span<const FntRecord> records, bool thermal);

}  // namespace kx20::fonts
