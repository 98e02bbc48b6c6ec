#include "platform/memory/memory_registry.h"

#include <algorithm>
#include <cstring>

#include "platform/text.h"

namespace kx20 {

namespace {

class MemoryKeyHandle : public RegistryKey {
  public:
    MemoryKeyHandle(MemoryRegistry& reg, Hive hive, std::u16string path)
        : reg_(reg), hive_(hive), path_(std::move(path)) {}

    long QueryValue(std::u16string_view name, std::uint32_t* type, std::uint8_t* data,
                    std::uint32_t* size) override {
        const MemoryRegistry::Value* v = reg_.FindValue(hive_, path_, name);
        if (!v)
            return kRegNotFound;
        if (type)
            *type = v->type;
        std::uint32_t needed = static_cast<std::uint32_t>(v->data.size());
        if (!size)
            return data ? kRegAccessDenied : kRegOk;
        if (!data) {
            *size = needed;
            return kRegOk;
        }
        if (*size < needed) {
            *size = needed;
            return kRegMoreData;
        }
        if (needed)
            std::memcpy(data, v->data.data(), needed);
        *size = needed;
        return kRegOk;
    }

    long SetValue(std::u16string_view name, std::uint32_t type, ByteSpan data) override {
        MemoryRegistry::Key* key = reg_.FindKey(hive_, path_);
        if (!key)
            return kRegNotFound;
        for (auto& v : key->values) {
            if (EqualsIgnoreCase(v.name, name)) {
                v.type = type;
                v.data.assign(data.begin(), data.end());
                return kRegOk;
            }
        }
        key->values.push_back({std::u16string(name), type, Bytes(data.begin(), data.end())});
        return kRegOk;
    }

    long DeleteValue(std::u16string_view name) override {
        MemoryRegistry::Key* key = reg_.FindKey(hive_, path_);
        if (!key)
            return kRegNotFound;
        auto it = std::find_if(key->values.begin(), key->values.end(),
                               [&](const auto& v) { return EqualsIgnoreCase(v.name, name); });
        if (it == key->values.end())
            return kRegNotFound;
        key->values.erase(it);
        return kRegOk;
    }

    long EnumValue(std::uint32_t index, std::u16string& name) override {
        MemoryRegistry::Key* key = reg_.FindKey(hive_, path_);
        if (!key)
            return kRegNotFound;
        if (index >= key->values.size())
            return kRegNoMoreItems;
        const std::u16string& n = key->values[index].name;
        if (n.size() > kRegMaxValueName)
            return kRegMoreData;
        name = n;
        return kRegOk;
    }

  private:
    MemoryRegistry& reg_;
    Hive hive_;
    std::u16string path_;
};

}  // namespace

MemoryRegistry::Id MemoryRegistry::MakeId(Hive hive, std::u16string_view path) {
    return {hive, ToLowerAscii(path)};
}

MemoryRegistry::Key* MemoryRegistry::FindKey(Hive hive, std::u16string_view path) {
    auto it = keys_.find(MakeId(hive, path));
    return it == keys_.end() ? nullptr : &it->second;
}

const MemoryRegistry::Value* MemoryRegistry::FindValue(Hive hive, std::u16string_view path,
                                                       std::u16string_view name) {
    Key* key = FindKey(hive, path);
    if (!key)
        return nullptr;
    for (const auto& v : key->values)
        if (EqualsIgnoreCase(v.name, name))
            return &v;
    return nullptr;
}

std::vector<std::u16string> MemoryRegistry::KeyPaths(Hive hive) const {
    std::vector<std::u16string> out;
    for (const auto& [id, key] : keys_)
        if (id.first == hive)
            out.push_back(key.path);
    return out;
}

bool MemoryRegistry::DeleteKey(Hive hive, std::u16string_view path) {
    return keys_.erase(MakeId(hive, path)) > 0;
}

std::unique_ptr<RegistryKey> MemoryRegistry::OpenKey(Hive hive, std::u16string_view path,
                                                     KeyAccess) {
    if (!FindKey(hive, path))
        return nullptr;
    return std::make_unique<MemoryKeyHandle>(*this, hive, std::u16string(path));
}

std::unique_ptr<RegistryKey> MemoryRegistry::CreateKey(Hive hive, std::u16string_view path) {
    if (path.empty() || path.size() > 255 * 16)
        return nullptr;
    // Parents first, as the system creates every missing level.
    for (std::size_t pos = 0; pos != std::u16string_view::npos;) {
        pos = path.find(u'\\', pos + 1);
        std::u16string_view prefix = path.substr(0, pos);
        if (prefix.empty() || prefix.back() == u'\\')
            continue;
        Id id = MakeId(hive, prefix);
        if (!keys_.count(id))
            keys_[id].path = std::u16string(prefix);
    }
    return OpenKey(hive, path, KeyAccess::AllAccess);
}

bool MemoryRegistry::SetKeyAccessList(Hive hive, std::u16string_view path,
                                      std::span<const AccessEntry> entries) {
    Key* key = FindKey(hive, path);
    if (!key)
        return false;
    key->accessList = std::vector<AccessEntry>(entries.begin(), entries.end());
    return true;
}

long MemoryRegistry::FlushHive(Hive) {
    ++flushes;
    return flushResult;
}

}  // namespace kx20
