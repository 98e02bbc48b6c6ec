// Registry values that other processes (the port monitor, other driver instances) write.
#include <cstddef>
#include <cstdint>

#include "store/catalogue.h"
#include "store/registry_layout.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    kx20::ByteSpan record(data, size);
    kx20::store::LogoRecord logo;
    kx20::store::ParseLogoRecord(record, logo);
    kx20::store::MessageRecord message;
    kx20::store::ParseMessageRecord(record, message);
    kx20::store::ConnectionStatus status;
    kx20::store::ParseConnectionStatus(record, status);
    return 0;
}
