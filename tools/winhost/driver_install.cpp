#include "tools/winhost/driver_install.h"

#include <cstdlib>
#include <vector>

namespace kx20::winhost {

namespace {

std::wstring ErrorText(const wchar_t* what) {
    return std::wstring(what) + L" failed, error " + std::to_wstring(GetLastError());
}

bool CopyInto(const std::wstring& folder, const wchar_t* file, std::wstring* error) {
    std::wstring from = ProgramFolder() + file;
    std::wstring to = folder + L"\\" + file;
    if (CopyFileW(from.c_str(), to.c_str(), FALSE))
        return true;
    if (error)
        *error = ErrorText((L"copying " + from).c_str());
    return false;
}

}  // namespace

std::wstring ProgramFolder() {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring p(path);
    return p.substr(0, p.find_last_of(L"\\/") + 1);
}

std::wstring DefaultPortPath() {
    // The prefix's C: drive seen from the unix side; the simulated monitor maps the port name
    // back to a DOS path.
    const char* prefix = std::getenv("WINEPREFIX");
    std::string p = prefix ? std::string(prefix) + "/kx20-port.prn" : "/tmp/kx20-port.prn";
    return std::wstring(p.begin(), p.end());
}

bool InstallDriver(std::wstring* error) {
    wchar_t folder[MAX_PATH] = {};
    DWORD needed = 0;
    if (!GetPrinterDriverDirectoryW(nullptr, const_cast<LPWSTR>(kEnvironment), 1,
                                    reinterpret_cast<LPBYTE>(folder), sizeof folder, &needed)) {
        if (error)
            *error = ErrorText(L"GetPrinterDriverDirectoryW");
        return false;
    }
    std::wstring driverFolder(folder);
    if (!CopyInto(driverFolder, L"kvorsgui.dll", error) ||
        !CopyInto(driverFolder, L"KVORSENU.DLL", error) ||
        !CopyInto(driverFolder, L"Kvorsxps.dll", error))
        return false;
    // The spooler keeps the installed files in the "3" subfolder; refresh them too, so a new
    // build replaces an earlier install.
    CreateDirectoryW((driverFolder + L"\\3").c_str(), nullptr);
    if (!CopyInto(driverFolder + L"\\3", L"kvorsgui.dll", error) ||
        !CopyInto(driverFolder + L"\\3", L"KVORSENU.DLL", error) ||
        !CopyInto(driverFolder + L"\\3", L"Kvorsxps.dll", error))
        return false;
    wchar_t system[MAX_PATH] = {};
    GetSystemDirectoryW(system, MAX_PATH);
    if (GetFileAttributesW((ProgramFolder() + L"kvorsmon.dll").c_str()) !=
            INVALID_FILE_ATTRIBUTES &&
        !CopyInto(system, L"kvorsmon.dll", error))
        return false;

    // The resource module comes first: the driver finds its folder from the first entry.
    wchar_t dependent[] = L"KVORSENU.DLL\0kvorsgui.dll\0Kvorsxps.dll\0";
    DRIVER_INFO_3W info = {};
    info.cVersion = 3;
    info.pName = const_cast<LPWSTR>(kDriverName);
    info.pEnvironment = const_cast<LPWSTR>(kEnvironment);
    // The rendering module is not part of this build: the spooler needs a driver path, and the
    // user-interface module stands in for it (GDI printing under Wine never loads it).
    info.pDriverPath = const_cast<LPWSTR>(L"kvorsgui.dll");
    info.pDataFile = const_cast<LPWSTR>(L"KVORSENU.DLL");
    info.pConfigFile = const_cast<LPWSTR>(L"kvorsgui.dll");
    info.pDependentFiles = dependent;
    info.pDefaultDataType = const_cast<LPWSTR>(L"RAW");
    if (!AddPrinterDriverExW(nullptr, 3, reinterpret_cast<LPBYTE>(&info),
                             APD_COPY_NEW_FILES | APD_COPY_FROM_DIRECTORY)) {
        if (!AddPrinterDriverExW(nullptr, 3, reinterpret_cast<LPBYTE>(&info), APD_COPY_NEW_FILES)) {
            if (error)
                *error = ErrorText(L"AddPrinterDriverExW");
            return false;
        }
    }
    return true;
}

bool StoreDriverDefaultDevMode(const std::wstring& name, std::wstring* error) {
    wchar_t folder[MAX_PATH] = {};
    DWORD needed = 0;
    GetPrinterDriverDirectoryW(nullptr, const_cast<LPWSTR>(kEnvironment), 1,
                               reinterpret_cast<LPBYTE>(folder), sizeof folder, &needed);
    HMODULE driver = LoadLibraryW((std::wstring(folder) + L"\\3\\kvorsgui.dll").c_str());
    using ConvertFn = BOOL(WINAPI*)(LPWSTR, DEVMODEW*, DEVMODEW*, LONG*, DWORD);
    auto convert = driver ? reinterpret_cast<ConvertFn>(reinterpret_cast<void*>(
                                GetProcAddress(driver, "DrvConvertDevMode")))
                          : nullptr;
    std::vector<std::uint8_t> record(6004, 0);
    LONG size = static_cast<LONG>(record.size());
    const DWORD kDriverDefault = 4;  // CDM_DRIVER_DEFAULT
    // No printer name: the driver answers its built-in record.
    bool ok = convert && convert(const_cast<LPWSTR>(L""), nullptr,
                                 reinterpret_cast<DEVMODEW*>(record.data()), &size, kDriverDefault);
    if (driver)
        FreeLibrary(driver);
    if (!ok) {
        if (error)
            *error = ErrorText(L"DrvConvertDevMode");
        return false;
    }
    HANDLE printer = nullptr;
    PRINTER_DEFAULTSW access = {nullptr, nullptr, PRINTER_ALL_ACCESS};
    if (!OpenPrinterW(const_cast<LPWSTR>(name.c_str()), &printer, &access)) {
        if (error)
            *error = ErrorText(L"OpenPrinterW");
        return false;
    }
    DWORD infoSize = 0;
    GetPrinterW(printer, 2, nullptr, 0, &infoSize);
    std::vector<std::uint8_t> info(infoSize ? infoSize : 1);
    ok = GetPrinterW(printer, 2, info.data(), infoSize, &infoSize);
    if (ok) {
        auto* level2 = reinterpret_cast<PRINTER_INFO_2W*>(info.data());
        level2->pDevMode = reinterpret_cast<DEVMODEW*>(record.data());
        level2->pSecurityDescriptor = nullptr;
        ok = SetPrinterW(printer, 2, info.data(), 0);
    }
    if (!ok && error)
        *error = ErrorText(L"storing the default device mode");
    ClosePrinter(printer);
    return ok;
}

bool AddKx20Printer(const std::wstring& name, const std::wstring& port, std::wstring* error) {
    HANDLE existing = nullptr;
    if (OpenPrinterW(const_cast<LPWSTR>(name.c_str()), &existing, nullptr) && existing) {
        ClosePrinter(existing);
        return true;
    }
    PRINTER_INFO_2W info = {};
    info.pPrinterName = const_cast<LPWSTR>(name.c_str());
    info.pPortName = const_cast<LPWSTR>(port.c_str());
    info.pDriverName = const_cast<LPWSTR>(kDriverName);
    info.pPrintProcessor = const_cast<LPWSTR>(L"winprint");
    info.pDatatype = const_cast<LPWSTR>(L"RAW");
    HANDLE printer = AddPrinterW(nullptr, 2, reinterpret_cast<LPBYTE>(&info));
    if (!printer) {
        if (error)
            *error = ErrorText(L"AddPrinterW");
        return false;
    }
    ClosePrinter(printer);
    // Wine gives a new printer its own PostScript device mode and never sends the driver the
    // printer-initialisation event; store the driver's default record the way that event does.
    return StoreDriverDefaultDevMode(name, error);
}

}  // namespace kx20::winhost
