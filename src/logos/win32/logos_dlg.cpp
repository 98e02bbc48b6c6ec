// GuiLogosDlgProc: the logos page (1007), the slot-list window over its model, with the
// preview, the logo file dialog (template 1001 through the file chooser) and the 100 ms timer
// that asks the connection watch, which keeps every device page in step with the printer.
#include "platform/win32/windows_clean.h"

#include <commctrl.h>

#include "ids_device_pages.h"
#include "logos/logos_page.h"
#include "pages/win32/page_procs.h"
#include "pages/win32/page_window.h"
#include "pages/win32/preview_painter.h"
#include "pages/win32/slot_list.h"
#include "platform/win32/win32_file_dialogs.h"

namespace kx20 {

namespace {

constexpr UINT_PTR kConnectionTimer = 1000;
constexpr UINT kConnectionPeriodMs = 100;
// The preview starts this far below the top of its frame.
constexpr int kPreviewTopGap = 6;

const PageLabel kLabels[] = {
    {IDC_LOGO_ADD, logos::text::kAddLogoCaption},
    {IDC_LOGO_DELETE, logos::text::kDeleteLogoCaption},
};
const ControlTopic kControlTopics[] = {
    {IDC_LOGO_LIST, 5800},    {IDC_LOGO_ADD, 5810},       {IDC_LOGO_PREVIEW, 5830},
    {IDC_LOGO_DELETE, 5820},  {IDC_PRINTER_STATUS, 4010},
};
const SlotListWindow::Layout kLayout = {
    IDC_LOGO_LIST, IDC_LOGO_ADD, IDC_LOGO_DELETE, kLabels, 2040, kControlTopics,
    RefreshMessage::Logos, true};

// The frame control's rectangle in its dialog's client coordinates, inside its edge and
// `topGap` pixels lower at the top.
RECT PreviewRect(HWND dialog, int frameId, int topGap) {
    RECT r = {};
    HWND frame = GetDlgItem(dialog, frameId);
    if (!frame)
        return r;
    GetWindowRect(frame, &r);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&r), 2);
    InflateRect(&r, -2, -2);
    r.top += topGap;
    if (r.bottom < r.top)
        r.bottom = r.top;
    return r;
}

class LogosDialog : public SlotListWindow {
  public:
    LogosDialog(HWND hwnd, PageContext& ctx, const PROPSHEETPAGEW* description)
        : SlotListWindow(hwnd, ctx, kLayout),
          templates_(ctx.resourceModule ? reinterpret_cast<HINSTANCE>(ctx.resourceModule)
                                        : (description ? description->hInstance : nullptr)),
          model_(ctx, reinterpret_cast<WindowId>(hwnd)) {}

    ~LogosDialog() override {
        HWND sheet = GetParent(hwnd_);
        if (sheet &&
            GetWindowLongPtrW(sheet, GWLP_USERDATA) == reinterpret_cast<LONG_PTR>(ctx_.devicePages))
            SetWindowLongPtrW(sheet, GWLP_USERDATA, 0);
    }

    void OnInit() override {
        SlotListWindow::OnInit();
        // The shared record of the device pages is the sheet's user data while this page lives.
        if (HWND sheet = GetParent(hwnd_)) {
            SetWindowLongPtrW(sheet, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(ctx_.devicePages));
            PropSheet_UnChanged(sheet, hwnd_);
        }
        ShowAll();
        SetTimer(hwnd_, kConnectionTimer, kConnectionPeriodMs, nullptr);
    }

    bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override {
        switch (message) {
            case WM_TIMER:
                if (wParam != kConnectionTimer)
                    return false;
                // A flow is showing a modal window: nothing changes under it.
                if (!SlotPageBusy::Any() && model_.Watch().Tick() != ConnectionChange::Unchanged)
                    ShowAll();
                result = 0;
                return true;
            case WM_PAINT:
                PaintPreview();
                result = 0;
                return true;
            case WM_DESTROY:
                KillTimer(hwnd_, kConnectionTimer);
                break;
            default:
                break;
        }
        return SlotListWindow::OnMessage(message, wParam, lParam, result);
    }

  private:
    SlotListPage& Model() override { return model_; }

    void Act() override {
        const auto number = model_.AddLogoNumber();
        if (!number)
            return;
        SlotPageBusy busy;
        const FileChooser dialog = Win32FileChooser(hwnd_, *ctx_.strings);
        const HINSTANCE templates = templates_;
        const FileChooser choose = [&](const FileDialogRequest& request) {
            FileDialogRequest withTemplates = request;
            withTemplates.templateModule = reinterpret_cast<std::uintptr_t>(templates);
            return dialog(withTemplates);
        };
        const bool stored = model_.AddThrough(choose, [](WindowId part, const std::u16string& path) {
            HWND hook = reinterpret_cast<HWND>(part);
            PaintPicturePreview(hook, nullptr, path, PreviewRect(hook, IDC_LOGO_PREVIEW, 0),
                                IDC_LOGO_PREVIEW, false, true);
        });
        ShowAll();
        if (stored)
            SelectOnlyRow(List(), static_cast<int>(*number) - 1);
        SetFocus(List());
        InvalidatePreview();
    }

    void RowsChanged() override { InvalidatePreview(); }
    void SelectionShown() override { InvalidatePreview(); }
    void DeletionShown() override { InvalidatePreview(); }

    void InvalidatePreview() {
        RECT r = PreviewRect(hwnd_, IDC_LOGO_PREVIEW, kPreviewTopGap);
        InvalidateRect(hwnd_, &r, TRUE);
    }

    void PaintPreview() {
        const logos::LogoSlot* slot = model_.PreviewSlot();
        const RECT r = PreviewRect(hwnd_, IDC_LOGO_PREVIEW, kPreviewTopGap);
        PaintPictureBytesPreview(hwnd_, nullptr, slot ? ByteSpan(slot->picture) : ByteSpan(), r,
                                 IDC_LOGO_PREVIEW, false, false);
    }

    HINSTANCE templates_;
    logos::LogosPageModel model_;
};

}  // namespace

INT_PTR CALLBACK GuiLogosDlgProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    return RunPage<LogosDialog>(u"GuiLogosDlgProc", hwnd, message, wParam, lParam);
}

}  // namespace kx20
