// The device pages' name for the one rig (tests/unit/printer_rig.h).
#pragma once

#include "tests/unit/printer_rig.h"

namespace kx20 {
class DevicePageTest : public PrinterRig {
  protected:
    std::u16string Str(std::uint32_t id) { return Text(id); }
    std::vector<int> Erased() const { return Erases(); }
};
}  // namespace kx20
