// The log settings page of the device sheet, without its window: which logs are written, the
// log folder and the wrap size. Every change is written to the printer's driver-data key at
// once; the page keeps nothing pending and does nothing on apply. The dialog procedure shows
// what the model holds and passes the user's actions on.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "ids_device_pages.h"
#include "pages/page_help.h"
#include "pages/page_text.h"
#include "platform/platform.h"
#include "platform/resources.h"

namespace kx20::logs {

inline constexpr std::size_t kWrapSizeChars = 5;  // the edit's limit
inline constexpr std::uint32_t kBrowseTitleId = 2207;
// BIF_DONTGOBELOWDOMAIN | BIF_STATUSTEXT: the browser shows its tree and status line, no edit box.
inline constexpr std::uint32_t kBrowseFlags = 6;

// Asks the user for a folder, starting at `start`; nothing when the user cancels.
using FolderPicker = std::function<std::optional<std::u16string>(std::u16string_view title,
                                                                 std::u16string_view start)>;

class LogSettingsPageModel {
  public:
    LogSettingsPageModel(Platform& platform, ResourceStrings& strings, std::u16string printerName);

    // The labels set at start, the help topic of the page and the popup topic of each control.
    static std::span<const PageLabel> Labels();
    static constexpr std::uint32_t kPageTopic = 2080;
    static std::span<const ControlTopic> ControlTopics();

    // Opening: the check boxes from `LogSettings` (0 written when it cannot be read), the folder
    // from `LogPath` (the default folder made and stored when it cannot be read), the wrap size
    // from `LogWrapSize` (5120 stored when it cannot be read), and the status line.
    void Open();
    // The status line from the port's connection status now.
    void RefreshStatus();

    bool Checked(int controlId) const;
    // Everything from 1201 to 1212 follows the master switch.
    bool Enabled(int controlId) const;
    const std::u16string& Folder() const { return folder_; }
    const std::u16string& WrapText() const { return wrapText_; }
    const std::u16string& StatusText() const { return status_; }

    // A check box's new state: its bit is set or cleared in `LogSettings` as stored now, so
    // the other bits stay as they are.
    void Click(int controlId, bool checked);
    // The browse button: a chosen folder is stored and shown. True when it was stored.
    bool Browse(const FolderPicker& pick);
    // An up-down step: a negative delta raises the number by 1, a positive one lowers it, both
    // kept within 1024..10240. True when the number shown changed (and was stored); the page
    // then puts the focus in the edit with its text selected.
    bool Step(int delta);
    // Any change of the edit's text: the number it shows is stored at once, even outside
    // 1024..10240 while the user is typing.
    void WrapTextChanged(std::u16string_view text);
    // The focus leaves the edit: a number above 10240 is shown (and stored) as 10240, one
    // below 1024 as 1024.
    void WrapFocusLost();

  private:
    void ShowWrapSize(std::uint32_t kb);

    Platform& p_;
    ResourceStrings& strings_;
    std::u16string printer_;
    std::uint32_t checks_ = 0;  // `LogSettings` bits of the ticked boxes
    std::u16string folder_;
    std::u16string wrapText_;
    std::u16string status_;
};

// The number an edit shows, read as the system reads an unsigned number from a control: blanks
// around decimal digits; anything else, or a number beyond 32 bits, reads as 0.
std::uint32_t NumberShown(std::u16string_view text);

}  // namespace kx20::logs
