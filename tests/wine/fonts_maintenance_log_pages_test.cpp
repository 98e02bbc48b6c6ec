// The device sheet's fonts, maintenance and log settings pages as windows: made from
// KVORSENU.DLL's templates with their dialog procedures, shown in a modeless property sheet over
// the Win32 adapters and the simulated printer, driven by messages. Message boxes and the file
// dialog are answered from a timer that their own modal loops run. Screenshots of each page,
// connected and with the printer gone, go to screenshots/ in the build folder.
#include "platform/win32/windows_clean.h"

#include <commctrl.h>
#include <prsht.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "pages/page_context.h"
#include "pages/win32/page_procs.h"
#include "ids_device_pages.h"
#include "platform/win32/win32_platform.h"
#include "platform/win32/win32_prompts.h"
#include "platform/win32/win32_resources.h"
#include "platform/win32/win32_text.h"
#include "store/registry_layout.h"
#include "tests/unit/font_file_generators.h"
#include "tests/wine/modeless_sheet.h"
#include "tests/wine/wine_environment.h"
#include "tools/winhost/driver_install.h"
#include "tools/winhost/sim_control.h"
#include "tools/winhost/window_script.h"

namespace kx20::winetest {
namespace {

constexpr char16_t kPrinter[] = u"KX20";
constexpr int kFontsPage = 0;
constexpr int kMaintenancePage = 1;
constexpr int kLogSettingsPage = 2;
// The explorer-style open dialog's file name box: a combo box on Windows, an edit in Wine.
constexpr int kFileNameBoxes[] = {0x47C, 0x480};

void ChooseInFileDialog(HWND dialog, const std::wstring& path) {
    for (int box : kFileNameBoxes) SetDlgItemTextW(dialog, box, path.c_str());
    PostMessageW(dialog, WM_COMMAND, IDOK, 0);
}

std::wstring TempFile(const wchar_t* name, const Bytes& content) {
    wchar_t folder[MAX_PATH] = {};
    GetTempPathW(MAX_PATH, folder);
    const std::wstring path = std::wstring(folder) + name;
    HANDLE h = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                           FILE_ATTRIBUTE_NORMAL, nullptr);
    DWORD written = 0;
    if (h != INVALID_HANDLE_VALUE) {
        WriteFile(h, content.data(), static_cast<DWORD>(content.size()), &written, nullptr);
        CloseHandle(h);
    }
    return path;
}

// Answers the message boxes that come, in order, with `answers`, and keeps their texts.
struct BoxScript {
    std::vector<std::wstring> texts;
    HWND answered = nullptr;
    std::unique_ptr<winhost::ModalDriver> driver;

    BoxScript(const std::wstring& title, std::vector<int> answers) {
        std::vector<winhost::ModalDriver::Step> steps;
        for (int answer : answers) {
            // A box already answered may linger for a tick: only a new one is answered.
            steps.push_back([this, answer](HWND box) {
                if (box == answered)
                    return false;
                answered = box;
                wchar_t text[1024] = {};
                GetDlgItemTextW(box, 0xFFFF, text, 1024);
                texts.emplace_back(text);
                PostMessageW(box, WM_COMMAND, answer, 0);
                return true;
            });
        }
        driver = std::make_unique<winhost::ModalDriver>(
            [title] { return winhost::FindThreadDialog(title); }, std::move(steps));
    }
};

class DevicePagesSheet : public ModelessSheetTest {
  protected:
    void SetUp() override {
        ASSERT_TRUE(sim_.Loaded());
        ASSERT_EQ(sim_.Control(L"reset"), 0u);
        ASSERT_EQ(sim_.Control(L"connect"), 0u);
        resources_ = LoadLibraryW((winhost::ProgramFolder() + L"KVORSENU.DLL").c_str());
        ASSERT_NE(resources_, nullptr);
        strings_ = std::make_unique<Win32ResourceStrings>(resources_);
        ctx_.platform = &win32_.ports;
        ctx_.prompts = &prompts_;
        ctx_.strings = strings_.get();
        ctx_.printerName = kPrinter;
    }

    void TearDown() override {
        CloseSheet();
        if (resources_)
            FreeLibrary(resources_);
        sim_.Control(L"reset");
        sim_.Control(L"connect");
    }

    void Open() {
        const DLGPROC procs[3] = {GuiFontsDlgProc, GuiMaintenanceDlgProc, GuiLogSettingsDlgProc};
        PROPSHEETPAGEW pages[3] = {};
        for (int i = 0; i < 3; ++i) {
            pages[i].dwSize = sizeof(PROPSHEETPAGEW);
            pages[i].dwFlags = PSP_PREMATURE;
            pages[i].hInstance = resources_;
            pages[i].pszTemplate = MAKEINTRESOURCEW(IDD_FONTS_PAGE + i);
            pages[i].pfnDlgProc = procs[i];
            pages[i].lParam = reinterpret_cast<LPARAM>(&ctx_);
        }
        PROPSHEETHEADERW header = {};
        header.dwSize = sizeof(header);
        header.dwFlags = PSH_PROPSHEETPAGE | PSH_MODELESS | PSH_NOAPPLYNOW;
        header.hInstance = resources_;
        header.pszCaption = L"KX20 Properties";
        header.nPages = 3;
        header.ppsp = pages;
        sheet_ = reinterpret_cast<HWND>(PropertySheetW(&header));
        ASSERT_NE(sheet_, nullptr);
        Pump();
    }

    static bool Enabled(HWND page, int control) {
        return IsWindowEnabled(GetDlgItem(page, control)) != FALSE;
    }
    static bool Checked(HWND page, int control) {
        return IsDlgButtonChecked(page, control) == BST_CHECKED;
    }
    std::wstring String(std::uint32_t id) { return ToWide(strings_->Load(id).value_or(u"")); }
    void Screenshot(const std::wstring& name) {
        // Painted and pumped first: the display gets the window's surface when the queue idles.
        RedrawWindow(sheet_, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
        Pump();
        EXPECT_TRUE(winhost::SaveWindowScreenshot(sheet_, name)) << "no screenshot";
    }
    std::uint32_t LogSettings() {
        std::uint32_t value = 0xFFFFFFFF;
        EXPECT_TRUE(store::GetLogSettings(win32_.ports, kPrinter, value));
        return value;
    }

    Win32Platform win32_;
    Win32Prompts prompts_;
    winhost::SimulatedPrinterControl sim_{PortPath()};
    HMODULE resources_ = nullptr;
    std::unique_ptr<Win32ResourceStrings> strings_;
    PageContext ctx_;
};

TEST_F(DevicePagesSheet, DoubleByteSwitchFollowsTheModelCode) {
    struct Case {
        const wchar_t* model;
        bool switchEnabled, checked, thermal, impact;
    };
    const Case cases[] = {
        {L"model=9", true, true, true, true},
        {L"model=2", true, true, true, true},
        {L"model=7", true, true, true, false},  // no impact double-byte font
        {L"model=4", false, false, false, false},
    };
    for (const Case& c : cases) {
        ASSERT_EQ(sim_.Control(c.model), 0u);
        Open();
        HWND fonts = Show(kFontsPage);
        SCOPED_TRACE(std::string(c.model, c.model + wcslen(c.model)));
        EXPECT_EQ(Enabled(fonts, IDC_DBCS_ENABLE), c.switchEnabled);
        EXPECT_EQ(Checked(fonts, IDC_DBCS_ENABLE), c.checked);
        EXPECT_EQ(Enabled(fonts, IDC_DBCS_THERMAL_LOAD), c.thermal);
        EXPECT_EQ(Enabled(fonts, IDC_DBCS_IMPACT_LOAD), c.impact);
        EXPECT_FALSE(Enabled(fonts, IDC_SBCS_SLOT1_CAPTURE));
        EXPECT_FALSE(Enabled(fonts, IDC_SBCS_SLOT2_CAPTURE));
        EXPECT_NE(Text(fonts, IDC_PRINTER_STATUS).find(L"KX20"), std::wstring::npos);
        if (c.checked) {
            Click(fonts, IDC_DBCS_ENABLE);  // off: both groups go
            EXPECT_FALSE(Enabled(fonts, IDC_DBCS_THERMAL_LOAD));
            EXPECT_FALSE(Enabled(fonts, IDC_DBCS_IMPACT_LOAD));
            Click(fonts, IDC_DBCS_ENABLE);  // on again
            EXPECT_EQ(Enabled(fonts, IDC_DBCS_THERMAL_LOAD), c.thermal);
            EXPECT_EQ(Enabled(fonts, IDC_DBCS_IMPACT_LOAD), c.impact);
        }
        if (c.model == std::wstring(L"model=9"))
            Screenshot(L"fonts");
        DestroyWindow(sheet_);
        sheet_ = nullptr;
        Pump();
    }
}

TEST_F(DevicePagesSheet, ModelNineWithoutDoubleByteMemoryRefusesTheSwitch) {
    ASSERT_EQ(sim_.Control(L"config=0xA6:13"), 0u);
    Open();
    HWND fonts = Show(kFontsPage);
    EXPECT_TRUE(Enabled(fonts, IDC_DBCS_ENABLE));
    EXPECT_FALSE(Checked(fonts, IDC_DBCS_ENABLE));
    BoxScript boxes(L"KVO KX20 Printer Driver", {IDOK});
    Click(fonts, IDC_DBCS_ENABLE);
    ASSERT_EQ(boxes.texts.size(), 1u);
    EXPECT_EQ(boxes.texts[0], L"Insufficient memory allocated for DBCS Fonts!");
    EXPECT_FALSE(Enabled(fonts, IDC_DBCS_THERMAL_LOAD));
    EXPECT_FALSE(Enabled(fonts, IDC_DBCS_IMPACT_LOAD));
}

TEST_F(DevicePagesSheet, InvalidFirmwareIsRefusedAndAValidOneIsFlashed) {
    const std::wstring wrong =
        TempFile(L"kx20-model4.bin", testfiles::FirmwareFile(0x5A, 1, 1, 256));
    const std::wstring right =
        TempFile(L"kx20-newer.bin", testfiles::FirmwareFile(0x41, 1, 3, 256));
    Open();
    HWND page = Show(kMaintenancePage);
    Screenshot(L"maintenance");

    // The file dialog's hook keeps the dialog open on the file for another model.
    int refused = 0;
    HWND firstTry = nullptr;
    winhost::ModalDriver dialog([this] { return winhost::FindThreadDialog(String(2171)); },
                                {[&](HWND d) {
                                     firstTry = d;
                                     ChooseInFileDialog(d, wrong);
                                     return true;
                                 },
                                 [&](HWND d) {
                                     if (d != firstTry || !IsWindowVisible(d))
                                         return false;
                                     ++refused;
                                     ChooseInFileDialog(d, right);
                                     return true;
                                 }});
    Click(page, IDC_FIRMWARE_BROWSE);
    EXPECT_TRUE(dialog.Finished());
    EXPECT_EQ(refused, 1);
    EXPECT_EQ(Text(page, IDC_FIRMWARE_PATH), right);

    // The file for another model: the update asks nothing and sends nothing.
    SetDlgItemTextW(page, IDC_FIRMWARE_PATH, wrong.c_str());
    Click(page, IDC_FIRMWARE_UPDATE);
    EXPECT_NE(sim_.Describe().find(L"0 firmware updates"), std::wstring::npos);

    SetDlgItemTextW(page, IDC_FIRMWARE_PATH, right.c_str());
    BoxScript boxes(String(2220), {IDYES, IDOK});
    Click(page, IDC_FIRMWARE_UPDATE);
    ASSERT_EQ(boxes.texts.size(), 2u);
    EXPECT_NE(boxes.texts[0].find(L"41"), std::wstring::npos) << "the file's level";
    const std::wstring state = sim_.Describe();
    EXPECT_NE(state.find(L"1 firmware updates"), std::wstring::npos);
    EXPECT_NE(state.find(L"firmware: 0x41"), std::wstring::npos);
    EXPECT_EQ(Text(page, IDC_FIRMWARE_PATH), L"");
    DeleteFileW(wrong.c_str());
    DeleteFileW(right.c_str());
}

TEST_F(DevicePagesSheet, LastPrinterBoxAndAboutBox) {
    Open();
    HWND page = Show(kMaintenancePage);
    BoxScript question(String(2220), {IDYES});
    Click(page, IDC_LAST_PRINTER);
    ASSERT_EQ(question.texts.size(), 1u);
    EXPECT_TRUE(Checked(page, IDC_LAST_PRINTER));
    EXPECT_FALSE(Enabled(page, IDC_MAINTENANCE));
    EXPECT_TRUE(
        store::GetLastPrinterFlag(win32_.ports, store::PrinterPortName(win32_.ports, kPrinter)));
    Click(page, IDC_LAST_PRINTER);
    EXPECT_TRUE(Enabled(page, IDC_MAINTENANCE));

    bool sawAbout = false;
    winhost::ModalDriver about(
        [] { return winhost::FindThreadDialog(L"About KVO KX20 Printer Driver"); }, {[&](HWND d) {
            sawAbout = true;
            PostMessageW(d, WM_COMMAND, IDOK, 0);
            return true;
        }});
    Click(page, IDC_ABOUT_BUTTON);
    EXPECT_TRUE(sawAbout);
}

TEST_F(DevicePagesSheet, LogSwitchesAndWrapSizeAreWrittenAtOnce) {
    ASSERT_TRUE(store::SetLogSettings(win32_.ports, kPrinter, 0x11));
    ASSERT_TRUE(store::SetLogWrapSize(win32_.ports, kPrinter, 5120));
    Open();
    HWND page = Show(kLogSettingsPage);
    EXPECT_TRUE(Checked(page, IDC_LOG_ENABLE));
    EXPECT_TRUE(Checked(page, IDC_LOG_API));
    EXPECT_EQ(Text(page, IDC_LOG_WRAP_SIZE), L"5120");
    Screenshot(L"log_settings");

    Click(page, IDC_LOG_PRINTING);
    EXPECT_EQ(LogSettings(), 0x13u);
    Click(page, IDC_LOG_ENABLE);
    EXPECT_EQ(LogSettings(), 0x03u);
    EXPECT_FALSE(Enabled(page, IDC_LOG_API));
    EXPECT_FALSE(Enabled(page, IDC_LOG_WRAP_SIZE));
    Click(page, IDC_LOG_ENABLE);
    EXPECT_TRUE(Enabled(page, IDC_LOG_BROWSE));

    // The up-down's step reaches the page; the number is the page's.
    NMUPDOWN step = {};
    step.hdr.hwndFrom = GetDlgItem(page, IDC_LOG_WRAP_SPIN);
    step.hdr.idFrom = IDC_LOG_WRAP_SPIN;
    step.hdr.code = UDN_DELTAPOS;
    step.iDelta = -1;
    SendMessageW(page, WM_NOTIFY, IDC_LOG_WRAP_SPIN, reinterpret_cast<LPARAM>(&step));
    EXPECT_EQ(Text(page, IDC_LOG_WRAP_SIZE), L"5121");
    std::uint32_t wrap = 0;
    EXPECT_TRUE(store::GetLogWrapSize(win32_.ports, kPrinter, wrap));
    EXPECT_EQ(wrap, 5121u);

    // Typed past the limit, clamped when the edit loses the focus.
    SetDlgItemTextW(page, IDC_LOG_WRAP_SIZE, L"99999");
    SendDlgItemMessageW(page, IDC_LOG_WRAP_SIZE, WM_KILLFOCUS, 0, 0);
    Pump();
    EXPECT_EQ(Text(page, IDC_LOG_WRAP_SIZE), L"10240");
    EXPECT_TRUE(store::GetLogWrapSize(win32_.ports, kPrinter, wrap));
    EXPECT_EQ(wrap, 10240u);
}

TEST_F(DevicePagesSheet, WithThePrinterGoneOnlyTheLocalControlsAreUsable) {
    ASSERT_EQ(sim_.Control(L"remove"), 0u);
    Open();
    HWND fonts = Show(kFontsPage);
    EXPECT_EQ(Text(fonts, IDC_PRINTER_STATUS), String(2201));
    EXPECT_FALSE(Enabled(fonts, IDC_DBCS_ENABLE));
    EXPECT_FALSE(Enabled(fonts, IDC_DBCS_THERMAL_LOAD));
    Screenshot(L"fonts_disconnected");
    HWND maintenance = Show(kMaintenancePage);
    EXPECT_EQ(Text(maintenance, IDC_PRINTER_STATUS), String(2201));
    for (int control : {IDC_FIRMWARE_PATH, IDC_FIRMWARE_BROWSE, IDC_FIRMWARE_UPDATE,
                        IDC_LAST_PRINTER, IDC_MAINTENANCE, IDC_CLEAR_ALL})
        EXPECT_FALSE(Enabled(maintenance, control)) << control;
    EXPECT_TRUE(Enabled(maintenance, IDC_ABOUT_BUTTON));
    Screenshot(L"maintenance_disconnected");
    HWND logs = Show(kLogSettingsPage);
    EXPECT_EQ(Text(logs, IDC_PRINTER_STATUS), String(2201));
    EXPECT_TRUE(Enabled(logs, IDC_LOG_ENABLE)) << "the log settings need no printer";
    Screenshot(L"log_settings_disconnected");
}

}  // namespace
}  // namespace kx20::winetest
