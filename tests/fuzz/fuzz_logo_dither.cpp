// The fast logo dither against its plain float-plane form on canvases and grids the bytes
// describe (grids smaller and larger than the canvas), and the picture stretch into canvases
// of any size at any offset.
#include <cstddef>
#include <cstdint>

#include "logos/raster_conversion.h"
#include "logos/raster_reference.h"
#include "platform/picture_stretch.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kx20;
    if (size < 8)
        return 0;
    const int cw = 1 + data[0] % 70;
    const int ch = 1 + data[1] % 50;
    const PixelSize grid{8 * (1 + data[2] % 12), 1 + data[3] % 60};
    RgbCanvas canvas(cw, ch);
    std::size_t at = 8;
    for (auto& p : canvas.pixels) {
        if (at + 3 <= size) {
            p = RgbPixel(data[at], data[at + 1], data[at + 2]);
            at += 3;
        } else {
            p = RgbPixel(data[at % size], 0x80, data[(at * 7) % size]);
            ++at;
        }
    }
    const logos::Raster fast = logos::DitherToRaster(canvas, grid);
    const logos::Raster plain = logos::DitherToRasterReference(canvas, grid);
    if (fast.bits != plain.bits || fast.width != plain.width || fast.height != plain.height)
        __builtin_trap();

    DecodedPicture picture;
    picture.colours = canvas;
    if (data[4] & 1)
        picture.transparent.assign(canvas.pixels.size(), data[4] & 2);
    RgbCanvas into(1 + data[5] % 40, 1 + data[6] % 40);
    const int left = static_cast<int>(data[7] % 50) - 20;
    const int top = static_cast<int>(data[4] % 50) - 20;
    StretchPicture(picture, into, left, top, data[5] % 90, data[6] % 90);
    return 0;
}
