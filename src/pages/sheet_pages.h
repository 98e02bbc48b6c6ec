// The pages of the two sheets: template and title ids, in the order the pages are added.
#pragma once

#include <array>
#include <cstdint>

namespace kx20 {

inline constexpr std::array<std::uint32_t, 5> kDevicePages = {1007, 1008, 1009, 1010, 1011};
inline constexpr std::array<std::uint32_t, 4> kDocumentPages = {1003, 1004, 1005, 1006};

}  // namespace kx20
