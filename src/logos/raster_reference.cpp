#include "logos/raster_reference.h"

#include <vector>

namespace kx20::logos {

namespace {

// What the picture's memory context answers for a pixel: its colour inside the bitmap, the
// invalid colour (all bits set) outside it.
constexpr std::uint32_t kInvalidColour = 0xFFFFFFFFu;

float Clamp(float n) {
    if (n < 0.0f)
        return 0.0f;
    if (n > 1.0f)
        return 1.0f;
    return n;
}

}  // namespace

Raster DitherToRasterReference(const RgbCanvas& canvas, PixelSize grid) {
    Raster out;
    const int w = grid.width;
    const int h = grid.height;
    if (w <= 0 || h <= 0 || w % 8 != 0)
        return out;
    auto inside = [&](int x, int y) { return x < canvas.width && y < canvas.height; };
    auto pixelAt = [&](int x, int y) { return inside(x, y) ? canvas.At(x, y) : kInvalidColour; };

    std::vector<float> plane(static_cast<std::size_t>(w) * static_cast<std::size_t>(h));
    auto at = [&](int x, int y) -> float& { return plane[static_cast<std::size_t>(y) * w + x]; };

    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            const std::uint32_t colour = pixelAt(x, y);
            const double sum =
                RedOf(colour) * 0.31 + GreenOf(colour) * 0.56 + BlueOf(colour) * 0.13;
            const int grey = static_cast<int>(sum);
            at(x, y) = static_cast<float>(grey / 255.0);
        }
    }

    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            const float v = at(x, y);
            const int q = static_cast<int>(v + 0.5);
            const float err = v - static_cast<float>(q);
            auto spread = [&](int nx, int ny, float weight) {
                float& n = at(nx, ny);
                const float share = err * weight;
                n = Clamp(n) + share;
            };
            if (x + 1 < w)
                spread(x + 1, y, 0.4375f);
            if (x + 1 < w && y + 1 < h)
                spread(x + 1, y + 1, 0.1875f);
            if (y + 1 < h)
                spread(x, y + 1, 0.3125f);
            if (x > 0 && y + 1 < h)
                spread(x - 1, y + 1, 0.0625f);
        }
    }

    // Threshold into the memory context: only pixels inside the bitmap can be set.
    RgbCanvas thresholded = canvas;
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            if (inside(x, y))
                thresholded.At(x, y) = at(x, y) < 0.5f ? 0x000000u : 0xFFFFFFu;
        }
    }

    out.width = w;
    out.height = h;
    out.bits.assign(static_cast<std::size_t>(w) / 8 * static_cast<std::size_t>(h), 0);
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            const std::uint32_t colour = inside(x, y) ? thresholded.At(x, y) : kInvalidColour;
            if (colour == 0)
                out.bits[static_cast<std::size_t>(y) * (w / 8) + x / 8] |=
                    static_cast<std::uint8_t>(0x80 >> (x % 8));
        }
    }
    return out;
}

}  // namespace kx20::logos
