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

}  // namespace kx20::winetest
