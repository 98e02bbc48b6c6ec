#include "pages/slot_list_page.h"

#include <algorithm>

#include "pages/page_status.h"
#include "pages/page_text.h"

namespace kx20 {

std::vector<int> NormalisedSelection(std::vector<int> rows, std::size_t rowCount) {
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    std::erase_if(rows, [&](int r) { return r < 0 || static_cast<std::size_t>(r) >= rowCount; });
    return rows;
}

SlotListPage::SlotListPage(PageContext& context, WindowId window, const Kind& kind)
    : context_(context),
      platform_(*context.platform),
      prompts_(*context.prompts),
      window_(window),
      kind_(kind) {}

SlotListPage::~SlotListPage() {
    if (context_.devicePages)
        context_.devicePages->Detach(this);
}

void SlotListPage::Initialise() {
    portName_ = store::PrinterPortName(platform_, context_.printerName);
    store::ConnectionStatus status;
    readable_ = !portName_.empty() && store::GetConnectionStatus(platform_, portName_, status);
    connected_ = readable_ && status.connected;
    if (readable_ && (connected_ || kind_.listWhileUnconnected)) {
        identity_ = status.identity;
        status_ = ModelStatusText(*context_.strings, status.modelCode, !connected_);
    } else {
        identity_.clear();
        status_ = PageString(context_, kStringStatusNoPrinter);
    }
    if (connected_) {
        Reconcile();
        FillList();
    }
    Started(portName_, connected_ ? &status : nullptr);
    if (context_.devicePages)
        context_.devicePages->Attach(kind_.entry, this);
}

std::u16string SlotListPage::StateText(const PageSlot& slot) {
    return PageString(context_, slot.used ? slot_text::kSlotUsed : slot_text::kSlotEmpty);
}

void SlotListPage::SetSlotText(PageSlot& slot) {
    slot.name = PageStringWith(context_, kind_.slotNameId, FormatArg(slot.number));
    slot.state = StateText(slot);
}

void SlotListPage::ClearList() {
    ResetSlots(0);
    selection_.clear();
    ListCleared();
}

void SlotListPage::FillList() {
    ClearList();
    ResetSlots(static_cast<std::size_t>(kind_.slots));
    for (std::size_t row = 0; row < SlotCount(); ++row) {
        PageSlot& slot = SlotAt(row);
        slot.number = static_cast<std::uint32_t>(row + 1);
        SetSlotText(slot);
    }
    LoadCatalogue();
}

std::vector<SlotRow> SlotListPage::Rows() const {
    std::vector<SlotRow> rows;
    for (std::size_t row = 0; row < SlotCount(); ++row)
        rows.push_back({SlotOf(row).name, SlotOf(row).state});
    return rows;
}

void SlotListPage::SetSelection(std::vector<int> rows) {
    selection_ = NormalisedSelection(std::move(rows), SlotCount());
    SelectionChanged();
}

bool SlotListPage::ActEnabled() const {
    return connected_ && selection_.size() == 1 &&
           !SlotOf(static_cast<std::size_t>(selection_[0])).used;
}

bool SlotListPage::DeleteEnabled() const {
    return connected_ && !selection_.empty() &&
           std::all_of(selection_.begin(), selection_.end(),
                       [&](int r) { return SlotOf(static_cast<std::size_t>(r)).used; });
}

void SlotListPage::ShowError(std::uint32_t textId) {
    ShowStringBox(prompts_, *context_.strings, window_, textId, slot_text::kTitle,
                  box::kOk | box::kIconError);
}

void SlotListPage::DeleteSelected() {
    if (selection_.empty())
        return;
    const std::u16string question =
        selection_.size() > 1
            ? PageString(context_, kind_.deleteManyId)
            : PageStringWith(context_, kind_.deleteOneId,
                             FormatArg(SlotAt(static_cast<std::size_t>(selection_[0])).state));
    if (prompts_.Show(window_, question, PageString(context_, slot_text::kTitle),
                      box::kYesNo | box::kIconWarning) != box::kIdYes)
        return;
    WaitCursor wait(prompts_);
    const bool erased = connected_ && EraseArea();
    if (erased) {
        const std::vector<int> rows = selection_;
        for (int row : rows) {
            if (static_cast<std::size_t>(row) >= SlotCount())
                break;
            PageSlot& slot = SlotAt(static_cast<std::size_t>(row));
            if (!slot.used)
                continue;
            if (slot.identity != identity_) {
                // Written for another printer on this port: nothing of this one can be trusted.
                DeleteAllEntries();
                ClearList();
                break;
            }
            DeleteEntry(slot.number);
            slot.used = false;
            Forget(slot);
            SetSlotText(slot);
        }
        if (!Redownload())
            ClearList();
    }
    DeletionDone(erased);
}

void SlotListPage::OnRefresh(WindowId sender) {
    if (sender == window_ || portName_.empty())
        return;
    store::ConnectionStatus status;
    if (!store::GetConnectionStatus(platform_, portName_, status) || !status.connected)
        return;
    if (status.identity == identity_)
        FillList();
}

void SlotListPage::OnConnectionLost() {
    ClearList();
    readable_ = false;
    connected_ = false;
    if (!kind_.listWhileUnconnected)
        identity_.clear();
}

void SlotListPage::OnConnectionChanged(const store::ConnectionStatus& status) {
    readable_ = true;
    connected_ = status.connected;
    identity_ = status.identity;
    Reconcile();
    FillList();
}

}  // namespace kx20
