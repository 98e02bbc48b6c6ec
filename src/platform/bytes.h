// Little-endian byte helpers. Every byte layout that leaves the module (device mode,
// registry records, printer commands) is written and read through these, never by
// casting structures, so the layout is the same on every build.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kx20 {

using Bytes = std::vector<std::uint8_t>;
using ByteSpan = std::span<const std::uint8_t>;
using MutableByteSpan = std::span<std::uint8_t>;

// Reads return 0 and writes do nothing when the field does not lie wholly inside the span:
// a short or hostile buffer never leads to an access outside it.
inline bool FitsIn(std::size_t size, std::size_t offset, std::size_t length) {
    return offset <= size && length <= size - offset;
}

inline std::uint16_t ReadU16(ByteSpan b, std::size_t off) {
    if (!FitsIn(b.size(), off, 2))
        return 0;
    return static_cast<std::uint16_t>(b[off] | (b[off + 1] << 8));
}

inline std::uint32_t ReadU32(ByteSpan b, std::size_t off) {
    if (!FitsIn(b.size(), off, 4))
        return 0;
    return static_cast<std::uint32_t>(b[off]) | (static_cast<std::uint32_t>(b[off + 1]) << 8) |
           (static_cast<std::uint32_t>(b[off + 2]) << 16) |
           (static_cast<std::uint32_t>(b[off + 3]) << 24);
}

inline void WriteU16(MutableByteSpan b, std::size_t off, std::uint16_t v) {
    if (!FitsIn(b.size(), off, 2))
        return;
    b[off] = static_cast<std::uint8_t>(v);
    b[off + 1] = static_cast<std::uint8_t>(v >> 8);
}

inline void WriteU32(MutableByteSpan b, std::size_t off, std::uint32_t v) {
    if (!FitsIn(b.size(), off, 4))
        return;
    for (int i = 0; i < 4; ++i) b[off + i] = static_cast<std::uint8_t>(v >> (8 * i));
}

inline void AppendU8(Bytes& out, std::uint8_t v) {
    out.push_back(v);
}

inline void AppendU16(Bytes& out, std::uint16_t v) {
    out.push_back(static_cast<std::uint8_t>(v));
    out.push_back(static_cast<std::uint8_t>(v >> 8));
}

inline void AppendU32(Bytes& out, std::uint32_t v) {
    for (int i = 0; i < 4; ++i) out.push_back(static_cast<std::uint8_t>(v >> (8 * i)));
}

inline void AppendBytes(Bytes& out, ByteSpan b) {
    out.insert(out.end(), b.begin(), b.end());
}

inline Bytes U32Bytes(std::uint32_t v) {
    Bytes b;
    AppendU32(b, v);
    return b;
}

// A UTF-16 text stored as little-endian code units in a field of `maxUnits` units. The text is
// cut at the field and the first zero unit; the field need not hold a terminator.
std::u16string ReadUtf16Field(ByteSpan b, std::size_t off, std::size_t maxUnits);

// Writes `text` into a field of `maxUnits` units: the units of the text, then zeros to the end
// of the field. A text of `maxUnits` or more units is cut so that the last unit is a zero.
void WriteUtf16Field(MutableByteSpan b, std::size_t off, std::size_t maxUnits,
                     std::u16string_view text);

// CRC-32 (IEEE 802.3, reflected, as zip uses it).
std::uint32_t Crc32(ByteSpan data, std::uint32_t crc = 0);

// Appends the units of `text` and a terminating zero unit.
void AppendUtf16z(Bytes& out, std::u16string_view text);

}  // namespace kx20
