// The Win32 adapters of every port, bundled for an entry point's call.
#pragma once

#include "platform/platform.h"
#include "platform/win32/win32_files.h"
#include "platform/win32/win32_monitor.h"
#include "platform/win32/win32_registry.h"
#include "platform/win32/win32_spooler.h"

namespace kx20 {

struct Win32Platform {
    Win32Registry registry;
    Win32Spooler spooler;
    Win32FileSystem files;
    Win32Clock clock;
    Win32CommandChannel monitor;
    Platform ports{registry, spooler, files, clock, monitor};
};

}  // namespace kx20
