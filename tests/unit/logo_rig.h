// The logo and message flows' name for the one rig (tests/unit/printer_rig.h).
#pragma once

#include "tests/unit/printer_rig.h"

namespace kx20 {
class LogoRig : public PrinterRig {};
}  // namespace kx20
