// Registry port over the system registry.
#pragma once

#include "platform/registry.h"

namespace kx20 {

class Win32Registry : public Registry {
  public:
    std::unique_ptr<RegistryKey> OpenKey(Hive hive, std::u16string_view path,
                                         KeyAccess access) override;
    std::unique_ptr<RegistryKey> CreateKey(Hive hive, std::u16string_view path) override;
    bool SetKeyAccessList(Hive hive, std::u16string_view path,
                          std::span<const AccessEntry> entries) override;
    long FlushHive(Hive hive) override;
};

}  // namespace kx20
