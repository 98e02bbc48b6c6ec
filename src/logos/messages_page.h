// The messages page without its window: the slot-list page over the printer's 25 stored-message
// slots, with storing a typed text into an empty slot (downloaded at once; a printer that then
// reports checksum 0 has its message area wiped) and the edit that shows the selected message.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "logos/logo_store.h"
#include "pages/slot_list_page.h"

namespace kx20::logos {

inline constexpr int kMessageSlots = 25;
inline constexpr std::size_t kMessageEditChars = 255;

// The messages page's strings.
namespace text {
inline constexpr std::uint32_t kStoreMessageCaption = 1162;
inline constexpr std::uint32_t kDeleteMessageCaption = 1163;
inline constexpr std::uint32_t kMessageSlotName = 2206;
inline constexpr std::uint32_t kDeleteOneMessage = 2236;
inline constexpr std::uint32_t kDeleteMessages = 2237;
inline constexpr std::uint32_t kMessageFailed = 2238;
}  // namespace text

struct MessageSlot : PageSlot {
    std::u16string text;
};

class MessagesPageModel : public SlotListPage {
  public:
    // `context` must carry the platform, prompts, strings and pictures and outlive the model.
    MessagesPageModel(PageContext& context, WindowId window);

    const std::vector<MessageSlot>& Slots() const { return slots_; }
    // The edit's text: the row's text when exactly one row was selected, else empty.
    const std::u16string& EditText() const { return editText_; }

    bool ControlsEnabled() const { return ListEnabled(); }  // list and edit
    bool StoreEnabled() const { return ActEnabled(); }

    // Stores `text` in the one selected empty row; nothing happens otherwise. True when stored.
    bool StoreMessage(std::u16string_view text);

  private:
    std::size_t SlotCount() const override { return slots_.size(); }
    PageSlot& SlotAt(std::size_t row) override { return slots_[row]; }
    void ResetSlots(std::size_t count) override { slots_.assign(count, {}); }
    void LoadCatalogue() override;
    void Reconcile() override { ReconcileMessages(Target()); }
    bool EraseArea() override { return EraseMessages(Target()); }
    void DeleteEntry(std::uint32_t number) override;
    void DeleteAllEntries() override;
    bool Redownload() override { return RedownloadMessages(Target()); }
    void Forget(PageSlot& slot) override { static_cast<MessageSlot&>(slot).text.clear(); }
    void DeletionDone(bool erased) override;
    void SelectionChanged() override;
    void ListCleared() override { editText_.clear(); }

    StoreTarget Target();
    void Fail();

    Pictures& pictures_;
    std::u16string editText_;
    std::vector<MessageSlot> slots_;
};

}  // namespace kx20::logos
