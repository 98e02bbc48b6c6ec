#include "platform/memory/memory_files.h"

#include <algorithm>
#include <cstring>

#include "platform/text.h"

namespace kx20 {

namespace {

constexpr std::uint32_t kErrorFileNotFound = 2;
constexpr std::uint32_t kErrorPathNotFound = 3;
constexpr std::uint32_t kErrorSharingViolation = 32;
constexpr std::uint32_t kErrorAlreadyExists = 183;

// The case-insensitive key of a path, with '\' as the one separator.
std::u16string Key(std::u16string_view path) {
    std::u16string key = ToLowerAscii(path);
    std::replace(key.begin(), key.end(), u'/', u'\\');
    return key;
}

// A folder's key has no trailing separator.
std::u16string FolderKey(std::u16string_view path) {
    std::u16string key = Key(path);
    while (!key.empty() && key.back() == u'\\') key.pop_back();
    return key;
}

// The folder a path lies in; empty for a bare name.
std::u16string ParentKey(std::u16string_view key) {
    std::u16string folder = FolderKey(key);
    const std::size_t at = folder.rfind(u'\\');
    return at == std::u16string::npos ? std::u16string() : folder.substr(0, at);
}

bool IsUnder(const std::u16string& key, const std::u16string& folder) {
    return key.size() > folder.size() + 1 && key.compare(0, folder.size(), folder) == 0 &&
           key[folder.size()] == u'\\';
}

bool SharesRead(ShareMode s) {
    return s != ShareMode::None;
}
bool SharesWrite(ShareMode s) {
    return s == ShareMode::ReadWrite;
}

}  // namespace

class MemoryFileSystem::File : public FileHandle {
  public:
    File(MemoryFileSystem& fs, std::uint64_t id, Bytes& data, bool append)
        : fs_(fs), id_(id), data_(data), pos_(append ? data.size() : 0), append_(append) {}
    ~File() override { fs_.Closed(id_); }

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
    bool SeekToEnd() override {
        pos_ = data_.size();
        return true;
    }
    bool Flush() override { return true; }

  private:
    MemoryFileSystem& fs_;
    std::uint64_t id_;
    Bytes& data_;  // the map's node: files that are open are never erased
    std::size_t pos_;
    bool append_;
};

bool MemoryFileSystem::FolderExists(const std::u16string& key) const {
    if (key.empty() || (key.size() == 2 && key[1] == u':'))
        return true;  // the current folder, a drive root
    if (folders_.count(key) || key == FolderKey(tempFolder) || key == FolderKey(windowsFolder))
        return true;
    auto holds = [&](const std::u16string& inside) { return IsUnder(inside, key); };
    for (auto it = files_.lower_bound(key); it != files_.end() && it->first.starts_with(key); ++it)
        if (holds(it->first))
            return true;
    for (auto it = folders_.lower_bound(key); it != folders_.end() && it->starts_with(key); ++it)
        if (holds(*it))
            return true;
    return false;
}

bool MemoryFileSystem::ShareAllows(const std::u16string& key, bool read, bool write,
                                   ShareMode share) const {
    for (const auto& [id, rec] : open_) {
        if (rec.key != key)
            continue;
        if ((read && !SharesRead(rec.share)) || (write && !SharesWrite(rec.share)) ||
            (rec.read && !SharesRead(share)) || (rec.write && !SharesWrite(share)))
            return false;
    }
    return true;
}

bool MemoryFileSystem::Exists(std::u16string_view path) {
    const std::u16string key = Key(path);
    return files_.count(key) || (!FolderKey(path).empty() && FolderExists(FolderKey(path)));
}

std::unique_ptr<FileHandle> MemoryFileSystem::Open(std::u16string_view path, OpenMode mode,
                                                   ShareMode share) {
    const std::u16string key = Key(path);
    if (locked.count(key) || folders_.count(key)) {
        lastError_ = kErrorSharingViolation;
        return nullptr;
    }
    const bool read = mode != OpenMode::AppendOrCreate;
    const bool write = mode != OpenMode::ReadExisting;
    if (!ShareAllows(key, read, write, share)) {
        lastError_ = kErrorSharingViolation;
        return nullptr;
    }
    auto it = files_.find(key);
    if (it == files_.end()) {
        if (mode == OpenMode::ReadExisting) {
            lastError_ = kErrorFileNotFound;
            return nullptr;
        }
        if (strictFolders && !FolderExists(ParentKey(key))) {
            lastError_ = kErrorPathNotFound;
            return nullptr;
        }
        it = files_.emplace(key, Bytes()).first;
    } else if (mode == OpenMode::CreateAlways) {
        it->second.clear();
    }
    const std::uint64_t id = nextHandle_++;
    open_[id] = OpenRecord{key, read, write, share};
    return std::make_unique<File>(*this, id, it->second, mode == OpenMode::AppendOrCreate);
}

bool MemoryFileSystem::Remove(std::u16string_view path) {
    const std::u16string key = Key(path);
    if (OpenCount(path)) {
        lastError_ = kErrorSharingViolation;
        return false;
    }
    if (!files_.erase(key)) {
        lastError_ = kErrorFileNotFound;
        return false;
    }
    return true;
}

bool MemoryFileSystem::Rename(std::u16string_view from, std::u16string_view to) {
    if (OpenCount(from) || OpenCount(to)) {
        lastError_ = kErrorSharingViolation;
        return false;
    }
    auto it = files_.find(Key(from));
    if (it == files_.end() || files_.count(Key(to)))
        return false;
    Bytes data = std::move(it->second);
    files_.erase(it);
    files_[Key(to)] = std::move(data);
    return true;
}

bool MemoryFileSystem::CreateFolder(std::u16string_view path) {
    const std::u16string key = FolderKey(path);
    if (key.empty() || files_.count(key)) {
        lastError_ = kErrorAlreadyExists;
        return false;
    }
    if (FolderExists(key))
        return true;
    if (!FolderExists(ParentKey(key))) {
        lastError_ = kErrorPathNotFound;
        return false;
    }
    folders_.insert(key);
    return true;
}

void MemoryFileSystem::Put(std::u16string_view path, Bytes data) {
    files_[Key(path)] = std::move(data);
}

const Bytes* MemoryFileSystem::Get(std::u16string_view path) const {
    auto it = files_.find(Key(path));
    return it == files_.end() ? nullptr : &it->second;
}

bool MemoryFileSystem::HasFolder(std::u16string_view path) const {
    return folders_.count(FolderKey(path)) > 0;
}

std::size_t MemoryFileSystem::OpenCount(std::u16string_view path) const {
    const std::u16string key = Key(path);
    std::size_t n = 0;
    for (const auto& [id, rec] : open_) n += rec.key == key;
    return n;
}

std::uint64_t ManualClock::TotalSlept() const {
    std::uint64_t total = 0;
    for (auto s : sleeps) total += s;
    return total;
}

}  // namespace kx20
