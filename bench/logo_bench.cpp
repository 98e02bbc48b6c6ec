// Logo conversion timings: the dither and packing from a decoded canvas (full form 576 x 2040,
// narrow form 472 x 40 with its column bands), the plain float-plane form of the same algorithm
// in the same run as the baseline, and the whole path from a picture file to the raster.
#include <benchmark/benchmark.h>

#include "logos/raster_conversion.h"
#include "logos/raster_reference.h"
#include "platform/memory/memory_files.h"
#include "platform/memory/native_pictures.h"
#include "unit/test_pictures.h"

namespace {

using namespace kx20;
using namespace kx20::logos;

const RgbCanvas& FullCanvas() {
    static const RgbCanvas canvas = testpics::PhotoLike(kFullMaxWidth, kFullMaxHeight, 11);
    return canvas;
}

const RgbCanvas& NarrowCanvas() {
    static const RgbCanvas canvas = testpics::PhotoLike(kNarrowMaxWidth, kNarrowMaxHeight, 12);
    return canvas;
}

// The measured code must still give the plain form's raster.
bool SameRaster(const RgbCanvas& canvas, PixelSize grid) {
    return DitherToRaster(canvas, grid).bits == DitherToRasterReference(canvas, grid).bits;
}

void BM_ConvertFullForm(benchmark::State& state) {
    const PixelSize grid{kFullMaxWidth, kFullMaxHeight};
    if (!SameRaster(FullCanvas(), grid))
        state.SkipWithError("raster differs from the float-plane form");
    for (auto _ : state) benchmark::DoNotOptimize(DitherToRaster(FullCanvas(), grid));
    state.SetItemsProcessed(state.iterations() * grid.width * grid.height);
}
BENCHMARK(BM_ConvertFullForm)->Unit(benchmark::kMillisecond);

void BM_ConvertFullFormFloatPlane(benchmark::State& state) {
    const PixelSize grid{kFullMaxWidth, kFullMaxHeight};
    for (auto _ : state) benchmark::DoNotOptimize(DitherToRasterReference(FullCanvas(), grid));
    state.SetItemsProcessed(state.iterations() * grid.width * grid.height);
}
BENCHMARK(BM_ConvertFullFormFloatPlane)->Unit(benchmark::kMillisecond);

void BM_ConvertNarrowForm(benchmark::State& state) {
    const PixelSize grid{kNarrowMaxWidth, kNarrowMaxHeight};
    if (!SameRaster(NarrowCanvas(), grid))
        state.SkipWithError("raster differs from the float-plane form");
    for (auto _ : state) {
        const Raster rows = DitherToRaster(NarrowCanvas(), grid);
        benchmark::DoNotOptimize(RegroupToColumnBands(rows));
    }
    state.SetItemsProcessed(state.iterations() * grid.width * grid.height);
}
BENCHMARK(BM_ConvertNarrowForm)->Unit(benchmark::kMicrosecond);

void BM_ConvertNarrowFormFloatPlane(benchmark::State& state) {
    const PixelSize grid{kNarrowMaxWidth, kNarrowMaxHeight};
    for (auto _ : state) {
        const Raster rows = DitherToRasterReference(NarrowCanvas(), grid);
        benchmark::DoNotOptimize(RegroupToColumnBands(rows));
    }
    state.SetItemsProcessed(state.iterations() * grid.width * grid.height);
}
BENCHMARK(BM_ConvertNarrowFormFloatPlane)->Unit(benchmark::kMicrosecond);

// From the file's bytes: read, decode, draw (scaled when the picture is larger), dither, pack.
void FileToRaster(benchmark::State& state, const Bytes& file, bool scale) {
    MemoryFileSystem files;
    files.Put(u"C:\\logo", file);
    NativePictures pictures;
    for (auto _ : state) {
        auto raster = ConvertPictureToRaster(files, pictures, LimitsFor(true), scale, u"C:\\logo");
        if (!raster) {
            state.SkipWithError("conversion failed");
            break;
        }
        benchmark::DoNotOptimize(raster);
    }
}

void BM_FileToRasterFullFormPng(benchmark::State& state) {
    static const Bytes png = EncodePng(FullCanvas());
    FileToRaster(state, png, false);
}
BENCHMARK(BM_FileToRasterFullFormPng)->Unit(benchmark::kMillisecond);

void BM_FileToRasterFullFormBmp(benchmark::State& state) {
    static const Bytes bmp = testpics::Bmp24(FullCanvas());
    FileToRaster(state, bmp, false);
}
BENCHMARK(BM_FileToRasterFullFormBmp)->Unit(benchmark::kMillisecond);

void BM_FileToRasterScaledPhotoPng(benchmark::State& state) {
    static const Bytes png = EncodePng(testpics::PhotoLike(1600, 1200, 13));
    FileToRaster(state, png, true);
}
BENCHMARK(BM_FileToRasterScaledPhotoPng)->Unit(benchmark::kMillisecond);

}  // namespace
