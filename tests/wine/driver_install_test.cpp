// The driver as its package installs it: the spooler's record of the driver is the INF's file
// list, the files are the package's, and the spooler's calls answer through it. A printer of
// the KX20's name on another driver is never taken for ours; ours on another port is moved.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/wine/wine_environment.h"
#include "tools/winhost/driver_install.h"
#include "tools/winhost/driver_package.h"

namespace kx20::winetest {
namespace {

std::wstring Wide(const std::string& s) {
    return std::wstring(s.begin(), s.end());
}

std::string ReadAll(const std::wstring& path) {
    std::string text;
    HANDLE h = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0,
                           nullptr);
    if (h == INVALID_HANDLE_VALUE)
        return text;
    char buffer[65536];
    DWORD read = 0;
    while (ReadFile(h, buffer, sizeof buffer, &read, nullptr) && read > 0) text.append(buffer, read);
    CloseHandle(h);
    return text;
}

std::vector<std::wstring> MultiString(const wchar_t* p) {
    std::vector<std::wstring> list;
    for (; p && *p; p += list.back().size() + 1) list.emplace_back(p);
    return list;
}

TEST(DriverInstall, PackageIsInstalledFromItsInfAndAnswersThroughTheSpooler) {
    winhost::DriverPackage package;
    std::string why;
    ASSERT_TRUE(winhost::ReadDriverInf(ReadAll(winhost::PackageFolder() + L"kx20.inf"), &package, &why))
        << why;
    EXPECT_EQ(package.model, "KVO KX20");
    ScopedPrinter printer;
    ASSERT_NE(printer.get(), nullptr);
    DWORD needed = 0;
    GetPrinterDriverW(printer.get(), nullptr, 3, nullptr, 0, &needed);
    std::vector<std::uint8_t> buffer(needed ? needed : 1);
    ASSERT_TRUE(GetPrinterDriverW(printer.get(), nullptr, 3, buffer.data(), needed, &needed));
    const auto* info = reinterpret_cast<const DRIVER_INFO_3W*>(buffer.data());
    EXPECT_EQ(std::wstring(info->pName), Wide(package.model));
    // The spooler answers full paths in its driver folder.
    auto fileName = [](const wchar_t* path) {
        std::wstring p(path ? path : L"");
        return p.substr(p.find_last_of(L"\\/") + 1);
    };
    EXPECT_EQ(fileName(info->pConfigFile), Wide(package.configFile));
    EXPECT_EQ(fileName(info->pDataFile), Wide(package.dataFile));
    std::vector<std::wstring> dependent;
    for (const std::wstring& f : MultiString(info->pDependentFiles)) dependent.push_back(fileName(f.c_str()));
    std::vector<std::wstring> listed;
    for (const std::string& f : package.files) listed.push_back(Wide(f));
    EXPECT_EQ(dependent, listed);
    for (const std::wstring& f : listed)
        EXPECT_EQ(ReadAll(DriverModule::Folder() + f), ReadAll(winhost::PackageFolder() + f))
            << std::string(f.begin(), f.end());
    EXPECT_EQ(DocumentPropertiesW(nullptr, printer.get(), const_cast<LPWSTR>(kPrinterName), nullptr,
                                  nullptr, 0),
              6004);
    EXPECT_GT(DeviceCapabilitiesW(kPrinterName, nullptr, DC_PAPERS, nullptr, nullptr), 0);
}

// A printer the test adds and deletes again, on the given driver and port.
class ScratchPrinter {
  public:
    static constexpr wchar_t kName[] = L"KX20 install check";
    ScratchPrinter(const wchar_t* driver, const std::wstring& port) {
        PRINTER_INFO_2W info = {};
        info.pPrinterName = const_cast<LPWSTR>(kName);
        info.pPortName = const_cast<LPWSTR>(port.c_str());
        info.pDriverName = const_cast<LPWSTR>(driver);
        info.pPrintProcessor = const_cast<LPWSTR>(L"winprint");
        info.pDatatype = const_cast<LPWSTR>(L"RAW");
        HANDLE h = AddPrinterW(nullptr, 2, reinterpret_cast<LPBYTE>(&info));
        added_ = h != nullptr;
        if (h)
            ClosePrinter(h);
    }
    ~ScratchPrinter() {
        HANDLE h = nullptr;
        PRINTER_DEFAULTSW all = {nullptr, nullptr, PRINTER_ALL_ACCESS};
        if (OpenPrinterW(const_cast<LPWSTR>(kName), &h, &all)) {
            DeletePrinter(h);
            ClosePrinter(h);
        }
    }
    bool Added() const { return added_; }
    std::wstring Field(bool driver) const {
        ScopedPrinter p(kName);
        DWORD needed = 0;
        GetPrinterW(p.get(), 2, nullptr, 0, &needed);
        std::vector<std::uint8_t> buffer(needed ? needed : 1);
        if (!GetPrinterW(p.get(), 2, buffer.data(), needed, &needed))
            return L"?";
        const auto* info = reinterpret_cast<const PRINTER_INFO_2W*>(buffer.data());
        return driver ? info->pDriverName : info->pPortName;
    }

  private:
    bool added_ = false;
};

TEST(DriverInstall, PrinterOfAnotherDriverIsRefusedByNameAndOursOnAnotherPortIsMoved) {
    const std::wstring otherPort = PortPath() + L".other";
    // Another driver, made from the same files under another name, stands for the foreign one.
    static constexpr wchar_t kForeign[] = L"KX20 Foreign Driver";
    DRIVER_INFO_3W driver = {};
    driver.cVersion = 3;
    driver.pName = const_cast<LPWSTR>(kForeign);
    driver.pEnvironment = const_cast<LPWSTR>(winhost::kEnvironment);
    driver.pDriverPath = driver.pConfigFile = const_cast<LPWSTR>(L"kvorsgui.dll");
    driver.pDataFile = const_cast<LPWSTR>(L"KVORSENU.DLL");
    ASSERT_TRUE(AddPrinterDriverExW(nullptr, 3, reinterpret_cast<LPBYTE>(&driver),
                                    APD_COPY_NEW_FILES | APD_COPY_FROM_DIRECTORY));
    {
        ScratchPrinter foreign(kForeign, otherPort);
        ASSERT_TRUE(foreign.Added());
        std::wstring error;
        EXPECT_FALSE(winhost::AddKx20Printer(ScratchPrinter::kName, PortPath(), &error));
        for (const std::wstring& part : {std::wstring(ScratchPrinter::kName), std::wstring(kForeign), otherPort})
            EXPECT_NE(error.find(L"\"" + part + L"\""), std::wstring::npos)
                << std::string(error.begin(), error.end());
        EXPECT_EQ(foreign.Field(true), kForeign);
        EXPECT_EQ(foreign.Field(false), otherPort);
    }
    ScratchPrinter ours(winhost::kDriverName, otherPort);
    ASSERT_TRUE(ours.Added());
    std::wstring error;
    EXPECT_TRUE(winhost::AddKx20Printer(ScratchPrinter::kName, PortPath(), &error))
        << std::string(error.begin(), error.end());
    EXPECT_EQ(ours.Field(false), PortPath());
}

TEST(DriverInstall, InfWithoutWhatAPrinterInstallNeedsIsRefusedWithAReason) {
    const std::string good = ReadAll(winhost::PackageFolder() + L"kx20.inf");
    auto without = [&](const std::string& line) {
        std::string text = good;
        text.erase(text.find(line), line.size());
        return text;
    };
    struct Case {
        std::string text, reason;
    };
    const Case cases[] = {
        {without("Class=Printer"), "class Printer"},
        {without("DataFile=KVORSENU.DLL"), "no ConfigFile or DataFile"},
        {without("[KX20_Files]"), "no file list [KX20_Files]"},
        {without("KVORSENU.DLL\r\nkvorsgui.dll"), "which its CopyFiles do not copy"},
        {std::string(winhost::kMaxInfBytes + 1, ' '), "larger than"},
        {good.substr(0, good.find("[KX20_Files]\r\n") + 14) + "..\\..\\win.ini\r\n" +
             good.substr(good.find("[KX20_Files]\r\n") + 14),
         "not a bare file name"},
    };
    for (const Case& c : cases) {
        winhost::DriverPackage package;
        std::string why;
        EXPECT_FALSE(winhost::ReadDriverInf(c.text, &package, &why)) << c.reason;
        EXPECT_NE(why.find(c.reason), std::string::npos) << why;
    }
}

}  // namespace
}  // namespace kx20::winetest
