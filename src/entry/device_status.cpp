#include "entry/device_status.h"

#include <iterator>

#include "platform/format.h"

namespace kx20 {

std::uint32_t ModelTextId(std::uint32_t modelCode) {
    constexpr std::uint32_t kCodes[] = {0, 1, 2, 3, 4, 5, 7, 8, 9};
    for (std::uint32_t i = 0; i < std::size(kCodes); ++i) {
        if (kCodes[i] == modelCode)
            return 2210 + i;
    }
    return 0;
}

std::u16string ModelStatusText(ResourceStrings& strings, std::uint32_t modelCode) {
    const std::uint32_t id = ModelTextId(modelCode);
    const std::u16string model = id ? strings.Load(id).value_or(u"") : std::u16string();
    return Format(strings.Load(kStatusModelTextId).value_or(u""), model);
}

}  // namespace kx20
