// GuiFontsDlgProc: the fonts page (1009) over its model. The page follows the printer through
// the shared device-page record (the logos page's connection timer) and rereads the font names
// when a fonts refresh is broadcast.
#include "pages/win32/page_window.h"
#include "pages/win32/page_procs.h"
#include "fonts/fonts_page.h"
#include "pages/device_pages.h"
#include "platform/win32/win32_file_dialogs.h"
#include "platform/win32/win32_text.h"

namespace kx20 {

namespace {

using namespace fonts;

constexpr DWORD kPageHelp = 2060;

// Every control the model decides on; the capture buttons are not among them.
constexpr int kModelControls[] = {kIdSlot1Label,  kIdSlot1Name,    kIdSlot2Label,  kIdSlot2Name,
                                  kIdDbcsEnabled, kIdThermalGroup, kIdThermalName, kIdThermalLoad,
                                  kIdImpactGroup, kIdImpactName,   kIdImpactLoad};
constexpr int kTextControls[] = {kIdSlot1Name, kIdSlot2Name, kIdThermalName, kIdImpactName,
                                 kIdStatus};

DWORD ControlHelp(int control) {
    switch (control) {
        case 1171:
        case 1172:
            return 6000;
        case 1173:
            return 6010;
        case 1174:
        case 1175:
            return 6020;
        case 1176:
            return 6030;
        case 1177:
            return 6040;
        case 1178:
        case 1179:
            return 6050;
        case 1180:
            return 6060;
        case 1181:
        case 1182:
            return 6070;
        case 1183:
            return 6080;
        case 1213:
            return 4010;
        default:
            return 0;
    }
}

class FontsDialog : public DevicePage {
  public:
    FontsDialog(HWND hwnd, PageContext& ctx, const PROPSHEETPAGEW*)
        : hwnd_(hwnd),
          ctx_(ctx),
          model_(ctx, reinterpret_cast<WindowId>(hwnd)),
          refreshFonts_(
              RegisterWindowMessageW(ToWide(RefreshMessageName(RefreshMessage::Fonts)).c_str())) {}

    ~FontsDialog() override {
        if (ctx_.devicePages)
            ctx_.devicePages->Detach(this);
    }

    void OnInit() {
        LabelControlsFromStrings(hwnd_, ctx_);
        model_.Open();
        ShowAll();
        if (ctx_.devicePages)
            ctx_.devicePages->Attach(DevicePageSlot::Fonts, this);
    }
    void OnApply() {}
    void ShowHelp() { ShowPageHelp(hwnd_, ctx_, kPageHelp); }

    bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
        if (message != 0 && message == refreshFonts_) {
            model_.Refresh();
            ShowTexts();
            result = 0;
            return true;
        }
        if (message == WM_HELP) {
            const auto* info = reinterpret_cast<const HELPINFO*>(lParam);
            ShowControlHelp(static_cast<HWND>(info->hItemHandle), ctx_, ControlHelp(info->iCtrlId));
            result = TRUE;
            return true;
        }
        if (message == WM_COMMAND && HIWORD(wParam) == BN_CLICKED)
            OnClick(LOWORD(wParam));
        return false;
    }

    // DevicePage.
    void SetStatusText(std::u16string_view text) override {
        SetControlText(hwnd_, kIdStatus, text);
    }
    void OnConnectionLost() override {
        model_.OnConnectionLost();
        ShowAll();
    }
    void OnConnectionChanged(const store::ConnectionStatus&) override {
        model_.Open();
        ShowAll();
    }
    void UpdateEnablement() override { ShowEnablement(); }

  private:
    void OnClick(int control) {
        switch (control) {
            case kIdDbcsEnabled:
                model_.OnDbcsEnabledClicked(IsChecked(hwnd_, kIdDbcsEnabled));
                ShowAll();
                break;
            case kIdThermalLoad:
            case kIdImpactLoad:
                model_.LoadDbcsFont(control == kIdThermalLoad,
                                    Win32FileChooser(hwnd_, *ctx_.strings));
                ShowTexts();
                break;
            default:
                break;
        }
    }

    void ShowTexts() {
        for (int control : kTextControls) SetControlText(hwnd_, control, model_.Text(control));
    }

    void ShowEnablement() {
        for (int control : kModelControls) EnableControl(hwnd_, control, model_.Enabled(control));
        // Capturing an installed font into a slot is not part of this driver yet.
        EnableControl(hwnd_, kIdSlot1Capture, false);
        EnableControl(hwnd_, kIdSlot2Capture, false);
    }

    void ShowAll() {
        ShowTexts();
        CheckControl(hwnd_, kIdDbcsEnabled, model_.DbcsChecked());
        ShowEnablement();
    }

    HWND hwnd_;
    PageContext& ctx_;
    FontsPageModel model_;
    UINT refreshFonts_;
};

}  // namespace

INT_PTR CALLBACK GuiFontsDlgProc(HWND page, UINT message, WPARAM wParam, LPARAM lParam) {
    return RunPage<FontsDialog>(u"GuiFontsDlgProc", page, message, wParam, lParam);
}

}  // namespace kx20
