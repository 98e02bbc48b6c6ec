// Font and firmware files made by the tests themselves, from the file layouts: the tagged font
// file (tag, length, data records), the headered font file (64-byte header, glyphs bottom row
// first in 4-byte cells) and the firmware file (three header lines, then the image).
#pragma once

#include <array>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "platform/bytes.h"

namespace kx20::testfiles {

// ---- tagged font file ----

inline Bytes TagRecord(std::uint16_t tag, const Bytes& data) {
    Bytes out;
    AppendU16(out, tag);
    AppendU16(out, static_cast<std::uint16_t>(data.size()));
    AppendBytes(out, data);
    return out;
}

inline Bytes U16Data(std::uint16_t v) {
    Bytes b;
    AppendU16(b, v);
    return b;
}

// A glyph pattern that differs per character and per station.
inline std::uint8_t GlyphByte(std::uint16_t code, std::size_t i, std::uint8_t salt) {
    return static_cast<std::uint8_t>((code * 31u + i * 7u + salt) | 1u);
}

// A character record's data: code bytes 2 and 3, the flags and lengths, the two glyphs.
inline Bytes CharData(std::uint8_t lead, std::uint8_t second, bool thermal, std::uint8_t thermalLen,
                      bool impact, std::uint8_t impactLen) {
    Bytes r(112, 0);
    r[2] = lead;
    r[3] = second;
    r[4] = thermal ? 1 : 0;
    r[5] = thermalLen;
    r[6] = impact ? 1 : 0;
    r[7] = impactLen;
    const std::uint16_t code = static_cast<std::uint16_t>(lead << 8 | second);
    for (std::size_t i = 0; i < 72; ++i) r[8 + i] = GlyphByte(code, i, 0x10);
    for (std::size_t i = 0; i < 32; ++i) r[80 + i] = GlyphByte(code, i, 0x80);
    return r;
}

struct FonFile {
    std::string createDate = "240305";
    std::uint16_t version = 1;
    std::uint16_t codePage = 950;
    std::array<std::array<std::uint8_t, 2>, 3> vectors = {{{0x81, 0xFE}, {0, 0}, {0, 0}}};
    std::uint16_t thermalWidth = 24, thermalHeight = 24;
    std::uint16_t impactWidth = 16, impactHeight = 16;
    std::uint16_t dbcsSpacing = 0, sbcsSpacing = 0, dbcsMatrix = 1;
    std::vector<Bytes> body;  // records after the metadata, before the end record

    // The 13 metadata records, in an order of their own.
    std::vector<Bytes> Metadata() const {
        return {TagRecord(0xF0, U16Data(thermalHeight)),
                TagRecord(0xEA, Bytes(createDate.begin(), createDate.end())),
                TagRecord(0xED, {vectors[0][0], vectors[0][1]}),
                TagRecord(0xEC, U16Data(codePage)),
                TagRecord(0xEF, U16Data(thermalWidth)),
                TagRecord(0xEB, U16Data(version)),
                TagRecord(0xF1, U16Data(impactWidth)),
                TagRecord(0xED, {vectors[1][0], vectors[1][1]}),
                TagRecord(0xF2, U16Data(impactHeight)),
                TagRecord(0xF3, U16Data(dbcsSpacing)),
                TagRecord(0xF4, U16Data(sbcsSpacing)),
                TagRecord(0xED, {vectors[2][0], vectors[2][1]}),
                TagRecord(0xF7, U16Data(dbcsMatrix))};
    }
    FonFile& Dbcs(std::uint8_t lead, std::uint8_t second, bool thermal = true, bool impact = true) {
        body.push_back(TagRecord(0xF5, CharData(lead, second, thermal, 72, impact, 32)));
        return *this;
    }
    FonFile& Sbcs(std::uint8_t code, bool thermal = true, bool impact = true,
                  std::uint8_t thermalLen = 72, std::uint8_t impactLen = 32) {
        body.push_back(TagRecord(0xF6, CharData(0, code, thermal, thermalLen, impact, impactLen)));
        return *this;
    }
    Bytes Build() const {
        Bytes out;
        for (const Bytes& r : Metadata()) AppendBytes(out, r);
        for (const Bytes& r : body) AppendBytes(out, r);
        AppendBytes(out, TagRecord(0xFE, {}));
        return out;
    }
};

// A font of `dbcs` double-byte characters (lead bytes from 0x81, second bytes 0x40..0xFC) and
// `sbcs` single-byte ones (codes from 0x20).
inline FonFile LargeFonFile(std::size_t dbcs, std::size_t sbcs) {
    FonFile f;
    for (std::size_t i = 0; i < dbcs; ++i) {
        f.Dbcs(static_cast<std::uint8_t>(0x81 + i / 189),
               static_cast<std::uint8_t>(0x40 + i % 189));
    }
    for (std::size_t i = 0; i < sbcs; ++i) f.Sbcs(static_cast<std::uint8_t>(0x20 + i % 224));
    return f;
}

// ---- headered font file ----

struct FntFile {
    std::uint16_t highest = 0xFFFF;
    std::uint32_t width = 24;
    std::uint32_t height = 24;
    std::array<std::uint8_t, 8> vectors = {0x81, 0x9F, 0xE0, 0xFC, 0, 0, 0, 0};
    std::array<std::uint8_t, 8> leadRanges = {0x88, 0x89, 0, 0, 0, 0, 0, 0};
    std::array<std::uint8_t, 8> secondRanges = {0x40, 0x41, 0, 0, 0, 0, 0, 0};
    std::string magic = "KVOPosDBCSFont  ";
    // The glyph of the n-th character in walk order, as stored: rows bottom first, 4-byte cells.
    std::function<Bytes(std::size_t n)> glyph;

    std::size_t GlyphBytes() const { return width == 24 ? 96 : std::size_t{height} * 4; }

    Bytes Header() const {
        Bytes h(64, 0);
        for (std::size_t i = 0; i < magic.size() && i < 16; ++i)
            h[i] = static_cast<std::uint8_t>(magic[i]);
        WriteU16(h, 22, highest);
        WriteU32(h, 24, width);
        WriteU32(h, 28, height);
        for (std::size_t i = 0; i < 8; ++i) {
            h[32 + i] = vectors[i];
            h[48 + i] = leadRanges[i];
            h[56 + i] = secondRanges[i];
        }
        return h;
    }
    // The header and `count` glyphs.
    Bytes Build(std::size_t count) const {
        Bytes out = Header();
        for (std::size_t n = 0; n < count; ++n) {
            Bytes g = glyph ? glyph(n) : Bytes(GlyphBytes(), static_cast<std::uint8_t>(n + 1));
            g.resize(GlyphBytes());
            AppendBytes(out, g);
        }
        return out;
    }
};

// ---- firmware file ----

inline Bytes FirmwareFile(const std::string& header, std::size_t imageBytes) {
    Bytes out(header.begin(), header.end());
    for (std::size_t i = 0; i < imageBytes; ++i)
        out.push_back(static_cast<std::uint8_t>(0xA5 ^ (i * 13)));
    return out;
}

inline Bytes FirmwareFile(std::uint32_t ecLevel, std::uint32_t bootLevel, std::uint32_t devType,
                          std::size_t imageBytes) {
    char header[96];
    std::snprintf(header, sizeof header, "EcLevel %X\r\nBootLevel %X\r\nDevType %X\r\n", ecLevel,
                  bootLevel, devType);
    return FirmwareFile(std::string(header), imageBytes);
}

}  // namespace kx20::testfiles
