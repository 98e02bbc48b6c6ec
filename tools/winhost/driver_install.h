// Installs the built driver files and a KX20 printer into the spooler of the running system
// (a Wine prefix in tests and in the demo).
#pragma once

#include "platform/win32/windows_clean.h"

#include <string>

namespace kx20::winhost {

inline constexpr wchar_t kDriverName[] = L"KVO KX20";
inline constexpr wchar_t kEnvironment[] = L"Windows x64";

// The folder of the running program, with a trailing backslash; the built DLLs lie there.
std::wstring ProgramFolder();

// Copies kvorsgui.dll, KVORSENU.DLL and Kvorsxps.dll into the spooler's driver folder and
// registers the driver; copies kvorsmon.dll (when built) into the system folder, where the
// driver's LoadLibrary finds it. Safe to call again: the files are replaced.
bool InstallDriver(std::wstring* error);

// Adds a printer of the driver on `port` (a unix file path: the spooler writes raw jobs
// there). An existing printer of that name is kept.
bool AddKx20Printer(const std::wstring& name, const std::wstring& port, std::wstring* error);

// The unix path of the raw-job port file of this prefix.
std::wstring DefaultPortPath();

}  // namespace kx20::winhost
