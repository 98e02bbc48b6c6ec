// GuiLogosDlgProc: the logos page (1007) over its model, the logo file dialog's hook
// (template 1001) and the 100 ms connection timer that keeps every device page in step with
// the printer through the shared record of the device pages.
#include "platform/win32/windows_clean.h"

#include <commctrl.h>
#include <commdlg.h>

#include "pages/win32/page_window.h"
#include "pages/win32/page_procs.h"
#include "ids_device_pages.h"
#include "logos/logos_page_model.h"
#include "logos/page_common.h"
#include "pages/win32/preview_painter.h"
#include "pages/win32/slot_list.h"
#include "platform/win32/win32_text.h"

namespace kx20 {

namespace {

constexpr UINT_PTR kConnectionTimer = 1000;
constexpr UINT kConnectionPeriodMs = 100;
constexpr DWORD kLogosHelp = 2040;
// The controls' popup help topics (control, topic; 0, 0 ends the list).
// clang-format off
const DWORD kLogosControlHelp[] = {
    IDC_LOGO_LIST, 5800,
    IDC_LOGO_ADD, 5810,
    IDC_LOGO_PREVIEW, 5830,
    IDC_LOGO_DELETE, 5820,
    IDC_PRINTER_STATUS, 4010,
    0, 0,
};
// clang-format on
constexpr int kNameColumnWidth = 90;
// The preview starts this far below the top of its frame.
constexpr int kPreviewTopGap = 6;

UINT RegisterRefresh(RefreshMessage which) {
    return RegisterWindowMessageW(ToWide(RefreshMessageName(which)).c_str());
}

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

std::vector<SlotRow> RowsOf(const std::vector<logos::LogoSlot>& slots) {
    std::vector<SlotRow> rows;
    for (const logos::LogoSlot& slot : slots) rows.push_back({slot.name, slot.state});
    return rows;
}

class LogosDialog {
  public:
    LogosDialog(HWND hwnd, PageContext& ctx, const PROPSHEETPAGEW* description)
        : hwnd_(hwnd),
          ctx_(ctx),
          instance_(description ? description->hInstance : nullptr),
          model_(ctx, reinterpret_cast<WindowId>(hwnd)),
          refresh_(RegisterRefresh(RefreshMessage::Logos)) {}

    ~LogosDialog() {
        HWND sheet = GetParent(hwnd_);
        if (sheet &&
            GetWindowLongPtrW(sheet, GWLP_USERDATA) == reinterpret_cast<LONG_PTR>(ctx_.devicePages))
            SetWindowLongPtrW(sheet, GWLP_USERDATA, 0);
    }

    void OnInit() {
        HWND list = List();
        keys_.onReturn = [this] { Add(); };
        keys_.onDelete = [this] {
            if (model_.DeleteKeyActs())
                Delete();
        };
        keys_.onDoubleClick = [this] {
            const auto& slots = model_.Slots();
            const auto& selection = model_.Selection();
            if (selection.size() == 1 && !slots[static_cast<std::size_t>(selection[0])].used)
                Add();
        };
        HookSlotList(list, &keys_);
        SetStringCaption(hwnd_, IDC_LOGO_ADD, *ctx_.strings, logos::text::kAddLogoCaption);
        SetStringCaption(hwnd_, IDC_LOGO_DELETE, *ctx_.strings, logos::text::kDeleteLogoCaption);
        SetupSlotList(list, kNameColumnWidth);
        model_.Initialise();
        // The shared record of the device pages is the sheet's user data while this page lives.
        if (HWND sheet = GetParent(hwnd_)) {
            SetWindowLongPtrW(sheet, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(ctx_.devicePages));
            PropSheet_UnChanged(sheet, hwnd_);
        }
        ShowAll();
        SetTimer(hwnd_, kConnectionTimer, kConnectionPeriodMs, nullptr);
    }

    void OnApply() {}
    void ShowHelp() { ShowPageHelp(hwnd_, ctx_, kLogosHelp); }

    bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
        if (message != 0 && message == refresh_) {
            model_.OnRefresh(static_cast<WindowId>(lParam));
            ShowAll();
            result = 0;
            return true;
        }
        switch (message) {
            case WM_TIMER:
                if (wParam != kConnectionTimer)
                    return false;
                if (SlotPageBusy::Any())
                    return true;  // a flow is showing a modal window
                model_.OnTimer();
                ShowAll();
                result = 0;
                return true;
            case WM_COMMAND:
                if (HIWORD(wParam) != BN_CLICKED)
                    return false;
                if (LOWORD(wParam) == IDC_LOGO_ADD)
                    Add();
                else if (LOWORD(wParam) == IDC_LOGO_DELETE)
                    Delete();
                else
                    return false;
                result = 0;
                return true;
            case WM_NOTIFY:
                if (!IsSlotStateChange(lParam, IDC_LOGO_LIST))
                    return false;
                if (!filling_)
                    SelectionChanged();
                result = 0;
                return true;
            case WM_PAINT:
                PaintPreview();
                result = 0;
                return true;
            case WM_HELP:
                ShowPageOrControlHelp(hwnd_, ctx_, kLogosHelp,
                                      *reinterpret_cast<const HELPINFO*>(lParam),
                                      kLogosControlHelp);
                result = TRUE;
                return true;
            case WM_DESTROY:
                KillTimer(hwnd_, kConnectionTimer);
                UnhookSlotList(List());
                return false;
            default:
                return false;
        }
    }

    // The logo file dialog's hook, with this page as its custom data.
    static UINT_PTR CALLBACK FileHook(HWND hook, UINT message, WPARAM wParam, LPARAM lParam);

  private:
    HWND List() const { return GetDlgItem(hwnd_, IDC_LOGO_LIST); }

    // The model's rows, status and enablement onto the controls.
    void ShowAll() {
        filling_ = true;
        if (ShowSlotRows(List(), RowsOf(model_.Slots()), model_.Selection()))
            InvalidatePreview();
        filling_ = false;
        ShowStatusLine(hwnd_, model_.StatusText());
        ShowEnablement();
    }

    void ShowEnablement() {
        EnableControl(hwnd_, IDC_LOGO_LIST, model_.ListEnabled());
        EnableControl(hwnd_, IDC_LOGO_ADD, model_.AddEnabled());
        EnableControl(hwnd_, IDC_LOGO_DELETE, model_.DeleteEnabled());
    }

    void SelectionChanged() {
        model_.SetSelection(SelectedRows(List()));
        ShowEnablement();
        InvalidatePreview();
    }

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

    void Add() {
        const auto number = model_.AddLogoNumber();
        if (!number)
            return;
        SlotPageBusy busy;
        const std::wstring filter = FilterText(logos::text::kLogoFileFilter);
        const std::wstring title =
            ToWide(logos::LoadText(*ctx_.strings, logos::text::kAddLogoTitle));
        const std::wstring folder = ToWide(model_.InitialFolder());
        wchar_t path[MAX_PATH] = {};
        OPENFILENAMEW ofn = {};
        ofn.lStructSize = sizeof(ofn);
        ofn.hwndOwner = hwnd_;
        ofn.hInstance = instance_;
        ofn.lpstrFilter = filter.empty() ? nullptr : filter.c_str();
        ofn.lpstrFile = path;
        ofn.nMaxFile = MAX_PATH;
        ofn.lpstrTitle = title.empty() ? nullptr : title.c_str();
        ofn.lpstrInitialDir = folder.empty() ? nullptr : folder.c_str();
        ofn.Flags = OFN_HIDEREADONLY | OFN_NOCHANGEDIR | OFN_ENABLEHOOK | OFN_PATHMUSTEXIST |
                    OFN_FILEMUSTEXIST | OFN_EXPLORER | OFN_ENABLEINCLUDENOTIFY |
                    OFN_DONTADDTORECENT;
        if (instance_) {
            ofn.Flags |= OFN_ENABLETEMPLATE;
            ofn.lpTemplateName = MAKEINTRESOURCEW(IDD_LOGO_FILE);
        }
        ofn.lpfnHook = FileHook;
        ofn.lCustData = reinterpret_cast<LPARAM>(this);
        form_ = logos::FormFromChoice(0);
        hookPath_.clear();
        if (!GetOpenFileNameW(&ofn))
            return;
        const std::u16string chosen = FromWide(path);
        const std::u16string chosenFolder =
            ofn.nFileOffset > 0 ? chosen.substr(0, ofn.nFileOffset) : std::u16string();
        const bool stored = model_.AddLogo(chosen, form_, chosenFolder);
        ShowAll();
        if (stored)
            SelectOnlyRow(List(), static_cast<int>(*number) - 1);
        SetFocus(List());
        InvalidatePreview();
    }

    void Delete() {
        SlotPageBusy busy;
        model_.DeleteSelected();
        ShowAll();
        SetFocus(List());
        InvalidatePreview();
    }

    // A filter string of the resource module with its '|' separators made into the nulls the
    // file dialog expects.
    std::wstring FilterText(std::uint32_t id) {
        std::wstring text = ToWide(logos::LoadText(*ctx_.strings, id));
        if (text.empty())
            return text;
        for (wchar_t& c : text)
            if (c == L'|')
                c = L'\0';
        text.push_back(L'\0');
        return text;
    }

    HWND hwnd_;
    PageContext& ctx_;
    HINSTANCE instance_;
    logos::LogosPageModel model_;
    UINT refresh_;
    SlotListKeys keys_;
    bool filling_ = false;
    // The file dialog's state while it is open.
    logos::LogoForm form_;
    std::u16string hookPath_;
};

UINT_PTR CALLBACK LogosDialog::FileHook(HWND hook, UINT message, WPARAM wParam, LPARAM lParam) {
    try {
        if (message == WM_INITDIALOG) {
            const auto* ofn = reinterpret_cast<const OPENFILENAMEW*>(lParam);
            SetWindowLongPtrW(hook, DWLP_USER, ofn->lCustData);
            auto* self = reinterpret_cast<LogosDialog*>(ofn->lCustData);
            std::vector<std::u16string> forms;
            for (int entry = 0; entry < 4; ++entry)
                forms.push_back(logos::LoadText(*self->ctx_.strings,
                                                logos::FormTextId(logos::FormFromChoice(entry))));
            FillList(hook, IDC_LOGO_FORM, forms, 0);
            return TRUE;
        }
        auto* self = reinterpret_cast<LogosDialog*>(GetWindowLongPtrW(hook, DWLP_USER));
        if (!self)
            return FALSE;
        switch (message) {
            case WM_COMMAND:
                if (LOWORD(wParam) == IDC_LOGO_FORM && HIWORD(wParam) == CBN_SELCHANGE)
                    self->form_ = logos::FormFromChoice(ListSelection(hook, IDC_LOGO_FORM));
                return FALSE;
            case WM_PAINT: {
                const RECT r = PreviewRect(hook, IDC_LOGO_PREVIEW, 0);
                PaintPicturePreview(hook, nullptr, self->hookPath_, r, IDC_LOGO_PREVIEW, false,
                                    true);
                return TRUE;
            }
            case WM_NOTIFY: {
                const auto* header = reinterpret_cast<const OFNOTIFYW*>(lParam);
                HWND dialog = GetParent(hook);
                if (header->hdr.code == CDN_SELCHANGE) {
                    wchar_t path[MAX_PATH] = {};
                    const LRESULT n = SendMessageW(dialog, CDM_GETFILEPATH, MAX_PATH,
                                                   reinterpret_cast<LPARAM>(path));
                    self->hookPath_ = n > 0 ? FromWide(path) : std::u16string();
                    const DWORD attributes = GetFileAttributesW(path);
                    if (attributes == INVALID_FILE_ATTRIBUTES ||
                        (attributes & FILE_ATTRIBUTE_DIRECTORY))
                        self->hookPath_.clear();
                    RECT r = PreviewRect(hook, IDC_LOGO_PREVIEW, 0);
                    InvalidateRect(hook, &r, TRUE);
                    return FALSE;
                }
                if (header->hdr.code == CDN_FILEOK) {
                    const std::u16string path = FromWide(header->lpOFN->lpstrFile);
                    const bool accepted =
                        self->model_.AcceptLogoFile(path, reinterpret_cast<WindowId>(dialog));
                    SetWindowLongPtrW(hook, DWLP_MSGRESULT, accepted ? 0 : 1);
                    return TRUE;
                }
                return FALSE;
            }
            default:
                return FALSE;
        }
    } catch (...) {
        DrvTrace(u"GuiLogosDlgProc: the logo file dialog failed\n");
    }
    return FALSE;
}

}  // namespace

INT_PTR CALLBACK GuiLogosDlgProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    return RunPage<LogosDialog>(u"GuiLogosDlgProc", hwnd, message, wParam, lParam);
}

}  // namespace kx20
