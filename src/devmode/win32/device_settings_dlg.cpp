// DeviceSettingsPageProc: the device settings page (1003) over its model. The page hangs the
// sheet's apply-state record on the property-sheet frame and tells the other pages when the
// station or the paper changes.
#include "devmode/device_settings_page.h"
#include "devmode/win32/document_pages.h"
#include "pages/win32/page_window.h"
#include "ids_document_pages.h"

namespace kx20 {

namespace {

constexpr DWORD kHelpTopic = 2000;

class DeviceSettingsDialog {
  public:
    DeviceSettingsDialog(HWND hwnd, PageContext& ctx, const PROPSHEETPAGEW*)
        : hwnd_(hwnd), ctx_(ctx), model_(ctx) {}

    ~DeviceSettingsDialog() {
        HWND frame = GetParent(hwnd_);
        if (FrameApplyState(hwnd_) == &ctx_.applyState)
            SetWindowLongPtrW(frame, GWLP_USERDATA, 0);
    }

    void OnInit() {
        HWND frame = GetParent(hwnd_);
        ctx_.sheetWindow = reinterpret_cast<WindowId>(frame);
        if (!FrameApplyState(hwnd_))
            SetWindowLongPtrW(frame, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&ctx_.applyState));
        SetLabels(hwnd_, ctx_, DeviceSettingsPageModel::Labels());
        model_.Init(ctx_.applyState);
        SetControlText(hwnd_, IDC_DS_STATUS, model_.StatusText());
        FillList(hwnd_, IDC_DS_STATION, model_.StationEntries(), model_.Station());
        FillList(hwnd_, IDC_DS_PAPER, model_.PaperEntries(), model_.PaperRow());
        ShowStationNote();
    }

    void OnApply() { model_.Apply(reinterpret_cast<WindowId>(GetParent(hwnd_)), ctx_.applyState); }
    void ShowHelp() { ShowPageHelp(hwnd_, ctx_, kHelpTopic); }

    bool OnMessage(UINT message, WPARAM wParam, LPARAM, LRESULT&) {
        if (message != WM_COMMAND || HIWORD(wParam) != CBN_SELCHANGE)
            return false;
        const int control = LOWORD(wParam);
        const int selection = ListSelection(hwnd_, control);
        bool changed = false;
        if (control == IDC_DS_STATION) {
            changed = model_.SelectStation(selection, ctx_.applyState);
            ShowStationNote();
        } else if (control == IDC_DS_PAPER) {
            changed = model_.SelectPaper(selection, ctx_.applyState);
        }
        if (changed) {
            MarkChanged(hwnd_);
            SendMessageW(GetParent(hwnd_), PSM_QUERYSIBLINGS, kDeviceSettingsChanged, 0);
        }
        return false;
    }

  private:
    void ShowStationNote() {
        SetControlText(hwnd_, IDC_DS_STATION_NOTE, PageString(ctx_, model_.StationNote()));
    }

    HWND hwnd_;
    PageContext& ctx_;
    DeviceSettingsPageModel model_;
};

}  // namespace

}  // namespace kx20

INT_PTR CALLBACK kx20::DeviceSettingsPageProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    return kx20::RunPage<kx20::DeviceSettingsDialog>(u"DeviceSettingsPageProc", hwnd, message,
                                                     wParam, lParam);
}
