#include "platform/files.h"

namespace kx20 {

std::optional<Bytes> ReadWholeFile(FileSystem& fs, std::u16string_view path) {
    auto file = fs.Open(path, OpenMode::ReadExisting, ShareMode::Read);
    if (!file)
        return std::nullopt;
    auto size = file->Size();
    if (!size || *size > 0x7FFFFFFF)
        return std::nullopt;
    Bytes data(static_cast<std::size_t>(*size));
    std::size_t got = 0;
    if (!file->Read(data, &got) || got != data.size())
        return std::nullopt;
    return data;
}

}  // namespace kx20
