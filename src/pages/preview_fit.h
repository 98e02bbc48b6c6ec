// The picture preview's fitting rule: the picture keeps its aspect ratio, is never enlarged,
// and is fitted into the frame with integer divisions that are not rounded up (a 2 x 1000
// picture in a 100 x 100 frame is drawn 0 pixels wide).
#pragma once

#include "platform/picture_files.h"

namespace kx20 {

PixelSize FitPictureInFrame(PixelSize picture, PixelSize frame);

}  // namespace kx20
