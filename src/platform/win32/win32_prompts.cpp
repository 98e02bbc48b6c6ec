#include "platform/win32/win32_prompts.h"

#include "platform/win32/win32_text.h"

namespace kx20 {

namespace {

struct BroadcastTarget {
    UINT message;
    LPARAM sender;
};

BOOL CALLBACK SendRefresh(HWND window, LPARAM param) {
    auto* target = reinterpret_cast<BroadcastTarget*>(param);
    SendMessageW(window, target->message, 0, target->sender);
    return TRUE;
}

}  // namespace

int Win32Prompts::Show(WindowId owner, std::u16string_view text, std::u16string_view title,
                       std::uint32_t style) {
    std::wstring wideText = ToWide(text);
    std::wstring wideTitle = ToWide(title);
    return MessageBoxW(reinterpret_cast<HWND>(owner), wideText.c_str(), wideTitle.c_str(), style);
}

void Win32Prompts::Broadcast(RefreshMessage which, WindowId sender) {
    std::wstring name = ToWide(RefreshMessageName(which));
    BroadcastTarget target{RegisterWindowMessageW(name.c_str()), static_cast<LPARAM>(sender)};
    if (target.message == 0)
        return;
    EnumChildWindows(GetDesktopWindow(), SendRefresh, reinterpret_cast<LPARAM>(&target));
}

void Win32Prompts::BeginWait() {
    saved_.push_back(SetCursor(LoadCursorW(nullptr, IDC_WAIT)));
}

void Win32Prompts::EndWait() {
    if (saved_.empty())
        return;
    SetCursor(saved_.back());
    saved_.pop_back();
}

}  // namespace kx20
