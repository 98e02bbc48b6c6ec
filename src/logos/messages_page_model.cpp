#include "logos/messages_page_model.h"

#include <algorithm>

#include "channel/printer_hours.h"
#include "pages/page_status.h"
#include "platform/trace.h"
#include "logos/page_common.h"
#include "store/catalogue.h"

namespace kx20::logos {

MessagesPageModel::MessagesPageModel(PageContext& context, WindowId window)
    : context_(context),
      platform_(*context.platform),
      prompts_(*context.prompts),
      strings_(*context.strings),
      pictures_(*context.pictures),
      window_(window) {}

MessagesPageModel::~MessagesPageModel() {
    if (context_.devicePages)
        context_.devicePages->Detach(this);
}

StoreTarget MessagesPageModel::Target() {
    return {strings_, platform_, pictures_, context_.printerName, identity_};
}

void MessagesPageModel::Initialise() {
    portName_ = store::PrinterPortName(platform_, context_.printerName);
    store::ConnectionStatus status;
    if (!portName_.empty() && store::GetConnectionStatus(platform_, portName_, status)) {
        enabled_ = true;
        connected_ = status.connected;
        identity_ = status.identity;
        if (connected_) {
            ReconcileMessages(Target());
            FillList();
        }
        status_ = ModelStatusText(strings_, status.modelCode, !status.connected);
    } else {
        enabled_ = false;
        connected_ = false;
        status_ = LoadText(strings_, text::kStatusUnavailable);
    }
    if (context_.devicePages)
        context_.devicePages->Attach(DevicePageSlot::Messages, this);
}

void MessagesPageModel::SetSlotText(MessageSlot& slot) {
    slot.name = FormatText(strings_, text::kMessageSlotName, FormatArg(slot.number));
    slot.state = LoadText(strings_, slot.used ? text::kSlotUsed : text::kSlotEmpty);
}

void MessagesPageModel::ClearList() {
    slots_.clear();
    selection_.clear();
    editText_.clear();
}

void MessagesPageModel::FillList() {
    ClearList();
    slots_.resize(kMessageSlots);
    for (int n = 0; n < kMessageSlots; ++n) {
        slots_[n].number = static_cast<std::uint32_t>(n + 1);
        SetSlotText(slots_[n]);
    }
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

void MessagesPageModel::SetSelection(std::vector<int> rows) {
    selection_ = NormalisedSelection(std::move(rows), slots_.size());
    editText_ = selection_.size() == 1 ? slots_[selection_[0]].text : std::u16string();
}

bool MessagesPageModel::StoreEnabled() const {
    return enabled_ && connected_ && selection_.size() == 1 && !slots_[selection_[0]].used;
}

bool MessagesPageModel::DeleteEnabled() const {
    return enabled_ && connected_ && !selection_.empty() &&
           std::all_of(selection_.begin(), selection_.end(), [&](int r) { return slots_[r].used; });
}

void MessagesPageModel::Fail() {
    FillList();
    ShowStringBox(prompts_, strings_, window_, text::kMessageFailed, text::kTitle,
                  box::kOk | box::kIconError);
}

bool MessagesPageModel::StoreMessage(std::u16string_view typed) {
    if (typed.empty() || selection_.size() != 1 || slots_[selection_[0]].used)
        return false;
    // The edit takes no more than this; a longer text is cut as the edit would cut it.
    const std::u16string text(typed.substr(0, kMessageEditChars));
    WaitCursor wait(prompts_);
    if (!channel::IsWithinAvailabilityHours(*context_.platform, context_.printerName)) {
        ShowStringBox(prompts_, strings_, window_, text::kMessageFailed, text::kTitle,
                      box::kOk | box::kIconError);
        return false;
    }
    const int row = selection_[0];
    const std::uint32_t number = slots_[static_cast<std::size_t>(row)].number;
    if (!connected_ || !DownloadMessage(Target(), static_cast<std::uint8_t>(number), text)) {
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
    BroadcastMessagesChanged(prompts_, window_);
    MessageSlot& slot = slots_[static_cast<std::size_t>(row)];
    slot.used = true;
    slot.text = text;
    slot.identity = identity_;
    SetSlotText(slot);
    return true;
}

void MessagesPageModel::DeleteSelected() {
    if (selection_.empty())
        return;
    if (!ConfirmDeletion(prompts_, strings_, window_, selection_.size(), text::kDeleteOneMessage,
                         text::kDeleteMessages, slots_[selection_[0]].state)) {
        return;
    }
    WaitCursor wait(prompts_);
    if (connected_ && EraseMessages(Target())) {
        const std::vector<int> rows = selection_;
        for (int row : rows) {
            if (row >= static_cast<int>(slots_.size()))
                break;
            MessageSlot& slot = slots_[static_cast<std::size_t>(row)];
            if (!slot.used)
                continue;
            if (slot.identity != identity_) {
                store::DeleteMessageEntries(platform_, context_.printerName, identity_);
                ClearList();
                break;
            }
            if (auto key = store::OpenMessagesKey(platform_, context_.printerName))
                key->DeleteValue(store::MessageValueName(identity_, slot.number));
            slot.used = false;
            slot.text.clear();
            SetSlotText(slot);
        }
        if (!RedownloadMessages(Target()))
            ClearList();
    }
    editText_.clear();
    BroadcastMessagesChanged(prompts_, window_);
}

void MessagesPageModel::OnRefresh(WindowId sender) {
    if (sender == window_ || portName_.empty())
        return;
    store::ConnectionStatus status;
    if (!store::GetConnectionStatus(platform_, portName_, status) || !status.connected)
        return;
    if (status.identity == identity_)
        FillList();
}

void MessagesPageModel::OnConnectionLost() {
    ClearList();
    enabled_ = false;
    connected_ = false;
}

void MessagesPageModel::OnConnectionChanged(const store::ConnectionStatus& status) {
    enabled_ = true;
    connected_ = status.connected;
    identity_ = status.identity;
    ReconcileMessages(Target());
    FillList();
}

}  // namespace kx20::logos
