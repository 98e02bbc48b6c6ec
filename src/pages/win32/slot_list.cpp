#include "pages/win32/slot_list.h"

#include <commctrl.h>
#include <prsht.h>

#include "pages/win32/page_window.h"
#include "ids_device_pages.h"
#include "platform/win32/win32_text.h"

namespace kx20 {

namespace {

constexpr UINT_PTR kSubclassId = 0x4b58;  // one subclass per list
constexpr int kSlotNameColumnWidth = 90;

int RowCount(HWND list) {
    return static_cast<int>(SendMessageW(list, LVM_GETITEMCOUNT, 0, 0));
}

std::u16string CellText(HWND list, int row, int column) {
    wchar_t buf[300] = {};
    LVITEMW item = {};
    item.iSubItem = column;
    item.pszText = buf;
    item.cchTextMax = 300;
    SendMessageW(list, LVM_GETITEMTEXTW, row, reinterpret_cast<LPARAM>(&item));
    return FromWide(buf);
}

// The property sheet a page's control sits in: the list's grandparent.
HWND SheetOf(HWND list) {
    return GetParent(GetParent(list));
}

LRESULT CALLBACK SlotListProc(HWND list, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                              DWORD_PTR data) {
    auto* keys = reinterpret_cast<SlotListKeys*>(data);
    switch (message) {
        case WM_GETDLGCODE:
            return DLGC_WANTALLKEYS | DefSubclassProc(list, message, wParam, lParam);
        case WM_KEYDOWN:
            switch (wParam) {
                case VK_TAB:
                    SendMessageW(SheetOf(list), WM_NEXTDLGCTL,
                                 (GetKeyState(VK_SHIFT) & 0x8000) ? 1 : 0, FALSE);
                    return 0;
                case VK_ESCAPE:
                    PostMessageW(SheetOf(list), PSM_PRESSBUTTON, PSBTN_CANCEL, 0);
                    return 0;
                case VK_RETURN:
                    if (keys && keys->onReturn)
                        keys->onReturn();
                    return 0;
                case VK_DELETE:
                    if (keys && keys->onDelete)
                        keys->onDelete();
                    return 0;
                default:
                    break;
            }
            break;
        case WM_CHAR:
            // The keys above would otherwise beep as characters the list does not take.
            if (wParam == L'\t' || wParam == L'\r' || wParam == 0x1b)
                return 0;
            break;
        case WM_LBUTTONDBLCLK: {
            const LRESULT handled = DefSubclassProc(list, message, wParam, lParam);
            if (keys && keys->onDoubleClick)
                keys->onDoubleClick();
            return handled;
        }
        default:
            break;
    }
    return DefSubclassProc(list, message, wParam, lParam);
}

}  // namespace

void SetupSlotList(HWND list, int nameWidth) {
    SendMessageW(list, LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_FULLROWSELECT, LVS_EX_FULLROWSELECT);
    RECT client = {};
    GetClientRect(list, &client);
    const int rest = client.right - nameWidth - GetSystemMetrics(SM_CXVSCROLL);
    const int widths[2] = {nameWidth, rest > 40 ? rest : 40};
    for (int column = 0; column < 2; ++column) {
        LVCOLUMNW col = {};
        col.mask = LVCF_WIDTH | LVCF_SUBITEM;
        col.cx = widths[column];
        col.iSubItem = column;
        SendMessageW(list, LVM_INSERTCOLUMNW, column, reinterpret_cast<LPARAM>(&col));
    }
}

bool ShowSlotRows(HWND list, const std::vector<SlotRow>& rows, const std::vector<int>& selection) {
    bool same = RowCount(list) == static_cast<int>(rows.size());
    for (int row = 0; same && row < static_cast<int>(rows.size()); ++row) {
        const SlotRow& want = rows[static_cast<std::size_t>(row)];
        same = CellText(list, row, 0) == want.name && CellText(list, row, 1) == want.state;
    }
    if (same)
        return false;
    SendMessageW(list, WM_SETREDRAW, FALSE, 0);
    SendMessageW(list, LVM_DELETEALLITEMS, 0, 0);
    for (int row = 0; row < static_cast<int>(rows.size()); ++row) {
        std::wstring name = ToWide(rows[static_cast<std::size_t>(row)].name);
        std::wstring state = ToWide(rows[static_cast<std::size_t>(row)].state);
        LVITEMW item = {};
        item.mask = LVIF_TEXT;
        item.iItem = row;
        item.pszText = name.data();
        SendMessageW(list, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
        item.iSubItem = 1;
        item.pszText = state.data();
        SendMessageW(list, LVM_SETITEMTEXTW, row, reinterpret_cast<LPARAM>(&item));
    }
    LVITEMW selected = {};
    selected.stateMask = selected.state = LVIS_SELECTED;
    for (int row : selection)
        SendMessageW(list, LVM_SETITEMSTATE, row, reinterpret_cast<LPARAM>(&selected));
    SendMessageW(list, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(list, nullptr, TRUE);
    return true;
}

bool IsSlotStateChange(LPARAM notification, int listId) {
    const auto* change = reinterpret_cast<const NMLISTVIEW*>(notification);
    return change->hdr.idFrom == static_cast<UINT_PTR>(listId) &&
           change->hdr.code == LVN_ITEMCHANGED && (change->uChanged & LVIF_STATE);
}

std::vector<int> SelectedRows(HWND list) {
    std::vector<int> rows;
    int row = -1;
    while ((row = static_cast<int>(SendMessageW(list, LVM_GETNEXTITEM, row, LVNI_SELECTED))) >= 0)
        rows.push_back(row);
    return rows;
}

void SelectOnlyRow(HWND list, int row) {
    LVITEMW item = {};
    item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
    item.state = 0;
    SendMessageW(list, LVM_SETITEMSTATE, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&item));
    if (row < 0 || row >= RowCount(list))
        return;
    item.state = LVIS_SELECTED | LVIS_FOCUSED;
    SendMessageW(list, LVM_SETITEMSTATE, row, reinterpret_cast<LPARAM>(&item));
    SendMessageW(list, LVM_ENSUREVISIBLE, row, FALSE);
}

namespace {
thread_local int g_busyFlows = 0;  // the sheet's pages all run on its window thread
}  // namespace

SlotPageBusy::SlotPageBusy() {
    ++g_busyFlows;
}
SlotPageBusy::~SlotPageBusy() {
    --g_busyFlows;
}
bool SlotPageBusy::Any() {
    return g_busyFlows > 0;
}

void ShowStatusLine(HWND dialog, std::u16string_view text) {
    if (ControlText(dialog, IDC_PRINTER_STATUS) != text)
        SetControlText(dialog, IDC_PRINTER_STATUS, text);
}

void HookSlotList(HWND list, SlotListKeys* keys) {
    SetWindowSubclass(list, SlotListProc, kSubclassId, reinterpret_cast<DWORD_PTR>(keys));
}

void UnhookSlotList(HWND list) {
    RemoveWindowSubclass(list, SlotListProc, kSubclassId);
}

SlotListWindow::SlotListWindow(HWND hwnd, PageContext& ctx, const Layout& layout)
    : hwnd_(hwnd),
      ctx_(ctx),
      layout_(layout),
      refresh_(RegisterWindowMessageW(ToWide(RefreshMessageName(layout.refresh)).c_str())) {}

SlotListWindow::~SlotListWindow() = default;

void SlotListWindow::OnInit() {
    keys_.onDelete = [this] {
        if (Model().DeleteKeyActs())
            Delete();
    };
    if (layout_.keysAct) {
        keys_.onReturn = [this] { Act(); };
        keys_.onDoubleClick = [this] {
            if (Model().ActEnabled())
                Act();
        };
    }
    HookSlotList(List(), &keys_);
    SetLabels(hwnd_, ctx_, layout_.labels);
    SetupSlotList(List(), kSlotNameColumnWidth);
    Model().Initialise();
}

void SlotListWindow::ShowHelp() {
    ShowPageHelp(hwnd_, ctx_, layout_.pageTopic);
}

bool SlotListWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    if (message != 0 && message == refresh_) {
        Model().OnRefresh(static_cast<WindowId>(lParam));
        ShowAll();
        result = 0;
        return true;
    }
    switch (message) {
        case WM_COMMAND:
            if (HIWORD(wParam) != BN_CLICKED)
                return false;
            if (LOWORD(wParam) == layout_.act)
                Act();
            else if (LOWORD(wParam) == layout_.del)
                Delete();
            else
                return false;
            result = 0;
            return true;
        case WM_NOTIFY:
            if (!IsSlotStateChange(lParam, layout_.list))
                return false;
            if (!filling_.Filling())
                SelectionChanged();
            result = 0;
            return true;
        case WM_HELP:
            ShowPageOrControlHelp(hwnd_, ctx_, layout_.pageTopic,
                                  *reinterpret_cast<const HELPINFO*>(lParam),
                                  layout_.controlTopics);
            result = TRUE;
            return true;
        case WM_DESTROY:
            UnhookSlotList(List());
            return false;
        default:
            return false;
    }
}

void SlotListWindow::ShowAll() {
    bool changed = false;
    {
        EchoGuard guard(filling_);
        changed = ShowSlotRows(List(), Model().Rows(), Model().Selection());
    }
    if (changed)
        RowsChanged();
    ShowStatusLine(hwnd_, Model().StatusText());
    ShowEnablement();
}

void SlotListWindow::ShowEnablement() {
    SlotListPage& model = Model();
    EnableControl(hwnd_, layout_.list, model.ListEnabled());
    EnableControl(hwnd_, layout_.act, model.ActEnabled());
    EnableControl(hwnd_, layout_.del, model.DeleteEnabled());
    ShowOwnEnablement();
}

void SlotListWindow::SelectionChanged() {
    Model().SetSelection(SelectedRows(List()));
    SelectionShown();
    ShowEnablement();
}

void SlotListWindow::Delete() {
    SlotPageBusy busy;
    Model().DeleteSelected();
    ShowAll();
    DeletionShown();
    SetFocus(List());
}

}  // namespace kx20
