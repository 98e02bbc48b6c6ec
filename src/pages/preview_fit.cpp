#include "pages/preview_fit.h"

#include <algorithm>
#include <cstdint>

namespace kx20 {

PixelSize FitPictureInFrame(PixelSize picture, PixelSize frame) {
    const std::int64_t pw = picture.width;
    const std::int64_t ph = picture.height;
    std::int64_t w = 0;
    std::int64_t h = 0;
    if (pw <= 0 || ph <= 0)
        return {};
    if (ph < pw) {
        w = std::min<std::int64_t>(pw, frame.width);
        h = ph * w / pw;
    } else {
        h = std::min<std::int64_t>(ph, frame.height);
        w = pw * h / ph;
    }
    if (w > frame.width) {
        w = frame.width;
        h = ph * w / pw;
    }
    if (h > frame.height) {
        h = frame.height;
        w = pw * h / ph;
    }
    return {static_cast<int>(w), static_cast<int>(h)};
}

}  // namespace kx20
