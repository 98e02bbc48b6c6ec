// Hand-built printer data blocks for the simulator's tests, written from the byte tables and
// deliberately not with the driver's encoders.
#pragma once

#include <initializer_list>
#include <string_view>

#include "platform/bytes.h"

namespace kx20::simtest {

// C, M, D, S, t, a, r, t with 0x01 after each but the last.
inline Bytes Marker() {
    return {'C', 1, 'M', 1, 'D', 1, 'S', 1, 't', 1, 'a', 1, 'r', 1, 't'};
}

// Marker, then the given bytes.
inline Bytes Cmd(std::initializer_list<std::uint8_t> bytes) {
    Bytes b = Marker();
    b.insert(b.end(), bytes.begin(), bytes.end());
    return b;
}

inline Bytes Cat(std::initializer_list<Bytes> parts) {
    Bytes out;
    for (const auto& p : parts) out.insert(out.end(), p.begin(), p.end());
    return out;
}

inline Bytes Fill(std::size_t n, std::uint8_t first) {
    Bytes b(n);
    for (std::size_t i = 0; i < n; ++i) b[i] = static_cast<std::uint8_t>(first + i);
    return b;
}

inline Bytes Text(std::string_view s) {
    return Bytes(s.begin(), s.end());
}

// Logo block: marker, 0x0F, number, width / 8, height / 8, raster, 0xFF.
inline Bytes LogoBlock(std::uint8_t number, std::uint8_t widthBytes, std::uint8_t height8,
                       std::uint8_t seed = 1) {
    return Cat({Cmd({0x0F, number, widthBytes, height8}),
                Fill(std::size_t{widthBytes} * height8 * 8, seed), Bytes{0xFF}});
}

// Message block as sent: marker 0x10 n, marker 0x00, text, marker 0x11, marker 0x00.
inline Bytes MessageBlock(std::uint8_t number, std::string_view text) {
    return Cat({Cmd({0x10, number}), Cmd({0x00}), Text(text), Cmd({0x11}), Cmd({0x00})});
}

}  // namespace kx20::simtest
