// Raw job bytes as the simulated printer receives them from the spooler.
#include <cstddef>
#include <cstdint>

#include "sim/sim_printer.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    kx20::sim::SimulatedPrinter printer;
    printer.ReceiveJob(kx20::ByteSpan(data, size));
    // A second job on the state the first one left.
    printer.ReceiveJob(kx20::ByteSpan(data, size / 2));
    kx20::MonitorReply reply;
    printer.HandleCommand(u"KX20_USB1", nullptr, kx20::ByteSpan(data, size < 5 ? size : 5), reply);
    return 0;
}
