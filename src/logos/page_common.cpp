#include "logos/page_common.h"

#include <algorithm>
#include <array>

#include "devmode/printer_settings.h"

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

std::u16string ModelText(ResourceStrings& strings, std::uint32_t modelCode) {
    struct Model {
        std::uint32_t code;
        std::uint32_t id;
    };
    constexpr std::array<Model, 9> kModels = {{{0, 2210},
                                               {1, 2211},
                                               {2, 2212},
                                               {3, 2213},
                                               {4, 2214},
                                               {5, 2215},
                                               {7, 2216},
                                               {8, 2217},
                                               {9, 2218}}};
    for (const Model& m : kModels)
        if (m.code == modelCode)
            return LoadText(strings, m.id);
    return {};
}

std::u16string ModelStatusText(ResourceStrings& strings, std::uint32_t modelCode,
                               bool notConnected) {
    std::u16string status =
        FormatText(strings, text::kStatusModel, FormatArg(ModelText(strings, modelCode)));
    if (notConnected)
        status += LoadText(strings, text::kStatusNotConnected);
    return status;
}

bool WithinAvailabilityHours(std::uint32_t startTime, std::uint32_t untilTime,
                             const LocalTime& utcNow) {
    if (startTime == 0 && untilTime == 0)
        return true;
    const std::uint32_t now = static_cast<std::uint32_t>(utcNow.hour * 60 + utcNow.minute);
    return now >= startTime && now < untilTime;
}

bool PrinterAvailableNow(PageContext& context) {
    if (!context.settings || !context.platform)
        return true;
    const PrinterInfo* info = context.settings->PrinterInformation(2);
    if (!info)
        return true;
    return WithinAvailabilityHours(info->startTime, info->untilTime,
                                   context.platform->clock.UtcNow());
}

}  // namespace kx20::logos
