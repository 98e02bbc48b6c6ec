// In-memory system services: a version and language that tests set, modules that "load" when
// their path is listed, a working folder, and an optional page module whose pages a test
// scripts. Every load, release and folder change is recorded.
#pragma once

#include <functional>
#include <set>
#include <vector>

#include "platform/system.h"

namespace kx20 {

class MemorySystem : public SystemServices {
  public:
    SystemVersion Version() override { return version; }
    std::uint32_t UserLocale() override { return locale; }
    std::unique_ptr<LoadedModule> LoadModule(std::u16string_view path) override;
    std::unique_ptr<PageModule> LoadPageModule(std::u16string_view name,
                                               std::string_view exportName,
                                               PageModuleLoad& status) override;
    std::u16string WorkingFolder() override { return workingFolder; }
    bool ChangeWorkingFolder(std::u16string_view path) override;

    // Paths (compared without regard to ASCII case) that load; their strings are the built-in
    // English table.
    void AddModule(std::u16string_view path);

    SystemVersion version{6, 1, 7601};
    std::uint32_t locale = 0x0409;
    std::u16string workingFolder = u"C:\\";

    std::vector<std::u16string> loadAttempts;  // every module path asked for, in order
    int modulesLoaded = 0;
    int modulesReleased = 0;
    std::vector<std::u16string> folderChanges;  // every working-folder change, in order

    // The optional page module: how its load goes, the folder that was current when it was
    // loaded, the page maker (null: every page made, numbered from 0x5000) and what it made.
    PageModuleLoad pageModuleLoad = PageModuleLoad::LibraryMissing;
    std::u16string pageModuleName;
    std::u16string pageModuleFolder;
    std::function<PageHandle(const PageDescription&)> makePage;
    std::vector<PageDescription> pagesMade;
    int pageModuleLoads = 0;
    int pageModuleReleases = 0;

  private:
    std::set<std::u16string> modules_;  // lower-case paths
    ModuleId nextId_ = 0x10000;
};

}  // namespace kx20
