// GuiMaintenanceDlgProc: the maintenance page (1010) over its model, and its About button.
#include "firmware/maintenance_page.h"
#include "pages/device_pages.h"
#include "pages/echo_guard.h"
#include "pages/win32/about_box.h"
#include "pages/win32/page_procs.h"
#include "pages/win32/page_window.h"
#include "platform/win32/win32_file_dialogs.h"
#include "store/registry_layout.h"

namespace kx20 {

namespace {

using namespace firmware;

constexpr int kModelControls[] = {IDC_FIRMWARE_LABEL,  IDC_FIRMWARE_PATH, IDC_FIRMWARE_BROWSE,
                                  IDC_FIRMWARE_UPDATE, IDC_LAST_PRINTER,  IDC_MAINTENANCE,
                                  IDC_CLEAR_ALL};

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
        SetLabels(hwnd_, ctx_, MaintenancePageModel::Labels());
        SendDlgItemMessageW(hwnd_, IDC_FIRMWARE_PATH, EM_LIMITTEXT, store::kPathChars - 1, 0);
        model_.Open();
        ShowAll();
        if (ctx_.devicePages)
            ctx_.devicePages->Attach(DevicePageSlot::Maintenance, this);
    }
    void OnApply() {}
    void ShowHelp() { ShowPageHelp(hwnd_, ctx_, MaintenancePageModel::kPageTopic); }

    bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
        if (message == WM_HELP) {
            const auto* info = reinterpret_cast<const HELPINFO*>(lParam);
            ShowControlHelp(static_cast<HWND>(info->hItemHandle), ctx_,
                            TopicOf(MaintenancePageModel::ControlTopics(), info->iCtrlId));
            result = TRUE;
            return true;
        }
        if (message != WM_COMMAND)
            return false;
        const int control = LOWORD(wParam);
        if (control == IDC_FIRMWARE_PATH && HIWORD(wParam) == EN_CHANGE && !filling_.Filling())
            model_.SetFilePath(ControlText(hwnd_, IDC_FIRMWARE_PATH));
        else if (HIWORD(wParam) == BN_CLICKED)
            OnClick(control);
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
            case IDC_FIRMWARE_BROWSE:
                model_.Browse(Win32FileChooser(hwnd_, *ctx_.strings));
                break;
            case IDC_FIRMWARE_UPDATE:
                model_.Update();
                break;
            case IDC_LAST_PRINTER:
                model_.OnLastPrinterClicked(IsChecked(hwnd_, IDC_LAST_PRINTER));
                break;
            case IDC_MAINTENANCE:
                model_.Maintenance();
                break;
            case IDC_CLEAR_ALL:
                model_.ClearAll();
                break;
            case IDC_ABOUT_BUTTON:
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
        {
            EchoGuard echo(filling_);
            SetControlText(hwnd_, IDC_FIRMWARE_PATH, model_.Text(IDC_FIRMWARE_PATH));
        }
        SetControlText(hwnd_, IDC_PRINTER_STATUS, model_.Text(IDC_PRINTER_STATUS));
        CheckControl(hwnd_, IDC_LAST_PRINTER, model_.LastPrinterChecked());
        ShowEnablement();
        if (model_.Focus() != 0)
            SendMessageW(hwnd_, WM_NEXTDLGCTL,
                         reinterpret_cast<WPARAM>(GetDlgItem(hwnd_, model_.Focus())), TRUE);
    }

    HWND hwnd_;
    PageContext& ctx_;
    MaintenancePageModel model_;
    HINSTANCE templates_;
    EchoGuard::Flag filling_;  // the page writes the path it shows into its edit
};

}  // namespace

INT_PTR CALLBACK GuiMaintenanceDlgProc(HWND page, UINT message, WPARAM wParam, LPARAM lParam) {
    return RunPage<MaintenanceDialog>(u"GuiMaintenanceDlgProc", page, message, wParam, lParam);
}

}  // namespace kx20
