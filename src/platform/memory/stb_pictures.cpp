#include "platform/memory/stb_pictures.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <optional>

#include "platform/picture_stretch.h"

// The decoder is compiled here, with this build's flags and sanitizers, for the four formats
// the module accepts. Dimensions beyond the module's limit are refused before decoding.
#define STBI_ONLY_BMP
#define STBI_ONLY_PNG
#define STBI_ONLY_JPEG
#define STBI_ONLY_GIF
#define STBI_NO_STDIO
#define STBI_NO_LINEAR
#define STBI_NO_HDR
#define STBI_MAX_DIMENSIONS 32767
#define STB_IMAGE_STATIC
#define STB_IMAGE_IMPLEMENTATION
#include "stb_image.h"

#define STB_IMAGE_WRITE_STATIC
#define STB_IMAGE_WRITE_IMPLEMENTATION
#include "stb_image_write.h"

namespace kx20 {

namespace {

enum class Format { Unknown, Bitmap, Png, Jpeg, Gif };

// The formats are told apart by their first bytes, as the system's loader does.
Format Sniff(ByteSpan file) {
    if (file.size() < 4)
        return Format::Unknown;
    if (file[0] == 'B' && file[1] == 'M')
        return Format::Bitmap;
    if (file[0] == 0x89 && file[1] == 'P' && file[2] == 'N' && file[3] == 'G')
        return Format::Png;
    if (file[0] == 0xFF && file[1] == 0xD8)
        return Format::Jpeg;
    if (file[0] == 'G' && file[1] == 'I' && file[2] == 'F')
        return Format::Gif;
    return Format::Unknown;
}

// A bitmap file whose pixel rows do not all lie in the file is damaged (the decoder would
// make them up as black).
bool BitmapRowsInFile(ByteSpan file) {
    const std::uint32_t offset = ReadU32(file, 10);
    const std::uint32_t header = ReadU32(file, 14);
    std::int64_t width = 0, height = 0;
    std::uint32_t bits = 0, compression = 0;
    if (header == 12) {
        width = ReadU16(file, 18);
        height = ReadU16(file, 20);
        bits = ReadU16(file, 24);
    } else {
        width = static_cast<std::int32_t>(ReadU32(file, 18));
        height = static_cast<std::int32_t>(ReadU32(file, 22));
        bits = ReadU16(file, 28);
        compression = ReadU32(file, 30);
    }
    if (compression != 0 && compression != 3)
        return true;  // compressed rows: the decoder judges them
    if (height < 0)
        height = -height;
    // Beyond these the picture is refused anyway; within them the sum below cannot overflow.
    if (width < 0 || width > kMaxPictureSide || height > kMaxPictureSide || bits > 64)
        return false;
    const std::int64_t stride = (width * bits + 31) / 32 * 4;
    return static_cast<std::int64_t>(offset) + stride * height <=
           static_cast<std::int64_t>(file.size());
}

// The Huffman tables of a JPEG file: each must hold at most 256 codes. The decoder's table
// builder writes past its 257-entry arrays for more, so such a file is refused before it is
// decoded. The segments are followed by their lengths as the decoder follows them, and the
// entropy-coded data after a scan header is searched for the next marker.
bool JpegTablesFit(ByteSpan file) {
    std::size_t at = 2;  // after the start-of-image marker
    while (at + 1 < file.size()) {
        if (file[at] != 0xFF) {
            ++at;  // entropy-coded data
            continue;
        }
        const std::uint8_t marker = file[at + 1];
        if (marker == 0xFF) {
            ++at;  // fill byte
            continue;
        }
        if (marker == 0x00 || marker == 0x01 || (marker >= 0xD0 && marker <= 0xD8)) {
            at += 2;  // stuffed byte, restart or start markers: no length
            continue;
        }
        if (marker == 0xD9)
            return true;  // end of image
        if (at + 4 > file.size())
            return true;
        const std::size_t length = (std::size_t{file[at + 2]} << 8) | file[at + 3];
        if (marker == 0xC4) {
            // As the decoder reads it: tables while the length lasts, bytes past the end of
            // the file as zeros.
            auto byteAt = [&](std::size_t i) { return i < file.size() ? file[i] : 0; };
            std::int64_t left = static_cast<std::int64_t>(length) - 2;
            for (std::size_t table = at + 4; left > 0;) {
                const std::uint8_t q = byteAt(table);
                if ((q >> 4) > 1 || (q & 15) > 3)
                    break;  // refused by the decoder before it builds anything
                std::size_t codes = 0;
                for (std::size_t i = 1; i <= 16; ++i) codes += byteAt(table + i);
                if (codes > 256)
                    return false;
                table += 17 + codes;
                left -= static_cast<std::int64_t>(17 + codes);
            }
        }
        at += 2 + std::max<std::size_t>(length, 2);
    }
    return true;
}

// A PNG file without its empty image-data chunks, when it has any: they add nothing to the
// picture, and the decoder would copy zero bytes to a buffer it has not allocated yet.
std::optional<Bytes> WithoutEmptyImageData(ByteSpan file) {
    constexpr std::size_t kSignature = 8;
    auto isEmptyImageData = [&](std::size_t at) {
        return ReadU32(file, at) == 0 && file[at + 4] == 'I' && file[at + 5] == 'D' &&
               file[at + 6] == 'A' && file[at + 7] == 'T';
    };
    auto chunkLength = [&](std::size_t at) {
        return (std::size_t{file[at]} << 24) | (std::size_t{file[at + 1]} << 16) |
               (std::size_t{file[at + 2]} << 8) | file[at + 3];
    };
    std::optional<Bytes> out;
    std::size_t at = kSignature;
    std::size_t copied = 0;  // bytes of `file` already in `out`
    while (at + 12 <= file.size()) {
        const std::size_t length = chunkLength(at);
        if (length > file.size() - at - 12)
            break;  // broken chunk structure: left to the decoder
        if (isEmptyImageData(at)) {
            if (!out)
                out.emplace();
            out->insert(out->end(), file.begin() + static_cast<std::ptrdiff_t>(copied),
                        file.begin() + static_cast<std::ptrdiff_t>(at));
            copied = at + 12;
        }
        at += 12 + length;
    }
    if (out)
        out->insert(out->end(), file.begin() + static_cast<std::ptrdiff_t>(copied), file.end());
    return out;
}

class StbPicture : public Picture {
  public:
    explicit StbPicture(DecodedPicture picture) : picture_(std::move(picture)) {}

    std::int32_t HimetricWidth() const override {
        return MulDiv(picture_.colours.width, 2540, StbPictures::kScreenDpi);
    }
    std::int32_t HimetricHeight() const override {
        return MulDiv(picture_.colours.height, 2540, StbPictures::kScreenDpi);
    }
    bool Render(RgbCanvas& canvas, int left, int top, int width, int height) override {
        return StretchPicture(picture_, canvas, left, top, width, height);
    }

  private:
    DecodedPicture picture_;
};

struct StbFree {
    void operator()(stbi_uc* p) const { stbi_image_free(p); }
};

}  // namespace

std::unique_ptr<Picture> StbPictures::Load(ByteSpan file) {
    const Format format = Sniff(file);
    if (format == Format::Unknown || file.size() > static_cast<std::size_t>(INT_MAX))
        return nullptr;
    if (format == Format::Bitmap && !BitmapRowsInFile(file))
        return nullptr;
    if (format == Format::Jpeg && !JpegTablesFit(file))
        return nullptr;
    std::optional<Bytes> normalised;
    if (format == Format::Png && (normalised = WithoutEmptyImageData(file)))
        file = *normalised;
    const auto* data = reinterpret_cast<const stbi_uc*>(file.data());
    const int length = static_cast<int>(file.size());
    int w = 0, h = 0, channels = 0;
    if (!stbi_info_from_memory(data, length, &w, &h, &channels))
        return nullptr;
    if (w <= 0 || h <= 0 || w > kMaxPictureSide || h > kMaxPictureSide ||
        static_cast<std::int64_t>(w) * h > kMaxPicturePixels) {
        return nullptr;
    }
    int dw = 0, dh = 0;
    std::unique_ptr<stbi_uc, StbFree> rgba(
        stbi_load_from_memory(data, length, &dw, &dh, &channels, 4));
    if (!rgba || dw != w || dh != h)
        return nullptr;

    DecodedPicture picture;
    picture.colours = RgbCanvas(w, h);
    // A bitmap file is drawn without regard to an alpha channel; the other formats leave out
    // the pixels that are less than half opaque.
    const bool alpha = format != Format::Bitmap;
    const std::size_t count = static_cast<std::size_t>(w) * static_cast<std::size_t>(h);
    const stbi_uc* p = rgba.get();
    bool anyTransparent = false;
    std::vector<std::uint8_t> transparent;
    if (alpha)
        transparent.assign(count, 0);
    for (std::size_t i = 0; i < count; ++i, p += 4) {
        picture.colours.pixels[i] = RgbPixel(p[0], p[1], p[2]);
        if (alpha && p[3] < 0x80) {
            transparent[i] = 1;
            anyTransparent = true;
        }
    }
    if (anyTransparent)
        picture.transparent = std::move(transparent);
    return std::make_unique<StbPicture>(std::move(picture));
}

namespace {

void AppendToBytes(void* context, void* bytes, int size) {
    auto* out = static_cast<Bytes*>(context);
    const auto* b = static_cast<const std::uint8_t*>(bytes);
    out->insert(out->end(), b, b + size);
}

}  // namespace

Bytes EncodeJpeg(const RgbCanvas& canvas, int quality) {
    if (canvas.width <= 0 || canvas.height <= 0)
        return {};
    std::vector<std::uint8_t> rgb(canvas.pixels.size() * 3);
    for (std::size_t i = 0; i < canvas.pixels.size(); ++i) {
        rgb[3 * i] = RedOf(canvas.pixels[i]);
        rgb[3 * i + 1] = GreenOf(canvas.pixels[i]);
        rgb[3 * i + 2] = BlueOf(canvas.pixels[i]);
    }
    Bytes out;
    if (!stbi_write_jpg_to_func(AppendToBytes, &out, canvas.width, canvas.height, 3, rgb.data(),
                                quality)) {
        return {};
    }
    return out;
}

Bytes EncodePng(const RgbCanvas& canvas, const std::vector<std::uint8_t>* alpha) {
    if (canvas.width <= 0 || canvas.height <= 0)
        return {};
    if (alpha && alpha->size() != canvas.pixels.size())
        return {};
    const int channels = alpha ? 4 : 3;
    std::vector<std::uint8_t> rgb(canvas.pixels.size() * channels);
    for (std::size_t i = 0; i < canvas.pixels.size(); ++i) {
        std::uint8_t* out = rgb.data() + i * channels;
        out[0] = RedOf(canvas.pixels[i]);
        out[1] = GreenOf(canvas.pixels[i]);
        out[2] = BlueOf(canvas.pixels[i]);
        if (alpha)
            out[3] = (*alpha)[i];
    }
    Bytes out;
    if (!stbi_write_png_to_func(AppendToBytes, &out, canvas.width, canvas.height, channels,
                                rgb.data(), canvas.width * channels)) {
        return {};
    }
    return out;
}

}  // namespace kx20
