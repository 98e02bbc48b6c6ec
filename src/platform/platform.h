// The ports the module's logic works over, handed to it as one bundle. The Win32 adapters
// make one for the driver; the in-memory adapters make one for tests, the simulator and the
// command-line tool.
#pragma once

#include "platform/files.h"
#include "platform/monitor.h"
#include "platform/registry.h"
#include "platform/spooler.h"

namespace kx20 {

struct Platform {
    Registry& registry;
    Spooler& spooler;
    FileSystem& files;
    Clock& clock;
    CommandChannel& monitor;
};

}  // namespace kx20
