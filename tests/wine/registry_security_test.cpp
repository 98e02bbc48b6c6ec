// The access list the module stamps on its machine-wide keys, read back through the system.
#include "platform/win32/windows_clean.h"

#include <aclapi.h>
#include <sddl.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/win32/win32_platform.h"
#include "platform/win32/win32_text.h"
#include "store/registry_layout.h"

namespace kx20::winetest {
namespace {

std::wstring SidText(PSID sid) {
    LPWSTR text = nullptr;
    if (!ConvertSidToStringSidW(sid, &text))
        return L"?";
    std::wstring s(text);
    LocalFree(text);
    return s;
}

TEST(RegistrySecurity, StampedKeyCarriesTheThreeTrustees) {
    Win32Platform platform;
    const std::u16string path = store::PortKeyPath(u"KX20_SECURITY_TEST");
    // The stamp needs an existing key: the first open creates it, the second stamps it.
    auto created = platform.registry.CreateKey(Hive::LocalMachine, path);
    ASSERT_NE(created, nullptr);
    created.reset();
    ASSERT_TRUE(store::SetKeySecurity(platform.ports, path));

    HKEY key = nullptr;
    std::wstring wpath = ToWide(path);
    ASSERT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, wpath.c_str(), 0, READ_CONTROL, &key),
              ERROR_SUCCESS);
    DWORD size = 0;
    RegGetKeySecurity(key, DACL_SECURITY_INFORMATION, nullptr, &size);
    std::vector<std::uint8_t> sd(size);
    ASSERT_EQ(RegGetKeySecurity(key, DACL_SECURITY_INFORMATION, sd.data(), &size), ERROR_SUCCESS);
    RegCloseKey(key);

    BOOL present = FALSE, defaulted = FALSE;
    PACL acl = nullptr;
    ASSERT_TRUE(GetSecurityDescriptorDacl(sd.data(), &present, &acl, &defaulted));
    ASSERT_TRUE(present);
    ASSERT_NE(acl, nullptr);
    EXPECT_EQ(acl->AclRevision, ACL_REVISION);
    ASSERT_EQ(acl->AceCount, 3);
    const wchar_t* expected[] = {L"S-1-5-32-544", L"S-1-5-11", L"S-1-5-4"};
    for (DWORD i = 0; i < 3; ++i) {
        void* ace = nullptr;
        ASSERT_TRUE(GetAce(acl, i, &ace));
        auto* allowed = static_cast<ACCESS_ALLOWED_ACE*>(ace);
        EXPECT_EQ(allowed->Header.AceType, ACCESS_ALLOWED_ACE_TYPE);
        EXPECT_EQ(allowed->Header.AceFlags, 0);
        EXPECT_EQ(allowed->Mask, static_cast<DWORD>(KEY_ALL_ACCESS));
        EXPECT_EQ(SidText(&allowed->SidStart), expected[i]);
    }
}

TEST(RegistrySecurity, StampFailsForMissingKey) {
    Win32Platform platform;
    EXPECT_FALSE(store::SetKeySecurity(platform.ports, store::PortKeyPath(u"KX20_NO_SUCH_PORT")));
}

}  // namespace
}  // namespace kx20::winetest
