#include "platform/picture_files.h"

#include <new>

#include "platform/trace.h"

namespace kx20 {

std::optional<OpenedPicture> OpenPictureBytes(Pictures& pictures, ByteSpan file) {
    OpenedPicture opened;
    try {
        opened.picture = pictures.Load(file);
    } catch (const std::bad_alloc&) {
        DrvTrace(u"LoadPictureFile - out of memory\n");
        return std::nullopt;
    }
    if (!opened.picture) {
        DrvTrace(u"LoadPictureFile - OleLoadPicture Failed\n");
        return std::nullopt;
    }
    opened.size.width = MulDiv(opened.picture->HimetricWidth(), pictures.DpiX(), 2540);
    opened.size.height = MulDiv(opened.picture->HimetricHeight(), pictures.DpiY(), 2540);
    if (opened.size.width < 0 || opened.size.height < 0) {
        DrvTrace(u"LoadPictureFile - picture size %d x %d unusable\n", opened.size.width,
                 opened.size.height);
        return std::nullopt;
    }
    return opened;
}

std::optional<OpenedPicture> OpenPictureFile(FileSystem& files, Pictures& pictures,
                                             std::u16string_view path) {
    auto file = files.Open(path, OpenMode::ReadExisting, ShareMode::None);
    if (!file) {
        DrvTrace(u"LoadPictureFile - CreateFile Failed. GetLastError:%d\n", files.LastError());
        return std::nullopt;
    }
    const auto size = file->Size();
    if (!size || *size == 0) {
        DrvTrace(u"LoadPictureFile - empty file\n");
        return std::nullopt;
    }
    if (*size > kMaxPictureFileBytes) {
        DrvTrace(u"LoadPictureFile - file of %I64u bytes refused\n", *size);
        return std::nullopt;
    }
    Bytes data;
    try {
        data.resize(static_cast<std::size_t>(*size));
    } catch (const std::bad_alloc&) {
        DrvTrace(u"LoadPictureFile - GlobalAlloc Failed\n");
        return std::nullopt;
    }
    std::size_t got = 0;
    if (!file->Read(data, &got) || got != data.size()) {
        DrvTrace(u"LoadPictureFile - ReadFile Failed\n");
        return std::nullopt;
    }
    file.reset();
    return OpenPictureBytes(pictures, data);
}

bool LoadPictureFile(FileSystem& files, Pictures& pictures, std::u16string_view path,
                     RgbCanvas* canvas, int left, int top, int right, int bottom, PixelSize& size) {
    auto opened = OpenPictureFile(files, pictures, path);
    if (!opened)
        return false;
    size = opened->size;
    if (!canvas)
        return true;
    if (!opened->picture->Render(*canvas, left, top, right - left, bottom - top)) {
        DrvTrace(u"LoadPictureFile - Render Failed\n");
        return false;
    }
    return true;
}

std::u16string TempPicturePath(FileSystem& files) {
    // The folder comes with its trailing separator.
    return files.TempFolder() + std::u16string(kTempPictureName);
}

std::u16string WriteTempPicture(FileSystem& files, std::u16string_view caller, ByteSpan bytes) {
    std::u16string path = TempPicturePath(files);
    auto file = files.Open(path, OpenMode::CreateAlways, ShareMode::None);
    if (!file) {
        DrvTrace(u"%ls - CreateFile Failed. GetLastError:%d\n", caller, files.LastError());
        return {};
    }
    if (!file->Write(bytes)) {
        DrvTrace(u"%ls - WriteFile Failed. GetLastError:%d\n", caller, files.LastError());
        return {};
    }
    return path;
}

}  // namespace kx20
