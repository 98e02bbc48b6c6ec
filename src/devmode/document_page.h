// What the document sheet's page models share: the page copy's private part, texts of the
// resource module, and the numbers of the strings the pages show.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "devmode/devmode.h"
#include "pages/page_context.h"
#include "pages/page_text.h"
#include "platform/bytes.h"

namespace kx20 {

// Strings of the resource module that the document pages use beyond the control labels named
// by the options page.
namespace docstr {
// Paper names are 2000 + row (see roll_papers.h).
inline constexpr std::uint32_t kOptionsModeSingle = 2070;   // list 1067 in the first mode
inline constexpr std::uint32_t kOptionsModeChoice0 = 2071;  // 2071..2073 in the second mode
inline constexpr std::uint32_t kFlowControl0 = 2080;        // list 1077: 2080, 2081
inline constexpr std::uint32_t kCutPaper = 1070;
inline constexpr std::uint32_t kEjectDocument = 1071;
inline constexpr std::uint32_t kBoxTitle = 2220;

// Device settings page.
inline constexpr std::uint32_t kPrinterGroup = 3000;
inline constexpr std::uint32_t kPrinterConnected = 3001;  // identity (%s), model code (%u)
inline constexpr std::uint32_t kPrinterNotConnected = 3002;
inline constexpr std::uint32_t kSetupGroup = 3003;
inline constexpr std::uint32_t kStationLabel = 3004;
inline constexpr std::uint32_t kReceiptStation = 3005;
inline constexpr std::uint32_t kDocumentStation = 3006;
inline constexpr std::uint32_t kPaperLabel = 3007;
inline constexpr std::uint32_t kReceiptNote = 3008;
inline constexpr std::uint32_t kDocumentNote = 3009;
inline constexpr std::uint32_t kMemoryGroup = 3010;
inline constexpr std::uint32_t kMemoryNote = 3011;
inline constexpr std::uint32_t kEraseLogosQuestion = 3012;
inline constexpr std::uint32_t kEraseMessagesQuestion = 3013;
inline constexpr std::uint32_t kEraseFontQuestion = 3014;
inline constexpr std::uint32_t kEraseFailed = 3015;

// Station pages.
inline constexpr std::uint32_t kLogoGroup = 3020;
inline constexpr std::uint32_t kHeaderLogoLabel = 3021;
inline constexpr std::uint32_t kFooterLogoLabel = 3022;
inline constexpr std::uint32_t kMessageGroup = 3023;
inline constexpr std::uint32_t kTopMessageLabel = 3024;
inline constexpr std::uint32_t kBottomMessageLabel = 3025;
inline constexpr std::uint32_t kStationFontLabel = 3026;
inline constexpr std::uint32_t kNoChoice = 3027;
inline constexpr std::uint32_t kLogoEntry = 3028;         // number (%u)
inline constexpr std::uint32_t kMessageEntry = 3029;      // number (%u), first line (%s)
inline constexpr std::uint32_t kMissingEntry = 3030;      // entry text (%s)
inline constexpr std::uint32_t kMessageNumber = 3031;     // number (%u)
inline constexpr std::uint32_t kStationConnected = 3032;  // identity (%s)
inline constexpr std::uint32_t kStationOffline = 3033;    // identity (%s)
inline constexpr std::uint32_t kStationUnknown = 3034;

// Options page additions.
inline constexpr std::uint32_t kSummaryFrame = 3040;
inline constexpr std::uint32_t kSummary = 3041;   // station (%s), paper (%s)
inline constexpr std::uint32_t kDensity0 = 3045;  // list 1079: 3045..3049
inline constexpr std::size_t kDensityCount = 5;
}  // namespace docstr

// The private part of the sheet's page copy: at the record's own dmSize when the 5784 bytes
// fit there, else at 220. Empty when the context has no page copy.
MutableByteSpan PagePrivatePart(PageContext& ctx);

// The index of `text` in `entries`, or -1.
int IndexOf(const std::vector<std::u16string>& entries, std::u16string_view text);

}  // namespace kx20
