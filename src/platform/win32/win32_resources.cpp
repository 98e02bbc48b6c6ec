#include "platform/win32/win32_resources.h"

#include "platform/win32/win32_text.h"

namespace kx20 {

std::optional<std::u16string> Win32ResourceStrings::Load(std::uint32_t id) {
    if (!module_)
        return std::nullopt;
    wchar_t buf[kResourceStringChars] = {};
    int n = LoadStringW(module_, id, buf, static_cast<int>(kResourceStringChars));
    if (n <= 0)
        return std::nullopt;
    return FromWide(std::wstring_view(buf, static_cast<std::size_t>(n)));
}

}  // namespace kx20
