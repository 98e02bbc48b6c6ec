#include "channel/printer_queries.h"

#include <cstring>
#include <span>

#include "channel/command_transport.h"
#include "platform/trace.h"
#include "platform/bytes.h"
#include "store/registry_layout.h"

namespace kx20::channel {

namespace {

constexpr std::uint8_t kCmdErase = 0x15;
constexpr std::uint8_t kCmdWriteValue = 0x16;
constexpr std::uint8_t kCmdReadValue = 0x17;
constexpr std::uint8_t kCmdChecksum = 0x19;
constexpr std::uint8_t kCmdApplySerial = 0x05;
constexpr std::uint8_t kCmdApplyOther = 0x06;
constexpr std::uint8_t kCmdMaintenance = 0x6E;
constexpr std::uint8_t kCmdResetImmediate = 0x78;
constexpr std::uint8_t kCmdResetBuffered = 0x79;
constexpr std::uint8_t kCmdResetSerial = 0x7A;

constexpr std::uint8_t kValuePrinterSetup = 0x10;
constexpr std::uint8_t kValueStatusByte = 0x14;

constexpr std::uint8_t kSetupWriteProtect = 0xC0;
constexpr std::uint8_t kSetupWritable = 0x3F;
constexpr std::uint8_t kSetupProtected = 0xFF;

// `answer` is where the query starts; see GetMessagesCRC for the one that starts true.
bool ReadChecksum(Platform& p, bool online, std::u16string_view printerName, std::uint8_t area,
                  std::u16string_view valueName, std::uint8_t out[4], bool answer) {
    if (online) {
        const std::uint8_t command[2] = {kCmdChecksum, area};
        MonitorReply reply;
        if (SendPrinterCommand(p, printerName, false, command, reply).ok()) {
            answer = ReplyHolds(reply, 4);
            if (answer)
                std::memcpy(out, reply.data.data(), 4);
        }
        return answer;
    }
    const std::u16string port = store::PrinterPortName(p, printerName);
    // Bytes a short stored value does not cover stay as the caller had them.
    std::uint8_t stored[4];
    std::memcpy(stored, out, 4);
    // A printer without a port has no port key to read.
    if (!port.empty() && store::ReadPortChecksum(p, port, valueName, stored)) {
        std::memcpy(out, stored, 4);
        answer = true;
    }
    return answer;
}

// One operation erasing `areas` in order with the printer name passed; the same buffer is
// rewritten in its area byte between the commands.
bool EraseAreas(Platform& p, std::u16string_view printerName, std::span<const std::uint8_t> areas) {
    MonitorOperation op(p, printerName);
    if (!op.Loaded())
        return false;
    std::uint8_t command[2] = {kCmdErase, 0};
    bool all = true;
    for (std::uint8_t area : areas) {
        command[1] = area;
        all = op.Send(command, true).ok() && all;
    }
    return all;
}

}  // namespace

bool GetLogosCRC(Platform& p, bool online, std::u16string_view printerName, std::uint8_t out[4]) {
    return ReadChecksum(p, online, printerName, kAreaLogos, u"LogosCRC", out, false);
}

bool GetMessagesCRC(Platform& p, bool online, std::u16string_view printerName,
                    std::uint8_t out[4]) {
    return ReadChecksum(p, online, printerName, kAreaMessages, u"MessagesCRC", out, true);
}

bool GetSBCSThermalCRC(Platform& p, bool online, std::u16string_view printerName,
                       std::uint8_t out[4]) {
    return ReadChecksum(p, online, printerName, kAreaSbcsThermal, u"SBCSThermalCRC", out, false);
}

bool GetDBCSCRC(Platform& p, bool online, std::u16string_view printerName, std::uint8_t out[4],
                bool thermal) {
    return ReadChecksum(p, online, printerName, thermal ? kAreaDbcsThermal : kAreaDbcsImpact,
                        thermal ? u"DBCSThermalCRC" : u"DBCSImpactCRC", out, false);
}

bool GetStatusByte(Platform& p, std::u16string_view printerName, std::uint8_t& out) {
    const std::uint8_t command[2] = {kCmdReadValue, kValueStatusByte};
    MonitorReply reply;
    if (!SendPrinterCommand(p, printerName, false, command, reply).ok() || !ReplyHolds(reply, 1)) {
        return false;
    }
    out = reply.data[0];
    return true;
}

bool OutGetPrinterSetup(Platform& p, std::u16string_view printerName, std::uint8_t* out) {
    const std::uint8_t command[2] = {kCmdReadValue, kValuePrinterSetup};
    MonitorReply reply;
    const bool ok =
        SendPrinterCommand(p, printerName, false, command, reply).ok() && ReplyHolds(reply, 2);
    if (ok && out)
        std::memcpy(out, reply.data.data(), 2);
    DrvTrace(u"<- OutGetPrinterSetup returns %d\n", ok ? 1 : 0);
    return ok;
}

bool IsFlashWritable(Platform& p, std::u16string_view printerName) {
    std::uint8_t setup[2] = {};
    if (!OutGetPrinterSetup(p, printerName, setup))
        return true;
    return (setup[1] & kSetupWriteProtect) == 0;
}

bool OutSetFlashWritable(Platform& p, std::u16string_view printerName, bool enable) {
    std::uint8_t setup[2] = {};
    if (!OutGetPrinterSetup(p, printerName, setup))
        return false;
    setup[1] = enable ? kSetupWritable : kSetupProtected;

    MonitorOperation op(p, printerName);
    if (!op.Loaded())
        return false;
    std::uint8_t command[4] = {kCmdWriteValue, kValuePrinterSetup, setup[0], setup[1]};
    const bool written = op.Send(command, false).ok();
    // The printer takes the new setup over only after the port type's own follow-up command,
    // which is sent even when the write failed.
    command[0] = store::IsSerialConnection(p, op.PortName()) ? kCmdApplySerial : kCmdApplyOther;
    const bool applied = op.Send(std::span(command, 1), false).ok();
    return written && applied;
}

bool OutMaintenanceCommand(Platform& p, std::u16string_view printerName) {
    const std::uint8_t command[1] = {kCmdMaintenance};
    MonitorReply reply;
    return SendPrinterCommand(p, printerName, true, command, reply).ok();
}

bool OutEraseFlashArea(Platform& p, std::u16string_view printerName, std::uint8_t area) {
    return EraseAreas(p, printerName, std::span(&area, 1));
}

bool OutEraseAllSectors(Platform& p, std::u16string_view printerName, std::uint32_t modelCode) {
    const std::uint8_t all[] = {kAreaLogos, kAreaMessages, kAreaFonts, kAreaSbcsThermal,
                                kAreaDbcsThermal};
    const std::size_t count = store::HasDbcsArea(modelCode) ? 5 : 4;
    return EraseAreas(p, printerName, std::span(all, count));
}

bool OutEraseAllFontSectors(Platform& p, std::u16string_view printerName, std::uint32_t modelCode) {
    DrvTrace(u"-> OutEraseAllFontSectors\n");
    const std::uint8_t fonts[] = {kAreaFonts, kAreaSbcsThermal, kAreaDbcsThermal};
    const std::size_t count = store::HasDbcsArea(modelCode) ? 3 : 2;
    const bool ok = EraseAreas(p, printerName, std::span(fonts, count));
    DrvTrace(u"<- OutEraseAllFontSectors\n");
    return ok;
}

void ResetKX20Printer(Platform& p, bool serial, bool buffered, std::u16string_view printerName,
                      std::uint32_t parameter) {
    DrvTrace(u"-> ResetKX20Printer(%s,%s)\n", serial ? u"Serial" : u"USB",
             buffered ? u"Buffered Reset" : u"Immediate Reset");
    Bytes command(5, 0);
    command[0] = serial ? kCmdResetSerial : buffered ? kCmdResetBuffered : kCmdResetImmediate;
    WriteU32(command, 1, parameter);
    {
        MonitorOperation op(p, printerName);
        switch (op.Send(command, false).status) {
            case CommandStatus::Ok:
                break;
            case CommandStatus::Failed:
                DrvTrace(u"ResetKX20Printer - BIDISendCmdToPrinter Failed/n");
                break;
            case CommandStatus::EntryMissing:
                DrvTrace(u"ResetKX20Printer - GetProcAddress Failed./n");
                break;
            case CommandStatus::LibraryMissing:
                DrvTrace(u"ResetKX20Printer - LoadLibrary Failed\n");
                break;
        }
    }
    p.clock.Sleep(kResetWaitMs);
}

bool GetMctValueFromPrinter(Platform& p, std::u16string_view printerName, std::uint8_t entry,
                            std::uint8_t out[2]) {
    DrvTrace(u"-> GetMctValueFromPrinter(0x%02x)\n", entry);
    const std::uint8_t command[2] = {kCmdReadValue, entry};
    MonitorReply reply;
    const CommandResult r = SendPrinterCommand(p, printerName, false, command, reply);
    bool ok = false;
    switch (r.status) {
        case CommandStatus::Ok:
            // A reply too short for the two bytes counts as a failed read.
            ok = ReplyHolds(reply, 2);
            if (ok) {
                out[0] = reply.data[1];
                out[1] = reply.data[0];
            }
            break;
        case CommandStatus::Failed:
            DrvTrace(u"GetMCTValueFromPrinter - BIDISendCmdToPrinter Failed/n");
            break;
        case CommandStatus::EntryMissing:
            DrvTrace(u"GetMCTValueFromPrinter - GetProcAddress Failed./n");
            break;
        case CommandStatus::LibraryMissing:
            DrvTrace(u"GetMCTValueFromPrinter - ERROR! LoadLibrary Failed! GetLastError:%d\n",
                     r.code);
            break;
    }
    DrvTrace(u"<- GetMCTValueFromPrinter(%d) - 0x%04x\n", entry, ReadU16(ByteSpan(out, 2), 0));
    return ok;
}

bool IsHaldenPrinterDBCSReady(Platform& p, std::u16string_view printerName) {
    struct Step {
        std::uint8_t entry;
        std::uint16_t least;
    };
    constexpr Step kSteps[] = {{0xA1, 1}, {0xA6, 14}, {0xA0, 1}, {0xA7, 7}};
    bool ready = true;
    for (const Step& step : kSteps) {
        std::uint8_t value[2] = {0, 0};
        const bool read = GetMctValueFromPrinter(p, printerName, step.entry, value);
        p.clock.Sleep(kConfigReadWaitMs);
        if (!read || ReadU16(value, 0) < step.least) {
            ready = false;
            break;
        }
    }
    DrvTrace(u"<- IsHaldenPrinterDBCSReady returns %d\n", ready ? 1 : 0);
    return ready;
}

}  // namespace kx20::channel
