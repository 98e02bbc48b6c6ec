// The simulated printer's state file, which other processes write.
#include <cstddef>
#include <cstdint>
#include <string>

#include "sim/sim_persist.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    kx20::sim::PrinterState state;
    std::u16string problem;
    if (kx20::sim::DeserializeState(kx20::ByteSpan(data, size), state, problem)) {
        kx20::Bytes again = kx20::sim::SerializeState(state);
        kx20::sim::PrinterState copy;
        if (!kx20::sim::DeserializeState(again, copy, problem)) __builtin_trap();
    }
    return 0;
}
