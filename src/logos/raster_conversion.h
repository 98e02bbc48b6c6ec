// Picture to logo raster: the picture is loaded and measured, optionally scaled to fit the
// logo form's limits, drawn into a canvas of its own size, reduced to grey, dithered to black
// and white by error diffusion, padded and cropped to the logo grid and packed into bytes; the
// narrow form is then regrouped into column bands.
//
// The dither is defined on 32-bit floats (one value per grid pixel): grey = truncate(red x
// 0.31 + green x 0.56 + blue x 0.13) in double precision, stored as grey / 255.0; each pixel
// in row order gets q = truncate(v + 0.5) and err = v - q and hands err x 7/16 to the right,
// 3/16 below right, 5/16 below and 1/16 below left, each neighbour first clamped to [0, 1] and
// then increased by its share (a float product, then a float sum, never fused); a value below
// 0.5 is black. The implementation keeps several rows in flight at once (each row two pixels
// behind the one above), which leaves the order of every pixel's updates unchanged, so its
// raster is bit for bit that of the straightforward float-plane form in
// raster_reference.h. This file is compiled with floating-point contraction off.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "platform/bytes.h"
#include "platform/files.h"
#include "platform/picture_files.h"
#include "platform/pictures.h"

namespace kx20::logos {

// Logo forms: the full form's limits make width / 8 (72) and height / 8 (255) fit in one byte
// of the download header; the narrow form is regrouped into column bands.
inline constexpr int kFullMaxWidth = 576;
inline constexpr int kFullMaxHeight = 2040;
inline constexpr int kNarrowMaxWidth = 472;
inline constexpr int kNarrowMaxHeight = 40;

struct LogoLimits {
    int maxWidth = 0;
    int maxHeight = 0;
};
LogoLimits LimitsFor(bool fullWidth);

// A one-bit raster: `width` / 8 bytes a row, rows top to bottom, leftmost pixel in the most
// significant bit, a set bit a black dot. (For the narrow form after regrouping, the same bytes
// hold column bands; see RegroupToColumnBands.)
struct Raster {
    int width = 0;
    int height = 0;
    Bytes bits;
};

// The size the picture is drawn at. Without scaling its own size. With scaling only the limit of
// the longer side applies (landscape when height < width), keeping the aspect ratio with
// integer division; the other side may still exceed its limit and is cropped by the grid.
PixelSize TargetSize(PixelSize picture, LogoLimits limits, bool scaleToFit);
// The target rounded up to a width multiple of 32 and a height multiple of 8, then cropped to
// the limits (so the narrow form can end at 472, a multiple of 8 only).
PixelSize GridSize(PixelSize target, LogoLimits limits);

// Grey of one pixel (0x00RRGGBB) as the dither's float.
float GreyValue(std::uint32_t pixel);

// The dither and the packing over a canvas. The grid may be larger than the canvas: the pixels
// outside it read as white (the system's invalid colour) and never set a bit, but they take
// part in the error diffusion. Empty bits when the grid is empty or its width is not a
// multiple of 8.
Raster DitherToRaster(const RgbCanvas& canvas, PixelSize grid);

// The narrow form's column bands: bands of 8 rows, top band first; per band one byte a column,
// left to right; bit p (value 1 << p) of a column byte is the band's row p. Same size as the
// row raster. Empty when the raster is not a whole number of bands and bytes.
Bytes RegroupToColumnBands(const Raster& rows);
// The inverse, for showing a narrow logo: the row raster of `width` x `height` column bands.
std::optional<Raster> ColumnBandsToRows(ByteSpan bands, int width, int height);



// The whole conversion of one picture file into the row raster of the given limits (the
// raster's size is the final grid). Nothing when the file cannot be read, decoded or drawn, is
// too large to draw, or memory runs out; each failure is traced.
std::optional<Raster> ConvertPictureToRaster(FileSystem& files, Pictures& pictures,
                                             LogoLimits limits, bool scaleToFit,
                                             std::u16string_view path);
// The same from a picture already opened.
std::optional<Raster> ConvertOpenedPicture(OpenedPicture& opened, LogoLimits limits,
                                           bool scaleToFit);

}  // namespace kx20::logos
