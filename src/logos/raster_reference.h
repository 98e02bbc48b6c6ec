// The logo dither written the plain way: a float grey plane for the whole grid, one pass per
// step (grey, error diffusion, threshold into a copy of the canvas, packing from that copy), as
// the algorithm states it. It defines the raster that the fast conversion must reproduce bit for
// bit, serves grids too small for the fast one, and is the baseline the benchmarks time.
#pragma once

#include "logos/raster_conversion.h"

namespace kx20::logos {

Raster DitherToRasterReference(const RgbCanvas& canvas, PixelSize grid);

}  // namespace kx20::logos
