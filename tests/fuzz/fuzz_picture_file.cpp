// Picture files as a user may choose them: any bytes through the native loader and the whole
// logo conversion, for both forms, scaled or not. The first byte picks the form; the rest is
// the file. On the first run the corpus folder gets a few pictures made here to start from.
#include <sys/stat.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

#include "logos/raster_conversion.h"
#include "platform/memory/stb_pictures.h"

namespace {

using namespace kx20;

RgbCanvas Sample(int w, int h) {
    RgbCanvas c(w, h);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            c.At(x, y) =
                RgbPixel(static_cast<std::uint8_t>(x * 40), static_cast<std::uint8_t>(y * 60),
                         static_cast<std::uint8_t>((x ^ y) * 90));
    return c;
}

Bytes Bitmap(const RgbCanvas& c) {
    const std::uint32_t stride = (static_cast<std::uint32_t>(c.width) * 3 + 3) & ~3u;
    Bytes f = {'B', 'M'};
    for (std::uint32_t v :
         {54 + stride * c.height, 0u, 54u, 40u, static_cast<std::uint32_t>(c.width),
          static_cast<std::uint32_t>(c.height)})
        AppendU32(f, v);
    AppendU16(f, 1);
    AppendU16(f, 24);
    for (std::uint32_t v : {0u, stride * c.height, 0u, 0u, 0u, 0u}) AppendU32(f, v);
    for (int y = c.height - 1; y >= 0; --y) {
        for (int x = 0; x < c.width; ++x) {
            AppendU8(f, BlueOf(c.At(x, y)));
            AppendU8(f, GreenOf(c.At(x, y)));
            AppendU8(f, RedOf(c.At(x, y)));
        }
        for (std::uint32_t i = static_cast<std::uint32_t>(c.width) * 3; i < stride; ++i)
            AppendU8(f, 0);
    }
    return f;
}

void WriteSeed(const std::string& folder, const char* name, std::uint8_t form, const Bytes& file) {
    std::FILE* f = std::fopen((folder + "/" + name).c_str(), "wb");
    if (!f)
        return;
    std::fputc(form, f);
    std::fwrite(file.data(), 1, file.size(), f);
    std::fclose(f);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    for (int i = 1; i < *argc; ++i) {
        const std::string arg = (*argv)[i];
        struct stat st;
        if (arg.empty() || arg[0] == '-' || stat(arg.c_str(), &st) != 0 || !S_ISDIR(st.st_mode))
            continue;
        const RgbCanvas c = Sample(7, 5);
        std::vector<std::uint8_t> alpha(c.pixels.size(), 255);
        alpha[3] = 0;
        WriteSeed(arg, "seed-bmp", 0, Bitmap(c));
        WriteSeed(arg, "seed-png", 1, EncodePng(c));
        WriteSeed(arg, "seed-png-alpha", 2, EncodePng(c, &alpha));
        WriteSeed(arg, "seed-jpeg", 3, EncodeJpeg(Sample(16, 9), 80));
        // One transparent pixel: header, two-colour table, transparency, image, LZW data.
        WriteSeed(arg, "seed-gif", 0,
                  Bytes{'G', 'I',  'F',  '8',  '9',  'a',  1, 0, 1, 0,    0x80, 0, 0,    0, 0,
                        0,   0xFF, 0xFF, 0xFF, 0x21, 0xF9, 4, 1, 0, 0,    0,    0, 0x2C, 0, 0,
                        0,   0,    1,    0,    1,    0,    0, 2, 2, 0x44, 1,    0, 0x3B});
        break;
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1)
        return 0;
    const bool fullWidth = (data[0] & 1) == 0;
    const bool scale = (data[0] & 2) == 0;
    StbPictures pictures;
    auto opened = OpenPictureBytes(pictures, ByteSpan(data + 1, size - 1));
    // Large pictures are legitimate but slow under the sanitizers; their paths are the same.
    if (!opened || static_cast<std::int64_t>(opened->size.width) * opened->size.height > (1 << 22))
        return 0;
    const logos::LogoLimits limits = logos::LimitsFor(fullWidth);
    auto raster = logos::ConvertOpenedPicture(*opened, limits, scale);
    if (!raster)
        return 0;
    if (raster->width > limits.maxWidth || raster->height > limits.maxHeight ||
        raster->bits.size() != static_cast<std::size_t>(raster->width / 8) * raster->height) {
        __builtin_trap();
    }
    if (!fullWidth) {
        const Bytes bands = logos::RegroupToColumnBands(*raster);
        auto back = logos::ColumnBandsToRows(bands, raster->width, raster->height);
        if (!back || back->bits != raster->bits)
            __builtin_trap();
    }
    return 0;
}
