// Loading a double-byte font file into the printer (the fonts page's 1180 and 1183 buttons):
// the file is chosen, the font flash is prepared, the file's fonts go to the printer as one raw
// job, and the checksums the printer reports afterwards are recorded in the catalogue. Model
// code 9 takes the tagged file (both stations and the single-byte fonts at once), every other
// model the headered file of one station.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/bytes.h"
#include "platform/file_choice.h"
#include "platform/platform.h"
#include "platform/prompts.h"
#include "platform/resources.h"

namespace kx20::fonts {

// Resource strings of the flow.
inline constexpr std::uint32_t kStringThermalStation = 2010;
inline constexpr std::uint32_t kStringImpactStation = 2011;
inline constexpr std::uint32_t kStringThermalFontTitle = 2168;
inline constexpr std::uint32_t kStringImpactFontTitle = 2169;
inline constexpr std::uint32_t kStringHeaderedFontFilter = 2170;
inline constexpr std::uint32_t kStringTaggedFontFilter = 2173;
inline constexpr std::uint32_t kStringPrinterTitle = 2220;
inline constexpr std::uint32_t kStringFontLoadFailed = 2246;
inline constexpr std::uint32_t kStringReplaceFont = 2247;   // "... %s ..." with the station
inline constexpr std::uint32_t kStringNotAFontFile = 2248;  // the file dialog's refusal

// The four font names the fonts page shows.
struct FontNames {
    std::u16string sbcs1;        // 1172
    std::u16string sbcs2;        // 1175
    std::u16string dbcsThermal;  // 1179
    std::u16string dbcsImpact;   // 1182
};

// What the flow works with: the ports, the page's window (owner of its boxes, sender of its
// broadcasts) and the printer.
struct FontFlowContext {
    Platform& p;
    UserPrompts& prompts;
    ResourceStrings& strings;
    WindowId owner = 0;
    std::u16string printerName;
};

// The catalogue record of a downloaded double-byte font: position (1 thermal, 0 impact), code
// page, number of characters, then from byte 22 the face name (the font file's name),
// terminated.
Bytes BuildDbcsFontRecord(bool thermal, std::u16string_view faceName, std::uint32_t codePage,
                          std::uint32_t characters);

// The file dialog's check: the file must suit the printer and the station; a refused file is
// reported (strings 2248 / 2220) and the dialog stays open.
bool AcceptDbcsFontFile(const FontFlowContext& c, const std::u16string& path, bool thermal);

// The whole flow for the station; `names` are the page's fields, updated as the flow goes.
void SelectDBCSFont(const FontFlowContext& c, FontNames& names, bool thermal,
                    const FileChooser& choose);

}  // namespace kx20::fonts
