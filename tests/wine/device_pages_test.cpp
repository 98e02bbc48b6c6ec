// The logos and messages pages as windows: made from KVORSENU.DLL's templates with their
// dialog procedures in a modeless property sheet over the Win32 adapters and the simulated
// printer, driven by messages (rows selected, buttons pressed, the file dialog and the message
// boxes answered from thread timers) and checked against the printer's flash and the lists.
// The connection timer is driven by sending its WM_TIMER, one tick at a time.
#include "platform/win32/windows_clean.h"

#include <commctrl.h>
#include <commdlg.h>
#include <prsht.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "pages/page_context.h"
#include "pages/win32/page_procs.h"
#include "ids_device_pages.h"
#include "logos/logo_store.h"
#include "pages/win32/preview_painter.h"
#include "platform/bytes.h"
#include "platform/win32/win32_files.h"
#include "platform/win32/win32_pictures.h"
#include "platform/win32/win32_platform.h"
#include "platform/win32/win32_prompts.h"
#include "platform/win32/win32_resources.h"
#include "platform/win32/win32_text.h"
#include "store/catalogue.h"
#include "store/registry_layout.h"
#include "tests/wine/modeless_sheet.h"
#include "tests/wine/wine_environment.h"
#include "tools/winhost/driver_install.h"
#include "tools/winhost/sim_control.h"
#include "tools/winhost/window_script.h"

namespace kx20::winetest {
namespace {

constexpr char16_t kPrinter[] = u"KX20";
constexpr int kLogosPage = 0;
constexpr int kMessagesPage = 1;
constexpr WPARAM kConnectionTimer = 1000;

// A 24-bit picture file of `width` x `height` pixels: a black frame and diagonal on white.
Bytes PictureFile(int width, int height) {
    const int stride = (width * 3 + 3) & ~3;
    const std::uint32_t size = 54 + static_cast<std::uint32_t>(stride * height);
    Bytes file(size, 0);
    file[0] = 'B';
    file[1] = 'M';
    WriteU32(file, 2, size);
    WriteU32(file, 10, 54);
    WriteU32(file, 14, 40);
    WriteU32(file, 18, static_cast<std::uint32_t>(width));
    WriteU32(file, 22, static_cast<std::uint32_t>(height));
    WriteU16(file, 26, 1);
    WriteU16(file, 28, 24);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const bool ink =
                x < 2 || y < 2 || x >= width - 2 || y >= height - 2 || x * height / width == y;
            const std::uint8_t v = ink ? 0 : 0xFF;
            const std::size_t at = 54 + static_cast<std::size_t>(y * stride + x * 3);
            file[at] = file[at + 1] = file[at + 2] = v;
        }
    return file;
}

class DeviceSheet : public SimulatedPrinterPagesTest {
  protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(SetUpPrinterAndContext());
        wchar_t temp[MAX_PATH] = {};
        GetTempPathW(MAX_PATH, temp);
        picturePath_ = std::wstring(temp) + L"kx20_page_logo.bmp";
        WritePicture(PictureFile(96, 40));
    }

    void TearDown() override {
        SimulatedPrinterPagesTest::TearDown();
        DeleteFileW(picturePath_.c_str());
    }

    void WritePicture(const Bytes& picture) {
        HANDLE file = CreateFileW(picturePath_.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
        ASSERT_NE(file, INVALID_HANDLE_VALUE);
        DWORD written = 0;
        WriteFile(file, picture.data(), static_cast<DWORD>(picture.size()), &written, nullptr);
        CloseHandle(file);
        ASSERT_EQ(written, picture.size());
    }

    void Open() {
        OpenSheet({kx20::GuiLogosDlgProc, kx20::GuiMessagesDlgProc}, IDD_LOGOS_PAGE,
                  L"KX20 Printer Properties", PSP_USETITLE | PSP_PREMATURE, PSH_NOAPPLYNOW);
        SetWindowPos(sheet_, nullptr, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
        Pump();
    }
    void Ticks(int n) {
        for (int i = 0; i < n; ++i) {
            SendMessageW(Page(kLogosPage), WM_TIMER, kConnectionTimer, 0);
            Pump();
        }
    }
    void Select(HWND page, int list, std::vector<int> rows) {
        HWND control = GetDlgItem(page, list);
        LVITEMW item = {};
        item.stateMask = LVIS_SELECTED;
        SendMessageW(control, LVM_SETITEMSTATE, static_cast<WPARAM>(-1),
                     reinterpret_cast<LPARAM>(&item));
        item.state = LVIS_SELECTED;
        for (int row : rows)
            SendMessageW(control, LVM_SETITEMSTATE, row, reinterpret_cast<LPARAM>(&item));
        Pump();
    }
    int Rows(HWND page, int list) {
        return static_cast<int>(SendDlgItemMessageW(page, list, LVM_GETITEMCOUNT, 0, 0));
    }
    std::wstring Cell(HWND page, int list, int row, int column) {
        wchar_t buf[300] = {};
        LVITEMW item = {};
        item.iSubItem = column;
        item.pszText = buf;
        item.cchTextMax = 300;
        SendDlgItemMessageW(page, list, LVM_GETITEMTEXTW, row, reinterpret_cast<LPARAM>(&item));
        return buf;
    }
    // The sheet as it shows now, as screenshots/NAME.png in the build folder.
    void Screenshot(const wchar_t* name) {
        RedrawWindow(sheet_, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
        Pump();
        EXPECT_TRUE(winhost::SaveScreenshot(name, sheet_)) << Narrow(name);
    }
    bool Enabled(HWND page, int control) { return IsWindowEnabled(GetDlgItem(page, control)); }
    static bool Contains(const std::wstring& s, const std::wstring& part) {
        return s.find(part) != std::wstring::npos;
    }
    std::string Printer() {
        const std::wstring state = sim_.Describe();
        return std::string(state.begin(), state.end());
    }

    // The file dialog step that types `path` into the name box (a combo box or an edit,
    // whichever the dialog has) and presses Open.
    static winhost::ModalDriver::Step OpenPath(std::wstring path) {
        return [path](HWND dialog) {
            for (int box : {0x47c, 0x480})
                SendMessageW(dialog, CDM_SETCONTROLTEXT, box,
                             reinterpret_cast<LPARAM>(path.c_str()));
            PostMessageW(dialog, WM_COMMAND, IDOK, 0);
            return true;
        };
    }

    // Selects `row` and adds the test's picture through the file dialog, confirmed from a
    // thread timer.
    void AddLogo(HWND page, int row) {
        Select(page, IDC_LOGO_LIST, {row});
        ASSERT_TRUE(Enabled(page, IDC_LOGO_ADD));
        winhost::ModalDriver driver([this] { return winhost::FindThreadDialog(String(2166)); },
                                    {OpenPath(picturePath_)});
        Click(page, IDC_LOGO_ADD);
        EXPECT_TRUE(driver.Finished()) << "the file dialog was not answered";
    }

    std::wstring picturePath_;
};

TEST_F(DeviceSheet, LogoAddedFromAPictureReachesTheFlashAndTheListAndDeletingOneKeepsTheOthers) {
    Open();
    HWND page = Page(kLogosPage);
    ASSERT_EQ(Rows(page, IDC_LOGO_LIST), 40);
    EXPECT_EQ(Cell(page, IDC_LOGO_LIST, 0, 1), String(2204));
    EXPECT_FALSE(Enabled(page, IDC_LOGO_ADD)) << "nothing selected";

    AddLogo(page, 0);
    EXPECT_NE(Printer().find("logo 1: "), std::string::npos) << Printer();
    EXPECT_TRUE(Contains(Cell(page, IDC_LOGO_LIST, 0, 1), String(2203))) << "the row shows it";
    Select(page, IDC_LOGO_LIST, {0});
    EXPECT_FALSE(Enabled(page, IDC_LOGO_ADD)) << "a used row takes no second logo";
    EXPECT_TRUE(Enabled(page, IDC_LOGO_DELETE));
    Screenshot(L"logos");

    AddLogo(page, 1);
    AddLogo(page, 2);
    ASSERT_NE(Printer().find("logo 3: "), std::string::npos) << Printer();
    EXPECT_EQ(boxes_.seen, 0) << "no message box while adding: " << Narrow(boxes_.text);

    // The Delete key of the list starts the same flow as the button.
    Select(page, IDC_LOGO_LIST, {1});
    boxes_.answer = IDYES;
    SendDlgItemMessageW(page, IDC_LOGO_LIST, WM_KEYDOWN, VK_DELETE, 0);
    Pump();
    EXPECT_EQ(boxes_.seen, 1) << "the deletion is confirmed first";
    const std::string printer = Printer();
    EXPECT_NE(printer.find("logo 1: "), std::string::npos) << printer;
    EXPECT_EQ(printer.find("logo 2: "), std::string::npos) << printer;
    EXPECT_NE(printer.find("logo 3: "), std::string::npos) << printer;
    EXPECT_EQ(Cell(page, IDC_LOGO_LIST, 1, 1), String(2204));
    EXPECT_TRUE(Contains(Cell(page, IDC_LOGO_LIST, 2, 1), String(2203)));
    EXPECT_EQ(store::ReadLogoRecords(win32_.ports, kPrinter, ctx_.port.identity).size(), 2u);
}

TEST_F(DeviceSheet, MessageStoredAndDeletedThroughThePage) {
    Open();
    HWND page = Show(kMessagesPage);
    ASSERT_EQ(Rows(page, IDC_MESSAGE_LIST), 25);
    Select(page, IDC_MESSAGE_LIST, {4});
    SetDlgItemTextW(page, IDC_MESSAGE_TEXT, L"Thank you for shopping");
    ASSERT_TRUE(Enabled(page, IDC_MESSAGE_STORE));
    Click(page, IDC_MESSAGE_STORE);
    EXPECT_NE(Printer().find("message 5: \"Thank you for shopping\""), std::string::npos)
        << Printer();
    EXPECT_EQ(Cell(page, IDC_MESSAGE_LIST, 4, 1), String(2203));

    Select(page, IDC_MESSAGE_LIST, {0});
    EXPECT_EQ(Text(page, IDC_MESSAGE_TEXT), L"") << "an empty row empties the edit";
    Select(page, IDC_MESSAGE_LIST, {4});
    EXPECT_EQ(Text(page, IDC_MESSAGE_TEXT), L"Thank you for shopping");
    EXPECT_FALSE(Enabled(page, IDC_MESSAGE_STORE)) << "a used row must be deleted first";
    Screenshot(L"messages");

    boxes_.answer = IDNO;
    Click(page, IDC_MESSAGE_DELETE);
    EXPECT_EQ(boxes_.seen, 1);
    EXPECT_NE(Printer().find("message 5: "), std::string::npos) << "No keeps the message";
    boxes_.answer = IDYES;
    Click(page, IDC_MESSAGE_DELETE);
    EXPECT_EQ(boxes_.seen, 2);
    EXPECT_EQ(Printer().find("message 5: "), std::string::npos) << Printer();
    EXPECT_EQ(Cell(page, IDC_MESSAGE_LIST, 4, 1), String(2204));
}

TEST_F(DeviceSheet, DisconnectDisablesBothPagesAndAnotherPrinterRefillsThem) {
    Open();
    HWND logos = Page(kLogosPage);
    HWND messages = Show(kMessagesPage);
    Show(kLogosPage);
    AddLogo(logos, 0);
    ASSERT_TRUE(Contains(Cell(logos, IDC_LOGO_LIST, 0, 1), String(2203)));
    Ticks(2);
    ASSERT_TRUE(Enabled(logos, IDC_LOGO_LIST));
    ASSERT_TRUE(Enabled(messages, IDC_MESSAGE_LIST));

    ASSERT_EQ(sim_.Control(L"disconnect"), 0u);
    Ticks(3);
    EXPECT_FALSE(Enabled(logos, IDC_LOGO_LIST));
    EXPECT_FALSE(Enabled(logos, IDC_LOGO_ADD));
    EXPECT_FALSE(Enabled(messages, IDC_MESSAGE_LIST));
    EXPECT_FALSE(Enabled(messages, IDC_MESSAGE_STORE));
    EXPECT_EQ(Text(logos, IDC_PRINTER_STATUS), String(2201));
    EXPECT_EQ(Text(messages, IDC_PRINTER_STATUS), String(2201));
    EXPECT_EQ(Rows(logos, IDC_LOGO_LIST), 0) << "a lost printer's logos are not shown";
    Screenshot(L"logos_disconnected");
    Show(kMessagesPage);
    Screenshot(L"messages_disconnected");
    Show(kLogosPage);

    ASSERT_EQ(sim_.Control(L"identity=KX20SIM2"), 0u);
    ASSERT_EQ(sim_.Control(L"connect"), 0u);
    Ticks(3);
    EXPECT_TRUE(Enabled(logos, IDC_LOGO_LIST));
    EXPECT_TRUE(Enabled(messages, IDC_MESSAGE_LIST));
    EXPECT_NE(Text(logos, IDC_PRINTER_STATUS), String(2201));
    EXPECT_EQ(Text(messages, IDC_PRINTER_STATUS), Text(logos, IDC_PRINTER_STATUS));
    ASSERT_EQ(Rows(logos, IDC_LOGO_LIST), 40);
    ASSERT_EQ(Rows(messages, IDC_MESSAGE_LIST), 25);
    EXPECT_EQ(boxes_.seen, 0) << Narrow(boxes_.text);

    // Escape in the list presses the sheet's Cancel button.
    SetFocus(GetDlgItem(logos, IDC_LOGO_LIST));
    SendDlgItemMessageW(logos, IDC_LOGO_LIST, WM_KEYDOWN, VK_ESCAPE, 0);
    Pump();
    EXPECT_EQ(PropSheet_GetCurrentPageHwnd(sheet_), nullptr) << "the sheet was not cancelled";
}

TEST_F(DeviceSheet, TheConnectionTimerDrivesEveryDevicePage) {
    OpenSheet({kx20::GuiLogosDlgProc, kx20::GuiMessagesDlgProc, kx20::GuiFontsDlgProc,
               kx20::GuiMaintenanceDlgProc, kx20::GuiLogSettingsDlgProc},
              IDD_LOGOS_PAGE, L"KX20 Printer Properties", PSP_USETITLE | PSP_PREMATURE,
              PSH_NOAPPLYNOW);
    Pump();
    constexpr int kFontsPage = 2, kMaintenancePage = 3, kLogSettingsPage = 4;
    HWND fonts = Show(kFontsPage);
    HWND maintenance = Show(kMaintenancePage);
    HWND logSettings = Show(kLogSettingsPage);
    Show(kLogosPage);
    Ticks(2);
    ASSERT_TRUE(Enabled(fonts, IDC_DBCS_ENABLE));
    ASSERT_TRUE(Enabled(maintenance, IDC_CLEAR_ALL));

    ASSERT_EQ(sim_.Control(L"disconnect"), 0u);
    Ticks(3);
    EXPECT_FALSE(Enabled(fonts, IDC_DBCS_ENABLE));
    EXPECT_FALSE(Enabled(maintenance, IDC_CLEAR_ALL));
    for (HWND page : {fonts, maintenance, logSettings})
        EXPECT_EQ(Text(page, IDC_PRINTER_STATUS), String(2201));
    EXPECT_TRUE(Enabled(logSettings, IDC_LOG_ENABLE)) << "the log switches need no printer";

    ASSERT_EQ(sim_.Control(L"connect"), 0u);
    Ticks(3);
    EXPECT_TRUE(Enabled(fonts, IDC_DBCS_ENABLE));
    EXPECT_TRUE(Enabled(maintenance, IDC_CLEAR_ALL));
    for (HWND page : {fonts, maintenance, logSettings})
        EXPECT_EQ(Text(page, IDC_PRINTER_STATUS), Text(Page(kLogosPage), IDC_PRINTER_STATUS));
    EXPECT_EQ(boxes_.seen, 0) << Narrow(boxes_.text);
}

TEST_F(DeviceSheet, ConnectionTimerLeavesThePagesAloneWhileAFlowShowsAMessageBox) {
    Open();
    HWND logos = Page(kLogosPage);
    HWND messages = Show(kMessagesPage);
    Select(messages, IDC_MESSAGE_LIST, {0});
    SetDlgItemTextW(messages, IDC_MESSAGE_TEXT, L"Open 9 to 5");
    Click(messages, IDC_MESSAGE_STORE);
    ASSERT_EQ(Cell(messages, IDC_MESSAGE_LIST, 0, 1), String(2203));

    // While the deletion question is open the printer goes away and the timer ticks.
    boxes_.active = false;
    bool enabledDuringBox = false;
    winhost::ModalDriver driver(
        [this] { return winhost::FindThreadDialog(String(2220)); }, {[&](HWND box) {
            EXPECT_EQ(sim_.Control(L"disconnect"), 0u);
            SendMessageW(logos, WM_TIMER, kConnectionTimer, 0);
            enabledDuringBox =
                Enabled(messages, IDC_MESSAGE_LIST) && Rows(messages, IDC_MESSAGE_LIST) == 25;
            PostMessageW(box, WM_COMMAND, IDNO, 0);
            return true;
        }});
    Click(messages, IDC_MESSAGE_DELETE);
    ASSERT_TRUE(driver.Finished());
    EXPECT_TRUE(enabledDuringBox) << "the tick changed the page under the open question";
    Ticks(2);
    EXPECT_FALSE(Enabled(messages, IDC_MESSAGE_LIST)) << "the next tick outside it does";
}

TEST_F(DeviceSheet, PictureTooBigForTheLogoMemoryIsRefusedWhileTheFileDialogStaysOpen) {
    WritePicture(PictureFile(1024, 512));  // 65,536 bytes at one bit a pixel
    Open();
    HWND page = Page(kLogosPage);
    Select(page, IDC_LOGO_LIST, {3});
    bool stayedOpen = false;
    bool formChoice = false;
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
    EXPECT_TRUE(Contains(boxes_.text, String(2231))) << Narrow(boxes_.text);
    EXPECT_TRUE(stayedOpen);
    EXPECT_TRUE(formChoice) << "no form list in the file dialog";
    EXPECT_EQ(Printer().find("logo 4: "), std::string::npos) << Printer();
    EXPECT_EQ(Cell(page, IDC_LOGO_LIST, 3, 1), String(2204));
}

// A stored logo's bytes (as the station pages and the logos page preview them) painted into a
// frame larger than the picture: drawn at its own size at the top left, the rest background,
// and the temporary file gone afterwards. No bytes: background only.
TEST(PicturePreview, StoredBytesArePaintedAtTheFramesTopLeftThroughATemporaryFile) {
    constexpr int kWidth = 120, kHeight = 60;
    HDC screen = GetDC(nullptr);
    HDC dc = CreateCompatibleDC(screen);
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), kWidth, -kHeight, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    HBITMAP bitmap = CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    ASSERT_NE(bitmap, nullptr);
    HGDIOBJ old = SelectObject(dc, bitmap);
    const RECT frame = {0, 0, kWidth, kHeight};
    auto pixel = [&](int x, int y) {
        return static_cast<const std::uint32_t*>(bits)[y * kWidth + x] & 0xFFFFFF;
    };
    const COLORREF face = GetSysColor(COLOR_3DFACE);
    const std::uint32_t background =
        (GetRValue(face) << 16) | (GetGValue(face) << 8) | GetBValue(face);

    const Bytes picture = PictureFile(96, 40);
    PaintPictureBytesPreview(nullptr, dc, picture, frame, 0, false, true);
    GdiFlush();
    EXPECT_EQ(pixel(0, 0), 0u) << "the picture's black frame";
    EXPECT_EQ(pixel(10, 30), 0xFFFFFFu) << "inside the picture, off its diagonal";
    EXPECT_EQ(pixel(100, 10), background) << "right of the picture";
    EXPECT_EQ(pixel(10, 50), background) << "below the picture";
    Win32FileSystem files;
    EXPECT_FALSE(files.Exists(TempPicturePath(files)));

    PaintPictureBytesPreview(nullptr, dc, ByteSpan(), frame, 0, false, true);
    GdiFlush();
    EXPECT_EQ(pixel(0, 0), background);

    SelectObject(dc, old);
    DeleteObject(bitmap);
    DeleteDC(dc);
    ReleaseDC(nullptr, screen);
}

}  // namespace
}  // namespace kx20::winetest
