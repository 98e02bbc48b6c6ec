#include "channel/printer_hours.h"

namespace kx20::channel {

bool IsWithinAvailabilityHours(Platform& p, std::u16string_view printerName) {
    auto printer = p.spooler.OpenPrinter(printerName, kPrinterAccessUse, nullptr);
    PrinterInfo info;
    if (!printer || !printer->GetPrinter(2, info))
        return true;
    if (info.startTime == 0 && info.untilTime == 0)
        return true;
    const LocalTime now = p.clock.UtcNow();
    const auto minutes = static_cast<std::uint32_t>(now.hour * 60 + now.minute);
    return minutes >= info.startTime && minutes < info.untilTime;
}

}  // namespace kx20::channel
