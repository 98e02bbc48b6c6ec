#include "platform/memory/memory_files.h"

#include <algorithm>
#include <cstring>

#include "platform/text.h"

namespace kx20 {

namespace {

class MemoryFile : public FileHandle {
  public:
    MemoryFile(Bytes& data, bool append)
        : data_(data), pos_(append ? data.size() : 0), append_(append) {}

    bool Read(MutableByteSpan buf, std::size_t* got) override {
        std::size_t n = pos_ < data_.size() ? std::min(buf.size(), data_.size() - pos_) : 0;
        if (n)
            std::memcpy(buf.data(), data_.data() + pos_, n);
        pos_ += n;
        if (got)
            *got = n;
        return true;
    }
    bool Write(ByteSpan d) override {
        if (append_)
            pos_ = data_.size();
        if (data_.size() < pos_ + d.size())
            data_.resize(pos_ + d.size());
        if (!d.empty())
            std::memcpy(data_.data() + pos_, d.data(), d.size());
        pos_ += d.size();
        return true;
    }
    std::optional<std::uint64_t> Size() override { return data_.size(); }
    bool Flush() override { return true; }

  private:
    Bytes& data_;
    std::size_t pos_;
    bool append_;
};

}  // namespace

bool MemoryFileSystem::Exists(std::u16string_view path) {
    std::u16string key = ToLowerAscii(path);
    return files_.count(key) || folders_.count(key);
}

std::unique_ptr<FileHandle> MemoryFileSystem::Open(std::u16string_view path, OpenMode mode,
                                                   ShareMode) {
    std::u16string key = ToLowerAscii(path);
    if (locked.count(key) || folders_.count(key)) {
        lastError_ = 32;  // sharing violation
        return nullptr;
    }
    auto it = files_.find(key);
    switch (mode) {
        case OpenMode::ReadExisting:
            if (it == files_.end()) {
                lastError_ = 2;
                return nullptr;
            }
            return std::make_unique<MemoryFile>(it->second, false);
        case OpenMode::CreateAlways:
            files_[key].clear();
            return std::make_unique<MemoryFile>(files_[key], false);
        case OpenMode::AppendOrCreate:
            return std::make_unique<MemoryFile>(files_[key], true);
    }
    return nullptr;
}

bool MemoryFileSystem::Remove(std::u16string_view path) {
    return files_.erase(ToLowerAscii(path)) > 0;
}

bool MemoryFileSystem::Rename(std::u16string_view from, std::u16string_view to) {
    auto it = files_.find(ToLowerAscii(from));
    if (it == files_.end() || files_.count(ToLowerAscii(to)))
        return false;
    Bytes data = std::move(it->second);
    files_.erase(it);
    files_[ToLowerAscii(to)] = std::move(data);
    return true;
}

bool MemoryFileSystem::CreateFolder(std::u16string_view path) {
    folders_.insert(ToLowerAscii(path));
    return true;
}

void MemoryFileSystem::Put(std::u16string_view path, Bytes data) {
    files_[ToLowerAscii(path)] = std::move(data);
}

const Bytes* MemoryFileSystem::Get(std::u16string_view path) const {
    auto it = files_.find(ToLowerAscii(path));
    return it == files_.end() ? nullptr : &it->second;
}

bool MemoryFileSystem::HasFolder(std::u16string_view path) const {
    return folders_.count(ToLowerAscii(path)) > 0;
}

std::uint64_t ManualClock::TotalSlept() const {
    std::uint64_t total = 0;
    for (auto s : sleeps) total += s;
    return total;
}

}  // namespace kx20
