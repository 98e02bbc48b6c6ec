#include "platform/memory/memory_system.h"

#include "platform/text.h"

namespace kx20 {

namespace {

class MemoryModule : public LoadedModule {
  public:
    MemoryModule(MemorySystem& system, ModuleId id) : system_(system), id_(id) {}
    ~MemoryModule() override { ++system_.modulesReleased; }
    ModuleId Id() const override { return id_; }
    ResourceStrings& Strings() override { return strings_; }

  private:
    MemorySystem& system_;
    ModuleId id_;
    BuiltinStrings strings_;
};

class MemoryPageModule : public PageModule {
  public:
    explicit MemoryPageModule(MemorySystem& system) : system_(system) {}
    ~MemoryPageModule() override { ++system_.pageModuleReleases; }
    PageHandle CreatePage(const PageDescription& page) override {
        system_.pagesMade.push_back(page);
        if (system_.makePage)
            return system_.makePage(page);
        return 0x5000 + system_.pagesMade.size();
    }

  private:
    MemorySystem& system_;
};

}  // namespace

void MemorySystem::AddModule(std::u16string_view path) {
    modules_.insert(ToLowerAscii(path));
}

std::unique_ptr<LoadedModule> MemorySystem::LoadModule(std::u16string_view path) {
    loadAttempts.emplace_back(path);
    if (modules_.count(ToLowerAscii(path)) == 0)
        return nullptr;
    ++modulesLoaded;
    return std::make_unique<MemoryModule>(*this, nextId_++);
}

std::unique_ptr<PageModule> MemorySystem::LoadPageModule(std::u16string_view name, std::string_view,
                                                         PageModuleLoad& status) {
    pageModuleName = std::u16string(name);
    pageModuleFolder = workingFolder;
    status = pageModuleLoad;
    if (status != PageModuleLoad::Loaded)
        return nullptr;
    ++pageModuleLoads;
    return std::make_unique<MemoryPageModule>(*this);
}

bool MemorySystem::ChangeWorkingFolder(std::u16string_view path) {
    folderChanges.emplace_back(path);
    workingFolder = std::u16string(path);
    return true;
}

}  // namespace kx20
