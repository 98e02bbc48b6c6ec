#include "platform/win32/win32_file_dialogs.h"

#include <commdlg.h>
#include <shlobj.h>

#include <vector>

#include "platform/trace.h"
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

// What the hook keeps while the dialog is open.
struct HookState {
    const FileDialogRequest* request = nullptr;
    std::u16string previewPath;  // the file under the cursor
};

// The preview frame's inside in the template window's client coordinates.
RECT PreviewFrame(HWND part, int frameId) {
    RECT r = {};
    HWND frame = GetDlgItem(part, frameId);
    if (!frame)
        return r;
    GetWindowRect(frame, &r);
    MapWindowPoints(nullptr, part, reinterpret_cast<POINT*>(&r), 2);
    InflateRect(&r, -2, -2);
    return r;
}

bool Accepts(const FileDialogRequest& request, const std::u16string& path, HWND dialog) {
    if (request.acceptOverDialog)
        return request.acceptOverDialog(path, reinterpret_cast<WindowId>(dialog));
    return !request.accept || request.accept(path);
}

UINT_PTR HookMessage(HWND hook, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        auto* state = reinterpret_cast<HookState*>(
            reinterpret_cast<const OPENFILENAMEW*>(lParam)->lCustData);
        SetWindowLongPtrW(hook, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(state));
        const FileDialogRequest& request = *state->request;
        if (request.choiceControl) {
            HWND list = GetDlgItem(hook, request.choiceControl);
            SendMessageW(list, CB_RESETCONTENT, 0, 0);
            for (const std::u16string& entry : request.choices) {
                const std::wstring wide = ToWide(entry);
                SendMessageW(list, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(wide.c_str()));
            }
            SendMessageW(list, CB_SETCURSEL, 0, 0);
        }
        return request.templateId ? TRUE : 0;
    }
    auto* state = reinterpret_cast<HookState*>(GetWindowLongPtrW(hook, GWLP_USERDATA));
    if (!state)
        return 0;
    const FileDialogRequest& request = *state->request;
    switch (message) {
        case WM_COMMAND:
            if (request.choiceControl && LOWORD(wParam) == request.choiceControl &&
                HIWORD(wParam) == CBN_SELCHANGE && request.onChoice)
                request.onChoice(static_cast<int>(
                    SendDlgItemMessageW(hook, request.choiceControl, CB_GETCURSEL, 0, 0)));
            return 0;
        case WM_PAINT:
            if (!request.paintPreview)
                return 0;
            request.paintPreview(reinterpret_cast<WindowId>(hook), state->previewPath);
            return TRUE;
        case WM_NOTIFY:
            break;
        default:
            return 0;
    }
    const auto* notify = reinterpret_cast<const OFNOTIFYW*>(lParam);
    HWND dialog = GetParent(hook);
    if (notify->hdr.code == CDN_SELCHANGE && request.previewControl) {
        wchar_t path[MAX_PATH] = {};
        const LRESULT n =
            SendMessageW(dialog, CDM_GETFILEPATH, MAX_PATH, reinterpret_cast<LPARAM>(path));
        state->previewPath = n > 0 ? FromWide(path) : std::u16string();
        const DWORD attributes = GetFileAttributesW(path);
        if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY))
            state->previewPath.clear();
        RECT r = PreviewFrame(hook, request.previewControl);
        InvalidateRect(hook, &r, TRUE);
        return 0;
    }
    if (notify->hdr.code != CDN_FILEOK)
        return 0;
    if (Accepts(request, FromWide(notify->lpOFN->lpstrFile), dialog))
        return 0;
    SetWindowLongPtrW(hook, DWLP_MSGRESULT, 1);
    return 1;
}

UINT_PTR CALLBACK FileHook(HWND hook, UINT message, WPARAM wParam, LPARAM lParam) {
    try {
        return HookMessage(hook, message, wParam, lParam);
    } catch (...) {
        DrvTrace(u"the open-file dialog's hook failed on message 0x%04x\n", message);
    }
    // A check that failed keeps the dialog open.
    if (message == WM_NOTIFY &&
        reinterpret_cast<const OFNOTIFYW*>(lParam)->hdr.code == CDN_FILEOK) {
        SetWindowLongPtrW(hook, DWLP_MSGRESULT, 1);
        return 1;
    }
    return 0;
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
        if (request.templateId && request.templateModule) {
            ofn.hInstance = reinterpret_cast<HINSTANCE>(request.templateModule);
            ofn.lpTemplateName = MAKEINTRESOURCEW(request.templateId);
            ofn.Flags |= OFN_ENABLETEMPLATE | OFN_ENABLEINCLUDENOTIFY | OFN_DONTADDTORECENT;
        }
        HookState state{&request, {}};
        ofn.lpfnHook = FileHook;
        ofn.lCustData = reinterpret_cast<LPARAM>(&state);
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
