#include "fonts/font_download.h"

#include <array>
#include <optional>

#include "channel/printer_hours.h"
#include "channel/printer_queries.h"
#include "fonts/fnt_file.h"
#include "fonts/fon_file.h"
#include "fonts/font_blocks.h"
#include "platform/trace.h"
#include "platform/format.h"
#include "store/catalogue.h"
#include "store/registry_layout.h"

namespace kx20::fonts {

namespace {

constexpr std::uint32_t kModelTaggedFont = 9;

// The printer as the flow sees it when it starts.
struct FlowPrinter {
    store::ConnectionStatus status;
    std::u16string port;
};

std::optional<FlowPrinter> ReadPrinter(const FontFlowContext& c) {
    FlowPrinter fp;
    fp.port = store::PrinterPortName(c.p, c.printerName);
    if (!store::GetConnectionStatus(c.p, fp.port, fp.status))
        return std::nullopt;
    return fp;
}

void ShowLoadFailed(const FontFlowContext& c) {
    ShowStringBox(c.prompts, c.strings, c.owner, kStringFontLoadFailed, kStringPrinterTitle,
                  box::kOk | box::kIconError);
}

std::uint32_t ReadDbcsCrc(const FontFlowContext& c, const FlowPrinter& fp, bool thermal) {
    std::array<std::uint8_t, 4> crc{};
    channel::GetDBCSCRC(c.p, fp.status.connected, c.printerName, crc.data(), thermal);
    return ReadU32(crc, 0);
}

// Records a downloaded station's font: checksum, catalogue record, the page's field.
void RecordDbcsFont(const FontFlowContext& c, const FlowPrinter& fp, FontNames& names, bool thermal,
                    std::uint32_t crc, const std::u16string& faceName, std::uint32_t codePage,
                    std::uint32_t characters) {
    const std::u16string& id = fp.status.identity;
    store::SetDBCSFontCRC(c.p, c.printerName, id, crc, thermal);
    store::RegisterDBCSFont(c.p, thermal,
                            BuildDbcsFontRecord(thermal, faceName, codePage, characters), id,
                            c.printerName);
    (thermal ? names.dbcsThermal : names.dbcsImpact) = faceName;
}

void ForgetDbcsFonts(const FontFlowContext& c, const FlowPrinter& fp, FontNames& names) {
    store::DeleteDBCSFontEntries(c.p, c.printerName, fp.status.identity);
    names.dbcsThermal.clear();
    names.dbcsImpact.clear();
}

// Model code 9: both stations' double-byte fonts and the single-byte fonts of one file.
// Answers false when the download failed after the flash had been changed.
bool LoadTaggedFile(const FontFlowContext& c, const FlowPrinter& fp, FontNames& names,
                    const std::u16string& path, bool& changed) {
    WaitCursor wait(c.prompts);
    FONMetaData meta;
    if (!GetFONFileMetaData(c.p.files, path, meta)) {
        DrvTrace(u"SelectDBCSFont - GetFONFileMetaData Failed!\n");
        return true;
    }
    FONCharacters chars;
    if (!ParseFONFile(c.p.files, path, chars)) {
        DrvTrace(u"SelectDBCSFont - ParseFONFile Failed!\n");
        return true;
    }
    DrvTrace(
        u"SelectDBCSFont - ThermalSBCS: %d     ThermalDBCS:%d    ImpactSBCS:%d    "
        u"ImpactDBCS:%d\n",
        chars.sbcsThermalCount, chars.dbcsThermalCount, chars.sbcsImpactCount,
        chars.dbcsImpactCount);

    const std::u16string& id = fp.status.identity;
    const bool serial = store::IsSerialConnection(c.p, fp.port);
    if (!channel::OutEraseAllFontSectors(c.p, c.printerName, fp.status.modelCode)) {
        DrvTrace(u"SelectDBCSFont - OutEraseAllSectors Failed!\n");
        return true;
    }
    changed = true;
    store::DeleteDBCSFontEntries(c.p, c.printerName, id);
    store::DeleteSBCSFontEntries(c.p, c.printerName, id);
    channel::ResetKX20Printer(c.p, serial, true, c.printerName, channel::kResetAfterFontErase);

    if (!OutDownloadFONFontToPrinter(c.strings, c.p, c.printerName, meta, chars)) {
        channel::OutEraseAllFontSectors(c.p, c.printerName, fp.status.modelCode);
        store::DeleteDBCSFontEntries(c.p, c.printerName, id);
        store::DeleteSBCSFontEntries(c.p, c.printerName, id);
        names = FontNames{};
        return false;
    }

    const std::u16string faceName = FileNameOfPath(path);
    const std::uint32_t thermalCrc = ReadDbcsCrc(c, fp, true);
    if (thermalCrc > 0 && chars.dbcsThermalCount > 0) {
        RecordDbcsFont(c, fp, names, true, thermalCrc, faceName, meta.codePage,
                       chars.dbcsThermalCount);
    }
    const std::uint32_t impactCrc = ReadDbcsCrc(c, fp, false);
    if (impactCrc > 0 && chars.dbcsImpactCount > 0) {
        RecordDbcsFont(c, fp, names, false, impactCrc, faceName, meta.codePage,
                       chars.dbcsImpactCount);
    }
    std::array<std::uint8_t, 4> sbcsCrc{};
    channel::GetSBCSThermalCRC(c.p, fp.status.connected, c.printerName, sbcsCrc.data());
    store::SetSBCSFontCRC(c.p, c.printerName, id, ReadU32(sbcsCrc, 0));
    return true;
}

// Other model codes: one station's double-byte font from a headered file. Answers false when
// the file could not be read or the download failed.
bool LoadHeaderedFile(const FontFlowContext& c, const FlowPrinter& fp, FontNames& names,
                      const std::u16string& path, bool thermal, bool& changed) {
    std::u16string recorded;
    const bool hasFont = store::GetDBCSFontName(c.p, c.printerName, thermal, recorded);
    int answer = 0;
    if (hasFont) {
        const std::u16string format = c.strings.Load(kStringReplaceFont).value_or(u"");
        const std::u16string station =
            c.strings.Load(thermal ? kStringThermalStation : kStringImpactStation).value_or(u"");
        std::u16string text;
        const std::array<FormatArg, 1> args = {FormatArg(station)};
        if (!FormatTo(text, format, args))
            text = format;
        answer = c.prompts.Show(c.owner, text, c.strings.Load(kStringPrinterTitle).value_or(u""),
                                box::kYesNoCancel | box::kIconWarning);
        if (answer != box::kIdYes && answer != box::kIdNo)
            return true;
    }

    WaitCursor wait(c.prompts);
    const bool serial = store::IsSerialConnection(c.p, fp.port);
    std::uint32_t codePage = 0;
    std::vector<FntRecord> records;
    if (!ParseFNTFile(c.p, c.printerName, path, thermal, codePage, records)) {
        channel::OutEraseFlashArea(c.p, c.printerName, channel::kAreaDbcsThermal);
        ForgetDbcsFonts(c, fp, names);
        changed = true;
        return false;
    }
    if (answer == box::kIdYes) {
        ForgetDbcsFonts(c, fp, names);
    } else if (answer == box::kIdNo) {
        channel::OutEraseFlashArea(c.p, c.printerName, channel::kAreaDbcsThermal);
        store::DeleteDBCSFontEntries(c.p, c.printerName, fp.status.identity);
        channel::ResetKX20Printer(c.p, serial, true, c.printerName,
                                  channel::kResetAfterFontDownload);
        names.dbcsThermal.clear();
        names.dbcsImpact.clear();
    }
    changed = true;

    if (!OutDownloadFNTFontToPrinter(c.strings, c.p, c.printerName, records, thermal)) {
        channel::OutEraseFlashArea(c.p, c.printerName, channel::kAreaDbcsThermal);
        ForgetDbcsFonts(c, fp, names);
        return false;
    }
    const std::uint32_t crc = ReadDbcsCrc(c, fp, thermal);
    DrvTrace(u"SelectDBCSFont - Download successful, CRC: 0x%08x\n", crc);
    RecordDbcsFont(c, fp, names, thermal, crc, FileNameOfPath(path), codePage,
                   static_cast<std::uint32_t>(records.size()));
    return true;
}

}  // namespace

Bytes BuildDbcsFontRecord(bool thermal, std::u16string_view faceName, std::uint32_t codePage,
                          std::uint32_t characters) {
    Bytes record;
    AppendU32(record, thermal ? 1 : 0);
    AppendU32(record, codePage);
    AppendU32(record, characters);
    record.resize(store::kFontFaceNameOffset, 0);
    AppendUtf16z(record, faceName);
    return record;
}

bool AcceptDbcsFontFile(const FontFlowContext& c, const std::u16string& path, bool thermal) {
    if (ValidateDBCSFontFile(c.p, c.printerName, path, thermal))
        return true;
    ShowStringBox(c.prompts, c.strings, c.owner, kStringNotAFontFile, kStringPrinterTitle,
                  box::kOk | box::kIconWarning);
    return false;
}

void SelectDBCSFont(const FontFlowContext& c, FontNames& names, bool thermal,
                    const FileChooser& choose) {
    const std::optional<FlowPrinter> fp = ReadPrinter(c);
    if (!fp) {
        DrvTrace(u"SelectDBCSFont - no connection status for the printer's port\n");
        return;
    }
    const bool tagged = fp->status.modelCode == kModelTaggedFont;

    FileDialogRequest request;
    request.titleId = thermal ? kStringThermalFontTitle : kStringImpactFontTitle;
    request.filterId = tagged ? kStringTaggedFontFilter : kStringHeaderedFontFilter;
    store::GetDBCSFontPath(c.p, c.printerName, request.initialFolder);
    request.accept = [&](const std::u16string& path) {
        return AcceptDbcsFontFile(c, path, thermal);
    };
    const std::optional<std::u16string> path = choose ? choose(request) : std::nullopt;
    if (!path)
        return;
    store::SetDBCSFontPath(c.p, c.printerName, FolderOfPath(*path));

    if (!channel::IsWithinAvailabilityHours(c.p, c.printerName)) {
        ShowLoadFailed(c);
        return;
    }
    bool changed = false;
    const bool ok = tagged ? LoadTaggedFile(c, *fp, names, *path, changed)
                           : LoadHeaderedFile(c, *fp, names, *path, thermal, changed);
    if (!ok)
        ShowLoadFailed(c);
    // Every open page shows the fonts the printer now holds.
    if (changed)
        c.prompts.Broadcast(RefreshMessage::Fonts, c.owner);
}

}  // namespace kx20::fonts
