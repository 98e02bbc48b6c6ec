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
    // Moves the position to the end of the file, where the next read or write starts.
    virtual bool SeekToEnd() = 0;
    virtual bool Flush() = 0;
};

enum class OpenMode {
    ReadExisting,       // read only, the file must exist
    CreateAlways,       // read and write, created or truncated
    AppendOrCreate,     // write only; writes go to the end; created when missing
    ReadWriteOrCreate,  // read and write from the start, content kept; created when missing
};

// What other openers of the same file may do while this handle is open, as the system's share
// modes rule it: an open fails (sharing violation, 32) when it asks for access that an open
// handle does not share, or shares less than an open handle already has. A handle that shares
// only reading therefore keeps every other writer out until it is closed.
enum class ShareMode { None, Read, ReadWrite };

class FileSystem {
  public:
    virtual ~FileSystem() = default;
    // A file-status query: true when something exists at the path.
    virtual bool Exists(std::u16string_view path) = 0;
    virtual std::unique_ptr<FileHandle> Open(std::u16string_view path, OpenMode mode,
                                             ShareMode share) = 0;
    // Removing or renaming a file that is open fails, as no handle shares deletion.
    virtual bool Remove(std::u16string_view path) = 0;
    virtual bool Rename(std::u16string_view from, std::u16string_view to) = 0;
    // Creates one folder level; true when it was created or already exists. A missing parent
    // folder makes it fail.
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
    // Coordinated universal time (the spooler keeps a printer's availability hours in it).
    virtual LocalTime UtcNow() = 0;
    virtual void Sleep(std::uint32_t milliseconds) = 0;
    virtual std::uint32_t ProcessId() = 0;
};

// Reads a whole file that is opened for reading; nullopt on any failure or a short read.
std::optional<Bytes> ReadWholeFile(FileSystem& fs, std::u16string_view path);

// The same with the step that failed, for callers that trace each step in their own words, and
// a limit: a file of 0 bytes or more than `maxBytes` is refused before it is read.
enum class FileReadStatus { Ok, OpenFailed, SizeInvalid, ReadFailed };
struct FileReadResult {
    FileReadStatus status = FileReadStatus::OpenFailed;
    Bytes data;
    std::uint64_t size = 0;   // as the system reported it (0 when it could not)
    std::uint32_t error = 0;  // the file system's last error after a failed step
};
FileReadResult ReadLimitedFile(FileSystem& fs, std::u16string_view path, std::uint64_t maxBytes);

}  // namespace kx20
