// UTF-16 text helpers and the system ANSI code page (Windows-1252) of the module.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kx20 {

// ASCII/UTF-8 to UTF-16 (for literals and Linux paths) and back (for tools and tests).
std::u16string Utf8ToUtf16(std::string_view s);
std::string Utf16ToUtf8(std::u16string_view s);

// The ANSI code page used for the trace, log files and the identity string of the connection
// status. Conversion to ANSI uses no best-fit mapping: a character without an exact code
// becomes '?', the code page's default character.
std::string Utf16ToAnsi(std::u16string_view s);
std::u16string AnsiToUtf16(std::string_view s);

bool Contains(std::u16string_view haystack, std::u16string_view needle);
bool EndsWith(std::u16string_view s, std::u16string_view suffix);
// Case-insensitive in the ASCII range, as the registry compares key and value names.
bool EqualsIgnoreCase(std::u16string_view a, std::u16string_view b);
std::u16string ToLowerAscii(std::u16string_view s);

// Decimal rendering as "%ld" gives it.
std::u16string DecimalText(std::int64_t v);

}  // namespace kx20
