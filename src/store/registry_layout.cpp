#include "store/registry_layout.h"

#include <algorithm>
#include <array>

#include "platform/trace.h"
#include "platform/format.h"
#include "platform/text.h"

namespace kx20::store {

namespace {

// Paths live in buffers of kPathChars wide characters: what does not fit is lost.
std::u16string CutPath(std::u16string path) {
    if (path.size() > kPathChars - 1)
        path.resize(kPathChars - 1);
    return path;
}

std::u16string Concat(std::initializer_list<std::u16string_view> parts) {
    std::u16string out;
    for (auto part : parts) out += part;
    return CutPath(std::move(out));
}

bool IsFilePort(std::u16string_view portName) {
    return portName == kFilePort;
}

// The port key of a port name as the port-key readers and writers open it: the access list is
// stamped first unless told otherwise, and the key must already exist (the port monitor owns
// it). An empty port name names no port key.
std::unique_ptr<RegistryKey> OpenExistingPortKey(Platform& p, std::u16string_view portName,
                                                 KeyAccess access, bool stamp = true) {
    if (portName.empty())
        return nullptr;
    std::u16string path = PortKeyPath(portName);
    if (stamp)
        SetKeySecurity(p, path);
    return p.registry.OpenKey(Hive::LocalMachine, path, access);
}

// Stamp, then open or create: a key created here gets its access list on the next call.
std::unique_ptr<RegistryKey> StampAndCreate(Platform& p, Hive hive, const std::u16string& path) {
    SetKeySecurity(p, path);
    return p.registry.CreateKey(hive, path);
}

std::unique_ptr<RegistryKey> OpenCatalogueKey(Platform& p, std::u16string_view printerName,
                                              std::u16string_view suffix) {
    std::u16string port = PrinterPortName(p, printerName);
    if (port.empty())
        return nullptr;
    return StampAndCreate(p, Hive::LocalMachine, Concat({PortKeyPath(port), suffix}));
}

// Reads a value into a buffer of `capacity` bytes, as a fixed-size query does: a value that
// does not fit is a failure. Answers the bytes the store returned.
std::optional<Bytes> ReadIntoFixedBuffer(RegistryKey& key, std::u16string_view name,
                                         std::size_t capacity) {
    Bytes buf(capacity, 0);
    std::uint32_t size = static_cast<std::uint32_t>(capacity);
    if (key.QueryValue(name, nullptr, buf.data(), &size) != kRegOk)
        return std::nullopt;
    buf.resize(std::min<std::size_t>(size, capacity));
    return buf;
}

bool ReadDriverDataDword(Platform& p, std::u16string_view printerName, std::u16string_view name,
                         std::uint32_t& value) {
    auto key = OpenDriverDataKey(p, printerName);
    if (!key)
        return false;
    auto v = ReadDwordValue(*key, name);
    if (!v)
        return false;
    value = *v;
    return true;
}

bool WriteDriverDataDword(Platform& p, std::u16string_view printerName, std::u16string_view name,
                          std::uint32_t value) {
    auto key = OpenDriverDataKey(p, printerName);
    return key && WriteDwordValue(*key, name, value) == kRegOk;
}

// The remembered folders: the size is learnt first, the string handed over only when the read
// succeeded. A stored string longer than a path buffer is cut to it.
bool ReadRememberedPath(Platform& p, std::u16string_view printerName, std::u16string_view name,
                        std::u16string& path) {
    auto key = OpenDriverDataKey(p, printerName);
    if (!key)
        return false;
    auto bytes = ReadValueBytes(*key, name);
    if (!bytes)
        return false;
    path = ReadUtf16Field(*bytes, 0, std::min(bytes->size() / 2, kPathChars - 1));
    return true;
}

bool WriteFixedPath(Platform& p, std::u16string_view printerName, std::u16string_view name,
                    std::u16string_view path) {
    auto key = OpenDriverDataKey(p, printerName);
    if (!key)
        return false;
    return key->SetValue(name, kRegString, FixedPathBytes(path)) == kRegOk;
}

}  // namespace

int DeleteValuesWhere(RegistryKey& key, const std::function<bool(std::u16string_view)>& match) {
    int deleted = 0;
    std::uint32_t index = 0;
    std::u16string name;
    for (long rc; (rc = key.EnumValue(index, name)) == kRegOk || rc == kRegMoreData;) {
        if (rc == kRegOk && match(name) && key.DeleteValue(name) == kRegOk) {
            ++deleted;
            index = 0;  // the indexes moved up: start over
        } else {
            ++index;  // a name too long to read or a value that will not go is stepped over
        }
    }
    return deleted;
}

std::u16string MonitorKeyPath() {
    return Concat({kMonitorsRoot, kMonitorName});
}

std::u16string PortKeyPath(std::u16string_view portName) {
    return Concat({kMonitorsRoot, kMonitorName, kPortsInfix, portName});
}

std::u16string MangledPrinterName(std::u16string_view printerName) {
    std::u16string out(printerName);
    std::replace(out.begin(), out.end(), u'\\', u',');
    return out;
}

std::u16string DriverDataKeyPath(std::u16string_view printerName, bool connection) {
    if (connection)
        return Concat({kConnectionsRoot, MangledPrinterName(printerName), kDriverDataSuffix});
    return Concat({kPrintersRoot, printerName, kDriverDataSuffix});
}

std::u16string PrinterPortName(Platform& p, std::u16string_view printerName) {
    auto printer = p.spooler.OpenPrinter(printerName, kPrinterAccessUse, nullptr);
    if (!printer)
        return {};
    PrinterInfo info;
    if (!printer->GetPrinter(5, info))
        return {};
    std::u16string port = std::move(info.portName);
    if (port.size() > kPortNameChars)
        port.resize(kPortNameChars);
    return port;
}

std::vector<AccessEntry> KeyAccessList() {
    return {
        {u"S-1-5-32-544", kKeyAllAccess},  // built-in Administrators
        {u"S-1-5-11", kKeyAllAccess},      // Authenticated Users
        {u"S-1-5-4", kKeyAllAccess},       // Interactive users
    };
}

bool SetKeySecurity(Platform& p, std::u16string_view path) {
    const std::vector<AccessEntry> entries = KeyAccessList();
    return p.registry.SetKeyAccessList(Hive::LocalMachine, path, entries);
}

std::unique_ptr<RegistryKey> OpenPortKey(Platform& p, std::u16string_view printerName) {
    return OpenCatalogueKey(p, printerName, u"");
}

std::unique_ptr<RegistryKey> OpenLogosKey(Platform& p, std::u16string_view printerName) {
    return OpenCatalogueKey(p, printerName, kLogosSuffix);
}

std::unique_ptr<RegistryKey> OpenMessagesKey(Platform& p, std::u16string_view printerName) {
    return OpenCatalogueKey(p, printerName, kMessagesSuffix);
}

std::unique_ptr<RegistryKey> OpenFontsKey(Platform& p, std::u16string_view printerName) {
    return OpenCatalogueKey(p, printerName, kFontsSuffix);
}

std::unique_ptr<RegistryKey> OpenCropsKey(Platform& p, std::u16string_view printerName) {
    return OpenCatalogueKey(p, printerName, kCropsSuffix);
}

std::unique_ptr<RegistryKey> OpenDriverDataKey(Platform& p, std::u16string_view printerName) {
    const bool connection = IsPrinterConnection(p, printerName);
    // A connection's key lives in the current user's hive; the stamp still goes to the local
    // machine, where no such path exists, so it never takes effect there.
    return StampAndCreate(p, connection ? Hive::CurrentUser : Hive::LocalMachine,
                          DriverDataKeyPath(printerName, connection));
}

bool IsPrinterConnection(Platform& p, std::u16string_view printerName) {
    auto printer = p.spooler.OpenPrinter(printerName, kPrinterAccessUse, nullptr);
    if (!printer)
        return false;
    PrinterInfo info;
    if (!printer->GetPrinter(4, info))
        return false;
    if (!(info.attributes & kPrinterAttributeNetwork))
        return false;
    auto local = p.registry.OpenKey(Hive::LocalMachine,
                                    Concat({kPrintersRoot, MangledPrinterName(printerName)}),
                                    KeyAccess::Read);
    return local == nullptr;
}

bool ParseConnectionStatus(ByteSpan record, ConnectionStatus& out) {
    if (record.size() < kConnectionStatusSize || record[0] != 1)
        return false;
    out.connected = record[1] == 1;
    out.modelCode = record[2];
    out.firmwareLevel = record[3];
    // The identity is a C string of at most 8 characters: it ends at a zero byte.
    std::string identity(reinterpret_cast<const char*>(record.data() + 4), 8);
    identity.resize(identity.find('\0') == std::string::npos ? 8 : identity.find('\0'));
    out.identity = AnsiToUtf16(identity);
    return true;
}

Bytes BuildConnectionStatus(const ConnectionStatus& status) {
    Bytes out(kConnectionStatusSize, 0);
    out[0] = 1;
    out[1] = status.connected ? 1 : 0;
    out[2] = static_cast<std::uint8_t>(status.modelCode);
    out[3] = status.firmwareLevel;
    std::string identity = Utf16ToAnsi(status.identity);
    std::copy_n(identity.begin(), std::min<std::size_t>(identity.size(), 8), out.begin() + 4);
    return out;
}

bool GetConnectionStatus(Platform& p, std::u16string_view portName, ConnectionStatus& out) {
    if (IsFilePort(portName))
        return false;
    auto key = OpenExistingPortKey(p, portName, KeyAccess::Read);
    if (!key)
        return false;
    auto record = ReadValueBytes(*key, kConnectionStatusValue);
    if (!record)
        return false;
    ConnectionStatus status;
    if (!ParseConnectionStatus(*record, status))
        return false;
    out = std::move(status);
    return true;
}

bool HasDbcsArea(std::uint32_t modelCode) {
    return modelCode == 2 || modelCode == 7 || modelCode == 9;
}

bool GetMonitorDriverName(Platform& p, std::u16string& name) {
    std::u16string path = MonitorKeyPath();
    SetKeySecurity(p, path);
    auto key = p.registry.OpenKey(Hive::LocalMachine, path, KeyAccess::Read);
    if (!key)
        return false;
    auto bytes = ReadIntoFixedBuffer(*key, kDriverValue, 260);
    if (!bytes)
        return false;
    name = ReadUtf16Field(*bytes, 0, bytes->size() / 2);
    return true;
}

bool IsPortTypeNonZero(Platform& p, std::u16string_view portName) {
    if (IsFilePort(portName))
        return false;
    auto key = OpenExistingPortKey(p, portName, KeyAccess::ReadWrite);
    if (!key)
        return true;
    auto type = ReadDwordValue(*key, kTypeValue);
    return !type || *type != 0;
}

bool IsSerialConnection(Platform& p, std::u16string_view portName) {
    if (IsFilePort(portName))
        return false;
    auto key = OpenExistingPortKey(p, portName, KeyAccess::Read, /*stamp=*/false);
    if (!key)
        return false;
    auto type = ReadDwordValue(*key, kTypeValue);
    DrvTrace(u"IsSerialConnection - Type:%d", type.value_or(0));
    return type && *type != 0;
}

bool GetPortConnectionType(Platform& p, std::u16string_view portName, std::uint32_t& type) {
    if (IsFilePort(portName))
        return false;
    auto key = OpenExistingPortKey(p, portName, KeyAccess::Read, /*stamp=*/false);
    if (!key)
        return false;
    auto value = ReadDwordValue(*key, kTypeValue);
    if (!value)
        return false;
    type = *value;
    return true;
}

bool GetLastPrinterFlag(Platform& p, std::u16string_view portName) {
    if (IsFilePort(portName))
        return false;
    auto key = OpenExistingPortKey(p, portName, KeyAccess::Read);
    if (!key)
        return false;
    auto bytes = ReadValueBytes(*key, kLastPrinterValue);
    return bytes && !bytes->empty() && (*bytes)[0] != 0;
}

bool SetLastPrinterFlag(Platform& p, std::u16string_view portName, std::uint32_t flag) {
    if (IsFilePort(portName))
        return false;
    auto key = OpenExistingPortKey(p, portName, KeyAccess::ReadWrite);
    if (!key)
        return false;
    // Everything but the flag byte belongs to the port monitor and goes back as it was found,
    // at the size it was found; a missing value starts as nine zero bytes.
    Bytes bytes = ReadValueBytes(*key, kLastPrinterValue).value_or(Bytes(kLastPrinterSize, 0));
    if (!bytes.empty())
        bytes[0] = static_cast<std::uint8_t>(flag);
    return key->SetValue(kLastPrinterValue, kRegBinary, bytes) == kRegOk;
}

bool ReadPortChecksum(Platform& p, std::u16string_view portName, std::u16string_view valueName,
                      std::uint8_t out[4]) {
    if (IsFilePort(portName) || out == nullptr)
        return false;
    auto key = OpenExistingPortKey(p, portName, KeyAccess::Read);
    if (!key)
        return false;
    std::array<std::uint8_t, 4> buf;
    std::copy_n(out, 4, buf.begin());
    std::uint32_t size = 4;
    if (key->QueryValue(valueName, nullptr, buf.data(), &size) != kRegOk)
        return false;
    std::copy_n(buf.begin(), 4, out);
    return true;
}

bool GetLogSettings(Platform& p, std::u16string_view printerName, std::uint32_t& value) {
    return ReadDriverDataDword(p, printerName, kLogSettingsValue, value);
}

bool SetLogSettings(Platform& p, std::u16string_view printerName, std::uint32_t value) {
    return WriteDriverDataDword(p, printerName, kLogSettingsValue, value);
}

bool GetLogPath(Platform& p, std::u16string_view printerName, std::u16string& path) {
    auto key = OpenDriverDataKey(p, printerName);
    if (!key)
        return false;
    auto bytes = ReadIntoFixedBuffer(*key, kLogPathValue, kFixedPathBytes);
    if (!bytes)
        return false;
    path = ReadUtf16Field(*bytes, 0, bytes->size() / 2);
    return true;
}

bool SetLogPath(Platform& p, std::u16string_view printerName, std::u16string_view path) {
    return WriteFixedPath(p, printerName, kLogPathValue, path);
}

bool GetLogWrapSize(Platform& p, std::u16string_view printerName, std::uint32_t& value) {
    return ReadDriverDataDword(p, printerName, kLogWrapSizeValue, value);
}

bool SetLogWrapSize(Platform& p, std::u16string_view printerName, std::uint32_t value) {
    return WriteDriverDataDword(p, printerName, kLogWrapSizeValue, value);
}

void SetSessionStateFlag(Platform& p, std::u16string_view printerName, bool flag) {
    auto key = OpenDriverDataKey(p, printerName);
    if (!key)
        return;
    // Flags of earlier processes go first, whatever their process id.
    DeleteValuesWhere(*key,
                      [](std::u16string_view name) { return Contains(name, kSessionStateSuffix); });
    const std::u16string own =
        Format(u"%ld", p.clock.ProcessId()) + std::u16string(kSessionStateSuffix);
    WriteDwordValue(*key, own, flag ? 0 : 1);
}

bool GetFirmwarePath(Platform& p, std::u16string_view printerName, std::u16string& path) {
    return ReadRememberedPath(p, printerName, kFirmwarePathValue, path);
}

void SetFirmwarePath(Platform& p, std::u16string_view printerName, std::u16string_view path) {
    WriteFixedPath(p, printerName, kFirmwarePathValue, path);
}

bool GetDBCSFontPath(Platform& p, std::u16string_view printerName, std::u16string& path) {
    return ReadRememberedPath(p, printerName, kDBCSFontPathValue, path);
}

void SetDBCSFontPath(Platform& p, std::u16string_view printerName, std::u16string_view path) {
    WriteFixedPath(p, printerName, kDBCSFontPathValue, path);
}

bool GetLogosPath(Platform& p, std::u16string_view printerName, std::u16string& path) {
    return ReadRememberedPath(p, printerName, kLogosPathValue, path);
}

void SetLogosPath(Platform& p, std::u16string_view printerName, std::u16string_view path) {
    WriteFixedPath(p, printerName, kLogosPathValue, path);
}

Bytes FixedPathBytes(std::u16string_view path) {
    // Exactly kFixedPathBytes whatever the length: a long path loses its tail and its
    // terminator; a short one is followed by its terminator and zero bytes.
    Bytes out(kFixedPathBytes, 0);
    const std::size_t units = std::min(path.size(), kFixedPathBytes / 2);
    for (std::size_t i = 0; i < units; ++i)
        WriteU16(out, 2 * i, static_cast<std::uint16_t>(path[i]));
    return out;
}

}  // namespace kx20::store
