// In-memory files and a clock that tests set and read: sleeps are recorded, never waited.
#pragma once

#include <map>
#include <set>
#include <vector>

#include "platform/files.h"

namespace kx20 {

// Files and folders by path; paths compare case-insensitively, as on the system, and '\' and
// '/' both separate folders. Open handles follow the system's share-mode rule (files.h), so a
// second writer is refused while a first one holds the file. Handles must not outlive the
// file system.
class MemoryFileSystem : public FileSystem {
  public:
    MemoryFileSystem() = default;
    MemoryFileSystem(const MemoryFileSystem&) = delete;
    MemoryFileSystem& operator=(const MemoryFileSystem&) = delete;

    bool Exists(std::u16string_view path) override;
    std::unique_ptr<FileHandle> Open(std::u16string_view path, OpenMode mode,
                                     ShareMode share) override;
    bool Remove(std::u16string_view path) override;
    bool Rename(std::u16string_view from, std::u16string_view to) override;
    bool CreateFolder(std::u16string_view path) override;
    std::u16string TempFolder() override { return tempFolder; }
    std::u16string WindowsFolder() override { return windowsFolder; }
    std::uint32_t LastError() override { return lastError_; }

    void Put(std::u16string_view path, Bytes data);
    const Bytes* Get(std::u16string_view path) const;
    // A folder made by CreateFolder.
    bool HasFolder(std::u16string_view path) const;
    // Handles open on the path now.
    std::size_t OpenCount(std::u16string_view path) const;

    // Paths that refuse to be opened (as a file locked by another process).
    std::set<std::u16string> locked;
    // When set, a file can be created only inside a folder that exists (made by CreateFolder,
    // holding a file, a drive root, the temporary or the Windows folder), as on the system.
    // Off by default: a test then puts files anywhere without making their folders.
    bool strictFolders = false;

    std::u16string tempFolder = u"C:\\TEMP\\";
    std::u16string windowsFolder = u"C:\\WINDOWS";

  private:
    class File;
    struct OpenRecord {
        std::u16string key;
        bool read = false;
        bool write = false;
        ShareMode share = ShareMode::None;
    };

    bool FolderExists(const std::u16string& key) const;
    bool ShareAllows(const std::u16string& key, bool read, bool write, ShareMode share) const;
    void Closed(std::uint64_t id) { open_.erase(id); }

    std::map<std::u16string, Bytes> files_;
    std::set<std::u16string> folders_;
    std::map<std::uint64_t, OpenRecord> open_;
    std::uint64_t nextHandle_ = 1;
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
