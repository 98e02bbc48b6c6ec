#include "platform/win32/win32_pictures.h"

#include "platform/win32/windows_clean.h"

#include <ole2.h>
#include <olectl.h>

#include <cstring>

namespace kx20 {

namespace {

// COM on this thread while a picture needs it; left alone when the thread chose another model.
class ComScope {
  public:
    ComScope() : owned_(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {}
    ~ComScope() {
        if (owned_)
            CoUninitialize();
    }
    ComScope(const ComScope&) = delete;
    ComScope& operator=(const ComScope&) = delete;

  private:
    bool owned_;
};

class ScreenDc {
  public:
    ScreenDc()
        : screen_(GetDC(nullptr)), memory_(screen_ ? CreateCompatibleDC(screen_) : nullptr) {}
    ~ScreenDc() {
        if (memory_)
            DeleteDC(memory_);
        if (screen_)
            ReleaseDC(nullptr, screen_);
    }
    ScreenDc(const ScreenDc&) = delete;
    ScreenDc& operator=(const ScreenDc&) = delete;
    HDC screen() const { return screen_; }
    HDC memory() const { return memory_; }

  private:
    HDC screen_;
    HDC memory_;
};

int Dpi(int index) {
    ScreenDc dc;
    return dc.memory() ? GetDeviceCaps(dc.memory(), index) : 96;
}

class Win32Picture : public Picture {
  public:
    Win32Picture(std::unique_ptr<ComScope> com, IPicture* picture)
        : com_(std::move(com)), picture_(picture) {}
    ~Win32Picture() override { picture_->Release(); }

    std::int32_t HimetricWidth() const override {
        OLE_XSIZE_HIMETRIC w = 0;
        return SUCCEEDED(picture_->get_Width(&w)) ? w : 0;
    }
    std::int32_t HimetricHeight() const override {
        OLE_YSIZE_HIMETRIC h = 0;
        return SUCCEEDED(picture_->get_Height(&h)) ? h : 0;
    }

    bool Render(RgbCanvas& canvas, int left, int top, int width, int height) override {
        if (canvas.width <= 0 || canvas.height <= 0 || width <= 0 || height <= 0)
            return false;
        ScreenDc dc;
        if (!dc.memory())
            return false;
        BITMAPINFO info = {};
        info.bmiHeader.biSize = sizeof(info.bmiHeader);
        info.bmiHeader.biWidth = canvas.width;
        info.bmiHeader.biHeight = -canvas.height;  // top-down, as the canvas
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        info.bmiHeader.biCompression = BI_RGB;
        void* bits = nullptr;
        HBITMAP dib = CreateDIBSection(dc.screen(), &info, DIB_RGB_COLORS, &bits, nullptr, 0);
        if (!dib || !bits)
            return false;
        const std::size_t bytes = canvas.pixels.size() * sizeof(std::uint32_t);
        // 0x00RRGGBB in memory is the DIB's blue, green, red, unused.
        std::memcpy(bits, canvas.pixels.data(), bytes);
        HGDIOBJ previous = SelectObject(dc.memory(), dib);
        const HRESULT hr =
            picture_->Render(dc.memory(), left, top, width, height, 0, HimetricHeight(),
                             HimetricWidth(), -HimetricHeight(), nullptr);
        GdiFlush();
        if (SUCCEEDED(hr)) {
            std::memcpy(canvas.pixels.data(), bits, bytes);
            for (auto& p : canvas.pixels) p &= 0x00FFFFFFu;
        }
        SelectObject(dc.memory(), previous);
        DeleteObject(dib);
        return SUCCEEDED(hr);
    }

  private:
    std::unique_ptr<ComScope> com_;
    IPicture* picture_;
};

}  // namespace

std::unique_ptr<Picture> Win32Pictures::Load(ByteSpan file) {
    if (file.empty() || file.size() > 0x7FFFFFFF)
        return nullptr;
    auto com = std::make_unique<ComScope>();
    HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, file.size());
    if (!block)
        return nullptr;
    void* data = GlobalLock(block);
    if (!data) {
        GlobalFree(block);
        return nullptr;
    }
    std::memcpy(data, file.data(), file.size());
    GlobalUnlock(block);
    IStream* stream = nullptr;
    // The stream owns the block from here on and frees it when released.
    if (FAILED(CreateStreamOnHGlobal(block, TRUE, &stream))) {
        GlobalFree(block);
        return nullptr;
    }
    IPicture* picture = nullptr;
    const HRESULT hr = OleLoadPicture(stream, static_cast<LONG>(file.size()), FALSE, IID_IPicture,
                                      reinterpret_cast<void**>(&picture));
    stream->Release();
    if (FAILED(hr) || !picture)
        return nullptr;
    return std::make_unique<Win32Picture>(std::move(com), picture);
}

int Win32Pictures::DpiX() {
    return Dpi(LOGPIXELSX);
}

int Win32Pictures::DpiY() {
    return Dpi(LOGPIXELSY);
}

}  // namespace kx20
