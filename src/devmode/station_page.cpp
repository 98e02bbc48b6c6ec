#include "devmode/station_page.h"

#include <algorithm>

#include "ids_document_pages.h"
#include "platform/trace.h"
#include "platform/format.h"
#include "store/registry_layout.h"

namespace kx20 {

namespace {

constexpr PageLabel kLabels[] = {
    {IDC_ST_LOGO_GROUP, docstr::kLogoGroup},
    {IDC_ST_HEADER_LOGO_LABEL, docstr::kHeaderLogoLabel},
    {IDC_ST_FOOTER_LOGO_LABEL, docstr::kFooterLogoLabel},
    {IDC_ST_MESSAGE_GROUP, docstr::kMessageGroup},
    {IDC_ST_TOP_MESSAGE_LABEL, docstr::kTopMessageLabel},
    {IDC_ST_BOTTOM_MESSAGE_LABEL, docstr::kBottomMessageLabel},
    {IDC_ST_FONT_LABEL, docstr::kStationFontLabel},
};

// Offsets of the four item choices, in StationList order.
constexpr std::size_t kChoiceOffsets[4] = {kStationHeaderLogo, kStationFooterLogo,
                                           kStationTopMessage, kStationBottomMessage};

constexpr std::size_t Index(StationList list) {
    return static_cast<std::size_t>(list);
}

bool IsLogoList(std::size_t i) {
    return i == Index(StationList::HeaderLogo) || i == Index(StationList::FooterLogo);
}

// The first line of a message, as its list entry shows it.
std::u16string FirstLine(std::u16string_view text) {
    const std::size_t end = text.find_first_of(u"\r\n");
    return std::u16string(text.substr(0, end));
}

}  // namespace

StationPageModel::StationPageModel(PageContext& ctx, Station station)
    : ctx_(ctx),
      block_(station == Station::First ? kPrivFirstStation : kPrivSecondStation),
      // The first station is the receipt station with its thermal head; the second the
      // document station with its impact head.
      thermal_(station == Station::First) {}

std::span<const PageLabel> StationPageModel::Labels() {
    return kLabels;
}

void StationPageModel::Init() {
    MutableByteSpan priv = PagePrivatePart(ctx_);
    for (std::size_t i = 0; i < chosen_.size(); ++i)
        chosen_[i] = ReadU32(priv, block_ + kChoiceOffsets[i]);
    chosenFont_ = ReadUtf16Field(priv, block_ + kStationFontName, kPrivFontNameChars);
    if (chosenFont_.empty())
        chosenFont_ = kDefaultStationFont;
    ReadCatalogue();
    BuildEntries();
    DrvTrace(u"StationPage(INIT): block %d, logos %d/%d, messages %d/%d, font %ls\n",
             static_cast<int>(block_), chosen_[0], chosen_[1], chosen_[2], chosen_[3], chosenFont_);
}

void StationPageModel::Reload() {
    ReadCatalogue();
    BuildEntries();
}

void StationPageModel::ReadCatalogue() {
    statusRead_ = false;
    connected_ = false;
    identity_.clear();
    logos_.clear();
    messages_.clear();
    fonts_ = {u"Font A", u"Font B"};
    if (thermal_)
        fonts_.push_back(u"Font C");
    if (!ctx_.platform)
        return;
    Platform& p = *ctx_.platform;
    store::ConnectionStatus status;
    if (!store::GetConnectionStatus(p, store::PrinterPortName(p, ctx_.printerName), status))
        return;
    statusRead_ = true;
    connected_ = status.connected;
    identity_ = status.identity;
    logos_ = store::ReadLogoRecords(p, ctx_.printerName, identity_);
    messages_ = store::ReadMessageRecords(p, ctx_.printerName, identity_);
    auto byNumber = [](const auto& a, const auto& b) { return a.number < b.number; };
    std::stable_sort(logos_.begin(), logos_.end(), byNumber);
    std::stable_sort(messages_.begin(), messages_.end(), byNumber);
    std::u16string name;
    if (store::GetDBCSFontName(p, ctx_.printerName, thermal_, name) && !name.empty())
        fonts_.push_back(name);
    // The downloaded single-byte characters live in the thermal head's font area.
    name.clear();
    if (thermal_ && store::GetDownloadedSBCSFontName(p, ctx_.printerName, name) && !name.empty())
        fonts_.push_back(name);
}

StationEntry StationPageModel::Missing(std::u16string text) const {
    StationEntry entry;
    entry.text = Format(PageString(ctx_, docstr::kMissingEntry), text);
    entry.inPrinter = false;
    return entry;
}

std::vector<StationEntry> StationPageModel::ItemEntries(std::vector<StationEntry> items,
                                                        std::uint32_t chosen,
                                                        std::u16string_view chosenText) const {
    std::vector<StationEntry> out{{PageString(ctx_, docstr::kNoChoice)}};
    bool found = chosen == 0;
    for (StationEntry& item : items) {
        found = found || item.number == chosen;
        out.push_back(std::move(item));
    }
    if (!found) {
        StationEntry entry = Missing(std::u16string(chosenText));
        entry.number = chosen;
        out.push_back(entry);
    }
    return out;
}

std::vector<StationEntry> StationPageModel::LogoEntries(std::uint32_t chosen) const {
    const std::u16string format = PageString(ctx_, docstr::kLogoEntry);
    std::vector<StationEntry> items;
    for (const store::LogoRecord& logo : logos_)
        items.push_back({Format(format, logo.number), logo.number});
    return ItemEntries(std::move(items), chosen, Format(format, chosen));
}

std::vector<StationEntry> StationPageModel::MessageEntries(std::uint32_t chosen) const {
    const std::u16string format = PageString(ctx_, docstr::kMessageEntry);
    std::vector<StationEntry> items;
    for (const store::MessageRecord& message : messages_)
        items.push_back({Format(format, message.number, FirstLine(message.text)), message.number});
    return ItemEntries(std::move(items), chosen,
                       Format(PageString(ctx_, docstr::kMessageNumber), chosen));
}

std::vector<StationEntry> StationPageModel::FontEntries() const {
    std::vector<StationEntry> out;
    bool found = false;
    for (const std::u16string& font : fonts_) {
        out.push_back({font, 0, font});
        found = found || font == chosenFont_;
    }
    if (!found) {
        StationEntry entry = Missing(chosenFont_);
        entry.fontName = chosenFont_;
        out.push_back(entry);
    }
    return out;
}

void StationPageModel::BuildEntries() {
    for (std::size_t i = 0; i < chosen_.size(); ++i) {
        entries_[i] = IsLogoList(i) ? LogoEntries(chosen_[i]) : MessageEntries(chosen_[i]);
        const auto& entries = entries_[i];
        auto at = std::find_if(entries.begin(), entries.end(),
                               [&](const StationEntry& e) { return e.number == chosen_[i]; });
        selection_[i] = static_cast<int>(at - entries.begin());
    }
    const std::size_t font = Index(StationList::Font);
    entries_[font] = FontEntries();
    auto at = std::find_if(entries_[font].begin(), entries_[font].end(),
                           [&](const StationEntry& e) { return e.fontName == chosenFont_; });
    selection_[font] = static_cast<int>(at - entries_[font].begin());
}

const std::vector<StationEntry>& StationPageModel::Entries(StationList list) const {
    return entries_[Index(list)];
}

int StationPageModel::Selection(StationList list) const {
    return selection_[Index(list)];
}

void StationPageModel::Select(StationList list, int index) {
    const std::size_t i = Index(list);
    if (index < 0 || static_cast<std::size_t>(index) >= entries_[i].size())
        return;
    selection_[i] = index;
    const StationEntry& entry = entries_[i][static_cast<std::size_t>(index)];
    if (list == StationList::Font)
        chosenFont_ = entry.fontName;
    else
        chosen_[i] = entry.number;
}

std::u16string StationPageModel::StatusText() {
    if (!statusRead_)
        return PageString(ctx_, docstr::kStationUnknown);
    return Format(
        PageString(ctx_, connected_ ? docstr::kStationConnected : docstr::kStationOffline),
        identity_);
}

const store::LogoRecord* StationPageModel::ChosenLogo(StationList list) const {
    if (list != StationList::HeaderLogo && list != StationList::FooterLogo)
        return nullptr;
    const std::uint32_t number = chosen_[Index(list)];
    for (const store::LogoRecord& logo : logos_)
        if (number != 0 && logo.number == number)
            return &logo;
    return nullptr;
}

std::u16string StationPageModel::ChosenMessageText(StationList list) const {
    if (list != StationList::TopMessage && list != StationList::BottomMessage)
        return {};
    const std::uint32_t number = chosen_[Index(list)];
    for (const store::MessageRecord& message : messages_)
        if (number != 0 && message.number == number)
            return message.text;
    return {};
}

void StationPageModel::Apply() {
    ctx_.pageCopyApplied = true;
    MutableByteSpan priv = PagePrivatePart(ctx_);
    for (std::size_t i = 0; i < chosen_.size(); ++i)
        WriteU32(priv, block_ + kChoiceOffsets[i], chosen_[i]);
    for (std::size_t i = 0; i < kStationListCount; ++i)
        WriteU32(priv, block_ + kStationListSelections + 4 * i,
                 static_cast<std::uint32_t>(selection_[i]));
    WriteUtf16Field(priv, block_ + kStationFontName, kPrivFontNameChars, chosenFont_);
    DrvTrace(u"StationPage(NOTIFY/APPLY): block %d, logos %d/%d, messages %d/%d, font %ls\n",
             static_cast<int>(block_), chosen_[0], chosen_[1], chosen_[2], chosen_[3], chosenFont_);
}

}  // namespace kx20
