// printf-style formatting of the module's own texts, type-safe: every argument carries its
// kind, and a conversion that does not fit its argument (a number for %s, a text for %d, too
// few or too many arguments) makes the whole format fail instead of reading garbage. The
// conversions follow the wide-character printf of the platform, so one format string gives the
// same text on every build: %s, %ls, %ws and %S take a text of either width; %d/%i, %u, %x,
// %X, %o and %c take integers (32-bit unless 'll' or 'I64' is given, 16-bit with 'h'); %p an
// integer shown as 16 upper-case hexadecimal digits; flags - 0 + space #, width and precision.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

namespace kx20 {

class FormatArg {
  public:
    enum class Kind { Signed, Unsigned, Wide, Narrow };

    template <class T, std::enable_if_t<std::is_integral_v<T> && std::is_signed_v<T>, int> = 0>
    FormatArg(T v) : kind_(Kind::Signed), int_(static_cast<std::int64_t>(v)) {}
    template <class T, std::enable_if_t<std::is_integral_v<T> && std::is_unsigned_v<T>, int> = 0>
    FormatArg(T v) : kind_(Kind::Unsigned), int_(static_cast<std::int64_t>(v)) {}
    template <class E, std::enable_if_t<std::is_enum_v<E>, int> = 0>
    FormatArg(E v) : FormatArg(static_cast<std::underlying_type_t<E>>(v)) {}
    FormatArg(const char16_t* s) : kind_(Kind::Wide), wide_(s ? s : u"(null)") {}
    FormatArg(std::u16string_view s) : kind_(Kind::Wide), wide_(s) {}
    FormatArg(const std::u16string& s) : kind_(Kind::Wide), wide_(s) {}
    FormatArg(const char* s) : kind_(Kind::Narrow), narrow_(s ? s : "(null)") {}
    FormatArg(std::string_view s) : kind_(Kind::Narrow), narrow_(s) {}
    FormatArg(const std::string& s) : kind_(Kind::Narrow), narrow_(s) {}

    Kind kind() const { return kind_; }
    std::int64_t integer() const { return int_; }
    std::u16string_view wide() const { return wide_; }
    std::string_view narrow() const { return narrow_; }

  private:
    Kind kind_;
    std::int64_t int_ = 0;
    std::u16string_view wide_;
    std::string_view narrow_;
};

// Formats into `out` (replacing its content). Returns false when the format does not agree
// with the arguments, or when the result needs more than `maxChars - 1` characters; in the
// latter case `out` holds the first `maxChars - 1` characters, as a bounded formatter leaves
// its buffer.
bool FormatTo(std::u16string& out, std::u16string_view format, std::span<const FormatArg> args,
              std::size_t maxChars = SIZE_MAX);

template <class... A>
std::u16string Format(std::u16string_view format, const A&... args) {
    const FormatArg list[] = {FormatArg(args)..., FormatArg(0)};
    std::u16string out;
    FormatTo(out, format, std::span<const FormatArg>(list, sizeof...(A)));
    return out;
}

}  // namespace kx20
