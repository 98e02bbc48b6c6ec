// The maintenance page's model: the connected model, the firmware update, the port's
// last-printer flag, the printer's maintenance command, and clearing the whole flash with the
// driver's catalogue of it. The dialog procedure maps its controls to this model.
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>

#include "ids_device_pages.h"
#include "pages/page_context.h"
#include "pages/page_help.h"
#include "pages/page_text.h"
#include "platform/file_choice.h"

namespace kx20::firmware {

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

    // The labels set at start, the help topic of the page and the popup topic of each control.
    static std::span<const PageLabel> Labels();
    static constexpr std::uint32_t kPageTopic = 2070;
    static std::span<const ControlTopic> ControlTopics();

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
