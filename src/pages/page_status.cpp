#include "pages/page_status.h"

#include <array>

#include "platform/format.h"

namespace kx20 {

std::uint32_t ModelNameStringId(std::uint32_t modelCode) {
    constexpr std::array<std::uint32_t, 10> kIds = {2210, 2211, 2212, 2213, 2214,
                                                    2215, 2210, 2216, 2217, 2218};
    return modelCode < kIds.size() ? kIds[modelCode] : kIds[0];
}

std::u16string ModelStatusText(ResourceStrings& strings, std::uint32_t modelCode,
                               bool markNotReady) {
    const std::u16string format = strings.Load(kStringStatusModel).value_or(u"");
    const std::u16string model = strings.Load(ModelNameStringId(modelCode)).value_or(u"");
    std::u16string text;
    const std::array<FormatArg, 1> args = {FormatArg(model)};
    // A translation without the model's conversion still says something.
    if (!FormatTo(text, format, args))
        text = format;
    if (markNotReady)
        text += strings.Load(kStringStatusNoFirmware).value_or(u"");
    return text;
}

std::u16string PrinterStatusText(ResourceStrings& strings, const store::ConnectionStatus* status) {
    if (!status)
        return strings.Load(kStringStatusNoPrinter).value_or(u"");
    return ModelStatusText(strings, status->modelCode, status->firmwareLevel == 0);
}

}  // namespace kx20
