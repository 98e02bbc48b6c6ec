// The native picture loader: JPEG decoded by libjpeg-turbo, PNG by libpng, GIF (its first
// image) by giflib, and bitmap files by the module's own bounded reader (bmp_reader.h). Every
// file is measured from its headers first and refused before any pixel memory is allocated when
// it would decode to more than kMaxDecodedPixels. The decoded picture is drawn with the stretch
// rule of the system's render (platform/picture_stretch.h) at the screen resolution the system
// reports by default (96 dots per inch). Icons and metafiles, which only the Win32 loader knows,
// are refused. Each refusal is traced ("LoadPicture - ...") and kept for the caller to show.
// Also PNG and JPEG writers (libpng, libjpeg-turbo) for the tool, the tests and the seed files.
#pragma once

#include <string>

#include "platform/pictures.h"

namespace kx20 {

// The largest logo the printer takes is 576 x 2040 dots and a larger picture is scaled down to
// it: pictures of up to 16 times that area are decoded, larger ones are refused unread.
inline constexpr std::int64_t kMaxDecodedPixels = std::int64_t{576} * 2040 * 16;

class NativePictures : public Pictures {
  public:
    std::unique_ptr<Picture> Load(ByteSpan file) override;
    int DpiX() override { return kScreenDpi; }
    int DpiY() override { return kScreenDpi; }

    // Why the last Load refused its file (empty after a success).
    const std::u16string& LastRefusal() const { return refusal_; }

    static constexpr int kScreenDpi = 96;

  private:
    std::u16string refusal_;
};

// A PNG file of the canvas: 8-bit RGB, or RGBA when `alpha` gives one value per pixel. Empty
// when the canvas is empty, the alpha plane does not match it, or encoding fails.
Bytes EncodePng(const RgbCanvas& canvas, const std::vector<std::uint8_t>* alpha = nullptr);
// A baseline JPEG file of the canvas at `quality` (1-100); empty when encoding fails.
Bytes EncodeJpeg(const RgbCanvas& canvas, int quality);

}  // namespace kx20
