// The installed driver and printer that every Wine test works against.
#pragma once

#include "platform/win32/windows_clean.h"

#include <string>

namespace kx20::winetest {

inline constexpr wchar_t kPrinterName[] = L"KX20";

// The printer's port (a unix file path the spooler writes raw jobs to).
const std::wstring& PortPath();

// A printer handle for the test's printer, closed on destruction.
class ScopedPrinter {
  public:
    explicit ScopedPrinter(const wchar_t* name = kPrinterName);
    ~ScopedPrinter();
    HANDLE get() const { return h_; }

  private:
    HANDLE h_ = nullptr;
};

// The installed driver module (kvorsgui.dll in the spooler's driver folder), loaded for a
// test that calls its entries directly where Wine never calls them.
class DriverModule {
  public:
    DriverModule();
    ~DriverModule();
    DriverModule(const DriverModule&) = delete;
    DriverModule& operator=(const DriverModule&) = delete;
    HMODULE get() const { return module_; }
    template <class Fn>
    Fn Entry(const char* name) const {
        return reinterpret_cast<Fn>(reinterpret_cast<void*>(GetProcAddress(module_, name)));
    }
    // The driver folder (with the "3" subfolder) the module was loaded from, with a trailing
    // backslash.
    static std::wstring Folder();

  private:
    HMODULE module_ = nullptr;
};

// The test program started again as a helper process: runs `role` with `argument` and answers
// its exit code, and its standard output in `output`. Answers -1 when it cannot be started.
// `program` is another copy of the test program to start instead of this one.
int RunChildRole(const std::wstring& role, const std::wstring& argument, std::string* output,
                 const std::wstring& program = L"");

// The roles the test program plays when started as a helper (wmain dispatches to this when its
// first argument is "--child-role").
int ChildRoleMain(const std::wstring& role, const std::wstring& argument);

}  // namespace kx20::winetest
