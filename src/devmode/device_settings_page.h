// The document sheet's device settings page (1003) without its window. It edits the settings
// of the job that the other pages follow: the station the job prints on (list 1023, stored as
// bReceiptStation) and the roll paper (dmPaperSize). It keeps the apply-state record current,
// so that the options page follows the station, writes the per-process "_ss" session flag on
// Apply, and when the paper gets narrower offers to erase the printer's stored logos, messages
// and downloaded single-byte font, which were made for the wider paper.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "pages/apply_state.h"
#include "devmode/document_page.h"
#include "pages/page_context.h"

namespace kx20 {

// List 1023.
inline constexpr int kReceiptStationEntry = 0;
inline constexpr int kDocumentStationEntry = 1;

// What an Apply erased from the printer.
struct EraseOutcome {
    bool logos = false;
    bool messages = false;
    bool font = false;
};

class DeviceSettingsPageModel {
  public:
    explicit DeviceSettingsPageModel(PageContext& ctx) : ctx_(ctx) {}

    static std::span<const PageLabel> Labels();

    // Reads the station and the paper from the page copy (a paper that is none of the six
    // shows as the default paper) and writes them into the apply-state record.
    void Init(ApplyState& shared);

    const std::vector<std::u16string>& StationEntries() const { return stationEntries_; }
    int Station() const { return station_; }
    const std::vector<std::u16string>& PaperEntries() const { return paperEntries_; }
    int PaperRow() const { return paperRow_; }

    // The printer as the sheet found it, and the note under the station list.
    std::u16string StatusText();
    std::uint32_t StationNote() const;

    // Changes from the controls; true when the value changed (the apply-state record is then
    // current again). Out-of-range selections are ignored.
    bool SelectStation(int index, ApplyState& shared);
    bool SelectPaper(int index, ApplyState& shared);

    // Writes the station and the paper into the page copy and the session flag into the
    // printer's driver data; then, when the paper is narrower than the one the page last
    // applied (or opened with), offers to erase what the printer stores for the wider paper.
    // `owner` owns the message boxes.
    EraseOutcome Apply(WindowId owner, ApplyState& shared);

  private:
    void WriteApplyState(ApplyState& shared) const;
    EraseOutcome OfferErase(WindowId owner);

    PageContext& ctx_;
    int station_ = kReceiptStationEntry;
    int paperRow_ = 0;
    int appliedPaperRow_ = 0;  // the paper the stored items were last judged against
    std::vector<std::u16string> stationEntries_;
    std::vector<std::u16string> paperEntries_;
};

}  // namespace kx20
