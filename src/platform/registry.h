// Registry port: a hierarchical key/value store with the value semantics of the system
// registry (typed values, the size-learning read, enumeration by index, access lists).
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/bytes.h"

namespace kx20 {

enum class Hive { LocalMachine, CurrentUser };

// Value types as the registry numbers them.
inline constexpr std::uint32_t kRegNone = 0;
inline constexpr std::uint32_t kRegString = 1;
inline constexpr std::uint32_t kRegBinary = 3;
inline constexpr std::uint32_t kRegDword = 4;

// Status codes the registry answers with.
inline constexpr long kRegOk = 0;
inline constexpr long kRegNotFound = 2;
inline constexpr long kRegAccessDenied = 5;
inline constexpr long kRegMoreData = 234;
inline constexpr long kRegNoMoreItems = 259;

// Longest value name that enumeration hands back (characters, without terminator).
inline constexpr std::size_t kRegMaxValueName = 259;

enum class KeyAccess { Read, ReadWrite, AllAccess };

// One access-allowed entry of a key's discretionary access list: a SID in its string form
// ("S-1-5-32-544") and the access mask it is granted.
struct AccessEntry {
    std::u16string sid;
    std::uint32_t mask = 0;
    bool operator==(const AccessEntry&) const = default;
};

class RegistryKey {
  public:
    virtual ~RegistryKey() = default;  // closes the key

    // As the system's value query: `data` may be null to learn the size; `*size` holds the
    // buffer size on entry and the data size on return. Data that does not fit answers
    // kRegMoreData with the needed size and leaves the buffer unspecified. `type` may be null.
    virtual long QueryValue(std::u16string_view name, std::uint32_t* type, std::uint8_t* data,
                            std::uint32_t* size) = 0;
    virtual long SetValue(std::u16string_view name, std::uint32_t type, ByteSpan data) = 0;
    virtual long DeleteValue(std::u16string_view name) = 0;
    // Name of the value at `index`; kRegNoMoreItems past the last one.
    virtual long EnumValue(std::uint32_t index, std::u16string& name) = 0;
};

class Registry {
  public:
    virtual ~Registry() = default;
    // Opens an existing key; null when it does not exist or the access is refused.
    virtual std::unique_ptr<RegistryKey> OpenKey(Hive hive, std::u16string_view path,
                                                 KeyAccess access) = 0;
    // Opens the key, creating it and its missing parents; default (full) access.
    virtual std::unique_ptr<RegistryKey> CreateKey(Hive hive, std::u16string_view path) = 0;
    // Opens the existing key for changing its access list only and replaces its discretionary
    // access list by exactly `entries`, in order. False when the key does not exist or any
    // step fails.
    virtual bool SetKeyAccessList(Hive hive, std::u16string_view path,
                                  std::span<const AccessEntry> entries) = 0;
    // Writes the hive's pending changes to its backing store (RegFlushKey on the hive's root).
    // A store with nothing to write answers kRegOk.
    virtual long FlushHive(Hive hive) {
        (void)hive;
        return kRegOk;
    }
};

// Convenience reads over a key. ReadValueBytes learns the size first and then reads the whole
// value; nullopt when it is missing.
std::optional<Bytes> ReadValueBytes(RegistryKey& key, std::u16string_view name,
                                    std::uint32_t* type = nullptr);
std::optional<std::uint32_t> ReadDwordValue(RegistryKey& key, std::u16string_view name);
long WriteDwordValue(RegistryKey& key, std::u16string_view name, std::uint32_t value);
// A string value read whole; the text ends at the first zero unit.
std::optional<std::u16string> ReadStringValue(RegistryKey& key, std::u16string_view name);

}  // namespace kx20
