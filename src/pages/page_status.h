// The printer status line that every device page shows (control 1213): string 2200 with the
// connected model's name, string 2202 appended when the printer reports no firmware level, or
// string 2201 when the port has no usable connection status.
#pragma once

#include <cstdint>
#include <string>

#include "platform/resources.h"
#include "store/registry_layout.h"

namespace kx20 {

inline constexpr std::uint32_t kStringStatusModel = 2200;  // "... %s ..."
inline constexpr std::uint32_t kStringStatusNoPrinter = 2201;
inline constexpr std::uint32_t kStringStatusNoFirmware = 2202;

// The string naming a model: 2210-2218 for model codes 0, 1, 2, 3, 4, 5, 7, 8, 9; a code
// outside that list is named as code 0 is.
std::uint32_t ModelNameStringId(std::uint32_t modelCode);

// String 2200 with the model's name, and string 2202 after it when `markNotReady`.
std::u16string ModelStatusText(ResourceStrings& strings, std::uint32_t modelCode,
                               bool markNotReady);

// `status` null: the port has no usable status.
std::u16string PrinterStatusText(ResourceStrings& strings, const store::ConnectionStatus* status);

}  // namespace kx20
