// The device sheet's pages that do not have their own behaviour yet: the page keeps
// its context and shows its controls with their labels; nothing else is handled yet.
#include "entry/win32/page_procs.h"

namespace kx20 {

INT_PTR CALLBACK GuiLogosDlgProc(HWND page, UINT message, WPARAM, LPARAM lParam) {
    return ShellPage(page, message, lParam);
}

INT_PTR CALLBACK GuiMessagesDlgProc(HWND page, UINT message, WPARAM, LPARAM lParam) {
    return ShellPage(page, message, lParam);
}

}  // namespace kx20
