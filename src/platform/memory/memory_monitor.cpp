#include "platform/memory/memory_monitor.h"

namespace kx20 {

namespace {

class MemoryMonitorSession : public MonitorSession {
  public:
    explicit MemoryMonitorSession(MemoryCommandChannel& c) : c_(c) {}
    ~MemoryMonitorSession() override { ++c_.releases; }

    std::uint32_t Send(std::u16string_view port, const std::u16string* printerName,
                       ByteSpan command, MonitorReply& reply) override {
        MemoryCommandChannel::Call call;
        call.port = std::u16string(port);
        call.hasPrinterName = printerName != nullptr;
        if (printerName)
            call.printerName = *printerName;
        call.command.assign(command.begin(), command.end());
        c_.calls.push_back(std::move(call));
        reply = MonitorReply{};
        if (!c_.handler)
            return 0;
        std::uint32_t rc = c_.handler(port, printerName, command, reply);
        // The stated length never exceeds what came back, as the Win32 adapter guarantees.
        if (reply.data.size() > reply.reportedLength)
            reply.data.resize(reply.reportedLength);
        return rc;
    }

  private:
    MemoryCommandChannel& c_;
};

}  // namespace

std::unique_ptr<MonitorSession> MemoryCommandChannel::Load(MonitorLoad& status,
                                                           std::uint32_t& lastError) {
    status = loadResult;
    if (loadResult != MonitorLoad::Loaded) {
        lastError = loadError;
        return nullptr;
    }
    lastError = 0;
    ++loads;
    return std::make_unique<MemoryMonitorSession>(*this);
}

}  // namespace kx20
