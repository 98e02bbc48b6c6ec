#include "platform/text.h"

#include <array>

namespace kx20 {

namespace {

// Windows-1252 codes 0x80..0x9F; 0 marks the five undefined codes, which map to themselves
// (as the system's table does).
constexpr std::array<char16_t, 32> kCp1252High = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

char16_t AnsiUnit(unsigned char c) {
    if (c >= 0x80 && c <= 0x9F && kCp1252High[c - 0x80] != 0)
        return kCp1252High[c - 0x80];
    return c;
}

char AnsiByte(char16_t u) {
    if (u < 0x80 || (u >= 0xA0 && u <= 0xFF))
        return static_cast<char>(u);
    for (std::size_t i = 0; i < kCp1252High.size(); ++i) {
        if (kCp1252High[i] == u || (kCp1252High[i] == 0 && u == 0x80 + i))
            return static_cast<char>(0x80 + i);
    }
    return '?';
}

}  // namespace

std::u16string Utf8ToUtf16(std::string_view s) {
    std::u16string out;
    out.reserve(s.size());
    for (std::size_t i = 0; i < s.size();) {
        unsigned char c = static_cast<unsigned char>(s[i]);
        std::uint32_t cp = 0xFFFD;
        std::size_t len = 1;
        if (c < 0x80) {
            cp = c;
        } else if ((c >> 5) == 6 && i + 1 < s.size()) {
            cp = ((c & 0x1F) << 6) | (s[i + 1] & 0x3F);
            len = 2;
        } else if ((c >> 4) == 14 && i + 2 < s.size()) {
            cp = ((c & 0x0F) << 12) | ((s[i + 1] & 0x3F) << 6) | (s[i + 2] & 0x3F);
            len = 3;
        } else if ((c >> 3) == 30 && i + 3 < s.size()) {
            cp = ((c & 0x07) << 18) | ((s[i + 1] & 0x3F) << 12) | ((s[i + 2] & 0x3F) << 6) |
                 (s[i + 3] & 0x3F);
            len = 4;
        }
        i += len;
        if (cp >= 0x10000) {
            cp -= 0x10000;
            out.push_back(static_cast<char16_t>(0xD800 + (cp >> 10)));
            out.push_back(static_cast<char16_t>(0xDC00 + (cp & 0x3FF)));
        } else {
            out.push_back(static_cast<char16_t>(cp));
        }
    }
    return out;
}

std::string Utf16ToUtf8(std::u16string_view s) {
    std::string out;
    for (std::size_t i = 0; i < s.size(); ++i) {
        std::uint32_t cp = s[i];
        if (cp >= 0xD800 && cp < 0xDC00 && i + 1 < s.size() && s[i + 1] >= 0xDC00 &&
            s[i + 1] < 0xE000) {
            cp = 0x10000 + ((cp - 0xD800) << 10) + (s[i + 1] - 0xDC00);
            ++i;
        }
        if (cp < 0x80) {
            out.push_back(static_cast<char>(cp));
        } else if (cp < 0x800) {
            out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
            out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        } else if (cp < 0x10000) {
            out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
            out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        } else {
            out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
            out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        }
    }
    return out;
}

std::string Utf16ToAnsi(std::u16string_view s) {
    std::string out;
    out.reserve(s.size());
    for (char16_t u : s) out.push_back(AnsiByte(u));
    return out;
}

std::u16string AnsiToUtf16(std::string_view s) {
    std::u16string out;
    out.reserve(s.size());
    for (char c : s) out.push_back(AnsiUnit(static_cast<unsigned char>(c)));
    return out;
}

bool Contains(std::u16string_view haystack, std::u16string_view needle) {
    return haystack.find(needle) != std::u16string_view::npos;
}

bool EndsWith(std::u16string_view s, std::u16string_view suffix) {
    return s.size() >= suffix.size() && s.substr(s.size() - suffix.size()) == suffix;
}

std::u16string ToLowerAscii(std::u16string_view s) {
    std::u16string out(s);
    for (char16_t& c : out)
        if (c >= u'A' && c <= u'Z')
            c = static_cast<char16_t>(c - u'A' + u'a');
    return out;
}

bool EqualsIgnoreCase(std::u16string_view a, std::u16string_view b) {
    return a.size() == b.size() && ToLowerAscii(a) == ToLowerAscii(b);
}

std::u16string DecimalText(std::int64_t v) {
    return Utf8ToUtf16(std::to_string(v));
}

}  // namespace kx20
