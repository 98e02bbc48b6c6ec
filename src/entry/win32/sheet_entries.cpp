// The property-sheet entries: DrvDevicePropertySheets with its common-sheet description and
// callback (the About box), and DrvDocumentPropertySheets (the document sheet, or without a
// sheet the device-mode service). The sheet's ports, its context and the description live in
// one record kept as the info's user data from INIT to DESTROY.
#include "platform/win32/windows_clean.h"

#include <compstui.h>

#include <memory>
#include <string>
#include <type_traits>

#include "entry/document_properties.h"
#include "entry/property_sheets.h"
#include "entry/win32/ddi_types.h"
#include "entry/win32/entry_support.h"
#include "pages/win32/page_procs.h"
#include "platform/trace.h"
#include "pages/win32/about_box.h"
#include "platform/win32/win32_platform.h"
#include "platform/win32/win32_pictures.h"
#include "platform/win32/win32_prompts.h"
#include "platform/win32/win32_sheets.h"
#include "platform/win32/win32_system.h"
#include "platform/win32/win32_text.h"

namespace kx20 {

namespace {

struct SheetState;

// What the info's user data points at: the common-sheet description, with the way back to the
// sheet's record right after it.
struct SheetRecord {
    COMPROPSHEETUI description;
    SheetState* owner;
};
static_assert(std::is_standard_layout_v<SheetRecord>);

struct SheetState {
    SheetState() { record.owner = this; }
    SheetState(const SheetState&) = delete;
    SheetState& operator=(const SheetState&) = delete;
    SheetRecord record{};
    Win32Platform platform;
    Win32System system{&PageDialogProc};
    Win32Prompts prompts;
    Win32Pictures pictures;
    SheetPorts ports{platform.ports, system, prompts, &pictures};
    std::unique_ptr<SheetContext> context;
    std::wstring callerName, helpFile, itemName;
};

SheetState* StateOf(const PROPSHEETUI_INFO* info) {
    auto* record = reinterpret_cast<SheetRecord*>(info->UserData);
    return record ? record->owner : nullptr;
}

LONG CALLBACK DeviceSheetCallback(PCPSUICBPARAM param) {
    if (!param)
        return CPSUICB_ACTION_NONE;
    DrvTrace(CallbackReasonTrace(param->Reason));
    if (param->Reason == kCallbackReasonAbout) {
        auto* context = reinterpret_cast<PageContext*>(param->UserData);
        const HINSTANCE resources =
            context ? reinterpret_cast<HINSTANCE>(context->resourceModule) : nullptr;
        ShowAboutBox(resources, param->hDlg, reinterpret_cast<LPARAM>(context));
    }
    return CPSUICB_ACTION_NONE;
}

// The common-sheet description of the device sheet, kept with the sheet.
void Describe(SheetState& s) {
    const PageContext& c = *s.context;
    s.callerName = ToWide(c.driverName);
    s.helpFile = ToWide(c.helpPath);
    s.itemName = ToWide(c.printerName);
    COMPROPSHEETUI& d = s.record.description;
    d.cbSize = sizeof d;
    d.Flags = kCommonSheetFlags;
    d.hInstCaller = DriverModuleHandle();
    d.pCallerName = s.callerName.data();
    d.UserData = reinterpret_cast<ULONG_PTR>(static_cast<PageContext*>(s.context.get()));
    d.pHelpFile = s.helpFile.data();
    d.pfnCallBack = DeviceSheetCallback;
    d.pOptItem = nullptr;
    d.pDlgPage = CPSUI_PDLGPAGE_PRINTERPROP;
    d.cOptItem = 0;
    d.cDlgPage = 1;
    d.IconID = kCommonSheetIcon;
    d.pOptItemName = s.itemName.data();
    d.CallerVersion = kCommonSheetVersion;
    d.OptItemVersion = kCommonSheetVersion;
}

// Runs one reason against the sheet's record: a fresh one at INIT (kept when INIT succeeds),
// the kept one afterwards (released at DESTROY).
template <class Run>
LONG WithSheetState(PROPSHEETUI_INFO* info, Run&& run) {
    SheetState* kept = StateOf(info);
    std::unique_ptr<SheetState> fresh;
    if (info->Reason == PROPSHEETUI_REASON_INIT || !kept) {
        fresh = std::make_unique<SheetState>();
        kept = nullptr;
    }
    SheetState& state = kept ? *kept : *fresh;
    Win32SheetService service(info->pfnComPropSheet, info->hComPropSheet, &PageDialogProc);
    std::intptr_t result = static_cast<std::intptr_t>(info->Result);
    SheetCall call{static_cast<std::int32_t>(info->Reason),
                   {},
                   info->pfnComPropSheet ? &service : nullptr,
                   &state.context,
                   &result};
    const LONG rc = run(state, call);
    info->Result = static_cast<LONG_PTR>(result);
    if (info->Reason == PROPSHEETUI_REASON_INIT && rc == 1 && state.context) {
        info->UserData = reinterpret_cast<ULONG_PTR>(&fresh.release()->record.description);
    } else if (info->Reason == PROPSHEETUI_REASON_DESTROY && kept) {
        delete kept;
        info->UserData = 0;
    }
    return rc;
}

}  // namespace

}  // namespace kx20

extern "C" __declspec(dllexport) LONG WINAPI
    DrvDevicePropertySheets(PROPSHEETUI_INFO* info, LPARAM lParam) {
    const kx20::TraceCall traceCall;
    using namespace kx20;
    if (!info)
        return -1;
    return WithSheetState(info, [&](SheetState& state, SheetCall& call) -> LONG {
        std::u16string printerName;
        if (call.reason == psui::kInit) {
            if (auto* header = reinterpret_cast<DevicePropertyHeader*>(lParam))
                printerName = FromWide(header->pszPrinterName);
        }
        call.printerName = printerName;
        const LONG rc = DevicePropertySheets(state.ports, call);
        if (call.reason == psui::kInit && rc == 1)
            Describe(state);
        return rc;
    });
}

extern "C" __declspec(dllexport) LONG WINAPI
    DrvDocumentPropertySheets(PROPSHEETUI_INFO* info, LPARAM lParam) {
    const kx20::TraceCall traceCall;
    using namespace kx20;
    auto* header = reinterpret_cast<DocumentPropertyHeader*>(info ? info->lParamInit : lParam);
    if (!header)
        return -1;
    const std::u16string printerName = TraceDocumentCall(
        static_cast<std::uint32_t>(lParam), info != nullptr, FromWide(header->pszPrinterName),
        Low32(header->pdmIn), Low32(header->pdmOut));
    std::int32_t outSize = static_cast<std::int32_t>(header->cbOut);
    MutableByteSpan out = OutputBuffer(header->pdmOut, header->cbOut);
    DocumentRequest request{printerName, DeclaredRecord(header->pdmIn), out, header->fMode,
                            outSize};

    if (!info || (header->fMode & kDmPrompt) == 0) {
        Win32Platform platform;
        const LONG result = DocumentPropertiesNoUi(platform.ports, request);
        header->cbOut = static_cast<DWORD>(outSize);
        return result;
    }
    if (IsSizeQuery(request)) {
        header->cbOut = static_cast<DWORD>(kDevModeSize);
        DrvTrace(u"  Returning %d\n", static_cast<int>(kDevModeSize));
        return static_cast<LONG>(kDevModeSize);
    }
    return WithSheetState(info, [&](SheetState& state, SheetCall& call) -> LONG {
        LoadCurrentDefaults(
            state.platform.ports, printerName,
            call.reason == psui::kInit ? DefaultsTrace::SheetInit : DefaultsTrace::Document);
        call.printerName = printerName;
        return DocumentPropertySheets(state.ports, call, {request.in, request.out, header->fMode});
    });
}
