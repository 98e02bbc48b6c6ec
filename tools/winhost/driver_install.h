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

// The build's driver package: kx20.inf and the files it names.
std::wstring PackageFolder();

// Installs the driver from the INF in `packageFolder` (with a trailing backslash) the way a
// printer installer does: reads the INF, copies the files its CopyFiles name into the
// spooler's driver folder and registers the model it names with its driver, configuration,
// data and dependent files. Also copies kvorsmon.dll (the simulated port monitor, when built)
// into the system folder, where the driver's LoadLibrary finds it. Safe to call again: the
// files are replaced.
bool InstallDriverPackage(const std::wstring& packageFolder, std::wstring* error);
// The same from the build's package folder.
bool InstallDriver(std::wstring* error);

// Adds a printer of the driver on `port` (a unix file path: the spooler writes raw jobs
// there). A printer of that name on this driver and port is kept; on this driver and another
// port it is moved to `port`. A printer of that name on another driver is never taken for
// ours: the call fails with one line naming the printer, its driver and its port.
bool AddKx20Printer(const std::wstring& name, const std::wstring& port, std::wstring* error);

// The unix path of the raw-job port file of this prefix.
std::wstring DefaultPortPath();

}  // namespace kx20::winhost
