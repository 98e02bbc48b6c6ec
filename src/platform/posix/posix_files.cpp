#include "platform/posix/posix_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <thread>

#include "platform/text.h"

namespace kx20 {

namespace {

class PosixFile : public FileHandle {
  public:
    explicit PosixFile(std::FILE* f) : f_(f) {}
    ~PosixFile() override { std::fclose(f_); }
    bool Read(MutableByteSpan buf, std::size_t* got) override {
        std::size_t n = std::fread(buf.data(), 1, buf.size(), f_);
        if (got)
            *got = n;
        return !std::ferror(f_);
    }
    bool Write(ByteSpan data) override {
        return std::fwrite(data.data(), 1, data.size(), f_) == data.size();
    }
    std::optional<std::uint64_t> Size() override {
        struct stat st;
        if (fstat(fileno(f_), &st) != 0)
            return std::nullopt;
        return static_cast<std::uint64_t>(st.st_size);
    }
    bool SeekToEnd() override { return std::fseek(f_, 0, SEEK_END) == 0; }
    bool Flush() override { return std::fflush(f_) == 0; }

  private:
    std::FILE* f_;
};

}  // namespace

bool PosixFileSystem::Exists(std::u16string_view path) {
    struct stat st;
    return stat(Utf16ToUtf8(path).c_str(), &st) == 0;
}

// Share modes are not enforced here: the tools that use this adapter write their own files.
std::unique_ptr<FileHandle> PosixFileSystem::Open(std::u16string_view path, OpenMode mode,
                                                  ShareMode) {
    const std::string name = Utf16ToUtf8(path);
    std::FILE* f = nullptr;
    if (mode == OpenMode::ReadWriteOrCreate) {
        // Kept when present, created when missing, read and written from the start.
        const int fd = open(name.c_str(), O_RDWR | O_CREAT, 0644);
        f = fd < 0 ? nullptr : fdopen(fd, "r+b");
        if (fd >= 0 && !f)
            close(fd);
    } else {
        const char* how = mode == OpenMode::ReadExisting   ? "rb"
                          : mode == OpenMode::CreateAlways ? "w+b"
                                                           : "ab";
        f = std::fopen(name.c_str(), how);
    }
    if (!f) {
        lastError_ = static_cast<std::uint32_t>(errno);
        return nullptr;
    }
    return std::make_unique<PosixFile>(f);
}

bool PosixFileSystem::Remove(std::u16string_view path) {
    return std::remove(Utf16ToUtf8(path).c_str()) == 0;
}

bool PosixFileSystem::Rename(std::u16string_view from, std::u16string_view to) {
    return std::rename(Utf16ToUtf8(from).c_str(), Utf16ToUtf8(to).c_str()) == 0;
}

bool PosixFileSystem::CreateFolder(std::u16string_view path) {
    const std::string name = Utf16ToUtf8(path);
    if (mkdir(name.c_str(), 0755) == 0)
        return true;
    lastError_ = static_cast<std::uint32_t>(errno);
    struct stat st;
    return lastError_ == EEXIST && stat(name.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

std::u16string PosixFileSystem::TempFolder() {
    return u"/tmp/";
}
std::u16string PosixFileSystem::WindowsFolder() {
    return u"/";
}

namespace {

// The clock's time of day, broken down by `breakDown` (local time or UTC).
LocalTime ClockTime(struct tm* (*breakDown)(const time_t*, struct tm*)) {
    struct timeval tv;
    gettimeofday(&tv, nullptr);
    struct tm tm;
    breakDown(&tv.tv_sec, &tm);
    return {tm.tm_year + 1900,
            tm.tm_mon + 1,
            tm.tm_mday,
            tm.tm_hour,
            tm.tm_min,
            tm.tm_sec,
            static_cast<int>(tv.tv_usec / 1000)};
}

}  // namespace

LocalTime SystemClock::Now() {
    return ClockTime(localtime_r);
}

LocalTime SystemClock::UtcNow() {
    return ClockTime(gmtime_r);
}

void SystemClock::Sleep(std::uint32_t ms) {
    std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

std::uint32_t SystemClock::ProcessId() {
    return static_cast<std::uint32_t>(getpid());
}

}  // namespace kx20
