#include "platform/win32/win32_spooler.h"

#include "platform/win32/windows_clean.h"

#include <cstring>
#include <vector>

#include "platform/win32/win32_text.h"

namespace kx20 {

namespace {

// A DEVMODE's whole extent as it declares it.
Bytes DevModeBytes(const DEVMODEW* dm) {
    if (!dm)
        return {};
    std::size_t size = static_cast<std::size_t>(dm->dmSize) + dm->dmDriverExtra;
    const auto* p = reinterpret_cast<const std::uint8_t*>(dm);
    return Bytes(p, p + size);
}

std::u16string Str(const wchar_t* s) {
    return FromWide(s);
}

// The usual two-call scheme: ask for the size, allocate, fetch.
template <class Fetch>
bool FetchBuffer(std::vector<std::uint8_t>& buf, Fetch fetch) {
    DWORD needed = 0;
    fetch(nullptr, 0, &needed);
    if (needed == 0)
        return false;
    buf.assign(needed, 0);
    return fetch(buf.data(), needed, &needed) != FALSE;
}

class Win32JobWatch : public JobWatch {
  public:
    Win32JobWatch(HANDLE change) : change_(change) {}
    ~Win32JobWatch() override { FindClosePrinterChangeNotification(change_); }

    bool Wait(JobChanges& changes) override {
        if (WaitForSingleObject(change_, INFINITE) != WAIT_OBJECT_0)
            return false;
        DWORD flags = 0;
        PPRINTER_NOTIFY_INFO info = nullptr;
        if (!FindNextPrinterChangeNotification(change_, &flags, nullptr,
                                               reinterpret_cast<void**>(&info)))
            return false;
        changes = JobChanges{};
        changes.changeFlags = flags;
        changes.hasData = info != nullptr;
        if (info) {
            for (DWORD i = 0; i < info->Count; ++i) {
                const PRINTER_NOTIFY_INFO_DATA& d = info->aData[i];
                changes.items.push_back({d.Type, d.Field, d.Id, d.NotifyData.adwData[0]});
            }
            FreePrinterNotifyInfo(info);
        }
        return true;
    }

  private:
    HANDLE change_;
};

// The spooler of some hosts (Wine among them) has no change notifications. This watch looks
// at the job itself instead: a status change is reported as a set-job change, and a job that
// has left the queue without an error status has been handed to the port, which is reported
// as printed.
class PollingJobWatch : public JobWatch {
  public:
    PollingJobWatch(HANDLE printer, DWORD jobId) : printer_(printer), jobId_(jobId) {}

    bool Wait(JobChanges& changes) override {
        for (;;) {
            std::vector<std::uint8_t> buf;
            bool present = FetchBuffer(buf, [&](LPBYTE b, DWORD size, LPDWORD needed) {
                return GetJobW(printer_, jobId_, 1, b, size, needed);
            });
            changes = JobChanges{};
            changes.hasData = true;
            if (!present) {
                if (gone_)
                    return false;  // reported once already: nothing more will come
                gone_ = true;
                changes.changeFlags = PRINTER_CHANGE_DELETE_JOB;
                changes.items.push_back(
                    {JOB_NOTIFY_TYPE, JOB_NOTIFY_FIELD_STATUS, jobId_, JOB_STATUS_PRINTED});
                return true;
            }
            DWORD status = reinterpret_cast<JOB_INFO_1W*>(buf.data())->Status;
            if (first_ || status != lastStatus_) {
                first_ = false;
                lastStatus_ = status;
                changes.changeFlags = PRINTER_CHANGE_SET_JOB;
                changes.items.push_back({JOB_NOTIFY_TYPE, JOB_NOTIFY_FIELD_STATUS, jobId_, status});
                return true;
            }
            ::Sleep(Win32Spooler::kJobPollMilliseconds);
        }
    }

  private:
    HANDLE printer_;
    DWORD jobId_;
    DWORD lastStatus_ = 0;
    bool first_ = true;
    bool gone_ = false;
};

class Win32Printer : public SpoolerPrinter {
  public:
    explicit Win32Printer(HANDLE h) : h_(h) {}
    ~Win32Printer() override { ClosePrinter(h_); }

    bool GetPrinter(std::uint32_t level, PrinterInfo& out) override {
        std::vector<std::uint8_t> buf;
        if (!FetchBuffer(buf, [&](LPBYTE b, DWORD size, LPDWORD needed) {
                return ::GetPrinterW(h_, level, b, size, needed);
            }))
            return false;
        out = PrinterInfo{};
        switch (level) {
            case 1: {
                auto* i = reinterpret_cast<PRINTER_INFO_1W*>(buf.data());
                out.printerName = Str(i->pName);
                out.comment = Str(i->pComment);
                break;
            }
            case 2: {
                auto* i = reinterpret_cast<PRINTER_INFO_2W*>(buf.data());
                out.serverName = Str(i->pServerName);
                out.printerName = Str(i->pPrinterName);
                out.shareName = Str(i->pShareName);
                out.portName = Str(i->pPortName);
                out.driverName = Str(i->pDriverName);
                out.comment = Str(i->pComment);
                out.location = Str(i->pLocation);
                out.printProcessor = Str(i->pPrintProcessor);
                out.dataType = Str(i->pDatatype);
                if (i->pDevMode)
                    out.devMode = DevModeBytes(i->pDevMode);
                out.attributes = i->Attributes;
                out.priority = i->Priority;
                out.status = i->Status;
                out.jobs = i->cJobs;
                out.startTime = i->StartTime;
                out.untilTime = i->UntilTime;
                break;
            }
            case 4: {
                auto* i = reinterpret_cast<PRINTER_INFO_4W*>(buf.data());
                out.printerName = Str(i->pPrinterName);
                out.serverName = Str(i->pServerName);
                out.attributes = i->Attributes;
                break;
            }
            case 5: {
                auto* i = reinterpret_cast<PRINTER_INFO_5W*>(buf.data());
                out.printerName = Str(i->pPrinterName);
                out.portName = Str(i->pPortName);
                out.attributes = i->Attributes;
                break;
            }
            case 8:
            case 9: {
                auto* i = reinterpret_cast<PRINTER_INFO_8W*>(buf.data());
                if (i->pDevMode)
                    out.devMode = DevModeBytes(i->pDevMode);
                break;
            }
            default:
                break;
        }
        return true;
    }

    bool SetPrinter(std::uint32_t level, const PrinterInfo& info) override {
        std::wstring server = ToWide(info.serverName), name = ToWide(info.printerName),
                     share = ToWide(info.shareName), port = ToWide(info.portName),
                     driver = ToWide(info.driverName), comment = ToWide(info.comment),
                     location = ToWide(info.location), proc = ToWide(info.printProcessor),
                     type = ToWide(info.dataType);
        Bytes dm = info.devMode.value_or(Bytes());
        auto* dmPtr = dm.empty() ? nullptr : reinterpret_cast<DEVMODEW*>(dm.data());
        auto opt = [](std::wstring& s) { return s.empty() ? nullptr : s.data(); };
        switch (level) {
            case 2: {
                PRINTER_INFO_2W i = {};
                i.pServerName = opt(server);
                i.pPrinterName = name.data();
                i.pShareName = opt(share);
                i.pPortName = port.data();
                i.pDriverName = driver.data();
                i.pComment = opt(comment);
                i.pLocation = opt(location);
                i.pDevMode = dmPtr;
                i.pPrintProcessor = proc.data();
                i.pDatatype = opt(type);
                i.Attributes = info.attributes;
                i.Priority = info.priority;
                i.StartTime = info.startTime;
                i.UntilTime = info.untilTime;
                return ::SetPrinterW(h_, 2, reinterpret_cast<LPBYTE>(&i), 0) != FALSE;
            }
            case 5: {
                PRINTER_INFO_5W i = {};
                i.pPrinterName = name.data();
                i.pPortName = port.data();
                i.Attributes = info.attributes;
                return ::SetPrinterW(h_, 5, reinterpret_cast<LPBYTE>(&i), 0) != FALSE;
            }
            case 6: {
                PRINTER_INFO_6 i = {info.status};
                return ::SetPrinterW(h_, 6, reinterpret_cast<LPBYTE>(&i), 0) != FALSE;
            }
            default:
                SetLastError(ERROR_INVALID_LEVEL);
                return false;
        }
    }

    bool GetPrinterDriver(std::uint32_t level, DriverInfo& out) override {
        if (level < 1 || level > 3)
            return false;
        std::vector<std::uint8_t> buf;
        if (!FetchBuffer(buf, [&](LPBYTE b, DWORD size, LPDWORD needed) {
                return ::GetPrinterDriverW(h_, nullptr, level, b, size, needed);
            }))
            return false;
        out = DriverInfo{};
        auto* i = reinterpret_cast<DRIVER_INFO_3W*>(buf.data());
        if (level == 1) {
            out.name = Str(reinterpret_cast<DRIVER_INFO_1W*>(buf.data())->pName);
            return true;
        }
        out.version = i->cVersion;
        out.name = Str(i->pName);
        out.environment = Str(i->pEnvironment);
        out.driverPath = Str(i->pDriverPath);
        out.dataFile = Str(i->pDataFile);
        out.configFile = Str(i->pConfigFile);
        if (level == 3) {
            out.helpFile = Str(i->pHelpFile);
            out.monitorName = Str(i->pMonitorName);
            out.defaultDataType = Str(i->pDefaultDataType);
            // Zero-separated list ending in an empty entry; bounded by the fetched buffer.
            if (const wchar_t* p = i->pDependentFiles) {
                const auto* end = reinterpret_cast<const wchar_t*>(buf.data() + buf.size());
                while (p < end && *p) {
                    const wchar_t* q = p;
                    while (q < end && *q) ++q;
                    out.dependentFiles.push_back(FromWide(std::wstring_view(p, q - p)));
                    p = q + 1;
                }
            }
        }
        return true;
    }

    std::uint32_t GetPrinterData(std::u16string_view name, std::uint32_t* type, std::uint8_t* data,
                                 std::uint32_t size, std::uint32_t* needed) override {
        std::wstring n = ToWide(name);
        DWORD t = 0, need = 0;
        DWORD rc = ::GetPrinterDataW(h_, n.data(), &t, data, size, &need);
        if (type)
            *type = t;
        if (needed)
            *needed = need;
        return rc;
    }

    std::uint32_t SetPrinterData(std::u16string_view name, std::uint32_t type,
                                 ByteSpan data) override {
        std::wstring n = ToWide(name);
        return ::SetPrinterDataW(h_, n.data(), type, const_cast<LPBYTE>(data.data()),
                                 static_cast<DWORD>(data.size()));
    }

    std::uint32_t SetPrinterDataEx(std::u16string_view key, std::u16string_view name,
                                   std::uint32_t type, ByteSpan data) override {
        std::wstring k = ToWide(key), n = ToWide(name);
        return ::SetPrinterDataExW(h_, k.c_str(), n.c_str(), type, const_cast<LPBYTE>(data.data()),
                                   static_cast<DWORD>(data.size()));
    }

    bool ResetPrinter(std::u16string_view dataType, const Bytes* devMode) override {
        std::wstring t = ToWide(dataType);
        Bytes dm = devMode ? *devMode : Bytes();
        PRINTER_DEFAULTSW d = {t.empty() ? nullptr : t.data(),
                               dm.empty() ? nullptr : reinterpret_cast<DEVMODEW*>(dm.data()), 0};
        return ::ResetPrinterW(h_, &d) != FALSE;
    }

    std::uint32_t StartDoc(std::u16string_view docName, std::u16string_view dataType) override {
        std::wstring n = ToWide(docName), t = ToWide(dataType);
        DOC_INFO_1W doc = {n.data(), nullptr, t.data()};
        return ::StartDocPrinterW(h_, 1, reinterpret_cast<LPBYTE>(&doc));
    }
    bool StartPage() override { return ::StartPagePrinter(h_) != FALSE; }
    bool Write(ByteSpan data, std::uint32_t* written) override {
        DWORD n = 0;
        BOOL ok = ::WritePrinter(h_, const_cast<std::uint8_t*>(data.data()),
                                 static_cast<DWORD>(data.size()), &n);
        if (written)
            *written = n;
        return ok != FALSE;
    }
    bool EndPage() override { return ::EndPagePrinter(h_) != FALSE; }
    bool EndDoc() override { return ::EndDocPrinter(h_) != FALSE; }

    std::unique_ptr<JobWatch> WatchJobs(std::uint32_t changeFlags, std::uint16_t field,
                                        std::uint32_t jobId) override {
        WORD fields[1] = {field};
        PRINTER_NOTIFY_OPTIONS_TYPE type = {JOB_NOTIFY_TYPE, 0, 0, 0, 1, fields};
        PRINTER_NOTIFY_OPTIONS options = {2, 0, 1, &type};
        HANDLE change = FindFirstPrinterChangeNotification(h_, changeFlags, 0, &options);
        if (change != INVALID_HANDLE_VALUE && change != nullptr)
            return std::make_unique<Win32JobWatch>(change);
        if (jobId == 0)
            return nullptr;
        return std::make_unique<PollingJobWatch>(h_, jobId);
    }

    bool SetJobCommand(std::uint32_t jobId, std::uint32_t command) override {
        return ::SetJobW(h_, jobId, 0, nullptr, command) != FALSE;
    }

  private:
    HANDLE h_;
};

}  // namespace

std::unique_ptr<SpoolerPrinter> Win32Spooler::OpenPrinter(std::u16string_view name,
                                                          std::uint32_t access,
                                                          const Bytes* devMode) {
    std::wstring n = ToWide(name);
    Bytes dm = devMode ? *devMode : Bytes();
    PRINTER_DEFAULTSW defaults = {
        nullptr, dm.empty() ? nullptr : reinterpret_cast<DEVMODEW*>(dm.data()), access};
    HANDLE h = nullptr;
    if (!::OpenPrinterW(n.data(), &h, &defaults) || !h)
        return nullptr;
    return std::make_unique<Win32Printer>(h);
}

std::uint32_t Win32Spooler::LastError() {
    return GetLastError();
}

std::u16string Win32Spooler::ErrorText(std::uint32_t code) {
    wchar_t buf[1024] = {};
    DWORD n = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                             code, 0, buf, 1024, nullptr);
    return FromWide(std::wstring_view(buf, n));
}

}  // namespace kx20
