#include "log/log_settings_page.h"

#include <algorithm>

#include "pages/page_status.h"
#include "log/log_files.h"
#include "platform/text.h"
#include "store/registry_layout.h"

namespace kx20::logs {

namespace {

// The `LogSettings` bit of a check box; 0 for any other control.
std::uint32_t BitOf(int controlId) {
    switch (controlId) {
        case IDC_LOG_ENABLE:
            return kLoggingOnBit;
        case IDC_LOG_API:
            return kApiLogBit;
        case IDC_LOG_PRINTING:
            return kPrintingLogBit;
        case IDC_LOG_PORT_IO:
            return kPortIOLogBit;
        case IDC_LOG_RESTORE:
            return kRestoreCfgLogBit;
    }
    return 0;
}

constexpr std::uint32_t kAllBits =
    kLoggingOnBit | kApiLogBit | kPrintingLogBit | kPortIOLogBit | kRestoreCfgLogBit;

constexpr PageLabel kLabels[] = {
    {IDC_LOG_ENABLE, IDC_LOG_ENABLE},
    {IDC_LOG_FOLDER_LABEL, IDC_LOG_FOLDER_LABEL},
    {IDC_LOG_BROWSE, IDC_LOG_BROWSE},
    {IDC_LOG_KINDS, IDC_LOG_KINDS},
    {IDC_LOG_API, IDC_LOG_API},
    {IDC_LOG_PRINTING, IDC_LOG_PRINTING},
    {IDC_LOG_PORT_IO, IDC_LOG_PORT_IO},
    {IDC_LOG_RESTORE, IDC_LOG_RESTORE},
    {IDC_LOG_WRAP_LABEL, IDC_LOG_WRAP_LABEL},
    {IDC_LOG_WRAP_UNIT, IDC_LOG_WRAP_UNIT},
};

constexpr ControlTopic kControlTopics[] = {
    {IDC_LOG_ENABLE, 6300},     {IDC_LOG_FOLDER_LABEL, 6310}, {IDC_LOG_FOLDER, 6310},
    {IDC_LOG_BROWSE, 6320},     {IDC_LOG_API, 6330},          {IDC_LOG_PRINTING, 6340},
    {IDC_LOG_PORT_IO, 6350},    {IDC_LOG_RESTORE, 6360},      {IDC_LOG_WRAP_LABEL, 6370},
    {IDC_LOG_WRAP_SIZE, 6370},  {IDC_LOG_WRAP_SPIN, 6370},    {IDC_LOG_WRAP_UNIT, 6370},
    {IDC_PRINTER_STATUS, 4010},
};

bool IsBlank(char16_t c) {
    return c == u' ' || c == u'\t';
}

}  // namespace

std::span<const PageLabel> LogSettingsPageModel::Labels() {
    return kLabels;
}

std::span<const ControlTopic> LogSettingsPageModel::ControlTopics() {
    return kControlTopics;
}

std::uint32_t NumberShown(std::u16string_view text) {
    std::size_t begin = 0, end = text.size();
    while (begin < end && IsBlank(text[begin])) ++begin;
    while (end > begin && IsBlank(text[end - 1])) --end;
    if (begin == end)
        return 0;
    std::uint64_t value = 0;
    for (std::size_t i = begin; i < end; ++i) {
        if (text[i] < u'0' || text[i] > u'9')
            return 0;
        value = value * 10 + static_cast<std::uint64_t>(text[i] - u'0');
        if (value > 0xFFFFFFFFu)
            return 0;
    }
    return static_cast<std::uint32_t>(value);
}

LogSettingsPageModel::LogSettingsPageModel(Platform& platform, ResourceStrings& strings,
                                           std::u16string printerName)
    : p_(platform), strings_(strings), printer_(std::move(printerName)) {}

void LogSettingsPageModel::Open() {
    std::uint32_t settings = 0;
    if (store::GetLogSettings(p_, printer_, settings)) {
        checks_ = settings & kAllBits;
    } else {
        checks_ = 0;
        store::SetLogSettings(p_, printer_, 0);
    }

    if (!store::GetLogPath(p_, printer_, folder_)) {
        folder_ = DefaultLogFolder(p_.files);
        p_.files.CreateFolder(folder_);
        store::SetLogPath(p_, printer_, folder_);
    }

    std::uint32_t wrapKb = 0;
    if (store::GetLogWrapSize(p_, printer_, wrapKb)) {
        wrapText_ = DecimalText(wrapKb);
    } else {
        wrapText_ = DecimalText(kDefaultWrapSizeKb);
        store::SetLogWrapSize(p_, printer_, kDefaultWrapSizeKb);
    }

    RefreshStatus();
}

void LogSettingsPageModel::RefreshStatus() {
    store::ConnectionStatus status;
    const bool available =
        store::GetConnectionStatus(p_, store::PrinterPortName(p_, printer_), status);
    status_ = PrinterStatusText(strings_, available ? &status : nullptr);
}

bool LogSettingsPageModel::Checked(int controlId) const {
    const std::uint32_t bit = BitOf(controlId);
    return bit != 0 && (checks_ & bit) != 0;
}

bool LogSettingsPageModel::Enabled(int controlId) const {
    if (controlId >= IDC_LOG_FOLDER_LABEL && controlId <= IDC_LOG_WRAP_UNIT)
        return Checked(IDC_LOG_ENABLE);
    return true;
}

void LogSettingsPageModel::Click(int controlId, bool checked) {
    const std::uint32_t bit = BitOf(controlId);
    if (bit == 0)
        return;
    // A value that cannot be read counts as no bits set.
    std::uint32_t settings = 0;
    if (!store::GetLogSettings(p_, printer_, settings))
        settings = 0;
    settings = checked ? (settings | bit) : (settings & ~bit);
    store::SetLogSettings(p_, printer_, settings);
    checks_ = checked ? (checks_ | bit) : (checks_ & ~bit);
}

bool LogSettingsPageModel::Browse(const FolderPicker& pick) {
    std::u16string current;
    if (!store::GetLogPath(p_, printer_, current) || current.empty()) {
        current = DefaultLogFolder(p_.files);
        folder_ = current;
        store::SetLogPath(p_, printer_, current);
    }
    if (!pick)
        return false;
    const std::optional<std::u16string> chosen =
        pick(strings_.Load(kBrowseTitleId).value_or(u""), current);
    if (!chosen || chosen->empty())
        return false;
    if (!store::SetLogPath(p_, printer_, *chosen))
        return false;
    folder_ = *chosen;
    return true;
}

bool LogSettingsPageModel::Step(int delta) {
    const std::uint32_t shown = NumberShown(wrapText_);
    std::uint32_t next = shown;
    if (delta < 0)
        next = shown >= kMaxWrapSizeKb ? kMaxWrapSizeKb : std::max(shown + 1, kMinWrapSizeKb);
    else if (delta > 0)
        next = shown <= kMinWrapSizeKb ? kMinWrapSizeKb : std::min(shown - 1, kMaxWrapSizeKb);
    if (next == shown)
        return false;
    ShowWrapSize(next);
    return true;
}

void LogSettingsPageModel::WrapTextChanged(std::u16string_view text) {
    wrapText_ = std::u16string(text);
    store::SetLogWrapSize(p_, printer_, NumberShown(wrapText_));
}

void LogSettingsPageModel::WrapFocusLost() {
    const std::uint32_t shown = NumberShown(wrapText_);
    if (shown > kMaxWrapSizeKb)
        ShowWrapSize(kMaxWrapSizeKb);
    else if (shown < kMinWrapSizeKb)
        ShowWrapSize(kMinWrapSizeKb);
}

// Showing a number changes the edit's text, and every change of it is stored.
void LogSettingsPageModel::ShowWrapSize(std::uint32_t kb) {
    WrapTextChanged(DecimalText(kb));
}

}  // namespace kx20::logs
