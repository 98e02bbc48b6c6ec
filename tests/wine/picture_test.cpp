// Pictures under Wine: the OLE loader gives the pixels of the native path (the decoded picture
// drawn with the stretch rule) for the same files; the conversion equals a literal per-pixel GetPixel/SetPixel conversion in a
// memory context (and is timed against it); the preview painter fits, greys and copies.
#include "platform/win32/windows_clean.h"

#include <gtest/gtest.h>
#include <ole2.h>
#include <olectl.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <vector>

#include "logos/raster_conversion.h"
#include "pages/win32/preview_painter.h"
#include "platform/memory/memory_files.h"
#include "platform/memory/bmp_reader.h"
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
    s.push_back(BmpSample("bmp 300x120", testpics::PhotoLike(300, 120, 2)));
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
    return {own,
            {own.width * 2 / 3 + 1, own.height * 3 / 5 + 1},
            {own.width, (own.height + 1) / 2},
            {(own.width + 2) / 3, own.height},
            {1, 1},
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

double Seconds() {
    LARGE_INTEGER now, frequency;
    QueryPerformanceCounter(&now);
    QueryPerformanceFrequency(&frequency);
    return static_cast<double>(now.QuadPart) / static_cast<double>(frequency.QuadPart);
}

float Clamp(float n) {
    return n < 0.0f ? 0.0f : (n > 1.0f ? 1.0f : n);
}

// The conversion written the way the system's calls suggest: the picture rendered into a
// bitmap compatible with the screen, every pixel read with GetPixel, dithered on a float plane,
// written back with SetPixel and read again to pack.
std::optional<logos::Raster> ConvertWithGetPixel(const Bytes& file, logos::LogoLimits limits,
                                                 bool scale) {
    HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, file.size());
    std::memcpy(GlobalLock(block), file.data(), file.size());
    GlobalUnlock(block);
    IStream* stream = nullptr;
    CreateStreamOnHGlobal(block, TRUE, &stream);
    IPicture* picture = nullptr;
    const HRESULT loaded = OleLoadPicture(stream, static_cast<LONG>(file.size()), FALSE,
                                          IID_IPicture, reinterpret_cast<void**>(&picture));
    stream->Release();
    if (FAILED(loaded))
        return std::nullopt;
    HDC screen = GetDC(nullptr);
    HDC memory = CreateCompatibleDC(screen);
    OLE_XSIZE_HIMETRIC hw = 0;
    OLE_YSIZE_HIMETRIC hh = 0;
    picture->get_Width(&hw);
    picture->get_Height(&hh);
    const PixelSize own{MulDiv(hw, GetDeviceCaps(memory, LOGPIXELSX), 2540),
                        MulDiv(hh, GetDeviceCaps(memory, LOGPIXELSY), 2540)};
    HBITMAP bitmap = CreateCompatibleBitmap(screen, own.width, own.height);
    HGDIOBJ previous = SelectObject(memory, bitmap);
    const PixelSize target = logos::TargetSize(own, limits, scale);
    picture->Render(memory, 0, 0, target.width, target.height, 0, hh, hw, -hh, nullptr);
    picture->Release();
    const PixelSize grid = logos::GridSize(target, limits);
    const int w = grid.width, h = grid.height;
    std::vector<float> plane(static_cast<std::size_t>(w) * h);
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            const COLORREF c = GetPixel(memory, x, y);
            const double sum =
                (c & 0xFF) * 0.31 + ((c >> 8) & 0xFF) * 0.56 + ((c >> 16) & 0xFF) * 0.13;
            plane[static_cast<std::size_t>(y) * w + x] =
                static_cast<float>(static_cast<int>(sum) / 255.0);
        }
    }
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            const float v = plane[static_cast<std::size_t>(y) * w + x];
            const float err = v - static_cast<float>(static_cast<int>(v + 0.5));
            auto share = [&](int nx, int ny, float weight) {
                float& n = plane[static_cast<std::size_t>(ny) * w + nx];
                const float part = err * weight;
                n = Clamp(n) + part;
            };
            if (x + 1 < w)
                share(x + 1, y, 0.4375f);
            if (x + 1 < w && y + 1 < h)
                share(x + 1, y + 1, 0.1875f);
            if (y + 1 < h)
                share(x, y + 1, 0.3125f);
            if (x > 0 && y + 1 < h)
                share(x - 1, y + 1, 0.0625f);
        }
    }
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            SetPixel(memory, x, y,
                     plane[static_cast<std::size_t>(y) * w + x] < 0.5f ? 0 : 0xFFFFFF);
    logos::Raster raster{w, h, Bytes(static_cast<std::size_t>(w) / 8 * h, 0)};
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            if (GetPixel(memory, x, y) == 0)
                raster.bits[static_cast<std::size_t>(y) * (w / 8) + x / 8] |=
                    static_cast<std::uint8_t>(0x80 >> (x % 8));
    SelectObject(memory, previous);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return raster;
}

TEST(Pictures, ConversionEqualsTheGetPixelFormAndIsTimedAgainstIt) {
    CoInitialize(nullptr);
    Win32FileSystem files;
    Win32Pictures pictures;
    struct Case {
        const char* name;
        Bytes file;
        logos::LogoLimits limits;
        bool scale;
    } cases[] = {
        {"full form 576x2040",
         testpics::Bmp24(testpics::PhotoLike(576, 2040, 7)),
         {576, 2040},
         false},
        {"scaled 700x300 png", testpics::StoredPng(testpics::PhotoLike(700, 300, 8)), {576, 2040}, true},
        {"portrait padded 90x500",
         testpics::Bmp24(testpics::PhotoLike(90, 500, 9)),
         {576, 2040},
         true},
        {"narrow 1000x900", testpics::Bmp24(testpics::PhotoLike(1000, 900, 10)), {472, 40}, true},
    };
    for (const Case& c : cases) {
        const std::wstring path = TempFile(L"kx20pic.bin", c.file);
        // Each form runs twice; the faster run counts (the first loads the codecs).
        std::optional<logos::Raster> ours, literal;
        double oursTime = 1e9, literalTime = 1e9;
        for (int run = 0; run < 2; ++run) {
            const double t0 = Seconds();
            ours =
                logos::ConvertPictureToRaster(files, pictures, c.limits, c.scale, FromWide(path));
            const double t1 = Seconds();
            literal = ConvertWithGetPixel(c.file, c.limits, c.scale);
            const double t2 = Seconds();
            oursTime = std::min(oursTime, t1 - t0);
            literalTime = std::min(literalTime, t2 - t1);
        }
        ASSERT_TRUE(ours) << c.name;
        ASSERT_TRUE(literal) << c.name;
        EXPECT_EQ(ours->width, literal->width) << c.name;
        EXPECT_EQ(ours->height, literal->height) << c.name;
        EXPECT_EQ(ours->bits, literal->bits) << c.name;
        // The dither and packing alone, from the drawn canvas.
        auto opened = OpenPictureBytes(pictures, c.file);
        ASSERT_TRUE(opened);
        RgbCanvas canvas(opened->size.width, opened->size.height);
        const PixelSize target = logos::TargetSize(opened->size, c.limits, c.scale);
        ASSERT_TRUE(opened->picture->Render(canvas, 0, 0, target.width, target.height));
        double ditherTime = 1e9;
        for (int run = 0; run < 5; ++run) {
            const double t0 = Seconds();
            const logos::Raster r =
                logos::DitherToRaster(canvas, logos::GridSize(target, c.limits));
            ditherTime = std::min(ditherTime, Seconds() - t0);
            EXPECT_EQ(r.bits, ours->bits);
        }
        std::printf(
            "[ timing   ] %s: file to raster %.2f ms (dither and packing %.2f ms), "
            "GetPixel/SetPixel form %.1f ms, ratio 1:%.1f\n",
            c.name, oursTime * 1e3, ditherTime * 1e3, literalTime * 1e3, literalTime / oursTime);
        DeleteFileW(path.c_str());
    }
    CoUninitialize();
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

    DeleteFileW(thin.c_str());
    DeleteFileW(red.c_str());
    SelectObject(target, previous);
    DeleteObject(dib);
    DeleteDC(target);
    ReleaseDC(nullptr, screen);
}

}  // namespace
}  // namespace kx20::winetest
