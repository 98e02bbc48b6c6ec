// Files and time port: files with the system's open modes, folders, the local clock, sleeping
// and the process id.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/bytes.h"

namespace kx20 {

class FileHandle {
  public:
    virtual ~FileHandle() = default;  // closes
    // Reads up to buf.size() bytes at the current position; `*got` receives the count.
    virtual bool Read(MutableByteSpan buf, std::size_t* got) = 0;
    virtual bool Write(ByteSpan data) = 0;
    virtual std::optional<std::uint64_t> Size() = 0;
    virtual bool Flush() = 0;
};

enum class OpenMode {
    ReadExisting,    // read only, the file must exist
    CreateAlways,    // read and write, created or truncated
    AppendOrCreate,  // writes go to the end; created when missing
};

enum class ShareMode { None, Read, ReadWrite };

class FileSystem {
  public:
    virtual ~FileSystem() = default;
    // A file-status query: true when something exists at the path.
    virtual bool Exists(std::u16string_view path) = 0;
    virtual std::unique_ptr<FileHandle> Open(std::u16string_view path, OpenMode mode,
                                             ShareMode share) = 0;
    virtual bool Remove(std::u16string_view path) = 0;
    virtual bool Rename(std::u16string_view from, std::u16string_view to) = 0;
    // Creates one folder level; true when it was created or already exists.
    virtual bool CreateFolder(std::u16string_view path) = 0;
    // The temporary folder, with its trailing separator as the system gives it.
    virtual std::u16string TempFolder() = 0;
    virtual std::u16string WindowsFolder() = 0;
    virtual std::uint32_t LastError() = 0;
};

struct LocalTime {
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0, millisecond = 0;
};

class Clock {
  public:
    virtual ~Clock() = default;
    virtual LocalTime Now() = 0;
    // The same moment in coordinated universal time (the printer's availability hours).
    virtual LocalTime UtcNow() = 0;
    virtual void Sleep(std::uint32_t milliseconds) = 0;
    virtual std::uint32_t ProcessId() = 0;
};

// Reads a whole file that is opened for reading; nullopt on any failure or a short read.
std::optional<Bytes> ReadWholeFile(FileSystem& fs, std::u16string_view path);

}  // namespace kx20
