// GuiMessagesDlgProc: the messages page (1008) over its model. The page puts itself in the
// device pages' shared record so that the logos page's connection timer reaches its window.
#include "platform/win32/windows_clean.h"

#include <commctrl.h>
#include <imm.h>

#include "pages/win32/page_window.h"
#include "pages/win32/page_procs.h"
#include "ids_device_pages.h"
#include "pages/device_pages.h"
#include "logos/messages_page_model.h"
#include "logos/page_common.h"
#include "pages/win32/slot_list.h"
#include "platform/win32/win32_text.h"

namespace kx20 {

namespace {

constexpr DWORD kMessagesHelp = 2050;
// The controls' popup help topics (control, topic; 0, 0 ends the list).
// clang-format off
const DWORD kMessagesControlHelp[] = {
    IDC_MESSAGE_LIST, 5900,
    IDC_MESSAGE_TEXT, 5910,
    IDC_MESSAGE_STORE, 5920,
    IDC_MESSAGE_DELETE, 5930,
    IDC_PRINTER_STATUS, 4010,
    0, 0,
};
// clang-format on
constexpr int kNameColumnWidth = 90;

std::vector<SlotRow> RowsOf(const std::vector<logos::MessageSlot>& slots) {
    std::vector<SlotRow> rows;
    for (const logos::MessageSlot& slot : slots) rows.push_back({slot.name, slot.state});
    return rows;
}

// The page's entry in the shared record: the model's answer to the timer, then the window
// shows it.
class MessagesDialog : public DevicePage {
  public:
    MessagesDialog(HWND hwnd, PageContext& ctx, const PROPSHEETPAGEW*)
        : hwnd_(hwnd),
          ctx_(ctx),
          model_(ctx, reinterpret_cast<WindowId>(hwnd)),
          refresh_(RegisterWindowMessageW(
              ToWide(RefreshMessageName(RefreshMessage::Messages)).c_str())) {}

    ~MessagesDialog() override {
        if (ctx_.devicePages)
            ctx_.devicePages->Detach(this);
    }

    void OnInit() {
        HWND list = List();
        keys_.onDelete = [this] {
            if (model_.DeleteKeyActs())
                Delete();
        };
        HookSlotList(list, &keys_);
        SetStringCaption(hwnd_, IDC_MESSAGE_STORE, *ctx_.strings,
                         logos::text::kStoreMessageCaption);
        SetStringCaption(hwnd_, IDC_MESSAGE_DELETE, *ctx_.strings,
                         logos::text::kDeleteMessageCaption);
        SendDlgItemMessageW(hwnd_, IDC_MESSAGE_TEXT, EM_LIMITTEXT, logos::kMessageEditChars, 0);
        // Single-byte text only: no input-method editor on the edit.
        ImmAssociateContext(GetDlgItem(hwnd_, IDC_MESSAGE_TEXT), nullptr);
        SetupSlotList(list, kNameColumnWidth);
        model_.Initialise();
        // The model entered itself; the window takes its place so that it sees every change.
        if (ctx_.devicePages)
            ctx_.devicePages->Attach(DevicePageSlot::Messages, this);
        ShowAll();
        SetControlText(hwnd_, IDC_MESSAGE_TEXT, model_.EditText());
    }

    void OnApply() {}
    void ShowHelp() { ShowPageHelp(hwnd_, ctx_, kMessagesHelp); }

    bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
        if (message != 0 && message == refresh_) {
            model_.OnRefresh(static_cast<WindowId>(lParam));
            ShowAll();
            result = 0;
            return true;
        }
        switch (message) {
            case WM_COMMAND:
                if (HIWORD(wParam) != BN_CLICKED)
                    return false;
                if (LOWORD(wParam) == IDC_MESSAGE_STORE)
                    Store();
                else if (LOWORD(wParam) == IDC_MESSAGE_DELETE)
                    Delete();
                else
                    return false;
                result = 0;
                return true;
            case WM_NOTIFY:
                if (!IsSlotStateChange(lParam, IDC_MESSAGE_LIST))
                    return false;
                if (!filling_) {
                    model_.SetSelection(SelectedRows(List()));
                    SetControlText(hwnd_, IDC_MESSAGE_TEXT, model_.EditText());
                    ShowEnablement();
                }
                result = 0;
                return true;
            case WM_HELP:
                ShowPageOrControlHelp(hwnd_, ctx_, kMessagesHelp,
                                      *reinterpret_cast<const HELPINFO*>(lParam),
                                      kMessagesControlHelp);
                result = TRUE;
                return true;
            case WM_DESTROY:
                UnhookSlotList(List());
                return false;
            default:
                return false;
        }
    }

    // DevicePage
    void SetStatusText(std::u16string_view text) override {
        model_.SetStatusText(text);
        ShowAll();
    }
    void OnConnectionLost() override {
        model_.OnConnectionLost();
        ShowAll();
        SetControlText(hwnd_, IDC_MESSAGE_TEXT, model_.EditText());
    }
    void OnConnectionChanged(const store::ConnectionStatus& status) override {
        model_.OnConnectionChanged(status);
        ShowAll();
    }
    void UpdateEnablement() override {
        model_.UpdateEnablement();
        ShowEnablement();
    }

  private:
    HWND List() const { return GetDlgItem(hwnd_, IDC_MESSAGE_LIST); }

    void ShowAll() {
        filling_ = true;
        ShowSlotRows(List(), RowsOf(model_.Slots()), model_.Selection());
        filling_ = false;
        ShowStatusLine(hwnd_, model_.StatusText());
        ShowEnablement();
    }

    void ShowEnablement() {
        const bool enabled = model_.ControlsEnabled();
        EnableControl(hwnd_, IDC_MESSAGE_LIST, enabled);
        EnableControl(hwnd_, IDC_MESSAGE_TEXT, enabled);
        EnableControl(hwnd_, IDC_MESSAGE_STORE, model_.StoreEnabled());
        EnableControl(hwnd_, IDC_MESSAGE_DELETE, model_.DeleteEnabled());
    }

    void Store() {
        const int row = model_.Selection().size() == 1 ? model_.Selection()[0] : -1;
        SlotPageBusy busy;
        const bool stored = model_.StoreMessage(ControlText(hwnd_, IDC_MESSAGE_TEXT));
        ShowAll();
        if (stored) {
            SelectOnlyRow(List(), row);
            SetFocus(List());
        }
    }

    void Delete() {
        SlotPageBusy busy;
        model_.DeleteSelected();
        ShowAll();
        SetControlText(hwnd_, IDC_MESSAGE_TEXT, model_.EditText());
        SetFocus(List());
    }

    HWND hwnd_;
    PageContext& ctx_;
    logos::MessagesPageModel model_;
    UINT refresh_;
    SlotListKeys keys_;
    bool filling_ = false;
};

}  // namespace

INT_PTR CALLBACK GuiMessagesDlgProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    return RunPage<MessagesDialog>(u"GuiMessagesDlgProc", hwnd, message, wParam, lParam);
}

}  // namespace kx20
