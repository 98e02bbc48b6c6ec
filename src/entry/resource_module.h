// The resource module object: the localized resource module (KVORS + language suffix + .DLL)
// loaded from the driver's own folder for the length of an entry call or a sheet, with the
// path of its help file. Every user-visible text and every dialog template comes from it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "devmode/printer_settings.h"
#include "platform/system.h"

namespace kx20 {

// The language suffix of the resource module. There is one table entry, "ENU": it serves
// English and, deliberately, every other language too.
std::u16string_view LanguageSuffix(std::uint32_t primaryLanguage);
// "KVORS" + suffix + ".DLL".
std::u16string ResourceModuleName(std::uint32_t primaryLanguage);
// The folder of a file path, up to and including its last backslash; empty when it has none.
std::u16string_view FolderOf(std::u16string_view path);
// The help file beside a module: the path with its last three characters replaced by "HLP".
std::u16string HelpPathFor(std::u16string_view modulePath);

class ResourceModule {
  public:
    // Loads the module from the folder of the first dependent file of the printer's driver.
    // `language` 0 means the user's own.
    ResourceModule(SystemServices& system, PrinterSettings& settings, std::uint32_t language = 0);
    ResourceModule(const ResourceModule&) = delete;
    ResourceModule& operator=(const ResourceModule&) = delete;

    bool Loaded() const { return module_ != nullptr; }
    // The module's handle; 0 when it did not load.
    ModuleId Id() const { return module_ ? module_->Id() : 0; }
    // Empty when the module did not load.
    const std::u16string& HelpPath() const { return helpPath_; }
    // The module's strings; when it did not load, a table without any string.
    ResourceStrings& Strings();

  private:
    class NoStrings : public ResourceStrings {
      public:
        std::optional<std::u16string> Load(std::uint32_t) override { return std::nullopt; }
    };

    std::unique_ptr<LoadedModule> module_;
    std::u16string helpPath_;
    NoStrings none_;
};

}  // namespace kx20
