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

// The caller's output buffer of a document-properties call. Windows gives the buffer's size in
// the header's cbOut; Wine gives the dmSize of the record already in the buffer, which would
// cut the private part off a record this driver filled before. The buffer is taken as large as
// the larger of cbOut and the extent the record in it declares (dmSize + dmDriverExtra), and
// as a whole record when neither says anything.
MutableByteSpan OutputBuffer(DEVMODEW* dm, DWORD cbOut);

// The low 32 bits of an address, as the trace shows pointers.
std::uint32_t Low32(const void* p);

}  // namespace kx20
