// The device-mode services behind the entry points that need no user interface: the current
// defaults every entry starts from, the completion of a caller's record from them (the
// document-properties call without a sheet) and the device-mode conversion. The Win32 entry
// points turn the caller's pointers into spans and hand the work to these functions.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "devmode/devmode.h"
#include "platform/platform.h"

namespace kx20 {

// Mode bits of a document-properties request.
inline constexpr std::uint32_t kDmOutBuffer = 2;
inline constexpr std::uint32_t kDmPrompt = 4;
inline constexpr std::uint32_t kDmInBuffer = 8;
inline constexpr std::int32_t kIdOk = 1;

// Modes of the device-mode conversion; they change only the trace.
inline constexpr std::uint32_t kCdmConvert = 1;
inline constexpr std::uint32_t kCdmConvert351 = 2;
inline constexpr std::uint32_t kCdmDriverDefault = 4;

// The module-wide working record of the current defaults. It starts zeroed, as at load time;
// every entry that needs defaults loads it first. Not guarded: the spooler and the dialogs
// call the entries one at a time per process.
DevModeImage& CurrentDefaults();
// Back to the load-time state (for tests).
void ResetCurrentDefaults();

enum class DefaultsTrace {
    Document,   // the document-properties call
    SheetInit,  // the document sheet's initialisation
};

// Fills the current defaults from the printer's stored device mode when the printer can be
// opened (all access, else read access), else from gsDevMode. Answers true when the printer's
// record was used.
bool LoadCurrentDefaults(Platform& platform, std::u16string_view printerName,
                         DefaultsTrace texts = DefaultsTrace::Document);

// One document-properties request. `in` is the caller's input record (empty when none) with
// the extent its own dmSize + dmDriverExtra give; `out` is the caller's output buffer (empty
// when none) with the size the caller gave. Nothing outside either span is read or written.
struct DocumentRequest {
    std::u16string_view printerName;
    MutableByteSpan in;
    MutableByteSpan out;
    std::uint32_t mode = 0;
    std::int32_t& outSize;  // the header's output-size field
};

// A request that only asks for the record size: mode 0 or no output buffer.
bool IsSizeQuery(const DocumentRequest& request);

// Completes the request's record from the current defaults, which must be loaded. Answers
// 6004 (and sets the output size) for a size query, else IDOK. Members whose dmFields bit is
// clear are filled into the caller's input record itself; with DM_OUT_BUFFER the completed
// record goes to the output buffer, cut at its end.
std::int32_t FillFromDefaults(const DocumentRequest& request);

// The document-properties call without a sheet: the size query, or the current defaults
// loaded for the printer and the request filled from them.
std::int32_t DocumentPropertiesNoUi(Platform& platform, const DocumentRequest& request);

// The opening trace lines of a document-properties call (pointers as their low 32 bits).
// Answers the printer name as the call keeps it: at most 259 characters.
std::u16string TraceDocumentCall(std::uint32_t lParam, bool hasInfo,
                                 std::u16string_view printerName, std::uint32_t pdmIn,
                                 std::uint32_t pdmOut);

// The device-mode conversion: with an output buffer (non-empty `out`) of at least a whole
// record, both by `inOutSize` and by the span, the printer's stored record (or gsDevMode) is
// copied into it and the answer is true. Otherwise `inOutSize` becomes 6004, `lastError`
// ERROR_INSUFFICIENT_BUFFER and the answer false. The caller's input record is never read.
bool ConvertDevModeCore(Platform& platform, std::u16string_view printerName, MutableByteSpan out,
                        std::int32_t& inOutSize, std::uint32_t mode, std::uint32_t& lastError);

}  // namespace kx20
