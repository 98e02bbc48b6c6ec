// Font files of 15,000 characters: parsing the tagged and the headered file, and building their
// download blocks. Target: under 5 ms each.
#include <benchmark/benchmark.h>

#include "fonts/fnt_file.h"
#include "fonts/fon_file.h"
#include "fonts/font_blocks.h"
#include "tests/unit/font_file_generators.h"

namespace {

using namespace kx20;
using namespace kx20::fonts;

constexpr std::size_t kCharacters = 15000;

const Bytes& TaggedFile() {
    // 14,800 double-byte and 200 single-byte characters, each with both glyphs.
    static const Bytes file = testfiles::LargeFonFile(14800, 200).Build();
    return file;
}

// 60 lead bytes x 250 second bytes.
testfiles::FntFile HeaderedLayout(bool thermal) {
    testfiles::FntFile f;
    f.width = thermal ? 24 : 16;
    f.height = thermal ? 24 : 16;
    f.leadRanges = {0x81, 0xBC, 0, 0, 0, 0, 0, 0};
    f.secondRanges = {0x01, 0xFA, 0, 0, 0, 0, 0, 0};
    const std::size_t glyphBytes = f.GlyphBytes();
    f.glyph = [glyphBytes](std::size_t n) {  // no glyph without a dot
        return Bytes(glyphBytes, static_cast<std::uint8_t>(n % 255 + 1));
    };
    return f;
}

const Bytes& HeaderedFile(bool thermal) {
    static const Bytes thermalFile = HeaderedLayout(true).Build(kCharacters);
    static const Bytes impactFile = HeaderedLayout(false).Build(kCharacters);
    return thermal ? thermalFile : impactFile;
}

void BM_ParseTaggedFile(benchmark::State& state) {
    const Bytes& file = TaggedFile();
    for (auto _ : state) {
        FONMetaData meta;
        FONCharacters chars;
        bool ok = ReadFONMetaData(file, meta) && ReadFONCharacters(file, chars);
        if (!ok || chars.dbcs.size() + chars.sbcs.size() != kCharacters)
            state.SkipWithError("the generated file did not parse");
        benchmark::DoNotOptimize(chars);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * file.size()));
}
BENCHMARK(BM_ParseTaggedFile)->Unit(benchmark::kMillisecond);

void BM_BuildTaggedBlock(benchmark::State& state) {
    FONMetaData meta;
    FONCharacters chars;
    ReadFONMetaData(TaggedFile(), meta);
    ReadFONCharacters(TaggedFile(), chars);
    for (auto _ : state) {
        auto block = BuildFONDownloadBlock(meta, chars, false);
        benchmark::DoNotOptimize(block);
    }
}
BENCHMARK(BM_BuildTaggedBlock)->Unit(benchmark::kMillisecond);

void BM_ParseHeaderedFile(benchmark::State& state) {
    const bool thermal = state.range(0) != 0;
    const Bytes& file = HeaderedFile(thermal);
    for (auto _ : state) {
        std::uint32_t codePage = 0;
        std::vector<FntRecord> records;
        if (!ReadFntRecords(file, u"c:\\fonts\\prc.fnt", thermal, codePage, records, nullptr) ||
            records.size() != kCharacters)
            state.SkipWithError("the generated file did not parse");
        benchmark::DoNotOptimize(records);
    }
    state.SetLabel(thermal ? "thermal rows" : "impact columns");
}
BENCHMARK(BM_ParseHeaderedFile)->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond);

void BM_BuildHeaderedBlock(benchmark::State& state) {
    const bool thermal = state.range(0) != 0;
    std::uint32_t codePage = 0;
    std::vector<FntRecord> records;
    ReadFntRecords(HeaderedFile(thermal), u"prc.fnt", thermal, codePage, records, nullptr);
    for (auto _ : state) {
        Bytes block = BuildFNTDownloadBlock(records, thermal, false);
        benchmark::DoNotOptimize(block);
    }
    state.SetLabel(thermal ? "thermal" : "impact");
}
BENCHMARK(BM_BuildHeaderedBlock)->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond);

}  // namespace
