// The device sheet's five pages as windows: made from KVORSENU.DLL's templates with their
// dialog procedures in a modeless property sheet over the Win32 adapters and the simulated
// printer, driven by messages (rows selected, buttons pressed, the file dialogs and the message
// boxes answered from thread timers) and checked against the printer, the registry and the
// controls. The connection timer is driven by sending its WM_TIMER, one tick at a time. The
// branches of each page are the page models' (unit suite); here one flow per page.
#include "platform/win32/windows_clean.h"

#include <commctrl.h>
#include <commdlg.h>
#include <prsht.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ids_device_pages.h"
#include "pages/win32/page_procs.h"
#include "platform/bytes.h"
#include "platform/win32/win32_text.h"
#include "store/catalogue.h"
#include "store/registry_layout.h"
#include "tests/unit/font_file_generators.h"
#include "tests/wine/modeless_sheet.h"
#include "tools/winhost/window_script.h"
#include "unit/test_pictures.h"

namespace kx20::winetest {
namespace {

constexpr char16_t kPrinter[] = u"KX20";
enum { kLogosPage, kMessagesPage, kFontsPage, kMaintenancePage, kLogSettingsPage };
constexpr WPARAM kConnectionTimer = 1000;

std::wstring TempFile(const wchar_t* name, const Bytes& content) {
    wchar_t folder[MAX_PATH] = {};
    GetTempPathW(MAX_PATH, folder);
    const std::wstring path = std::wstring(folder) + name;
    HANDLE h = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                           FILE_ATTRIBUTE_NORMAL, nullptr);
    DWORD written = 0;
    WriteFile(h, content.data(), static_cast<DWORD>(content.size()), &written, nullptr);
    CloseHandle(h);
    return path;
}

// The file dialog step that types `path` into the name box (a combo box on Windows, an edit in
// Wine) and presses Open.
winhost::ModalDriver::Step OpenPath(std::wstring path) {
    return [path](HWND dialog) {
        for (int box : {0x47c, 0x480}) {
            SetDlgItemTextW(dialog, box, path.c_str());
            SendMessageW(dialog, CDM_SETCONTROLTEXT, box, reinterpret_cast<LPARAM>(path.c_str()));
        }
        PostMessageW(dialog, WM_COMMAND, IDOK, 0);
        return true;
    };
}

class DeviceSheet : public SimulatedPrinterPagesTest {
  protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(SetUpPrinterAndContext());
        picturePath_ =
            TempFile(L"kx20_page_logo.bmp", testpics::Bmp24(testpics::PhotoLike(96, 40, 1)));
    }
    void TearDown() override {
        SimulatedPrinterPagesTest::TearDown();
        DeleteFileW(picturePath_.c_str());
    }
    void Open() {
        OpenSheet({GuiLogosDlgProc, GuiMessagesDlgProc, GuiFontsDlgProc, GuiMaintenanceDlgProc,
                   GuiLogSettingsDlgProc},
                  IDD_LOGOS_PAGE, L"KX20 Printer Properties", PSP_USETITLE | PSP_PREMATURE,
                  PSH_NOAPPLYNOW);
        SetWindowPos(sheet_, nullptr, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
        Pump();
    }
    void Ticks(int n) {
        for (int i = 0; i < n; ++i) {
            SendMessageW(Page(kLogosPage), WM_TIMER, kConnectionTimer, 0);
            Pump();
        }
    }
    void Select(HWND page, int list, int row) {
        HWND control = GetDlgItem(page, list);
        LVITEMW item = {};
        item.stateMask = LVIS_SELECTED;
        SendMessageW(control, LVM_SETITEMSTATE, static_cast<WPARAM>(-1),
                     reinterpret_cast<LPARAM>(&item));
        item.state = LVIS_SELECTED;
        SendMessageW(control, LVM_SETITEMSTATE, row, reinterpret_cast<LPARAM>(&item));
        Pump();
    }
    int Rows(HWND page, int list) {
        return static_cast<int>(SendDlgItemMessageW(page, list, LVM_GETITEMCOUNT, 0, 0));
    }
    std::wstring Cell(HWND page, int list, int row) {
        wchar_t buf[300] = {};
        LVITEMW item = {};
        item.iSubItem = 1;
        item.pszText = buf;
        item.cchTextMax = 300;
        SendDlgItemMessageW(page, list, LVM_GETITEMTEXTW, row, reinterpret_cast<LPARAM>(&item));
        return buf;
    }
    bool Used(HWND page, int list, int row) {
        return Cell(page, list, row).find(String(2203)) != std::wstring::npos;
    }
    bool Enabled(HWND page, int control) { return IsWindowEnabled(GetDlgItem(page, control)); }
    static bool Checked(HWND page, int control) {
        return IsDlgButtonChecked(page, control) == BST_CHECKED;
    }
    bool PrinterHas(const std::string& part) {
        const std::wstring state = sim_.Describe();
        return std::string(state.begin(), state.end()).find(part) != std::string::npos;
    }
    // Selects `row` and adds the test's picture through the file dialog.
    void AddLogo(HWND page, int row) {
        Select(page, IDC_LOGO_LIST, row);
        ASSERT_TRUE(Enabled(page, IDC_LOGO_ADD));
        winhost::ModalDriver driver([this] { return winhost::FindThreadDialog(String(2166)); },
                                    {OpenPath(picturePath_)});
        Click(page, IDC_LOGO_ADD);
        EXPECT_TRUE(driver.Finished()) << "the file dialog was not answered";
    }
    // Presses `control` answering its question No, then Yes; No leaves the printer alone.
    void AnswerNoThenYes(HWND page, int control) {
        const std::wstring before = sim_.Describe();
        const int seen = boxes_.seen;
        boxes_.answer = IDNO;
        Click(page, control);
        EXPECT_EQ(boxes_.seen, seen + 1) << control << " asked nothing";
        EXPECT_EQ(sim_.Describe(), before) << control << ": No changed the printer";
        boxes_.answer = IDYES;
        Click(page, control);
        EXPECT_GE(boxes_.seen, seen + 2);
    }

    std::wstring picturePath_;
};

TEST_F(DeviceSheet, LogoAddedFromAPictureReachesTheFlashAndDeletingOneKeepsTheOthers) {
    Open();
    HWND page = Page(kLogosPage);
    ASSERT_EQ(Rows(page, IDC_LOGO_LIST), 40);
    EXPECT_FALSE(Enabled(page, IDC_LOGO_ADD)) << "nothing selected";
    for (int row : {0, 1, 2}) AddLogo(page, row);
    ASSERT_TRUE(PrinterHas("logo 1: ") && PrinterHas("logo 3: ")) << Narrow(sim_.Describe());
    EXPECT_TRUE(Used(page, IDC_LOGO_LIST, 0));
    Select(page, IDC_LOGO_LIST, 0);
    EXPECT_FALSE(Enabled(page, IDC_LOGO_ADD)) << "a used row takes no second logo";
    EXPECT_EQ(boxes_.seen, 0) << "no message box while adding: " << Narrow(boxes_.text);
    Screenshot(L"logos");

    // The Delete key of the list starts the same flow as the button.
    Select(page, IDC_LOGO_LIST, 1);
    boxes_.answer = IDYES;
    SendDlgItemMessageW(page, IDC_LOGO_LIST, WM_KEYDOWN, VK_DELETE, 0);
    Pump();
    EXPECT_EQ(boxes_.seen, 1) << "the deletion is confirmed first";
    EXPECT_TRUE(PrinterHas("logo 1: ") && !PrinterHas("logo 2: ") && PrinterHas("logo 3: "))
        << Narrow(sim_.Describe());
    EXPECT_FALSE(Used(page, IDC_LOGO_LIST, 1));
    EXPECT_TRUE(Used(page, IDC_LOGO_LIST, 2));
    EXPECT_EQ(store::ReadLogoRecords(win32_.ports, kPrinter, ctx_.port.identity).size(), 2u);
}

TEST_F(DeviceSheet, TheConnectionTimerDisablesEveryPageAndAnotherPrinterRefillsThem) {
    Open();
    std::vector<HWND> pages;
    for (int i = kLogSettingsPage; i >= kLogosPage; --i) pages.insert(pages.begin(), Show(i));
    AddLogo(pages[kLogosPage], 0);
    Ticks(2);
    ASSERT_TRUE(Enabled(pages[kMessagesPage], IDC_MESSAGE_LIST));

    ASSERT_EQ(sim_.Control(L"disconnect"), 0u);
    Ticks(3);
    EXPECT_FALSE(Enabled(pages[kLogosPage], IDC_LOGO_ADD));
    EXPECT_FALSE(Enabled(pages[kMessagesPage], IDC_MESSAGE_LIST));
    EXPECT_FALSE(Enabled(pages[kFontsPage], IDC_DBCS_ENABLE));
    for (int control : {IDC_FIRMWARE_BROWSE, IDC_LAST_PRINTER, IDC_CLEAR_ALL})
        EXPECT_FALSE(Enabled(pages[kMaintenancePage], control)) << control;
    EXPECT_TRUE(Enabled(pages[kMaintenancePage], IDC_ABOUT_BUTTON));
    EXPECT_TRUE(Enabled(pages[kLogSettingsPage], IDC_LOG_ENABLE)) << "the log needs no printer";
    for (HWND page : pages) EXPECT_EQ(Text(page, IDC_PRINTER_STATUS), String(2201));
    EXPECT_EQ(Rows(pages[kLogosPage], IDC_LOGO_LIST), 0) << "a lost printer's logos are not shown";
    const wchar_t* names[] = {L"logos_disconnected", L"messages_disconnected",
                              L"fonts_disconnected", L"maintenance_disconnected",
                              L"log_settings_disconnected"};
    for (int i = kLogosPage; i <= kLogSettingsPage; ++i) {
        Show(i);
        Screenshot(names[i]);
    }

    ASSERT_EQ(sim_.Control(L"identity=KX20SIM2"), 0u);
    ASSERT_EQ(sim_.Control(L"connect"), 0u);
    Ticks(3);
    EXPECT_TRUE(Enabled(pages[kFontsPage], IDC_DBCS_ENABLE));
    EXPECT_TRUE(Enabled(pages[kMaintenancePage], IDC_CLEAR_ALL));
    EXPECT_NE(Text(pages[kLogosPage], IDC_PRINTER_STATUS), String(2201));
    for (HWND page : pages)
        EXPECT_EQ(Text(page, IDC_PRINTER_STATUS), Text(pages[kLogosPage], IDC_PRINTER_STATUS));
    EXPECT_EQ(Rows(pages[kLogosPage], IDC_LOGO_LIST), 40);
    EXPECT_EQ(Rows(pages[kMessagesPage], IDC_MESSAGE_LIST), 25);
    EXPECT_EQ(boxes_.seen, 0) << Narrow(boxes_.text);

    // Escape in the list presses the sheet's Cancel button.
    Show(kLogosPage);
    SetFocus(GetDlgItem(pages[kLogosPage], IDC_LOGO_LIST));
    SendDlgItemMessageW(pages[kLogosPage], IDC_LOGO_LIST, WM_KEYDOWN, VK_ESCAPE, 0);
    Pump();
    EXPECT_EQ(PropSheet_GetCurrentPageHwnd(sheet_), nullptr) << "the sheet was not cancelled";
}

// A message stored and deleted through the page; a connection tick while the deletion question
// is open leaves the pages alone, the next one outside it does not.
TEST_F(DeviceSheet, MessageStoredAndDeletedAndTheTimerWaitsForTheQuestion) {
    Open();
    HWND page = Show(kMessagesPage);
    ASSERT_EQ(Rows(page, IDC_MESSAGE_LIST), 25);
    Select(page, IDC_MESSAGE_LIST, 4);
    SetDlgItemTextW(page, IDC_MESSAGE_TEXT, L"Thank you for shopping");
    Click(page, IDC_MESSAGE_STORE);
    EXPECT_TRUE(PrinterHas("message 5: \"Thank you for shopping\"")) << Narrow(sim_.Describe());
    Select(page, IDC_MESSAGE_LIST, 0);
    EXPECT_EQ(Text(page, IDC_MESSAGE_TEXT), L"") << "an empty row empties the edit";
    Select(page, IDC_MESSAGE_LIST, 4);
    EXPECT_EQ(Text(page, IDC_MESSAGE_TEXT), L"Thank you for shopping");
    Screenshot(L"messages");
    boxes_.answer = IDYES;
    Click(page, IDC_MESSAGE_DELETE);
    EXPECT_EQ(boxes_.seen, 1);
    EXPECT_FALSE(PrinterHas("message 5: "));
    EXPECT_FALSE(Used(page, IDC_MESSAGE_LIST, 4));

    Select(page, IDC_MESSAGE_LIST, 0);
    SetDlgItemTextW(page, IDC_MESSAGE_TEXT, L"Open 9 to 5");
    Click(page, IDC_MESSAGE_STORE);
    ASSERT_TRUE(Used(page, IDC_MESSAGE_LIST, 0));
    boxes_.active = false;
    bool enabledDuringBox = false;
    winhost::ModalDriver driver(
        [this] { return winhost::FindThreadDialog(String(2220)); }, {[&](HWND box) {
            EXPECT_EQ(sim_.Control(L"disconnect"), 0u);
            SendMessageW(Page(kLogosPage), WM_TIMER, kConnectionTimer, 0);
            enabledDuringBox =
                Enabled(page, IDC_MESSAGE_LIST) && Rows(page, IDC_MESSAGE_LIST) == 25;
            PostMessageW(box, WM_COMMAND, IDNO, 0);
            return true;
        }});
    Click(page, IDC_MESSAGE_DELETE);
    ASSERT_TRUE(driver.Finished());
    EXPECT_TRUE(enabledDuringBox) << "the tick changed the page under the open question";
    EXPECT_TRUE(PrinterHas("message 1: ")) << "No keeps the message";
    Ticks(2);
    EXPECT_FALSE(Enabled(page, IDC_MESSAGE_LIST)) << "the next tick outside it does";
}

TEST_F(DeviceSheet, PictureTooBigForTheLogoMemoryIsRefusedWhileTheFileDialogStaysOpen) {
    // 65,536 bytes at one bit a pixel.
    TempFile(L"kx20_page_logo.bmp", testpics::Bmp24(testpics::Filled(1024, 512, 0)));
    Open();
    HWND page = Page(kLogosPage);
    Select(page, IDC_LOGO_LIST, 3);
    bool stayedOpen = false, formChoice = false;
    winhost::ModalDriver driver(
        [this] { return winhost::FindThreadDialog(String(2166)); },
        {[&formChoice](HWND dialog) {
             // The form choice of the dialog's own template.
             HWND hook = FindWindowExW(dialog, nullptr, L"#32770", nullptr);
             formChoice = hook && SendDlgItemMessageW(hook, IDC_LOGO_FORM, CB_GETCOUNT, 0, 0) == 4;
             RedrawWindow(dialog, nullptr, nullptr,
                          RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
             EXPECT_TRUE(winhost::SaveScreenshot(L"logo_file_dialog", dialog));
             return true;
         },
         OpenPath(picturePath_),
         [this, &stayedOpen](HWND dialog) {
             if (boxes_.seen == 0)
                 return false;  // the refusal is answered first
             stayedOpen = IsWindowVisible(dialog) != FALSE;
             PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
             return true;
         }});
    Click(page, IDC_LOGO_ADD);
    EXPECT_TRUE(driver.Finished());
    EXPECT_EQ(boxes_.seen, 1);
    EXPECT_NE(boxes_.text.find(String(2231)), std::wstring::npos) << Narrow(boxes_.text);
    EXPECT_TRUE(stayedOpen);
    EXPECT_TRUE(formChoice) << "no form list in the file dialog";
    EXPECT_FALSE(PrinterHas("logo 4: "));
}

TEST_F(DeviceSheet, FontsMaintenanceAndLogPagesWorkThroughTheirControls) {
    ASSERT_TRUE(store::SetLogSettings(win32_.ports, kPrinter, 0x11));
    ASSERT_TRUE(store::SetLogWrapSize(win32_.ports, kPrinter, 5120));
    const std::wstring wrong =
        TempFile(L"kx20-model4.bin", testfiles::FirmwareFile(0x5A, 1, 1, 256));
    const std::wstring right =
        TempFile(L"kx20-newer.bin", testfiles::FirmwareFile(0x41, 1, 3, 256));
    Open();

    // Fonts (model 9): the double-byte switch takes both load buttons with it.
    HWND fonts = Show(kFontsPage);
    ASSERT_TRUE(Checked(fonts, IDC_DBCS_ENABLE));
    EXPECT_TRUE(Enabled(fonts, IDC_DBCS_IMPACT_LOAD));
    Screenshot(L"fonts");
    Click(fonts, IDC_DBCS_ENABLE);
    EXPECT_FALSE(Enabled(fonts, IDC_DBCS_THERMAL_LOAD) || Enabled(fonts, IDC_DBCS_IMPACT_LOAD));
    Click(fonts, IDC_DBCS_ENABLE);
    EXPECT_TRUE(Enabled(fonts, IDC_DBCS_THERMAL_LOAD) && Enabled(fonts, IDC_DBCS_IMPACT_LOAD));

    // Maintenance: the file dialog's hook keeps the dialog open on a file for another model;
    // the update refuses such a file without a question or a job, and flashes a valid one.
    HWND maintenance = Show(kMaintenancePage);
    Screenshot(L"maintenance");
    int refused = 0;
    HWND firstTry = nullptr;
    winhost::ModalDriver dialog([this] { return winhost::FindThreadDialog(String(2171)); },
                                {[&](HWND d) {
                                     firstTry = d;
                                     return OpenPath(wrong)(d);
                                 },
                                 [&](HWND d) {
                                     if (d != firstTry || !IsWindowVisible(d))
                                         return false;
                                     ++refused;
                                     return OpenPath(right)(d);
                                 }});
    Click(maintenance, IDC_FIRMWARE_BROWSE);
    EXPECT_TRUE(dialog.Finished());
    EXPECT_EQ(refused, 1);
    EXPECT_EQ(Text(maintenance, IDC_FIRMWARE_PATH), right);
    SetDlgItemTextW(maintenance, IDC_FIRMWARE_PATH, wrong.c_str());
    Click(maintenance, IDC_FIRMWARE_UPDATE);
    EXPECT_EQ(boxes_.seen, 0);
    EXPECT_TRUE(PrinterHas("0 firmware updates"));
    SetDlgItemTextW(maintenance, IDC_FIRMWARE_PATH, right.c_str());
    boxes_.answer = IDYES;
    Click(maintenance, IDC_FIRMWARE_UPDATE);
    EXPECT_EQ(boxes_.seen, 2) << "the level question, then the result";
    EXPECT_TRUE(PrinterHas("1 firmware updates") && PrinterHas("firmware: 0x41"))
        << Narrow(sim_.Describe());
    DeleteFileW(wrong.c_str());
    DeleteFileW(right.c_str());

    // Log settings: every switch is written at once, the up-down's step and the clamp of a
    // typed size when the edit loses the focus too.
    HWND logs = Show(kLogSettingsPage);
    EXPECT_EQ(Text(logs, IDC_LOG_WRAP_SIZE), L"5120");
    Screenshot(L"log_settings");
    Click(logs, IDC_LOG_PRINTING);
    Click(logs, IDC_LOG_ENABLE);
    std::uint32_t value = 0;
    EXPECT_TRUE(store::GetLogSettings(win32_.ports, kPrinter, value));
    EXPECT_EQ(value, 0x03u);
    EXPECT_FALSE(Enabled(logs, IDC_LOG_WRAP_SIZE));
    Click(logs, IDC_LOG_ENABLE);
    NMUPDOWN step = {};
    step.hdr = {GetDlgItem(logs, IDC_LOG_WRAP_SPIN), IDC_LOG_WRAP_SPIN, UINT(UDN_DELTAPOS)};
    step.iDelta = -1;
    SendMessageW(logs, WM_NOTIFY, IDC_LOG_WRAP_SPIN, reinterpret_cast<LPARAM>(&step));
    EXPECT_TRUE(store::GetLogWrapSize(win32_.ports, kPrinter, value));
    EXPECT_EQ(value, 5121u);
    SetDlgItemTextW(logs, IDC_LOG_WRAP_SIZE, L"99999");
    SendDlgItemMessageW(logs, IDC_LOG_WRAP_SIZE, WM_KILLFOCUS, 0, 0);
    Pump();
    EXPECT_EQ(Text(logs, IDC_LOG_WRAP_SIZE), L"10240");
    EXPECT_TRUE(store::GetLogWrapSize(win32_.ports, kPrinter, value));
    EXPECT_EQ(value, 10240u);
}

TEST_F(DeviceSheet, TabAndShiftTabVisitEveryEnabledControlOnceInReadingOrder) {
    ASSERT_TRUE(store::SetLogSettings(win32_.ports, kPrinter, 0x11));
    Open();
    Select(Page(kLogosPage), IDC_LOGO_LIST, 0);
    for (int i = kLogosPage; i <= kLogSettingsPage; ++i) {
        HWND page = Show(i);
        if (i == kMessagesPage)
            Select(page, IDC_MESSAGE_LIST, 0);
        ExpectTabOrder(page);
    }
}

// A double-byte font loaded through the Load button's file dialog reaches the flash and the
// page; Maintenance and Clear All ask first, and only Yes reaches the printer.
TEST_F(DeviceSheet, FontLoadedThroughTheDialogAndMaintenanceAndClearAllAskFirst) {
    testfiles::FonFile font;
    font.Dbcs(0x81, 0x40).Dbcs(0x81, 0x41).Dbcs(0x82, 0x40).Sbcs(0x41);
    const std::wstring fontPath = TempFile(L"kx20-page-font.fon", font.Build());
    Open();
    AddLogo(Page(kLogosPage), 0);
    HWND fonts = Show(kFontsPage);
    winhost::ModalDriver dialog([this] { return winhost::FindThreadDialog(String(2168)); },
                                {OpenPath(fontPath)});
    Click(fonts, IDC_DBCS_THERMAL_LOAD);
    EXPECT_TRUE(dialog.Finished());
    DeleteFileW(fontPath.c_str());
    EXPECT_EQ(boxes_.seen, 0) << Narrow(boxes_.text);
    EXPECT_TRUE(PrinterHas(": 3 double-byte thermal characters") &&
                PrinterHas(": 3 double-byte impact characters"))
        << Narrow(sim_.Describe());
    EXPECT_EQ(Text(fonts, IDC_DBCS_THERMAL_NAME), L"kx20-page-font.fon");
    EXPECT_EQ(Text(fonts, IDC_DBCS_IMPACT_NAME), L"kx20-page-font.fon");

    HWND maintenance = Show(kMaintenancePage);
    AnswerNoThenYes(maintenance, IDC_MAINTENANCE);
    EXPECT_TRUE(PrinterHas(", 1 maintenance,")) << Narrow(sim_.Describe());
    AnswerNoThenYes(maintenance, IDC_CLEAR_ALL);
    EXPECT_TRUE(PrinterHas(": 0 logos") && PrinterHas(": 0 double-byte thermal characters") &&
                PrinterHas(": 0 double-byte impact characters"))
        << Narrow(sim_.Describe());
    EXPECT_EQ(store::ReadLogoRecords(win32_.ports, kPrinter, ctx_.port.identity).size(), 0u);
    EXPECT_EQ(Text(fonts, IDC_DBCS_THERMAL_NAME), L"") << "the fonts page was not refreshed";
    EXPECT_FALSE(Used(Page(kLogosPage), IDC_LOGO_LIST, 0)) << "the logos page was not refreshed";
}

TEST_F(DeviceSheet, LogFolderChosenInTheFolderBrowserIsShownAndStored) {
    const std::wstring start = L"C:\\kx20-logs-before";
    const std::wstring chosen = L"C:\\kx20-logs-chosen";
    CreateDirectoryW(start.c_str(), nullptr);
    CreateDirectoryW(chosen.c_str(), nullptr);
    ASSERT_TRUE(store::SetLogSettings(win32_.ports, kPrinter, 0x10));
    ASSERT_TRUE(store::SetLogPath(win32_.ports, kPrinter, FromWide(start)));
    Open();
    HWND logs = Show(kLogSettingsPage);
    EXPECT_EQ(Text(logs, IDC_LOG_FOLDER), start);
    boxes_.active = false;  // the browser has an OK button too
    // The folder is picked in the browser's tree as a person does, opening My Computer and
    // drive C: on the way. (Wine's browser fails to select a folder given by its path, as
    // BFFM_SETSELECTIONW does, now and then on its first use in a process.)
    bool picked = false;
    winhost::ModalDriver browser(
        [] { return winhost::FindThreadDialogWith(WC_TREEVIEWW); },
        {[&picked](HWND dialog) {
             HWND tree = FindWindowExW(dialog, nullptr, WC_TREEVIEWW, nullptr);
             HTREEITEM item = TreeView_GetRoot(tree);
             for (const wchar_t* name : {L"My Computer", L"(C:)", L"kx20-logs-chosen"}) {
                 TreeView_Expand(tree, item, TVE_EXPAND);
                 HTREEITEM child = TreeView_GetChild(tree, item);
                 for (; child; child = TreeView_GetNextSibling(tree, child)) {
                     wchar_t text[MAX_PATH] = {};
                     TVITEMW info = {};
                     info.mask = TVIF_TEXT;
                     info.hItem = child;
                     info.pszText = text;
                     info.cchTextMax = MAX_PATH;
                     if (TreeView_GetItem(tree, &info) && wcsstr(text, name))
                         break;
                 }
                 item = child;
             }
             picked = item && TreeView_SelectItem(tree, item);
             return true;
         },
         [](HWND dialog) {
             PostMessageW(dialog, WM_COMMAND, IDOK, 0);
             return true;
         }});
    Click(logs, IDC_LOG_BROWSE);
    EXPECT_TRUE(browser.Finished());
    EXPECT_TRUE(picked) << "no such folder in the browser's tree";
    EXPECT_EQ(Text(logs, IDC_LOG_FOLDER), chosen);
    std::u16string stored;
    EXPECT_TRUE(store::GetLogPath(win32_.ports, kPrinter, stored));
    EXPECT_EQ(ToWide(stored), chosen);
    RemoveDirectoryW(start.c_str());
    RemoveDirectoryW(chosen.c_str());
}

}  // namespace
}  // namespace kx20::winetest
