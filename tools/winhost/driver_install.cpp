#include "tools/winhost/driver_install.h"

#include "tools/winhost/driver_package.h"

#include <cstdlib>
#include <string>
#include <vector>

namespace kx20::winhost {

namespace {

std::wstring ErrorText(const wchar_t* what) {
    return std::wstring(what) + L" failed, error " + std::to_wstring(GetLastError());
}

bool CopyInto(const std::wstring& fromFolder, const std::wstring& folder, const std::wstring& file,
              std::wstring* error) {
    std::wstring from = fromFolder + file;
    std::wstring to = folder + L"\\" + file;
    if (CopyFileW(from.c_str(), to.c_str(), FALSE))
        return true;
    if (error)
        *error = ErrorText((L"copying " + from).c_str());
    return false;
}

// The INF is ASCII: each byte is one character.
std::wstring Wide(const std::string& s) {
    std::wstring w;
    for (unsigned char c : s)
        w += static_cast<wchar_t>(c);
    return w;
}

// Reads a file of at most `limit` bytes.
bool ReadSmallFile(const std::wstring& path, std::size_t limit, std::string* out) {
    HANDLE h = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                           FILE_ATTRIBUTE_NORMAL, nullptr);
    if (h == INVALID_HANDLE_VALUE)
        return false;
    LARGE_INTEGER size = {};
    bool ok = GetFileSizeEx(h, &size) && size.QuadPart >= 0 &&
              static_cast<unsigned long long>(size.QuadPart) <= limit;
    DWORD read = 0;
    if (ok) {
        out->resize(static_cast<std::size_t>(size.QuadPart));
        ok = ReadFile(h, out->data(), static_cast<DWORD>(out->size()), &read, nullptr) &&
             read == out->size();
    }
    CloseHandle(h);
    return ok;
}

std::wstring PrinterDescription(const std::wstring& name, const PRINTER_INFO_2W& info) {
    return L"printer \"" + name + L"\" (driver \"" +
           (info.pDriverName ? info.pDriverName : L"") + L"\", port \"" +
           (info.pPortName ? info.pPortName : L"") + L"\")";
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

std::wstring PackageFolder() {
    return ProgramFolder() + L"package\\";
}

bool InstallDriverPackage(const std::wstring& packageFolder, std::wstring* error) {
    const std::wstring infPath = packageFolder + L"kx20.inf";
    std::string text;
    if (!ReadSmallFile(infPath, kMaxInfBytes, &text)) {
        if (error)
            *error = L"cannot read " + infPath;
        return false;
    }
    DriverPackage package;
    std::string why;
    if (!ReadDriverInf(text, &package, &why)) {
        if (error)
            *error = infPath + L": " + Wide(why);
        return false;
    }
    wchar_t folder[MAX_PATH] = {};
    DWORD needed = 0;
    if (!GetPrinterDriverDirectoryW(nullptr, const_cast<LPWSTR>(kEnvironment), 1,
                                    reinterpret_cast<LPBYTE>(folder), sizeof folder, &needed)) {
        if (error)
            *error = ErrorText(L"GetPrinterDriverDirectoryW");
        return false;
    }
    const std::wstring driverFolder(folder);
    // The spooler keeps the installed files in the "3" subfolder; refresh them too, so a new
    // build replaces an earlier install.
    CreateDirectoryW((driverFolder + L"\\3").c_str(), nullptr);
    std::wstring dependent;
    for (const std::string& file : package.files) {
        const std::wstring name = Wide(file);
        if (!CopyInto(packageFolder, driverFolder, name, error) ||
            !CopyInto(packageFolder, driverFolder + L"\\3", name, error))
            return false;
        dependent += name;
        dependent += L'\0';
    }
    dependent += L'\0';
    wchar_t system[MAX_PATH] = {};
    GetSystemDirectoryW(system, MAX_PATH);
    if (GetFileAttributesW((ProgramFolder() + L"kvorsmon.dll").c_str()) !=
            INVALID_FILE_ATTRIBUTES &&
        !CopyInto(ProgramFolder(), system, L"kvorsmon.dll", error))
        return false;

    const std::wstring model = Wide(package.model), config = Wide(package.configFile),
                       data = Wide(package.dataFile), help = Wide(package.helpFile),
                       dataType = Wide(package.defaultDataType.empty() ? "RAW" : package.defaultDataType);
    // The rendering module is not part of this package: the spooler needs a driver path, and
    // the INF names the user-interface module for it (GDI printing under Wine never loads it).
    const std::wstring driverFile = Wide(package.driverFile.empty() ? package.configFile
                                                                    : package.driverFile);
    DRIVER_INFO_3W info = {};
    info.cVersion = 3;
    info.pName = const_cast<LPWSTR>(model.c_str());
    info.pEnvironment = const_cast<LPWSTR>(kEnvironment);
    info.pDriverPath = const_cast<LPWSTR>(driverFile.c_str());
    info.pDataFile = const_cast<LPWSTR>(data.c_str());
    info.pConfigFile = const_cast<LPWSTR>(config.c_str());
    info.pHelpFile = help.empty() ? nullptr : const_cast<LPWSTR>(help.c_str());
    info.pDependentFiles = dependent.data();
    info.pDefaultDataType = const_cast<LPWSTR>(dataType.c_str());
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

bool InstallDriver(std::wstring* error) {
    return InstallDriverPackage(PackageFolder(), error);
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
    PRINTER_DEFAULTSW all = {nullptr, nullptr, PRINTER_ALL_ACCESS};
    if (OpenPrinterW(const_cast<LPWSTR>(name.c_str()), &existing, &all) && existing) {
        DWORD size = 0;
        GetPrinterW(existing, 2, nullptr, 0, &size);
        std::vector<std::uint8_t> buffer(size ? size : 1);
        bool ok = GetPrinterW(existing, 2, buffer.data(), size, &size);
        auto* info = reinterpret_cast<PRINTER_INFO_2W*>(buffer.data());
        std::wstring why;
        if (!ok) {
            why = ErrorText((L"reading printer \"" + name + L"\"").c_str());
        } else if (!info->pDriverName || std::wstring(info->pDriverName) != kDriverName) {
            why = PrinterDescription(name, *info) + L" is not on the KX20 driver \"" + kDriverName +
                  L"\": left alone, the KX20 printer not installed";
            ok = false;
        } else if (!info->pPortName || _wcsicmp(info->pPortName, port.c_str()) != 0) {
            // Ours on another port (an earlier build folder): it moves to this one.
            info->pPortName = const_cast<LPWSTR>(port.c_str());
            info->pSecurityDescriptor = nullptr;
            ok = SetPrinterW(existing, 2, buffer.data(), 0);
            if (!ok)
                why = ErrorText((L"moving printer \"" + name + L"\" to port " + port).c_str());
        }
        ClosePrinter(existing);
        if (!ok && error)
            *error = why;
        return ok;
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
