// Where the module keeps its state in the registry: the port monitor's per-port keys (flash
// catalogue, connection status, port type, last-printer flag, stored checksums) and the
// printer's driver-data key (log settings, remembered folders, session-state flag).
// Every access opens the key, reads or writes one value and closes it; nothing is cached.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/platform.h"

namespace kx20::store {

inline constexpr std::u16string_view kMonitorsRoot =
    u"SYSTEM\\CurrentControlSet\\Control\\Print\\Monitors\\";
inline constexpr std::u16string_view kMonitorName = u"KVO KX20 Language/Port Monitor";
inline constexpr std::u16string_view kPortsInfix = u"\\Ports\\";
inline constexpr std::u16string_view kPrintersRoot =
    u"SYSTEM\\CurrentControlSet\\Control\\Print\\Printers\\";
inline constexpr std::u16string_view kConnectionsRoot = u"Printers\\Connections\\";
inline constexpr std::u16string_view kDriverDataSuffix = u"\\PrinterDriverData";
inline constexpr std::u16string_view kLogosSuffix = u"\\Logos";
inline constexpr std::u16string_view kMessagesSuffix = u"\\Messages";
inline constexpr std::u16string_view kFontsSuffix = u"\\Fonts";
inline constexpr std::u16string_view kCropsSuffix = u"\\Crops";
inline constexpr std::u16string_view kFilePort = u"FILE:";

// Value names outside the catalogue.
inline constexpr std::u16string_view kDriverValue = u"Driver";
inline constexpr std::u16string_view kConnectionStatusValue = u"ConnectionStatus";
inline constexpr std::u16string_view kTypeValue = u"TYPE";
inline constexpr std::u16string_view kLastPrinterValue = u"LastPrinter";
inline constexpr std::u16string_view kLogSettingsValue = u"LogSettings";
inline constexpr std::u16string_view kLogPathValue = u"LogPath";
inline constexpr std::u16string_view kLogWrapSizeValue = u"LogWrapSize";
inline constexpr std::u16string_view kFirmwarePathValue = u"FirmwarePath";
inline constexpr std::u16string_view kDBCSFontPathValue = u"DBCSFontPath";
inline constexpr std::u16string_view kLogosPathValue = u"LogosPath";
inline constexpr std::u16string_view kSessionStateSuffix = u"_ss";
inline constexpr std::size_t kLastPrinterSize = 9;

// Path buffers hold 260 wide characters: longer paths are cut to 259.
inline constexpr std::size_t kPathChars = 260;
// The spooler's port name is taken up to this many characters.
inline constexpr std::size_t kPortNameChars = 256;
// Full key access, granted to each trustee of the key access list.
inline constexpr std::uint32_t kKeyAllAccess = 0xF003F;
// The fixed data size of the remembered-folder and log-folder strings.
inline constexpr std::size_t kFixedPathBytes = 260;

std::u16string MonitorKeyPath();
std::u16string PortKeyPath(std::u16string_view portName);
std::u16string DriverDataKeyPath(std::u16string_view printerName, bool connection);
// "\\server\queue" becomes ",,server,queue".
std::u16string MangledPrinterName(std::u16string_view printerName);

// The printer's port as the spooler reports it (level 5), at most 256 characters; empty when
// the printer cannot be opened or has no port.
std::u16string PrinterPortName(Platform& p, std::u16string_view printerName);

// The three trustees with full key access, in order.
std::vector<AccessEntry> KeyAccessList();
// Stamps the access list on a local-machine key; false when the key cannot be opened to
// change it or any step fails.
bool SetKeySecurity(Platform& p, std::u16string_view path);

// Openers: stamp the access list on the path, then open or create the key. The port-key
// openers answer null when the printer's port name is empty.
std::unique_ptr<RegistryKey> OpenPortKey(Platform& p, std::u16string_view printerName);
std::unique_ptr<RegistryKey> OpenLogosKey(Platform& p, std::u16string_view printerName);
std::unique_ptr<RegistryKey> OpenMessagesKey(Platform& p, std::u16string_view printerName);
std::unique_ptr<RegistryKey> OpenFontsKey(Platform& p, std::u16string_view printerName);
std::unique_ptr<RegistryKey> OpenCropsKey(Platform& p, std::u16string_view printerName);
std::unique_ptr<RegistryKey> OpenDriverDataKey(Platform& p, std::u16string_view printerName);

bool IsPrinterConnection(Platform& p, std::u16string_view printerName);

// The port's ConnectionStatus record.
struct ConnectionStatus {
    std::u16string identity;         // the 8 identity characters
    std::uint32_t modelCode = 0;     // byte 2
    bool connected = false;          // byte 1 == 1
    std::uint8_t firmwareLevel = 0;  // byte 3; the font operations need it non-zero
};
inline constexpr std::size_t kConnectionStatusSize = 12;
bool ParseConnectionStatus(ByteSpan record, ConnectionStatus& out);
Bytes BuildConnectionStatus(const ConnectionStatus& status);  // what the port monitor writes
bool GetConnectionStatus(Platform& p, std::u16string_view portName, ConnectionStatus& out);
// Models with a double-byte font area.
bool HasDbcsArea(std::uint32_t modelCode);

bool GetMonitorDriverName(Platform& p, std::u16string& name);
bool IsPortTypeNonZero(Platform& p, std::u16string_view portName);
bool IsSerialConnection(Platform& p, std::u16string_view portName);
// The port's connection type (`TYPE`) as the port monitor wrote it, read without stamping the
// key; false for "FILE:", a missing key or a missing value.
bool GetPortConnectionType(Platform& p, std::u16string_view portName, std::uint32_t& type);
bool GetLastPrinterFlag(Platform& p, std::u16string_view portName);
bool SetLastPrinterFlag(Platform& p, std::u16string_view portName, std::uint32_t flag);

// Stored checksums of the flash areas in the port key ("LogosCRC", ...), 4 raw bytes.
bool ReadPortChecksum(Platform& p, std::u16string_view portName, std::u16string_view valueName,
                      std::uint8_t out[4]);

bool GetLogSettings(Platform& p, std::u16string_view printerName, std::uint32_t& value);
bool SetLogSettings(Platform& p, std::u16string_view printerName, std::uint32_t value);
bool GetLogPath(Platform& p, std::u16string_view printerName, std::u16string& path);
bool SetLogPath(Platform& p, std::u16string_view printerName, std::u16string_view path);
bool GetLogWrapSize(Platform& p, std::u16string_view printerName, std::uint32_t& value);
bool SetLogWrapSize(Platform& p, std::u16string_view printerName, std::uint32_t value);
void SetSessionStateFlag(Platform& p, std::u16string_view printerName, bool flag);

bool GetFirmwarePath(Platform& p, std::u16string_view printerName, std::u16string& path);
void SetFirmwarePath(Platform& p, std::u16string_view printerName, std::u16string_view path);
bool GetDBCSFontPath(Platform& p, std::u16string_view printerName, std::u16string& path);
void SetDBCSFontPath(Platform& p, std::u16string_view printerName, std::u16string_view path);
bool GetLogosPath(Platform& p, std::u16string_view printerName, std::u16string& path);
void SetLogosPath(Platform& p, std::u16string_view printerName, std::u16string_view path);

// Deletes every value whose name `match` accepts: enumerates from index 0 and starts over
// after each deletion, so the values' order does not matter. Answers the number deleted.
int DeleteValuesWhere(RegistryKey& key, const std::function<bool(std::u16string_view)>& match);

// The fixed-size string write: exactly 260 bytes of data, cut without terminator when longer.
Bytes FixedPathBytes(std::u16string_view path);

}  // namespace kx20::store
