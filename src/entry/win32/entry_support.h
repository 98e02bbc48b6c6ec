// What the exported entry points share: the module's own handle and the bounding of a
// caller's device mode by the extent it declares.
#pragma once

#include "platform/win32/windows_clean.h"

#include <cstdint>

#include "platform/bytes.h"

namespace kx20 {

// The driver module's handle, remembered at process attach.
HINSTANCE DriverModuleHandle();
void SetDriverModuleHandle(HINSTANCE module);

// A caller's device mode as the span it declares: its own dmSize + dmDriverExtra (at least
// the members up to dmFields). Callers hand only a pointer, so the declared extent is all there
// is to bound the record by. Empty for a null record.
MutableByteSpan DeclaredRecord(DEVMODEW* dm);

// The low 32 bits of an address, as the trace shows pointers.
std::uint32_t Low32(const void* p);

}  // namespace kx20
