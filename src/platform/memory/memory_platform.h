// Every in-memory adapter, bundled as one Platform: what tests and native tools work over.
#pragma once

#include "platform/memory/memory_files.h"
#include "platform/memory/memory_monitor.h"
#include "platform/memory/memory_registry.h"
#include "platform/memory/memory_spooler.h"
#include "platform/platform.h"

namespace kx20 {

struct MemoryPlatform {
    MemoryRegistry registry;
    MemorySpooler spooler;
    MemoryFileSystem files;
    ManualClock clock;
    MemoryCommandChannel monitor;
    Platform p{registry, spooler, files, clock, monitor};
};

}  // namespace kx20
