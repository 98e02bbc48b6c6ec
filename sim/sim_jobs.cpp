#include "sim/sim_jobs.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "platform/format.h"

namespace kx20::sim {

namespace {

constexpr std::size_t kMarker = kStart.size();

using Size = std::pair<std::uint8_t, std::uint8_t>;  // width, height in dots

bool FamilyFits(std::uint32_t devType, std::uint8_t model) {
    switch (devType) {
        case 1:
            return model == 1 || model == 3 || model == 4 || model == 5;
        case 2:
            return model == 2 || model == 7;
        case 3:
            return model == 8 || model == 9;
        default:
            return false;
    }
}

// A header line "<prefix><blanks><hex>" as "%s %x" reads it; false when the prefix is missing
// or no hexadecimal digit follows.
bool ParseHexLine(std::string_view line, std::string_view prefix, std::uint32_t& value) {
    if (line.substr(0, prefix.size()) != prefix)
        return false;
    std::size_t i = prefix.size();
    while (i < line.size() && (line[i] == ' ' || line[i] == '\t')) ++i;
    if (i + 1 < line.size() && line[i] == '0' && (line[i + 1] == 'x' || line[i + 1] == 'X')) {
        i += 2;
    }
    std::uint64_t v = 0;
    std::size_t digits = 0;
    for (; i < line.size(); ++i, ++digits) {
        char c = line[i];
        int d = c >= '0' && c <= '9'   ? c - '0'
                : c >= 'a' && c <= 'f' ? c - 'a' + 10
                : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                       : -1;
        if (d < 0)
            break;
        v = std::min<std::uint64_t>(v * 16 + static_cast<std::uint64_t>(d), 0xFFFFFFFFull + 1);
    }
    value = static_cast<std::uint32_t>(std::min<std::uint64_t>(v, 0xFFFFFFFFull));
    return digits > 0;
}

class Decoder {
  public:
    Decoder(PrinterState& s, ByteSpan d) : s_(s), d_(d) {}

    JobResult Run() {
        ++s_.jobs;
        if (!s_.connected) {
            Fail(kErrNotReady, u"printer not connected");
        } else {
            while (pos_ < d_.size() && Block()) {
            }
        }
        Log();
        return std::move(r_);
    }

  private:
    bool Block() {
        start_ = pos_;
        if (!MarkerAt(pos_)) {
            if (MarkerPrefixAt(pos_))
                return Fail(kErrInvalidData, u"command start marker cut short");
            return Fail(kErrInvalidData, Format(u"expected the command start marker, found %s",
                                                HexBytes(d_.subspan(pos_), 6)));
        }
        pos_ += kMarker;
        if (pos_ >= d_.size())
            return Fail(kErrInvalidData, u"marker without a command byte");
        std::uint8_t cmd = d_[pos_++];
        bool ok = false;
        switch (cmd) {
            case 0x0F:
                ok = Logo();
                break;
            case 0x10:
                ok = Message();
                break;
            case 0x11:
                return Fail(kErrInvalidData, u"message end (0x11) without a message");
            case 0x12:
                ok = SbcsChars();
                break;
            case 0x14:
                ok = DbcsGroup();
                break;
            case 0x16:
                ok = Setting();
                break;
            case 0x05:
            case 0x07:
                ok = Restart(cmd);
                break;
            case 0x78:
            case 0x79:
            case 0x7A:
                ok = Reset(cmd);
                break;
            case 0x6B:
                ok = Firmware();
                break;
            case 0x00:
                ++ends_;
                ok = true;
                break;
            default:
                return Fail(kErrInvalidData, Format(u"unknown command 0x%02X", cmd));
        }
        if (ok)
            r_.blocks.push_back(JobBlock{cmd, start_});
        return ok;
    }

    bool MarkerAt(std::size_t p) const {
        return p <= d_.size() && d_.size() - p >= kMarker &&
               std::equal(kStart.begin(), kStart.end(),
                          d_.begin() + static_cast<std::ptrdiff_t>(p));
    }
    // The data ends inside what may be a marker.
    bool MarkerPrefixAt(std::size_t p) const {
        std::size_t left = d_.size() - p;
        return left < kMarker &&
               std::equal(d_.begin() + static_cast<std::ptrdiff_t>(p), d_.end(), kStart.begin());
    }
    // After a block whose length follows from its counts, the data must end or go on with a
    // marker; otherwise the counts do not match what was sent.
    bool EndsCleanlyAt(std::size_t p) const {
        return p >= d_.size() || MarkerAt(p) || MarkerPrefixAt(p);
    }
    std::optional<std::size_t> FindMarker(std::size_t from) const {
        if (from > d_.size())
            return std::nullopt;
        auto it = std::search(d_.begin() + static_cast<std::ptrdiff_t>(from), d_.end(),
                              kStart.begin(), kStart.end());
        if (it == d_.end())
            return std::nullopt;
        return static_cast<std::size_t>(it - d_.begin());
    }

    bool Need(std::size_t n, std::u16string_view what) {
        if (d_.size() - pos_ >= n)
            return true;
        return Fail(kErrInvalidData,
                    Format(u"%s truncated: %u bytes needed, %u left", what, n, d_.size() - pos_));
    }

    bool Fail(std::uint32_t code, std::u16string reason) {
        r_.accepted = false;
        r_.error = code;
        r_.errorOffset = start_;
        r_.reason = std::move(reason);
        return false;
    }

    bool Writable(std::u16string_view what) {
        if (FlashWritable(s_))
            return true;
        return Fail(kErrWriteProtect, Format(u"flash write-protected (setup %02X %02X): %s refused",
                                             s_.setup[0], s_.setup[1], what));
    }

    bool Logo() {
        if (!Need(3, u"logo header"))
            return false;
        std::uint8_t number = d_[pos_], widthBytes = d_[pos_ + 1], height8 = d_[pos_ + 2];
        pos_ += 3;
        if (number < 1 || number > kLogoSlots) {
            return Fail(kErrInvalidData, Format(u"logo number %d outside 1..40", number));
        }
        if (widthBytes < 1 || widthBytes > 72) {
            return Fail(kErrInvalidData, Format(u"logo width %d bytes outside 1..72", widthBytes));
        }
        if (height8 < 1)
            return Fail(kErrInvalidData, u"logo height 0");
        std::size_t length = std::size_t{widthBytes} * height8 * 8;
        if (!Need(length + 1, u"logo raster"))
            return false;
        if (d_[pos_ + length] != 0xFF) {
            return Fail(kErrInvalidData,
                        Format(u"logo %d: byte 0x%02X after %u raster bytes, expected 0xFF", number,
                               d_[pos_ + length], length));
        }
        if (!Writable(Format(u"logo %d", number)))
            return false;
        auto& logo = s_.flash.logos[number];
        logo.widthBytes = widthBytes;
        logo.height8 = height8;
        logo.raster.assign(d_.begin() + static_cast<std::ptrdiff_t>(pos_),
                           d_.begin() + static_cast<std::ptrdiff_t>(pos_ + length));
        pos_ += length + 1;
        ++logos_;
        return true;
    }

    bool Message() {
        if (!Need(1, u"message header"))
            return false;
        std::uint8_t number = d_[pos_++];
        if (number < 1 || number > kMessageSlots) {
            return Fail(kErrInvalidData, Format(u"message number %d outside 1..25", number));
        }
        if (!Need(kMarker + 1, u"message start"))
            return false;
        if (!MarkerAt(pos_)) {
            return Fail(kErrInvalidData,
                        Format(u"message %d: no command start marker after the number", number));
        }
        pos_ += kMarker;
        if (d_[pos_] != 0x00) {
            return Fail(kErrInvalidData,
                        Format(u"message %d: separator 0x%02X, expected 0x00", number, d_[pos_]));
        }
        const std::size_t textStart = ++pos_;
        auto close = FindMarker(pos_);
        if (!close) {
            return Fail(kErrInvalidData,
                        Format(u"message %d truncated: text without a closing marker", number));
        }
        std::size_t textEnd = *close;
        pos_ = textEnd + kMarker;
        if (!Need(1, u"message end"))
            return false;
        if (d_[pos_] != 0x11) {
            return Fail(kErrInvalidData,
                        Format(u"message %d: text closed by command 0x%02X, expected 0x11", number,
                               d_[pos_]));
        }
        ++pos_;
        if (!Writable(Format(u"message %d", number)))
            return false;
        s_.flash.messages[number].assign(d_.begin() + static_cast<std::ptrdiff_t>(textStart),
                                         d_.begin() + static_cast<std::ptrdiff_t>(textEnd));
        ++messages_;
        return true;
    }

    bool SbcsChars() {
        if (!Need(3, u"single-byte character header"))
            return false;
        std::uint8_t station = d_[pos_], first = d_[pos_ + 1], last = d_[pos_ + 2];
        pos_ += 3;
        bool thermal = station == 0x01;
        if (station != 0x01 && station != 0x05) {
            return Fail(kErrInvalidData,
                        Format(u"single-byte station 0x%02X, expected 0x01 or 0x05", station));
        }
        if (first > last) {
            return Fail(kErrInvalidData,
                        Format(u"single-byte range 0x%02X..0x%02X is reversed", first, last));
        }
        const std::optional<Size>& size = thermal ? thermalSize_ : impactSize_;
        if (!size) {
            return Fail(kErrInvalidData,
                        Format(u"single-byte %s character without a size header (0x16 0x%02X) "
                               u"earlier in the job",
                               thermal ? u"thermal" : u"impact", thermal ? 0x02 : 0x04));
        }
        auto [width, height] = *size;
        std::size_t glyph = thermal ? std::size_t{(width + 7u) / 8u} * height
                                    : std::size_t{width} * ((height + 7u) / 8u);
        if (glyph == 0) {
            return Fail(
                kErrInvalidData,
                Format(u"single-byte size header %d x %d gives no glyph bytes", width, height));
        }
        std::size_t count = std::size_t{last} - first + 1;
        if (!Need(count * glyph, u"single-byte glyphs"))
            return false;
        if (!EndsCleanlyAt(pos_ + count * glyph)) {
            return Fail(kErrInvalidData,
                        Format(u"single-byte characters 0x%02X..0x%02X of %u bytes each are not "
                               u"followed by a marker: the glyph length does not match",
                               first, last, glyph));
        }
        if (!Writable(u"single-byte characters"))
            return false;
        auto& area = thermal ? s_.flash.sbcsThermal : s_.flash.sbcsImpact;
        for (std::size_t i = 0; i < count; ++i) {
            auto at = d_.begin() + static_cast<std::ptrdiff_t>(pos_ + i * glyph);
            area[static_cast<std::uint8_t>(first + i)] =
                SbcsGlyph{width, height, Bytes(at, at + static_cast<std::ptrdiff_t>(glyph))};
        }
        pos_ += count * glyph;
        sbcs_ += count;
        return true;
    }

    bool DbcsGroup() {
        if (!Need(2, u"double-byte group header"))
            return false;
        std::uint8_t station = d_[pos_], count = d_[pos_ + 1];
        pos_ += 2;
        if (station > 0x01) {
            return Fail(kErrInvalidData,
                        Format(u"double-byte station 0x%02X, expected 0x00 or 0x01", station));
        }
        bool thermal = station == 0x00;
        std::uint8_t area = thermal ? kAreaDbcsThermal : kAreaDbcsImpact;
        if (!HasArea(s_.modelCode, area)) {
            return Fail(kErrNotSupported,
                        Format(u"model %d has no flash area %d", s_.modelCode, area));
        }
        if (count == 0)
            return Fail(kErrInvalidData, u"double-byte group with count 0");
        std::size_t glyph = thermal ? kDbcsThermalGlyph : kDbcsImpactGlyph;
        std::size_t length = std::size_t{count} * (2 + glyph);
        if (!Need(length, u"double-byte group"))
            return false;
        if (!EndsCleanlyAt(pos_ + length)) {
            return Fail(kErrInvalidData,
                        Format(u"double-byte group of %d characters is not followed by a marker: "
                               u"the count does not match the data",
                               count));
        }
        if (!Writable(u"double-byte characters"))
            return false;
        auto& chars = thermal ? s_.flash.dbcsThermal : s_.flash.dbcsImpact;
        for (std::size_t i = 0; i < count; ++i) {
            std::size_t at = pos_ + i * (2 + glyph);
            std::uint16_t code = static_cast<std::uint16_t>(d_[at] << 8 | d_[at + 1]);
            auto from = d_.begin() + static_cast<std::ptrdiff_t>(at + 2);
            chars[code] = Bytes(from, from + static_cast<std::ptrdiff_t>(glyph));
        }
        pos_ += length;
        dbcs_ += count;
        return true;
    }

    bool Setting() {
        if (!Need(3, u"setting"))
            return false;
        std::uint8_t p1 = d_[pos_], p2 = d_[pos_ + 1], p3 = d_[pos_ + 2];
        pos_ += 3;
        if (p1 == 0x10) {
            s_.setup = {p2, p3};
        } else {
            s_.settings[p1] = {p2, p3};
            if (p1 == 0x02)
                thermalSize_ = Size{p2, p3};
            if (p1 == 0x04)
                impactSize_ = Size{p2, p3};
        }
        ++settings_;
        return true;
    }

    bool InterfaceFits(std::uint8_t cmd, bool serialCommand) {
        if (serialCommand == s_.serialPort)
            return true;
        return Fail(kErrInvalidData, Format(u"command 0x%02X does not belong to a %s port", cmd,
                                            s_.serialPort ? u"serial" : u"non-serial"));
    }

    void RecordReset(std::uint8_t cmd, std::uint32_t parameter) {
        ++s_.resets;
        ++resets_;
        s_.lastResetCommand = cmd;
        s_.lastResetParameter = parameter;
        s_.stagedSetup.reset();
    }

    bool Restart(std::uint8_t cmd) {
        if (!InterfaceFits(cmd, cmd == 0x05))
            return false;
        RecordReset(cmd, 0);
        return true;
    }

    bool Reset(std::uint8_t cmd) {
        if (!Need(4, u"reset parameter"))
            return false;
        std::uint32_t parameter = ReadU32(d_, pos_);
        pos_ += 4;
        if (!InterfaceFits(cmd, cmd == 0x7A))
            return false;
        RecordReset(cmd, parameter);
        return true;
    }

    bool Firmware() {
        // The closing marker is the first one that ends the data or is followed by the next
        // job's marker; a marker inside the image followed by anything else is image data.
        std::size_t from = pos_;
        std::optional<std::size_t> close;
        while ((close = FindMarker(from))) {
            std::size_t after = *close + kMarker;
            if (after == d_.size() || MarkerAt(after))
                break;
            from = *close + 1;
        }
        if (!close)
            return Fail(kErrInvalidData, u"firmware truncated: no closing marker");
        ByteSpan image = d_.subspan(pos_, *close - pos_);
        pos_ = *close + kMarker;

        std::string_view text(reinterpret_cast<const char*>(image.data()), image.size());
        std::string_view lines[3];
        for (auto& line : lines) {
            std::size_t lf = text.find('\n');
            if (lf == std::string_view::npos) {
                return Fail(kErrInvalidData, u"firmware header lines missing");
            }
            line = text.substr(0, lf);
            text.remove_prefix(lf + 1);
        }
        std::uint32_t ecLevel = 0, bootLevel = 0, devType = 0;
        if (!ParseHexLine(lines[0], "EcLevel ", ecLevel) ||
            !ParseHexLine(lines[1], "BootLevel ", bootLevel) ||
            !ParseHexLine(lines[2], "DevType ", devType)) {
            return Fail(kErrInvalidData,
                        u"firmware header is not \"EcLevel\", \"BootLevel\", \"DevType\"");
        }
        if (ecLevel == 0 || ecLevel > 0xFF || bootLevel == 0) {
            return Fail(kErrInvalidData, Format(u"firmware levels out of range (EcLevel 0x%X, "
                                                u"BootLevel 0x%X)",
                                                ecLevel, bootLevel));
        }
        if (!FamilyFits(devType, s_.modelCode)) {
            return Fail(kErrNotSupported, Format(u"firmware for family %u does not fit model %d",
                                                 devType, s_.modelCode));
        }
        s_.firmwareLevel = static_cast<std::uint8_t>(ecLevel);
        s_.firmwareImageSize = static_cast<std::uint32_t>(image.size());
        s_.firmwareImageCrc = Crc32(image);
        ++s_.firmwareUpdates;
        ++firmware_;
        return true;
    }

    std::u16string Summary() const {
        std::u16string out = Format(u"%u blocks", r_.blocks.size());
        auto part = [&](std::size_t n, const char16_t* what) {
            if (n)
                out += Format(u", %u %s", n, what);
        };
        part(logos_, u"logos");
        part(messages_, u"messages");
        part(sbcs_, u"single-byte characters");
        part(dbcs_, u"double-byte characters");
        part(settings_, u"settings");
        part(resets_, u"resets");
        part(firmware_, u"firmware images");
        part(ends_, u"ends");
        return out;
    }

    void Log() {
        if (r_.accepted) {
            AddLog(s_, LogKind::Job, false, Format(u"job of %u bytes: %s", d_.size(), Summary()));
        } else {
            AddLog(s_, LogKind::Job, true,
                   Format(u"job of %u bytes rejected at offset %u (%u): %s; decoded before: %s",
                          d_.size(), r_.errorOffset, r_.error, r_.reason, Summary()));
        }
    }

    PrinterState& s_;
    ByteSpan d_;
    std::size_t pos_ = 0;
    std::size_t start_ = 0;  // marker offset of the block being decoded
    JobResult r_;
    std::optional<Size> thermalSize_, impactSize_;
    std::size_t logos_ = 0, messages_ = 0, sbcs_ = 0, dbcs_ = 0, settings_ = 0, resets_ = 0,
                firmware_ = 0, ends_ = 0;
};

}  // namespace

JobResult ReceiveJob(PrinterState& state, ByteSpan job) {
    return Decoder(state, job).Run();
}

}  // namespace kx20::sim
