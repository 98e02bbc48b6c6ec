// Document events (DrvDocumentEvent), called in the application's process at each step of a
// job. Four steps publish the job's device mode and a page count in a named shared section,
// "kvox" + the printer handle in eight upper-case hexadecimal digits, that lives from the
// creation of the device context to its deletion; the other steps are only traced.
#pragma once

#include <cstdint>
#include <string>

#include "platform/bytes.h"
#include "platform/sections.h"

namespace kx20 {

inline constexpr std::int32_t kDocumentEventSuccess = 1;
inline constexpr std::int32_t kDocumentEventFailure = -1;

namespace docevent {
inline constexpr std::int32_t kCreateDcPre = 1, kCreateDcPost = 2, kResetDcPre = 3,
                              kResetDcPost = 4, kStartDocPre = 5, kStartPage = 6, kEndPage = 7,
                              kEndDocPre = 8, kAbortDoc = 9, kDeleteDc = 10, kEscape = 11,
                              kEndDocPost = 12, kStartDocPost = 13;
}  // namespace docevent

// The section's nominal size: one device mode of this driver. Its content (handle, page
// counter, record) is 8 bytes longer; the system rounds sections to whole pages.
inline constexpr std::uint32_t kJobSectionSize = 6004;
inline constexpr std::size_t kSectionHandleOffset = 0;
inline constexpr std::size_t kSectionPageCounterOffset = 4;
inline constexpr std::size_t kSectionRecordOffset = 8;

// "kvox%08X" of the printer handle's low 32 bits.
std::u16string JobSectionName(std::uint64_t printerHandle);

// One event. `record` is the job's device mode as far as it declares itself (dmSize +
// dmDriverExtra), empty when the create step's argument block has none (an information
// context).
std::int32_t HandleDocumentEvent(SharedSections& sections, std::uint64_t printerHandle,
                                 std::int32_t event, ByteSpan record);

}  // namespace kx20
