// System services through kernel32: GetVersionExW, GetUserDefaultLCID, LoadLibraryW and
// FreeLibrary, GetProcAddress, the current directory. The optional page module's pages get
// their dialog procedures from the driver's page table, handed in by the driver.
#pragma once

#include "platform/win32/windows_clean.h"

#include <prsht.h>

#include "platform/system.h"
#include "platform/win32/win32_sheets.h"

namespace kx20 {

class Win32System : public SystemServices {
  public:
    explicit Win32System(DialogProcFor dialogProcs = nullptr) : dialogProcs_(dialogProcs) {}
    SystemVersion Version() override;
    std::uint32_t UserLocale() override;
    std::unique_ptr<LoadedModule> LoadModule(std::u16string_view path) override;
    std::unique_ptr<PageModule> LoadPageModule(std::u16string_view name,
                                               std::string_view exportName,
                                               PageModuleLoad& status) override;
    std::u16string WorkingFolder() override;
    bool ChangeWorkingFolder(std::u16string_view path) override;

  private:
    DialogProcFor dialogProcs_;
};

}  // namespace kx20
