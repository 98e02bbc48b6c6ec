#include "platform/win32/win32_files.h"

#include "platform/win32/windows_clean.h"

#include <sys/stat.h>

#include "platform/win32/win32_text.h"

namespace kx20 {

namespace {

class Win32File : public FileHandle {
  public:
    Win32File(HANDLE h, bool append) : h_(h), append_(append) {}
    ~Win32File() override { CloseHandle(h_); }

    bool Read(MutableByteSpan buf, std::size_t* got) override {
        DWORD n = 0;
        BOOL ok = ReadFile(h_, buf.data(), static_cast<DWORD>(buf.size()), &n, nullptr);
        if (got)
            *got = n;
        return ok != FALSE;
    }
    bool Write(ByteSpan data) override {
        if (append_)
            SetFilePointer(h_, 0, nullptr, FILE_END);
        DWORD n = 0;
        return WriteFile(h_, data.data(), static_cast<DWORD>(data.size()), &n, nullptr) &&
               n == data.size();
    }
    std::optional<std::uint64_t> Size() override {
        LARGE_INTEGER size;
        if (!GetFileSizeEx(h_, &size))
            return std::nullopt;
        return static_cast<std::uint64_t>(size.QuadPart);
    }
    bool Flush() override { return FlushFileBuffers(h_) != FALSE; }

  private:
    HANDLE h_;
    bool append_;
};

DWORD ShareOf(ShareMode s) {
    switch (s) {
        case ShareMode::None:
            return 0;
        case ShareMode::Read:
            return FILE_SHARE_READ;
        case ShareMode::ReadWrite:
            return FILE_SHARE_READ | FILE_SHARE_WRITE;
    }
    return 0;
}

}  // namespace

bool Win32FileSystem::Exists(std::u16string_view path) {
    // The status query of the C runtime, as the trace switch is defined.
    struct _stat64 st;
    std::wstring p = ToWide(path);
    return _wstat64(p.c_str(), &st) == 0;
}

std::unique_ptr<FileHandle> Win32FileSystem::Open(std::u16string_view path, OpenMode mode,
                                                  ShareMode share) {
    std::wstring p = ToWide(path);
    DWORD access = GENERIC_READ;
    DWORD disposition = OPEN_EXISTING;
    if (mode == OpenMode::CreateAlways) {
        access = GENERIC_READ | GENERIC_WRITE;
        disposition = CREATE_ALWAYS;
    } else if (mode == OpenMode::AppendOrCreate) {
        access = GENERIC_WRITE;
        disposition = OPEN_ALWAYS;
    }
    HANDLE h = CreateFileW(p.c_str(), access, ShareOf(share), nullptr, disposition,
                           FILE_ATTRIBUTE_NORMAL, nullptr);
    if (h == INVALID_HANDLE_VALUE)
        return nullptr;
    return std::make_unique<Win32File>(h, mode == OpenMode::AppendOrCreate);
}

bool Win32FileSystem::Remove(std::u16string_view path) {
    std::wstring p = ToWide(path);
    return DeleteFileW(p.c_str()) != FALSE;
}

bool Win32FileSystem::Rename(std::u16string_view from, std::u16string_view to) {
    std::wstring f = ToWide(from), t = ToWide(to);
    return MoveFileW(f.c_str(), t.c_str()) != FALSE;
}

bool Win32FileSystem::CreateFolder(std::u16string_view path) {
    std::wstring p = ToWide(path);
    return CreateDirectoryW(p.c_str(), nullptr) || GetLastError() == ERROR_ALREADY_EXISTS;
}

std::u16string Win32FileSystem::TempFolder() {
    wchar_t buf[MAX_PATH + 1] = {};
    DWORD n = GetTempPathW(MAX_PATH, buf);
    return n ? FromWide(std::wstring_view(buf, n)) : std::u16string();
}

std::u16string Win32FileSystem::WindowsFolder() {
    wchar_t buf[MAX_PATH + 1] = {};
    UINT n = GetWindowsDirectoryW(buf, MAX_PATH);
    return n ? FromWide(std::wstring_view(buf, n)) : std::u16string();
}

std::uint32_t Win32FileSystem::LastError() {
    return GetLastError();
}

LocalTime Win32Clock::UtcNow() {
    SYSTEMTIME t;
    GetSystemTime(&t);
    return {t.wYear, t.wMonth, t.wDay, t.wHour, t.wMinute, t.wSecond, t.wMilliseconds};
}

LocalTime Win32Clock::Now() {
    SYSTEMTIME t;
    GetLocalTime(&t);
    return {t.wYear, t.wMonth, t.wDay, t.wHour, t.wMinute, t.wSecond, t.wMilliseconds};
}

void Win32Clock::Sleep(std::uint32_t ms) {
    ::Sleep(ms);
}

std::uint32_t Win32Clock::ProcessId() {
    return GetCurrentProcessId();
}

}  // namespace kx20
