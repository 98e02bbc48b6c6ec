// The fonts page's model: which fonts the printer holds, the double-byte switch and the
// double-byte loads. On opening it reconciles the font catalogue with the checksums the printer
// reports. The dialog procedure maps its controls to this model; every enabled state and text
// comes from here.
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>

#include "fonts/font_download.h"
#include "ids_device_pages.h"
#include "pages/page_context.h"
#include "pages/page_help.h"
#include "pages/page_text.h"
#include "platform/file_choice.h"
#include "store/registry_layout.h"

namespace kx20::fonts {

// The box shown when a model-9 printer has no room for double-byte fonts (the system's own
// texts, not the resource module's).
inline constexpr std::u16string_view kNoDbcsMemoryText =
    u"Insufficient memory allocated for DBCS Fonts!";
inline constexpr std::u16string_view kNoDbcsMemoryTitle = u"KVO KX20 Printer Driver";

class FontsPageModel {
  public:
    // `page` is the page's window: owner of its boxes and sender of its broadcasts.
    FontsPageModel(PageContext& context, WindowId page);

    // The labels set at start, the help topic of the page and the popup topic of each control.
    static std::span<const PageLabel> Labels();
    static constexpr std::uint32_t kPageTopic = 2060;
    static std::span<const ControlTopic> ControlTopics();

    // Opening, and again when the printer on the port has changed: reconcile, names, switches.
    void Open();
    // The printer is no longer reachable: the names go, the printer controls are disabled and
    // the status line tells why.
    void OnConnectionLost();
    // "MSG_REFRESH_FONTS_KX20": reread the four names.
    void Refresh();
    // 1177 clicked; `nowChecked` is the box's new state.
    void OnDbcsEnabledClicked(bool nowChecked);
    // 1180 (thermal) and 1183 (impact).
    void LoadDbcsFont(bool thermal, const FileChooser& choose);

    bool Enabled(int control) const;
    bool DbcsChecked() const { return dbcsChecked_; }
    // The texts of 1172, 1175, 1179, 1182 and 1213; empty for other controls.
    std::u16string Text(int control) const;

  private:
    FontFlowContext Flow() const;
    void SetEnabled(int first, int last, bool enabled);
    void ReconcileSingleByte(const store::ConnectionStatus& status);
    void ReconcileDoubleByte(const store::ConnectionStatus& status);
    void ReadNames();

    PageContext& context_;
    WindowId page_;
    FontNames names_;
    std::u16string status_;
    bool dbcsChecked_ = false;
    std::map<int, bool> enabled_;  // controls not listed are enabled
};

}  // namespace kx20::fonts
