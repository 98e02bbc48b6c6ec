#include "pages/win32/preview_painter.h"

#include <cstring>

#include "pages/preview_fit.h"
#include "platform/picture_files.h"
#include "platform/win32/win32_files.h"
#include "platform/win32/win32_pictures.h"

namespace kx20 {

namespace {

// The background that pages on Windows XP and Server 2003 capture once from the sheet.
bool UsesCachedBackground() {
    OSVERSIONINFOW version = {};
    version.dwOSVersionInfoSize = sizeof(version);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    if (!GetVersionExW(&version))
        return false;
#pragma GCC diagnostic pop
    return version.dwMajorVersion == 5 && version.dwMinorVersion != 0;
}

std::uint32_t GreyPixel(std::uint32_t pixel) {
    const double sum = RedOf(pixel) * 0.31 + GreenOf(pixel) * 0.56 + BlueOf(pixel) * 0.13;
    const auto g = static_cast<std::uint8_t>(static_cast<int>(sum));
    return RgbPixel(g, g, g);
}

// The picture drawn into the frame-sized 32-bit pixels (top-down), fitted at the top left.
void DrawPicture(const std::u16string& path, std::uint32_t* bits, int width, int height,
                 bool grey) {
    Win32FileSystem files;
    Win32Pictures pictures;
    auto opened = OpenPictureFile(files, pictures, path);
    if (!opened)
        return;
    const PixelSize fit = FitPictureInFrame(opened->size, {width, height});
    RgbCanvas canvas(width, height);
    std::memcpy(canvas.pixels.data(), bits, canvas.pixels.size() * sizeof(std::uint32_t));
    if (!opened->picture->Render(canvas, 0, 0, fit.width, fit.height))
        return;
    if (grey) {
        for (int y = 0; y < fit.height; ++y)
            for (int x = 0; x < fit.width; ++x) canvas.At(x, y) = GreyPixel(canvas.At(x, y));
    }
    std::memcpy(bits, canvas.pixels.data(), canvas.pixels.size() * sizeof(std::uint32_t));
}

}  // namespace

void PaintPicturePreview(HWND window, HDC dcOrNull, const std::u16string& picturePath,
                         const RECT& frame, int frameId, bool grey, bool plainBackground) {
    PAINTSTRUCT paint = {};
    HDC dc = dcOrNull;
    if (!dc)
        dc = BeginPaint(window, &paint);
    const int width = frame.right - frame.left;
    const int height = frame.bottom - frame.top;
    HDC memory = dc ? CreateCompatibleDC(dc) : nullptr;
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    void* bits = nullptr;
    HBITMAP bitmap = memory && width > 0 && height > 0
                         ? CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0)
                         : nullptr;
    if (bitmap && bits) {
        HGDIOBJ previous = SelectObject(memory, bitmap);
        HBITMAP cached = nullptr;
        if (!plainBackground && UsesCachedBackground()) {
            cached = reinterpret_cast<HBITMAP>(
                GetWindowLongPtrW(GetDlgItem(window, frameId), GWLP_USERDATA));
        }
        if (cached) {
            HDC source = CreateCompatibleDC(dc);
            HGDIOBJ old = SelectObject(source, cached);
            BitBlt(memory, 0, 0, width, height, source, 0, 0, SRCCOPY);
            SelectObject(source, old);
            DeleteDC(source);
        } else {
            RECT all = {0, 0, width, height};
            FillRect(memory, &all, GetSysColorBrush(COLOR_3DFACE));
        }
        GdiFlush();
        if (!picturePath.empty())
            DrawPicture(picturePath, static_cast<std::uint32_t*>(bits), width, height, grey);
        BitBlt(dc, frame.left, frame.top, width, height, memory, 0, 0, SRCCOPY);
        SelectObject(memory, previous);
    }
    if (bitmap)
        DeleteObject(bitmap);
    if (memory)
        DeleteDC(memory);
    if (!dcOrNull && dc)
        EndPaint(window, &paint);
}

void PaintPictureBytesPreview(HWND window, HDC dcOrNull, ByteSpan picture, const RECT& frame,
                              int frameId, bool grey, bool plainBackground) {
    std::u16string path;
    Win32FileSystem files;
    if (!picture.empty())
        path = WriteTempPicture(files, u"PaintPictureBytesPreview", picture);
    PaintPicturePreview(window, dcOrNull, path, frame, frameId, grey, plainBackground);
    if (!path.empty())
        files.Remove(path);
}

}  // namespace kx20
