#include "fonts/fonts_page.h"

#include <array>

#include "channel/printer_queries.h"
#include "pages/page_status.h"
#include "store/catalogue.h"
#include "store/registry_layout.h"

namespace kx20::fonts {

namespace {

// The two labels the resource module carries; the other controls keep their template texts.
constexpr PageLabel kLabels[] = {
    {IDC_SBCS_GROUP, IDC_SBCS_GROUP},
    {IDC_SBCS_SLOT1_LABEL, IDC_SBCS_SLOT1_LABEL},
};

constexpr ControlTopic kControlTopics[] = {
    {IDC_SBCS_SLOT1_LABEL, 6000},  {IDC_SBCS_SLOT1_NAME, 6000},    {IDC_SBCS_SLOT1_CAPTURE, 6010},
    {IDC_SBCS_SLOT2_LABEL, 6020},  {IDC_SBCS_SLOT2_NAME, 6020},    {IDC_SBCS_SLOT2_CAPTURE, 6030},
    {IDC_DBCS_ENABLE, 6040},       {IDC_DBCS_THERMAL_GROUP, 6050}, {IDC_DBCS_THERMAL_NAME, 6050},
    {IDC_DBCS_THERMAL_LOAD, 6060}, {IDC_DBCS_IMPACT_GROUP, 6070},  {IDC_DBCS_IMPACT_NAME, 6070},
    {IDC_DBCS_IMPACT_LOAD, 6080},  {IDC_PRINTER_STATUS, 4010},
};

bool ReadStatus(PageContext& c, store::ConnectionStatus& status) {
    return store::GetConnectionStatus(*c.platform,
                                      store::PrinterPortName(*c.platform, c.printerName), status);
}

}  // namespace

FontsPageModel::FontsPageModel(PageContext& context, WindowId page)
    : context_(context), page_(page) {}

std::span<const PageLabel> FontsPageModel::Labels() {
    return kLabels;
}

std::span<const ControlTopic> FontsPageModel::ControlTopics() {
    return kControlTopics;
}

FontFlowContext FontsPageModel::Flow() const {
    return FontFlowContext{*context_.platform, *context_.prompts, *context_.strings, page_,
                           context_.printerName};
}

void FontsPageModel::SetEnabled(int first, int last, bool enabled) {
    for (int id = first; id <= last; ++id) enabled_[id] = enabled;
}

bool FontsPageModel::Enabled(int control) const {
    auto it = enabled_.find(control);
    return it == enabled_.end() || it->second;
}

std::u16string FontsPageModel::Text(int control) const {
    switch (control) {
        case IDC_SBCS_SLOT1_NAME:
            return names_.sbcs1;
        case IDC_SBCS_SLOT2_NAME:
            return names_.sbcs2;
        case IDC_DBCS_THERMAL_NAME:
            return names_.dbcsThermal;
        case IDC_DBCS_IMPACT_NAME:
            return names_.dbcsImpact;
        case IDC_PRINTER_STATUS:
            return status_;
        default:
            return {};
    }
}

void FontsPageModel::ReadNames() {
    Platform& p = *context_.platform;
    names_ = FontNames{};
    store::GetSBCSFontName(p, context_.printerName, 1, names_.sbcs1);
    store::GetSBCSFontName(p, context_.printerName, 2, names_.sbcs2);
    store::GetDBCSFontName(p, context_.printerName, true, names_.dbcsThermal);
    store::GetDBCSFontName(p, context_.printerName, false, names_.dbcsImpact);
}

// The single-byte area goes when the printer's checksum differs from the catalogue's, or when
// the catalogue has none (even if the printer could not be asked).
void FontsPageModel::ReconcileSingleByte(const store::ConnectionStatus& status) {
    Platform& p = *context_.platform;
    std::array<std::uint8_t, 4> crc{};
    const bool asked =
        channel::GetSBCSThermalCRC(p, status.connected, context_.printerName, crc.data());
    const std::uint32_t recorded = store::GetSBCSFontCRC(p, context_.printerName, status.identity);
    if ((asked && ReadU32(crc, 0) != recorded) || recorded == 0) {
        channel::OutEraseFlashArea(p, context_.printerName, channel::kAreaSbcsThermal);
        store::DeleteSBCSFontEntries(p, context_.printerName, status.identity);
    }
}

// A double-byte station goes only when the printer answered and differs: a catalogue value of 0
// alone keeps the fonts.
void FontsPageModel::ReconcileDoubleByte(const store::ConnectionStatus& status) {
    Platform& p = *context_.platform;
    std::vector<bool> stations;
    if (status.modelCode == 2 || status.modelCode == 9)
        stations = {true, false};
    else if (status.modelCode == 7)
        stations = {true};
    for (bool thermal : stations) {
        std::array<std::uint8_t, 4> crc{};
        if (!channel::GetDBCSCRC(p, status.connected, context_.printerName, crc.data(), thermal))
            continue;
        const std::uint32_t recorded =
            store::GetDBCSFontCRC(p, context_.printerName, status.identity, thermal);
        if (ReadU32(crc, 0) != recorded) {
            channel::OutEraseFlashArea(p, context_.printerName, channel::kAreaDbcsThermal);
            store::DeleteDBCSFontEntries(p, context_.printerName, status.identity);
        }
    }
}

void FontsPageModel::Open() {
    Platform& p = *context_.platform;
    dbcsChecked_ = false;
    enabled_.clear();
    store::ConnectionStatus status;
    if (!ReadStatus(context_, status) || status.firmwareLevel == 0) {
        OnConnectionLost();
        return;
    }
    ReconcileSingleByte(status);
    ReconcileDoubleByte(status);
    ReadNames();

    switch (status.modelCode) {
        case 2:
        case 7:
            if (channel::IsFlashWritable(p, context_.printerName)) {
                dbcsChecked_ = true;
                SetEnabled(IDC_DBCS_THERMAL_GROUP, IDC_DBCS_THERMAL_LOAD, true);
                SetEnabled(IDC_DBCS_IMPACT_GROUP, IDC_DBCS_IMPACT_LOAD, status.modelCode == 2);
            } else {
                SetEnabled(IDC_DBCS_THERMAL_GROUP, IDC_DBCS_IMPACT_LOAD, false);
            }
            break;
        case 9:
            if (channel::IsHaldenPrinterDBCSReady(p, context_.printerName)) {
                dbcsChecked_ = true;
                SetEnabled(IDC_DBCS_THERMAL_GROUP, IDC_DBCS_IMPACT_LOAD, true);
            } else {
                SetEnabled(IDC_DBCS_THERMAL_GROUP, IDC_DBCS_IMPACT_LOAD, false);
            }
            break;
        default:
            SetEnabled(IDC_DBCS_ENABLE, IDC_DBCS_IMPACT_LOAD, false);
            break;
    }
    status_ = PrinterStatusText(*context_.strings, &status);
}

void FontsPageModel::OnConnectionLost() {
    dbcsChecked_ = false;
    names_ = FontNames{};
    status_ = PrinterStatusText(*context_.strings, nullptr);
    SetEnabled(IDC_SBCS_SLOT1_LABEL, IDC_DBCS_IMPACT_LOAD, false);
}

void FontsPageModel::Refresh() {
    ReadNames();
}

void FontsPageModel::OnDbcsEnabledClicked(bool nowChecked) {
    Platform& p = *context_.platform;
    dbcsChecked_ = nowChecked;
    bool noMemory = false;
    {
        WaitCursor wait(*context_.prompts);
        store::ConnectionStatus status;
        if (!ReadStatus(context_, status)) {
            // No printer to switch: nothing is sent, nothing can be loaded.
            SetEnabled(IDC_DBCS_THERMAL_GROUP, IDC_DBCS_IMPACT_LOAD, false);
            return;
        }
        const std::uint32_t model = status.modelCode;
        if (!nowChecked) {
            if (model != 9)
                channel::OutSetFlashWritable(p, context_.printerName, false);
            SetEnabled(IDC_DBCS_THERMAL_GROUP, IDC_DBCS_IMPACT_LOAD, false);
            return;
        }
        switch (model) {
            case 2:
                channel::OutSetFlashWritable(p, context_.printerName, true);
                SetEnabled(IDC_DBCS_THERMAL_GROUP, IDC_DBCS_IMPACT_LOAD, true);
                break;
            case 7:
                channel::OutSetFlashWritable(p, context_.printerName, true);
                SetEnabled(IDC_DBCS_THERMAL_GROUP, IDC_DBCS_THERMAL_LOAD, true);
                break;
            case 9:
                if (channel::IsHaldenPrinterDBCSReady(p, context_.printerName)) {
                    SetEnabled(IDC_DBCS_THERMAL_GROUP, IDC_DBCS_IMPACT_LOAD, true);
                } else {
                    noMemory = true;
                    SetEnabled(IDC_DBCS_THERMAL_GROUP, IDC_DBCS_IMPACT_LOAD, false);
                }
                break;
            default:
                SetEnabled(IDC_DBCS_IMPACT_GROUP, IDC_DBCS_IMPACT_LOAD, false);
                break;
        }
    }
    if (noMemory) {
        context_.prompts->Show(page_, kNoDbcsMemoryText, kNoDbcsMemoryTitle,
                               box::kOk | box::kIconError);
    }
    context_.prompts->Broadcast(RefreshMessage::Fonts, page_);
}

void FontsPageModel::LoadDbcsFont(bool thermal, const FileChooser& choose) {
    SelectDBCSFont(Flow(), names_, thermal, choose);
}

}  // namespace kx20::fonts
