#include "pages/win32/about_box.h"

#include <string>

#include "ids_device_pages.h"
#include "platform/format.h"
#include "platform/win32/win32_text.h"

namespace kx20 {

namespace {

constexpr int kAboutStringChars = 256;
constexpr int kAboutPointSize = 10;

std::wstring LoadText(HINSTANCE module, UINT id) {
    wchar_t buf[kAboutStringChars] = {};
    const int n = LoadStringW(module, id, buf, kAboutStringChars);
    return std::wstring(buf, n > 0 ? static_cast<std::size_t>(n) : 0);
}

// A string of the resource module with one text filled in.
std::wstring LoadFormatted(HINSTANCE module, UINT id, const wchar_t* value) {
    const std::u16string format = FromWide(LoadText(module, id));
    return ToWide(Format(format, FromWide(value)));
}

// The module that holds this code: the driver module, whose resource the logo is.
HINSTANCE OwnModule() {
    HMODULE module = nullptr;
    GetModuleHandleExW(
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
        reinterpret_cast<LPCWSTR>(&AboutDlgProc), &module);
    return module;
}

void OnInit(HWND dialog) {
    HINSTANCE resources = reinterpret_cast<HINSTANCE>(GetWindowLongPtrW(dialog, GWLP_HINSTANCE));
    SetWindowTextW(dialog, LoadText(resources, 1000).c_str());
    SetDlgItemTextW(dialog, IDC_ABOUT_PRODUCT, LoadText(resources, IDC_ABOUT_PRODUCT).c_str());
    SetDlgItemTextW(dialog, IDC_ABOUT_VERSION,
                    LoadFormatted(resources, IDC_ABOUT_VERSION, kDriverVersionText).c_str());
    SetDlgItemTextW(dialog, IDC_ABOUT_COPYRIGHT,
                    LoadFormatted(resources, IDC_ABOUT_COPYRIGHT, kDriverYearsText).c_str());
    SetDlgItemTextW(dialog, IDC_ABOUT_SUPPORT, LoadText(resources, IDC_ABOUT_SUPPORT).c_str());
    SetDlgItemTextW(dialog, IDOK, LoadText(resources, 1012).c_str());
    SetAboutFont(dialog);
}

// The logo centred in frame 1220 on the 3D-face colour, composed in a memory context and
// copied to the frame's place in the dialog.
void OnPaint(HWND dialog) {
    PAINTSTRUCT ps;
    HDC dc = BeginPaint(dialog, &ps);
    HWND frame = GetDlgItem(dialog, IDC_ABOUT_LOGO);
    HBITMAP logo = LoadBitmapW(OwnModule(), kLogoBitmapName);
    if (frame && logo) {
        RECT r;
        GetWindowRect(frame, &r);
        MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&r), 2);
        const int w = r.right - r.left, h = r.bottom - r.top;
        HDC memory = CreateCompatibleDC(dc);
        HBITMAP canvas = CreateCompatibleBitmap(dc, w, h);
        HGDIOBJ old = SelectObject(memory, canvas);
        RECT all = {0, 0, w, h};
        FillRect(memory, &all, GetSysColorBrush(COLOR_3DFACE));
        BITMAP info = {};
        GetObjectW(logo, sizeof info, &info);
        DrawTransparentBitmap(memory, logo, (w - info.bmWidth) / 2, (h - info.bmHeight) / 2,
                              kLogoTransparent);
        BitBlt(dc, r.left, r.top, w, h, memory, 0, 0, SRCCOPY);
        SelectObject(memory, old);
        DeleteObject(canvas);
        DeleteDC(memory);
    }
    if (logo)
        DeleteObject(logo);
    EndPaint(dialog, &ps);
}

}  // namespace

void DrawTransparentBitmap(HDC dc, HBITMAP bitmap, int x, int y, COLORREF transparent) {
    BITMAP info = {};
    if (!GetObjectW(bitmap, sizeof info, &info))
        return;
    const int w = info.bmWidth, h = info.bmHeight;
    HDC picture = CreateCompatibleDC(dc);
    HDC back = CreateCompatibleDC(dc);
    HDC mask = CreateCompatibleDC(dc);
    HDC inverse = CreateCompatibleDC(dc);
    HDC saved = CreateCompatibleDC(dc);
    HGDIOBJ oldPicture = SelectObject(picture, bitmap);

    HBITMAP maskBits = CreateBitmap(w, h, 1, 1, nullptr);
    HBITMAP inverseBits = CreateBitmap(w, h, 1, 1, nullptr);
    HBITMAP backBits = CreateCompatibleBitmap(dc, w, h);
    HBITMAP savedBits = CreateCompatibleBitmap(dc, w, h);
    HGDIOBJ oldMask = SelectObject(mask, maskBits);
    HGDIOBJ oldInverse = SelectObject(inverse, inverseBits);
    HGDIOBJ oldBack = SelectObject(back, backBits);
    HGDIOBJ oldSaved = SelectObject(saved, savedBits);
    SetMapMode(picture, GetMapMode(dc));

    // The mask: 1 where the picture has the transparent colour, 0 elsewhere; and its inverse.
    StretchBlt(saved, 0, 0, w, h, picture, 0, 0, w, h, SRCCOPY);
    const COLORREF oldColour = SetBkColor(picture, transparent);
    StretchBlt(mask, 0, 0, w, h, picture, 0, 0, w, h, SRCCOPY);
    SetBkColor(picture, oldColour);
    StretchBlt(inverse, 0, 0, w, h, mask, 0, 0, w, h, NOTSRCCOPY);

    // What lies behind, cleared where the picture goes; the picture, cleared where it is
    // transparent; both combined.
    StretchBlt(back, 0, 0, w, h, dc, x, y, w, h, SRCCOPY);
    StretchBlt(back, 0, 0, w, h, mask, 0, 0, w, h, SRCAND);
    StretchBlt(picture, 0, 0, w, h, inverse, 0, 0, w, h, SRCAND);
    StretchBlt(back, 0, 0, w, h, picture, 0, 0, w, h, SRCPAINT);
    StretchBlt(dc, x, y, w, h, back, 0, 0, w, h, SRCCOPY);

    // The caller's bitmap as it was.
    StretchBlt(picture, 0, 0, w, h, saved, 0, 0, w, h, SRCCOPY);

    DeleteObject(SelectObject(mask, oldMask));
    DeleteObject(SelectObject(inverse, oldInverse));
    DeleteObject(SelectObject(back, oldBack));
    DeleteObject(SelectObject(saved, oldSaved));
    SelectObject(picture, oldPicture);
    DeleteDC(mask);
    DeleteDC(inverse);
    DeleteDC(back);
    DeleteDC(saved);
    DeleteDC(picture);
}

void SetAboutFont(HWND dialog) {
    HDC dc = GetDC(dialog);
    const int height = -MulDiv(kAboutPointSize, GetDeviceCaps(dc, LOGPIXELSY), 72);
    ReleaseDC(dialog, dc);
    LOGFONTW lf = {};
    lf.lfHeight = height;
    lf.lfWeight = FW_BOLD;
    lf.lfCharSet = DEFAULT_CHARSET;
    lf.lfPitchAndFamily = FF_SWISS;
    lstrcpynW(lf.lfFaceName, L"MS SansSerif", LF_FACESIZE);
    HFONT font = CreateFontIndirectW(&lf);
    if (!font)
        return;
    SendDlgItemMessageW(dialog, IDC_ABOUT_PRODUCT, WM_SETFONT, reinterpret_cast<WPARAM>(font),
                        TRUE);
    SendDlgItemMessageW(dialog, IDC_ABOUT_COPYRIGHT, WM_SETFONT, reinterpret_cast<WPARAM>(font),
                        TRUE);
    DeleteObject(font);
}

INT_PTR CALLBACK AboutDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_INITDIALOG:
            SetWindowLongPtrW(dialog, DWLP_USER, lParam);
            OnInit(dialog);
            return TRUE;
        case WM_PAINT:
            OnPaint(dialog);
            return TRUE;
        case WM_COMMAND:
            if (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL) {
                EndDialog(dialog, 1);
                return TRUE;
            }
            return FALSE;
        default:
            return FALSE;
    }
}

INT_PTR ShowAboutBox(HINSTANCE resources, HWND owner, LPARAM context) {
    return DialogBoxParamW(resources, MAKEINTRESOURCEW(1000), owner, AboutDlgProc, context);
}

}  // namespace kx20
