// Pictures port: the system's picture loader. A picture file held in memory is decoded, its size
// is reported in hundredths of a millimetre, and it is drawn, stretched to a rectangle, into an
// RGB canvas in memory. The Win32 adapter uses OleLoadPicture and IPicture::Render into a 32-bit
// DIB section; the native adapter decodes with libjpeg-turbo, libpng, giflib and its own bitmap
// reader and stretches with the same rule, so that both builds give the same pixels for the
// same file.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/bytes.h"

namespace kx20 {

// An RGB raster in memory, rows top to bottom, one 0x00RRGGBB value per pixel (the byte order of
// a 32-bit DIB). A new canvas is black, as a bitmap compatible with the screen starts.
struct RgbCanvas {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;

    RgbCanvas() = default;
    RgbCanvas(int w, int h)
        : width(w), height(h), pixels(static_cast<std::size_t>(w) * static_cast<std::size_t>(h)) {}

    std::uint32_t& At(int x, int y) {
        return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                      static_cast<std::size_t>(x)];
    }
    std::uint32_t At(int x, int y) const {
        return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                      static_cast<std::size_t>(x)];
    }
};

inline constexpr std::uint32_t RgbPixel(std::uint8_t r, std::uint8_t g, std::uint8_t b) {
    return (std::uint32_t{r} << 16) | (std::uint32_t{g} << 8) | b;
}
inline constexpr std::uint8_t RedOf(std::uint32_t pixel) {
    return static_cast<std::uint8_t>(pixel >> 16);
}
inline constexpr std::uint8_t GreenOf(std::uint32_t pixel) {
    return static_cast<std::uint8_t>(pixel >> 8);
}
inline constexpr std::uint8_t BlueOf(std::uint32_t pixel) {
    return static_cast<std::uint8_t>(pixel);
}

// a * b / c rounded half away from zero, in 64 bits, as the system's MulDiv: -1 when c is 0 or
// the result does not fit in 32 bits.
inline std::int32_t MulDiv(std::int32_t a, std::int32_t b, std::int32_t c) {
    if (c == 0)
        return -1;
    std::int64_t num = static_cast<std::int64_t>(a) * b;
    std::int64_t den = c;
    if (den < 0) {
        num = -num;
        den = -den;
    }
    const std::int64_t q = (num >= 0 ? num + den / 2 : num - den / 2) / den;
    if (q > 2147483647 || q < -2147483647)
        return -1;
    return static_cast<std::int32_t>(q);
}

// The largest picture the module decodes: the canvas of its own size must stay a reasonable
// allocation (256 MB at 4 bytes a pixel).
inline constexpr std::int64_t kMaxPicturePixels = std::int64_t{1} << 26;
inline constexpr int kMaxPictureSide = 32767;

// One decoded picture; destroying it releases what the loader holds.
class Picture {
  public:
    virtual ~Picture() = default;
    // The picture's size in hundredths of a millimetre.
    virtual std::int32_t HimetricWidth() const = 0;
    virtual std::int32_t HimetricHeight() const = 0;
    // Draws the whole picture into the canvas rectangle at (left, top) of `width` x `height`
    // pixels, stretched with the rule of the system's render into a memory context (a shrunk
    // block of pixels keeps the bitwise AND of its colours); parts outside the canvas are cut
    // off. Transparent pixels are not drawn. False when the loader refuses the rectangle (a
    // zero width or height).
    virtual bool Render(RgbCanvas& canvas, int left, int top, int width, int height) = 0;
};

class Pictures {
  public:
    virtual ~Pictures() = default;
    // Decodes a picture file held in memory; null when the format is not supported or the data
    // is damaged.
    virtual std::unique_ptr<Picture> Load(ByteSpan file) = 0;
    // The logical resolution (dots per inch) of a memory context compatible with the screen.
    virtual int DpiX() = 0;
    virtual int DpiY() = 0;
};

}  // namespace kx20
