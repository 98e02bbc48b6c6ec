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
        case control::kLoggingOn:
            return kLoggingOnBit;
        case control::kApiLog:
            return kApiLogBit;
        case control::kPrintingLog:
            return kPrintingLogBit;
        case control::kPortIOLog:
            return kPortIOLogBit;
        case control::kRestoreCfgLog:
            return kRestoreCfgLogBit;
    }
    return 0;
}

constexpr std::uint32_t kAllBits =
    kLoggingOnBit | kApiLogBit | kPrintingLogBit | kPortIOLogBit | kRestoreCfgLogBit;

bool IsBlank(char16_t c) {
    return c == u' ' || c == u'\t';
}

}  // namespace

std::uint32_t HelpContextOf(int controlId) {
    switch (controlId) {
        case 1200:
            return 6300;
        case 1201:
        case 1202:
            return 6310;
        case 1203:
            return 6320;
        case 1205:
            return 6330;
        case 1206:
            return 6340;
        case 1207:
            return 6350;
        case 1208:
            return 6360;
        case 1209:
        case 1210:
        case 1211:
        case 1212:
            return 6370;
        case 1213:
            return 4010;
    }
    return 0;
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

LogSettingsPage::LogSettingsPage(Platform& platform, ResourceStrings& strings,
                                 std::u16string printerName)
    : p_(platform), strings_(strings), printer_(std::move(printerName)) {}

void LogSettingsPage::Open() {
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

void LogSettingsPage::RefreshStatus() {
    store::ConnectionStatus status;
    const bool available =
        store::GetConnectionStatus(p_, store::PrinterPortName(p_, printer_), status);
    status_ = PrinterStatusText(strings_, available ? &status : nullptr);
}

bool LogSettingsPage::Checked(int controlId) const {
    const std::uint32_t bit = BitOf(controlId);
    return bit != 0 && (checks_ & bit) != 0;
}

bool LogSettingsPage::Enabled(int controlId) const {
    if (controlId >= control::kFolderLabel && controlId <= control::kWrapUnit)
        return Checked(control::kLoggingOn);
    return true;
}

void LogSettingsPage::Click(int controlId, bool checked) {
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

bool LogSettingsPage::Browse(const FolderPicker& pick) {
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

bool LogSettingsPage::Step(int delta) {
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

void LogSettingsPage::WrapTextChanged(std::u16string_view text) {
    wrapText_ = std::u16string(text);
    store::SetLogWrapSize(p_, printer_, NumberShown(wrapText_));
}

void LogSettingsPage::WrapFocusLost() {
    const std::uint32_t shown = NumberShown(wrapText_);
    if (shown > kMaxWrapSizeKb)
        ShowWrapSize(kMaxWrapSizeKb);
    else if (shown < kMinWrapSizeKb)
        ShowWrapSize(kMinWrapSizeKb);
}

// Showing a number changes the edit's text, and every change of it is stored.
void LogSettingsPage::ShowWrapSize(std::uint32_t kb) {
    WrapTextChanged(DecimalText(kb));
}

}  // namespace kx20::logs
