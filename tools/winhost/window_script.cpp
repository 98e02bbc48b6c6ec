#include "tools/winhost/window_script.h"

#include <commctrl.h>

#include <cstdio>

#include "tools/winhost/driver_install.h"

namespace kx20::winhost {

namespace {

constexpr UINT kTickMilliseconds = 100;
// A window that has not come after this many ticks will not come; the script stops.
constexpr int kMaxWaitTicks = 300;

ModalDriver* g_driver = nullptr;

struct Search {
    std::wstring title;
    const wchar_t* childClass = nullptr;  // a child of this class is wanted
    HWND found = nullptr;
};

BOOL CALLBACK Visit(HWND window, LPARAM lParam) {
    auto* s = reinterpret_cast<Search*>(lParam);
    if (!IsWindowVisible(window))
        return TRUE;
    wchar_t cls[64] = {};
    GetClassNameW(window, cls, 64);
    if (std::wstring(cls) != L"#32770")
        return TRUE;
    if (s->childClass && !FindWindowExW(window, nullptr, s->childClass, nullptr))
        return TRUE;
    if (!s->title.empty()) {
        wchar_t text[256] = {};
        GetWindowTextW(window, text, 256);
        if (s->title != text)
            return TRUE;
    }
    s->found = window;
    return FALSE;
}

}  // namespace

ModalDriver::ModalDriver(std::function<HWND()> find, std::vector<Step> steps)
    : find_(std::move(find)), steps_(std::move(steps)) {
    g_driver = this;
    timer_ = SetTimer(nullptr, 0, kTickMilliseconds, &ModalDriver::Tick);
}

ModalDriver::~ModalDriver() {
    if (timer_)
        KillTimer(nullptr, timer_);
    g_driver = nullptr;
}

void CALLBACK ModalDriver::Tick(HWND, UINT, UINT_PTR, DWORD) {
    if (g_driver)
        g_driver->Run();
}

void ModalDriver::Run() {
    if (Finished())
        return;
    if (!window_ || !IsWindow(window_)) {
        window_ = find_();
        if (!window_) {
            if (++ticks_ > kMaxWaitTicks && timer_) {
                KillTimer(nullptr, timer_);
                timer_ = 0;
            }
            return;
        }
    }
    if (steps_[next_](window_))
        ++next_;
    if (Finished() && timer_) {
        KillTimer(nullptr, timer_);
        timer_ = 0;
    }
}

HWND FindThreadDialog(const std::wstring& title) {
    Search s{title, nullptr, nullptr};
    EnumThreadWindows(GetCurrentThreadId(), Visit, reinterpret_cast<LPARAM>(&s));
    return s.found;
}

HWND FindThreadDialogWith(const wchar_t* childClass) {
    Search s{L"", childClass, nullptr};
    EnumThreadWindows(GetCurrentThreadId(), Visit, reinterpret_cast<LPARAM>(&s));
    return s.found;
}

HWND FindThreadPropertySheet() {
    return FindThreadDialogWith(WC_TABCONTROLW);
}

std::vector<std::wstring> SheetTabTitles(HWND sheet) {
    std::vector<std::wstring> titles;
    HWND tab = reinterpret_cast<HWND>(SendMessageW(sheet, PSM_GETTABCONTROL, 0, 0));
    const int count = tab ? static_cast<int>(SendMessageW(tab, TCM_GETITEMCOUNT, 0, 0)) : 0;
    for (int i = 0; i < count; ++i) {
        wchar_t text[256] = {};
        TCITEMW item = {};
        item.mask = TCIF_TEXT;
        item.pszText = text;
        item.cchTextMax = 256;
        SendMessageW(tab, TCM_GETITEMW, i, reinterpret_cast<LPARAM>(&item));
        titles.emplace_back(text);
    }
    return titles;
}

std::wstring ScreenshotPath(const std::wstring& name) {
    const std::wstring folder = winhost::ProgramFolder() + L"screenshots";
    CreateDirectoryW(folder.c_str(), nullptr);
    return folder + L"\\" + name + L".png";
}

namespace {

// Runs ImageMagick's import on the unix side; `crop` empty for the whole screen.
// Wine paints windows into surfaces that reach the X display when the thread waits for
// messages (at most one flush every 50 ms): wait a few rounds so the picture shows what was
// painted.
void SettleDisplay() {
    GdiFlush();
    for (int i = 0; i < 3; ++i)
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 60, QS_PAINT);
}

bool Import(const std::wstring& path, const std::string& crop) {
    SettleDisplay();
    using UnixName = char*(CDECL*)(LPCWSTR);
    using Spawn = LONG(WINAPI*)(char* const*, int);
    auto unixName = reinterpret_cast<UnixName>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name")));
    auto spawn = reinterpret_cast<Spawn>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "__wine_unix_spawnvp")));
    if (!unixName || !spawn)
        return false;
    DeleteFileW(path.c_str());
    char* target = unixName(path.c_str());
    if (!target)
        return false;
    char program[] = "import", window[] = "-window", root[] = "root", cropFlag[] = "-crop";
    std::string area = crop;
    char* whole[] = {program, window, root, target, nullptr};
    char* cropped[] = {program, window, root, cropFlag, area.data(), target, nullptr};
    const LONG status = spawn(crop.empty() ? whole : cropped, TRUE);
    HeapFree(GetProcessHeap(), 0, target);
    return status == 0 && GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

}  // namespace

bool SaveScreenshot(const std::wstring& name, HWND window) {
    return window ? SaveWindowScreenshot(window, name) : Import(ScreenshotPath(name), {});
}

bool SaveWindowScreenshot(HWND window, const std::wstring& name) {
    return SaveWindowPicture(window, ScreenshotPath(name));
}

bool SaveWindowPicture(HWND window, const std::wstring& path) {
    RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
    RECT r;
    GetClientRect(window, &r);
    MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&r), 2);
    char crop[64];
    snprintf(crop, sizeof crop, "%ldx%ld+%ld+%ld", static_cast<long>(r.right - r.left),
             static_cast<long>(r.bottom - r.top), static_cast<long>(r.left),
             static_cast<long>(r.top));
    return Import(path, crop);
}

}  // namespace kx20::winhost
