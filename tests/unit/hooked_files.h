// A file system in front of another one that lets a test act in the middle of a file
// operation: run a second writer while the first one holds its file, or make writes to a
// chosen file fail. Used natively over MemoryFileSystem and under Wine over Win32FileSystem.
#pragma once

#include <functional>
#include <string>

#include "platform/files.h"
#include "platform/text.h"

namespace kx20 {

class HookedFileSystem : public FileSystem {
  public:
    explicit HookedFileSystem(FileSystem& inner) : inner_(inner) {}

    // Called before each write through a handle of a file whose path ends with `hookSuffix`
    // (any case); a false answer fails the write without passing it on.
    std::u16string hookSuffix;
    std::function<bool(std::u16string_view path)> beforeWrite;

    bool Exists(std::u16string_view path) override { return inner_.Exists(path); }
    std::unique_ptr<FileHandle> Open(std::u16string_view path, OpenMode mode,
                                     ShareMode share) override {
        auto file = inner_.Open(path, mode, share);
        if (!file)
            return nullptr;
        return std::make_unique<Handle>(*this, std::u16string(path), std::move(file));
    }
    bool Remove(std::u16string_view path) override { return inner_.Remove(path); }
    bool Rename(std::u16string_view from, std::u16string_view to) override {
        return inner_.Rename(from, to);
    }
    bool CreateFolder(std::u16string_view path) override { return inner_.CreateFolder(path); }
    std::u16string TempFolder() override { return inner_.TempFolder(); }
    std::u16string WindowsFolder() override { return inner_.WindowsFolder(); }
    std::uint32_t LastError() override { return inner_.LastError(); }

  private:
    class Handle : public FileHandle {
      public:
        Handle(HookedFileSystem& fs, std::u16string path, std::unique_ptr<FileHandle> inner)
            : fs_(fs), path_(std::move(path)), inner_(std::move(inner)) {}
        bool Read(MutableByteSpan buf, std::size_t* got) override { return inner_->Read(buf, got); }
        bool Write(ByteSpan data) override {
            const std::u16string& suffix = fs_.hookSuffix;
            const bool hooked =
                !suffix.empty() && path_.size() >= suffix.size() &&
                EqualsIgnoreCase(path_.substr(path_.size() - suffix.size()), suffix);
            if (hooked && fs_.beforeWrite && !fs_.beforeWrite(path_))
                return false;
            return inner_->Write(data);
        }
        std::optional<std::uint64_t> Size() override { return inner_->Size(); }
        bool SeekToEnd() override { return inner_->SeekToEnd(); }
        bool Flush() override { return inner_->Flush(); }

      private:
        HookedFileSystem& fs_;
        std::u16string path_;
        std::unique_ptr<FileHandle> inner_;
    };

    FileSystem& inner_;
};

}  // namespace kx20
