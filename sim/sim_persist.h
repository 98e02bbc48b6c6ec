// The simulated printer's state as a byte file, so that several processes (the simulated port
// monitor loaded by one, test programs in others) reach the same printer.
//
// File layout (little-endian): "KX20SIMS", u32 format version, u32 payload length, u32 CRC-32
// of the payload, payload. The reader checks every length against the bytes that remain; a file
// that fails any check is treated as damaged.
#pragma once

#include <string>
#include <string_view>

#include "platform/bytes.h"
#include "platform/files.h"
#include "sim/sim_state.h"

namespace kx20::sim {

inline constexpr std::uint32_t kStateFormatVersion = 1;

Bytes SerializeState(const PrinterState& state);
// False with a reason when the bytes are not a state of this format; `out` is then untouched.
bool DeserializeState(ByteSpan data, PrinterState& out, std::u16string& problem);

// The printer of `portName` from the file: a fresh printer when there is no file; a fresh
// printer with a rejected log record when the file cannot be read, is damaged, or belongs to
// another port.
PrinterState LoadState(FileSystem& files, std::u16string_view path, std::u16string_view portName);
// Writes the state beside the file and then puts it in place of the old one.
bool SaveState(FileSystem& files, std::u16string_view path, const PrinterState& state);

}  // namespace kx20::sim
