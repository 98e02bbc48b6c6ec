// What the port monitor of the simulated printer shows in the registry, under the monitor's key
// for the printer's port:
//   ConnectionStatus  binary, 12 bytes: 1 (valid), connected (1/0), model code, firmware level,
//                     8 identity characters (ANSI). Byte 0 is 0 while the publication is
//                     invalidated; the value is deleted while it is removed.
//   TYPE              DWORD: 1 on a serial port, 0 otherwise.
//   LogosCRC, MessagesCRC, SBCSThermalCRC, DBCSThermalCRC, DBCSImpactCRC
//                     binary, the 4 checksum bytes of areas 1, 2, 4, 6, 7 as the printer
//                     answers them; written while the printer is connected (so they keep the
//                     last known values while it is not), only for the areas of its model.
#pragma once

#include <string>
#include <string_view>

#include "platform/bytes.h"
#include "platform/registry.h"
#include "sim/sim_state.h"

namespace kx20::sim {

inline constexpr std::size_t kConnectionStatusBytes = 12;

// Monitors root + monitor name + "\Ports\" + port name.
std::u16string PortKeyPathOf(std::u16string_view portName);
Bytes ConnectionStatusRecord(const PrinterState& state);
// Writes the values above into the local-machine hive; false when a write failed.
bool PublishPort(Registry& registry, const PrinterState& state);

}  // namespace kx20::sim
