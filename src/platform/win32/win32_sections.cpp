#include "platform/win32/win32_sections.h"

#include "platform/win32/windows_clean.h"

#include "platform/win32/win32_text.h"

namespace kx20 {

namespace {

HANDLE ToHandle(SectionHandle h) {
    return reinterpret_cast<HANDLE>(static_cast<std::uintptr_t>(h));
}

SectionHandle FromHandle(HANDLE h) {
    return h ? static_cast<SectionHandle>(reinterpret_cast<std::uintptr_t>(h)) : 0;
}

class Win32SectionView : public SectionView {
  public:
    Win32SectionView(void* base, std::size_t size) : base_(base), size_(size) {}
    ~Win32SectionView() override { UnmapViewOfFile(base_); }
    MutableByteSpan Bytes() override { return {static_cast<std::uint8_t*>(base_), size_}; }

  private:
    void* base_;
    std::size_t size_;
};

}  // namespace

SectionHandle Win32Sections::Create(std::u16string_view name, std::uint32_t size) {
    return FromHandle(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, size,
                                         ToWide(name).c_str()));
}

SectionHandle Win32Sections::Open(std::u16string_view name, bool write) {
    return FromHandle(
        OpenFileMappingW(write ? FILE_MAP_WRITE : FILE_MAP_READ, FALSE, ToWide(name).c_str()));
}

std::unique_ptr<SectionView> Win32Sections::Map(SectionHandle section, bool write) {
    void* base = MapViewOfFile(ToHandle(section), write ? FILE_MAP_WRITE : FILE_MAP_READ, 0, 0, 0);
    if (!base)
        return nullptr;
    MEMORY_BASIC_INFORMATION region = {};
    std::size_t size = 0;
    if (VirtualQuery(base, &region, sizeof region) == sizeof region)
        size = region.RegionSize;
    return std::make_unique<Win32SectionView>(base, size);
}

bool Win32Sections::Close(SectionHandle section) {
    return CloseHandle(ToHandle(section)) != FALSE;
}

std::uint32_t Win32Sections::LastError() {
    return GetLastError();
}

std::u16string Win32Sections::ErrorText(std::uint32_t code) {
    return SystemErrorText(code);
}

}  // namespace kx20
