#include "platform/memory/memory_sections.h"

namespace kx20 {

namespace {

constexpr std::uint32_t kErrorFileNotFound = 2;
constexpr std::uint32_t kErrorInvalidHandle = 6;
constexpr std::uint32_t kErrorNotEnoughMemory = 8;
constexpr std::uint32_t kErrorAlreadyExists = 183;

}  // namespace

class MemorySectionView : public SectionView {
  public:
    MemorySectionView(MemorySections& owner, std::u16string name, MutableByteSpan bytes)
        : owner_(owner), name_(std::move(name)), bytes_(bytes) {}
    ~MemorySectionView() override { owner_.Release(name_); }
    MutableByteSpan Bytes() override { return bytes_; }

  private:
    MemorySections& owner_;
    std::u16string name_;
    MutableByteSpan bytes_;
};

SectionHandle MemorySections::NewHandle(const std::u16string& name) {
    ++sections_[name]->references;
    SectionHandle h = nextHandle_;
    nextHandle_ += 4;
    handles_[h] = name;
    return h;
}

SectionHandle MemorySections::Create(std::u16string_view name, std::uint32_t size) {
    std::u16string key(name);
    auto it = sections_.find(key);
    if (it != sections_.end()) {
        lastError_ = kErrorAlreadyExists;
        return NewHandle(key);
    }
    auto section = std::make_shared<Section>();
    const std::size_t rounded =
        (static_cast<std::size_t>(size) + kPageSize - 1) / kPageSize * kPageSize;
    section->data.assign(rounded, 0);
    sections_[key] = section;
    lastError_ = 0;
    return NewHandle(key);
}

SectionHandle MemorySections::Open(std::u16string_view name, bool) {
    std::u16string key(name);
    if (sections_.find(key) == sections_.end()) {
        lastError_ = kErrorFileNotFound;
        return 0;
    }
    return NewHandle(key);
}

std::unique_ptr<SectionView> MemorySections::Map(SectionHandle section, bool) {
    auto it = handles_.find(section);
    if (it == handles_.end()) {
        lastError_ = kErrorInvalidHandle;
        return nullptr;
    }
    if (failMap) {
        lastError_ = kErrorNotEnoughMemory;
        return nullptr;
    }
    auto& s = sections_[it->second];
    ++s->references;
    return std::make_unique<MemorySectionView>(*this, it->second, MutableByteSpan(s->data));
}

bool MemorySections::Close(SectionHandle section) {
    auto it = handles_.find(section);
    if (it == handles_.end()) {
        lastError_ = kErrorInvalidHandle;
        return false;
    }
    std::u16string name = it->second;
    handles_.erase(it);
    Release(name);
    return true;
}

void MemorySections::Release(const std::u16string& name) {
    auto it = sections_.find(name);
    if (it != sections_.end() && --it->second->references == 0)
        sections_.erase(it);
}

const Bytes* MemorySections::Find(std::u16string_view name) const {
    auto it = sections_.find(std::u16string(name));
    return it == sections_.end() ? nullptr : &it->second->data;
}

std::u16string MemorySections::ErrorText(std::uint32_t code) {
    switch (code) {
        case kErrorFileNotFound:
            return u"The system cannot find the file specified.\r\n";
        case kErrorInvalidHandle:
            return u"The handle is invalid.\r\n";
        case kErrorNotEnoughMemory:
            return u"Not enough memory resources are available to process this command.\r\n";
        default:
            return u"";
    }
}

}  // namespace kx20
