// The stretch rule of a picture drawn into a memory context: StretchBlt of a 32-bit source in
// the context's default stretch mode (BLACKONWHITE, which ANDs the pixels a shrink drops), with
// the Bresenham-style choice of rows and columns the system's DIB engine makes. The native
// picture adapter draws with it so that its pixels equal those of the Win32 render.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/pictures.h"

namespace kx20 {

// A decoded picture: colours (0x00RRGGBB) and, for formats with transparency, which pixels are
// transparent (empty when none is).
struct DecodedPicture {
    RgbCanvas colours;
    std::vector<std::uint8_t> transparent;  // 1 per transparent pixel, row-major
};

// Draws the whole picture into `canvas` at (left, top), stretched to `width` x `height`
// pixels; what falls outside the canvas is cut off. Transparent pixels leave the canvas as it
// was where a whole block of them lands on one pixel, and turn it black where they are mixed
// with opaque ones, as the masked render does. False for an empty picture or rectangle.
bool StretchPicture(const DecodedPicture& picture, RgbCanvas& canvas, int left, int top, int width,
                    int height);

// The 1-D step parameters of the stretch along one axis (exposed for tests).
struct StretchSteps {
    int length = 0;  // steps: source pixels when shrinking, destination pixels otherwise
    int errStart = 0;
    int errAdd1 = 0;
    int errAdd2 = 0;
    bool shrink = false;  // more source than destination pixels
};
StretchSteps StretchStepsFor(int destinationLength, int sourceLength);

}  // namespace kx20
