// The firmware file's header lines: any bytes through the line reader and the family table, and
// the flash block, which carries the file unchanged.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "firmware/firmware_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kx20::firmware;
    const kx20::ByteSpan file(data, size);
    FirmwareHeader header;
    std::uint32_t ecLevel = 0xDEADBEEF;
    const bool ok = ReadFirmwareHeader(file, header, &ecLevel);
    if (ok && (header.ecLevel == 0 || header.bootLevel == 0 || header.devType == 0 ||
               ecLevel != header.ecLevel))
        __builtin_trap();
    if (ok) {
        for (std::uint32_t model = 0; model < 12; ++model) FirmwareFitsModel(header, model);
    }
    std::uint32_t value = 0;
    ScanWordAndHex(std::string_view(reinterpret_cast<const char*>(data), size), value);
    const kx20::Bytes block = BuildFirmwareBlock(file);
    if (block.size() != size + 31 || block[15] != 0x6B ||
        (size && std::memcmp(block.data() + 16, data, size) != 0))
        __builtin_trap();
    return 0;
}
