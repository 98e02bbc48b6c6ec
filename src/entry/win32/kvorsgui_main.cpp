// Exported entry points of the driver's user-interface module. Each turns the caller's
// pointers into bounded spans and hands the work to the portable core over the Win32 ports.
// The property-sheet entries are in sheet_entries.cpp.
#include "platform/win32/windows_clean.h"

#include <cstddef>

#include "devmode/devmode.h"
#include "entry/capabilities.h"
#include "entry/document_event.h"
#include "entry/document_properties.h"
#include "entry/printer_event.h"
#include "entry/win32/ddi_types.h"
#include "entry/win32/entry_support.h"
#include "platform/trace.h"
#include "platform/win32/win32_platform.h"
#include "platform/win32/win32_prompts.h"
#include "platform/win32/win32_sections.h"
#include "platform/win32/win32_system.h"
#include "platform/win32/win32_text.h"

static_assert(offsetof(DEVMODEW, dmSpecVersion) == kx20::kOffDmSpecVersion);
static_assert(offsetof(DEVMODEW, dmSize) == kx20::kOffDmSize);
static_assert(offsetof(DEVMODEW, dmDriverExtra) == kx20::kOffDmDriverExtra);
static_assert(offsetof(DEVMODEW, dmFields) == kx20::kOffDmFields);
static_assert(offsetof(DEVMODEW, dmOrientation) == kx20::kOffDmOrientation);
static_assert(offsetof(DEVMODEW, dmPaperSize) == kx20::kOffDmPaperSize);
static_assert(offsetof(DEVMODEW, dmPaperLength) == kx20::kOffDmPaperLength);
static_assert(offsetof(DEVMODEW, dmPaperWidth) == kx20::kOffDmPaperWidth);
static_assert(offsetof(DEVMODEW, dmScale) == kx20::kOffDmScale);
static_assert(offsetof(DEVMODEW, dmCopies) == kx20::kOffDmCopies);
static_assert(offsetof(DEVMODEW, dmDefaultSource) == kx20::kOffDmDefaultSource);
static_assert(offsetof(DEVMODEW, dmPrintQuality) == kx20::kOffDmPrintQuality);
static_assert(offsetof(DEVMODEW, dmColor) == kx20::kOffDmColor);
static_assert(offsetof(DEVMODEW, dmDuplex) == kx20::kOffDmDuplex);
static_assert(offsetof(DEVMODEW, dmYResolution) == kx20::kOffDmYResolution);
static_assert(offsetof(DEVMODEW, dmTTOption) == kx20::kOffDmTTOption);
static_assert(offsetof(DEVMODEW, dmCollate) == kx20::kOffDmCollate);
static_assert(offsetof(DEVMODEW, dmFormName) == kx20::kOffDmFormName);
static_assert(offsetof(DEVMODEW, dmLogPixels) == kx20::kOffDmLogPixels);
static_assert(offsetof(DEVMODEW, dmBitsPerPel) == kx20::kOffDmBitsPerPel);
static_assert(offsetof(DEVMODEW, dmPelsWidth) == kx20::kOffDmPelsWidth);
static_assert(offsetof(DEVMODEW, dmPelsHeight) == kx20::kOffDmPelsHeight);
static_assert(offsetof(DEVMODEW, dmNup) == kx20::kOffDmNup);
static_assert(offsetof(DEVMODEW, dmDisplayFrequency) == kx20::kOffDmDisplayFrequency);
static_assert(offsetof(DEVMODEW, dmICMMethod) == kx20::kOffDmICMMethod);
static_assert(offsetof(DEVMODEW, dmICMIntent) == kx20::kOffDmICMIntent);
static_assert(offsetof(DEVMODEW, dmMediaType) == kx20::kOffDmMediaType);
static_assert(offsetof(DEVMODEW, dmDitherType) == kx20::kOffDmDitherType);
static_assert(offsetof(DEVMODEW, dmPanningHeight) == kx20::kOffDmPanningHeight);
static_assert(sizeof(DEVMODEW) == kx20::kDevModePublicSize);

namespace {

// The trace writes through its own adapters, which live as long as the module.
kx20::Win32FileSystem& TraceFiles() {
    static kx20::Win32FileSystem files;
    return files;
}
kx20::Win32Clock& TraceClock() {
    static kx20::Win32Clock clock;
    return clock;
}

}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) {
        kx20::SetDriverModuleHandle(instance);
        DisableThreadLibraryCalls(instance);
        kx20::SetTraceTarget(&TraceFiles(), &TraceClock());
    }
    return TRUE;
}

extern "C" __declspec(dllexport) BOOL WINAPI
    DrvConvertDevMode(LPWSTR printerName, DEVMODEW*, DEVMODEW* out, LONG* size, DWORD mode) {
    const kx20::TraceCall traceCall;
    using namespace kx20;
    Win32Platform platform;
    std::int32_t inOut = size ? *size : 0;
    MutableByteSpan outSpan;
    if (out && inOut > 0)
        outSpan = {reinterpret_cast<std::uint8_t*>(out), static_cast<std::size_t>(inOut)};
    std::uint32_t lastError = 0;
    bool ok =
        ConvertDevModeCore(platform.ports, FromWide(printerName), outSpan, inOut, mode, lastError);
    if (size)
        *size = inOut;
    if (!ok)
        SetLastError(lastError);
    return ok ? TRUE : FALSE;
}

// Only the low 16 bits of the capability count; the caller's output buffer is as large as the
// capability's answer needs.
extern "C" __declspec(dllexport) DWORD WINAPI
    DrvDeviceCapabilities(HANDLE, PWSTR deviceName, DWORD capability, PVOID output, DEVMODEW*) {
    const kx20::TraceCall traceCall;
    using namespace kx20;
    Win32Platform platform;
    Win32System system;
    MutableByteSpan out;
    if (output)
        out = {static_cast<std::uint8_t*>(output), CapabilityOutputSize(capability)};
    return static_cast<DWORD>(AnswerCapability(platform.ports, system, FromWide(deviceName),
                                               capability, out, output != nullptr));
}

// The create step's argument block is read as the driver has always read it: the job's device
// mode is its sixth pointer-sized member. A block too short to hold that member counts as one
// without a record.
extern "C" __declspec(dllexport) int WINAPI
    DrvDocumentEvent(HANDLE printer, HDC, int event, ULONG inSize, PVOID in, ULONG, PVOID) {
    const kx20::TraceCall traceCall;
    using namespace kx20;
    constexpr std::size_t kDevModeMember = 5;
    kx20::ByteSpan record;
    if (event == docevent::kCreateDcPre && in && inSize >= (kDevModeMember + 1) * sizeof(void*)) {
        auto* dm = static_cast<DEVMODEW**>(in)[kDevModeMember];
        record = DeclaredRecord(dm);
    }
    Win32Sections sections;
    return HandleDocumentEvent(sections, reinterpret_cast<std::uintptr_t>(printer), event, record);
}

extern "C" __declspec(dllexport) BOOL WINAPI
    DrvPrinterEvent(LPWSTR printerName, INT event, DWORD, LPARAM) {
    const kx20::TraceCall traceCall;
    using namespace kx20;
    Win32Platform platform;
    Win32Prompts prompts;
    return HandlePrinterEvent(platform.ports, prompts, FromWide(printerName), event) ? TRUE : FALSE;
}

extern "C" __declspec(dllexport) BOOL WINAPI DrvUpgradePrinter(DWORD level, LPBYTE info) {
    const kx20::TraceCall traceCall;
    using namespace kx20;
    auto* upgrade = reinterpret_cast<DriverUpgradeInfo*>(info);
    if (!upgrade)
        return TRUE;
    Win32Platform platform;
    return UpgradePrinter(platform.ports, level, FromWide(upgrade->pPrinterName)) ? TRUE : FALSE;
}

extern "C" __declspec(dllexport) BOOL WINAPI DevQueryPrintEx(void*) {
    return TRUE;
}

// Forwarded to the system's implementation, which the spooler's client library winspool.drv
// exports. Wine's winspool.drv exports the name as an unimplemented stub, whose call ends the
// calling process; under Wine the query answers TRUE, as DevQueryPrintEx does for every job.
extern "C" __declspec(dllexport) BOOL WINAPI
    DevQueryPrint(HANDLE printer, DEVMODEW* devMode, DWORD* resourceId) {
    const kx20::TraceCall traceCall;
    using Fn = BOOL(WINAPI*)(HANDLE, DEVMODEW*, DWORD*);
    if (GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version")) {
        kx20::DrvTrace(u"DevQueryPrint: no system implementation under Wine, returning TRUE\n");
        return TRUE;
    }
    HMODULE spool = LoadLibraryW(L"winspool.drv");
    if (!spool)
        return FALSE;
    auto fn = reinterpret_cast<Fn>(reinterpret_cast<void*>(GetProcAddress(spool, "DevQueryPrint")));
    BOOL result = fn ? fn(printer, devMode, resourceId) : FALSE;
    FreeLibrary(spool);
    return result;
}
