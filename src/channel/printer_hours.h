// The hours a printer takes jobs, as the spooler keeps them for it: the pages refuse to start a
// download or a firmware update outside them.
#pragma once

#include <string_view>

#include "platform/platform.h"

namespace kx20::channel {

// True when `startTime` and `untilTime` (minutes after midnight UTC) are both 0, or the UTC
// time of day lies in [start, until).
bool WithinAvailabilityHours(std::uint32_t startTime, std::uint32_t untilTime,
                             const LocalTime& utcNow);

// True when the printer's start and until times (minutes after midnight UTC, level-2
// information) are both 0, or the current UTC time as hour x 60 + minute is at least the start
// time and less than the until time. A printer whose information cannot be read is not held
// back: the job channel reports on it.
bool IsWithinAvailabilityHours(Platform& p, std::u16string_view printerName);

}  // namespace kx20::channel
