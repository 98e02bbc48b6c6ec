// A till's catalogue file, which lives in the user's folder where anything can change it. The
// input is the file's payload, framed here with its right checksum so that the exploration
// reaches the fields (the frame's own checks are few and tested directly).
#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/memory/registry_file.h"
#include "platform/record_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    kx20::MemoryRegistry registry;
    std::u16string problem;
    constexpr std::u16string_view root = u"SYSTEM\\Ports\\KX20_NET1";
    const kx20::Bytes file = kx20::FrameRecord("KX20REGB", 1, kx20::ByteSpan(data, size));
    if (kx20::LoadBranch(file, registry, kx20::Hive::LocalMachine, root, problem)) {
        kx20::MemoryRegistry again;
        const kx20::Bytes saved = kx20::SerializeBranch(registry, kx20::Hive::LocalMachine, root);
        if (!kx20::LoadBranch(saved, again, kx20::Hive::LocalMachine, root, problem))
            __builtin_trap();
    }
    return 0;
}
