// The device sheet called directly, as a host that collects the pages with its own service
// function would call it (Wine itself never calls DrvDevicePropertySheets): what only the real
// Win32 side shows (the page records over the loaded resource module, the common-sheet
// description, the About box painted through the sheet's callback, the optional page module
// and the newer-system path in a helper process that reports version 5.2). The page order,
// titles and the document sheet's result are the unit suite's (property_sheets_test.cpp).
#include "platform/win32/windows_clean.h"

#include <commctrl.h>
#include <compstui.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "entry/win32/ddi_types.h"
#include "tests/wine/sheet_pages.h"
#include "tools/winhost/window_script.h"
#include "tests/wine/wine_environment.h"

namespace kx20::winetest {

// A sheet service that counts the page descriptions and keeps the page handles it is given.
struct Collector {
    int described = 0;
    std::vector<HPROPSHEETPAGE> made;

    static LONG_PTR CALLBACK Service(HANDLE sheet, UINT function, LPARAM lParam1, LPARAM) {
        auto* self = static_cast<Collector*>(sheet);
        if (function == CPSFUNC_ADD_PROPSHEETPAGEW)
            ++self->described;
        else if (function == CPSFUNC_ADD_HPROPSHEETPAGE)
            self->made.push_back(reinterpret_cast<HPROPSHEETPAGE>(lParam1));
        else
            return 0;
        return self->described + static_cast<LONG_PTR>(self->made.size());
    }

    PROPSHEETUI_INFO Info(WORD reason, LPARAM init) {
        PROPSHEETUI_INFO info = {};
        info.cbSize = sizeof info;
        info.Version = PROPSHEETUI_INFO_VERSION;
        info.Flags = PSUIINFO_UNICODE;
        info.Reason = reason;
        info.hComPropSheet = this;
        info.pfnComPropSheet = &Collector::Service;
        info.lParamInit = init;
        return info;
    }
};

// Child role "device-sheet-pages": the device sheet's INIT with a collecting service; prints
// the system version and how the pages came.
int DeviceSheetPagesRole(const std::wstring& driverPath) {
    HMODULE driver = LoadLibraryW(driverPath.c_str());
    auto entry = driver ? reinterpret_cast<PFNPROPSHEETUI>(reinterpret_cast<void*>(
                              GetProcAddress(driver, "DrvDevicePropertySheets")))
                        : nullptr;
    if (!entry)
        return 2;
    OSVERSIONINFOW version = {sizeof version};
    GetVersionExW(&version);
    wchar_t folder[MAX_PATH] = {};
    GetCurrentDirectoryW(MAX_PATH, folder);
    DevicePropertyHeader header{sizeof header, 0, nullptr, const_cast<LPWSTR>(kPrinterName)};
    Collector collector;
    PROPSHEETUI_INFO info = collector.Info(PROPSHEETUI_REASON_INIT, 0);
    const LONG rc = entry(&info, reinterpret_cast<LPARAM>(&header));
    int made = 0;
    for (HPROPSHEETPAGE page : collector.made) made += page && DestroyPropertySheetPage(page);
    wchar_t after[MAX_PATH] = {};
    GetCurrentDirectoryW(MAX_PATH, after);
    info.Reason = PROPSHEETUI_REASON_DESTROY;
    entry(&info, 0);
    std::printf("version=%lu.%lu rc=%ld made=%d described=%d folder-kept=%d\n",
                version.dwMajorVersion, version.dwMinorVersion, rc, made, collector.described,
                lstrcmpiW(folder, after) == 0 ? 1 : 0);
    return 0;
}

namespace {

class DirectSheets : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_NE(driver_.get(), nullptr);
        ASSERT_NE(device_, nullptr);
        ASSERT_NE(document_, nullptr);
    }
    DriverModule driver_;
    PFNPROPSHEETUI device_ = driver_.Entry<PFNPROPSHEETUI>("DrvDevicePropertySheets");
    PFNPROPSHEETUI document_ = driver_.Entry<PFNPROPSHEETUI>("DrvDocumentPropertySheets");
};

TEST_F(DirectSheets, DeviceSheetAddsItsPagesAndDescribesItself) {
    DevicePropertyHeader header{sizeof header, 0, nullptr, const_cast<LPWSTR>(kPrinterName)};
    Collector collector;

    PROPSHEETUI_INFO info = collector.Info(PROPSHEETUI_REASON_INIT, 0);
    ASSERT_EQ(device_(&info, reinterpret_cast<LPARAM>(&header)), 1);
    EXPECT_EQ(info.Result, 1u);
    // The pages' templates and titles are checked where the sheet is shown (sheet_host_test).
    EXPECT_NE(GetModuleHandleW(L"KVORSENU.DLL"), nullptr) << "the resource module is loaded";
    EXPECT_EQ(collector.described, static_cast<int>(DevicePages().size()));

    auto* description = reinterpret_cast<COMPROPSHEETUI*>(info.UserData);
    ASSERT_NE(description, nullptr);
    EXPECT_EQ(description->Flags, CPSUIF_UPDATE_PERMISSION | CPSUIF_ABOUT_CALLBACK);
    EXPECT_EQ(description->hInstCaller, driver_.get());
    EXPECT_STREQ(description->pCallerName, L"KVO KX20");
    EXPECT_EQ(std::wstring(description->pHelpFile), DriverModule::Folder() + L"KVORSENU.HLP");
    EXPECT_EQ(description->pDlgPage, CPSUI_PDLGPAGE_PRINTERPROP);
    ASSERT_NE(description->pfnCallBack, nullptr);

    // The callback's About reason shows the About box; the test reads it and closes it.
    struct AboutSeen {
        std::wstring version;
        COLORREF corner = 0, body = 0;
        bool screenshot = false;
    } seen;
    ModalDriver script([] { return FindThreadDialog(L"About KVO KX20 Printer Driver"); },
                       {[](HWND about) {
                            RedrawWindow(
                                about, nullptr, nullptr,
                                RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
                            return true;
                        },
                        [&seen](HWND about) {
                            wchar_t text[256] = {};
                            GetDlgItemTextW(about, 1222, text, 256);
                            seen.version = text;
                            // The logo lies centred in frame 1220; its corner pixel is
                            // magenta, its middle the printer's body.
                            RECT r;
                            GetWindowRect(GetDlgItem(about, 1220), &r);
                            MapWindowPoints(nullptr, about, reinterpret_cast<POINT*>(&r), 2);
                            const int x = r.left + (r.right - r.left - 64) / 2;
                            const int y = r.top + (r.bottom - r.top - 64) / 2;
                            HDC dc = GetDC(about);
                            seen.corner = GetPixel(dc, x + 1, y + 1);
                            seen.body = GetPixel(dc, x + 10, y + 52);
                            ReleaseDC(about, dc);
                            seen.screenshot = SaveScreenshot(L"about-box");
                            PostMessageW(about, WM_COMMAND, IDOK, 0);
                            return true;
                        }});
    CPSUICBPARAM about = {};
    about.cbSize = sizeof about;
    about.Reason = CPSUICB_REASON_ABOUT;
    about.UserData = description->UserData;
    EXPECT_EQ(description->pfnCallBack(&about), CPSUICB_ACTION_NONE);
    EXPECT_TRUE(script.Finished());
    EXPECT_EQ(seen.version, L"Version 2.4.1");
    EXPECT_EQ(seen.corner, GetSysColor(COLOR_3DFACE)) << "magenta is left unpainted";
    EXPECT_EQ(seen.body, RGB(28, 52, 96));
    EXPECT_TRUE(seen.screenshot);

    info.Reason = PROPSHEETUI_REASON_DESTROY;
    EXPECT_EQ(device_(&info, 0), 1);
    EXPECT_EQ(info.UserData, 0u);
}

// The optional page module, called as the driver calls it on the systems that want it.
TEST(PageModule, MakesAPageFromADescription) {
    HMODULE module = LoadLibraryW((DriverModule::Folder() + L"Kvorsxps.dll").c_str());
    ASSERT_NE(module, nullptr);
    using MakeFn = HPROPSHEETPAGE(WINAPI*)(PROPSHEETPAGEW*);
    auto make = reinterpret_cast<MakeFn>(
        reinterpret_cast<void*>(GetProcAddress(module, "GetXPPropSheetPage")));
    ASSERT_NE(make, nullptr);
    EXPECT_EQ(make(nullptr), nullptr);

    HMODULE resources = LoadLibraryExW((DriverModule::Folder() + L"KVORSENU.DLL").c_str(), nullptr,
                                       LOAD_LIBRARY_AS_DATAFILE);
    ASSERT_NE(resources, nullptr);
    static bool initialised = false;
    PROPSHEETPAGEW page = {};
    page.dwSize = sizeof page;
    page.dwFlags = PSP_USETITLE;
    page.hInstance = resources;
    page.pszTemplate = MAKEINTRESOURCEW(1009);
    page.pszTitle = L"Fonts";
    page.pfnDlgProc = [](HWND, UINT message, WPARAM, LPARAM) -> INT_PTR {
        if (message == WM_INITDIALOG)
            initialised = true;
        return message == WM_INITDIALOG;
    };
    HPROPSHEETPAGE handle = make(&page);
    ASSERT_NE(handle, nullptr);

    // The page shows in a sheet of the test's own.
    PROPSHEETHEADERW sheet = {};
    sheet.dwSize = sizeof sheet;
    sheet.dwFlags = PSH_MODELESS;
    sheet.nPages = 1;
    sheet.phpage = &handle;
    HWND window = reinterpret_cast<HWND>(PropertySheetW(&sheet));
    ASSERT_NE(window, nullptr);
    HWND shown = reinterpret_cast<HWND>(SendMessageW(window, PSM_GETCURRENTPAGEHWND, 0, 0));
    EXPECT_TRUE(initialised);
    EXPECT_NE(GetDlgItem(shown, 1177), nullptr);
    DestroyWindow(window);
    FreeLibrary(resources);
    FreeLibrary(module);
}

// A copy of this program in a folder of its own (so that only the driver's folder holds the
// page module), told by Wine to report another system version.
std::string RunAsSystem(const wchar_t* exeName, const wchar_t* version) {
    const std::wstring folder = L"C:\\kx20-hosts";
    CreateDirectoryW(folder.c_str(), nullptr);
    wchar_t self[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, self, MAX_PATH);
    const std::wstring host = folder + L"\\" + exeName;
    if (!CopyFileW(self, host.c_str(), FALSE))
        return "copy failed";
    HKEY key = nullptr;
    const std::wstring path = std::wstring(L"Software\\Wine\\AppDefaults\\") + exeName;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0, KEY_SET_VALUE, nullptr,
                        &key, nullptr) != ERROR_SUCCESS)
        return "registry failed";
    RegSetValueExW(key, L"Version", 0, REG_SZ, reinterpret_cast<const BYTE*>(version),
                   static_cast<DWORD>((lstrlenW(version) + 1) * sizeof(wchar_t)));
    RegCloseKey(key);
    std::string output;
    const int rc = RunChildRole(L"device-sheet-pages", DriverModule::Folder() + L"kvorsgui.dll",
                                &output, host);
    return rc == 0 ? output : "exit " + std::to_string(rc) + ": " + output;
}

TEST(PageModule, DeviceSheetUsesItOnVersion52Only) {
    EXPECT_EQ(RunAsSystem(L"kx20_xp_host.exe", L"winxp64"),
              "version=5.2 rc=1 made=5 described=0 folder-kept=1\r\n");
    EXPECT_EQ(RunAsSystem(L"kx20_w2k_host.exe", L"win2k"),
              "version=5.0 rc=1 made=0 described=5 folder-kept=1\r\n");
}

}  // namespace
}  // namespace kx20::winetest
