// What a page asks of the open-file dialog: its title and filter (resource strings), the
// folder it starts in, and the check its hook makes when the user confirms a file. The window
// side shows the dialog; the page models take the chooser as a function, so their flows run
// with no window.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/prompts.h"

namespace kx20 {

struct FileDialogRequest {
    std::uint32_t titleId = 0;
    std::uint32_t filterId = 0;
    std::u16string initialFolder;  // empty: the current directory
    // Called when the user confirms a file; false keeps the dialog open.
    std::function<bool(const std::u16string& path)> accept;
    // The same check told the dialog's window, for a box shown over the dialog; used instead of
    // `accept` when set.
    std::function<bool(const std::u16string& path, WindowId dialog)> acceptOverDialog;

    // A template of the resource module (`templateModule`) whose controls the dialog shows
    // below its own; 0: none.
    std::uint32_t templateId = 0;
    std::uintptr_t templateModule = 0;
    // A drop-down list of the template, filled with `choices` and the first one selected;
    // `onChoice` hears the entry the user picks.
    int choiceControl = 0;
    std::vector<std::u16string> choices;
    std::function<void(int entry)> onChoice;
    // A frame of the template that previews the file under the cursor: `paintPreview` paints
    // into the template's window with the file's path (empty for none or a folder) whenever
    // that window is painted.
    int previewControl = 0;
    std::function<void(WindowId part, const std::u16string& path)> paintPreview;
};

// Shows the dialog; the chosen path, or nothing when the user cancelled.
using FileChooser = std::function<std::optional<std::u16string>(const FileDialogRequest&)>;

// The folder part of a path: up to its last separator, without it (with it for a drive's root
// folder); empty when there is none.
std::u16string FolderOfPath(std::u16string_view path);
// The part after the last separator.
std::u16string FileNameOfPath(std::u16string_view path);

}  // namespace kx20
