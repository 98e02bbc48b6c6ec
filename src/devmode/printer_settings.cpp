#include "devmode/printer_settings.h"

#include <algorithm>

#include "platform/trace.h"
#include "platform/text.h"

namespace kx20 {

namespace {

// What the spooler answers for calls on a printer that is not open.
constexpr std::uint32_t kErrorInvalidHandle = 6;
// System error texts are shown at most this long.
constexpr std::size_t kErrorTextChars = 1024;

std::u16string CutName(std::u16string_view name) {
    return std::u16string(name.substr(0, std::min(name.size(), kPrinterNameChars - 1)));
}

// The low 32 bits of a record's address, as the trace shows pointers.
std::uint32_t TraceAddress(const std::optional<Bytes>& record) {
    if (!record)
        return 0;
    return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(record->data()));
}

}  // namespace

PrinterSettings::PrinterSettings(Platform& platform, std::u16string_view printerName,
                                 std::uint32_t desiredAccess)
    : platform_(platform), printerName_(CutName(printerName)) {
    Open(desiredAccess, nullptr);
}

PrinterSettings::~PrinterSettings() {
    Close();
}

bool PrinterSettings::Open(std::uint32_t desiredAccess, const Bytes* devMode) {
    if (isOpen_)
        return isOpen_;
    printer_ = platform_.spooler.OpenPrinter(printerName_, desiredAccess, devMode);
    isOpen_ = printer_ != nullptr;
    if (isOpen_) {
        grantedAccess_ = desiredAccess;
    } else {
        DrvTrace(u"   YIKES - OpenPrinter failed!\n");
        grantedAccess_ = 0;
    }
    return isOpen_;
}

bool PrinterSettings::Close() {
    printer_.reset();
    isOpen_ = false;
    return true;
}

std::uint32_t PrinterSettings::GetPrinterData(std::u16string_view valueName, std::uint32_t* type,
                                              std::uint8_t* data, std::uint32_t size,
                                              std::uint32_t* needed) {
    if (!printer_)
        return kErrorInvalidHandle;
    return printer_->GetPrinterData(valueName, type, data, size, needed);
}

std::uint32_t PrinterSettings::SetPrinterData(std::u16string_view valueName, std::uint32_t type,
                                              ByteSpan data) {
    const std::uint32_t rc =
        printer_ ? printer_->SetPrinterData(valueName, type, data) : kErrorInvalidHandle;
    if (rc != 0) {
        DrvTrace(u"   SetPrinterData called failed setting %ls\n", valueName);
        DrvTrace(u"   return code is %d", rc);
    }
    return rc;
}

std::uint32_t PrinterSettings::SetPrinterDataEx(std::u16string_view key,
                                                std::u16string_view valueName, std::uint32_t type,
                                                ByteSpan data) {
    const std::uint32_t rc =
        printer_ ? printer_->SetPrinterDataEx(key, valueName, type, data) : kErrorInvalidHandle;
    if (rc != 0) {
        DrvTrace(u"   SetPrinterDataEx called failed setting %ls\n", valueName);
        DrvTrace(u"   return code is %d", rc);
    }
    return rc;
}

bool PrinterSettings::GetDriverInformation(std::uint32_t level, std::optional<DriverInfo>& out) {
    out.reset();
    if (!printer_)
        return false;
    DriverInfo info;
    if (!printer_->GetPrinterDriver(level, info))
        return false;
    out = std::move(info);
    return true;
}

bool PrinterSettings::GetPrinterInformation(std::uint32_t level, std::optional<PrinterInfo>& out) {
    out.reset();
    if (!printer_)
        return false;
    PrinterInfo info;
    if (!printer_->GetPrinter(level, info))
        return false;
    out = std::move(info);
    return true;
}

const PrinterInfo* PrinterSettings::PrinterInformation(std::uint32_t level) {
    if (level < 1 || level > kPrinterLevels)
        return nullptr;
    std::optional<PrinterInfo>& slot = printerInfo_[level - 1];
    return GetPrinterInformation(level, slot) ? &*slot : nullptr;
}

const DriverInfo* PrinterSettings::DriverInformation(std::uint32_t level) {
    if (level < 1 || level > kDriverLevels)
        return nullptr;
    // The .XPI pointer points into the level-3 record that is about to be replaced.
    if (level == 3)
        xpiFile_ = nullptr;
    std::optional<DriverInfo>& slot = driverInfo_[level - 1];
    return GetDriverInformation(level, slot) ? &*slot : nullptr;
}

const DriverInfo* PrinterSettings::CachedDriverInfo3() {
    if (driverInfo_[2])
        return &*driverInfo_[2];
    return DriverInformation(3);
}

bool PrinterSettings::SetPrinterLevel(std::uint32_t level, const PrinterInfo& info) {
    return printer_ && printer_->SetPrinter(level, info);
}

bool PrinterSettings::SetPrinterLevel2(const PrinterInfo& info) {
    if (SetPrinterLevel(2, info))
        return true;
    std::u16string text = platform_.spooler.ErrorText(platform_.spooler.LastError());
    if (text.size() > kErrorTextChars)
        text.resize(kErrorTextChars);
    DrvTrace(u"   system error message is:\n   %ls\n", text);
    return false;
}

bool PrinterSettings::SetPrinterLevel3(const PrinterInfo& info) {
    return SetPrinterLevel(3, info);
}
bool PrinterSettings::SetPrinterLevel5(const PrinterInfo& info) {
    return SetPrinterLevel(5, info);
}
bool PrinterSettings::SetPrinterLevel6(const PrinterInfo& info) {
    return SetPrinterLevel(6, info);
}

bool PrinterSettings::Reset(const PrinterInfo& level2) {
    if (!printer_)
        return false;
    return printer_->ResetPrinter(level2.dataType, level2.devMode ? &*level2.devMode : nullptr);
}

const std::u16string* PrinterSettings::DriverPath() {
    const DriverInfo* info = CachedDriverInfo3();
    return info ? &info->driverPath : nullptr;
}

const std::u16string* PrinterSettings::DataFile() {
    const DriverInfo* info = CachedDriverInfo3();
    return info ? &info->dataFile : nullptr;
}

const std::u16string* PrinterSettings::FindXpiFile() {
    const DriverInfo* info = CachedDriverInfo3();
    xpiFile_ = nullptr;
    if (!info)
        return nullptr;
    for (const std::u16string& file : info->dependentFiles) {
        if (EndsWith(file, u".XPI"))
            xpiFile_ = &file;
    }
    return xpiFile_;
}

const DevModeImage* PrinterSettings::GetDevMode() {
    if (!isOpen_)
        return nullptr;
    std::optional<PrinterInfo> info;
    if (GetPrinterInformation(2, info) && info->devMode) {
        // Exactly one record's worth is taken whatever the stored sizes say. A stored record
        // shorter than that keeps the built-in defaults for the bytes it lacks.
        const Bytes& stored = *info->devMode;
        devMode_ = gsDevMode();
        std::copy_n(stored.begin(), std::min(stored.size(), devMode_.size()), devMode_.begin());
    } else {
        devMode_ = gsDevMode();
        WriteDmShort(devMode_, kOffDmPaperSize, kDefaultPaperSize);
    }
    return &devMode_;
}

void PrinterSettings::SetDevMode(ByteSpan record) {
    if (!CanAdminister())
        return;
    DrvTrace(u"   pRegistry->GetPrinter(ppinfo) getting called\n");
    std::optional<PrinterInfo> info;
    if (!GetPrinterInformation(2, info)) {
        DrvTrace(u"   YIKES, registry.GetPrinter failed\n");
        return;
    }
    DrvTrace(u"   old ppinfo->pDevMode = 0x%08x\n", TraceAddress(info->devMode));
    if (record.empty()) {
        info->devMode.reset();
    } else {
        info->devMode = Bytes(record.begin(), record.end());
    }
    DrvTrace(u"   this->SetPrinter(ppinfo) getting called\n");
    if (!SetPrinterLevel2(*info))
        DrvTrace(u"   YIKES, this->SetPrinter failed\n");
}

bool OpenWithReadFallback(PrinterSettings& settings) {
    if (!settings.IsOpen())
        settings.Open(kPrinterRead);
    return settings.IsOpen();
}

}  // namespace kx20
