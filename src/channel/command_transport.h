// The command channel: short binary commands handed to the port monitor's command entry, with
// the printer's reply. The monitor module is loaded around every operation and released after
// it, so nothing of it outlives the operation; the printer's port is looked up once per
// operation.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/bytes.h"
#include "platform/monitor.h"
#include "platform/platform.h"

namespace kx20::channel {

// How one command went. `Ok` is the entry's result 0; `Failed` any other result.
enum class CommandStatus { Ok, Failed, LibraryMissing, EntryMissing };

struct CommandResult {
    CommandStatus status = CommandStatus::LibraryMissing;
    // The entry's result for Ok/Failed, the system error code when the module did not load.
    std::uint32_t code = 0;
    bool ok() const { return status == CommandStatus::Ok; }
};

// One operation on the command channel: loads the monitor module and finds its command entry,
// then looks up the printer's port; the module is released when the operation ends. Several
// commands may be sent while it lives.
class MonitorOperation {
  public:
    MonitorOperation(Platform& p, std::u16string_view printerName);
    MonitorOperation(const MonitorOperation&) = delete;
    MonitorOperation& operator=(const MonitorOperation&) = delete;

    bool Loaded() const { return session_ != nullptr; }
    const std::u16string& PortName() const { return portName_; }

    // Sends one command. With `passPrinterName` the monitor receives the printer name, otherwise
    // none. `reply` is cleared first and receives what the monitor handed back.
    CommandResult Send(ByteSpan command, bool passPrinterName, MonitorReply& reply);
    // The same, for commands whose reply is not read.
    CommandResult Send(ByteSpan command, bool passPrinterName);

  private:
    CommandResult NotLoaded() const;

    std::u16string printerName_;
    std::u16string portName_;
    MonitorLoad loadStatus_ = MonitorLoad::Loaded;
    std::uint32_t loadError_ = 0;
    std::unique_ptr<MonitorSession> session_;
};

// One command in an operation of its own: load, look up the port, send, release.
CommandResult SendPrinterCommand(Platform& p, std::u16string_view printerName, bool passPrinterName,
                                 ByteSpan command, MonitorReply& reply);

// True when the monitor stated a non-zero reply length, handed a buffer back, and that buffer
// holds at least the `bytes` bytes the caller copies out of it. A reply shorter than what is
// copied counts as no reply, so nothing is ever read past its end.
bool ReplyHolds(const MonitorReply& reply, std::size_t bytes);

}  // namespace kx20::channel
