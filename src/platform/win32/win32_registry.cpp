#include "platform/win32/win32_registry.h"

#include "platform/win32/windows_clean.h"

#include <sddl.h>

#include <vector>

#include "platform/win32/win32_text.h"

namespace kx20 {

namespace {

HKEY RootOf(Hive hive) {
    return hive == Hive::LocalMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
}

REGSAM SamOf(KeyAccess access) {
    switch (access) {
        case KeyAccess::Read:
            return KEY_READ;
        case KeyAccess::ReadWrite:
            return KEY_READ | KEY_WRITE;
        case KeyAccess::AllAccess:
            return KEY_ALL_ACCESS;
    }
    return KEY_READ;
}

class Win32Key : public RegistryKey {
  public:
    explicit Win32Key(HKEY key) : key_(key) {}
    ~Win32Key() override { RegCloseKey(key_); }

    long QueryValue(std::u16string_view name, std::uint32_t* type, std::uint8_t* data,
                    std::uint32_t* size) override {
        std::wstring n = ToWide(name);
        DWORD t = 0;
        DWORD s = size ? *size : 0;
        LONG rc = RegQueryValueExW(key_, n.c_str(), nullptr, &t, data, size ? &s : nullptr);
        if (type)
            *type = t;
        if (size)
            *size = s;
        return rc;
    }
    long SetValue(std::u16string_view name, std::uint32_t type, ByteSpan data) override {
        std::wstring n = ToWide(name);
        return RegSetValueExW(key_, n.c_str(), 0, type, data.data(),
                              static_cast<DWORD>(data.size()));
    }
    long DeleteValue(std::u16string_view name) override {
        std::wstring n = ToWide(name);
        return RegDeleteValueW(key_, n.c_str());
    }
    long EnumValue(std::uint32_t index, std::u16string& name) override {
        wchar_t buf[kRegMaxValueName + 1];
        DWORD chars = static_cast<DWORD>(kRegMaxValueName + 1);
        LONG rc = RegEnumValueW(key_, index, buf, &chars, nullptr, nullptr, nullptr, nullptr);
        if (rc == ERROR_SUCCESS)
            name = FromWide(std::wstring_view(buf, chars));
        return rc;
    }

  private:
    HKEY key_;
};

struct LocalSid {
    PSID sid = nullptr;
    ~LocalSid() {
        if (sid)
            LocalFree(sid);
    }
};

}  // namespace

std::unique_ptr<RegistryKey> Win32Registry::OpenKey(Hive hive, std::u16string_view path,
                                                    KeyAccess access) {
    HKEY key = nullptr;
    std::wstring p = ToWide(path);
    if (RegOpenKeyExW(RootOf(hive), p.c_str(), 0, SamOf(access), &key) != ERROR_SUCCESS)
        return nullptr;
    return std::make_unique<Win32Key>(key);
}

std::unique_ptr<RegistryKey> Win32Registry::CreateKey(Hive hive, std::u16string_view path) {
    HKEY key = nullptr;
    std::wstring p = ToWide(path);
    if (RegCreateKeyExW(RootOf(hive), p.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                        KEY_ALL_ACCESS, nullptr, &key, nullptr) != ERROR_SUCCESS)
        return nullptr;
    return std::make_unique<Win32Key>(key);
}

bool Win32Registry::SetKeyAccessList(Hive hive, std::u16string_view path,
                                     std::span<const AccessEntry> entries) {
    HKEY key = nullptr;
    std::wstring p = ToWide(path);
    if (RegOpenKeyExW(RootOf(hive), p.c_str(), 0, WRITE_DAC, &key) != ERROR_SUCCESS)
        return false;
    std::vector<LocalSid> sids(entries.size());
    DWORD aclSize = sizeof(ACL);
    bool ok = true;
    for (std::size_t i = 0; i < entries.size() && ok; ++i) {
        std::wstring s = ToWide(entries[i].sid);
        ok = ConvertStringSidToSidW(s.c_str(), &sids[i].sid) != FALSE;
        if (ok)
            aclSize += sizeof(ACCESS_ALLOWED_ACE) - sizeof(DWORD) + GetLengthSid(sids[i].sid);
    }
    std::vector<std::uint8_t> aclBuffer(aclSize);
    PACL acl = reinterpret_cast<PACL>(aclBuffer.data());
    ok = ok && InitializeAcl(acl, aclSize, ACL_REVISION);
    for (std::size_t i = 0; i < entries.size() && ok; ++i)
        ok = AddAccessAllowedAce(acl, ACL_REVISION, entries[i].mask, sids[i].sid) != FALSE;
    SECURITY_DESCRIPTOR sd;
    ok = ok && InitializeSecurityDescriptor(&sd, SECURITY_DESCRIPTOR_REVISION);
    ok = ok && SetSecurityDescriptorDacl(&sd, TRUE, acl, FALSE);
    ok = ok && RegSetKeySecurity(key, DACL_SECURITY_INFORMATION, &sd) == ERROR_SUCCESS;
    RegCloseKey(key);
    return ok;
}

long Win32Registry::FlushHive(Hive hive) {
    return RegFlushKey(RootOf(hive));
}

}  // namespace kx20
