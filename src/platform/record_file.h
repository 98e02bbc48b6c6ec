// Files the tools keep for themselves (the simulated printer's state, a till's catalogue): a
// magic name, a format version, the payload's length and CRC-32, then the payload, written
// with the helpers below and read field by field by a reader that never runs past the end.
//
// Layout (little-endian): 8-byte magic, u32 version, u32 payload length, u32 CRC-32 of the
// payload, payload. Blobs and texts in the payload are a u32 count followed by the bytes or the
// UTF-16 units.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/bytes.h"
#include "platform/files.h"

namespace kx20 {

void AppendBlob(Bytes& out, ByteSpan b);
void AppendText(Bytes& out, std::u16string_view t);

// Reads fields in order; the first read that does not fit marks the whole read failed and
// every later read answers zero or empty.
class FieldReader {
  public:
    explicit FieldReader(ByteSpan d) : d_(d) {}
    bool ok() const { return ok_; }
    bool AtEnd() const { return pos_ == d_.size(); }
    std::size_t Remaining() const { return d_.size() - pos_; }

    std::uint8_t U8();
    std::uint16_t U16();
    std::uint32_t U32();
    Bytes Blob();
    std::u16string Text();
    bool Bool();
    void Bad() { ok_ = false; }

  private:
    bool Fits(std::size_t n);
    ByteSpan d_;
    std::size_t pos_ = 0;
    bool ok_ = true;
};

// `magic` must be 8 characters.
Bytes FrameRecord(std::string_view magic, std::uint32_t version, ByteSpan payload);
// The payload of a framed record; nothing, with `problem` set, when the magic, version, length
// or checksum do not match. `what` names the kind of file in the problem ("printer state file").
std::optional<ByteSpan> UnframeRecord(ByteSpan data, std::string_view magic,
                                      std::uint32_t version, std::u16string_view what,
                                      std::u16string& problem);

// Writes the data beside the file and then puts it in place of the old one, so a reader never
// sees half a file.
bool ReplaceFile(FileSystem& files, std::u16string_view path, ByteSpan data);

}  // namespace kx20
