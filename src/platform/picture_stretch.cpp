#include "platform/picture_stretch.h"

#include <algorithm>

namespace kx20 {

namespace {

// One destination row from one source row. `merge` ANDs into what the row already holds (a
// further source row of the same destination row), otherwise the row is written afresh.
void StretchRow(const std::uint32_t* src, std::uint32_t* dst, const StretchSteps& h, bool merge) {
    int err = h.errStart;
    if (h.shrink) {
        bool fresh = true;
        for (int i = 0; i < h.length; ++i) {
            if (fresh && !merge)
                *dst = 0xFFFFFFFFu;
            *dst &= *src++;
            fresh = false;
            if (err > 0) {
                ++dst;
                fresh = true;
                err += h.errAdd1;
            } else {
                err += h.errAdd2;
            }
        }
        return;
    }
    for (int i = 0; i < h.length; ++i) {
        *dst = merge ? (*dst & *src) : *src;
        ++dst;
        if (err > 0) {
            ++src;
            err += h.errAdd1;
        } else {
            err += h.errAdd2;
        }
    }
}

// The whole stretch of a `sw` x `sh` plane into a `dw` x `dh` plane.
void StretchPlane(const std::uint32_t* src, int sw, int sh, std::uint32_t* dst, int dw, int dh) {
    const std::size_t stride = static_cast<std::size_t>(sw);
    // A destination one pixel wide or high takes one source column or row fewer.
    if (dw == 1 && sw > 1)
        --sw;
    if (dh == 1 && sh > 1)
        --sh;
    const StretchSteps h = StretchStepsFor(dw, sw);
    const StretchSteps v = StretchStepsFor(dh, sh);
    auto srcRow = [&](int y) { return src + static_cast<std::size_t>(y) * stride; };
    auto dstRow = [&](int y) { return dst + static_cast<std::size_t>(y) * dw; };
    int err = v.errStart;
    int sy = 0;
    int dy = 0;
    if (!v.shrink) {
        bool needRow = true;
        for (int i = 0; i < v.length; ++i) {
            if (needRow) {
                StretchRow(srcRow(sy), dstRow(dy), h, false);
                needRow = false;
            } else {
                std::copy(dstRow(dy - 1), dstRow(dy - 1) + dw, dstRow(dy));
            }
            if (err > 0) {
                ++sy;
                needRow = true;
                err += v.errAdd1;
            } else {
                err += v.errAdd2;
            }
            ++dy;
        }
        return;
    }
    int merged = 0;
    for (int i = 0; i < v.length; ++i) {
        StretchRow(srcRow(sy), dstRow(dy), h, merged != 0);
        ++merged;
        if (err > 0) {
            ++dy;
            merged = 0;
            err += v.errAdd1;
        } else {
            err += v.errAdd2;
        }
        ++sy;
    }
}

}  // namespace

StretchSteps StretchStepsFor(int destinationLength, int sourceLength) {
    StretchSteps s;
    const int dy = destinationLength;
    const int dx = sourceLength;
    if (dx > dy) {
        s.shrink = true;
        s.errStart = 3 * dy - 2 * dx;
        s.errAdd1 = 2 * dy - 2 * dx;
        s.errAdd2 = 2 * dy;
        s.length = dx;
    } else {
        s.errStart = 3 * dx - 2 * dy;
        s.errAdd1 = 2 * dx - 2 * dy;
        s.errAdd2 = 2 * dx;
        s.length = dy;
    }
    return s;
}

bool StretchPicture(const DecodedPicture& picture, RgbCanvas& canvas, int left, int top, int width,
                    int height) {
    const RgbCanvas& src = picture.colours;
    if (src.width <= 0 || src.height <= 0 || width <= 0 || height <= 0)
        return false;
    if (static_cast<std::int64_t>(width) * height > kMaxPicturePixels)
        return false;
    const std::size_t count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    std::vector<std::uint32_t> colours(count);
    std::vector<std::uint32_t> kept;  // all-ones where the destination stays as it was
    if (picture.transparent.empty()) {
        StretchPlane(src.pixels.data(), src.width, src.height, colours.data(), width, height);
    } else {
        // The masked render: the colour plane with transparent pixels black, and a mask plane
        // that is set only where every source pixel of the block is transparent.
        std::vector<std::uint32_t> xorPlane(src.pixels);
        std::vector<std::uint32_t> maskPlane(src.pixels.size());
        for (std::size_t i = 0; i < xorPlane.size(); ++i) {
            const bool clear = i < picture.transparent.size() && picture.transparent[i] != 0;
            if (clear)
                xorPlane[i] = 0;
            maskPlane[i] = clear ? 0xFFFFFFFFu : 0;
        }
        StretchPlane(xorPlane.data(), src.width, src.height, colours.data(), width, height);
        kept.resize(count);
        StretchPlane(maskPlane.data(), src.width, src.height, kept.data(), width, height);
    }
    const int x0 = std::max(left, 0);
    const int y0 = std::max(top, 0);
    const int x1 = static_cast<int>(
        std::min<std::int64_t>(static_cast<std::int64_t>(left) + width, canvas.width));
    const int y1 = static_cast<int>(
        std::min<std::int64_t>(static_cast<std::int64_t>(top) + height, canvas.height));
    for (int y = y0; y < y1; ++y) {
        for (int x = x0; x < x1; ++x) {
            const std::size_t i = static_cast<std::size_t>(y - top) * width + (x - left);
            std::uint32_t& out = canvas.At(x, y);
            const std::uint32_t keep = kept.empty() ? 0 : kept[i];
            out = ((out & keep) | colours[i]) & 0x00FFFFFFu;
        }
    }
    return true;
}

}  // namespace kx20
