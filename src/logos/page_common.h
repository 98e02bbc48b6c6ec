// What the logos and messages pages share: their string ids, the status line by model code,
// and the printer's availability hours.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "pages/page_context.h"
#include "platform/files.h"
#include "platform/format.h"
#include "platform/prompts.h"
#include "platform/resources.h"

namespace kx20::logos {

namespace text {
inline constexpr std::uint32_t kLogoFileFilter = 1001;
inline constexpr std::uint32_t kAddLogoCaption = 1151;
inline constexpr std::uint32_t kDeleteLogoCaption = 1153;
inline constexpr std::uint32_t kStoreMessageCaption = 1162;
inline constexpr std::uint32_t kDeleteMessageCaption = 1163;
inline constexpr std::uint32_t kFormFullScaled = 2120;
inline constexpr std::uint32_t kFormFull = 2121;
inline constexpr std::uint32_t kFormNarrowScaled = 2122;
inline constexpr std::uint32_t kFormNarrow = 2123;
inline constexpr std::uint32_t kAddLogoTitle = 2166;
inline constexpr std::uint32_t kStatusModel = 2200;
inline constexpr std::uint32_t kStatusUnavailable = 2201;
inline constexpr std::uint32_t kStatusNotConnected = 2202;
inline constexpr std::uint32_t kSlotUsed = 2203;
inline constexpr std::uint32_t kSlotEmpty = 2204;
inline constexpr std::uint32_t kLogoSlotName = 2205;
inline constexpr std::uint32_t kMessageSlotName = 2206;
inline constexpr std::uint32_t kTitle = 2220;
inline constexpr std::uint32_t kLogoTooBig = 2231;
inline constexpr std::uint32_t kDeleteOneLogo = 2232;
inline constexpr std::uint32_t kDeleteLogos = 2233;
inline constexpr std::uint32_t kLogoFailed = 2234;
inline constexpr std::uint32_t kDeleteOneMessage = 2236;
inline constexpr std::uint32_t kDeleteMessages = 2237;
inline constexpr std::uint32_t kMessageFailed = 2238;
}  // namespace text

// A string of the resource module, empty when it is missing.
std::u16string LoadText(ResourceStrings& strings, std::uint32_t id);
// A string with one placeholder filled; the string as it stands when it does not take the
// argument.
std::u16string FormatText(ResourceStrings& strings, std::uint32_t id, const FormatArg& arg);

// The deletion question (title 2220, Yes/No, warning icon): `manyId` for several rows,
// `oneId` formatted with the row's column-1 text for one. True when the answer is Yes.
bool ConfirmDeletion(UserPrompts& prompts, ResourceStrings& strings, WindowId owner,
                     std::size_t rows, std::uint32_t oneId, std::uint32_t manyId,
                     std::u16string_view rowText);

// A list selection in row order, each row once, rows outside the list left out.
std::vector<int> NormalisedSelection(std::vector<int> rows, std::size_t rowCount);

}  // namespace kx20::logos
