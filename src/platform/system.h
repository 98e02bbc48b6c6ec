// System services the entry points need besides the other ports: the version the system
// reports, the user's language, the process's working folder, and loading modules (the
// localized resource module, and the optional page module that makes property pages on some
// systems).
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/resources.h"
#include "platform/sheets.h"

namespace kx20 {

struct SystemVersion {
    std::uint32_t major = 0;
    std::uint32_t minor = 0;
    std::uint32_t build = 0;
};

// A module loaded into the process; destroying it releases it.
class LoadedModule {
  public:
    virtual ~LoadedModule() = default;
    // The module's handle as the system gives it (the instance of the pages it holds).
    virtual ModuleId Id() const = 0;
    // The module's string table.
    virtual ResourceStrings& Strings() = 0;
};

enum class PageModuleLoad { Loaded, LibraryMissing, EntryMissing };

class SystemServices {
  public:
    virtual ~SystemServices() = default;
    virtual SystemVersion Version() = 0;
    // The user's default locale identifier; its low 10 bits are the primary language.
    virtual std::uint32_t UserLocale() = 0;
    // Loads a module by path (or by bare name, searched as the system searches); null when it
    // cannot be loaded.
    virtual std::unique_ptr<LoadedModule> LoadModule(std::u16string_view path) = 0;
    // Loads a page module by name and finds its page-making export. Null unless both worked;
    // `status` tells which step failed.
    virtual std::unique_ptr<PageModule> LoadPageModule(std::u16string_view name,
                                                       std::string_view exportName,
                                                       PageModuleLoad& status) = 0;
    // The process's current directory (at most 259 characters) and changing it.
    virtual std::u16string WorkingFolder() = 0;
    virtual bool ChangeWorkingFolder(std::u16string_view path) = 0;
};

// The primary language of a locale identifier.
inline std::uint32_t PrimaryLanguage(std::uint32_t locale) {
    return locale & 0x3FF;
}

}  // namespace kx20
