#include "platform/win32/win32_file_dialogs.h"

#include <commdlg.h>
#include <shlobj.h>

#include <vector>

#include "platform/win32/win32_text.h"

namespace kx20 {

namespace {

// '|' separated entries as the dialog wants them: each ends with a NUL, the list with two.
std::wstring DialogFilter(std::u16string_view filter) {
    std::wstring out = ToWide(filter);
    for (wchar_t& c : out)
        if (c == L'|')
            c = L'\0';
    out.push_back(L'\0');
    out.push_back(L'\0');
    return out;
}

UINT_PTR CALLBACK FileHook(HWND hook, UINT message, WPARAM, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(hook, GWLP_USERDATA,
                          reinterpret_cast<const OPENFILENAMEW*>(lParam)->lCustData);
        return 0;
    }
    if (message != WM_NOTIFY)
        return 0;
    const auto* notify = reinterpret_cast<const OFNOTIFYW*>(lParam);
    if (notify->hdr.code != CDN_FILEOK)
        return 0;
    const auto* request =
        reinterpret_cast<const FileDialogRequest*>(GetWindowLongPtrW(hook, GWLP_USERDATA));
    if (!request || !request->accept)
        return 0;
    bool accepted = false;
    try {
        accepted = request->accept(FromWide(notify->lpOFN->lpstrFile));
    } catch (...) {
        accepted = false;
    }
    if (accepted)
        return 0;
    SetWindowLongPtrW(hook, DWLP_MSGRESULT, 1);
    return 1;
}

int CALLBACK FolderCallback(HWND browser, UINT message, LPARAM, LPARAM data) {
    if (message == BFFM_INITIALIZED && data)
        SendMessageW(browser, BFFM_SETSELECTIONW, TRUE, data);
    return 0;
}

}  // namespace

FileChooser Win32FileChooser(HWND owner, ResourceStrings& strings) {
    return [owner, &strings](const FileDialogRequest& request) -> std::optional<std::u16string> {
        const std::wstring title = ToWide(strings.Load(request.titleId).value_or(u""));
        const std::wstring filter = DialogFilter(strings.Load(request.filterId).value_or(u""));
        const std::wstring folder = ToWide(request.initialFolder);
        std::vector<wchar_t> file(MAX_PATH + 1, L'\0');
        OPENFILENAMEW ofn{};
        ofn.lStructSize = sizeof ofn;
        ofn.hwndOwner = owner;
        ofn.lpstrFilter = filter.c_str();
        ofn.nFilterIndex = 1;
        ofn.lpstrFile = file.data();
        ofn.nMaxFile = static_cast<DWORD>(file.size());
        ofn.lpstrInitialDir = folder.empty() ? nullptr : folder.c_str();
        ofn.lpstrTitle = title.c_str();
        ofn.Flags = OFN_EXPLORER | OFN_ENABLEHOOK | OFN_HIDEREADONLY | OFN_NOCHANGEDIR |
                    OFN_PATHMUSTEXIST | OFN_FILEMUSTEXIST;
        ofn.lpfnHook = FileHook;
        ofn.lCustData = reinterpret_cast<LPARAM>(&request);
        if (!GetOpenFileNameW(&ofn))
            return std::nullopt;
        return FromWide(file.data());
    };
}

std::optional<std::u16string> BrowseForFolder(HWND owner, std::u16string_view title,
                                              std::u16string_view start, UINT flags) {
    const std::wstring wideTitle = ToWide(title);
    const std::wstring wideStart = ToWide(start);
    BROWSEINFOW info{};
    info.hwndOwner = owner;
    info.lpszTitle = wideTitle.c_str();
    info.ulFlags = flags;
    info.lpfn = FolderCallback;
    info.lParam = reinterpret_cast<LPARAM>(wideStart.c_str());
    PIDLIST_ABSOLUTE chosen = SHBrowseForFolderW(&info);
    if (!chosen)
        return std::nullopt;
    wchar_t path[MAX_PATH] = {};
    const bool ok = SHGetPathFromIDListW(chosen, path) != FALSE;
    CoTaskMemFree(chosen);
    if (!ok)
        return std::nullopt;
    return FromWide(path);
}

}  // namespace kx20
