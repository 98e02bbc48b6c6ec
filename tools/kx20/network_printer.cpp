// The network KX20 (raw TCP) behind the till's ports. Not built yet: the network link comes
// with kx20-sim serve.
#include "till_printer.h"

namespace kx20tool {

std::unique_ptr<TillPrinter> OpenNetworkPrinter(const std::string& hostPort, const std::string&,
                                                std::string& error) {
    error = "network printers are not supported yet: " + hostPort;
    return nullptr;
}

}  // namespace kx20tool
