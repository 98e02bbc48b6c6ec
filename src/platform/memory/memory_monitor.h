// In-memory command channel: the monitor's command entry answered by a handler (the simulated
// printer, or a test's recorder), with load failures that tests can switch on.
#pragma once

#include <functional>
#include <vector>

#include "platform/monitor.h"

namespace kx20 {

class MemoryCommandChannel : public CommandChannel {
  public:
    struct Call {
        std::u16string port;
        bool hasPrinterName = false;
        std::u16string printerName;
        Bytes command;
    };
    using Handler =
        std::function<std::uint32_t(std::u16string_view port, const std::u16string* printerName,
                                    ByteSpan command, MonitorReply& reply)>;

    std::unique_ptr<MonitorSession> Load(MonitorLoad& status, std::uint32_t& lastError) override;

    Handler handler;  // null: every command succeeds with no reply
    MonitorLoad loadResult = MonitorLoad::Loaded;
    std::uint32_t loadError = 126;  // module not found
    std::vector<Call> calls;        // every command sent, in order
    int loads = 0;                  // loads of the module
    int releases = 0;               // releases of the module
};

}  // namespace kx20
