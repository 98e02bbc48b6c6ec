// A bounded reader of bitmap files ("BM"): uncompressed rows of 1, 4, 8, 16, 24 or 32 bits a
// pixel, with a colour table or bit-field masks, bottom-up or top-down, under any of the
// information headers (12, 40, 52, 56, 64, 108 or 124 bytes). Run-length compressed and
// embedded JPEG/PNG bitmaps are refused. Every read is checked against the file before it is
// made; the size is checked against the caller's limit before anything is allocated. A bitmap
// file's fourth byte is ignored, as the system's render ignores it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/bytes.h"
#include "platform/picture_stretch.h"

namespace kx20 {

struct BmpLimits {
    int maxSide = 0;
    std::int64_t maxPixels = 0;
};

// The decoded colours, or nothing with `reason` set to what is wrong with the file.
std::optional<DecodedPicture> ReadBmp(ByteSpan file, BmpLimits limits, std::u16string& reason);

}  // namespace kx20
