// Picture files as a user may choose them: any bytes through the native loader and the whole
// logo conversion, for both forms, scaled or not. The first byte picks the form; the rest is
// the file. Seeds: tests/fuzz/seeds/fuzz_picture_file (every format, made by kx20_fuzz_seeds).
#include <sys/stat.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

#include "logos/raster_conversion.h"
#include "platform/memory/native_pictures.h"

namespace {
// Replaying given files (not exploring a folder), each refusal is printed with its reason.
bool replaying = false;
}  // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    for (int i = 1; i < *argc; ++i) {
        struct stat st;
        if ((*argv)[i][0] != '-' && stat((*argv)[i], &st) == 0 && S_ISREG(st.st_mode))
            replaying = true;
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kx20;
    if (size < 1)
        return 0;
    const bool fullWidth = (data[0] & 1) == 0;
    const bool scale = (data[0] & 2) == 0;
    NativePictures pictures;
    auto opened = OpenPictureBytes(pictures, ByteSpan(data + 1, size - 1));
    if (!opened && replaying) {
        const std::u16string& why = pictures.LastRefusal();
        std::fprintf(stderr, "picture refused: %s\n", std::string(why.begin(), why.end()).c_str());
    }
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
