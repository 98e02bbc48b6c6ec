#include "logos/logos_page.h"

#include "channel/printer_hours.h"
#include "ids_device_pages.h"
#include "pages/page_status.h"
#include "pages/page_text.h"
#include "platform/picture_files.h"
#include "platform/trace.h"
#include "store/catalogue.h"

namespace kx20::logos {

namespace {

// The file dialog reads a stored logo value with one 32-bit field fewer than the record has:
// its picture size from bytes 26-29 (the end of the identity) and the picture from byte 30.
constexpr std::size_t kMisreadSizeOffset = 26;
constexpr std::size_t kMisreadPictureOffset = 30;

constexpr SlotListPage::Kind kLogosKind = {kLogoSlots,         text::kLogoSlotName,
                                           text::kDeleteOneLogo, text::kDeleteLogos,
                                           RefreshMessage::Logos, DevicePageSlot::Logos,
                                           false};

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
    : SlotListPage(context, window, kLogosKind),
      pictures_(*context.pictures),
      watch_(context, pages_) {}

LogosPageModel::~LogosPageModel() {
    if (context_.devicePages == &pages_)
        context_.devicePages = nullptr;
}

StoreTarget LogosPageModel::Target() {
    return {*context_.strings, platform_, pictures_, context_.printerName, identity_};
}

void LogosPageModel::Started(const std::u16string& portName,
                             const store::ConnectionStatus* connected) {
    // The logos page keeps the device pages' record and its watch while it lives.
    watch_.Start(portName, connected);
    context_.devicePages = &pages_;
}

std::u16string LogosPageModel::StateText(const PageSlot& slot) {
    if (!slot.used)
        return SlotListPage::StateText(slot);
    const LogoForm form = static_cast<const LogoSlot&>(slot).form;
    return PageString(context_, slot_text::kSlotUsed) + u" (" +
           PageString(context_, FormTextId(form)) + u")";
}

void LogosPageModel::LoadCatalogue() {
    for (store::LogoRecord& record :
         store::ReadLogoRecords(platform_, context_.printerName, identity_)) {
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

const LogoSlot* LogosPageModel::PreviewSlot() const {
    if (Selection().size() != 1)
        return nullptr;
    const LogoSlot& slot = slots_[static_cast<std::size_t>(Selection()[0])];
    return slot.used && !slot.picture.empty() ? &slot : nullptr;
}

std::optional<std::uint32_t> LogosPageModel::AddLogoNumber() const {
    if (!AddEnabled())
        return std::nullopt;
    return slots_[static_cast<std::size_t>(Selection()[0])].number;
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
    for (const Bytes& value : store::ReadLogoValues(platform_, context_.printerName, identity_)) {
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
    ShowStringBox(prompts_, *context_.strings, dialog, text::kLogoTooBig, slot_text::kTitle,
                  box::kOk | box::kIconWarning);
    return false;
}

bool LogosPageModel::AddLogo(std::u16string_view path, LogoForm form, std::u16string_view folder) {
    const auto number = AddLogoNumber();
    if (!number)
        return false;
    bool stored = false;
    if (!channel::IsWithinAvailabilityHours(platform_, context_.printerName)) {
        ShowError(text::kLogoFailed);
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
                                       identity_, context_.printerName)) {
            Broadcast();
            const int row = static_cast<int>(*number) - 1;
            LogoSlot& slot = slots_[static_cast<std::size_t>(row)];
            slot.used = true;
            slot.form = form;
            slot.identity = identity_;
            slot.picture = *file;
            SetSlotText(slot);
            SelectOnly(row);
            stored = true;
        }
        if (!stored) {
            FillList();
            ShowError(text::kLogoFailed);
        }
    }
    store::SetLogosPath(platform_, context_.printerName, folder);
    return stored;
}

bool LogosPageModel::AddThrough(const FileChooser& choose,
                                std::function<void(WindowId, const std::u16string&)> paintPreview) {
    if (!AddLogoNumber())
        return false;
    LogoForm form = FormFromChoice(0);
    FileDialogRequest request;
    request.titleId = text::kAddLogoTitle;
    request.filterId = text::kLogoFileFilter;
    request.initialFolder = InitialFolder();
    request.acceptOverDialog = [this](const std::u16string& path, WindowId dialog) {
        return AcceptLogoFile(path, dialog);
    };
    request.templateId = IDD_LOGO_FILE;
    request.templateModule = context_.resourceModule;
    request.choiceControl = IDC_LOGO_FORM;
    for (int entry = 0; entry < kLogoForms; ++entry)
        request.choices.push_back(PageString(context_, FormTextId(FormFromChoice(entry))));
    request.onChoice = [&form](int entry) { form = FormFromChoice(entry); };
    request.previewControl = IDC_LOGO_PREVIEW;
    request.paintPreview = std::move(paintPreview);
    const std::optional<std::u16string> path = choose(request);
    if (!path)
        return false;
    // The folder keeps its last separator, as the dialog's file offset gives it.
    const std::size_t separator = path->find_last_of(u"\\/");
    const std::u16string folder =
        separator == std::u16string::npos ? std::u16string() : path->substr(0, separator + 1);
    return AddLogo(*path, form, folder);
}

void LogosPageModel::DeleteEntry(std::uint32_t number) {
    if (auto key = store::OpenLogosKey(platform_, context_.printerName))
        key->DeleteValue(store::LogoValueName(identity_, number));
}

void LogosPageModel::DeleteAllEntries() {
    store::DeleteLogoEntries(platform_, context_.printerName, identity_);
}

void LogosPageModel::DeletionDone(bool erased) {
    if (erased)
        Broadcast();
}

void LogosPageModel::OnConnectionLost() {
    SlotListPage::OnConnectionLost();
    Broadcast();
    // Other sheets' messages pages forget the printer too.
    prompts_.Broadcast(RefreshMessage::Messages, window_);
}

void LogosPageModel::OnConnectionChanged(const store::ConnectionStatus& status) {
    SlotListPage::OnConnectionChanged(status);
    Broadcast();
}

}  // namespace kx20::logos
