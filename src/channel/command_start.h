// The command start marker: every command inside a logo, message, font or firmware block
// begins with these 15 bytes, the letters CMDStart with 0x01 after each but the last.
#pragma once

#include <array>
#include <cstdint>

namespace kx20::channel {

inline constexpr std::array<std::uint8_t, 15> kCommandStart = {
    0x43, 0x01, 0x4D, 0x01, 0x44, 0x01, 0x53, 0x01, 0x74, 0x01, 0x61, 0x01, 0x72, 0x01, 0x74};

}  // namespace kx20::channel
