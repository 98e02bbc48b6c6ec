#include "channel/printer_hours.h"

namespace kx20::channel {

bool WithinAvailabilityHours(std::uint32_t startTime, std::uint32_t untilTime,
                             const LocalTime& utcNow) {
    if (startTime == 0 && untilTime == 0)
        return true;
    const auto minutes = static_cast<std::uint32_t>(utcNow.hour * 60 + utcNow.minute);
    return minutes >= startTime && minutes < untilTime;
}

bool IsWithinAvailabilityHours(Platform& p, std::u16string_view printerName) {
    auto printer = p.spooler.OpenPrinter(printerName, kPrinterAccessUse, nullptr);
    PrinterInfo info;
    if (!printer || !printer->GetPrinter(2, info))
        return true;
    return WithinAvailabilityHours(info.startTime, info.untilTime, p.clock.UtcNow());
}

}  // namespace kx20::channel
