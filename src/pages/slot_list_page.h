// The page model both slot pages (logos, messages) are: the printer's numbered slots filled
// from the catalogue of the attached printer, the selection, which actions are enabled, the
// deletion flow (the question, the printer's area erased, the other slots downloaded again),
// the refresh message of other sheets, and the page's part in the connection watch. What a slot
// holds, how it is stored and how the area is erased and re-downloaded is the page's own.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "pages/device_pages.h"
#include "pages/page_context.h"
#include "platform/prompts.h"
#include "store/registry_layout.h"

namespace kx20 {

// The strings the slot pages share.
namespace slot_text {
inline constexpr std::uint32_t kSlotUsed = 2203;
inline constexpr std::uint32_t kSlotEmpty = 2204;
inline constexpr std::uint32_t kTitle = 2220;
}  // namespace slot_text

// What a row of the list shows.
struct SlotRow {
    std::u16string name;
    std::u16string state;
    bool operator==(const SlotRow&) const = default;
};

// What every slot has; the pages' slots add what they hold.
struct PageSlot {
    std::uint32_t number = 0;  // 1..slot count
    bool used = false;
    std::u16string identity;  // the printer the catalogue entry was written for
    std::u16string name;      // column 0
    std::u16string state;     // column 1
};

// A list selection in row order, each row once, rows outside the list left out.
std::vector<int> NormalisedSelection(std::vector<int> rows, std::size_t rowCount);

class SlotListPage : public DevicePage {
  public:
    struct Kind {
        int slots;                    // rows of a filled list
        std::uint32_t slotNameId;     // "... %u" naming a row
        std::uint32_t deleteOneId;    // the question for one row, with its column-1 text
        std::uint32_t deleteManyId;   // the question for several rows
        RefreshMessage refresh;       // what the page broadcasts and listens to
        DevicePageSlot entry;         // its entry in the device pages' record
        // The list stays enabled (and the status line names the model, marked not ready) while
        // the port's status is readable but no printer is connected.
        bool listWhileUnconnected;
    };

    // `context` must carry the platform, prompts, strings and pictures and outlive the page.
    SlotListPage(PageContext& context, WindowId window, const Kind& kind);
    ~SlotListPage() override;
    SlotListPage(const SlotListPage&) = delete;
    SlotListPage& operator=(const SlotListPage&) = delete;

    // Start-up: reads the port; when a printer is connected reconciles the catalogue with it
    // and fills the list. Enters the page in the device pages' record.
    void Initialise();

    // The rows (none while the list is cleared) and the selected ones, in row order.
    std::vector<SlotRow> Rows() const;
    void SetSelection(std::vector<int> rows);
    const std::vector<int>& Selection() const { return selection_; }

    bool Connected() const { return connected_; }
    bool ListEnabled() const { return kind_.listWhileUnconnected ? readable_ : connected_; }
    // The page's action on an empty slot (add, store): one empty row selected.
    bool ActEnabled() const;
    bool DeleteEnabled() const;
    // The Delete key acts only when every selected row is used.
    bool DeleteKeyActs() const { return DeleteEnabled(); }
    const std::u16string& StatusText() const { return status_; }

    // Asks, then erases the printer's area and downloads the unselected slots again.
    void DeleteSelected();
    // The refresh message; one the page sent itself is ignored, and the list is refilled only
    // while the same printer is attached (the connection watch notices another one).
    void OnRefresh(WindowId sender);

    // DevicePage
    void SetStatusText(std::u16string_view text) override { status_ = std::u16string(text); }
    void OnConnectionLost() override;
    void OnConnectionChanged(const store::ConnectionStatus& status) override;

  protected:
    // The page's slots.
    virtual std::size_t SlotCount() const = 0;
    virtual PageSlot& SlotAt(std::size_t row) = 0;
    const PageSlot& SlotOf(std::size_t row) const {
        return const_cast<SlotListPage*>(this)->SlotAt(row);
    }
    // `count` slots holding nothing.
    virtual void ResetSlots(std::size_t count) = 0;
    // The catalogue's entries of the attached printer into the slots.
    virtual void LoadCatalogue() = 0;
    // Column 1 of a slot.
    virtual std::u16string StateText(const PageSlot& slot);
    // The printer's catalogue against the printer's own checksum, at start and on a change.
    virtual void Reconcile() = 0;
    // The deletion's steps: the whole area, one slot's catalogue entry, every entry of the
    // printer, the remaining slots downloaded again.
    virtual bool EraseArea() = 0;
    virtual void DeleteEntry(std::uint32_t number) = 0;
    virtual void DeleteAllEntries() = 0;
    virtual bool Redownload() = 0;
    // A slot whose entry was deleted: forgets what it held.
    virtual void Forget(PageSlot& slot) = 0;
    // After a confirmed deletion, `erased` when the area was erased.
    virtual void DeletionDone(bool erased) = 0;
    virtual void SelectionChanged() {}
    virtual void ListCleared() {}
    // The page has read the port at start: its name and, when connected, the status.
    virtual void Started(const std::u16string& /*portName*/,
                         const store::ConnectionStatus* /*connected*/) {}

    void FillList();
    void ClearList();
    void SetSlotText(PageSlot& slot);
    void Broadcast() { prompts_.Broadcast(kind_.refresh, window_); }
    void SelectOnly(int row) { selection_ = {row}; }
    // An error box over the page.
    void ShowError(std::uint32_t textId);

    PageContext& context_;
    Platform& platform_;
    UserPrompts& prompts_;
    const WindowId window_;
    // The attached printer's identity (that of the port's status record while it is readable).
    std::u16string identity_;

  private:
    void Enter(const store::ConnectionStatus& status);

    const Kind kind_;
    std::u16string portName_;
    bool readable_ = false;
    bool connected_ = false;
    std::u16string status_;
    std::vector<int> selection_;
};

}  // namespace kx20
