#include "tests/wine/modeless_sheet.h"

namespace kx20::winetest {

namespace {
MessageBoxAnswerer* g_answerer = nullptr;  // the one a thread timer reaches
}  // namespace

MessageBoxAnswerer::MessageBoxAnswerer() {
    g_answerer = this;
    timer_ = SetTimer(nullptr, 0, 50, Tick);
}

MessageBoxAnswerer::~MessageBoxAnswerer() {
    KillTimer(nullptr, timer_);
    if (g_answerer == this)
        g_answerer = nullptr;
}

void CALLBACK MessageBoxAnswerer::Tick(HWND, UINT, UINT_PTR, DWORD) {
    if (g_answerer)
        EnumThreadWindows(GetCurrentThreadId(), AnswerOne, reinterpret_cast<LPARAM>(g_answerer));
}

BOOL CALLBACK MessageBoxAnswerer::CollectText(HWND child, LPARAM self) {
    wchar_t buf[512] = {};
    GetWindowTextW(child, buf, 512);
    reinterpret_cast<MessageBoxAnswerer*>(self)->text += buf;
    return TRUE;
}

BOOL CALLBACK MessageBoxAnswerer::AnswerOne(HWND window, LPARAM self) {
    auto* answerer = reinterpret_cast<MessageBoxAnswerer*>(self);
    wchar_t cls[32] = {};
    GetClassNameW(window, cls, 32);
    if (std::wstring(cls) != L"#32770" || !GetWindow(window, GW_OWNER) || !IsWindowVisible(window))
        return TRUE;
    // A message box has Yes or OK; a file dialog (its name box is 0x47c or 0x480) is not one.
    const bool yesNo = GetDlgItem(window, IDYES) != nullptr;
    if ((!yesNo && !GetDlgItem(window, IDOK)) || GetDlgItem(window, 0x47c) ||
        GetDlgItem(window, 0x480))
        return TRUE;
    answerer->text.clear();
    EnumChildWindows(window, CollectText, self);
    ++answerer->seen;
    PostMessageW(window, WM_COMMAND, yesNo ? answerer->answer : IDOK, 0);
    return FALSE;
}

}  // namespace kx20::winetest
