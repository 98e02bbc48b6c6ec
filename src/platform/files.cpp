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

FileReadResult ReadLimitedFile(FileSystem& fs, std::u16string_view path, std::uint64_t maxBytes) {
    FileReadResult r;
    auto file = fs.Open(path, OpenMode::ReadExisting, ShareMode::Read);
    if (!file) {
        r.error = fs.LastError();
        return r;
    }
    const auto size = file->Size();
    r.size = size.value_or(0);
    if (!size || *size == 0 || *size > maxBytes) {
        r.status = FileReadStatus::SizeInvalid;
        r.error = fs.LastError();
        return r;
    }
    r.data.resize(static_cast<std::size_t>(*size));
    std::size_t got = 0;
    if (!file->Read(r.data, &got) || got != r.data.size()) {
        r.status = FileReadStatus::ReadFailed;
        r.error = fs.LastError();
        r.data.clear();
        return r;
    }
    r.status = FileReadStatus::Ok;
    return r;
}

}  // namespace kx20
