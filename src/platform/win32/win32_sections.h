// Named sections through CreateFileMappingW (paging-file backed), OpenFileMappingW,
// MapViewOfFile and CloseHandle. A view's size is the region the system mapped (whole pages).
#pragma once

#include "platform/sections.h"

namespace kx20 {

class Win32Sections : public SharedSections {
  public:
    SectionHandle Create(std::u16string_view name, std::uint32_t size) override;
    SectionHandle Open(std::u16string_view name, bool write) override;
    std::unique_ptr<SectionView> Map(SectionHandle section, bool write) override;
    bool Close(SectionHandle section) override;
    std::uint32_t LastError() override;
    std::u16string ErrorText(std::uint32_t code) override;
};

}  // namespace kx20
