#include "sim/sim_state.h"

#include "platform/format.h"
#include "platform/text.h"

namespace kx20::sim {

PrinterState FreshPrinter(std::u16string_view portName) {
    PrinterState s;
    s.portName = std::u16string(portName);
    // Values that pass the double-byte readiness test (A1 > 0, A6 >= 14, A0 > 0, A7 >= 7).
    s.config = {{0xA0, 0x0001}, {0xA1, 0x0002}, {0xA6, 0x0010}, {0xA7, 0x0008}};
    return s;
}

bool HasArea(std::uint8_t modelCode, std::uint8_t area) {
    switch (area) {
        case kAreaLogos:
        case kAreaMessages:
        case kAreaSbcsImpact:
        case kAreaSbcsThermal:
            return true;
        case kAreaDbcsThermal:
            return modelCode == 2 || modelCode == 7 || modelCode == 9;
        case kAreaDbcsImpact:
            return modelCode == 2 || modelCode == 9;
        default:
            return false;
    }
}

bool IsAreaEmpty(const Flash& f, std::uint8_t area) {
    switch (area) {
        case kAreaLogos:
            return f.logos.empty();
        case kAreaMessages:
            return f.messages.empty();
        case kAreaSbcsImpact:
            return f.sbcsImpact.empty();
        case kAreaSbcsThermal:
            return f.sbcsThermal.empty();
        case kAreaDbcsThermal:
            return f.dbcsThermal.empty();
        case kAreaDbcsImpact:
            return f.dbcsImpact.empty();
        default:
            return true;
    }
}

namespace {

void AppendSbcs(Bytes& out, const std::map<std::uint8_t, SbcsGlyph>& chars) {
    for (const auto& [code, g] : chars) {
        AppendU8(out, code);
        AppendU8(out, g.width);
        AppendU8(out, g.height);
        AppendU32(out, static_cast<std::uint32_t>(g.bits.size()));
        AppendBytes(out, g.bits);
    }
}

void AppendDbcs(Bytes& out, const std::map<std::uint16_t, Bytes>& chars) {
    for (const auto& [code, glyph] : chars) {
        AppendU16(out, code);
        AppendU32(out, static_cast<std::uint32_t>(glyph.size()));
        AppendBytes(out, glyph);
    }
}

}  // namespace

Bytes AreaContent(const Flash& f, std::uint8_t area) {
    Bytes out;
    switch (area) {
        case kAreaLogos:
            for (const auto& [number, logo] : f.logos) {
                AppendU8(out, number);
                AppendU8(out, logo.widthBytes);
                AppendU8(out, logo.height8);
                AppendU32(out, static_cast<std::uint32_t>(logo.raster.size()));
                AppendBytes(out, logo.raster);
            }
            break;
        case kAreaMessages:
            for (const auto& [number, text] : f.messages) {
                AppendU8(out, number);
                AppendU32(out, static_cast<std::uint32_t>(text.size()));
                AppendBytes(out, text);
            }
            break;
        case kAreaSbcsImpact:
            AppendSbcs(out, f.sbcsImpact);
            break;
        case kAreaSbcsThermal:
            AppendSbcs(out, f.sbcsThermal);
            break;
        case kAreaDbcsThermal:
            AppendDbcs(out, f.dbcsThermal);
            break;
        case kAreaDbcsImpact:
            AppendDbcs(out, f.dbcsImpact);
            break;
        default:
            break;
    }
    return out;
}

std::uint32_t AreaChecksum(const Flash& f, std::uint8_t area) {
    if (IsAreaEmpty(f, area))
        return 0;
    const std::uint8_t tag[1] = {area};
    std::uint32_t crc = Crc32(AreaContent(f, area), Crc32(tag));
    return crc == 0 ? 0xFFFFFFFFu : crc;
}

std::array<std::uint8_t, 4> AreaChecksumBytes(const Flash& f, std::uint8_t area) {
    std::uint32_t crc = AreaChecksum(f, area);
    return {static_cast<std::uint8_t>(crc), static_cast<std::uint8_t>(crc >> 8),
            static_cast<std::uint8_t>(crc >> 16), static_cast<std::uint8_t>(crc >> 24)};
}

void EraseArea(Flash& f, std::uint8_t area) {
    switch (area) {
        case kAreaLogos:
            f.logos.clear();
            break;
        case kAreaMessages:
            f.messages.clear();
            break;
        case kAreaSbcsImpact:
            f.sbcsImpact.clear();
            break;
        case kAreaSbcsThermal:
            f.sbcsThermal.clear();
            break;
        case kAreaDbcsThermal:
            f.dbcsThermal.clear();
            break;
        case kAreaDbcsImpact:
            f.dbcsImpact.clear();
            break;
        default:
            break;
    }
}

bool FlashWritable(const PrinterState& s) {
    return (s.setup[1] & kWriteProtectBits) == 0;
}

std::u16string IdentityText(const PrinterState& s) {
    return AnsiToUtf16(
        std::string_view(reinterpret_cast<const char*>(s.identity.data()), s.identity.size()));
}

void AddLog(PrinterState& s, LogKind kind, bool rejected, std::u16string text) {
    if (rejected)
        ++s.rejections;
    s.log.push_back(LogRecord{s.nextSequence++, kind, rejected, std::move(text)});
    if (s.log.size() > kLogCapacity) {
        s.log.erase(s.log.begin(),
                    s.log.begin() + static_cast<std::ptrdiff_t>(s.log.size() - kLogCapacity));
    }
}

std::u16string HexBytes(ByteSpan data, std::size_t max) {
    std::u16string out;
    for (std::size_t i = 0; i < data.size() && i < max; ++i) {
        if (i)
            out += u' ';
        out += Format(u"%02X", data[i]);
    }
    if (data.size() > max)
        out += u" ...";
    return out;
}

namespace {

const char16_t* KindName(LogKind k) {
    switch (k) {
        case LogKind::Command:
            return u"command";
        case LogKind::Job:
            return u"job";
        case LogKind::Control:
            return u"control";
        case LogKind::State:
            return u"state";
    }
    return u"?";
}

std::u16string AreaLine(const PrinterState& s, std::uint8_t area, const char16_t* what,
                        std::size_t count) {
    if (!HasArea(s.modelCode, area))
        return Format(u"area %d: not on this model\n", area);
    return Format(u"area %d: %u %s, checksum 0x%08X\n", area, count, what,
                  AreaChecksum(s.flash, area));
}

std::u16string PrintableText(const Bytes& text) {
    std::u16string out;
    for (std::uint8_t c : text) {
        if (c >= 0x20 && c < 0x7F) {
            out += static_cast<char16_t>(c);
        } else {
            out += Format(u"\\x%02X", c);
        }
    }
    return out;
}

}  // namespace

std::u16string Describe(const PrinterState& s) {
    std::u16string out;
    out += Format(u"port: %s\n", s.portName);
    out += Format(u"connected: %s, serial: %s, published: %s\n", s.connected ? u"yes" : u"no",
                  s.serialPort ? u"yes" : u"no",
                  s.publication == Publication::Valid     ? u"valid"
                  : s.publication == Publication::Invalid ? u"invalid"
                                                          : u"removed");
    out += Format(u"model: %d, firmware: 0x%02X, identity: %s\n", s.modelCode, s.firmwareLevel,
                  IdentityText(s));
    out += Format(u"setup: %02X %02X (%s), status: 0x%02X\n", s.setup[0], s.setup[1],
                  FlashWritable(s) ? u"writable" : u"write-protected", s.status);
    if (s.stagedSetup) {
        out += Format(u"staged setup: %02X %02X\n", (*s.stagedSetup)[0], (*s.stagedSetup)[1]);
    }
    out += u"config:";
    for (const auto& [entry, value] : s.config) out += Format(u" %02X=0x%04X", entry, value);
    out += u"\nsettings:";
    for (const auto& [p1, v] : s.settings) out += Format(u" %02X=%02X,%02X", p1, v.first, v.second);
    out += u"\n";
    out += AreaLine(s, kAreaLogos, u"logos", s.flash.logos.size());
    for (const auto& [n, logo] : s.flash.logos) {
        out += Format(u"  logo %d: %d x %d dots\n", n, logo.widthBytes * 8, logo.height8 * 8);
    }
    out += AreaLine(s, kAreaMessages, u"messages", s.flash.messages.size());
    for (const auto& [n, text] : s.flash.messages) {
        out += Format(u"  message %d: \"%s\"\n", n, PrintableText(text));
    }
    out +=
        AreaLine(s, kAreaSbcsImpact, u"single-byte impact characters", s.flash.sbcsImpact.size());
    out += AreaLine(s, kAreaSbcsThermal, u"single-byte thermal characters",
                    s.flash.sbcsThermal.size());
    out += AreaLine(s, kAreaDbcsThermal, u"double-byte thermal characters",
                    s.flash.dbcsThermal.size());
    out +=
        AreaLine(s, kAreaDbcsImpact, u"double-byte impact characters", s.flash.dbcsImpact.size());
    out += Format(
        u"counters: %u commands, %u jobs, %u rejections, %u resets (last 0x%02X %u), "
        u"%u maintenance, %u firmware updates (%u bytes, crc 0x%08X)\n",
        s.commands, s.jobs, s.rejections, s.resets, s.lastResetCommand, s.lastResetParameter,
        s.maintenanceCommands, s.firmwareUpdates, s.firmwareImageSize, s.firmwareImageCrc);
    out += u"log:\n";
    for (const auto& r : s.log) {
        out += Format(u"  #%u %s%s: %s\n", r.sequence, KindName(r.kind),
                      r.rejected ? u" REJECTED" : u"", r.text);
    }
    return out;
}

}  // namespace kx20::sim
