// <windows.h> and <winspool.h> without the name-switching macros that collide with the
// method names of the ports (GetPrinter -> GetPrinterW and so on). Win32 code includes this
// instead of the system headers and calls the wide functions by their full names.
#pragma once

#include <windows.h>
#include <winspool.h>

#undef GetPrinter
#undef SetPrinter
#undef GetPrinterDriver
#undef GetPrinterData
#undef SetPrinterData
#undef SetPrinterDataEx
#undef ResetPrinter
#undef StartDoc
#undef OpenPrinter
