// Named shared-memory sections backed by the paging file, as several processes working with
// the same printer share them. Handles travel as numbers, so a handle stored inside a section
// can be closed later by the process that created it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/bytes.h"

namespace kx20 {

using SectionHandle = std::uint64_t;  // 0: none

// A mapped view; destroying it unmaps it. The view covers the whole section as the system
// rounds it (to whole pages).
class SectionView {
  public:
    virtual ~SectionView() = default;
    virtual MutableByteSpan Bytes() = 0;
};

class SharedSections {
  public:
    virtual ~SharedSections() = default;
    // Creates the named section read-write with `size` bytes, or opens it when it exists.
    virtual SectionHandle Create(std::u16string_view name, std::uint32_t size) = 0;
    virtual SectionHandle Open(std::u16string_view name, bool write) = 0;
    virtual std::unique_ptr<SectionView> Map(SectionHandle section, bool write) = 0;
    virtual bool Close(SectionHandle section) = 0;
    // The error of the last failed call, and the system's text for an error code.
    virtual std::uint32_t LastError() = 0;
    virtual std::u16string ErrorText(std::uint32_t code) = 0;
};

}  // namespace kx20
