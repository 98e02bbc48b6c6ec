// The messages page without its window: the printer's 25 stored-message slots filled from the
// catalogue, storing a typed text into an empty slot (downloaded at once; a printer that then
// reports checksum 0 has its message area wiped), deleting messages (the area is erased and the
// rest downloaded again), and its part in the logos page's connection timer.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "pages/page_context.h"
#include "pages/device_pages.h"
#include "logos/logo_store.h"

namespace kx20::logos {

inline constexpr int kMessageSlots = 25;
inline constexpr std::size_t kMessageEditChars = 255;

struct MessageSlot {
    std::uint32_t number = 0;  // 1..25
    bool used = false;
    std::u16string identity;
    std::u16string text;
    std::u16string name;   // column 0: "Message n"
    std::u16string state;  // column 1: empty or stored
};

class MessagesPageModel : public DevicePage {
  public:
    // `context` must carry the platform, prompts, strings and pictures and outlive the model.
    MessagesPageModel(PageContext& context, WindowId window);
    ~MessagesPageModel() override;
    MessagesPageModel(const MessagesPageModel&) = delete;
    MessagesPageModel& operator=(const MessagesPageModel&) = delete;

    // Start-up: reads the port; when connected reconciles and fills the list. Enters itself in
    // the device pages' record when the logos page keeps one.
    void Initialise();

    const std::vector<MessageSlot>& Slots() const { return slots_; }
    // Also sets the edit's text: the row's text with exactly one row selected, else empty.
    void SetSelection(std::vector<int> rows);
    const std::vector<int>& Selection() const { return selection_; }
    const std::u16string& EditText() const { return editText_; }

    bool ControlsEnabled() const { return enabled_; }  // list and edit
    bool StoreEnabled() const;
    bool DeleteEnabled() const;
    bool DeleteKeyActs() const { return DeleteEnabled(); }
    const std::u16string& StatusText() const { return status_; }

    // Stores `text` in the one selected empty row; nothing happens otherwise. True when stored.
    bool StoreMessage(std::u16string_view text);
    // Asks, then erases the printer's messages and downloads the unselected ones again.
    void DeleteSelected();
    // The messages refresh message; a message the page sent itself is ignored.
    void OnRefresh(WindowId sender);

    // DevicePage
    void SetStatusText(std::u16string_view text) override { status_ = std::u16string(text); }
    void OnConnectionLost() override;
    void OnConnectionChanged(const store::ConnectionStatus& status) override;

  private:
    StoreTarget Target();
    void FillList();
    void ClearList();
    void SetSlotText(MessageSlot& slot);
    void Fail();

    PageContext& context_;
    Platform& platform_;
    UserPrompts& prompts_;
    ResourceStrings& strings_;
    Pictures& pictures_;
    const WindowId window_;
    std::u16string portName_;
    bool enabled_ = false;
    bool connected_ = false;
    std::u16string identity_;
    std::u16string status_;
    std::u16string editText_;
    std::vector<MessageSlot> slots_;
    std::vector<int> selection_;
};

}  // namespace kx20::logos
