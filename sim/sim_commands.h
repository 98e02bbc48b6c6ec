// The simulated printer's answers to the port monitor's command entry.
//
//   0x15 n          erase flash area n (0x15 0x06 erases the whole double-byte flash: 6 and 7)
//   0x16 0x10 a b   stage printer setup a b; it takes effect with the next commit
//   0x05 / 0x06     commit a staged setup; 0x05 belongs to a serial port, 0x06 to any other
//   0x17 0x10       -> the 2 setup bytes
//   0x17 0x14       -> the status byte
//   0x17 n          -> configuration entry n, 2 bytes, most significant first
//   0x19 n          -> checksum of area n, 4 bytes (0 0 0 0 when empty)
//   0x6E            maintenance
//   0x78 / 0x79 / 0x7A + u32 LE   reset (immediate, buffered, serial); 0x7A only on a serial
//                                 port, 0x78 / 0x79 only on any other
// Every command is logged. An unknown class, a wrong length, an area the model lacks, a
// command for the wrong interface, a command for another port and any command while the
// printer is disconnected are refused with a non-zero result and a rejected log record.
// Erasing is allowed while the flash is write-protected; only downloads are refused then.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/bytes.h"
#include "platform/monitor.h"
#include "sim/sim_state.h"

namespace kx20::sim {

// One call of the command entry. `printerName` may be null. `reply` is replaced.
std::uint32_t HandleCommand(PrinterState& state, std::u16string_view port,
                            const std::u16string* printerName, ByteSpan command,
                            MonitorReply& reply);

}  // namespace kx20::sim
