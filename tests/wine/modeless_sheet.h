// What the tests that show a modeless property sheet of pages share: the sheet's window, its
// message pump (with the sheet's dialog keys), and pages, buttons and texts reached by
// messages.
#pragma once

#include "platform/win32/windows_clean.h"

#include <commctrl.h>
#include <prsht.h>

#include <gtest/gtest.h>

#include <string>

namespace kx20::winetest {

inline std::string Narrow(const std::wstring& s) {
    return std::string(s.begin(), s.end());
}

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
    // Destroys the sheet and handles what its pages left in the queue.
    void CloseSheet() {
        if (sheet_)
            DestroyWindow(sheet_);
        sheet_ = nullptr;
        Pump();
    }

    HWND sheet_ = nullptr;
};

}  // namespace kx20::winetest
