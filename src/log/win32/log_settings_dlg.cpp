// GuiLogSettingsDlgProc: the log settings page (1011) over its model. The wrap-size edit is
// subclassed: it selects its text when it gets the focus and clamps the number when it loses
// it. The page takes the status-only entry of the shared device-page record so that the
// connection timer keeps its status line current.
#include "platform/win32/windows_clean.h"

#include <commctrl.h>

#include "pages/win32/page_window.h"
#include "pages/win32/page_procs.h"
#include "log/log_settings_page.h"
#include "pages/device_pages.h"
#include "platform/win32/win32_file_dialogs.h"

namespace kx20 {

namespace {

using namespace logs;

constexpr UINT_PTR kWrapSubclassId = 1;
constexpr int kCheckBoxes[] = {IDC_LOG_ENABLE, IDC_LOG_API, IDC_LOG_PRINTING, IDC_LOG_PORT_IO,
                               IDC_LOG_RESTORE};

class LogSettingsDialog : public DevicePage {
  public:
    LogSettingsDialog(HWND hwnd, PageContext& ctx, const PROPSHEETPAGEW*)
        : hwnd_(hwnd), ctx_(ctx), model_(*ctx.platform, *ctx.strings, ctx.printerName) {}

    ~LogSettingsDialog() override {
        RemoveWindowSubclass(GetDlgItem(hwnd_, IDC_LOG_WRAP_SIZE), WrapEditProc, kWrapSubclassId);
        if (ctx_.devicePages)
            ctx_.devicePages->Detach(this);
    }

    void OnInit() {
        SetLabels(hwnd_, ctx_, LogSettingsPageModel::Labels());
        HWND edit = GetDlgItem(hwnd_, IDC_LOG_WRAP_SIZE);
        SetWindowSubclass(edit, WrapEditProc, kWrapSubclassId, reinterpret_cast<DWORD_PTR>(this));
        SendMessageW(edit, EM_LIMITTEXT, kWrapSizeChars, 0);
        model_.Open();
        for (int box : kCheckBoxes) CheckControl(hwnd_, box, model_.Checked(box));
        SetControlText(hwnd_, IDC_LOG_FOLDER, model_.Folder());
        ShowWrapText();
        ShowEnablement();
        SetControlText(hwnd_, IDC_PRINTER_STATUS, model_.StatusText());
        if (ctx_.devicePages)
            ctx_.devicePages->Attach(DevicePageSlot::StatusOnly, this);
    }
    void OnApply() {}
    void ShowHelp() { ShowPageHelp(hwnd_, ctx_, LogSettingsPageModel::kPageTopic); }

    bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
        switch (message) {
            case WM_COMMAND:
                OnCommand(LOWORD(wParam), HIWORD(wParam));
                return false;
            case WM_NOTIFY: {
                const auto* header = reinterpret_cast<const NMHDR*>(lParam);
                if (header->idFrom != IDC_LOG_WRAP_SPIN || header->code != UDN_DELTAPOS)
                    return false;
                OnStep(reinterpret_cast<const NMUPDOWN*>(lParam)->iDelta);
                result = TRUE;  // the number is the page's, not the up-down's
                return true;
            }
            case WM_HELP: {
                const auto* info = reinterpret_cast<const HELPINFO*>(lParam);
                ShowControlHelp(static_cast<HWND>(info->hItemHandle), ctx_,
                                TopicOf(LogSettingsPageModel::ControlTopics(), info->iCtrlId));
                result = TRUE;
                return true;
            }
            default:
                return false;
        }
    }

    // DevicePage.
    void SetStatusText(std::u16string_view text) override {
        SetControlText(hwnd_, IDC_PRINTER_STATUS, text);
    }

  private:
    static LRESULT CALLBACK WrapEditProc(HWND edit, UINT message, WPARAM wParam, LPARAM lParam,
                                         UINT_PTR, DWORD_PTR data) {
        auto* page = reinterpret_cast<LogSettingsDialog*>(data);
        const LRESULT answer = DefSubclassProc(edit, message, wParam, lParam);
        if (message == WM_SETFOCUS) {
            SendMessageW(edit, EM_SETSEL, 0, -1);
        } else if (message == WM_KILLFOCUS) {
            page->model_.WrapFocusLost();
            page->ShowWrapText();
        }
        return answer;
    }

    void OnCommand(int id, int code) {
        if (id == IDC_LOG_WRAP_SIZE && code == EN_CHANGE) {
            model_.WrapTextChanged(ControlText(hwnd_, IDC_LOG_WRAP_SIZE));
            return;
        }
        if (code != BN_CLICKED)
            return;
        if (id == IDC_LOG_BROWSE) {
            const bool stored =
                model_.Browse([this](std::u16string_view title, std::u16string_view start) {
                    return BrowseForFolder(hwnd_, title, start, kBrowseFlags);
                });
            if (stored)
                SetControlText(hwnd_, IDC_LOG_FOLDER, model_.Folder());
            return;
        }
        for (int box : kCheckBoxes) {
            if (box != id)
                continue;
            model_.Click(id, IsChecked(hwnd_, id));
            ShowEnablement();
        }
    }

    void OnStep(int delta) {
        if (!model_.Step(delta))
            return;
        ShowWrapText();
        HWND edit = GetDlgItem(hwnd_, IDC_LOG_WRAP_SIZE);
        SetFocus(edit);
        SendMessageW(edit, EM_SETSEL, 0, -1);
    }

    void ShowWrapText() {
        if (ControlText(hwnd_, IDC_LOG_WRAP_SIZE) != model_.WrapText())
            SetControlText(hwnd_, IDC_LOG_WRAP_SIZE, model_.WrapText());
    }

    void ShowEnablement() {
        for (int id = IDC_LOG_FOLDER_LABEL; id <= IDC_LOG_WRAP_UNIT; ++id)
            EnableControl(hwnd_, id, model_.Enabled(id));
    }

    HWND hwnd_;
    PageContext& ctx_;
    LogSettingsPageModel model_;
};

}  // namespace

INT_PTR CALLBACK GuiLogSettingsDlgProc(HWND page, UINT message, WPARAM wParam, LPARAM lParam) {
    return RunPage<LogSettingsDialog>(u"GuiLogSettingsDlgProc", page, message, wParam, lParam);
}

}  // namespace kx20
