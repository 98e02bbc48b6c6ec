#include "logos/messages_page.h"

#include "channel/printer_hours.h"
#include "platform/trace.h"
#include "store/catalogue.h"

namespace kx20::logos {

namespace {

constexpr SlotListPage::Kind kMessagesKind = {
    kMessageSlots,           text::kMessageSlotName,   text::kDeleteOneMessage,
    text::kDeleteMessages,   RefreshMessage::Messages, DevicePageSlot::Messages,
    true};

}  // namespace

MessagesPageModel::MessagesPageModel(PageContext& context, WindowId window)
    : SlotListPage(context, window, kMessagesKind), pictures_(*context.pictures) {}

StoreTarget MessagesPageModel::Target() {
    return {*context_.strings, platform_, pictures_, context_.printerName, identity_};
}

void MessagesPageModel::LoadCatalogue() {
    for (store::MessageRecord& record :
         store::ReadMessageRecords(platform_, context_.printerName, identity_)) {
        if (record.number < 1 || record.number > kMessageSlots)
            continue;
        MessageSlot& slot = slots_[record.number - 1];
        slot.used = true;
        slot.identity = std::move(record.identity);
        slot.text = std::move(record.text);
        SetSlotText(slot);
    }
}

void MessagesPageModel::SelectionChanged() {
    editText_ = Selection().size() == 1 ? slots_[static_cast<std::size_t>(Selection()[0])].text
                                        : std::u16string();
}

void MessagesPageModel::Fail() {
    FillList();
    ShowError(text::kMessageFailed);
}

bool MessagesPageModel::StoreMessage(std::u16string_view typed) {
    if (typed.empty() || Selection().size() != 1 ||
        slots_[static_cast<std::size_t>(Selection()[0])].used)
        return false;
    // The edit takes no more than this; a longer text is cut as the edit would cut it.
    const std::u16string text(typed.substr(0, kMessageEditChars));
    WaitCursor wait(prompts_);
    if (!channel::IsWithinAvailabilityHours(platform_, context_.printerName)) {
        ShowError(text::kMessageFailed);
        return false;
    }
    const int row = Selection()[0];
    const std::uint32_t number = slots_[static_cast<std::size_t>(row)].number;
    if (!Connected() || !DownloadMessage(Target(), static_cast<std::uint8_t>(number), text)) {
        Fail();
        return false;
    }
    const std::uint32_t crc = QueryMessagesCrc(Target());
    if (crc == 0) {
        // The printer kept nothing it can vouch for: wipe its messages and the catalogue.
        DrvTrace(u"StoreMessage - MessagesCRC 0 after download, message area erased\n");
        EraseMessages(Target());
        store::DeleteMessageEntries(platform_, context_.printerName, identity_);
        Fail();
        return false;
    }
    StoreMessageCrc(Target(), crc);
    if (!store::RegisterMessage(platform_, number, text, identity_, context_.printerName)) {
        Fail();
        return false;
    }
    Broadcast();
    MessageSlot& slot = slots_[static_cast<std::size_t>(row)];
    slot.used = true;
    slot.text = text;
    slot.identity = identity_;
    SetSlotText(slot);
    return true;
}

void MessagesPageModel::DeleteEntry(std::uint32_t number) {
    if (auto key = store::OpenMessagesKey(platform_, context_.printerName))
        key->DeleteValue(store::MessageValueName(identity_, number));
}

void MessagesPageModel::DeleteAllEntries() {
    store::DeleteMessageEntries(platform_, context_.printerName, identity_);
}

void MessagesPageModel::DeletionDone(bool) {
    editText_.clear();
    Broadcast();
}

}  // namespace kx20::logos
