// In-memory registry: keys by case-insensitive path per hive, values in insertion order, and
// the access list last set on each key.
#pragma once

#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "platform/registry.h"

namespace kx20 {

class MemoryRegistry : public Registry {
  public:
    struct Value {
        std::u16string name;
        std::uint32_t type = kRegNone;
        Bytes data;
    };
    struct Key {
        std::u16string path;  // as first created
        std::vector<Value> values;
        std::optional<std::vector<AccessEntry>> accessList;
    };

    std::unique_ptr<RegistryKey> OpenKey(Hive hive, std::u16string_view path,
                                         KeyAccess access) override;
    std::unique_ptr<RegistryKey> CreateKey(Hive hive, std::u16string_view path) override;
    bool SetKeyAccessList(Hive hive, std::u16string_view path,
                          std::span<const AccessEntry> entries) override;
    long FlushHive(Hive hive) override;

    // Inspection for tests and tools.
    Key* FindKey(Hive hive, std::u16string_view path);
    const Value* FindValue(Hive hive, std::u16string_view path, std::u16string_view name);
    std::vector<std::u16string> KeyPaths(Hive hive) const;
    bool DeleteKey(Hive hive, std::u16string_view path);
    // What FlushHive answers, and how often it was asked.
    long flushResult = kRegOk;
    int flushes = 0;

  private:
    using Id = std::pair<Hive, std::u16string>;
    static Id MakeId(Hive hive, std::u16string_view path);
    std::map<Id, Key> keys_;
};

}  // namespace kx20
