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

// Every control the model decides on; the capture buttons are not among them.
constexpr int kModelControls[] = {
    IDC_SBCS_SLOT1_LABEL,  IDC_SBCS_SLOT1_NAME,    IDC_SBCS_SLOT2_LABEL,  IDC_SBCS_SLOT2_NAME,
    IDC_DBCS_ENABLE,       IDC_DBCS_THERMAL_GROUP, IDC_DBCS_THERMAL_NAME, IDC_DBCS_THERMAL_LOAD,
    IDC_DBCS_IMPACT_GROUP, IDC_DBCS_IMPACT_NAME,   IDC_DBCS_IMPACT_LOAD};
constexpr int kTextControls[] = {IDC_SBCS_SLOT1_NAME, IDC_SBCS_SLOT2_NAME, IDC_DBCS_THERMAL_NAME,
                                 IDC_DBCS_IMPACT_NAME, IDC_PRINTER_STATUS};

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
        SetLabels(hwnd_, ctx_, FontsPageModel::Labels());
        model_.Open();
        ShowAll();
        if (ctx_.devicePages)
            ctx_.devicePages->Attach(DevicePageSlot::Fonts, this);
    }
    void OnApply() {}
    void ShowHelp() { ShowPageHelp(hwnd_, ctx_, FontsPageModel::kPageTopic); }

    bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
        if (message != 0 && message == refreshFonts_) {
            model_.Refresh();
            ShowTexts();
            result = 0;
            return true;
        }
        if (message == WM_HELP) {
            const auto* info = reinterpret_cast<const HELPINFO*>(lParam);
            ShowControlHelp(static_cast<HWND>(info->hItemHandle), ctx_,
                            TopicOf(FontsPageModel::ControlTopics(), info->iCtrlId));
            result = TRUE;
            return true;
        }
        if (message == WM_COMMAND && HIWORD(wParam) == BN_CLICKED)
            OnClick(LOWORD(wParam));
        return false;
    }

    // DevicePage.
    void SetStatusText(std::u16string_view text) override {
        SetControlText(hwnd_, IDC_PRINTER_STATUS, text);
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
            case IDC_DBCS_ENABLE:
                model_.OnDbcsEnabledClicked(IsChecked(hwnd_, IDC_DBCS_ENABLE));
                ShowAll();
                break;
            case IDC_DBCS_THERMAL_LOAD:
            case IDC_DBCS_IMPACT_LOAD:
                model_.LoadDbcsFont(control == IDC_DBCS_THERMAL_LOAD,
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
        EnableControl(hwnd_, IDC_SBCS_SLOT1_CAPTURE, false);
        EnableControl(hwnd_, IDC_SBCS_SLOT2_CAPTURE, false);
    }

    void ShowAll() {
        ShowTexts();
        CheckControl(hwnd_, IDC_DBCS_ENABLE, model_.DbcsChecked());
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
