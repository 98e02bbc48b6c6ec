// A till's catalogue file, which lives in the user's folder where anything can change it.
#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/memory/registry_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    kx20::MemoryRegistry registry;
    std::u16string problem;
    constexpr std::u16string_view root = u"SYSTEM\\Ports\\KX20_NET1";
    if (kx20::LoadBranch(kx20::ByteSpan(data, size), registry, kx20::Hive::LocalMachine, root,
                         problem)) {
        kx20::MemoryRegistry again;
        const kx20::Bytes saved = kx20::SerializeBranch(registry, kx20::Hive::LocalMachine, root);
        if (!kx20::LoadBranch(saved, again, kx20::Hive::LocalMachine, root, problem))
            __builtin_trap();
    }
    return 0;
}
