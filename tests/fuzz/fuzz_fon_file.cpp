// The tagged font file: any bytes through the metadata check and the character walk, and a
// file that passes both through the download block, whose size must follow from its counts.
#include <cstddef>
#include <cstdint>

#include "fonts/fon_file.h"
#include "fonts/font_blocks.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kx20::fonts;
    const kx20::ByteSpan file(data, size);
    FONMetaData meta;
    const bool metaOk = ReadFONMetaData(file, meta);
    FONCharacters chars;
    if (!ReadFONCharacters(file, chars) || !metaOk)
        return 0;
    if (chars.dbcs.size() + chars.sbcs.size() > kMaxFontCharacters ||
        chars.dbcsThermalCount > chars.dbcs.size() || chars.sbcsImpactCount > chars.sbcs.size())
        __builtin_trap();
    auto block = BuildFONDownloadBlock(meta, chars, size % 2 == 0);
    if (!block)
        __builtin_trap();
    const auto groups = [](std::size_t n) { return (n + 254) / 255; };
    std::size_t expected = kPreSettingsSize + kPostSettingsSize;
    expected += 18 * groups(chars.dbcsThermalCount) + 74 * std::size_t{chars.dbcsThermalCount};
    expected += 18 * groups(chars.dbcsImpactCount) + 34 * std::size_t{chars.dbcsImpactCount};
    for (bool thermal : {true, false}) {
        const std::uint32_t count = thermal ? chars.sbcsThermalCount : chars.sbcsImpactCount;
        if (count == 0)
            continue;
        expected += 19;
        for (const CharRecord& r : chars.sbcs) {
            if (r[thermal ? kCharThermalFlag : kCharImpactFlag])
                expected += 19 + r[thermal ? kCharThermalLength : kCharImpactLength];
        }
    }
    if (block->size() != expected)
        __builtin_trap();
    return 0;
}
