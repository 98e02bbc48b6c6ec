#include "platform/format.h"

#include "platform/text.h"

namespace kx20 {

namespace {

struct Directive {
    bool left = false, zero = false, plus = false, space = false, alt = false;
    int width = 0;
    int precision = -1;
    int bits = 32;  // integer size from the length modifier
};

void Pad(std::u16string& out, std::u16string_view body, const Directive& d, bool allowZero) {
    std::size_t width = static_cast<std::size_t>(d.width);
    if (body.size() >= width) {
        out += body;
        return;
    }
    std::size_t fill = width - body.size();
    if (d.left) {
        out += body;
        out.append(fill, u' ');
    } else if (d.zero && allowZero) {
        // Zeros go after the sign or the 0x prefix.
        std::size_t prefix = 0;
        if (!body.empty() && (body[0] == u'-' || body[0] == u'+' || body[0] == u' '))
            prefix = 1;
        if (body.size() >= prefix + 2 && body[prefix] == u'0' &&
            (body[prefix + 1] == u'x' || body[prefix + 1] == u'X'))
            prefix += 2;
        out += body.substr(0, prefix);
        out.append(fill, u'0');
        out += body.substr(prefix);
    } else {
        out.append(fill, u' ');
        out += body;
    }
}

std::u16string Digits(std::uint64_t v, unsigned base, bool upper) {
    const char* set = upper ? "0123456789ABCDEF" : "0123456789abcdef";
    std::u16string d;
    do {
        d.push_back(static_cast<char16_t>(set[v % base]));
        v /= base;
    } while (v != 0);
    return std::u16string(d.rbegin(), d.rend());
}

bool FormatInteger(std::u16string& out, char16_t conv, const Directive& d, const FormatArg& arg) {
    if (arg.kind() != FormatArg::Kind::Signed && arg.kind() != FormatArg::Kind::Unsigned)
        return false;
    std::uint64_t raw = static_cast<std::uint64_t>(arg.integer());
    std::uint64_t mask = d.bits >= 64 ? ~0ULL : ((1ULL << d.bits) - 1);
    raw &= mask;
    if (conv == u'c') {
        out += static_cast<char16_t>(raw & 0xFFFF);
        return true;
    }
    bool negative = false;
    std::uint64_t magnitude = raw;
    if (conv == u'd' || conv == u'i') {
        std::uint64_t signBit = 1ULL << (d.bits - 1);
        if (raw & signBit) {
            negative = true;
            magnitude = (~raw + 1) & mask;
        }
    }
    unsigned base = (conv == u'x' || conv == u'X' || conv == u'p') ? 16 : (conv == u'o' ? 8 : 10);
    std::u16string digits = Digits(magnitude, base, conv == u'X' || conv == u'p');
    std::size_t minDigits = conv == u'p' ? 16 : 1;
    if (d.precision >= 0) {
        if (d.precision == 0 && magnitude == 0)
            digits.clear();
        minDigits = static_cast<std::size_t>(d.precision);
    }
    if (digits.size() < minDigits)
        digits = std::u16string(minDigits - digits.size(), u'0') + digits;
    std::u16string body;
    if (negative)
        body = u"-";
    else if ((conv == u'd' || conv == u'i') && d.plus)
        body = u"+";
    else if ((conv == u'd' || conv == u'i') && d.space)
        body = u" ";
    if (d.alt && magnitude != 0 && (conv == u'x' || conv == u'X'))
        body += conv == u'x' ? u"0x" : u"0X";
    if (d.alt && conv == u'o' && (digits.empty() || digits[0] != u'0'))
        body += u"0";
    body += digits;
    Pad(out, body, d, d.precision < 0);
    return true;
}

bool FormatText(std::u16string& out, const Directive& d, const FormatArg& arg) {
    std::u16string body;
    if (arg.kind() == FormatArg::Kind::Wide)
        body = std::u16string(arg.wide());
    else if (arg.kind() == FormatArg::Kind::Narrow)
        body = AnsiToUtf16(arg.narrow());
    else
        return false;
    if (d.precision >= 0 && body.size() > static_cast<std::size_t>(d.precision))
        body.resize(static_cast<std::size_t>(d.precision));
    Pad(out, body, d, false);
    return true;
}

}  // namespace

bool FormatTo(std::u16string& out, std::u16string_view fmt, std::span<const FormatArg> args,
              std::size_t maxChars) {
    out.clear();
    std::size_t next = 0;
    bool ok = true;
    for (std::size_t i = 0; i < fmt.size() && ok; ++i) {
        char16_t c = fmt[i];
        if (c != u'%') {
            out += c;
            continue;
        }
        if (++i >= fmt.size()) {
            ok = false;
            break;
        }
        if (fmt[i] == u'%') {
            out += u'%';
            continue;
        }
        Directive d;
        for (; i < fmt.size(); ++i) {
            char16_t f = fmt[i];
            if (f == u'-')
                d.left = true;
            else if (f == u'0')
                d.zero = true;
            else if (f == u'+')
                d.plus = true;
            else if (f == u' ')
                d.space = true;
            else if (f == u'#')
                d.alt = true;
            else
                break;
        }
        for (; i < fmt.size() && fmt[i] >= u'0' && fmt[i] <= u'9'; ++i)
            d.width = d.width * 10 + (fmt[i] - u'0');
        if (i < fmt.size() && fmt[i] == u'.') {
            d.precision = 0;
            for (++i; i < fmt.size() && fmt[i] >= u'0' && fmt[i] <= u'9'; ++i)
                d.precision = d.precision * 10 + (fmt[i] - u'0');
        }
        if (d.width > 100000 || d.precision > 100000) {
            ok = false;
            break;
        }
        // Length modifiers.
        if (fmt.substr(i, 3) == u"I64") {
            d.bits = 64;
            i += 3;
        } else if (fmt.substr(i, 2) == u"ll") {
            d.bits = 64;
            i += 2;
        } else if (i < fmt.size() && fmt[i] == u'h') {
            d.bits = 16;
            ++i;
        } else if (i < fmt.size() && (fmt[i] == u'l' || fmt[i] == u'w')) {
            ++i;
        }
        if (i >= fmt.size() || next >= args.size()) {
            ok = false;
            break;
        }
        char16_t conv = fmt[i];
        const FormatArg& arg = args[next++];
        switch (conv) {
            case u'd':
            case u'i':
            case u'u':
            case u'x':
            case u'X':
            case u'o':
            case u'c':
                ok = FormatInteger(out, conv, d, arg);
                break;
            case u'p':
                d.bits = 64;
                ok = FormatInteger(out, conv, d, arg);
                break;
            case u's':
            case u'S':
                ok = FormatText(out, d, arg);
                break;
            default:
                ok = false;
        }
    }
    if (ok && next != args.size())
        ok = false;
    if (maxChars != SIZE_MAX && out.size() > maxChars - 1) {
        out.resize(maxChars == 0 ? 0 : maxChars - 1);
        return false;
    }
    return ok;
}

}  // namespace kx20
