// The localized resource module's strings, by number. The Win32 adapter loads them from
// KVORSENU.DLL; the built-in table holds the same English texts for native builds and tests.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kx20 {

inline constexpr std::size_t kResourceStringChars = 256;

class ResourceStrings {
  public:
    virtual ~ResourceStrings() = default;
    // At most 255 characters; nullopt when the module has no such string or is not loaded.
    virtual std::optional<std::u16string> Load(std::uint32_t id) = 0;
};

// The English string table compiled into the core (res/strings_en.inc).
class BuiltinStrings : public ResourceStrings {
  public:
    std::optional<std::u16string> Load(std::uint32_t id) override;
};

}  // namespace kx20
