#include "platform/memory/native_pictures.h"

#include <gif_lib.h>
#include <png.h>
#include <setjmp.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>
#include <optional>

// jpeglib.h needs the declarations of <cstdio> before it.
#include <jpeglib.h>

#include "platform/trace.h"
#include "platform/format.h"
#include "platform/memory/bmp_reader.h"
#include "platform/picture_stretch.h"

namespace kx20 {

namespace {

enum class Kind { Unknown, Bitmap, Png, Jpeg, Gif };

// The formats are told apart by their first bytes, as the system's loader does.
Kind Sniff(ByteSpan file) {
    if (file.size() < 4)
        return Kind::Unknown;
    if (file[0] == 'B' && file[1] == 'M')
        return Kind::Bitmap;
    if (file[0] == 0x89 && file[1] == 'P' && file[2] == 'N' && file[3] == 'G')
        return Kind::Png;
    if (file[0] == 0xFF && file[1] == 0xD8)
        return Kind::Jpeg;
    if (file[0] == 'G' && file[1] == 'I' && file[2] == 'F')
        return Kind::Gif;
    return Kind::Unknown;
}

std::u16string Widen(const char* text) {
    std::u16string out;
    for (; text && *text; ++text) out.push_back(static_cast<unsigned char>(*text));
    return out;
}

// The size check every decoder makes from the headers, before it allocates pixels.
bool SizeAllowed(std::int64_t w, std::int64_t h, const char16_t* format, std::u16string& reason) {
    if (w > 0 && h > 0 && w <= kMaxPictureSide && h <= kMaxPictureSide &&
        w * h <= kMaxDecodedPixels) {
        return true;
    }
    reason = Format(u"%s: %I64d x %I64d pixels refused (at most %I64d pixels)", format, w, h,
                    kMaxDecodedPixels);
    return false;
}

// Pixels less than half opaque are left out, as the masked render leaves them.
void KeepTransparency(DecodedPicture& picture, std::size_t i, std::uint8_t alpha) {
    if (alpha >= 0x80)
        return;
    if (picture.transparent.empty())
        picture.transparent.assign(picture.colours.pixels.size(), 0);
    picture.transparent[i] = 1;
}

// JPEG (libjpeg-turbo) ------------------------------------------------------------------------

// A damaged or hostile file costs at most this many scans and warnings; libjpeg-turbo's own
// fuzzing bounds them the same way against files that take minutes to decode.
constexpr int kMaxJpegScans = 256;
constexpr long kMaxJpegMemory = 256L << 20;

struct JpegState {
    jpeg_error_mgr err;  // first: the library's error manager pointer is a pointer to it
    jmp_buf jump;
    char message[JMSG_LENGTH_MAX] = {};
    jpeg_decompress_struct info;
    jpeg_progress_mgr progress;
    DecodedPicture* out = nullptr;
    std::u16string* reason = nullptr;
    bool sizeRefused = false;
};

void JpegFail(j_common_ptr c) {
    auto* st = reinterpret_cast<JpegState*>(c->err);
    c->err->format_message(c, st->message);
    longjmp(st->jump, 1);
}

// Any warning means damaged data (libjpeg-turbo would make up the missing blocks): refused.
void JpegMessage(j_common_ptr c, int level) {
    if (level < 0)
        JpegFail(c);
}

void JpegProgress(j_common_ptr c) {
    auto* d = reinterpret_cast<j_decompress_ptr>(c);
    if (d->input_scan_number > kMaxJpegScans) {
        auto* st = reinterpret_cast<JpegState*>(c->err);
        std::snprintf(st->message, sizeof st->message, "more than %d scans", kMaxJpegScans);
        longjmp(st->jump, 1);
    }
}

// The decoding proper. No object with a destructor lives in this frame, so the error exit's
// jump back into it skips nothing.
bool JpegDecode(JpegState* st, ByteSpan file) {
    j_decompress_ptr info = &st->info;
    if (setjmp(st->jump))
        return false;
    jpeg_mem_src(info, file.data(), static_cast<unsigned long>(file.size()));
    jpeg_read_header(info, TRUE);
    if (!SizeAllowed(info->image_width, info->image_height, u"JPEG", *st->reason)) {
        st->sizeRefused = true;
        return false;
    }
    const bool cmyk = info->jpeg_color_space == JCS_CMYK || info->jpeg_color_space == JCS_YCCK;
    info->out_color_space = cmyk ? JCS_CMYK : JCS_RGB;
    jpeg_start_decompress(info);
    const int w = static_cast<int>(info->output_width);
    const int h = static_cast<int>(info->output_height);
    const int channels = info->output_components;
    if (w != static_cast<int>(info->image_width) || h != static_cast<int>(info->image_height) ||
        channels != (cmyk ? 4 : 3)) {
        std::snprintf(st->message, sizeof st->message, "unexpected output layout");
        return false;
    }
    JSAMPARRAY row = (*info->mem->alloc_sarray)(reinterpret_cast<j_common_ptr>(info), JPOOL_IMAGE,
                                                static_cast<JDIMENSION>(w * channels), 1);
    st->out->colours = RgbCanvas(w, h);
    while (info->output_scanline < info->output_height) {
        const int y = static_cast<int>(info->output_scanline);
        if (jpeg_read_scanlines(info, row, 1) != 1) {
            std::snprintf(st->message, sizeof st->message, "no scanline %d", y);
            return false;
        }
        const JSAMPLE* p = row[0];
        for (int x = 0; x < w; ++x, p += channels) {
            if (cmyk) {
                // Adobe's files store the inks inverted: each colour is ink x black / 255.
                auto mix = [&](int i) {
                    return static_cast<std::uint8_t>((p[i] * p[3] + 127) / 255);
                };
                st->out->colours.At(x, y) = RgbPixel(mix(0), mix(1), mix(2));
            } else {
                st->out->colours.At(x, y) = RgbPixel(p[0], p[1], p[2]);
            }
        }
    }
    jpeg_finish_decompress(info);
    return true;
}

std::optional<DecodedPicture> LoadJpeg(ByteSpan file, std::u16string& reason) {
    JpegState st;
    DecodedPicture picture;
    st.out = &picture;
    st.reason = &reason;
    st.info.err = jpeg_std_error(&st.err);
    st.err.error_exit = JpegFail;
    st.err.emit_message = JpegMessage;
    jpeg_create_decompress(&st.info);
    st.info.mem->max_memory_to_use = kMaxJpegMemory;
    st.progress.progress_monitor = JpegProgress;
    st.info.progress = &st.progress;
    bool ok = false;
    try {
        ok = JpegDecode(&st, file);
    } catch (const std::bad_alloc&) {
        std::snprintf(st.message, sizeof st.message, "out of memory");
    }
    jpeg_destroy_decompress(&st.info);
    if (ok)
        return picture;
    if (!st.sizeRefused)
        reason = u"JPEG: " + Widen(st.message);
    return std::nullopt;
}

// PNG (libpng) --------------------------------------------------------------------------------

constexpr png_alloc_size_t kMaxPngChunk = 8u << 20;  // text, profiles: a logo needs none large
constexpr png_uint_32 kMaxPngAncillaryChunks = 128;

struct PngState {
    ByteSpan file;
    std::size_t at = 0;
    char message[200] = {};
    Bytes rgba;
    std::vector<png_bytep> rows;
    std::u16string* reason = nullptr;
    bool sizeRefused = false;
};

void PngRead(png_structp png, png_bytep data, png_size_t length) {
    auto* st = static_cast<PngState*>(png_get_io_ptr(png));
    if (length > st->file.size() - st->at)
        png_error(png, "file ends inside a chunk");
    std::memcpy(data, st->file.data() + st->at, length);
    st->at += length;
}

void PngFail(png_structp png, png_const_charp message) {
    auto* st = static_cast<PngState*>(png_get_error_ptr(png));
    std::snprintf(st->message, sizeof st->message, "%s", message);
    png_longjmp(png, 1);
}

void PngWarning(png_structp, png_const_charp) {}

// The decoding proper; the error exit jumps back here, where no object has a destructor.
bool PngDecode(PngState* st, png_structp png, png_infop info) {
    if (setjmp(png_jmpbuf(png)))
        return false;
    png_set_read_fn(png, st, PngRead);
    png_set_user_limits(png, kMaxPictureSide, kMaxPictureSide);
    png_set_chunk_malloc_max(png, kMaxPngChunk);
    png_set_chunk_cache_max(png, kMaxPngAncillaryChunks);
    png_read_info(png, info);
    const png_uint_32 w = png_get_image_width(png, info);
    const png_uint_32 h = png_get_image_height(png, info);
    if (!SizeAllowed(w, h, u"PNG", *st->reason)) {
        st->sizeRefused = true;
        return false;
    }
    // Whatever the file holds becomes 8-bit RGBA: palettes and grey expanded, a transparent
    // colour turned into alpha, 16-bit samples cut to their high byte.
    png_set_expand(png);
    png_set_strip_16(png);
    png_set_gray_to_rgb(png);
    png_set_filler(png, 0xFF, PNG_FILLER_AFTER);
    png_set_interlace_handling(png);
    png_read_update_info(png, info);
    if (png_get_rowbytes(png, info) != static_cast<png_size_t>(w) * 4)
        png_error(png, "unexpected row layout");
    st->rgba.resize(static_cast<std::size_t>(w) * h * 4);
    st->rows.resize(h);
    for (png_uint_32 y = 0; y < h; ++y) st->rows[y] = st->rgba.data() + std::size_t{y} * w * 4;
    png_read_image(png, st->rows.data());
    png_read_end(png, nullptr);
    return true;
}

std::optional<DecodedPicture> LoadPng(ByteSpan file, std::u16string& reason) {
    PngState st;
    st.file = file;
    st.reason = &reason;
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &st, PngFail, PngWarning);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    if (!info) {
        png_destroy_read_struct(&png, nullptr, nullptr);
        reason = u"PNG: out of memory";
        return std::nullopt;
    }
    bool ok = false;
    try {
        ok = PngDecode(&st, png, info);
    } catch (const std::bad_alloc&) {
        std::snprintf(st.message, sizeof st.message, "out of memory");
    }
    const png_uint_32 w = png_get_image_width(png, info);
    const png_uint_32 h = png_get_image_height(png, info);
    png_destroy_read_struct(&png, &info, nullptr);
    if (!ok) {
        if (!st.sizeRefused)
            reason = u"PNG: " + Widen(st.message);
        return std::nullopt;
    }
    DecodedPicture picture;
    picture.colours = RgbCanvas(static_cast<int>(w), static_cast<int>(h));
    const std::uint8_t* p = st.rgba.data();
    for (std::size_t i = 0; i < picture.colours.pixels.size(); ++i, p += 4) {
        picture.colours.pixels[i] = RgbPixel(p[0], p[1], p[2]);
        KeepTransparency(picture, i, p[3]);
    }
    return picture;
}

// GIF (giflib) --------------------------------------------------------------------------------

struct GifInput {
    ByteSpan file;
    std::size_t at = 0;
};

int GifRead(GifFileType* gif, GifByteType* data, int length) {
    auto* in = static_cast<GifInput*>(gif->UserData);
    const std::size_t n = std::min<std::size_t>(static_cast<std::size_t>(std::max(length, 0)),
                                                in->file.size() - in->at);
    std::memcpy(data, in->file.data() + in->at, n);
    in->at += n;
    return static_cast<int>(n);
}

struct GifCloser {
    void operator()(GifFileType* gif) const {
        int error = 0;
        DGifCloseFile(gif, &error);
    }
};

// The first image of the file on its logical screen; the screen outside it is transparent.
std::optional<DecodedPicture> LoadGif(ByteSpan file, std::u16string& reason) {
    GifInput in{file, 0};
    int error = 0;
    std::unique_ptr<GifFileType, GifCloser> gif(DGifOpen(&in, GifRead, &error));
    auto fail = [&](int code) {
        reason = u"GIF: " + Widen(GifErrorString(code));
        return std::nullopt;
    };
    if (!gif)
        return fail(error);
    if (!SizeAllowed(gif->SWidth, gif->SHeight, u"GIF", reason))
        return std::nullopt;
    int transparentIndex = NO_TRANSPARENT_COLOR;
    for (;;) {
        GifRecordType type = UNDEFINED_RECORD_TYPE;
        if (DGifGetRecordType(gif.get(), &type) == GIF_ERROR)
            return fail(gif->Error);
        if (type == TERMINATE_RECORD_TYPE) {
            reason = u"GIF: no image";
            return std::nullopt;
        }
        if (type == EXTENSION_RECORD_TYPE) {
            int code = 0;
            GifByteType* block = nullptr;
            if (DGifGetExtension(gif.get(), &code, &block) == GIF_ERROR)
                return fail(gif->Error);
            GraphicsControlBlock control;
            if (code == GRAPHICS_EXT_FUNC_CODE && block &&
                DGifExtensionToGCB(block[0], block + 1, &control) == GIF_OK) {
                transparentIndex = control.TransparentColor;
            }
            while (block) {
                if (DGifGetExtensionNext(gif.get(), &block) == GIF_ERROR)
                    return fail(gif->Error);
            }
            continue;
        }
        if (type != IMAGE_DESC_RECORD_TYPE)
            continue;
        if (DGifGetImageDesc(gif.get()) == GIF_ERROR)
            return fail(gif->Error);
        break;
    }
    const GifImageDesc& frame = gif->Image;
    if (frame.Left < 0 || frame.Top < 0 || frame.Width < 0 || frame.Height < 0 ||
        std::int64_t{frame.Left} + frame.Width > gif->SWidth ||
        std::int64_t{frame.Top} + frame.Height > gif->SHeight) {
        reason = u"GIF: image outside the logical screen";
        return std::nullopt;
    }
    const ColorMapObject* map = frame.ColorMap ? frame.ColorMap : gif->SColorMap;
    if (!map) {
        reason = u"GIF: no colour table";
        return std::nullopt;
    }
    DecodedPicture picture;
    picture.colours = RgbCanvas(gif->SWidth, gif->SHeight);
    picture.transparent.assign(picture.colours.pixels.size(), 1);
    std::vector<GifPixelType> line(static_cast<std::size_t>(frame.Width));
    // Interlaced rows come in four passes: every 8th from 0, every 8th from 4, every 4th from
    // 2, every 2nd from 1.
    static constexpr int kStart[4] = {0, 4, 2, 1}, kStep[4] = {8, 8, 4, 2};
    const int passes = frame.Interlace ? 4 : 1;
    for (int pass = 0; pass < passes; ++pass) {
        const int start = frame.Interlace ? kStart[pass] : 0;
        const int step = frame.Interlace ? kStep[pass] : 1;
        for (int row = start; row < frame.Height; row += step) {
            if (DGifGetLine(gif.get(), line.data(), frame.Width) == GIF_ERROR)
                return fail(gif->Error);
            for (int x = 0; x < frame.Width; ++x) {
                const int index = line[static_cast<std::size_t>(x)];
                if (index == transparentIndex)
                    continue;
                const std::size_t i = static_cast<std::size_t>(frame.Top + row) * gif->SWidth +
                                      static_cast<std::size_t>(frame.Left + x);
                const GifColorType c =
                    index < map->ColorCount ? map->Colors[index] : GifColorType{0, 0, 0};
                picture.colours.pixels[i] = RgbPixel(c.Red, c.Green, c.Blue);
                picture.transparent[i] = 0;
            }
        }
    }
    return picture;
}

class NativePicture : public Picture {
  public:
    explicit NativePicture(DecodedPicture picture) : picture_(std::move(picture)) {}

    std::int32_t HimetricWidth() const override {
        return MulDiv(picture_.colours.width, 2540, NativePictures::kScreenDpi);
    }
    std::int32_t HimetricHeight() const override {
        return MulDiv(picture_.colours.height, 2540, NativePictures::kScreenDpi);
    }
    bool Render(RgbCanvas& canvas, int left, int top, int width, int height) override {
        return StretchPicture(picture_, canvas, left, top, width, height);
    }

  private:
    DecodedPicture picture_;
};

}  // namespace

std::unique_ptr<Picture> NativePictures::Load(ByteSpan file) {
    refusal_.clear();
    std::optional<DecodedPicture> picture;
    switch (Sniff(file)) {
        case Kind::Bitmap:
            picture = ReadBmp(file, BmpLimits{kMaxPictureSide, kMaxDecodedPixels}, refusal_);
            break;
        case Kind::Png:
            picture = LoadPng(file, refusal_);
            break;
        case Kind::Jpeg:
            picture = LoadJpeg(file, refusal_);
            break;
        case Kind::Gif:
            picture = LoadGif(file, refusal_);
            if (picture && std::find(picture->transparent.begin(), picture->transparent.end(),
                                     1) == picture->transparent.end()) {
                picture->transparent.clear();
            }
            break;
        case Kind::Unknown:
            refusal_ = u"not a bitmap, PNG, JPEG or GIF file";
            break;
    }
    if (!picture) {
        DrvTrace(u"LoadPicture - %s\n", refusal_);
        return nullptr;
    }
    return std::make_unique<NativePicture>(std::move(*picture));
}

// Writers -----------------------------------------------------------------------------------

Bytes EncodePng(const RgbCanvas& canvas, const std::vector<std::uint8_t>* alpha) {
    if (canvas.width <= 0 || canvas.height <= 0)
        return {};
    if (alpha && alpha->size() != canvas.pixels.size())
        return {};
    const int channels = alpha ? 4 : 3;
    std::vector<std::uint8_t> samples(canvas.pixels.size() * static_cast<std::size_t>(channels));
    for (std::size_t i = 0; i < canvas.pixels.size(); ++i) {
        std::uint8_t* out = samples.data() + i * static_cast<std::size_t>(channels);
        out[0] = RedOf(canvas.pixels[i]);
        out[1] = GreenOf(canvas.pixels[i]);
        out[2] = BlueOf(canvas.pixels[i]);
        if (alpha)
            out[3] = (*alpha)[i];
    }
    png_image image;
    std::memset(&image, 0, sizeof image);
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(canvas.width);
    image.height = static_cast<png_uint_32>(canvas.height);
    image.format = alpha ? PNG_FORMAT_RGBA : PNG_FORMAT_RGB;
    png_alloc_size_t size = 0;
    if (!png_image_write_to_memory(&image, nullptr, &size, 0, samples.data(), 0, nullptr))
        return {};
    Bytes out(size);
    if (!png_image_write_to_memory(&image, out.data(), &size, 0, samples.data(), 0, nullptr))
        return {};
    out.resize(size);
    return out;
}

namespace {

struct JpegWriter {
    jpeg_error_mgr err;
    jmp_buf jump;
    jpeg_compress_struct info;
    unsigned char* buffer = nullptr;
    unsigned long size = 0;
};

void JpegWriteFail(j_common_ptr c) { longjmp(reinterpret_cast<JpegWriter*>(c->err)->jump, 1); }

bool JpegEncode(JpegWriter* w, const std::uint8_t* rgb, int width, int height, int quality) {
    if (setjmp(w->jump))
        return false;
    jpeg_mem_dest(&w->info, &w->buffer, &w->size);
    w->info.image_width = static_cast<JDIMENSION>(width);
    w->info.image_height = static_cast<JDIMENSION>(height);
    w->info.input_components = 3;
    w->info.in_color_space = JCS_RGB;
    jpeg_set_defaults(&w->info);
    jpeg_set_quality(&w->info, quality, TRUE);
    jpeg_start_compress(&w->info, TRUE);
    while (w->info.next_scanline < w->info.image_height) {
        JSAMPROW row = const_cast<JSAMPROW>(rgb + std::size_t{w->info.next_scanline} *
                                                      static_cast<std::size_t>(width) * 3);
        jpeg_write_scanlines(&w->info, &row, 1);
    }
    jpeg_finish_compress(&w->info);
    return true;
}

}  // namespace

Bytes EncodeJpeg(const RgbCanvas& canvas, int quality) {
    if (canvas.width <= 0 || canvas.height <= 0 || quality < 1 || quality > 100)
        return {};
    std::vector<std::uint8_t> rgb(canvas.pixels.size() * 3);
    for (std::size_t i = 0; i < canvas.pixels.size(); ++i) {
        rgb[3 * i] = RedOf(canvas.pixels[i]);
        rgb[3 * i + 1] = GreenOf(canvas.pixels[i]);
        rgb[3 * i + 2] = BlueOf(canvas.pixels[i]);
    }
    JpegWriter w;
    w.info.err = jpeg_std_error(&w.err);
    w.err.error_exit = JpegWriteFail;
    jpeg_create_compress(&w.info);
    const bool ok = JpegEncode(&w, rgb.data(), canvas.width, canvas.height, quality);
    jpeg_destroy_compress(&w.info);
    Bytes out;
    if (ok && w.buffer)
        out.assign(w.buffer, w.buffer + w.size);
    std::free(w.buffer);
    return out;
}

}  // namespace kx20
