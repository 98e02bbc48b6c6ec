// GuiMaintenanceDlgProc: the maintenance page (1010) over its model, and its About button.
#include "pages/win32/page_window.h"
#include "pages/win32/page_procs.h"
#include "firmware/maintenance_page.h"
#include "pages/device_pages.h"
#include "pages/win32/about_box.h"
#include "platform/win32/win32_file_dialogs.h"
#include "store/registry_layout.h"

namespace kx20 {

namespace {

using namespace firmware;

constexpr DWORD kPageHelp = 2070;

constexpr int kModelControls[] = {kIdFileLabel,   kIdFilePath,    kIdBrowse,  kIdUpdate,
                                  kIdLastPrinter, kIdMaintenance, kIdClearAll};

DWORD ControlHelp(int control) {
    switch (control) {
        case 1049:
            return 4000;
        case 1190:
        case 1191:
            return 6200;
        case 1192:
            return 6210;
        case 1193:
            return 6220;
        case 1194:
            return 6230;
        case 1195:
            return 6240;
        case 1196:
            return 6250;
        case 1213:
            return 4010;
        default:
            return 0;
    }
}

class MaintenanceDialog : public DevicePage {
  public:
    MaintenanceDialog(HWND hwnd, PageContext& ctx, const PROPSHEETPAGEW* description)
        : hwnd_(hwnd),
          ctx_(ctx),
          model_(ctx, reinterpret_cast<WindowId>(hwnd)),
          templates_(ctx.resourceModule
                         ? reinterpret_cast<HINSTANCE>(ctx.resourceModule)
                         : (description ? description->hInstance : nullptr)) {}

    ~MaintenanceDialog() override {
        if (ctx_.devicePages)
            ctx_.devicePages->Detach(this);
    }

    void OnInit() {
        LabelControlsFromStrings(hwnd_, ctx_);
        SendDlgItemMessageW(hwnd_, kIdFilePath, EM_LIMITTEXT, store::kPathChars - 1, 0);
        model_.Open();
        ShowAll();
        if (ctx_.devicePages)
            ctx_.devicePages->Attach(DevicePageSlot::Maintenance, this);
    }
    void OnApply() {}
    void ShowHelp() { ShowPageHelp(hwnd_, ctx_, kPageHelp); }

    bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
        if (message == WM_HELP) {
            const auto* info = reinterpret_cast<const HELPINFO*>(lParam);
            ShowControlHelp(static_cast<HWND>(info->hItemHandle), ctx_, ControlHelp(info->iCtrlId));
            result = TRUE;
            return true;
        }
        if (message != WM_COMMAND)
            return false;
        const int control = LOWORD(wParam);
        if (control == kIdFilePath && HIWORD(wParam) == EN_CHANGE && !showing_)
            model_.SetFilePath(ControlText(hwnd_, kIdFilePath));
        else if (HIWORD(wParam) == BN_CLICKED)
            OnClick(control);
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
            case kIdBrowse:
                model_.Browse(Win32FileChooser(hwnd_, *ctx_.strings));
                break;
            case kIdUpdate:
                model_.Update();
                break;
            case kIdLastPrinter:
                model_.OnLastPrinterClicked(IsChecked(hwnd_, kIdLastPrinter));
                break;
            case kIdMaintenance:
                model_.Maintenance();
                break;
            case kIdClearAll:
                model_.ClearAll();
                break;
            case kIdAbout:
                ShowAboutBox(templates_, hwnd_, reinterpret_cast<LPARAM>(&ctx_));
                return;
            default:
                return;
        }
        ShowAll();
    }

    void ShowEnablement() {
        for (int control : kModelControls) EnableControl(hwnd_, control, model_.Enabled(control));
    }

    void ShowAll() {
        showing_ = true;
        SetControlText(hwnd_, kIdFilePath, model_.Text(kIdFilePath));
        showing_ = false;
        SetControlText(hwnd_, kIdStatus, model_.Text(kIdStatus));
        CheckControl(hwnd_, kIdLastPrinter, model_.LastPrinterChecked());
        ShowEnablement();
        if (model_.Focus() != 0)
            SendMessageW(hwnd_, WM_NEXTDLGCTL,
                         reinterpret_cast<WPARAM>(GetDlgItem(hwnd_, model_.Focus())), TRUE);
    }

    HWND hwnd_;
    PageContext& ctx_;
    MaintenancePageModel model_;
    HINSTANCE templates_;
    bool showing_ = false;
};

}  // namespace

INT_PTR CALLBACK GuiMaintenanceDlgProc(HWND page, UINT message, WPARAM wParam, LPARAM lParam) {
    return RunPage<MaintenanceDialog>(u"GuiMaintenanceDlgProc", page, message, wParam, lParam);
}

}  // namespace kx20
