// A caller's device-mode record of any size and content, completed from the defaults.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "entry/document_properties.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const std::uint32_t mode = data[0] & 0x0F;
    const std::size_t outSize = (data[1] * 97u) % 6200u;
    std::vector<std::uint8_t> in(data + 2, data + size);
    std::vector<std::uint8_t> out(outSize);
    static bool loaded = false;
    if (!loaded) {
        kx20::CurrentDefaults() = kx20::gsDevMode();
        loaded = true;
    }
    std::int32_t reported = 0;
    kx20::DocumentRequest request{u"KX20", in, out, mode, reported};
    kx20::FillFromDefaults(request);
    return 0;
}
