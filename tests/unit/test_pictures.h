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

// A GIF file of one image on a logical screen of its own size: the colour table (up to 256
// entries), one index per pixel row by row, a transparent index or -1. The image data uses
// 9-bit codes with a clear code every 254 pixels, so the code width never grows.
inline Bytes Gif(int w, int h, const std::vector<std::uint32_t>& colours,
                 const std::vector<std::uint8_t>& indices, int transparent = -1) {
    Bytes f = {'G', 'I', 'F', '8', '9', 'a'};
    AppendU16(f, static_cast<std::uint16_t>(w));
    AppendU16(f, static_cast<std::uint16_t>(h));
    AppendU8(f, 0xF7);  // a global table of 256 entries
    AppendU16(f, 0);
    for (std::size_t i = 0; i < 256; ++i) {
        const std::uint32_t c = i < colours.size() ? colours[i] : 0;
        AppendU8(f, RedOf(c));
        AppendU8(f, GreenOf(c));
        AppendU8(f, BlueOf(c));
    }
    if (transparent >= 0)
        for (int b : {0x21, 0xF9, 4, 1, 0, 0, transparent, 0}) AppendU8(f, static_cast<std::uint8_t>(b));
    for (int b : {0x2C, 0, 0, 0, 0}) AppendU8(f, static_cast<std::uint8_t>(b));
    AppendU16(f, static_cast<std::uint16_t>(w));
    AppendU16(f, static_cast<std::uint16_t>(h));
    AppendU8(f, 0);
    AppendU8(f, 8);  // minimum code size: clear 256, end 257
    Bytes codes;
    std::uint32_t acc = 0;
    int bits = 0;
    auto put = [&](std::uint32_t code) {
        acc |= code << bits;
        for (bits += 9; bits >= 8; bits -= 8, acc >>= 8) codes.push_back(static_cast<std::uint8_t>(acc));
    };
    for (std::size_t i = 0; i < indices.size(); ++i) {
        if (i % 254 == 0)
            put(256);
        put(indices[i]);
    }
    put(257);
    if (bits > 0)
        codes.push_back(static_cast<std::uint8_t>(acc));
    for (std::size_t at = 0; at < codes.size(); at += 255) {
        const std::size_t n = std::min<std::size_t>(255, codes.size() - at);
        AppendU8(f, static_cast<std::uint8_t>(n));
        f.insert(f.end(), codes.begin() + static_cast<std::ptrdiff_t>(at),
                 codes.begin() + static_cast<std::ptrdiff_t>(at + n));
    }
    AppendU8(f, 0);
    AppendU8(f, 0x3B);
    return f;
}

// A PNG file of the canvas (RGB, or RGBA with `alpha`) whose image data is stored, not
// compressed: a writer that needs no library, for the build that has none.
inline Bytes StoredPng(const RgbCanvas& c, const std::vector<std::uint8_t>* alpha = nullptr) {
    auto crc = [](const Bytes& b, std::size_t from) {
        std::uint32_t r = 0xFFFFFFFFu;
        for (std::size_t i = from; i < b.size(); ++i) {
            r ^= b[i];
            for (int k = 0; k < 8; ++k) r = (r >> 1) ^ (0xEDB88320u & (0u - (r & 1)));
        }
        return ~r;
    };
    auto be32 = [](Bytes& b, std::uint32_t v) {
        for (int k = 24; k >= 0; k -= 8) b.push_back(static_cast<std::uint8_t>(v >> k));
    };
    Bytes f = {0x89, 'P', 'N', 'G', 13, 10, 26, 10};
    auto chunk = [&](const char* type, const Bytes& data) {
        be32(f, static_cast<std::uint32_t>(data.size()));
        const std::size_t from = f.size();
        f.insert(f.end(), type, type + 4);
        f.insert(f.end(), data.begin(), data.end());
        be32(f, crc(f, from));
    };
    Bytes header;
    be32(header, static_cast<std::uint32_t>(c.width));
    be32(header, static_cast<std::uint32_t>(c.height));
    for (int b : {8, alpha ? 6 : 2, 0, 0, 0}) header.push_back(static_cast<std::uint8_t>(b));
    chunk("IHDR", header);
    Bytes raw;  // filter byte 0, then the samples of each row
    for (int y = 0; y < c.height; ++y) {
        raw.push_back(0);
        for (int x = 0; x < c.width; ++x) {
            const std::uint32_t p = c.At(x, y);
            for (std::uint8_t v : {RedOf(p), GreenOf(p), BlueOf(p)}) raw.push_back(v);
            if (alpha)
                raw.push_back((*alpha)[static_cast<std::size_t>(y) * c.width + x]);
        }
    }
    Bytes z = {0x78, 0x01};  // zlib: stored blocks of up to 65535 bytes, then Adler-32
    for (std::size_t at = 0; at < raw.size() || at == 0; at += 65535) {
        const std::size_t n = std::min<std::size_t>(65535, raw.size() - at);
        z.push_back(at + n >= raw.size() ? 1 : 0);
        for (std::uint16_t v : {static_cast<std::uint16_t>(n), static_cast<std::uint16_t>(~n)})
            AppendU16(z, v);
        z.insert(z.end(), raw.begin() + static_cast<std::ptrdiff_t>(at),
                 raw.begin() + static_cast<std::ptrdiff_t>(at + n));
    }
    std::uint32_t a = 1, b = 0;
    for (std::uint8_t v : raw) a = (a + v) % 65521, b = (b + a) % 65521;
    be32(z, (b << 16) | a);
    chunk("IDAT", z);
    chunk("IEND", {});
    return f;
}

}  // namespace kx20::testpics
