#include "logos/page_common.h"

#include <algorithm>
#include <array>


namespace kx20::logos {

std::u16string LoadText(ResourceStrings& strings, std::uint32_t id) {
    return strings.Load(id).value_or(std::u16string());
}

std::u16string FormatText(ResourceStrings& strings, std::uint32_t id, const FormatArg& arg) {
    const std::u16string pattern = LoadText(strings, id);
    std::u16string out;
    if (!FormatTo(out, pattern, std::span<const FormatArg>(&arg, 1)))
        return pattern;
    return out;
}

bool ConfirmDeletion(UserPrompts& prompts, ResourceStrings& strings, WindowId owner,
                     std::size_t rows, std::uint32_t oneId, std::uint32_t manyId,
                     std::u16string_view rowText) {
    const std::u16string question =
        rows > 1 ? LoadText(strings, manyId) : FormatText(strings, oneId, FormatArg(rowText));
    return prompts.Show(owner, question, LoadText(strings, text::kTitle),
                        box::kYesNo | box::kIconWarning) == box::kIdYes;
}

std::vector<int> NormalisedSelection(std::vector<int> rows, std::size_t rowCount) {
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    std::erase_if(rows, [&](int r) { return r < 0 || static_cast<std::size_t>(r) >= rowCount; });
    return rows;
}

}  // namespace kx20::logos
