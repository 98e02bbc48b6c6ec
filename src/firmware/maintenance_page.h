// The maintenance page's model: the connected model, the firmware update, the port's
// last-printer flag, the printer's maintenance command, and clearing the whole flash with the
// driver's catalogue of it. The dialog procedure maps its controls to this model.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "pages/page_context.h"
#include "platform/file_choice.h"

namespace kx20::firmware {

// Controls.
inline constexpr int kIdAbout = 1049;
inline constexpr int kIdFileLabel = 1190;
inline constexpr int kIdFilePath = 1191;
inline constexpr int kIdBrowse = 1192;
inline constexpr int kIdUpdate = 1193;
inline constexpr int kIdLastPrinter = 1194;
inline constexpr int kIdMaintenance = 1195;
inline constexpr int kIdClearAll = 1196;
inline constexpr int kIdStatus = 1213;

// Resource strings of the page.
inline constexpr std::uint32_t kStringFirmwareTitle = 2171;
inline constexpr std::uint32_t kStringFirmwareFilter = 2172;
inline constexpr std::uint32_t kStringPortQuestion = 2262;  // "... %s ..." with the port
inline constexpr std::uint32_t kStringClearAllQuestion = 2263;
// Reset parameter after clearing the flash.
inline constexpr std::uint32_t kResetAfterClearAll = 3000;

class MaintenancePageModel {
  public:
    MaintenancePageModel(PageContext& context, WindowId page);

    void Open();
    // No printer to work with (also when it goes away while the page is open): only the About
    // button stays usable.
    void OnConnectionLost();
    // 1192: the file dialog; its hook checks the file against the printer.
    void Browse(const FileChooser& choose);
    // What the user typed into 1191.
    void SetFilePath(std::u16string path) { filePath_ = std::move(path); }
    // 1193.
    void Update();
    // 1194 clicked; `nowChecked` is the box's new state.
    void OnLastPrinterClicked(bool nowChecked);
    // 1195.
    void Maintenance();
    // 1196.
    void ClearAll();

    bool Enabled(int control) const;
    bool LastPrinterChecked() const { return lastPrinter_; }
    // The texts of 1191 and 1213.
    std::u16string Text(int control) const;
    // The control that should have the focus after the last action; 0 for no change.
    int Focus() const { return focus_; }

  private:
    std::u16string PortQuestion(std::u16string_view port) const;

    PageContext& context_;
    WindowId page_;
    std::u16string filePath_;
    std::u16string status_;
    bool lastPrinter_ = false;
    int focus_ = 0;
    std::map<int, bool> enabled_;  // controls not listed are enabled
};

}  // namespace kx20::firmware
