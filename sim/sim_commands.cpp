#include "sim/sim_commands.h"

#include "platform/format.h"
#include "platform/text.h"

namespace kx20::sim {

namespace {

struct Call {
    PrinterState& s;
    ByteSpan cmd;
    MonitorReply& reply;
    std::u16string head;  // "command 19 01 (printer X)"

    std::uint32_t Refuse(std::uint32_t code, std::u16string_view why) {
        AddLog(s, LogKind::Command, true, Format(u"%s refused (%u): %s", head, code, why));
        return code;
    }
    std::uint32_t Done(std::u16string_view what) {
        AddLog(s, LogKind::Command, false, Format(u"%s: %s", head, what));
        return kOk;
    }
    std::uint32_t Answer(Bytes data, std::u16string_view what) {
        reply.reportedLength = static_cast<std::uint32_t>(data.size());
        reply.hasBuffer = true;
        reply.data = std::move(data);
        return Done(Format(u"%s -> %s", what, HexBytes(reply.data)));
    }
    bool LengthIs(std::size_t n) const { return cmd.size() == n; }
};

std::uint32_t Erase(Call& c) {
    std::uint8_t area = c.cmd[1];
    if (!HasArea(c.s.modelCode, area)) {
        return c.Refuse(kErrNotSupported,
                        Format(u"model %d has no flash area %d", c.s.modelCode, area));
    }
    EraseArea(c.s.flash, area);
    if (area == kAreaDbcsThermal && HasArea(c.s.modelCode, kAreaDbcsImpact)) {
        EraseArea(c.s.flash, kAreaDbcsImpact);
        return c.Done(u"erased flash areas 6 and 7");
    }
    return c.Done(Format(u"erased flash area %d", area));
}

std::uint32_t StageSetup(Call& c) {
    if (c.cmd[1] != 0x10) {
        return c.Refuse(kErrInvalidParameter,
                        Format(u"setting 0x%02X is not taken through the command entry", c.cmd[1]));
    }
    c.s.stagedSetup = std::array<std::uint8_t, 2>{c.cmd[2], c.cmd[3]};
    return c.Done(Format(u"setup %02X %02X staged", c.cmd[2], c.cmd[3]));
}

std::uint32_t Commit(Call& c) {
    bool serialCommand = c.cmd[0] == 0x05;
    if (serialCommand != c.s.serialPort) {
        return c.Refuse(kErrInvalidParameter,
                        Format(u"commit 0x%02X does not belong to a %s port", c.cmd[0],
                               c.s.serialPort ? u"serial" : u"non-serial"));
    }
    if (!c.s.stagedSetup)
        return c.Done(u"commit with no staged setup");
    c.s.setup = *c.s.stagedSetup;
    c.s.stagedSetup.reset();
    return c.Done(Format(u"setup %02X %02X committed", c.s.setup[0], c.s.setup[1]));
}

std::uint32_t Read(Call& c) {
    std::uint8_t what = c.cmd[1];
    if (what == 0x10)
        return c.Answer(Bytes{c.s.setup[0], c.s.setup[1]}, u"setup");
    if (what == 0x14)
        return c.Answer(Bytes{c.s.status}, u"status");
    auto it = c.s.config.find(what);
    if (it == c.s.config.end()) {
        return c.Refuse(kErrInvalidParameter, Format(u"no configuration entry 0x%02X", what));
    }
    return c.Answer(
        Bytes{static_cast<std::uint8_t>(it->second >> 8), static_cast<std::uint8_t>(it->second)},
        Format(u"configuration entry 0x%02X", what));
}

std::uint32_t Checksum(Call& c) {
    std::uint8_t area = c.cmd[1];
    if (!HasArea(c.s.modelCode, area)) {
        return c.Refuse(kErrNotSupported,
                        Format(u"model %d has no flash area %d", c.s.modelCode, area));
    }
    auto crc = AreaChecksumBytes(c.s.flash, area);
    return c.Answer(Bytes(crc.begin(), crc.end()), Format(u"checksum of area %d", area));
}

std::uint32_t Reset(Call& c) {
    bool serialCommand = c.cmd[0] == 0x7A;
    if (serialCommand != c.s.serialPort) {
        return c.Refuse(kErrInvalidParameter,
                        Format(u"reset 0x%02X does not belong to a %s port", c.cmd[0],
                               c.s.serialPort ? u"serial" : u"non-serial"));
    }
    ++c.s.resets;
    c.s.lastResetCommand = c.cmd[0];
    c.s.lastResetParameter = ReadU32(c.cmd, 1);
    c.s.stagedSetup.reset();  // a restart forgets what was never committed
    return c.Done(Format(u"reset 0x%02X, parameter %u", c.cmd[0], c.s.lastResetParameter));
}

std::uint32_t Dispatch(Call& c) {
    switch (c.cmd[0]) {
        case 0x15:
            if (!c.LengthIs(2))
                break;
            return Erase(c);
        case 0x16:
            if (!c.LengthIs(4))
                break;
            return StageSetup(c);
        case 0x17:
            if (!c.LengthIs(2))
                break;
            return Read(c);
        case 0x19:
            if (!c.LengthIs(2))
                break;
            return Checksum(c);
        case 0x05:
        case 0x06:
            if (!c.LengthIs(1))
                break;
            return Commit(c);
        case 0x6E:
            if (!c.LengthIs(1))
                break;
            ++c.s.maintenanceCommands;
            return c.Done(u"maintenance");
        case 0x78:
        case 0x79:
        case 0x7A:
            if (!c.LengthIs(5))
                break;
            return Reset(c);
        default:
            return c.Refuse(kErrInvalidParameter,
                            Format(u"unknown command class 0x%02X", c.cmd[0]));
    }
    return c.Refuse(kErrInvalidParameter,
                    Format(u"command class 0x%02X with wrong length %u", c.cmd[0], c.cmd.size()));
}

}  // namespace

std::uint32_t HandleCommand(PrinterState& state, std::u16string_view port,
                            const std::u16string* printerName, ByteSpan command,
                            MonitorReply& reply) {
    reply = MonitorReply{};
    ++state.commands;
    Call c{state, command, reply, Format(u"command %s", HexBytes(command))};
    if (printerName)
        c.head += Format(u" (printer %s)", *printerName);
    if (!EqualsIgnoreCase(port, state.portName)) {
        return c.Refuse(
            kErrInvalidName,
            Format(u"no printer on port \"%s\" (this printer is on \"%s\")", port, state.portName));
    }
    if (command.empty())
        return c.Refuse(kErrInvalidParameter, u"empty command");
    if (!state.connected)
        return c.Refuse(kErrNotReady, u"printer not connected");
    return Dispatch(c);
}

}  // namespace kx20::sim
