// Files and time over kernel32.
#pragma once

#include "platform/files.h"

namespace kx20 {

class Win32FileSystem : public FileSystem {
  public:
    bool Exists(std::u16string_view path) override;
    std::unique_ptr<FileHandle> Open(std::u16string_view path, OpenMode mode,
                                     ShareMode share) override;
    bool Remove(std::u16string_view path) override;
    bool Rename(std::u16string_view from, std::u16string_view to) override;
    bool CreateFolder(std::u16string_view path) override;
    std::u16string TempFolder() override;
    std::u16string WindowsFolder() override;
    std::uint32_t LastError() override;
};

class Win32Clock : public Clock {
  public:
    LocalTime Now() override;
    LocalTime UtcNow() override;
    void Sleep(std::uint32_t ms) override;
    std::uint32_t ProcessId() override;
};

}  // namespace kx20
