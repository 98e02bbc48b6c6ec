// The picture preview of the logos page and the logo file dialog: a picture file fitted into a
// frame of a window (never enlarged, aspect kept), over the page's background, optionally in
// grey, painted through a memory context in one copy.
#pragma once

#include "platform/win32/windows_clean.h"

#include <string>

#include "platform/bytes.h"

namespace kx20 {

// Paints `picturePath` (nothing when empty or unreadable) fitted into `frame` (client
// coordinates of `window`). With no device context a paint cycle of its own is begun and ended.
// The background is the bitmap cached as the user data of control `frameId` on Windows 5.1 and
// 5.2 unless `plainBackground`, else the 3D-face colour. With `grey` each drawn pixel becomes
// its grey level (red 0.31, green 0.56, blue 0.13, truncated).
void PaintPicturePreview(HWND window, HDC dcOrNull, const std::u16string& picturePath,
                         const RECT& frame, int frameId, bool grey, bool plainBackground);

// The same for a picture file's bytes held in memory (a stored logo): they are written to the
// temporary "bmp.bmp", painted from there and the file is removed. Empty bytes paint the
// background only.
void PaintPictureBytesPreview(HWND window, HDC dcOrNull, ByteSpan picture, const RECT& frame,
                              int frameId, bool grey, bool plainBackground);

}  // namespace kx20
