// Command channel port: the port monitor module's command entry, loaded for one operation.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/bytes.h"

namespace kx20 {

// What the monitor handed back for one command. `reportedLength` is the length the monitor
// stated; `data` holds the reply bytes that really came back (never more than the monitor's
// buffer holds, never more than the stated length). `hasBuffer` tells whether a reply buffer
// came back at all.
struct MonitorReply {
    std::uint32_t reportedLength = 0;
    bool hasBuffer = false;
    Bytes data;
};

enum class MonitorLoad { Loaded, LibraryMissing, EntryMissing };

// The monitor module while it is loaded; destroying it releases the module.
class MonitorSession {
  public:
    virtual ~MonitorSession() = default;
    // One call of the command entry. `printerName` may be null. Answers the entry's result
    // (0 = success).
    virtual std::uint32_t Send(std::u16string_view portName, const std::u16string* printerName,
                               ByteSpan command, MonitorReply& reply) = 0;
};

class CommandChannel {
  public:
    virtual ~CommandChannel() = default;
    // Loads the monitor module and finds its command entry. On failure `status` tells which
    // step failed, `lastError` holds the system error code, and the result is null.
    virtual std::unique_ptr<MonitorSession> Load(MonitorLoad& status, std::uint32_t& lastError) = 0;
};

}  // namespace kx20
