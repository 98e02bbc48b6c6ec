// The job channel: a block of raw printer data sent as a one-page print job of data type "RAW",
// then watched through the spooler's job changes until the job has printed or failed. The
// printer must finish writing its flash before the caller's next step, so the wait has no
// time-out of its own.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/bytes.h"
#include "platform/platform.h"
#include "platform/resources.h"

namespace kx20::channel {

// What the job carries; selects the job's document name from the resource strings.
enum class JobKind : std::uint32_t {
    Logo = 1,     // "... %d" formatted with the logo number
    Message = 2,  // "... %d" formatted with the message number
    SingleByteFont = 3,
    DoubleByteFont = 4,
};

// The document name of a job: strings 2270 and 2271 formatted with `number`, 2272 and 2273 as
// they are. Empty when the string is missing or the kind unknown.
std::u16string JobDocumentName(ResourceStrings& strings, std::uint32_t kind, std::uint32_t number);

// What a job status says about the job's end.
enum class JobVerdict { Waiting, Printed, Failed };
JobVerdict JudgeJobStatus(std::uint32_t status);

// Sends `data` in one write as a one-page raw job and waits for its end. True when the spooler
// reported it printed. False when the printer cannot be opened, the job cannot be started, no
// watch can be set up or the watch breaks, or the job ended in error, deleted or needing the
// user (the job is then deleted).
bool SendRawJobAndWait(ResourceStrings& strings, Platform& p, std::u16string_view printerName,
                       std::uint32_t kind, std::uint32_t number, ByteSpan data);
// The same with the document name given (the firmware update names its job itself).
bool SendNamedRawJobAndWait(Platform& p, std::u16string_view printerName,
                            std::u16string_view docName, ByteSpan data);

}  // namespace kx20::channel
