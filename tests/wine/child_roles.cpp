// The roles the test program plays as a helper process.
#include "platform/win32/windows_clean.h"

#include <string>

#include "tests/wine/wine_environment.h"

namespace kx20::winetest {

int ReadSectionRole(const std::wstring& name);
int DeviceSheetPagesRole(const std::wstring& driverPath);

int ChildRoleMain(const std::wstring& role, const std::wstring& argument) {
    if (role == L"read-section")
        return ReadSectionRole(argument);
    if (role == L"device-sheet-pages")
        return DeviceSheetPagesRole(argument);
    return 1;
}

}  // namespace kx20::winetest
