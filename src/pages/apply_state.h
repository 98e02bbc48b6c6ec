// The document sheet's apply-state record: what the device settings page and the options page
// show right now, shared between them. The sheet keeps it in its page context and the device
// settings page hangs it on the property-sheet frame as the frame's window data, where the
// options page finds it.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace kx20 {

// Texts of the record hold at most this many characters, terminator included.
inline constexpr std::size_t kApplyStateTextChars = 256;

struct ApplyState {
    // Written by the options page, in this order.
    std::uint32_t optionsMode = 0;               // 1 when 1064 is checked
    std::u16string optionsChoiceText;            // text of list 1067
    std::uint32_t bOptionsCutPaper = 0;          // check box 1070
    std::array<std::uint32_t, 4> optionFlags{};  // check boxes 1072..1075
    std::uint32_t optionFirstEntry = 0;          // 1 when list 1077 has selection 0
    std::u16string densityText;                  // text of list 1079
    std::u16string fontOverrideText;             // text of list 1081

    // Written by the device settings page.
    std::int32_t stationSelection = 0;  // list 1023: 0 receipt station, 1 document station
    std::int32_t paperRow = 0;          // row of the roll paper list
};

// The device settings page's list 1023 reports selection 1 (the document station).
inline bool DocumentStationChosen(const ApplyState* state) {
    return state && state->stationSelection == 1;
}

// A text as the record keeps it: cut to kApplyStateTextChars - 1 characters.
inline std::u16string ApplyStateText(std::u16string_view text) {
    return std::u16string(text.substr(0, kApplyStateTextChars - 1));
}

}  // namespace kx20
