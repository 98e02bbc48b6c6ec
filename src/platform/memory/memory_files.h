// In-memory files and a clock that tests set and read: sleeps are recorded, never waited.
#pragma once

#include <map>
#include <set>
#include <vector>

#include "platform/files.h"

namespace kx20 {

class MemoryFileSystem : public FileSystem {
  public:
    bool Exists(std::u16string_view path) override;
    std::unique_ptr<FileHandle> Open(std::u16string_view path, OpenMode mode,
                                     ShareMode share) override;
    bool Remove(std::u16string_view path) override;
    bool Rename(std::u16string_view from, std::u16string_view to) override;
    bool CreateFolder(std::u16string_view path) override;
    std::u16string TempFolder() override { return tempFolder; }
    std::u16string WindowsFolder() override { return windowsFolder; }
    std::uint32_t LastError() override { return lastError_; }

    // Contents by path (paths compare case-insensitively, as on the system).
    void Put(std::u16string_view path, Bytes data);
    const Bytes* Get(std::u16string_view path) const;
    bool HasFolder(std::u16string_view path) const;
    // Paths that refuse to be opened (as a file locked by another process).
    std::set<std::u16string> locked;

    std::u16string tempFolder = u"C:\\TEMP\\";
    std::u16string windowsFolder = u"C:\\WINDOWS";

  private:
    std::map<std::u16string, Bytes> files_;
    std::set<std::u16string> folders_;
    std::uint32_t lastError_ = 0;
};

class ManualClock : public Clock {
  public:
    LocalTime Now() override { return now; }
    LocalTime UtcNow() override { return utc; }
    void Sleep(std::uint32_t ms) override { sleeps.push_back(ms); }
    std::uint32_t ProcessId() override { return processId; }

    std::uint64_t TotalSlept() const;

    LocalTime now{2024, 3, 5, 9, 7, 2, 45};
    LocalTime utc{2024, 3, 5, 8, 7, 2, 45};
    std::vector<std::uint32_t> sleeps;
    std::uint32_t processId = 4242;
};

}  // namespace kx20
