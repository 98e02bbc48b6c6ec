// The logo and message blocks as the printer receives them in a raw job.
//
// Logo: START, 0x0F, number, width / 8, height / 8, the raster (rows, or column bands for the
// narrow form), 0xFF.
// Message: START, 0x10, number, START, 0x00, the text (the low byte of each character, line
// feeds left out, no code-page conversion), START, 0x11, START, 0x00: text length + 65 bytes
// less one per line feed, so the zero pad byte always follows the final marker.
#pragma once

#include <cstdint>
#include <string_view>

#include "platform/bytes.h"

namespace kx20::logos {

inline constexpr std::uint8_t kLogoCommand = 0x0F;
inline constexpr std::uint8_t kMessageStart = 0x10;
inline constexpr std::uint8_t kMessageEnd = 0x11;
inline constexpr std::uint8_t kLogoEnd = 0xFF;
inline constexpr std::size_t kLogoPayloadOverhead = 20;
inline constexpr std::size_t kMessagePayloadOverhead = 65;

// Empty when the raster does not hold width x height / 8 bytes, or width / 8 or height / 8
// does not fit in its byte.
Bytes BuildLogoPayload(std::uint8_t number, int width, int height, ByteSpan raster);
Bytes BuildMessagePayload(std::uint8_t number, std::u16string_view text);

}  // namespace kx20::logos
