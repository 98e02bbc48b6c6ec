// The headered font file: the header check and the range walk over any bytes, for either
// station and a path with or without a region mark; the records and the download block must
// keep their bounds.
#include <cstddef>
#include <cstdint>

#include "fonts/fnt_file.h"
#include "fonts/font_blocks.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kx20::fonts;
    if (size == 0)
        return 0;
    const bool thermal = (data[0] & 1) != 0;
    const std::u16string_view path = (data[0] & 2) ? u"c:\\fonts\\kud16.fnt" : u"c:\\fonts\\x.fnt";
    const kx20::ByteSpan file(data + 1, size - 1);
    CheckFntFile(file, path, thermal);
    std::uint32_t codePage = 1;
    std::vector<FntRecord> records;
    if (!ReadFntRecords(file, path, thermal, codePage, records)) {
        if (!records.empty())
            __builtin_trap();
        return 0;
    }
    if (records.size() > kMaxFntRecords)
        __builtin_trap();
    const kx20::Bytes block = BuildFNTDownloadBlock(records, thermal, (data[0] & 4) != 0);
    const std::size_t n = records.size();
    const std::size_t expected =
        114 + (thermal ? 0 : 19) + 18 * ((n + 254) / 255) + n * (thermal ? 74 : 34) + 19 + 16 + 16;
    if (block.size() != expected)
        __builtin_trap();
    return 0;
}
