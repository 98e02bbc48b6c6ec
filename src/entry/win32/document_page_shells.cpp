// The document sheet's pages as they stand until each gets its own behaviour: the page keeps
// its context and shows its controls with their labels; nothing else is handled yet.
#include "entry/win32/page_procs.h"

namespace kx20 {

INT_PTR CALLBACK DeviceSettingsPageProc(HWND page, UINT message, WPARAM, LPARAM lParam) {
    return ShellPage(page, message, lParam);
}

INT_PTR CALLBACK GuiOptionsDlgProc(HWND page, UINT message, WPARAM, LPARAM lParam) {
    return ShellPage(page, message, lParam);
}

INT_PTR CALLBACK StationPageProc(HWND page, UINT message, WPARAM, LPARAM lParam) {
    return ShellPage(page, message, lParam);
}

}  // namespace kx20
