// Pictures under Wine: the OLE loader gives the pixels of the native path (the decoded picture
// drawn with the stretch rule) for the same files, so every conversion the unit suite checks
// over the native loader holds for the OLE one; the preview painter fits, greys and copies,
// from a file or from stored bytes.
#include "platform/win32/windows_clean.h"

#include <gtest/gtest.h>

#include <fstream>
#include <vector>

#include "pages/win32/preview_painter.h"
#include "platform/bytes.h"
#include "platform/memory/bmp_reader.h"
#include "platform/picture_files.h"
#include "platform/picture_stretch.h"
#include "platform/win32/win32_files.h"
#include "platform/win32/win32_pictures.h"
#include "platform/win32/win32_text.h"
#include "unit/test_pictures.h"

namespace kx20::winetest {
namespace {

using kx20::PixelSize;

// A picture file and what the native loader decodes from it: bitmaps through the bitmap reader
// (the same code as natively), PNG as the canvas it was written from (the native suite checks
// that libpng gives exactly that; this build has no libpng).
struct Sample {
    const char* name;
    Bytes file;
    DecodedPicture decoded;
};

Sample BmpSample(const char* name, const RgbCanvas& canvas) {
    Sample s{name, testpics::Bmp24(canvas), {}};
    std::u16string reason;
    auto read = ReadBmp(s.file, BmpLimits{kMaxPictureSide, kMaxPicturePixels}, reason);
    EXPECT_TRUE(read && read->colours.pixels == canvas.pixels) << name;
    if (read)
        s.decoded = std::move(*read);
    return s;
}

std::vector<Sample> Samples() {
    std::vector<Sample> s;
    s.push_back(BmpSample("bmp 37x23", testpics::PhotoLike(37, 23, 1)));
    s.push_back(BmpSample("bmp 1x1", testpics::Filled(1, 1, 0x336699)));
    const RgbCanvas photo = testpics::PhotoLike(211, 97, 3);
    s.push_back({"png 211x97", testpics::StoredPng(photo), {photo, {}}});
    RgbCanvas holes = testpics::PhotoLike(64, 40, 4);
    std::vector<std::uint8_t> alpha(holes.pixels.size()), transparent(alpha.size());
    for (std::size_t i = 0; i < alpha.size(); ++i) {
        alpha[i] = (i / 7) % 3 ? 255 : (i % 2 ? 0 : 100);
        transparent[i] = alpha[i] < 0x80;
    }
    s.push_back({"png 64x40 with transparency", testpics::StoredPng(holes, &alpha), {holes, transparent}});
    return s;
}

std::vector<PixelSize> Targets(PixelSize own) {
    return {own, {own.width * 2 / 3 + 1, own.height * 3 / 5 + 1}, {1, 1},
            {own.width * 2, own.height + 3}};
}

TEST(Pictures, OleAndNativeLoadersGiveTheSamePixels) {
    Win32Pictures ole;
    for (const Sample& sample : Samples()) {
        auto a = OpenPictureBytes(ole, sample.file);
        ASSERT_TRUE(a) << sample.name;
        ASSERT_EQ(a->size, (PixelSize{sample.decoded.colours.width, sample.decoded.colours.height}))
            << sample.name;
        for (PixelSize target : Targets(a->size)) {
            RgbCanvas ca(a->size.width, a->size.height), cb(a->size.width, a->size.height);
            ASSERT_TRUE(a->picture->Render(ca, 0, 0, target.width, target.height));
            ASSERT_TRUE(StretchPicture(sample.decoded, cb, 0, 0, target.width, target.height));
            int differ = 0;
            for (std::size_t i = 0; i < ca.pixels.size(); ++i)
                differ += ca.pixels[i] != cb.pixels[i];
            EXPECT_EQ(differ, 0) << sample.name << " at " << target.width << "x" << target.height;
        }
        RgbCanvas ca(20, 20), cb(20, 20);
        EXPECT_FALSE(a->picture->Render(ca, 0, 0, 0, 5));
        ASSERT_TRUE(a->picture->Render(ca, 7, 3, 30, 9));
        ASSERT_TRUE(StretchPicture(sample.decoded, cb, 7, 3, 30, 9));
        EXPECT_EQ(ca.pixels, cb.pixels) << sample.name << " drawn at an offset";
    }
    EXPECT_FALSE(ole.Load(Bytes(200, 'x')));
}

std::wstring TempFile(const wchar_t* name, const Bytes& data) {
    wchar_t folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    std::wstring path = std::wstring(folder) + name;
    std::ofstream(path.c_str(), std::ios::binary)
        .write(reinterpret_cast<const char*>(data.data()),
               static_cast<std::streamsize>(data.size()));
    return path;
}

std::uint32_t FaceColour() {
    const COLORREF c = GetSysColor(COLOR_3DFACE);
    return RgbPixel(GetRValue(c), GetGValue(c), GetBValue(c));
}

TEST(PreviewPainter, FitsGreysAndCopiesIntoTheFrameOnly) {
    HDC screen = GetDC(nullptr);
    HDC target = CreateCompatibleDC(screen);
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), 200, -200, 1, 32, BI_RGB};
    void* bits = nullptr;
    HBITMAP dib = CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    ASSERT_NE(dib, nullptr);
    HGDIOBJ previous = SelectObject(target, dib);
    auto pixel = [&](int x, int y) {
        GdiFlush();
        return static_cast<std::uint32_t*>(bits)[y * 200 + x] & 0xFFFFFFu;
    };
    auto clear = [&] {
        GdiFlush();
        for (int i = 0; i < 200 * 200; ++i) static_cast<std::uint32_t*>(bits)[i] = 0x123456;
    };
    const RECT frame = {10, 16, 110, 116};

    clear();
    PaintPicturePreview(nullptr, target, u"", frame, 1152, false, false);
    EXPECT_EQ(pixel(10, 16), FaceColour());
    EXPECT_EQ(pixel(109, 115), FaceColour());
    EXPECT_EQ(pixel(9, 16), 0x123456u);
    EXPECT_EQ(pixel(110, 116), 0x123456u);

    // 2 x 1000 in 100 x 100: drawn 0 pixels wide, so only the background shows.
    const std::wstring thin =
        TempFile(L"kx20thin.bmp", testpics::Bmp24(testpics::Filled(2, 1000, 0xFF0000)));
    clear();
    PaintPicturePreview(nullptr, target, FromWide(thin), frame, 1152, false, false);
    EXPECT_EQ(pixel(10, 16), FaceColour());

    // A red 50 x 20 picture at the frame's top left, in colour and in grey (79 = 255 x 0.31).
    const std::wstring red =
        TempFile(L"kx20red.bmp", testpics::Bmp24(testpics::Filled(50, 20, 0xFF0000)));
    clear();
    PaintPicturePreview(nullptr, target, FromWide(red), frame, 1152, false, true);
    EXPECT_EQ(pixel(10, 16), 0xFF0000u);
    EXPECT_EQ(pixel(59, 35), 0xFF0000u);
    EXPECT_EQ(pixel(60, 35), FaceColour());
    EXPECT_EQ(pixel(59, 36), FaceColour());
    PaintPicturePreview(nullptr, target, FromWide(red), frame, 1152, true, true);
    EXPECT_EQ(pixel(30, 20), RgbPixel(79, 79, 79));
    EXPECT_EQ(pixel(80, 20), FaceColour());

    // Stored bytes (a logo's picture as the catalogue keeps it) go through a temporary file
    // that is gone afterwards; no bytes paint the background only.
    clear();
    PaintPictureBytesPreview(nullptr, target, testpics::Bmp24(testpics::Filled(50, 20, 0xFF0000)),
                             frame, 0, false, true);
    EXPECT_EQ(pixel(59, 35), 0xFF0000u);
    EXPECT_EQ(pixel(60, 35), FaceColour());
    Win32FileSystem files;
    EXPECT_FALSE(files.Exists(TempPicturePath(files)));
    PaintPictureBytesPreview(nullptr, target, ByteSpan(), frame, 0, false, true);
    EXPECT_EQ(pixel(10, 16), FaceColour());

    DeleteFileW(thin.c_str());
    DeleteFileW(red.c_str());
    SelectObject(target, previous);
    DeleteObject(dib);
    DeleteDC(target);
    ReleaseDC(nullptr, screen);
}

}  // namespace
}  // namespace kx20::winetest
