// Pictures made by the tests themselves: bitmap files written byte by byte, canvases with
// patterns and reproducible noise. Shared by the native and the Wine suites.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <random>
#include <vector>

#include "platform/bytes.h"
#include "platform/pictures.h"

namespace kx20::testpics {

// The file and information headers of a bottom-up bitmap without a colour table.
inline Bytes BmpHeader(int width, int height, std::uint16_t bits, std::uint32_t imageSize) {
    Bytes f = {'B', 'M'};
    AppendU32(f, 54 + imageSize);
    AppendU32(f, 0);
    AppendU32(f, 54);
    AppendU32(f, 40);
    AppendU32(f, static_cast<std::uint32_t>(width));
    AppendU32(f, static_cast<std::uint32_t>(height));
    AppendU16(f, 1);
    AppendU16(f, bits);
    AppendU32(f, 0);
    AppendU32(f, imageSize);
    AppendU32(f, 3780);
    AppendU32(f, 3780);
    AppendU32(f, 0);
    AppendU32(f, 0);
    return f;
}

// A 24-bit bottom-up bitmap file of the canvas.
inline Bytes Bmp24(const RgbCanvas& c) {
    const std::uint32_t stride = (static_cast<std::uint32_t>(c.width) * 3 + 3) & ~3u;
    const std::uint32_t imageSize = stride * static_cast<std::uint32_t>(c.height);
    Bytes f = BmpHeader(c.width, c.height, 24, imageSize);
    for (int y = c.height - 1; y >= 0; --y) {
        std::uint32_t written = 0;
        for (int x = 0; x < c.width; ++x, written += 3) {
            const std::uint32_t p = c.At(x, y);
            AppendU8(f, BlueOf(p));
            AppendU8(f, GreenOf(p));
            AppendU8(f, RedOf(p));
        }
        for (; written < stride; ++written) AppendU8(f, 0);
    }
    return f;
}

// A 32-bit bottom-up bitmap file whose fourth byte per pixel is `alpha` (which the system
// ignores in a bitmap file).
inline Bytes Bmp32(const RgbCanvas& c, const std::vector<std::uint8_t>& alpha) {
    const std::uint32_t imageSize = static_cast<std::uint32_t>(c.width * c.height * 4);
    Bytes f = BmpHeader(c.width, c.height, 32, imageSize);
    for (int y = c.height - 1; y >= 0; --y) {
        for (int x = 0; x < c.width; ++x) {
            const std::uint32_t p = c.At(x, y);
            AppendU8(f, BlueOf(p));
            AppendU8(f, GreenOf(p));
            AppendU8(f, RedOf(p));
            AppendU8(f, alpha[static_cast<std::size_t>(y) * c.width + x]);
        }
    }
    return f;
}

inline RgbCanvas Filled(int w, int h, std::uint32_t colour) {
    RgbCanvas c(w, h);
    for (auto& p : c.pixels) p = colour;
    return c;
}

inline RgbCanvas Painted(int w, int h, const std::function<std::uint32_t(int, int)>& paint) {
    RgbCanvas c(w, h);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) c.At(x, y) = paint(x, y) & 0xFFFFFFu;
    return c;
}

// Noise with some structure: a gradient, a disc and random speckle, the same for one seed.
inline RgbCanvas PhotoLike(int w, int h, std::uint32_t seed) {
    std::mt19937 rng(seed);
    std::uniform_int_distribution<int> speckle(-40, 40);
    return Painted(w, h, [&](int x, int y) {
        const int dx = x - w / 2, dy = y - h / 3;
        const bool disc = dx * dx + dy * dy < (w * w) / 16;
        auto channel = [&](int base) {
            return static_cast<std::uint8_t>(std::clamp(base + speckle(rng), 0, 255));
        };
        const int g = w > 1 ? 255 * x / (w - 1) : 128;
        return RgbPixel(channel(disc ? 30 : g), channel(disc ? 200 : (g + y) % 256),
                        channel(disc ? 90 : 255 - g));
    });
}

}  // namespace kx20::testpics
