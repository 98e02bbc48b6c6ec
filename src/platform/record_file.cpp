#include "platform/record_file.h"

#include <algorithm>

#include "platform/format.h"

namespace kx20 {

namespace {

constexpr std::size_t kMagicSize = 8;
constexpr std::size_t kHeaderSize = kMagicSize + 4 + 4 + 4;

}  // namespace

void AppendBlob(Bytes& out, ByteSpan b) {
    AppendU32(out, static_cast<std::uint32_t>(b.size()));
    AppendBytes(out, b);
}

void AppendText(Bytes& out, std::u16string_view t) {
    AppendU32(out, static_cast<std::uint32_t>(t.size()));
    for (char16_t u : t) AppendU16(out, u);
}

bool FieldReader::Fits(std::size_t n) {
    if (ok_ && FitsIn(d_.size(), pos_, n))
        return true;
    ok_ = false;
    return false;
}

std::uint8_t FieldReader::U8() {
    return Fits(1) ? d_[pos_++] : 0;
}

std::uint16_t FieldReader::U16() {
    if (!Fits(2))
        return 0;
    pos_ += 2;
    return ReadU16(d_, pos_ - 2);
}

std::uint32_t FieldReader::U32() {
    if (!Fits(4))
        return 0;
    pos_ += 4;
    return ReadU32(d_, pos_ - 4);
}

Bytes FieldReader::Blob() {
    const std::uint32_t n = U32();
    if (!Fits(n))
        return {};
    Bytes b(d_.begin() + static_cast<std::ptrdiff_t>(pos_),
            d_.begin() + static_cast<std::ptrdiff_t>(pos_ + n));
    pos_ += n;
    return b;
}

std::u16string FieldReader::Text() {
    const std::uint32_t n = U32();
    std::u16string t;
    if (!ok_ || n > (d_.size() - pos_) / 2) {
        Bad();
        return t;
    }
    for (std::uint32_t i = 0; i < n; ++i) t.push_back(U16());
    return t;
}

bool FieldReader::Bool() {
    const std::uint8_t v = U8();
    if (v > 1)
        Bad();
    return v == 1;
}

Bytes FrameRecord(std::string_view magic, std::uint32_t version, ByteSpan payload) {
    Bytes out(magic.begin(), magic.end());
    out.resize(kMagicSize, 0);
    AppendU32(out, version);
    AppendU32(out, static_cast<std::uint32_t>(payload.size()));
    AppendU32(out, Crc32(payload));
    AppendBytes(out, payload);
    return out;
}

std::optional<ByteSpan> UnframeRecord(ByteSpan data, std::string_view magic,
                                      std::uint32_t version, std::u16string_view what,
                                      std::u16string& problem) {
    if (data.size() < kHeaderSize || magic.size() != kMagicSize ||
        !std::equal(magic.begin(), magic.end(), data.begin())) {
        problem = Format(u"not a %s", what);
        return std::nullopt;
    }
    const std::uint32_t found = ReadU32(data, kMagicSize);
    if (found != version) {
        problem = Format(u"format version %u, expected %u", found, version);
        return std::nullopt;
    }
    const std::uint32_t length = ReadU32(data, kMagicSize + 4);
    if (length != data.size() - kHeaderSize) {
        problem =
            Format(u"payload of %u bytes announced, %u present", length, data.size() - kHeaderSize);
        return std::nullopt;
    }
    ByteSpan payload = data.subspan(kHeaderSize);
    if (Crc32(payload) != ReadU32(data, kMagicSize + 8)) {
        problem = u"payload checksum does not match";
        return std::nullopt;
    }
    return payload;
}

bool ReplaceFile(FileSystem& files, std::u16string_view path, ByteSpan data) {
    const std::u16string next = std::u16string(path) + u".new";
    {
        auto file = files.Open(next, OpenMode::CreateAlways, ShareMode::None);
        if (!file || !file->Write(data) || !file->Flush())
            return false;
    }
    files.Remove(path);
    return files.Rename(next, path);
}

}  // namespace kx20
