#include "platform/registry.h"

namespace kx20 {

std::optional<Bytes> ReadValueBytes(RegistryKey& key, std::u16string_view name,
                                    std::uint32_t* type) {
    // The value may grow between the two reads (the port monitor writes the same keys):
    // retry a few times with the newly reported size.
    std::uint32_t size = 0;
    if (key.QueryValue(name, type, nullptr, &size) != kRegOk)
        return std::nullopt;
    for (int attempt = 0; attempt < 4; ++attempt) {
        Bytes data(size);
        std::uint32_t got = size;
        long rc = key.QueryValue(name, type, data.data(), &got);
        if (rc == kRegOk) {
            data.resize(std::min(got, size));
            return data;
        }
        if (rc != kRegMoreData)
            return std::nullopt;
        size = got;
    }
    return std::nullopt;
}

std::optional<std::uint32_t> ReadDwordValue(RegistryKey& key, std::u16string_view name) {
    std::uint8_t buf[4] = {};
    std::uint32_t size = sizeof buf;
    if (key.QueryValue(name, nullptr, buf, &size) != kRegOk)
        return std::nullopt;
    return ReadU32(ByteSpan(buf, 4), 0);
}

long WriteDwordValue(RegistryKey& key, std::u16string_view name, std::uint32_t value) {
    Bytes b = U32Bytes(value);
    return key.SetValue(name, kRegDword, b);
}

std::optional<std::u16string> ReadStringValue(RegistryKey& key, std::u16string_view name) {
    auto bytes = ReadValueBytes(key, name);
    if (!bytes)
        return std::nullopt;
    return ReadUtf16Field(*bytes, 0, bytes->size() / 2);
}

}  // namespace kx20
