#include "platform/memory/bmp_reader.h"

#include <bit>

#include "platform/format.h"

namespace kx20 {

namespace {

constexpr std::size_t kFileHeader = 14;

struct Channel {
    std::uint32_t mask = 0;
    int shift = 0;
    int count = 0;

    explicit Channel(std::uint32_t m) : mask(m) {
        if (m) {
            shift = std::countr_zero(m);
            count = std::popcount(m);
        }
    }
    // The channel's value widened or narrowed to 8 bits; a narrow value repeats its bits
    // (5 bits abcde become abcdeabc), as the system widens 16-bit pixels.
    std::uint8_t Of(std::uint32_t pixel) const {
        if (!count)
            return 0;
        const std::uint32_t v = (pixel & mask) >> shift;
        if (count >= 8)
            return static_cast<std::uint8_t>(v >> (count - 8));
        std::uint32_t r = 0;
        for (int pos = 8 - count; pos > -count; pos -= count)
            r |= pos >= 0 ? v << pos : v >> -pos;
        return static_cast<std::uint8_t>(r);
    }
};

}  // namespace

std::optional<DecodedPicture> ReadBmp(ByteSpan file, BmpLimits limits, std::u16string& reason) {
    auto refuse = [&](std::u16string_view why) {
        reason = std::u16string(why);
        return std::nullopt;
    };
    if (file.size() < kFileHeader + 12 || file[0] != 'B' || file[1] != 'M')
        return refuse(u"bitmap: file shorter than its headers");
    const std::uint32_t offset = ReadU32(file, 10);
    const std::uint32_t header = ReadU32(file, kFileHeader);
    std::int64_t width = 0, height = 0;
    std::uint32_t planes = 0, bits = 0, compression = 0, used = 0;
    std::size_t entrySize = 4;
    if (header == 12) {
        width = ReadU16(file, 18);
        height = ReadU16(file, 20);
        planes = ReadU16(file, 22);
        bits = ReadU16(file, 24);
        entrySize = 3;
    } else if (header == 40 || header == 52 || header == 56 || header == 64 || header == 108 ||
               header == 124) {
        if (!FitsIn(file.size(), kFileHeader, header))
            return refuse(u"bitmap: file shorter than its headers");
        width = static_cast<std::int32_t>(ReadU32(file, 18));
        height = static_cast<std::int32_t>(ReadU32(file, 22));
        planes = ReadU16(file, 26);
        bits = ReadU16(file, 28);
        compression = ReadU32(file, 30);
        used = ReadU32(file, 46);
    } else {
        reason = Format(u"bitmap: unknown information header of %u bytes", header);
        return std::nullopt;
    }
    // OS/2's 64-byte header numbers its compressions differently: only plain rows are taken.
    const bool bitFields = compression == 3 && header != 64;
    if (compression != 0 && !bitFields) {
        reason = Format(u"bitmap: compression %u is not supported", compression);
        return std::nullopt;
    }
    if (planes != 1)
        return refuse(u"bitmap: more than one plane");
    if (bits != 1 && bits != 4 && bits != 8 && bits != 16 && bits != 24 && bits != 32) {
        reason = Format(u"bitmap: %u bits a pixel", bits);
        return std::nullopt;
    }
    if (bitFields && bits != 16 && bits != 32)
        return refuse(u"bitmap: bit fields on a pixel size without them");
    const bool topDown = height < 0;
    if (topDown)
        height = -height;
    if (width <= 0 || height <= 0 || width > limits.maxSide || height > limits.maxSide ||
        width * height > limits.maxPixels) {
        reason = Format(u"bitmap: %I64d x %I64d pixels refused (at most %I64d pixels)", width,
                        height, limits.maxPixels);
        return std::nullopt;
    }
    // Width and height are at most a few ten thousands: no product below overflows.
    const std::int64_t stride = (width * bits + 31) / 32 * 4;
    if (static_cast<std::int64_t>(offset) + stride * height > static_cast<std::int64_t>(file.size()))
        return refuse(u"bitmap: pixel rows beyond the end of the file");

    std::uint32_t palette[256] = {};
    Channel red(0), green(0), blue(0);
    if (bits <= 8) {
        const std::uint32_t most = 1u << bits;
        const std::uint32_t count = used > 0 && used <= most ? used : most;
        const std::size_t at = kFileHeader + header;
        if (!FitsIn(file.size(), at, count * entrySize))
            return refuse(u"bitmap: colour table beyond the end of the file");
        for (std::uint32_t i = 0; i < count; ++i) {
            const std::size_t e = at + i * entrySize;
            palette[i] = RgbPixel(file[e + 2], file[e + 1], file[e]);
        }
    } else if (bitFields) {
        // The masks follow a 40-byte header, or are its own next fields.
        if (!FitsIn(file.size(), kFileHeader + 40, 12))
            return refuse(u"bitmap: bit-field masks beyond the end of the file");
        red = Channel(ReadU32(file, 54));
        green = Channel(ReadU32(file, 58));
        blue = Channel(ReadU32(file, 62));
    } else if (bits == 16) {
        red = Channel(0x7C00), green = Channel(0x03E0), blue = Channel(0x001F);
    } else {
        red = Channel(0xFF0000), green = Channel(0xFF00), blue = Channel(0xFF);
    }

    DecodedPicture picture;
    picture.colours = RgbCanvas(static_cast<int>(width), static_cast<int>(height));
    for (std::int64_t row = 0; row < height; ++row) {
        const std::uint8_t* p = file.data() + offset + row * stride;
        const int y = static_cast<int>(topDown ? row : height - 1 - row);
        for (int x = 0; x < width; ++x) {
            std::uint32_t& out = picture.colours.At(x, y);
            switch (bits) {
                case 1:
                case 4:
                case 8: {
                    const int perByte = 8 / static_cast<int>(bits);
                    const int shift = 8 - static_cast<int>(bits) * (x % perByte + 1);
                    out = palette[(p[x / perByte] >> shift) & ((1u << bits) - 1)];
                    break;
                }
                case 24:
                    out = RgbPixel(p[3 * x + 2], p[3 * x + 1], p[3 * x]);
                    break;
                default: {
                    const std::uint32_t v =
                        bits == 16 ? std::uint32_t{p[2 * x]} | std::uint32_t{p[2 * x + 1]} << 8
                                   : std::uint32_t{p[4 * x]} | std::uint32_t{p[4 * x + 1]} << 8 |
                                         std::uint32_t{p[4 * x + 2]} << 16 |
                                         std::uint32_t{p[4 * x + 3]} << 24;
                    out = RgbPixel(red.Of(v), green.Of(v), blue.Of(v));
                }
            }
        }
    }
    return picture;
}

}  // namespace kx20
