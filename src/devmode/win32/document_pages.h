// Dialog procedures of the document sheet's pages. Each page's parameter (the lParam of its
// page description) is the sheet's kx20::PageContext.
#pragma once

#include "platform/win32/windows_clean.h"

#include <string_view>

// The procedures themselves (DeviceSettingsPageProc 1003, GuiOptionsDlgProc 1004,
// StationPageProc 1005 and 1006, whose dialog template tells which station) are declared
// with the page table.
#include "pages/win32/page_procs.h"

namespace kx20 {

// What the sheet's pages tell each other through PSM_QUERYSIBLINGS (wParam): the device
// settings page changed the station or the paper.
inline constexpr WPARAM kDeviceSettingsChanged = 0x4B58;  // "KX"

}  // namespace kx20
