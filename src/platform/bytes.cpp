#include "platform/bytes.h"

#include <array>

namespace kx20 {

std::u16string ReadUtf16Field(ByteSpan b, std::size_t off, std::size_t maxUnits) {
    std::u16string out;
    for (std::size_t i = 0; i < maxUnits && FitsIn(b.size(), off + 2 * i, 2); ++i) {
        char16_t c = static_cast<char16_t>(ReadU16(b, off + 2 * i));
        if (c == 0)
            break;
        out.push_back(c);
    }
    return out;
}

void WriteUtf16Field(MutableByteSpan b, std::size_t off, std::size_t maxUnits,
                     std::u16string_view text) {
    for (std::size_t i = 0; i < maxUnits; ++i) {
        char16_t c = (i + 1 < maxUnits && i < text.size()) ? text[i] : u'\0';
        WriteU16(b, off + 2 * i, static_cast<std::uint16_t>(c));
    }
}

void AppendUtf16z(Bytes& out, std::u16string_view text) {
    for (char16_t c : text) AppendU16(out, static_cast<std::uint16_t>(c));
    AppendU16(out, 0);
}

std::uint32_t Crc32(ByteSpan data, std::uint32_t crc) {
    // A byte at a time through a table: the printer republishes every area's checksum after
    // each command and job, and the fault sweeps send thousands of them.
    static const auto table = [] {
        std::array<std::uint32_t, 256> t{};
        for (std::uint32_t i = 0; i < 256; ++i) {
            std::uint32_t c = i;
            for (int k = 0; k < 8; ++k) c = (c >> 1) ^ (0xEDB88320u & (0u - (c & 1u)));
            t[i] = c;
        }
        return t;
    }();
    crc = ~crc;
    for (std::uint8_t b : data) crc = (crc >> 8) ^ table[(crc ^ b) & 0xFFu];
    return ~crc;
}

}  // namespace kx20
