#include "devmode/options_page.h"

#include "ids_document_pages.h"
#include "platform/trace.h"
#include "platform/format.h"
#include "store/catalogue.h"
#include "store/registry_layout.h"

namespace kx20 {

namespace {

constexpr std::size_t kOptionsModeChoices = 3;  // strings 2071..2073
constexpr std::size_t kFlowEntries = 2;         // strings 2080, 2081
constexpr int kDefaultDensity = 2;              // the default record's value

constexpr PageLabel kLabels[] = {
    {IDC_OPT_MODE_GROUP, IDC_OPT_MODE_GROUP},
    {IDC_OPT_MODE_FIRST, IDC_OPT_MODE_FIRST},
    {IDC_OPT_MODE_SECOND, IDC_OPT_MODE_SECOND},
    {IDC_OPT_CHOICE_LABEL, IDC_OPT_CHOICE_LABEL},
    {IDC_OPT_JOB_GROUP, IDC_OPT_JOB_GROUP},
    {IDC_OPT_FLAG_56, IDC_OPT_FLAG_56},
    {IDC_OPT_FLAG_60, IDC_OPT_FLAG_60},
    {IDC_OPT_FLAG_64, IDC_OPT_FLAG_64},
    {IDC_OPT_FLAG_68, IDC_OPT_FLAG_68},
    {IDC_OPT_FLOW_LABEL, IDC_OPT_FLOW_LABEL},
    {IDC_OPT_DENSITY_LABEL, IDC_OPT_DENSITY_LABEL},
    {IDC_OPT_FONT_LABEL, IDC_OPT_FONT_LABEL},
    {IDC_OPT_FRAME, docstr::kSummaryFrame},
};

constexpr std::size_t kFlagOffsets[4] = {kPrivOptionFlag56, kPrivOptionFlag60, kPrivOptionFlag64,
                                         kPrivOptionFlag68};

// The serial connection types whose ports offer the choice of list 1077.
bool OffersFlowChoice(std::uint32_t connectionType) {
    return connectionType == 3 || connectionType == 5 || connectionType == 7;
}

bool InRange(int index, const std::vector<std::u16string>& entries) {
    return index >= 0 && static_cast<std::size_t>(index) < entries.size();
}

}  // namespace

std::span<const PageLabel> OptionsPageModel::Labels() {
    return kLabels;
}

void OptionsPageModel::Init(ApplyState* shared) {
    MutableByteSpan priv = PagePrivatePart(ctx_);
    modeFirst_ = ReadU32(priv, kPrivOptionsModeFlag) != 0;
    const std::uint32_t storedChoice = ReadU32(priv, kPrivOptionsChoice);
    choice_ = storedChoice < kOptionsModeChoices ? static_cast<int>(storedChoice) : 0;
    cutPaper_ = ReadU32(priv, kPrivBCutPaper) != 0;
    for (std::size_t i = 0; i < flags_.size(); ++i) flags_[i] = ReadU32(priv, kFlagOffsets[i]) != 0;
    DrvTrace(u"GuiOptionsDlgProc(INIT): pDocUI->dmpprivate.bCutPaper=%d\n",
             ReadU32(priv, kPrivBCutPaper));

    flowEntries_ = PageStrings(ctx_, docstr::kFlowControl0, kFlowEntries);
    flowSelection_ = ReadU32(priv, kPrivFlow) == 0 ? 0 : 1;
    ReadFlowEnablement();

    densityEntries_ = PageStrings(ctx_, docstr::kDensity0, docstr::kDensityCount);
    const std::uint32_t storedDensity = ReadU32(priv, kPrivDensity);
    density_ =
        storedDensity < densityEntries_.size() ? static_cast<int>(storedDensity) : kDefaultDensity;

    documentStation_ = DocumentStationChosen(shared);
    if (documentStation_)
        modeFirst_ = true;
    BuildChoiceEntries();
    BuildFontEntries(ReadUtf16Field(priv, kPrivFontOverrideName, kPrivFontNameChars));

    if (shared) {
        WriteApplyState(*shared);
        DrvTrace(u"GuiOptionsDlgProc(INIT): plApplyStateDoc->bOptionsCutPaper=%d\n",
                 shared->bOptionsCutPaper);
    }
}

void OptionsPageModel::ReadFlowEnablement() {
    flowEnabled_ = false;
    if (ctx_.platform) {
        const std::u16string port = store::PrinterPortName(*ctx_.platform, ctx_.printerName);
        std::uint32_t type = 0;
        if (!port.empty() && store::GetPortConnectionType(*ctx_.platform, port, type))
            flowEnabled_ = OffersFlowChoice(type);
    }
    if (!flowEnabled_)
        flowSelection_ = 1;  // forced to the second entry
}

void OptionsPageModel::BuildChoiceEntries() {
    if (modeFirst_)
        choiceEntries_ = {PageString(ctx_, docstr::kOptionsModeSingle)};
    else
        choiceEntries_ = PageStrings(ctx_, docstr::kOptionsModeChoice0, kOptionsModeChoices);
}

void OptionsPageModel::BuildFontEntries(std::u16string_view keep) {
    const std::u16string using_(kOverrideUsing);
    fontEntries_ = {std::u16string(kNoFontOverride), using_ + u"command font",
                    using_ + u"control font", using_ + u"Font A", using_ + u"Font B"};
    if (ctx_.platform) {
        Platform& p = *ctx_.platform;
        if (!documentStation_) {
            fontEntries_.push_back(using_ + u"Font C");
            for (bool thermal : {true, false}) {
                std::u16string name;
                if (store::GetDBCSFontName(p, ctx_.printerName, thermal, name) && !name.empty())
                    fontEntries_.push_back(using_ + name);
            }
        }
        std::u16string downloaded;
        if (store::GetDownloadedSBCSFontName(p, ctx_.printerName, downloaded) && !downloaded.empty())
            fontEntries_.push_back(using_ + downloaded);
    }
    const int at = IndexOf(fontEntries_, keep);
    font_ = at < 0 ? 0 : at;
}

std::uint32_t OptionsPageModel::CutPaperLabel() const {
    return documentStation_ ? docstr::kEjectDocument : docstr::kCutPaper;
}

std::u16string OptionsPageModel::SummaryText(const ApplyState* shared) {
    if (!shared)
        return {};
    const std::u16string station = PageString(
        ctx_, shared->stationSelection == 1 ? docstr::kDocumentStation : docstr::kReceiptStation);
    std::u16string paper;
    if (shared->paperRow >= 0 && shared->paperRow < 6)
        paper = PageString(ctx_, 2000 + static_cast<std::uint32_t>(shared->paperRow));
    return Format(PageString(ctx_, docstr::kSummary), station, paper);
}

void OptionsPageModel::SetModeFirst(bool first) {
    if (documentStation_ || first == modeFirst_)
        return;
    modeFirst_ = first;
    BuildChoiceEntries();
}

void OptionsPageModel::SelectChoice(int index) {
    if (!modeFirst_ && InRange(index, choiceEntries_))
        choice_ = index;
}

void OptionsPageModel::SelectFlow(int index) {
    if (flowEnabled_ && InRange(index, flowEntries_))
        flowSelection_ = index;
}

void OptionsPageModel::SelectDensity(int index) {
    if (InRange(index, densityEntries_))
        density_ = index;
}

void OptionsPageModel::SelectFont(int index) {
    if (InRange(index, fontEntries_))
        font_ = index;
}

void OptionsPageModel::FollowDeviceSettings(ApplyState* shared) {
    const bool document = DocumentStationChosen(shared);
    if (document != documentStation_) {
        const std::u16string font = fontEntries_.at(static_cast<std::size_t>(font_));
        documentStation_ = document;
        if (document)
            modeFirst_ = true;
        BuildChoiceEntries();
        BuildFontEntries(font);
    }
    if (shared)
        WriteApplyState(*shared);
}

void OptionsPageModel::Apply(ApplyState* shared) {
    ctx_.pageCopyApplied = true;
    MutableByteSpan priv = PagePrivatePart(ctx_);
    WriteU32(priv, kPrivOptionsModeFlag, modeFirst_ ? 1 : 0);
    if (!modeFirst_)
        WriteU32(priv, kPrivOptionsChoice, static_cast<std::uint32_t>(choice_));
    WriteU32(priv, kPrivBCutPaper, cutPaper_ ? 1 : 0);
    for (std::size_t i = 0; i < flags_.size(); ++i)
        WriteU32(priv, kFlagOffsets[i], flags_[i] ? 1 : 0);
    WriteU32(priv, kPrivFlow, !flowEnabled_ ? 2 : (flowSelection_ != 0 ? 1 : 0));
    WriteU32(priv, kPrivDensity, static_cast<std::uint32_t>(density_));
    WriteUtf16Field(priv, kPrivFontOverrideName, kPrivFontNameChars,
                    fontEntries_.at(static_cast<std::size_t>(font_)));
    DrvTrace(u"GuiOptionsDlgProc(NOTIFY/APPLY): pDocUI->dmpprivate.bCutPaper=%d\n",
             ReadU32(priv, kPrivBCutPaper));
    if (shared) {
        WriteApplyState(*shared);
        DrvTrace(u"GuiOptionsDlgProc(NOTIFY/APPLY): plApplyStateDoc->bOptionsCutPaper=%d\n",
                 shared->bOptionsCutPaper);
    }
}

void OptionsPageModel::WriteApplyState(ApplyState& state) const {
    state.optionsMode = modeFirst_ ? 1 : 0;
    state.optionsChoiceText =
        ApplyStateText(choiceEntries_.at(static_cast<std::size_t>(ChoiceSelection())));
    state.bOptionsCutPaper = cutPaper_ ? 1 : 0;
    for (std::size_t i = 0; i < flags_.size(); ++i) state.optionFlags[i] = flags_[i] ? 1 : 0;
    state.optionFirstEntry = flowSelection_ == 0 ? 1 : 0;
    state.densityText = ApplyStateText(densityEntries_.at(static_cast<std::size_t>(density_)));
    state.fontOverrideText = ApplyStateText(fontEntries_.at(static_cast<std::size_t>(font_)));
}

}  // namespace kx20
