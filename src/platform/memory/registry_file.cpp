#include "platform/memory/registry_file.h"

#include <algorithm>
#include <vector>

#include "platform/format.h"
#include "platform/record_file.h"
#include "platform/text.h"

namespace kx20 {

namespace {

constexpr std::string_view kMagic = "KX20REGB";
constexpr std::uint32_t kVersion = 1;

// The part of `path` below `root` ("" for the root itself); nothing when it is not under it.
std::optional<std::u16string> Relative(std::u16string_view path, std::u16string_view root) {
    if (path.size() < root.size() || !EqualsIgnoreCase(path.substr(0, root.size()), root))
        return std::nullopt;
    if (path.size() == root.size())
        return std::u16string();
    if (path[root.size()] != u'\\')
        return std::nullopt;
    return std::u16string(path.substr(root.size() + 1));
}

bool Skipped(std::u16string_view name, std::span<const std::u16string_view> skip) {
    return std::any_of(skip.begin(), skip.end(),
                       [&](std::u16string_view s) { return EqualsIgnoreCase(s, name); });
}

std::u16string Join(std::u16string_view root, std::u16string_view relative) {
    std::u16string path(root);
    if (!relative.empty())
        path.append(u"\\").append(relative);
    return path;
}

struct BranchKey {
    std::u16string relative;
    std::vector<MemoryRegistry::Value> values;
};

}  // namespace

Bytes SerializeBranch(MemoryRegistry& registry, Hive hive, std::u16string_view root,
                      std::span<const std::u16string_view> skip) {
    std::vector<BranchKey> keys;
    for (const std::u16string& path : registry.KeyPaths(hive)) {
        auto relative = Relative(path, root);
        if (!relative)
            continue;
        BranchKey k{*relative, {}};
        for (const auto& v : registry.FindKey(hive, path)->values)
            if (!Skipped(v.name, skip))
                k.values.push_back(v);
        keys.push_back(std::move(k));
    }
    Bytes payload;
    AppendU32(payload, static_cast<std::uint32_t>(keys.size()));
    for (const BranchKey& k : keys) {
        AppendText(payload, k.relative);
        AppendU32(payload, static_cast<std::uint32_t>(k.values.size()));
        for (const auto& v : k.values) {
            AppendText(payload, v.name);
            AppendU32(payload, v.type);
            AppendBlob(payload, v.data);
        }
    }
    return FrameRecord(kMagic, kVersion, payload);
}

bool LoadBranch(ByteSpan data, MemoryRegistry& registry, Hive hive, std::u16string_view root,
                std::u16string& problem) {
    const auto payload = UnframeRecord(data, kMagic, kVersion, u"registry branch file", problem);
    if (!payload)
        return false;
    FieldReader r(*payload);
    std::vector<BranchKey> keys;
    std::size_t valueCount = 0;
    const std::uint32_t keyCount = r.U32();
    if (keyCount > kBranchMaxKeys) {
        problem = Format(u"%u keys, at most %u", keyCount, kBranchMaxKeys);
        return false;
    }
    for (std::uint32_t i = 0; i < keyCount && r.ok(); ++i) {
        BranchKey k{r.Text(), {}};
        if (Join(root, k.relative).size() > kBranchMaxPathChars)
            r.Bad();
        const std::uint32_t n = r.U32();
        valueCount += n;
        if (valueCount > kBranchMaxValues) {
            problem = Format(u"more than %u values", kBranchMaxValues);
            return false;
        }
        for (std::uint32_t j = 0; j < n && r.ok(); ++j) {
            MemoryRegistry::Value v;
            v.name = r.Text();
            v.type = r.U32();
            v.data = r.Blob();
            if (v.name.size() > kRegMaxValueName || v.data.size() > kBranchMaxValueBytes)
                r.Bad();
            k.values.push_back(std::move(v));
        }
        keys.push_back(std::move(k));
    }
    if (!r.ok() || !r.AtEnd()) {
        problem = u"payload fields do not fit";
        return false;
    }
    for (const BranchKey& k : keys) {
        auto key = registry.CreateKey(hive, Join(root, k.relative));
        if (!key) {
            problem = Format(u"key \"%s\" cannot be made", k.relative);
            return false;
        }
        for (const auto& v : k.values) key->SetValue(v.name, v.type, v.data);
    }
    return true;
}

}  // namespace kx20
