// Driver-interface structures of the printer UI entry points that the MinGW headers lack,
// laid out as the system passes them.
#pragma once

#include <compstui.h>
#include "platform/win32/windows_clean.h"

namespace kx20 {

struct DocumentPropertyHeader {
    WORD cbSize;
    WORD Reserved;
    HANDLE hPrinter;
    LPWSTR pszPrinterName;
    DEVMODEW* pdmIn;
    DEVMODEW* pdmOut;
    DWORD cbOut;
    DWORD fMode;
};

// The first member of the upgrade information of levels 1 and 2.
struct DriverUpgradeInfo {
    LPWSTR pPrinterName;
};

struct DevicePropertyHeader {
    WORD cbSize;
    WORD Flags;
    HANDLE hPrinter;
    LPWSTR pszPrinterName;
};

}  // namespace kx20
