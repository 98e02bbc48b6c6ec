// Pictures through OLE: OleLoadPicture over a stream on a movable global block that holds the
// file, IPicture::Render into a memory context holding a 32-bit DIB section of the canvas. COM
// is initialised on the calling thread for as long as a picture lives, when it was not already.
#pragma once

#include "platform/pictures.h"

namespace kx20 {

class Win32Pictures : public Pictures {
  public:
    std::unique_ptr<Picture> Load(ByteSpan file) override;
    // The logical resolution of a memory context compatible with the screen.
    int DpiX() override;
    int DpiY() override;
};

}  // namespace kx20
