// What the tests that show a modeless property sheet of pages share: the sheet's window, its
// message pump (with the sheet's dialog keys), and pages, buttons and texts reached by
// messages.
#pragma once

#include "platform/win32/windows_clean.h"

#include <commctrl.h>
#include <prsht.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "entry/sheet_context.h"
#include "platform/win32/win32_pictures.h"
#include "platform/win32/win32_platform.h"
#include "platform/win32/win32_prompts.h"
#include "platform/win32/win32_resources.h"
#include "tests/wine/wine_environment.h"
#include "tools/winhost/sim_control.h"
#include "tools/winhost/window_script.h"

namespace kx20::winetest {

inline std::string Narrow(const std::wstring& s) {
    return std::string(s.begin(), s.end());
}

// Answers every message box of this thread while it lives, from a thread timer that the box's
// own modal loop runs: Yes or No as `answer` says (OK for a box without them). Counts the boxes
// and keeps the texts of the last one. File dialogs are left alone.
class MessageBoxAnswerer {
  public:
    MessageBoxAnswerer();
    ~MessageBoxAnswerer();
    MessageBoxAnswerer(const MessageBoxAnswerer&) = delete;
    MessageBoxAnswerer& operator=(const MessageBoxAnswerer&) = delete;

    bool active = true;  // false: boxes are left to the test
    int answer = IDNO;
    int seen = 0;
    std::wstring text;  // the last box's texts, its buttons' included

  private:
    static void CALLBACK Tick(HWND, UINT, UINT_PTR, DWORD);
    static BOOL CALLBACK AnswerOne(HWND window, LPARAM self);
    static BOOL CALLBACK CollectText(HWND child, LPARAM self);
    UINT_PTR timer_ = 0;
};

class ModelessSheetTest : public ::testing::Test {
  protected:
    void Pump() {
        MSG msg;
        while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
            if (sheet_ && PropSheet_IsDialogMessage(sheet_, &msg))
                continue;
            TranslateMessage(&msg);
            DispatchMessageW(&msg);
        }
    }
    HWND Page(int index) {
        return reinterpret_cast<HWND>(SendMessageW(sheet_, PSM_INDEXTOHWND, index, 0));
    }
    HWND Show(int index) {
        SendMessageW(sheet_, PSM_SETCURSEL, index, 0);
        Pump();
        return Page(index);
    }
    void Click(HWND page, int control) {
        SendDlgItemMessageW(page, control, BM_CLICK, 0, 0);
        Pump();
    }
    std::wstring Text(HWND page, int control) {
        wchar_t buf[300] = {};
        GetDlgItemTextW(page, control, buf, 300);
        return buf;
    }
    // The sheet's client area as it shows now, as screenshots/NAME.png in the build folder.
    // Painted and pumped first: the display gets the window's surface when the queue idles.
    void Screenshot(const std::wstring& name) {
        RedrawWindow(sheet_, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
        Pump();
        EXPECT_TRUE(winhost::SaveWindowScreenshot(sheet_, name)) << Narrow(name);
    }
    // Presses Tab, or Shift+Tab when `back`, on the keyboard, and handles what follows.
    void PressTab(bool back);
    // Steps around the sheet with Tab from the page's first control, then with Shift+Tab from
    // its last, and checks that the focus visits each of the page's enabled controls once, in
    // reading order as laid out on screen.
    void ExpectTabOrder(HWND page);
    // Destroys the sheet and handles what its pages left in the queue.
    void CloseSheet() {
        if (sheet_)
            DestroyWindow(sheet_);
        sheet_ = nullptr;
        Pump();
    }

    HWND sheet_ = nullptr;
};

// Pages shown over the Win32 adapters against the simulated printer: a fresh connected printer,
// KVORSENU.DLL's templates and strings, a page context for the test's printer with its port
// summary, the port's logo and message values removed, and message boxes answered.
class SimulatedPrinterPagesTest : public ModelessSheetTest {
  protected:
    // Call first in SetUp (under ASSERT_NO_FATAL_FAILURE).
    void SetUpPrinterAndContext();
    void TearDown() override;
    // A modeless sheet of `procs.size()` pages whose templates (and titles) are `firstTemplate`
    // onwards, each with the context as its parameter.
    void OpenSheet(const std::vector<DLGPROC>& procs, int firstTemplate, const wchar_t* caption,
                   DWORD pageFlags, DWORD sheetFlags);
    std::wstring String(std::uint32_t id);

    // The real clock, except that the waits for the printer's restart are skipped: the
    // simulated printer is ready at once.
    struct NoWaitClock : Win32Clock {
        void Sleep(std::uint32_t) override {}
    };

    Win32Platform win32_;
    NoWaitClock clock_;
    // The pages' ports: the Win32 adapters with that clock.
    Platform ports_{win32_.registry, win32_.spooler, win32_.files, clock_, win32_.monitor};
    Win32Prompts prompts_;
    Win32Pictures pictures_;
    winhost::SimulatedPrinterControl sim_{PortPath()};
    HMODULE resources_ = nullptr;
    std::unique_ptr<Win32ResourceStrings> strings_;
    SheetContext ctx_;
    std::u16string id_;  // the printer's identity
    MessageBoxAnswerer boxes_;
};

}  // namespace kx20::winetest
