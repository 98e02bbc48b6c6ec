// The status line that the device pages show in their control 1213: the printer model of the
// port's connection status in string 2200, or string 2201 when the status is not available.
// Each page decides when string 2202 follows the model text.
#pragma once

#include <cstdint>
#include <string>

#include "platform/resources.h"

namespace kx20 {

inline constexpr std::uint32_t kStatusModelTextId = 2200;  // formatted with the model's text
inline constexpr std::uint32_t kStatusUnavailableId = 2201;
inline constexpr std::uint32_t kStatusSuffixId = 2202;

// The string id of a model code's text: 2210 to 2218 for the codes 0 to 5, 7, 8 and 9; 0 for a
// code the printer family does not use.
std::uint32_t ModelTextId(std::uint32_t modelCode);

// String 2200 formatted with the model's text; a code without a text shows an empty one.
std::u16string ModelStatusText(ResourceStrings& strings, std::uint32_t modelCode);

}  // namespace kx20
