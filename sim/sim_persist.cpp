#include "sim/sim_persist.h"

#include <algorithm>
#include <string_view>

#include "platform/format.h"
#include "platform/record_file.h"
#include "platform/text.h"

namespace kx20::sim {

namespace {

constexpr std::string_view kMagic = "KX20SIMS";

using Reader = FieldReader;

void WriteSbcs(Bytes& out, const std::map<std::uint8_t, SbcsGlyph>& chars) {
    AppendU32(out, static_cast<std::uint32_t>(chars.size()));
    for (const auto& [code, g] : chars) {
        AppendU8(out, code);
        AppendU8(out, g.width);
        AppendU8(out, g.height);
        AppendBlob(out, g.bits);
    }
}

void ReadSbcs(Reader& r, std::map<std::uint8_t, SbcsGlyph>& chars) {
    for (std::uint32_t n = r.U32(); n > 0 && r.ok(); --n) {
        std::uint8_t code = r.U8();
        SbcsGlyph g;
        g.width = r.U8();
        g.height = r.U8();
        g.bits = r.Blob();
        chars[code] = std::move(g);
    }
}

void WriteDbcs(Bytes& out, const std::map<std::uint16_t, Bytes>& chars) {
    AppendU32(out, static_cast<std::uint32_t>(chars.size()));
    for (const auto& [code, glyph] : chars) {
        AppendU16(out, code);
        AppendBlob(out, glyph);
    }
}

void ReadDbcs(Reader& r, std::map<std::uint16_t, Bytes>& chars) {
    for (std::uint32_t n = r.U32(); n > 0 && r.ok(); --n) {
        std::uint16_t code = r.U16();
        chars[code] = r.Blob();
    }
}

Bytes Payload(const PrinterState& s) {
    Bytes out;
    AppendText(out, s.portName);
    AppendU8(out, s.modelCode);
    AppendU8(out, s.firmwareLevel);
    AppendBytes(out, s.identity);
    AppendU8(out, s.connected ? 1 : 0);
    AppendU8(out, s.serialPort ? 1 : 0);
    AppendU8(out, static_cast<std::uint8_t>(s.publication));
    AppendBytes(out, s.setup);
    AppendU8(out, s.stagedSetup ? 1 : 0);
    AppendBytes(out, s.stagedSetup.value_or(std::array<std::uint8_t, 2>{}));
    AppendU8(out, s.status);
    AppendU32(out, static_cast<std::uint32_t>(s.config.size()));
    for (const auto& [entry, value] : s.config) {
        AppendU8(out, entry);
        AppendU16(out, value);
    }
    AppendU32(out, static_cast<std::uint32_t>(s.settings.size()));
    for (const auto& [p1, v] : s.settings) {
        AppendU8(out, p1);
        AppendU8(out, v.first);
        AppendU8(out, v.second);
    }
    AppendU32(out, static_cast<std::uint32_t>(s.flash.logos.size()));
    for (const auto& [number, logo] : s.flash.logos) {
        AppendU8(out, number);
        AppendU8(out, logo.widthBytes);
        AppendU8(out, logo.height8);
        AppendBlob(out, logo.raster);
    }
    AppendU32(out, static_cast<std::uint32_t>(s.flash.messages.size()));
    for (const auto& [number, text] : s.flash.messages) {
        AppendU8(out, number);
        AppendBlob(out, text);
    }
    WriteSbcs(out, s.flash.sbcsImpact);
    WriteSbcs(out, s.flash.sbcsThermal);
    WriteDbcs(out, s.flash.dbcsThermal);
    WriteDbcs(out, s.flash.dbcsImpact);
    for (std::uint32_t v :
         {s.commands, s.jobs, s.rejections, s.resets, std::uint32_t{s.lastResetCommand},
          s.lastResetParameter, s.maintenanceCommands, s.firmwareUpdates, s.firmwareImageSize,
          s.firmwareImageCrc, s.nextSequence}) {
        AppendU32(out, v);
    }
    AppendU32(out, static_cast<std::uint32_t>(s.log.size()));
    for (const auto& rec : s.log) {
        AppendU32(out, rec.sequence);
        AppendU8(out, static_cast<std::uint8_t>(rec.kind));
        AppendU8(out, rec.rejected ? 1 : 0);
        AppendText(out, rec.text);
    }
    return out;
}

bool ReadPayload(Reader& r, PrinterState& s) {
    s.portName = r.Text();
    s.modelCode = r.U8();
    s.firmwareLevel = r.U8();
    for (auto& b : s.identity) b = r.U8();
    s.connected = r.Bool();
    s.serialPort = r.Bool();
    std::uint8_t publication = r.U8();
    if (publication > static_cast<std::uint8_t>(Publication::Removed))
        r.Bad();
    s.publication = static_cast<Publication>(publication);
    s.setup[0] = r.U8();
    s.setup[1] = r.U8();
    bool staged = r.Bool();
    std::array<std::uint8_t, 2> stagedSetup = {r.U8(), r.U8()};
    if (staged)
        s.stagedSetup = stagedSetup;
    s.status = r.U8();
    for (std::uint32_t n = r.U32(); n > 0 && r.ok(); --n) {
        std::uint8_t entry = r.U8();
        s.config[entry] = r.U16();
    }
    for (std::uint32_t n = r.U32(); n > 0 && r.ok(); --n) {
        std::uint8_t p1 = r.U8();
        std::uint8_t p2 = r.U8();
        s.settings[p1] = {p2, r.U8()};
    }
    for (std::uint32_t n = r.U32(); n > 0 && r.ok(); --n) {
        std::uint8_t number = r.U8();
        Logo logo;
        logo.widthBytes = r.U8();
        logo.height8 = r.U8();
        logo.raster = r.Blob();
        s.flash.logos[number] = std::move(logo);
    }
    for (std::uint32_t n = r.U32(); n > 0 && r.ok(); --n) {
        std::uint8_t number = r.U8();
        s.flash.messages[number] = r.Blob();
    }
    ReadSbcs(r, s.flash.sbcsImpact);
    ReadSbcs(r, s.flash.sbcsThermal);
    ReadDbcs(r, s.flash.dbcsThermal);
    ReadDbcs(r, s.flash.dbcsImpact);
    s.commands = r.U32();
    s.jobs = r.U32();
    s.rejections = r.U32();
    s.resets = r.U32();
    s.lastResetCommand = static_cast<std::uint8_t>(r.U32());
    s.lastResetParameter = r.U32();
    s.maintenanceCommands = r.U32();
    s.firmwareUpdates = r.U32();
    s.firmwareImageSize = r.U32();
    s.firmwareImageCrc = r.U32();
    s.nextSequence = r.U32();
    std::uint32_t records = r.U32();
    if (records > kLogCapacity)
        r.Bad();
    for (; records > 0 && r.ok(); --records) {
        LogRecord rec;
        rec.sequence = r.U32();
        std::uint8_t kind = r.U8();
        if (kind < 1 || kind > 4)
            r.Bad();
        rec.kind = static_cast<LogKind>(kind);
        rec.rejected = r.Bool();
        rec.text = r.Text();
        s.log.push_back(std::move(rec));
    }
    return r.ok() && r.AtEnd();
}

}  // namespace

Bytes SerializeState(const PrinterState& state) {
    return FrameRecord(kMagic, kStateFormatVersion, Payload(state));
}

bool DeserializeState(ByteSpan data, PrinterState& out, std::u16string& problem) {
    const auto payload = UnframeRecord(data, kMagic, kStateFormatVersion,
                                       u"printer state file", problem);
    if (!payload)
        return false;
    PrinterState s;
    Reader r(*payload);
    if (!ReadPayload(r, s)) {
        problem = u"payload fields do not fit";
        return false;
    }
    out = std::move(s);
    return true;
}

PrinterState LoadState(FileSystem& files, std::u16string_view path, std::u16string_view portName) {
    if (!files.Exists(path))
        return FreshPrinter(portName);
    std::u16string problem;
    PrinterState loaded;
    auto data = ReadWholeFile(files, path);
    if (!data) {
        problem = Format(u"cannot be read (error %u)", files.LastError());
    } else if (DeserializeState(*data, loaded, problem)) {
        if (EqualsIgnoreCase(loaded.portName, portName))
            return loaded;
        problem = Format(u"belongs to port \"%s\"", loaded.portName);
    }
    PrinterState fresh = FreshPrinter(portName);
    AddLog(fresh, LogKind::State, true,
           Format(u"state file \"%s\" %s; starting with a fresh printer", path, problem));
    return fresh;
}

bool SaveState(FileSystem& files, std::u16string_view path, const PrinterState& state) {
    return ReplaceFile(files, path, SerializeState(state));
}

}  // namespace kx20::sim
