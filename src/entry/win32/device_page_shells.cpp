// The device sheet's fonts, maintenance and log settings pages as they stand until each gets
// its own behaviour: the page keeps its context and shows its controls with their labels;
// nothing else is handled yet.
#include "entry/win32/page_procs.h"

namespace kx20 {

INT_PTR CALLBACK GuiFontsDlgProc(HWND page, UINT message, WPARAM, LPARAM lParam) {
    return ShellPage(page, message, lParam);
}

INT_PTR CALLBACK GuiMaintenanceDlgProc(HWND page, UINT message, WPARAM, LPARAM lParam) {
    return ShellPage(page, message, lParam);
}

INT_PTR CALLBACK GuiLogSettingsDlgProc(HWND page, UINT message, WPARAM, LPARAM lParam) {
    return ShellPage(page, message, lParam);
}

}  // namespace kx20
