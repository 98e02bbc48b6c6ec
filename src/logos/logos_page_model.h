// The logos page without its window: the printer's 40 logo slots filled from the catalogue,
// which buttons are enabled, adding a picture to an empty slot (converted and downloaded at
// once), deleting logos (the whole area is erased and the rest downloaded again), the preview's
// slot, and the connection timer that keeps every device page in step with the printer.
// The dialog procedure maps its controls onto this model and shows what it says.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "pages/page_context.h"
#include "pages/device_pages.h"
#include "logos/logo_store.h"
#include "store/registry_layout.h"

namespace kx20::logos {

inline constexpr int kLogoSlots = 40;
// The printer's logo memory; a new picture must leave part of it free.
inline constexpr std::uint64_t kLogoMemoryBytes = 0x10000;

struct LogoForm {
    bool fullWidth = true;
    bool scaleToFit = true;
    bool operator==(const LogoForm&) const = default;
};
// The file dialog's form list: 0 full width scaled, 1 full width, 2 narrow scaled, 3 narrow.
LogoForm FormFromChoice(int entry);
// String 2120 to 2123 for the form.
std::uint32_t FormTextId(LogoForm form);

struct LogoSlot {
    std::uint32_t number = 0;  // 1..40
    bool used = false;
    LogoForm form;
    std::u16string identity;
    Bytes picture;         // the picture file's own bytes, empty when unused
    std::u16string name;   // column 0: "Logo n"
    std::u16string state;  // column 1: empty, or stored with its form
};

// The connection state the timer compares.
struct ConnectionWatch {
    bool connected = false;
    std::u16string identity;
    std::uint32_t modelCode = 0;
    std::uint8_t firmwareLevel = 0;
};

class LogosPageModel : public DevicePage {
  public:
    // `context` must carry the platform, prompts, strings and pictures and outlive the model.
    LogosPageModel(PageContext& context, WindowId window);
    ~LogosPageModel() override;
    LogosPageModel(const LogosPageModel&) = delete;
    LogosPageModel& operator=(const LogosPageModel&) = delete;

    // Start-up: reads the port; when connected reconciles the catalogue with the printer and
    // fills the list. Creates the shared record of the device pages with this page in it.
    void Initialise();

    // The rows (empty while the list is cleared) and the selected ones, in row order.
    const std::vector<LogoSlot>& Slots() const { return slots_; }
    void SetSelection(std::vector<int> rows);
    const std::vector<int>& Selection() const { return selection_; }

    bool Connected() const { return watch_.connected; }
    bool ListEnabled() const { return watch_.connected; }
    bool AddEnabled() const;
    bool DeleteEnabled() const;
    const std::u16string& StatusText() const { return status_; }

    // The slot the preview shows: exactly one used row with picture bytes selected.
    const LogoSlot* PreviewSlot() const;

    // Adding: the slot's number when the flow may start (one empty row selected).
    std::optional<std::uint32_t> AddLogoNumber() const;
    // The folder the file dialog opens in: LogosPath, or empty for the current folder.
    std::u16string InitialFolder();
    // The file dialog's check when the user confirms `path`: false (after showing string 2231
    // over `dialog`) when the picture, at its own size, would not fit in the logo memory left.
    bool AcceptLogoFile(std::u16string_view path, WindowId dialog);
    // The rest of the flow once the dialog closed with `path` in `folder`: availability hours,
    // conversion and download, registration, refresh. True when the logo was stored.
    bool AddLogo(std::u16string_view path, LogoForm form, std::u16string_view folder);

    // Asks, then erases the printer's logos and downloads the unselected ones again.
    void DeleteSelected();
    // The Delete key acts only when every selected row is used.
    bool DeleteKeyActs() const;

    // The connection timer (every 100 ms).
    void OnTimer();
    // The logos refresh message; a message the page sent itself is ignored.
    void OnRefresh(WindowId sender);

    // DevicePage
    void SetStatusText(std::u16string_view text) override { status_ = std::u16string(text); }
    void OnConnectionLost() override;
    void OnConnectionChanged(const store::ConnectionStatus& status) override;
    void UpdateEnablement() override {}

    // The logo memory the port's stored logos take, as the file dialog reads their values.
    std::uint64_t LogoMemoryInUse();

  private:
    StoreTarget Target();
    bool ReadStatus(store::ConnectionStatus& status);
    void FillList();
    void ClearList();
    void SetSlotText(LogoSlot& slot);
    void FailAdd();

    PageContext& context_;
    Platform& platform_;
    UserPrompts& prompts_;
    ResourceStrings& strings_;
    Pictures& pictures_;
    const WindowId window_;
    std::u16string portName_;
    ConnectionWatch watch_;
    std::u16string status_;
    std::vector<LogoSlot> slots_;
    std::vector<int> selection_;
    DevicePages pages_;
};

}  // namespace kx20::logos
