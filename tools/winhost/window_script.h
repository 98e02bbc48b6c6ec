// Driving a modal window from the program that opened it: a thread timer runs the steps of a script
// once the window is there, inside whatever message loop shows it, and the last step closes it.
// Screenshots of the screen (the test's X display, under Xvfb when there is no display) are
// saved as PNG files by ImageMagick's import, run on the unix side.
#pragma once

#include "platform/win32/windows_clean.h"

#include <functional>
#include <string>
#include <vector>

namespace kx20::winhost {

class ModalDriver {
  public:
    // A step answers true when it is done; false to be run again on the next tick.
    using Step = std::function<bool(HWND window)>;
    // `find` looks for the window on each tick until it appears.
    ModalDriver(std::function<HWND()> find, std::vector<Step> steps);
    ~ModalDriver();
    ModalDriver(const ModalDriver&) = delete;
    ModalDriver& operator=(const ModalDriver&) = delete;

    bool Finished() const { return next_ == steps_.size(); }
    bool SawWindow() const { return window_ != nullptr; }

  private:
    static void CALLBACK Tick(HWND, UINT, UINT_PTR, DWORD);
    void Run();

    std::function<HWND()> find_;
    std::vector<Step> steps_;
    std::size_t next_ = 0;
    HWND window_ = nullptr;
    UINT_PTR timer_ = 0;
    int ticks_ = 0;
};

// The first visible top-level window of this thread whose title is `title` (any title when
// empty) and whose class is the dialog class.
HWND FindThreadDialog(const std::wstring& title = L"");
// The first visible dialog of this thread with a child window of class `childClass`.
HWND FindThreadDialogWith(const wchar_t* childClass);
// A property sheet of this thread (a dialog with a tab control).
HWND FindThreadPropertySheet();

// The tab titles of a property sheet, in order.
std::vector<std::wstring> SheetTabTitles(HWND sheet);

// Saves the whole screen, or only the client area of `window` when one is given, as `name`.png
// in the build's screenshots folder; true when the file was written.
bool SaveScreenshot(const std::wstring& name, HWND window = nullptr);
std::wstring ScreenshotPath(const std::wstring& name);
// Saves the client area of `window` (repainted first) as `name`.png in the same folder.
bool SaveWindowScreenshot(HWND window, const std::wstring& name);
// Saves the client area of `window` (repainted first) as the PNG file `path`.
bool SaveWindowPicture(HWND window, const std::wstring& path);

}  // namespace kx20::winhost
