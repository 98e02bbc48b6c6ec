#include "firmware/maintenance_page.h"

#include <array>

#include "channel/printer_hours.h"
#include "channel/printer_queries.h"
#include "pages/page_status.h"
#include "firmware/firmware_file.h"
#include "platform/trace.h"
#include "platform/format.h"
#include "store/catalogue.h"
#include "store/registry_layout.h"

namespace kx20::firmware {

namespace {

constexpr PageLabel kLabels[] = {
    {IDC_ABOUT_BUTTON, IDC_ABOUT_BUTTON},
    {IDC_FIRMWARE_LABEL, IDC_FIRMWARE_LABEL},
    {IDC_FIRMWARE_BROWSE, IDC_FIRMWARE_BROWSE},
    {IDC_FIRMWARE_UPDATE, IDC_FIRMWARE_UPDATE},
    {IDC_LAST_PRINTER, IDC_LAST_PRINTER},
    {IDC_MAINTENANCE, IDC_MAINTENANCE},
    {IDC_CLEAR_ALL, IDC_CLEAR_ALL},
};

constexpr ControlTopic kControlTopics[] = {
    {IDC_ABOUT_BUTTON, 4000},    {IDC_FIRMWARE_LABEL, 6200},  {IDC_FIRMWARE_PATH, 6200},
    {IDC_FIRMWARE_BROWSE, 6210}, {IDC_FIRMWARE_UPDATE, 6220}, {IDC_LAST_PRINTER, 6230},
    {IDC_MAINTENANCE, 6240},     {IDC_CLEAR_ALL, 6250},       {IDC_PRINTER_STATUS, 4010},
};

}  // namespace

std::span<const PageLabel> MaintenancePageModel::Labels() {
    return kLabels;
}

std::span<const ControlTopic> MaintenancePageModel::ControlTopics() {
    return kControlTopics;
}

MaintenancePageModel::MaintenancePageModel(PageContext& context, WindowId page)
    : context_(context), page_(page) {}

bool MaintenancePageModel::Enabled(int control) const {
    auto it = enabled_.find(control);
    return it == enabled_.end() || it->second;
}

std::u16string MaintenancePageModel::Text(int control) const {
    if (control == IDC_FIRMWARE_PATH)
        return filePath_;
    if (control == IDC_PRINTER_STATUS)
        return status_;
    return {};
}

std::u16string MaintenancePageModel::PortQuestion(std::u16string_view port) const {
    const std::u16string format = context_.strings->Load(kStringPortQuestion).value_or(u"");
    std::u16string text;
    const std::array<FormatArg, 1> args = {FormatArg(port)};
    if (!FormatTo(text, format, args))
        return format;
    return text;
}

void MaintenancePageModel::Open() {
    Platform& p = *context_.platform;
    enabled_.clear();
    focus_ = 0;
    const std::u16string port = store::PrinterPortName(p, context_.printerName);
    store::ConnectionStatus status;
    if (!store::GetConnectionStatus(p, port, status)) {
        OnConnectionLost();
        return;
    }
    lastPrinter_ = store::GetLastPrinterFlag(p, port);
    // The maintenance command is not offered while the port's last-printer flag is set.
    enabled_[IDC_MAINTENANCE] = !lastPrinter_;
    status_ = PrinterStatusText(*context_.strings, &status);
}

void MaintenancePageModel::OnConnectionLost() {
    status_ = PrinterStatusText(*context_.strings, nullptr);
    for (int id : {IDC_FIRMWARE_LABEL, IDC_FIRMWARE_PATH, IDC_FIRMWARE_BROWSE, IDC_FIRMWARE_UPDATE,
                   IDC_LAST_PRINTER, IDC_MAINTENANCE, IDC_CLEAR_ALL}) {
        enabled_[id] = false;
    }
    lastPrinter_ = false;
    focus_ = IDC_ABOUT_BUTTON;
}

void MaintenancePageModel::Browse(const FileChooser& choose) {
    Platform& p = *context_.platform;
    FileDialogRequest request;
    request.titleId = kStringFirmwareTitle;
    request.filterId = kStringFirmwareFilter;
    store::GetFirmwarePath(p, context_.printerName, request.initialFolder);
    request.accept = [&](const std::u16string& path) {
        std::uint32_t level = 0;
        return ValidateFirmwareFile(p, context_.printerName, path, level);
    };
    const std::optional<std::u16string> path = choose ? choose(request) : std::nullopt;
    if (!path)
        return;
    filePath_ = *path;
    store::SetFirmwarePath(p, context_.printerName, FolderOfPath(*path));
}

void MaintenancePageModel::Update() {
    Platform& p = *context_.platform;
    UserPrompts& prompts = *context_.prompts;
    ResourceStrings& strings = *context_.strings;
    focus_ = 0;
    if (!channel::IsWithinAvailabilityHours(p, context_.printerName)) {
        ShowStringBox(prompts, strings, page_, kStringOutsideHours, kStringPrinterTitle,
                      box::kOk | box::kIconError);
        return;
    }
    store::ConnectionStatus status;
    if (!store::GetConnectionStatus(p, store::PrinterPortName(p, context_.printerName), status))
        return;
    const std::u16string path = filePath_.substr(0, store::kPathChars - 1);
    if (path.empty())
        return;
    std::uint32_t fileLevel = 0;
    if (!ValidateFirmwareFile(p, context_.printerName, path, fileLevel))
        return;
    const int answer = prompts.Show(
        page_, FirmwareLevelQuestion(strings, status.firmwareLevel, fileLevel),
        strings.Load(kStringPrinterTitle).value_or(u""), box::kYesNo | box::kIconWarning);
    if (answer != box::kIdYes)
        return;
    bool flashed = false;
    {
        WaitCursor wait(prompts);
        flashed = OutFlashFirmware(strings, p, context_.printerName, path);
    }
    if (!flashed)
        return;
    ShowStringBox(prompts, strings, page_, kStringFlashDone, kStringPrinterTitle,
                  box::kOk | box::kIconInformation);
    filePath_.clear();
    focus_ = IDC_FIRMWARE_BROWSE;
}

void MaintenancePageModel::OnLastPrinterClicked(bool nowChecked) {
    Platform& p = *context_.platform;
    const std::u16string port = store::PrinterPortName(p, context_.printerName);
    lastPrinter_ = nowChecked;
    if (nowChecked) {
        const int answer = context_.prompts->Show(
            page_, PortQuestion(port), context_.strings->Load(kStringPrinterTitle).value_or(u""),
            box::kYesNo | box::kIconWarning);
        if (answer == box::kIdYes)
            enabled_[IDC_MAINTENANCE] = false;
        else
            lastPrinter_ = false;
    } else {
        enabled_[IDC_MAINTENANCE] = true;
    }
    // The flag is stored as the box stood when it was clicked, also when the question was
    // declined: kept so deliberately.
    store::SetLastPrinterFlag(p, port, nowChecked ? 1 : 0);
}

void MaintenancePageModel::Maintenance() {
    Platform& p = *context_.platform;
    const std::u16string port = store::PrinterPortName(p, context_.printerName);
    const int answer = context_.prompts->Show(
        page_, PortQuestion(port), context_.strings->Load(kStringPrinterTitle).value_or(u""),
        box::kYesNo | box::kIconWarning);
    if (answer != box::kIdYes)
        return;
    WaitCursor wait(*context_.prompts);
    channel::OutMaintenanceCommand(p, context_.printerName);
}

void MaintenancePageModel::ClearAll() {
    Platform& p = *context_.platform;
    UserPrompts& prompts = *context_.prompts;
    const int answer = ShowStringBox(prompts, *context_.strings, page_, kStringClearAllQuestion,
                                     kStringPrinterTitle, box::kYesNo | box::kIconWarning);
    if (answer != box::kIdYes)
        return;
    WaitCursor wait(prompts);
    const std::u16string port = store::PrinterPortName(p, context_.printerName);
    store::ConnectionStatus status;
    if (!store::GetConnectionStatus(p, port, status))
        return;
    const std::u16string& id = status.identity;
    channel::OutEraseAllSectors(p, context_.printerName, status.modelCode);
    store::DeleteLogoEntries(p, context_.printerName, id);
    store::DeleteMessageEntries(p, context_.printerName, id);
    store::DeleteSBCSFontEntries(p, context_.printerName, id);
    if (store::HasDbcsArea(status.modelCode))
        store::DeleteDBCSFontEntries(p, context_.printerName, id);
    channel::ResetKX20Printer(p, store::IsSerialConnection(p, port), true, context_.printerName,
                              kResetAfterClearAll);
    prompts.Broadcast(RefreshMessage::Logos, page_);
    prompts.Broadcast(RefreshMessage::Messages, page_);
    prompts.Broadcast(RefreshMessage::Fonts, page_);
}

}  // namespace kx20::firmware
