// Conversions between the core's UTF-16 strings and the system's wide strings (both UTF-16
// on Windows, so the units are copied unchanged).
#pragma once

#include "platform/win32/windows_clean.h"

#include <string>
#include <string_view>

namespace kx20 {

inline std::wstring ToWide(std::u16string_view s) {
    return std::wstring(s.begin(), s.end());
}
inline std::u16string FromWide(const wchar_t* s) {
    if (!s)
        return {};
    std::wstring_view v(s);
    return std::u16string(v.begin(), v.end());
}
inline std::u16string FromWide(std::wstring_view v) {
    return std::u16string(v.begin(), v.end());
}

// The system's text for an error code (FormatMessage), at most 1024 characters.
inline std::u16string SystemErrorText(unsigned long code) {
    wchar_t buf[1024] = {};
    const DWORD n = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                   nullptr, code, 0, buf, 1024, nullptr);
    return FromWide(std::wstring_view(buf, n));
}

}  // namespace kx20
