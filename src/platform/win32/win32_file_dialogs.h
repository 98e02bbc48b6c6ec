// The system's open-file dialog and folder browser for the pages. The open-file dialog is the
// explorer-style one with a hook: the hook runs the page's check when the user confirms a file
// and keeps the dialog open when the check refuses it.
#pragma once

#include "platform/win32/windows_clean.h"

#include <optional>
#include <string>
#include <string_view>

#include "platform/file_choice.h"
#include "platform/resources.h"

namespace kx20 {

// Title and filter are resource strings; the filter's entries are separated by '|'. The
// read-only box is hidden, the current directory is kept, the path and file must exist.
FileChooser Win32FileChooser(HWND owner, ResourceStrings& strings);

// The folder browser with the browser flags `flags`; its callback preselects `start`.
// Nothing when the user cancels.
std::optional<std::u16string> BrowseForFolder(HWND owner, std::u16string_view title,
                                              std::u16string_view start, UINT flags);

}  // namespace kx20
