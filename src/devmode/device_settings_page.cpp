#include "devmode/device_settings_page.h"

#include "channel/printer_queries.h"
#include "devmode/roll_papers.h"
#include "ids_document_pages.h"
#include "platform/trace.h"
#include "platform/format.h"
#include "platform/prompts.h"
#include "store/catalogue.h"
#include "store/registry_layout.h"

namespace kx20 {

namespace {

constexpr PageLabel kLabels[] = {
    {IDC_DS_PRINTER_GROUP, docstr::kPrinterGroup}, {IDC_DS_SETUP_GROUP, docstr::kSetupGroup},
    {IDC_DS_STATION_LABEL, docstr::kStationLabel}, {IDC_DS_PAPER_LABEL, docstr::kPaperLabel},
    {IDC_DS_MEMORY_GROUP, docstr::kMemoryGroup},   {IDC_DS_MEMORY_NOTE, docstr::kMemoryNote},
};

// One kind of stored item that a narrower paper makes unusable.
struct StoredKind {
    std::uint32_t question;
    std::uint8_t area;
    int (*deleteEntries)(Platform&, std::u16string_view, std::u16string_view);
    RefreshMessage refresh;
    bool EraseOutcome::*erased;
};

constexpr StoredKind kLogos{docstr::kEraseLogosQuestion, channel::kAreaLogos,
                            store::DeleteLogoEntries, RefreshMessage::Logos, &EraseOutcome::logos};
constexpr StoredKind kMessages{docstr::kEraseMessagesQuestion, channel::kAreaMessages,
                               store::DeleteMessageEntries, RefreshMessage::Messages,
                               &EraseOutcome::messages};
// Font area A: the downloaded single-byte characters.
constexpr StoredKind kFont{docstr::kEraseFontQuestion, channel::kAreaSbcsThermal,
                           store::DeleteSBCSFontEntries, RefreshMessage::Fonts,
                           &EraseOutcome::font};

}  // namespace

std::span<const PageLabel> DeviceSettingsPageModel::Labels() {
    return kLabels;
}

void DeviceSettingsPageModel::Init(ApplyState& shared) {
    stationEntries_ = {PageString(ctx_, docstr::kReceiptStation),
                       PageString(ctx_, docstr::kDocumentStation)};
    paperEntries_.clear();
    for (const RollPaper& paper : RollPapers())
        paperEntries_.push_back(PageString(ctx_, paper.nameString));

    MutableByteSpan priv = PagePrivatePart(ctx_);
    station_ =
        ReadU32(priv, kPrivBReceiptStation) != 0 ? kReceiptStationEntry : kDocumentStationEntry;
    std::int16_t paperId = 0;
    if (!ctx_.docDevMode.empty())
        paperId = ReadDmShort(ctx_.docDevMode, kOffDmPaperSize);
    const int row = RollPaperRow(paperId);
    paperRow_ = row < 0 ? kDefaultRollPaperRow : row;
    appliedPaperRow_ = paperRow_;
    DrvTrace(u"DeviceSettingsPage(INIT): bReceiptStation=%d, dmPaperSize=%d\n",
             ReadU32(priv, kPrivBReceiptStation), paperId);
    WriteApplyState(shared);
}

std::u16string DeviceSettingsPageModel::StatusText() {
    if (!ctx_.port.present || !ctx_.port.connected)
        return PageString(ctx_, docstr::kPrinterNotConnected);
    return Format(PageString(ctx_, docstr::kPrinterConnected), ctx_.port.identity,
                  ctx_.port.modelCode);
}

std::uint32_t DeviceSettingsPageModel::StationNote() const {
    return station_ == kDocumentStationEntry ? docstr::kDocumentNote : docstr::kReceiptNote;
}

bool DeviceSettingsPageModel::SelectStation(int index, ApplyState& shared) {
    if (index < 0 || static_cast<std::size_t>(index) >= stationEntries_.size() || index == station_)
        return false;
    station_ = index;
    WriteApplyState(shared);
    return true;
}

bool DeviceSettingsPageModel::SelectPaper(int index, ApplyState& shared) {
    if (index < 0 || static_cast<std::size_t>(index) >= paperEntries_.size() || index == paperRow_)
        return false;
    paperRow_ = index;
    WriteApplyState(shared);
    return true;
}

void DeviceSettingsPageModel::WriteApplyState(ApplyState& shared) const {
    shared.stationSelection = station_;
    shared.paperRow = paperRow_;
}

EraseOutcome DeviceSettingsPageModel::Apply(WindowId owner, ApplyState& shared) {
    ctx_.pageCopyApplied = true;
    const bool receipt = station_ == kReceiptStationEntry;
    const RollPaper& paper = RollPapers()[static_cast<std::size_t>(paperRow_)];
    WriteU32(PagePrivatePart(ctx_), kPrivBReceiptStation, receipt ? 1 : 0);
    if (!ctx_.docDevMode.empty()) {
        MutableByteSpan record = ctx_.docDevMode;
        WriteDmShort(record, kOffDmPaperSize, paper.paperId);
        WriteU32(record, kOffDmFields, ReadU32(record, kOffDmFields) | kDmPaperSize);
    }
    DrvTrace(u"DeviceSettingsPage(NOTIFY/APPLY): bReceiptStation=%d, dmPaperSize=%d\n",
             receipt ? 1 : 0, paper.paperId);
    if (ctx_.platform)
        store::SetSessionStateFlag(*ctx_.platform, ctx_.printerName, receipt);
    WriteApplyState(shared);

    EraseOutcome outcome;
    const RollPaper& before = RollPapers()[static_cast<std::size_t>(appliedPaperRow_)];
    if (paper.widthTenthMm < before.widthTenthMm)
        outcome = OfferErase(owner);
    appliedPaperRow_ = paperRow_;
    return outcome;
}

EraseOutcome DeviceSettingsPageModel::OfferErase(WindowId owner) {
    EraseOutcome outcome;
    if (!ctx_.platform || !ctx_.prompts || !ctx_.strings)
        return outcome;
    Platform& p = *ctx_.platform;
    store::ConnectionStatus status;
    if (!store::GetConnectionStatus(p, store::PrinterPortName(p, ctx_.printerName), status) ||
        !status.connected) {
        DrvTrace(u"DeviceSettingsPage: printer not connected, stored items left as they are\n");
        return outcome;
    }
    const std::u16string& id = status.identity;
    std::u16string fontName;
    const bool present[] = {
        !store::ReadLogoRecords(p, ctx_.printerName, id).empty(),
        !store::ReadMessageRecords(p, ctx_.printerName, id).empty(),
        store::GetDownloadedSBCSFontName(p, ctx_.printerName, fontName),
    };
    const StoredKind* kinds[] = {&kLogos, &kMessages, &kFont};
    for (std::size_t i = 0; i < 3; ++i) {
        if (!present[i])
            continue;
        const StoredKind& kind = *kinds[i];
        if (ShowStringBox(*ctx_.prompts, *ctx_.strings, owner, kind.question, docstr::kBoxTitle,
                          box::kYesNo | box::kIconQuestion) != box::kIdYes)
            continue;
        bool erased = false;
        {
            WaitCursor wait(*ctx_.prompts);
            erased = channel::OutEraseFlashArea(p, ctx_.printerName, kind.area);
            if (erased)
                kind.deleteEntries(p, ctx_.printerName, id);
        }
        DrvTrace(u"DeviceSettingsPage: erase of area %d %s\n", kind.area,
                 erased ? u"done" : u"failed");
        if (!erased) {
            ShowStringBox(*ctx_.prompts, *ctx_.strings, owner, docstr::kEraseFailed,
                          docstr::kBoxTitle, box::kOk | box::kIconError);
            continue;
        }
        outcome.*kind.erased = true;
        ctx_.prompts->Broadcast(kind.refresh, owner);
    }
    return outcome;
}

}  // namespace kx20
