#include "logos/raster_conversion.h"

#include <algorithm>
#include <array>
#include <limits>
#include <new>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "platform/trace.h"
#include "logos/raster_reference.h"

namespace kx20::logos {

namespace {

constexpr float kShareRight = 0.4375f;       // 7/16
constexpr float kShareBelowRight = 0.1875f;  // 3/16
constexpr float kShareBelow = 0.3125f;       // 5/16
constexpr float kShareBelowLeft = 0.0625f;   // 1/16

// The weighted channels in double precision, and grey / 255.0 as a float: the same products
// and sums the plain formula computes, looked up instead of recomputed.
struct GreyTables {
    std::array<double, 256> red{};
    std::array<double, 256> green{};
    std::array<double, 256> blue{};
    std::array<float, 256> value{};
};

const GreyTables& Tables() {
    static const GreyTables tables = [] {
        GreyTables t;
        for (int v = 0; v < 256; ++v) {
            t.red[v] = v * 0.31;
            t.green[v] = v * 0.56;
            t.blue[v] = v * 0.13;
            t.value[v] = static_cast<float>(v / 255.0);
        }
        return t;
    }();
    return tables;
}

inline float GreyOf(const GreyTables& t, std::uint32_t pixel) {
    const double sum = t.red[RedOf(pixel)] + t.green[GreenOf(pixel)] + t.blue[BlueOf(pixel)];
    const int grey = std::min(static_cast<int>(sum), 255);
    return t.value[static_cast<std::size_t>(grey)];
}

#if defined(__SSE2__)

// The rows of one block are the lanes of kRegs SSE registers (4 lanes each). At step t, lane r
// holds pixel x = t - 2r of row y0 + r: its neighbours in the row above (x - 1, x, x + 1) were
// finished by lane r - 1 at steps t - 3, t - 2 and t - 1, and its left neighbour by itself at
// step t - 1, so every pixel receives its four shares in the order of the row-by-row form.
// Lane 0 takes the row above from the previous block's last row. Errors of lanes outside the
// grid are kept at zero, which makes the missing neighbours of the edges contribute nothing;
// the one update whose clamp would otherwise change a value (the left share, which the first
// column never receives) is applied without its clamp there.
template <int kRegs>
class WavefrontDither {
  public:
    static constexpr int kLanes = 4 * kRegs;
    static constexpr int kSkew = 2;

    WavefrontDither(const RgbCanvas& canvas, PixelSize grid)
        : canvas_(canvas),
          w_(grid.width),
          h_(grid.height),
          steps_((grid.width + kSkew * (kLanes - 1) + 7) / 8 * 8),
          grey_(static_cast<std::size_t>(steps_) * kLanes),
          snapshots_(static_cast<std::size_t>(steps_) / 8 * kLanes),
          above_(static_cast<std::size_t>(steps_) + 8),
          next_(above_.size()),
          white_(GreyOf(Tables(), 0xFFFFFFFFu)) {}

    void Run(Raster& out) {
        for (int y0 = 0; y0 < h_; y0 += kLanes) {
            FillGrey(y0);
            Diffuse(y0);
            Pack(y0, out);
            above_.swap(next_);
        }
    }

  private:
    void FillGrey(int y0) {
        const GreyTables& t = Tables();
        for (int r = 0; r < kLanes; ++r) {
            const int y = y0 + r;
            if (y >= h_)
                break;
            float* lane = grey_.data() + static_cast<std::size_t>(kSkew * r) * kLanes + r;
            const int inside = y < canvas_.height ? std::min(w_, canvas_.width) : 0;
            const std::uint32_t* row =
                inside ? canvas_.pixels.data() + static_cast<std::size_t>(y) * canvas_.width
                       : nullptr;
            int x = 0;
            for (; x + 4 <= inside; x += 4) {
                alignas(16) std::int32_t grey[4];
                GreyOfFour(row + x, grey);
                for (int i = 0; i < 4; ++i) {
                    lane[static_cast<std::size_t>(x + i) * kLanes] =
                        t.value[static_cast<std::size_t>(std::min(grey[i], 255))];
                }
            }
            for (; x < inside; ++x) lane[static_cast<std::size_t>(x) * kLanes] = GreyOf(t, row[x]);
            for (; x < w_; ++x) lane[static_cast<std::size_t>(x) * kLanes] = white_;
        }
    }

    // The grey levels of four pixels: the same double products and sums as the plain formula,
    // two pixels at a time, truncated.
    static void GreyOfFour(const std::uint32_t* pixels, std::int32_t (&grey)[4]) {
        const __m128d k31 = _mm_set1_pd(0.31);
        const __m128d k56 = _mm_set1_pd(0.56);
        const __m128d k13 = _mm_set1_pd(0.13);
        const __m128i ff = _mm_set1_epi32(0xFF);
        auto two = [&](__m128i r, __m128i g, __m128i b) {
            const __m128d sum = _mm_add_pd(_mm_add_pd(_mm_mul_pd(_mm_cvtepi32_pd(r), k31),
                                                      _mm_mul_pd(_mm_cvtepi32_pd(g), k56)),
                                           _mm_mul_pd(_mm_cvtepi32_pd(b), k13));
            return _mm_cvttpd_epi32(sum);
        };
        const __m128i p = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels));
        const __m128i r = _mm_and_si128(_mm_srli_epi32(p, 16), ff);
        const __m128i g = _mm_and_si128(_mm_srli_epi32(p, 8), ff);
        const __m128i b = _mm_and_si128(p, ff);
        const __m128i low = two(r, g, b);
        const __m128i high = two(_mm_srli_si128(r, 8), _mm_srli_si128(g, 8), _mm_srli_si128(b, 8));
        _mm_store_si128(reinterpret_cast<__m128i*>(grey), _mm_unpacklo_epi64(low, high));
    }

    static __m128 Clamp(__m128 v, __m128 zero, __m128 one) {
        return _mm_min_ps(_mm_max_ps(v, zero), one);
    }

    // Lanes moved up by one (lane r gets lane r - 1), lane 0 taking `first`.
    static void ShiftUp(const __m128 (&in)[kRegs], float first, __m128 (&out)[kRegs]) {
        for (int j = kRegs - 1; j >= 0; --j) {
            const __m128 moved = _mm_castsi128_ps(_mm_slli_si128(_mm_castps_si128(in[j]), 4));
            const __m128 carried =
                j == 0 ? _mm_set_ss(first) : _mm_shuffle_ps(in[j - 1], in[j - 1], 0xFF);
            out[j] = _mm_move_ss(moved, carried);
        }
    }

    void Diffuse(int y0) {
        const __m128 zero = _mm_setzero_ps();
        const __m128 one = _mm_set1_ps(1.0f);
        const __m128 half = _mm_set1_ps(0.5f);
        const __m128 w7 = _mm_set1_ps(kShareRight);
        const __m128 w3 = _mm_set1_ps(kShareBelowRight);
        const __m128 w5 = _mm_set1_ps(kShareBelow);
        const __m128 w1 = _mm_set1_ps(kShareBelowLeft);
        const __m128i width = _mm_set1_epi32(w_);
        const __m128i minusOne = _mm_set1_epi32(-1);
        const __m128i zeroI = _mm_setzero_si128();

        __m128i offset[kRegs];  // 2r per lane
        __m128i rowOk[kRegs];   // lane's row lies in the grid
        for (int j = 0; j < kRegs; ++j) {
            const int r = 4 * j;
            offset[j] = _mm_set_epi32(kSkew * (r + 3), kSkew * (r + 2), kSkew * (r + 1), kSkew * r);
            rowOk[j] = _mm_cmplt_epi32(_mm_set_epi32(y0 + r + 3, y0 + r + 2, y0 + r + 1, y0 + r),
                                       _mm_set1_epi32(h_));
        }

        // above_[x + 1] is the error of pixel x of the row above the block (zero beyond it).
        const float* above = above_.data() + 1;
        std::fill(next_.begin(), next_.end(), 0.0f);

        __m128 errors[kRegs];   // step t - 1
        __m128 aboveR1[kRegs];  // the above-right inputs of step t - 1 (above of step t)
        __m128 aboveR2[kRegs];  // ... of step t - 2 (above-left of step t)
        for (int j = 0; j < kRegs; ++j) {
            errors[j] = zero;
            aboveR1[j] = zero;
            aboveR2[j] = zero;
        }
        aboveR1[0] = _mm_set_ss(above[0]);
        aboveR2[0] = _mm_set_ss(above[-1]);

        // Each lane shifts its black dots into a 32-bit register, the newest in bit 0; every
        // eighth step the registers are kept, and Pack cuts each row's bytes out of them.
        __m128i dots[kRegs];
        for (int j = 0; j < kRegs; ++j) dots[j] = _mm_setzero_si128();

        const std::size_t lastLane = kLanes - 1;
        for (int t = 0; t < steps_; ++t) {
            __m128 aboveR[kRegs];
            ShiftUp(errors, above[t + 1], aboveR);
            const float* grey = grey_.data() + static_cast<std::size_t>(t) * kLanes;
            const __m128i step = _mm_set1_epi32(t);
            for (int j = 0; j < kRegs; ++j) {
                const __m128i x = _mm_sub_epi32(step, offset[j]);
                const __m128i valid = _mm_and_si128(
                    _mm_and_si128(_mm_cmpgt_epi32(x, minusOne), _mm_cmplt_epi32(x, width)),
                    rowOk[j]);
                const __m128 firstColumn = _mm_castsi128_ps(_mm_cmpeq_epi32(x, zeroI));

                __m128 a = _mm_loadu_ps(grey + 4 * j);
                a = _mm_add_ps(Clamp(a, zero, one), _mm_mul_ps(aboveR2[j], w3));
                a = _mm_add_ps(Clamp(a, zero, one), _mm_mul_ps(aboveR1[j], w5));
                a = _mm_add_ps(Clamp(a, zero, one), _mm_mul_ps(aboveR[j], w1));
                const __m128 base = _mm_or_ps(_mm_and_ps(firstColumn, a),
                                              _mm_andnot_ps(firstColumn, Clamp(a, zero, one)));
                a = _mm_add_ps(base, _mm_mul_ps(errors[j], w7));

                const __m128 black = _mm_cmplt_ps(a, half);
                const __m128 q = _mm_andnot_ps(black, one);
                const __m128 validMask = _mm_castsi128_ps(valid);
                errors[j] = _mm_and_ps(_mm_sub_ps(a, q), validMask);
                const __m128i dot =
                    _mm_srli_epi32(_mm_castps_si128(_mm_and_ps(black, validMask)), 31);
                dots[j] = _mm_or_si128(_mm_slli_epi32(dots[j], 1), dot);
            }
            if ((t & 7) == 7) {
                auto* keep = reinterpret_cast<__m128i*>(snapshots_.data() +
                                                        static_cast<std::size_t>(t / 8) * kLanes);
                for (int j = 0; j < kRegs; ++j) _mm_storeu_si128(keep + j, dots[j]);
            }
            // The block's last row is the next block's row above.
            const int lastX = t - kSkew * static_cast<int>(lastLane);
            if (lastX >= 0 && lastX < w_) {
                next_[static_cast<std::size_t>(lastX) + 1] =
                    _mm_cvtss_f32(_mm_shuffle_ps(errors[kRegs - 1], errors[kRegs - 1], 0xFF));
            }
            for (int j = 0; j < kRegs; ++j) {
                aboveR2[j] = aboveR1[j];
                aboveR1[j] = aboveR[j];
            }
        }
    }

    void Pack(int y0, Raster& out) {
        const int bytesPerRow = w_ / 8;
        // Only pixels inside the canvas can be set.
        const int inside = std::min(w_, canvas_.width);
        for (int r = 0; r < kLanes; ++r) {
            const int y = y0 + r;
            if (y >= h_ || y >= canvas_.height)
                break;
            // Lane r finishes pixel 8k + 7 at step 8k + 7 + 2r; the first snapshot at or after
            // it holds that pixel `shift` bits up.
            const int later = (kSkew * r + 7) / 8;
            const int shift = 8 * later - kSkew * r;
            std::uint8_t* row = out.bits.data() + static_cast<std::size_t>(y) * bytesPerRow;
            const std::uint32_t* snap =
                snapshots_.data() + static_cast<std::size_t>(later) * kLanes + r;
            for (int k = 0; k < bytesPerRow; ++k) {
                std::uint32_t byte = (snap[static_cast<std::size_t>(k) * kLanes] >> shift) & 0xFFu;
                if (8 * k + 8 > inside)
                    byte &= 8 * k >= inside ? 0u : (0xFF00u >> (inside - 8 * k)) & 0xFFu;
                row[k] = static_cast<std::uint8_t>(byte);
            }
        }
    }

    const RgbCanvas& canvas_;
    const int w_;
    const int h_;
    const int steps_;
    std::vector<float> grey_;               // skewed: step t, lane r
    std::vector<std::uint32_t> snapshots_;  // every eighth step, one register per lane
    std::vector<float> above_;
    std::vector<float> next_;
    const float white_;
};

#endif  // __SSE2__

}  // namespace

LogoLimits LimitsFor(bool fullWidth) {
    return fullWidth ? LogoLimits{kFullMaxWidth, kFullMaxHeight}
                     : LogoLimits{kNarrowMaxWidth, kNarrowMaxHeight};
}

PixelSize TargetSize(PixelSize picture, LogoLimits limits, bool scaleToFit) {
    if (!scaleToFit)
        return picture;
    const std::int64_t w = picture.width;
    const std::int64_t h = picture.height;
    PixelSize target;
    if (h < w) {
        target.width = static_cast<int>(std::min<std::int64_t>(w, limits.maxWidth));
        target.height = static_cast<int>(h * target.width / w);
    } else if (h > 0) {
        target.height = static_cast<int>(std::min<std::int64_t>(h, limits.maxHeight));
        target.width = static_cast<int>(w * target.height / h);
    }
    return target;
}

PixelSize GridSize(PixelSize target, LogoLimits limits) {
    const std::int64_t w = (static_cast<std::int64_t>(target.width) + 31) / 32 * 32;
    const std::int64_t h = (static_cast<std::int64_t>(target.height) + 7) / 8 * 8;
    return {static_cast<int>(std::min<std::int64_t>(w, limits.maxWidth)),
            static_cast<int>(std::min<std::int64_t>(h, limits.maxHeight))};
}

float GreyValue(std::uint32_t pixel) {
    return GreyOf(Tables(), pixel);
}

Raster DitherToRaster(const RgbCanvas& canvas, PixelSize grid) {
#if defined(__SSE2__)
    // The wavefront needs two columns, so that the first column is not also the last.
    if (grid.width >= 2 && grid.height > 0 && grid.width % 8 == 0) {
        Raster out;
        out.width = grid.width;
        out.height = grid.height;
        out.bits.assign(static_cast<std::size_t>(grid.width) / 8 * grid.height, 0);
        WavefrontDither<4>(canvas, grid).Run(out);
        return out;
    }
#endif
    return DitherToRasterReference(canvas, grid);
}

Bytes RegroupToColumnBands(const Raster& rows) {
    const int w = rows.width;
    const int h = rows.height;
    if (w <= 0 || h <= 0 || w % 8 != 0 || h % 8 != 0 ||
        rows.bits.size() != static_cast<std::size_t>(w / 8) * h) {
        return {};
    }
    Bytes bands(rows.bits.size(), 0);
    const int bytesPerRow = w / 8;
    for (int r = 0; r < h / 8; ++r) {
        for (int c = 0; c < bytesPerRow; ++c) {
            for (int k = 0; k < 8; ++k) {
                const std::uint8_t source =
                    rows.bits[static_cast<std::size_t>(8 * r + 7 - k) * bytesPerRow + c];
                for (int j = 0; j < 8; ++j) {
                    const unsigned bit = source & (0x80u >> j);
                    const unsigned moved = j >= k ? bit << (j - k) : bit >> (k - j);
                    bands[static_cast<std::size_t>(r) * w + 8 * c + j] |=
                        static_cast<std::uint8_t>(moved);
                }
            }
        }
    }
    return bands;
}

std::optional<Raster> ColumnBandsToRows(ByteSpan bands, int width, int height) {
    if (width <= 0 || height <= 0 || width % 8 != 0 || height % 8 != 0 ||
        bands.size() != static_cast<std::size_t>(width / 8) * height) {
        return std::nullopt;
    }
    Raster rows{width, height, Bytes(bands.size(), 0)};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const std::uint8_t column = bands[static_cast<std::size_t>(y / 8) * width + x];
            if (column & (1u << (y % 8)))
                rows.bits[static_cast<std::size_t>(y) * (width / 8) + x / 8] |=
                    static_cast<std::uint8_t>(0x80 >> (x % 8));
        }
    }
    return rows;
}

std::optional<Raster> ConvertOpenedPicture(OpenedPicture& opened, LogoLimits limits,
                                           bool scaleToFit) {
    const PixelSize picture = opened.size;
    if (picture.width <= 0 || picture.height <= 0 || picture.width > kMaxPictureSide ||
        picture.height > kMaxPictureSide ||
        static_cast<std::int64_t>(picture.width) * picture.height > kMaxPicturePixels) {
        DrvTrace(u"ConvertPictureToRaster - bitmap of %d x %d pixels refused\n", picture.width,
                 picture.height);
        return std::nullopt;
    }
    const PixelSize target = TargetSize(picture, limits, scaleToFit);
    std::optional<Raster> raster;
    try {
        // The picture's own size, black until drawn into.
        RgbCanvas canvas(picture.width, picture.height);
        if (!opened.picture->Render(canvas, 0, 0, target.width, target.height)) {
            DrvTrace(u"ConvertPictureToRaster - Render to %d x %d Failed\n", target.width,
                     target.height);
            return std::nullopt;
        }
        raster = DitherToRaster(canvas, GridSize(target, limits));
    } catch (const std::bad_alloc&) {
        DrvTrace(u"ConvertPictureToRaster - out of memory\n");
        return std::nullopt;
    }
    if (raster->bits.empty()) {
        DrvTrace(u"ConvertPictureToRaster - empty grid\n");
        return std::nullopt;
    }
    return raster;
}

std::optional<Raster> ConvertPictureToRaster(FileSystem& files, Pictures& pictures,
                                             LogoLimits limits, bool scaleToFit,
                                             std::u16string_view path) {
    auto opened = OpenPictureFile(files, pictures, path);
    if (!opened) {
        DrvTrace(u"ConvertPictureToRaster - LoadPictureFile Failed\n");
        return std::nullopt;
    }
    return ConvertOpenedPicture(*opened, limits, scaleToFit);
}

}  // namespace kx20::logos
