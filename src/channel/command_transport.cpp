#include "channel/command_transport.h"

#include "store/registry_layout.h"

namespace kx20::channel {

MonitorOperation::MonitorOperation(Platform& p, std::u16string_view printerName)
    : printerName_(printerName) {
    session_ = p.monitor.Load(loadStatus_, loadError_);
    // Without the monitor there is nothing to send to, so the port is not looked up.
    if (session_)
        portName_ = store::PrinterPortName(p, printerName);
}

CommandResult MonitorOperation::NotLoaded() const {
    CommandResult r;
    r.status = loadStatus_ == MonitorLoad::EntryMissing ? CommandStatus::EntryMissing
                                                        : CommandStatus::LibraryMissing;
    r.code = loadError_;
    return r;
}

CommandResult MonitorOperation::Send(ByteSpan command, bool passPrinterName, MonitorReply& reply) {
    reply = MonitorReply{};
    if (!session_)
        return NotLoaded();
    CommandResult r;
    r.code = session_->Send(portName_, passPrinterName ? &printerName_ : nullptr, command, reply);
    r.status = r.code == 0 ? CommandStatus::Ok : CommandStatus::Failed;
    return r;
}

CommandResult MonitorOperation::Send(ByteSpan command, bool passPrinterName) {
    MonitorReply ignored;
    return Send(command, passPrinterName, ignored);
}

CommandResult SendPrinterCommand(Platform& p, std::u16string_view printerName, bool passPrinterName,
                                 ByteSpan command, MonitorReply& reply) {
    MonitorOperation op(p, printerName);
    return op.Send(command, passPrinterName, reply);
}

bool ReplyHolds(const MonitorReply& reply, std::size_t bytes) {
    return reply.reportedLength > 0 && reply.hasBuffer && reply.data.size() >= bytes;
}

}  // namespace kx20::channel
