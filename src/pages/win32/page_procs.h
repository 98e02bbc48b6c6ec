// The dialog procedures of the sheets' pages and the page table that maps each page's
// template number to its procedure. The table is the one place that knows which procedure
// serves which page.
#pragma once

#include "platform/win32/windows_clean.h"

#include <cstdint>

namespace kx20 {

// Document sheet.
INT_PTR CALLBACK DeviceSettingsPageProc(HWND, UINT, WPARAM, LPARAM);  // 1003
INT_PTR CALLBACK GuiOptionsDlgProc(HWND, UINT, WPARAM, LPARAM);       // 1004
INT_PTR CALLBACK StationPageProc(HWND, UINT, WPARAM, LPARAM);         // 1005, 1006

// Device sheet.
INT_PTR CALLBACK GuiLogosDlgProc(HWND, UINT, WPARAM, LPARAM);        // 1007
INT_PTR CALLBACK GuiMessagesDlgProc(HWND, UINT, WPARAM, LPARAM);     // 1008
INT_PTR CALLBACK GuiFontsDlgProc(HWND, UINT, WPARAM, LPARAM);        // 1009
INT_PTR CALLBACK GuiMaintenanceDlgProc(HWND, UINT, WPARAM, LPARAM);  // 1010
INT_PTR CALLBACK GuiLogSettingsDlgProc(HWND, UINT, WPARAM, LPARAM);  // 1011

// The procedure of the page with this template number; null for a number not in the table.
DLGPROC PageDialogProc(std::uint32_t templateId);

}  // namespace kx20
