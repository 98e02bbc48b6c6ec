#include "firmware/firmware_file.h"

#include <algorithm>
#include <array>
#include <span>

#include "channel/command_start.h"
#include "channel/job_channel.h"
#include "platform/trace.h"
#include "platform/format.h"
#include "store/registry_layout.h"

namespace kx20::firmware {

namespace {

constexpr std::uint8_t kCmdFirmware = 0x6B;

struct HeaderLine {
    std::string_view prefix;
    std::uint32_t FirmwareHeader::*field;
};
constexpr std::array<HeaderLine, 3> kLines = {{{"EcLevel ", &FirmwareHeader::ecLevel},
                                               {"BootLevel ", &FirmwareHeader::bootLevel},
                                               {"DevType ", &FirmwareHeader::devType}}};

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f';
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

bool Fits(std::uint32_t level, std::uint32_t low, std::uint32_t high) {
    return level >= low && level <= high;
}

std::u16string FormatOr(std::u16string_view format, std::span<const FormatArg> args) {
    std::u16string out;
    if (!FormatTo(out, format, args))
        return std::u16string(format);
    return out;
}

}  // namespace

bool ScanWordAndHex(std::string_view line, std::uint32_t& value) {
    std::size_t i = 0;
    while (i < line.size() && IsBlank(line[i])) ++i;
    const std::size_t wordStart = i;
    while (i < line.size() && !IsBlank(line[i])) ++i;
    if (i == wordStart)
        return false;
    while (i < line.size() && IsBlank(line[i])) ++i;
    bool negative = false;
    if (i < line.size() && (line[i] == '+' || line[i] == '-'))
        negative = line[i++] == '-';
    // "0x" counts as a prefix only when a digit follows; otherwise the 0 is the number.
    if (i + 2 < line.size() && line[i] == '0' && (line[i + 1] == 'x' || line[i + 1] == 'X') &&
        HexDigit(line[i + 2]) >= 0) {
        i += 2;
    }
    std::uint64_t v = 0;
    std::size_t digits = 0;
    for (; i < line.size() && HexDigit(line[i]) >= 0; ++i, ++digits) {
        v = std::min<std::uint64_t>(v * 16 + static_cast<std::uint64_t>(HexDigit(line[i])),
                                    0xFFFFFFFFull);
    }
    if (digits == 0)
        return false;
    const auto magnitude = static_cast<std::uint32_t>(v);
    value = negative ? static_cast<std::uint32_t>(0u - magnitude) : magnitude;
    return true;
}

bool ReadFirmwareHeader(ByteSpan file, FirmwareHeader& header, std::uint32_t* ecLevelOut,
                        TraceNotes* notes) {
    const std::string_view text(reinterpret_cast<const char*>(file.data()), file.size());
    std::size_t lineStart = 0;
    for (std::size_t n = 0; n < kLines.size(); ++n) {
        if (lineStart > text.size()) {
            TraceNote(notes, u"ValidateFirmwareFile - header line %d missing\n", n + 1);
            return false;
        }
        std::size_t lineEnd = text.find('\n', lineStart);
        if (lineEnd == std::string_view::npos)
            lineEnd = text.size();
        const std::string_view line = text.substr(lineStart, lineEnd - lineStart);
        if (line.substr(0, kLines[n].prefix.size()) != kLines[n].prefix) {
            TraceNote(notes, u"ValidateFirmwareFile - line %d does not begin with \"%s\"\n", n + 1,
                      kLines[n].prefix);
            return false;
        }
        std::uint32_t value = 0;
        ScanWordAndHex(line, value);
        header.*kLines[n].field = value;
        if (n == 0 && ecLevelOut)
            *ecLevelOut = value;
        lineStart = lineEnd + 1;
    }
    if (header.ecLevel == 0 || header.bootLevel == 0 || header.devType == 0) {
        TraceNote(notes,
                  u"ValidateFirmwareFile - EcLevel 0x%x, BootLevel 0x%x, DevType 0x%x: a zero "
                  u"value\n",
                  header.ecLevel, header.bootLevel, header.devType);
        return false;
    }
    return true;
}

bool FirmwareFitsModel(const FirmwareHeader& header, std::uint32_t modelCode, TraceNotes* notes) {
    const std::uint32_t level = header.ecLevel;
    bool fits = false;
    switch (header.devType) {
        case 1:
            fits = (modelCode == 1 || modelCode == 3 || modelCode == 4 || modelCode == 5) &&
                   Fits(level, kLowestLevel, kHighestNormalLevel);
            break;
        case 2:
            fits = (modelCode == 2 || modelCode == 7) &&
                   Fits(level, kLowestLevel, kHighestNormalLevel);
            break;
        case 3:
            fits = (modelCode == 8 && level >= kLowestModel8Level) || modelCode == 9;
            break;
        default:
            break;
    }
    if (!fits) {
        TraceNote(notes,
                  u"ValidateFirmwareFile - DevType %d level 0x%x does not fit model code %d\n",
                  header.devType, level, modelCode);
    }
    return fits;
}

bool ValidateFirmwareFile(Platform& p, std::u16string_view printerName, std::u16string_view path,
                          std::uint32_t& ecLevel, TraceNotes* notes) {
    DrvTrace(u"-> ValidateFirmwareFile\n");
    DrvTrace(u"Opening firmware file '%s' for '%s'\n", path, printerName);
    bool valid = false;
    const FileReadResult file = ReadLimitedFile(p.files, path, kMaxFirmwareFileBytes);
    FirmwareHeader header;
    store::ConnectionStatus status;
    if (file.status != FileReadStatus::Ok) {
        TraceNote(notes, u"ValidateFirmwareFile - the file cannot be read (%d)\n", file.error);
    } else if (ReadFirmwareHeader(file.data, header, &ecLevel, notes)) {
        if (!store::GetConnectionStatus(p, store::PrinterPortName(p, printerName), status)) {
            TraceNote(notes, u"ValidateFirmwareFile - no connection status for the printer\n");
        } else {
            valid = FirmwareFitsModel(header, status.modelCode, notes);
        }
    }
    DrvTrace(u"<- ValidateFirmwareFile returns %d\n", valid ? 1 : 0);
    return valid;
}

std::u16string FirmwareLevelQuestion(ResourceStrings& strings, std::uint32_t currentLevel,
                                     std::uint32_t fileLevel) {
    std::u16string text = strings.Load(kStringLevelQuestion).value_or(u"");
    text += u"\n";
    if (currentLevel == fileLevel) {
        const std::array<FormatArg, 1> args = {FormatArg(currentLevel)};
        text += FormatOr(strings.Load(kStringLevelSame).value_or(u""), args);
    } else {
        const std::array<FormatArg, 2> args = {FormatArg(currentLevel), FormatArg(fileLevel)};
        const std::uint32_t id = currentLevel < fileLevel ? kStringLevelUp : kStringLevelDown;
        text += FormatOr(strings.Load(id).value_or(u""), args);
    }
    return text;
}

Bytes BuildFirmwareBlock(ByteSpan file) {
    Bytes block;
    block.reserve(file.size() + 2 * channel::kCommandStart.size() + 1);
    block.insert(block.end(), channel::kCommandStart.begin(), channel::kCommandStart.end());
    block.push_back(kCmdFirmware);
    AppendBytes(block, file);
    block.insert(block.end(), channel::kCommandStart.begin(), channel::kCommandStart.end());
    return block;
}

bool OutFlashFirmware(ResourceStrings& strings, Platform& p, std::u16string_view printerName,
                      std::u16string_view path) {
    const std::u16string docName = strings.Load(kStringFirmwareJob).value_or(u"");
    const FileReadResult file = ReadLimitedFile(p.files, path, kMaxFirmwareFileBytes);
    Bytes block;
    if (file.status == FileReadStatus::Ok)
        block = BuildFirmwareBlock(file.data);
    else
        DrvTrace(u"OutFlashFirmware - the file cannot be read (%d); the job carries nothing\n",
                 file.error);
    const bool printed = channel::SendNamedRawJobAndWait(p, printerName, docName, block);
    DrvTrace(u"<- OutFlashFirmware returns %d\n", printed ? 1 : 0);
    return printed;
}

}  // namespace kx20::firmware
