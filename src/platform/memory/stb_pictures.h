// The native picture loader: BMP, PNG, JPEG and GIF decoded by stb_image from the file's bytes,
// drawn with the stretch rule of the system's render (platform/picture_stretch.h), at the
// screen resolution the system reports by default (96 dots per inch). Icons and metafiles,
// which only the Win32 loader knows, are refused. Also a PNG writer for tools and tests.
#pragma once

#include "platform/pictures.h"

namespace kx20 {

class StbPictures : public Pictures {
  public:
    std::unique_ptr<Picture> Load(ByteSpan file) override;
    int DpiX() override { return kScreenDpi; }
    int DpiY() override { return kScreenDpi; }

    static constexpr int kScreenDpi = 96;
};

// A PNG file of the canvas: 8-bit RGB, or RGBA when `alpha` gives one value per pixel. Empty
// when the canvas is empty, the alpha plane does not match it, or encoding fails.
Bytes EncodePng(const RgbCanvas& canvas, const std::vector<std::uint8_t>* alpha = nullptr);
// A baseline JPEG file of the canvas at `quality` (1-100); empty when encoding fails.
Bytes EncodeJpeg(const RgbCanvas& canvas, int quality);

}  // namespace kx20
