#include "platform/win32/win32_system.h"

#include "platform/win32/win32_resources.h"
#include "platform/win32/win32_text.h"

namespace kx20 {

namespace {

class Win32Module : public LoadedModule {
  public:
    explicit Win32Module(HMODULE module) : module_(module), strings_(module) {}
    ~Win32Module() override { FreeLibrary(module_); }
    ModuleId Id() const override { return reinterpret_cast<ModuleId>(module_); }
    ResourceStrings& Strings() override { return strings_; }

  private:
    HMODULE module_;
    Win32ResourceStrings strings_;
};

// The page module's export takes a page description and answers a page handle.
using MakePageFn = HPROPSHEETPAGE(WINAPI*)(PROPSHEETPAGEW*);

class Win32PageModule : public PageModule {
  public:
    Win32PageModule(HMODULE module, MakePageFn make, DialogProcFor procs)
        : module_(module), make_(make), procs_(procs) {}
    ~Win32PageModule() override { FreeLibrary(module_); }
    PageHandle CreatePage(const PageDescription& page) override {
        std::wstring title;
        PROPSHEETPAGEW psp =
            ToPropSheetPage(page, procs_ ? procs_(page.templateId) : nullptr, title);
        return reinterpret_cast<PageHandle>(make_(&psp));
    }

  private:
    HMODULE module_;
    MakePageFn make_;
    DialogProcFor procs_;
};

}  // namespace

SystemVersion Win32System::Version() {
    OSVERSIONINFOW info = {};
    info.dwOSVersionInfoSize = sizeof info;
    if (!GetVersionExW(&info))
        return {};
    return {info.dwMajorVersion, info.dwMinorVersion, info.dwBuildNumber};
}

std::uint32_t Win32System::UserLocale() {
    return GetUserDefaultLCID();
}

std::unique_ptr<LoadedModule> Win32System::LoadModule(std::u16string_view path) {
    HMODULE module = LoadLibraryW(ToWide(path).c_str());
    if (!module)
        return nullptr;
    return std::make_unique<Win32Module>(module);
}

std::unique_ptr<PageModule> Win32System::LoadPageModule(std::u16string_view name,
                                                        std::string_view exportName,
                                                        PageModuleLoad& status) {
    HMODULE module = LoadLibraryW(ToWide(name).c_str());
    if (!module) {
        status = PageModuleLoad::LibraryMissing;
        return nullptr;
    }
    auto make = reinterpret_cast<MakePageFn>(
        reinterpret_cast<void*>(GetProcAddress(module, std::string(exportName).c_str())));
    if (!make) {
        FreeLibrary(module);
        status = PageModuleLoad::EntryMissing;
        return nullptr;
    }
    status = PageModuleLoad::Loaded;
    return std::make_unique<Win32PageModule>(module, make, dialogProcs_);
}

std::u16string Win32System::WorkingFolder() {
    wchar_t buf[MAX_PATH] = {};
    DWORD n = GetCurrentDirectoryW(MAX_PATH, buf);
    if (n == 0 || n >= MAX_PATH)
        return {};
    return FromWide(std::wstring_view(buf, n));
}

bool Win32System::ChangeWorkingFolder(std::u16string_view path) {
    return SetCurrentDirectoryW(ToWide(path).c_str()) != FALSE;
}

}  // namespace kx20
