// The fixed set of printer queries and operations over the command channel: checksums of the
// flash areas (with the port key's stored copies when the printer cannot be asked), the printer
// setup and its flash write protection, the status byte, configuration table values and the
// double-byte readiness test built on them, flash erasure, the maintenance command and reset.
// Every operation loads the port monitor for itself; all answer true or false and show nothing.
#pragma once

#include <cstdint>
#include <string_view>

#include "platform/platform.h"

namespace kx20::channel {

// Flash areas, as numbered by the checksum and erase commands.
inline constexpr std::uint8_t kAreaLogos = 1;
inline constexpr std::uint8_t kAreaMessages = 2;
inline constexpr std::uint8_t kAreaFonts = 3;  // erased together with area 4
inline constexpr std::uint8_t kAreaSbcsThermal = 4;
inline constexpr std::uint8_t kAreaDbcsThermal = 6;
inline constexpr std::uint8_t kAreaDbcsImpact = 7;

// Reset parameters the font operations pass.
inline constexpr std::uint32_t kResetAfterFontDownload = 10000;
inline constexpr std::uint32_t kResetAfterFontErase = 5000;
// The printer needs this long after a reset before it answers again.
inline constexpr std::uint32_t kResetWaitMs = 5000;
// Pause after each configuration read of the readiness test.
inline constexpr std::uint32_t kConfigReadWaitMs = 50;

// Checksums: 4 raw bytes, never interpreted. Online they are asked of the printer, offline they
// come from the port key's stored copy. `out` is written only on success.
bool GetLogosCRC(Platform& p, bool online, std::u16string_view printerName, std::uint8_t out[4]);
// Unlike the others this one answers true unless the printer answered with no checksum: a
// monitor that cannot be loaded, a failed command or a missing stored copy leave `out`
// untouched and still answer true.
bool GetMessagesCRC(Platform& p, bool online, std::u16string_view printerName, std::uint8_t out[4]);
bool GetSBCSThermalCRC(Platform& p, bool online, std::u16string_view printerName,
                       std::uint8_t out[4]);
// Area 6 when `thermal`, else area 7.
bool GetDBCSCRC(Platform& p, bool online, std::u16string_view printerName, std::uint8_t out[4],
                bool thermal);

bool GetStatusByte(Platform& p, std::u16string_view printerName, std::uint8_t& out);

// The two printer setup bytes; `out` may be null to test only that the setup can be read.
bool OutGetPrinterSetup(Platform& p, std::u16string_view printerName, std::uint8_t* out);
// False only when the setup was read and one of its write-protection bits (0xC0 of the
// second byte) is set.
bool IsFlashWritable(Platform& p, std::u16string_view printerName);
// Rewrites the setup with the second byte 0x3F (writable) or 0xFF (protected), then asks the
// printer to take it over.
bool OutSetFlashWritable(Platform& p, std::u16string_view printerName, bool enable);

bool OutMaintenanceCommand(Platform& p, std::u16string_view printerName);
// Erase one flash area (0x15 area, printer name passed); the logo, message and font pages
// erase their own areas with it.
bool OutEraseFlashArea(Platform& p, std::u16string_view printerName, std::uint8_t area);
// Erase every area (logos, messages, single-byte fonts, and the thermal double-byte area on
// the models that have one), or only the font areas. Every command is sent even after one
// fails; the answer is false if any failed.
bool OutEraseAllSectors(Platform& p, std::u16string_view printerName, std::uint32_t modelCode);
bool OutEraseAllFontSectors(Platform& p, std::u16string_view printerName, std::uint32_t modelCode);

// Serial reset first, else buffered, else immediate; always waits kResetWaitMs afterwards.
void ResetKX20Printer(Platform& p, bool serial, bool buffered, std::u16string_view printerName,
                      std::uint32_t parameter);

// A configuration table entry. The printer sends it most significant byte first; `out` holds it
// least significant byte first (out[0] = reply[1], out[1] = reply[0]), so ReadU16(out) is the
// value.
bool GetMctValueFromPrinter(Platform& p, std::u16string_view printerName, std::uint8_t entry,
                            std::uint8_t out[2]);
bool IsHaldenPrinterDBCSReady(Platform& p, std::u16string_view printerName);

}  // namespace kx20::channel
