#include "platform/resources.h"

namespace kx20 {

namespace {

struct Entry {
    std::uint32_t id;
    const char16_t* text;
};

constexpr Entry kStrings[] = {
#define KX20_STRING(id, text) {id, u##text},
#include "strings_en.inc"
#undef KX20_STRING
};

}  // namespace

std::optional<std::u16string> BuiltinStrings::Load(std::uint32_t id) {
    for (const Entry& e : kStrings) {
        if (e.id == id) {
            std::u16string s(e.text);
            if (s.size() >= kResourceStringChars)
                s.resize(kResourceStringChars - 1);
            return s;
        }
    }
    return std::nullopt;
}

}  // namespace kx20
