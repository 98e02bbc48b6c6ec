// Printer firmware files and the update. A firmware file is the image the printer loads,
// preceded by three text lines read at fixed positions, each with "%s %x":
//   EcLevel <hex>      the firmware level of the file
//   BootLevel <hex>    the boot-code level (must not be 0)
//   DevType <hex>      the printer family: 1, 2 or 3
// The whole file, header included, goes to the printer wrapped in one command (marker, 0x6B,
// the file, marker) as a raw job, and the job's end decides the outcome.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/trace_notes.h"
#include "platform/bytes.h"
#include "platform/platform.h"
#include "platform/resources.h"

namespace kx20::firmware {

// Firmware levels: families 1 and 2 take 48 to 93; family 3 on model code 8 needs 94 or more.
inline constexpr std::uint32_t kLowestLevel = 0x30;
inline constexpr std::uint32_t kHighestNormalLevel = 0x5D;
inline constexpr std::uint32_t kLowestModel8Level = 0x5E;

// A firmware image larger than this is refused before it is read.
inline constexpr std::uint64_t kMaxFirmwareFileBytes = 64u * 1024u * 1024u;

// Resource strings.
inline constexpr std::uint32_t kStringPrinterTitle = 2220;
inline constexpr std::uint32_t kStringLevelQuestion = 2250;
inline constexpr std::uint32_t kStringLevelUp = 2251;    // current and new level
inline constexpr std::uint32_t kStringLevelSame = 2252;  // the level
inline constexpr std::uint32_t kStringLevelDown = 2253;  // current and new level
inline constexpr std::uint32_t kStringFlashDone = 2254;
inline constexpr std::uint32_t kStringOutsideHours = 2255;
inline constexpr std::uint32_t kStringFirmwareJob = 2274;

struct FirmwareHeader {
    std::uint32_t ecLevel = 0;
    std::uint32_t bootLevel = 0;
    std::uint32_t devType = 0;
};

// "%s %x" over one line: a word, blanks, then a hexadecimal number (sign and 0x prefix as the
// scan takes them; a number beyond 32 bits reads as 0xFFFFFFFF). Nothing when the line holds no
// word or no number after it.
bool ScanWordAndHex(std::string_view line, std::uint32_t& value);

// The three header lines at their fixed positions. `ecLevelOut`, when given, receives the file's
// level as soon as line 1 has been read. False when a line is missing its prefix or a level or
// the type is 0.
bool ReadFirmwareHeader(ByteSpan file, FirmwareHeader& header, std::uint32_t* ecLevelOut,
                        TraceNotes* notes = nullptr);
// Whether the family and level fit the printer's model code.
bool FirmwareFitsModel(const FirmwareHeader& header, std::uint32_t modelCode,
                       TraceNotes* notes = nullptr);

// The whole check against the printer's connection status. `ecLevel` is written as soon as the
// first line has been read.
bool ValidateFirmwareFile(Platform& p, std::u16string_view printerName, std::u16string_view path,
                          std::uint32_t& ecLevel, TraceNotes* notes = nullptr);

// The question shown before the flash: string 2250, a line feed, then 2251 (the printer's level
// is lower), 2252 (the same) or 2253 (higher) with the levels.
std::u16string FirmwareLevelQuestion(ResourceStrings& strings, std::uint32_t currentLevel,
                                     std::uint32_t fileLevel);

// Marker, 0x6B, the file's bytes unchanged, marker: the file's size + 31 bytes.
Bytes BuildFirmwareBlock(ByteSpan file);

// Sends the file as a firmware job (document name string 2274) and waits for its end. A file
// that cannot be read sends a job with no data: the job's end alone decides. True when the job
// printed.
bool OutFlashFirmware(ResourceStrings& strings, Platform& p, std::u16string_view printerName,
                      std::u16string_view path);

}  // namespace kx20::firmware
