// The simulated port monitor's work for one call, over the file and registry ports, so that the
// monitor module (one process) and test programs (other processes) share one printer per port
// through a state file:
//   1. load the port's printer from its state file (a fresh printer when there is none);
//   2. take in the raw job bytes the spooler wrote into the port's file, when the port is a
//      unix file path such as /tmp/x/port.prn (read as Z:\tmp\x\port.prn), then empty the file;
//   3. answer the call;
//   4. save the printer and publish the port's values in the registry.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/bytes.h"
#include "platform/files.h"
#include "platform/monitor.h"
#include "platform/registry.h"

namespace kx20::sim {

// The state could not be saved: the call's effect would be lost.
inline constexpr std::uint32_t kErrStateNotSaved = 29;  // write fault

struct MonitorHost {
    FileSystem& files;
    Registry& registry;
    std::u16string stateFolder;  // without a trailing separator
};

// The port's state file: folder \ <port name with characters other than letters, digits,
// '.', '_', '-' replaced by '_'> - <CRC-32 of the lower-cased name, 8 hex digits> .kx20sim
std::u16string StateFilePath(std::u16string_view folder, std::u16string_view portName);
// "Z:" + the path with '/' turned into '\' for a port that is a unix path; empty otherwise.
std::u16string PortFileDosPath(std::u16string_view portName);

std::uint32_t MonitorSendCommand(MonitorHost& host, std::u16string_view portName,
                                 const std::u16string* printerName, ByteSpan command,
                                 MonitorReply& reply);
std::uint32_t MonitorControl(MonitorHost& host, std::u16string_view portName,
                             std::u16string_view command);
// The printer's state and log as text (after taking in waiting job bytes).
std::u16string MonitorDescribe(MonitorHost& host, std::u16string_view portName);

}  // namespace kx20::sim
