// The logos page without its window: the slot-list page over the printer's 40 logo slots, with
// adding a picture to an empty slot (converted and downloaded at once), the logo file dialog's
// request (form list, preview, the logo-memory check), the preview's slot, and the device
// pages' record with the connection watch that keeps every device page in step with the
// printer. The dialog procedure maps its controls onto this model and shows what it says.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "logos/logo_store.h"
#include "pages/connection_watch.h"
#include "pages/device_pages.h"
#include "pages/slot_list_page.h"
#include "platform/file_choice.h"

namespace kx20::logos {

inline constexpr int kLogoSlots = 40;
// The printer's logo memory; a new picture must leave part of it free.
inline constexpr std::uint64_t kLogoMemoryBytes = 0x10000;

// The logos page's strings.
namespace text {
inline constexpr std::uint32_t kLogoFileFilter = 1001;
inline constexpr std::uint32_t kAddLogoCaption = 1151;
inline constexpr std::uint32_t kDeleteLogoCaption = 1153;
inline constexpr std::uint32_t kFormFullScaled = 2120;
inline constexpr std::uint32_t kFormFull = 2121;
inline constexpr std::uint32_t kFormNarrowScaled = 2122;
inline constexpr std::uint32_t kFormNarrow = 2123;
inline constexpr std::uint32_t kAddLogoTitle = 2166;
inline constexpr std::uint32_t kLogoSlotName = 2205;
inline constexpr std::uint32_t kLogoTooBig = 2231;
inline constexpr std::uint32_t kDeleteOneLogo = 2232;
inline constexpr std::uint32_t kDeleteLogos = 2233;
inline constexpr std::uint32_t kLogoFailed = 2234;
}  // namespace text

struct LogoForm {
    bool fullWidth = true;
    bool scaleToFit = true;
    bool operator==(const LogoForm&) const = default;
};
// The file dialog's form list: 0 full width scaled, 1 full width, 2 narrow scaled, 3 narrow.
inline constexpr int kLogoForms = 4;
LogoForm FormFromChoice(int entry);
// String 2120 to 2123 for the form.
std::uint32_t FormTextId(LogoForm form);

struct LogoSlot : PageSlot {
    LogoForm form;
    Bytes picture;  // the picture file's own bytes, empty when unused
};

class LogosPageModel : public SlotListPage {
  public:
    // `context` must carry the platform, prompts, strings and pictures and outlive the model.
    LogosPageModel(PageContext& context, WindowId window);
    ~LogosPageModel() override;

    const std::vector<LogoSlot>& Slots() const { return slots_; }
    bool AddEnabled() const { return ActEnabled(); }

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
    // The whole adding flow through `choose` (the logo file dialog with its form list, preview
    // and memory check). True when a logo was stored.
    bool AddThrough(const FileChooser& choose,
                    std::function<void(WindowId, const std::u16string&)> paintPreview);

    // The connection watch of the device sheet, driving every page of the record.
    ConnectionWatch& Watch() { return watch_; }

    // DevicePage: the record's other logos pages and messages pages hear of it too.
    void OnConnectionLost() override;
    void OnConnectionChanged(const store::ConnectionStatus& status) override;

    // The logo memory the port's stored logos take, as the file dialog reads their values.
    std::uint64_t LogoMemoryInUse();

  private:
    std::size_t SlotCount() const override { return slots_.size(); }
    PageSlot& SlotAt(std::size_t row) override { return slots_[row]; }
    void ResetSlots(std::size_t count) override { slots_.assign(count, {}); }
    void LoadCatalogue() override;
    std::u16string StateText(const PageSlot& slot) override;
    void Reconcile() override { ReconcileLogos(Target()); }
    bool EraseArea() override { return EraseLogos(Target()); }
    void DeleteEntry(std::uint32_t number) override;
    void DeleteAllEntries() override;
    bool Redownload() override { return RedownloadLogos(Target()); }
    void Forget(PageSlot& slot) override { static_cast<LogoSlot&>(slot).picture.clear(); }
    void DeletionDone(bool erased) override;
    void Started(const std::u16string& portName, const store::ConnectionStatus* connected) override;

    StoreTarget Target();

    Pictures& pictures_;
    std::vector<LogoSlot> slots_;
    DevicePages pages_;
    ConnectionWatch watch_;
};

}  // namespace kx20::logos
