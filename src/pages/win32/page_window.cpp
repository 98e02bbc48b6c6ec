#include "pages/win32/page_window.h"

#include "platform/win32/win32_text.h"

namespace kx20 {

void SetControlText(HWND dialog, int control, std::u16string_view text) {
    SetDlgItemTextW(dialog, control, ToWide(text).c_str());
}

std::u16string ControlText(HWND dialog, int control) {
    wchar_t buf[kResourceStringChars] = {};
    const UINT n = GetDlgItemTextW(dialog, control, buf, static_cast<int>(kResourceStringChars));
    return FromWide(std::wstring_view(buf, n));
}

void SetLabels(HWND dialog, PageContext& ctx, std::span<const PageLabel> labels) {
    for (const PageLabel& label : labels)
        SetControlText(dialog, label.control, PageString(ctx, label.stringId));
}

void FillList(HWND dialog, int control, const std::vector<std::u16string>& entries, int selection) {
    HWND list = GetDlgItem(dialog, control);
    SendMessageW(list, CB_RESETCONTENT, 0, 0);
    for (const std::u16string& entry : entries) {
        const std::wstring wide = ToWide(entry);
        SendMessageW(list, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(wide.c_str()));
    }
    SendMessageW(list, CB_SETCURSEL, static_cast<WPARAM>(selection), 0);
}

int ListSelection(HWND dialog, int control) {
    return static_cast<int>(SendDlgItemMessageW(dialog, control, CB_GETCURSEL, 0, 0));
}

void EnableControl(HWND dialog, int control, bool enabled) {
    EnableWindow(GetDlgItem(dialog, control), enabled ? TRUE : FALSE);
}

void CheckControl(HWND dialog, int control, bool checked) {
    CheckDlgButton(dialog, control, checked ? BST_CHECKED : BST_UNCHECKED);
}

bool IsChecked(HWND dialog, int control) {
    return IsDlgButtonChecked(dialog, control) == BST_CHECKED;
}

void MarkChanged(HWND page) {
    SendMessageW(GetParent(page), PSM_CHANGED, reinterpret_cast<WPARAM>(page), 0);
}

ApplyState* FrameApplyState(HWND page) {
    return reinterpret_cast<ApplyState*>(GetWindowLongPtrW(GetParent(page), GWLP_USERDATA));
}

int PageTemplateId(const PROPSHEETPAGEW* description) {
    if (!description || (description->dwFlags & PSP_DLGINDIRECT) ||
        !IS_INTRESOURCE(description->pszTemplate))
        return 0;
    return static_cast<int>(reinterpret_cast<ULONG_PTR>(description->pszTemplate));
}

void ShowPageHelp(HWND page, const PageContext& ctx, DWORD topic) {
    if (ctx.helpPath.empty())
        return;
    WinHelpW(page, ToWide(ctx.helpPath).c_str(), HELP_CONTEXT, topic);
}

void ShowPageOrControlHelp(HWND page, const PageContext& ctx, DWORD pageTopic, const HELPINFO& info,
                           std::span<const ControlTopic> controlTopics) {
    if (ctx.helpPath.empty())
        return;
    const bool f1 = (GetKeyState(VK_F1) & 0x8000) && !(GetKeyState(VK_SHIFT) & 0x8000);
    if (f1 || info.iContextType != HELPINFO_WINDOW) {
        ShowPageHelp(page, ctx, pageTopic);
        return;
    }
    // The help system takes the table as control, topic pairs ending with 0, 0.
    std::vector<DWORD> pairs;
    for (const ControlTopic& entry : controlTopics) {
        pairs.push_back(static_cast<DWORD>(entry.control));
        pairs.push_back(entry.topic);
    }
    pairs.push_back(0);
    pairs.push_back(0);
    WinHelpW(static_cast<HWND>(info.hItemHandle), ToWide(ctx.helpPath).c_str(), HELP_WM_HELP,
             reinterpret_cast<ULONG_PTR>(pairs.data()));
}

void ShowControlHelp(HWND control, const PageContext& ctx, DWORD topic) {
    if (ctx.helpPath.empty() || topic == 0)
        return;
    WinHelpW(control, ToWide(ctx.helpPath).c_str(), HELP_CONTEXTPOPUP, topic);
}

}  // namespace kx20
