// Developer's trace: written only while the marker file exists, appended to a fixed text file,
// one call per line. Switching it on or off needs no restart: the marker is tested by every
// call into the module (see TraceCall) and, while it is present, by every line.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "platform/bytes.h"
#include "platform/files.h"
#include "platform/format.h"

namespace kx20 {

struct TracePaths {
    std::u16string marker;
    std::u16string output;
};

// The fixed locations: "c:\kvorsgui.trace" and "c:\KX20DrvTrace.out" on Windows;
// /tmp/kvorsgui.trace and /tmp/KX20DrvTrace.out on Linux.
TracePaths DefaultTracePaths();

// Where the trace goes. Until it is set (or after it is cleared with null ports) nothing is
// traced. Not guarded: set it once at load time, or in a test's set-up.
void SetTraceTarget(FileSystem* files, Clock* clock, TracePaths paths = DefaultTracePaths());

inline constexpr std::size_t kTraceMessageChars = 5000;
inline constexpr std::size_t kTraceNarrowBytes = 260;

void DrvTraceArgs(std::u16string_view format, std::span<const FormatArg> args);

template <class... A>
void DrvTrace(std::u16string_view format, const A&... args) {
    const FormatArg list[] = {FormatArg(args)..., FormatArg(0)};
    DrvTraceArgs(format, std::span<const FormatArg>(list, sizeof...(A)));
}

// One call into the module as the trace sees it: an entry point's call or one message of a
// page's window. Inside it, once the marker has been found absent, the call's further lines do
// not ask the file system again; a marker created before the call starts is seen by the call,
// one created during it by the next call. While the marker is present every line asks, so
// deleting it stops the trace at the next line. Calls nest; the outermost one starts afresh.
// The state is the calling thread's own.
class TraceCall {
  public:
    TraceCall();
    ~TraceCall();
    TraceCall(const TraceCall&) = delete;
    TraceCall& operator=(const TraceCall&) = delete;
};

// A text line and a hexadecimal dump of `data`. Answers 0 when the lines were written, or the
// failing status: 1 when the marker is absent, 2 when the output cannot be opened, 3 when
// writing or closing failed.
std::uint32_t DrvTraceData(std::u16string_view text, ByteSpan data);

}  // namespace kx20
