#include "entry/win32/entry_support.h"

#include <algorithm>

#include "devmode/devmode.h"

namespace kx20 {

namespace {
HINSTANCE g_module = nullptr;
}  // namespace

HINSTANCE DriverModuleHandle() {
    return g_module;
}

void SetDriverModuleHandle(HINSTANCE module) {
    g_module = module;
}

MutableByteSpan DeclaredRecord(DEVMODEW* dm) {
    if (!dm)
        return {};
    std::size_t size = static_cast<std::size_t>(dm->dmSize) + dm->dmDriverExtra;
    if (size < kOffDmFields + 4)
        size = kOffDmFields + 4;
    return {reinterpret_cast<std::uint8_t*>(dm), size};
}

MutableByteSpan OutputBuffer(DEVMODEW* dm, DWORD cbOut) {
    if (!dm)
        return {};
    const std::size_t declared = static_cast<std::size_t>(dm->dmSize) + dm->dmDriverExtra;
    std::size_t size = std::max<std::size_t>(cbOut, declared);
    if (size == 0)
        size = kDevModeSize;
    return {reinterpret_cast<std::uint8_t*>(dm), size};
}

std::uint32_t Low32(const void* p) {
    return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(p));
}

}  // namespace kx20
