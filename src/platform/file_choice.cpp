#include "platform/file_choice.h"

namespace kx20 {

namespace {

std::size_t LastSeparator(std::u16string_view path) {
    return path.find_last_of(u"\\/");
}

}  // namespace

std::u16string FolderOfPath(std::u16string_view path) {
    const std::size_t at = LastSeparator(path);
    if (at == std::u16string_view::npos)
        return {};
    // A file in a drive's root folder keeps the separator: "C:" alone is another folder.
    const bool driveRoot = at > 0 && path[at - 1] == u':';
    return std::u16string(path.substr(0, driveRoot ? at + 1 : at));
}

std::u16string FileNameOfPath(std::u16string_view path) {
    const std::size_t at = LastSeparator(path);
    return std::u16string(at == std::u16string_view::npos ? path : path.substr(at + 1));
}

}  // namespace kx20
