// The document sheet's station pages (1005 for the first station block, the receipt station;
// 1006 for the second, the document station) without their windows. Each chooses which of the
// logos and messages stored in the attached printer the station prints (a header and a footer
// logo, a top and a bottom message) and the station's font, and keeps the choices in its
// station block of the private device mode.
//
// The selection area of a station block (offsets from the block's start):
//   8   u32 header logo number (0 = none)
//   12  u32 footer logo number (0 = none)
//   16  u32 top message number (0 = none)
//   20  u32 bottom message number (0 = none)
//   24..2051 carried unchanged
// The five list selections (2052..2071) hold the positions of the five lists at the last
// Apply; the numbers are what counts when the page opens again, since the printer's
// catalogue may have changed in between.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "devmode/document_page.h"
#include "pages/page_context.h"
#include "store/catalogue.h"

namespace kx20 {

inline constexpr std::size_t kStationHeaderLogo = 8;
inline constexpr std::size_t kStationFooterLogo = 12;
inline constexpr std::size_t kStationTopMessage = 16;
inline constexpr std::size_t kStationBottomMessage = 20;

enum class StationList { HeaderLogo, FooterLogo, TopMessage, BottomMessage, Font };
inline constexpr std::size_t kStationListCount = 5;

struct StationEntry {
    std::u16string text;       // what the list shows
    std::uint32_t number = 0;  // logo and message lists: the item's number, 0 for none
    std::u16string fontName;   // font list: the name stored in the device mode
    bool inPrinter = true;     // false for a stored choice the printer does not hold now
};

// Which station block a page edits.
enum class Station { First, Second };

class StationPageModel {
  public:
    StationPageModel(PageContext& ctx, Station station);

    static std::span<const PageLabel> Labels();

    // The stored choices and the attached printer's catalogue.
    void Init();
    // The catalogue read again (after a logos, messages or fonts refresh); the current
    // choices are kept, as entries of their own when the printer no longer holds them.
    void Reload();

    const std::vector<StationEntry>& Entries(StationList list) const;
    int Selection(StationList list) const;
    void Select(StationList list, int index);  // out-of-range selections are ignored

    std::u16string StatusText();
    // The logo chosen in a logo list, when the printer holds it; null otherwise.
    const store::LogoRecord* ChosenLogo(StationList list) const;
    // The text of the message chosen in a message list; empty when none or unknown.
    std::u16string ChosenMessageText(StationList list) const;

    void Apply();

  private:
    void ReadCatalogue();
    void BuildEntries();
    // "None", the items, and the chosen item as an entry of its own when it is not among them.
    std::vector<StationEntry> ItemEntries(std::vector<StationEntry> items, std::uint32_t chosen,
                                          std::u16string_view chosenText) const;
    std::vector<StationEntry> LogoEntries(std::uint32_t chosen) const;
    std::vector<StationEntry> MessageEntries(std::uint32_t chosen) const;
    std::vector<StationEntry> FontEntries() const;
    StationEntry Missing(std::u16string text) const;

    PageContext& ctx_;
    std::size_t block_;
    bool thermal_;

    // The attached printer and what it stores.
    bool statusRead_ = false;
    bool connected_ = false;
    std::u16string identity_;
    std::vector<store::LogoRecord> logos_;
    std::vector<store::MessageRecord> messages_;
    std::vector<std::u16string> fonts_;

    // The choices: numbers for the four item lists, the font name.
    std::array<std::uint32_t, 4> chosen_{};
    std::u16string chosenFont_;
    std::array<std::vector<StationEntry>, kStationListCount> entries_;
    std::array<int, kStationListCount> selection_{};
};

}  // namespace kx20
