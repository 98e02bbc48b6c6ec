#include "logos/logo_payloads.h"

#include "channel/command_start.h"

namespace kx20::logos {

namespace {

void AppendStart(Bytes& out) {
    out.insert(out.end(), channel::kCommandStart.begin(), channel::kCommandStart.end());
}

}  // namespace

Bytes BuildLogoPayload(std::uint8_t number, int width, int height, ByteSpan raster) {
    if (width <= 0 || height <= 0 || width % 8 != 0 || height % 8 != 0 || width / 8 > 255 ||
        height / 8 > 255 ||
        raster.size() != static_cast<std::size_t>(width / 8) * static_cast<std::size_t>(height)) {
        return {};
    }
    Bytes out;
    out.reserve(raster.size() + kLogoPayloadOverhead);
    AppendStart(out);
    AppendU8(out, kLogoCommand);
    AppendU8(out, number);
    AppendU8(out, static_cast<std::uint8_t>(width / 8));
    AppendU8(out, static_cast<std::uint8_t>(height / 8));
    AppendBytes(out, raster);
    AppendU8(out, kLogoEnd);
    return out;
}

Bytes BuildMessagePayload(std::uint8_t number, std::u16string_view text) {
    Bytes out;
    out.reserve(text.size() + kMessagePayloadOverhead);
    AppendStart(out);
    AppendU8(out, kMessageStart);
    AppendU8(out, number);
    AppendStart(out);
    AppendU8(out, 0x00);
    for (char16_t c : text) {
        if (c != u'\n')
            AppendU8(out, static_cast<std::uint8_t>(c & 0xFF));
    }
    AppendStart(out);
    AppendU8(out, kMessageEnd);
    AppendStart(out);
    AppendU8(out, 0x00);  // the pad: the zeroed buffer's byte after the final marker
    return out;
}

}  // namespace kx20::logos
