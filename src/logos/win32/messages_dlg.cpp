// GuiMessagesDlgProc: the messages page (1008), the slot-list window over its model with the
// message edit. The window puts itself in the device pages' shared record so that the
// connection watch reaches it.
#include "platform/win32/windows_clean.h"

#include <commctrl.h>
#include <imm.h>

#include "ids_device_pages.h"
#include "logos/messages_page.h"
#include "pages/device_pages.h"
#include "pages/win32/page_procs.h"
#include "pages/win32/page_window.h"
#include "pages/win32/slot_list.h"

namespace kx20 {

namespace {

const PageLabel kLabels[] = {
    {IDC_MESSAGE_STORE, logos::text::kStoreMessageCaption},
    {IDC_MESSAGE_DELETE, logos::text::kDeleteMessageCaption},
};
const ControlTopic kControlTopics[] = {
    {IDC_MESSAGE_LIST, 5900},   {IDC_MESSAGE_TEXT, 5910},   {IDC_MESSAGE_STORE, 5920},
    {IDC_MESSAGE_DELETE, 5930}, {IDC_PRINTER_STATUS, 4010},
};
const SlotListWindow::Layout kLayout = {
    IDC_MESSAGE_LIST, IDC_MESSAGE_STORE, IDC_MESSAGE_DELETE, kLabels, 2050, kControlTopics,
    RefreshMessage::Messages, false};

// The page's entry in the shared record: the model's answer to the watch, then the window
// shows it.
class MessagesDialog : public SlotListWindow, public DevicePage {
  public:
    MessagesDialog(HWND hwnd, PageContext& ctx, const PROPSHEETPAGEW*)
        : SlotListWindow(hwnd, ctx, kLayout), model_(ctx, reinterpret_cast<WindowId>(hwnd)) {}

    ~MessagesDialog() override {
        if (ctx_.devicePages)
            ctx_.devicePages->Detach(this);
    }

    void OnInit() override {
        SendDlgItemMessageW(hwnd_, IDC_MESSAGE_TEXT, EM_LIMITTEXT, logos::kMessageEditChars, 0);
        // Single-byte text only: no input-method editor on the edit.
        ImmAssociateContext(GetDlgItem(hwnd_, IDC_MESSAGE_TEXT), nullptr);
        SlotListWindow::OnInit();
        // The model entered itself; the window takes its place so that it sees every change.
        if (ctx_.devicePages)
            ctx_.devicePages->Attach(DevicePageSlot::Messages, this);
        ShowAll();
        ShowEditText();
    }

    // DevicePage
    void SetStatusText(std::u16string_view text) override {
        model_.SetStatusText(text);
        ShowAll();
    }
    void OnConnectionLost() override {
        model_.OnConnectionLost();
        ShowAll();
        ShowEditText();
    }
    void OnConnectionChanged(const store::ConnectionStatus& status) override {
        model_.OnConnectionChanged(status);
        ShowAll();
    }
    void UpdateEnablement() override { ShowEnablement(); }

  private:
    SlotListPage& Model() override { return model_; }

    void Act() override {
        const int row = model_.Selection().size() == 1 ? model_.Selection()[0] : -1;
        SlotPageBusy busy;
        const bool stored = model_.StoreMessage(ControlText(hwnd_, IDC_MESSAGE_TEXT));
        ShowAll();
        if (stored) {
            SelectOnlyRow(List(), row);
            SetFocus(List());
        }
    }

    void SelectionShown() override { ShowEditText(); }
    void DeletionShown() override { ShowEditText(); }
    void ShowOwnEnablement() override {
        EnableControl(hwnd_, IDC_MESSAGE_TEXT, model_.ControlsEnabled());
    }
    void ShowEditText() { SetControlText(hwnd_, IDC_MESSAGE_TEXT, model_.EditText()); }

    logos::MessagesPageModel model_;
};

}  // namespace

INT_PTR CALLBACK GuiMessagesDlgProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    return RunPage<MessagesDialog>(u"GuiMessagesDlgProc", hwnd, message, wParam, lParam);
}

}  // namespace kx20
