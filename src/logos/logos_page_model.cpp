#include "logos/logos_page_model.h"

#include <algorithm>

#include "channel/printer_hours.h"
#include "pages/page_status.h"
#include "platform/trace.h"
#include "logos/page_common.h"
#include "store/catalogue.h"

namespace kx20::logos {

namespace {

// The file dialog reads a stored logo value with one 32-bit field fewer than the record has:
// its picture size from bytes 26-29 (the end of the identity) and the picture from byte 30.
constexpr std::size_t kMisreadSizeOffset = 26;
constexpr std::size_t kMisreadPictureOffset = 30;

}  // namespace

LogoForm FormFromChoice(int entry) {
    return {entry != 2 && entry != 3, entry != 1 && entry != 3};
}

std::uint32_t FormTextId(LogoForm form) {
    if (form.fullWidth)
        return form.scaleToFit ? text::kFormFullScaled : text::kFormFull;
    return form.scaleToFit ? text::kFormNarrowScaled : text::kFormNarrow;
}

LogosPageModel::LogosPageModel(PageContext& context, WindowId window)
    : context_(context),
      platform_(*context.platform),
      prompts_(*context.prompts),
      strings_(*context.strings),
      pictures_(*context.pictures),
      window_(window) {}

LogosPageModel::~LogosPageModel() {
    if (context_.devicePages == &pages_)
        context_.devicePages = nullptr;
}

StoreTarget LogosPageModel::Target() {
    return {strings_, platform_, pictures_, context_.printerName, watch_.identity};
}

bool LogosPageModel::ReadStatus(store::ConnectionStatus& status) {
    return !portName_.empty() && store::GetConnectionStatus(platform_, portName_, status);
}

void LogosPageModel::Initialise() {
    portName_ = store::PrinterPortName(platform_, context_.printerName);
    store::ConnectionStatus status;
    if (ReadStatus(status) && status.connected) {
        watch_ = {true, status.identity, status.modelCode, status.firmwareLevel};
        ReconcileLogos(Target());
        FillList();
        status_ = ModelStatusText(strings_, status.modelCode, false);
    } else {
        watch_ = {};
        status_ = LoadText(strings_, text::kStatusUnavailable);
    }
    pages_.Attach(DevicePageSlot::Logos, this);
    context_.devicePages = &pages_;
}

void LogosPageModel::SetSlotText(LogoSlot& slot) {
    slot.name = FormatText(strings_, text::kLogoSlotName, FormatArg(slot.number));
    slot.state = slot.used ? LoadText(strings_, text::kSlotUsed) + u" (" +
                                 LoadText(strings_, FormTextId(slot.form)) + u")"
                           : LoadText(strings_, text::kSlotEmpty);
}

void LogosPageModel::ClearList() {
    slots_.clear();
    selection_.clear();
}

void LogosPageModel::FillList() {
    ClearList();
    slots_.resize(kLogoSlots);
    for (int n = 0; n < kLogoSlots; ++n) {
        slots_[n].number = static_cast<std::uint32_t>(n + 1);
        SetSlotText(slots_[n]);
    }
    for (store::LogoRecord& record :
         store::ReadLogoRecords(platform_, context_.printerName, watch_.identity)) {
        if (record.number < 1 || record.number > kLogoSlots)
            continue;  // no row to show it in
        LogoSlot& slot = slots_[record.number - 1];
        slot.used = true;
        slot.form = {record.fullWidth != 0, record.scaleToFit != 0};
        slot.identity = record.identity;
        slot.picture = std::move(record.picture);
        SetSlotText(slot);
    }
}

void LogosPageModel::SetSelection(std::vector<int> rows) {
    selection_ = NormalisedSelection(std::move(rows), slots_.size());
}

bool LogosPageModel::AddEnabled() const {
    return watch_.connected && selection_.size() == 1 && !slots_[selection_[0]].used;
}

bool LogosPageModel::DeleteEnabled() const {
    return watch_.connected && !selection_.empty() &&
           std::all_of(selection_.begin(), selection_.end(), [&](int r) { return slots_[r].used; });
}

bool LogosPageModel::DeleteKeyActs() const {
    return DeleteEnabled();
}

const LogoSlot* LogosPageModel::PreviewSlot() const {
    if (selection_.size() != 1)
        return nullptr;
    const LogoSlot& slot = slots_[selection_[0]];
    return slot.used && !slot.picture.empty() ? &slot : nullptr;
}

std::optional<std::uint32_t> LogosPageModel::AddLogoNumber() const {
    if (!AddEnabled())
        return std::nullopt;
    return slots_[selection_[0]].number;
}

std::u16string LogosPageModel::InitialFolder() {
    std::u16string folder;
    if (!store::GetLogosPath(platform_, context_.printerName, folder))
        return {};
    return folder;
}

std::uint64_t LogosPageModel::LogoMemoryInUse() {
    FileSystem& files = platform_.files;
    std::uint64_t used = 0;
    for (const Bytes& value :
         store::ReadLogoValues(platform_, context_.printerName, watch_.identity)) {
        const std::uint32_t size = ReadU32(value, kMisreadSizeOffset);
        // A size beyond the bytes that follow it counts as nothing.
        if (!FitsIn(value.size(), kMisreadPictureOffset, size))
            continue;
        const std::u16string temp = WriteTempPicture(
            files, u"LogoMemoryInUse", ByteSpan(value).subspan(kMisreadPictureOffset, size));
        if (temp.empty())
            continue;
        PixelSize picture;
        if (LoadPictureFile(files, pictures_, temp, nullptr, 0, 0, 0, 0, picture))
            used += static_cast<std::uint64_t>(picture.width) * picture.height / 8;
        files.Remove(temp);
    }
    return used;
}

bool LogosPageModel::AcceptLogoFile(std::u16string_view path, WindowId dialog) {
    PixelSize picture;
    // A picture that cannot be measured is left to the conversion, which reports it.
    if (!LoadPictureFile(platform_.files, pictures_, path, nullptr, 0, 0, 0, 0, picture))
        picture = {};
    const std::uint64_t needed = static_cast<std::uint64_t>(picture.width) * picture.height / 8;
    if (needed + LogoMemoryInUse() < kLogoMemoryBytes)
        return true;
    ShowStringBox(prompts_, strings_, dialog, text::kLogoTooBig, text::kTitle,
                  box::kOk | box::kIconWarning);
    return false;
}

void LogosPageModel::FailAdd() {
    FillList();
    ShowStringBox(prompts_, strings_, window_, text::kLogoFailed, text::kTitle,
                  box::kOk | box::kIconError);
}

bool LogosPageModel::AddLogo(std::u16string_view path, LogoForm form, std::u16string_view folder) {
    const auto number = AddLogoNumber();
    if (!number)
        return false;
    bool stored = false;
    if (!channel::IsWithinAvailabilityHours(*context_.platform, context_.printerName)) {
        ShowStringBox(prompts_, strings_, window_, text::kLogoFailed, text::kTitle,
                      box::kOk | box::kIconError);
    } else {
        WaitCursor wait(prompts_);
        const auto file = ReadWholeFile(platform_.files, path);
        if (!file) {
            DrvTrace(u"AddLogo - cannot read the picture file\n");
        } else if (ConvertAndDownloadLogo(Target(), static_cast<std::uint8_t>(*number),
                                          form.fullWidth, form.scaleToFit, *file) &&
                   store::RegisterLogo(platform_, *number, form.fullWidth ? 1 : 0,
                                       form.scaleToFit ? 1 : 0,
                                       static_cast<std::uint32_t>(file->size()), *file,
                                       watch_.identity, context_.printerName)) {
            BroadcastLogosChanged(prompts_, window_);
            const int row = static_cast<int>(*number) - 1;
            LogoSlot& slot = slots_[static_cast<std::size_t>(row)];
            slot.used = true;
            slot.form = form;
            slot.identity = watch_.identity;
            slot.picture = *file;
            SetSlotText(slot);
            selection_ = {row};
            stored = true;
        }
        if (!stored)
            FailAdd();
    }
    store::SetLogosPath(platform_, context_.printerName, folder);
    return stored;
}

void LogosPageModel::DeleteSelected() {
    if (selection_.empty())
        return;
    if (!ConfirmDeletion(prompts_, strings_, window_, selection_.size(), text::kDeleteOneLogo,
                         text::kDeleteLogos, slots_[selection_[0]].state)) {
        return;
    }
    WaitCursor wait(prompts_);
    if (!watch_.connected || !EraseLogos(Target()))
        return;
    const std::vector<int> rows = selection_;
    for (int row : rows) {
        if (row >= static_cast<int>(slots_.size()))
            break;
        LogoSlot& slot = slots_[static_cast<std::size_t>(row)];
        if (!slot.used)
            continue;
        if (slot.identity != watch_.identity) {
            // Written by another printer on this port: nothing of this one can be trusted.
            store::DeleteLogoEntries(platform_, context_.printerName, watch_.identity);
            ClearList();
            break;
        }
        if (auto key = store::OpenLogosKey(platform_, context_.printerName))
            key->DeleteValue(store::LogoValueName(watch_.identity, slot.number));
        slot.used = false;
        slot.picture.clear();
        slot.state = LoadText(strings_, text::kSlotEmpty);
    }
    if (!RedownloadLogos(Target()))
        ClearList();
    BroadcastLogosChanged(prompts_, window_);
}

void LogosPageModel::OnConnectionLost() {
    ClearList();
    watch_ = {};
}

void LogosPageModel::OnConnectionChanged(const store::ConnectionStatus& status) {
    watch_ = {true, status.identity, status.modelCode, status.firmwareLevel};
    ReconcileLogos(Target());
    FillList();
}

void LogosPageModel::OnTimer() {
    store::ConnectionStatus status;
    const bool connected = ReadStatus(status) && status.connected;
    if (watch_.connected && !connected) {
        OnConnectionLost();
        BroadcastLogosChanged(prompts_, window_);
        if (DevicePage* messages = pages_.At(DevicePageSlot::Messages))
            messages->OnConnectionLost();
        BroadcastMessagesChanged(prompts_, window_);
        for (DevicePageSlot slot : {DevicePageSlot::Fonts, DevicePageSlot::Maintenance}) {
            if (DevicePage* page = pages_.At(slot))
                page->OnConnectionLost();
        }
        status_ = LoadText(strings_, text::kStatusUnavailable);
        pages_.ForEachOther(this, [&](DevicePage& page) { page.SetStatusText(status_); });
    } else if (connected && (!watch_.connected || status.identity != watch_.identity ||
                             status.modelCode != watch_.modelCode ||
                             status.firmwareLevel != watch_.firmwareLevel)) {
        status_ = ModelStatusText(strings_, status.modelCode, false);
        OnConnectionChanged(status);
        BroadcastLogosChanged(prompts_, window_);
        pages_.ForEachOther(this, [&](DevicePage& page) { page.OnConnectionChanged(status); });
        pages_.ForEachOther(this, [&](DevicePage& page) { page.SetStatusText(status_); });
    }
    pages_.ForEachOther(this, [](DevicePage& page) { page.UpdateEnablement(); });
}

void LogosPageModel::OnRefresh(WindowId sender) {
    if (sender == window_)
        return;
    store::ConnectionStatus status;
    if (!ReadStatus(status) || !status.connected)
        return;
    // The timer notices another printer; until then the list stays that of the known one.
    if (status.identity == watch_.identity)
        FillList();
}

}  // namespace kx20::logos
