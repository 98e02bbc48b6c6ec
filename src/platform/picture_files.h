// Picture files on disk or in memory, decoded through the pictures port and measured in
// pixels; and the one temporary picture file that the logo flows and previews write a stored
// picture's bytes to before they decode it.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/bytes.h"
#include "platform/files.h"
#include "platform/pictures.h"

namespace kx20 {

struct PixelSize {
    int width = 0;
    int height = 0;
    bool operator==(const PixelSize&) const = default;
};

// The largest picture file read (bigger ones are refused before reading).
inline constexpr std::uint64_t kMaxPictureFileBytes = 256u << 20;

// A picture file read whole (opened without sharing, an empty file refused) and decoded, with
// its size in pixels: himetric x dpi / 2540, rounded as MulDiv rounds.
struct OpenedPicture {
    std::unique_ptr<Picture> picture;
    PixelSize size;
};
std::optional<OpenedPicture> OpenPictureFile(FileSystem& files, Pictures& pictures,
                                             std::u16string_view path);
std::optional<OpenedPicture> OpenPictureBytes(Pictures& pictures, ByteSpan file);

// Measures the picture file; with a canvas also draws it into the rectangle (left, top) -
// (right, bottom) of the canvas. False when the file cannot be read or decoded, or the drawing
// fails.
bool LoadPictureFile(FileSystem& files, Pictures& pictures, std::u16string_view path,
                     RgbCanvas* canvas, int left, int top, int right, int bottom, PixelSize& size);

// The temporary picture file, overwritten by every use: the temporary folder and "bmp.bmp".
inline constexpr std::u16string_view kTempPictureName = u"bmp.bmp";
std::u16string TempPicturePath(FileSystem& files);

// Writes `bytes` to the temporary picture file and answers its path; empty when it cannot be
// created or written (traced with `caller`'s name). The file is closed before this returns.
std::u16string WriteTempPicture(FileSystem& files, std::u16string_view caller, ByteSpan bytes);

}  // namespace kx20
