#include "sim/sim_printer.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "platform/format.h"
#include "platform/text.h"
#include "sim/sim_commands.h"
#include "sim/sim_publish.h"

namespace kx20::sim {

namespace {

std::optional<std::uint32_t> ParseNumber(std::u16string_view t, std::uint32_t max) {
    std::uint32_t base = 10;
    if (t.size() > 2 && t[0] == u'0' && (t[1] == u'x' || t[1] == u'X')) {
        base = 16;
        t.remove_prefix(2);
    }
    if (t.empty())
        return std::nullopt;
    std::uint64_t v = 0;
    for (char16_t c : t) {
        std::uint32_t d = c >= u'0' && c <= u'9'                 ? c - u'0'
                          : base == 16 && c >= u'a' && c <= u'f' ? c - u'a' + 10
                          : base == 16 && c >= u'A' && c <= u'F' ? c - u'A' + 10
                                                                 : 99;
        if (d >= base)
            return std::nullopt;
        v = v * base + d;
        if (v > max)
            return std::nullopt;
    }
    return static_cast<std::uint32_t>(v);
}

std::optional<std::uint8_t> Byte(std::u16string_view t) {
    auto v = ParseNumber(t, 0xFF);
    if (!v)
        return std::nullopt;
    return static_cast<std::uint8_t>(*v);
}

std::optional<bool> Flag(std::u16string_view t) {
    if (t == u"1")
        return true;
    if (t == u"0")
        return false;
    return std::nullopt;
}

// Applies one control; false when the command or its value is not understood.
bool Apply(PrinterState& s, std::u16string_view name, std::u16string_view value, bool hasValue) {
    if (!hasValue) {
        if (name == u"connect") {
            s.connected = true;
        } else if (name == u"disconnect") {
            s.connected = false;
        } else if (name == u"reset") {
            PrinterState fresh = FreshPrinter(s.portName);
            fresh.log = std::move(s.log);
            fresh.nextSequence = s.nextSequence;
            s = std::move(fresh);
        } else if (name == u"publish") {
            s.publication = Publication::Valid;
        } else if (name == u"invalidate") {
            s.publication = Publication::Invalid;
        } else if (name == u"remove") {
            s.publication = Publication::Removed;
        } else if (name == u"clearlog") {
            s.log.clear();
        } else {
            return false;
        }
        return true;
    }
    if (name == u"identity") {
        std::string ansi = Utf16ToAnsi(value);
        if (value.size() != 8 || AnsiToUtf16(ansi) != value)
            return false;
        std::copy(ansi.begin(), ansi.end(), s.identity.begin());
        return true;
    }
    if (name == u"config") {
        auto colon = value.find(u':');
        if (colon == std::u16string_view::npos)
            return false;
        auto entry = Byte(value.substr(0, colon));
        auto v = ParseNumber(value.substr(colon + 1), 0xFFFF);
        if (!entry || !v)
            return false;
        s.config[*entry] = static_cast<std::uint16_t>(*v);
        return true;
    }
    if (name == u"protect" || name == u"serial") {
        auto f = Flag(value);
        if (!f)
            return false;
        if (name == u"serial") {
            s.serialPort = *f;
        } else if (*f) {
            s.setup[1] |= kWriteProtectBits;
        } else {
            s.setup[1] &= static_cast<std::uint8_t>(~kWriteProtectBits);
        }
        return true;
    }
    auto b = Byte(value);
    if (!b)
        return false;
    if (name == u"model") {
        s.modelCode = *b;
    } else if (name == u"firmware") {
        s.firmwareLevel = *b;
    } else if (name == u"status") {
        s.status = *b;
    } else if (name == u"erase") {
        if (!HasArea(s.modelCode, *b))
            return false;
        EraseArea(s.flash, *b);
        if (*b == kAreaDbcsThermal)
            EraseArea(s.flash, kAreaDbcsImpact);
    } else {
        return false;
    }
    return true;
}

}  // namespace

std::uint32_t ApplyControl(PrinterState& state, std::u16string_view command) {
    auto eq = command.find(u'=');
    bool hasValue = eq != std::u16string_view::npos;
    std::u16string name = ToLowerAscii(command.substr(0, eq));
    std::u16string_view value = hasValue ? command.substr(eq + 1) : std::u16string_view();
    if (!Apply(state, name, value, hasValue)) {
        AddLog(state, LogKind::Control, true,
               Format(u"control \"%s\" refused: unknown command or value", command));
        return kErrInvalidParameter;
    }
    AddLog(state, LogKind::Control, false, Format(u"control \"%s\"", command));
    return kOk;
}

SimulatedPrinter::SimulatedPrinter(std::u16string_view portName) : state_(FreshPrinter(portName)) {}

void SimulatedPrinter::AttachRegistry(Registry* registry) {
    registry_ = registry;
    Changed();
}

bool SimulatedPrinter::Publish() {
    return registry_ && PublishPort(*registry_, state_);
}

void SimulatedPrinter::Changed() {
    if (registry_)
        PublishPort(*registry_, state_);
}

std::uint32_t SimulatedPrinter::HandleCommand(std::u16string_view port,
                                              const std::u16string* printerName, ByteSpan command,
                                              MonitorReply& reply) {
    std::uint32_t rc = sim::HandleCommand(state_, port, printerName, command, reply);
    if (faults.nextReply != FaultPlan::Reply::Intact && !reply.data.empty()) {
        if (faults.nextReply == FaultPlan::Reply::Garbled) {
            for (auto& b : reply.data) b = static_cast<std::uint8_t>(~b);
        } else {
            reply.data.resize(reply.data.size() / 2);
            reply.reportedLength = static_cast<std::uint32_t>(reply.data.size());
        }
        AddLog(state_, LogKind::Command, true,
               faults.nextReply == FaultPlan::Reply::Garbled ? u"answer garbled on the link"
                                                              : u"answer cut short on the link");
        faults.nextReply = FaultPlan::Reply::Intact;
    }
    Changed();
    return rc;
}

namespace {

// Where the header lines of the job's first firmware image end (the flash starts there), or
// nothing when the job carries no firmware block with whole header lines.
std::optional<std::size_t> FlashStart(ByteSpan job) {
    auto it = std::search(job.begin(), job.end(), kStart.begin(), kStart.end());
    while (it != job.end()) {
        const std::size_t at = static_cast<std::size_t>(it - job.begin()) + kStart.size();
        if (at < job.size() && job[at] == 0x6B) {
            std::size_t p = at + 1;
            for (int line = 0; line < 3; ++line) {
                while (p < job.size() && job[p] != '\n') ++p;
                if (p++ >= job.size())
                    return std::nullopt;
            }
            return p;
        }
        it = std::search(it + 1, job.end(), kStart.begin(), kStart.end());
    }
    return std::nullopt;
}

}  // namespace

std::optional<JobResult> SimulatedPrinter::InterruptedJob(ByteSpan job) {
    JobResult lost;
    lost.accepted = false;
    lost.error = kErrNotReady;
    if (faults.powerLossAfter) {
        const std::size_t n = *std::exchange(faults.powerLossAfter, std::nullopt);
        if (n >= job.size())
            return std::nullopt;
        ++state_.jobs;
        const auto flash = FlashStart(job);
        const bool erased = flash && n >= *flash;
        if (erased) {
            state_.firmwareLevel = 0;
            state_.firmwareImageSize = 0;
            state_.firmwareImageCrc = 0;
        }
        lost.errorOffset = n;
        lost.reason = erased ? u"power lost while flashing: boot loader only"
                             : u"power lost before the flash began";
        AddLog(state_, LogKind::Job, true,
               Format(u"job of %u bytes: power lost after %u bytes; %s", job.size(), n,
                      lost.reason));
        return lost;
    }
    if (faults.cutJobAfter) {
        const std::size_t n = *std::exchange(faults.cutJobAfter, std::nullopt);
        if (n >= job.size())
            return std::nullopt;
        ++state_.jobs;
        state_.connected = false;
        state_.publication = Publication::Invalid;  // the monitor can no longer read the status
        lost.errorOffset = n;
        lost.reason = u"link cut: the incomplete job is dropped";
        AddLog(state_, LogKind::Job, true,
               Format(u"job of %u bytes: link cut after %u bytes; dropped whole", job.size(), n));
        return lost;
    }
    return std::nullopt;
}

JobResult SimulatedPrinter::ReceiveJob(ByteSpan job) {
    if (auto lost = InterruptedJob(job)) {
        Changed();
        return *lost;
    }
    JobResult r = sim::ReceiveJob(state_, job);
    Changed();
    return r;
}

std::uint32_t SimulatedPrinter::Control(std::u16string_view command) {
    std::uint32_t rc = ApplyControl(state_, command);
    Changed();
    return rc;
}

SimulatedPrinter::CommandHandler SimulatedPrinter::Handler() {
    return [this](std::u16string_view port, const std::u16string* printerName, ByteSpan command,
                  MonitorReply& reply) { return HandleCommand(port, printerName, command, reply); };
}

}  // namespace kx20::sim
