// The About box: the driver's name, version and copyright from the resource module, and the
// maker's logo drawn with its magenta pixels left transparent.
#pragma once

#include "platform/win32/windows_clean.h"

namespace kx20 {

inline constexpr wchar_t kLogoBitmapName[] = L"IDB_KVOLOGO";
inline constexpr COLORREF kLogoTransparent = RGB(255, 0, 255);
inline constexpr wchar_t kDriverVersionText[] = L"2.4.1";
inline constexpr wchar_t kDriverYearsText[] = L"2024";

// Draws `bitmap` at (x, y) leaving every pixel of the colour `transparent` unpainted.
void DrawTransparentBitmap(HDC dc, HBITMAP bitmap, int x, int y, COLORREF transparent);

// A bold 10-point font on the product and copyright lines. The font is deleted right after it
// is set, so the lines fall back to the stock font once they repaint.
void SetAboutFont(HWND dialog);

// The dialog procedure of template 1000; the parameter is the sheet's page context. The logo
// comes from the module that holds this code (the driver module).
INT_PTR CALLBACK AboutDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

// Shows the About box modally: template 1000 of `resources`, owned by `owner`.
INT_PTR ShowAboutBox(HINSTANCE resources, HWND owner, LPARAM context);

}  // namespace kx20
