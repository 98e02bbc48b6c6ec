// In-memory named sections: a section lives while a handle or a view of it is open, as on the
// system; handles are numbers, closing one twice fails. Sizes are rounded to whole 4096-byte
// pages like the system's.
#pragma once

#include <map>
#include <memory>

#include "platform/sections.h"

namespace kx20 {

class MemorySections : public SharedSections {
  public:
    SectionHandle Create(std::u16string_view name, std::uint32_t size) override;
    SectionHandle Open(std::u16string_view name, bool write) override;
    std::unique_ptr<SectionView> Map(SectionHandle section, bool write) override;
    bool Close(SectionHandle section) override;
    std::uint32_t LastError() override { return lastError_; }
    std::u16string ErrorText(std::uint32_t code) override;

    // Inspection: the section's bytes, null when no section of that name lives.
    const Bytes* Find(std::u16string_view name) const;
    std::size_t OpenHandles() const { return handles_.size(); }
    bool failMap = false;  // every map fails (as when the address space is exhausted)

    static constexpr std::size_t kPageSize = 4096;

  private:
    struct Section {
        Bytes data;
        int references = 0;  // open handles and views
    };
    void Release(const std::u16string& name);
    SectionHandle NewHandle(const std::u16string& name);

    std::map<std::u16string, std::shared_ptr<Section>> sections_;
    std::map<SectionHandle, std::u16string> handles_;
    SectionHandle nextHandle_ = 0x1A4;
    std::uint32_t lastError_ = 0;
    friend class MemorySectionView;
};

}  // namespace kx20
