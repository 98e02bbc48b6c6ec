#include "entry/property_sheets.h"

#include <algorithm>
#include <cstring>

#include "entry/document_properties.h"
#include "platform/trace.h"
#include "store/registry_layout.h"

namespace kx20 {

namespace {

constexpr std::u16string_view kDeviceReasons[] = {
    u"PROPSHEETUI_REASON_INIT\n", u"PROPSHEETUI_REASON_GET_INFO_HEADER\n",
    u"PROPSHEETUI_REASON_DESTROY\n", u"PROPSHEETUI_REASON_SET_RESULT\n",
    u"PROPSHEETUI_REASON_GET_ICON\n"};

constexpr std::u16string_view kCallbackReasons[] = {
    u"CPSUICB_REASON_SEL_CHANGED\n",    u"CPSUICB_REASON_PUSHBUTTON\n",
    u"CPSUICB_REASON_ECB_CHANGED\n",    u"CPSUICB_REASON_DLGPROC\n",
    u"CPSUICB_REASON_UNDO_CHANGES",     u"CPSUICB_REASON_EXTPUSH\n",
    u"CPSUICB_REASON_APPLYNOW\n",       u"CPSUICB_REASON_OPTITEM_SETFOCUS\n",
    u"CPSUICB_REASON_ITEMS_REVERTED\n", u"CPSUICB_REASON_ABOUT\n"};

PortSummary ReadPortSummary(Platform& p, std::u16string_view printerName) {
    PortSummary summary;
    store::ConnectionStatus status;
    if (store::GetConnectionStatus(p, store::PrinterPortName(p, printerName), status)) {
        summary.present = true;
        summary.modelCode = status.modelCode;
        summary.firmwareLevel = status.firmwareLevel;
        summary.connected = status.connected;
        summary.identity = status.identity;
    }
    return summary;
}

std::int32_t DeviceInit(const SheetPorts& ports, const SheetCall& call) {
    auto context = OpenSheetContext(ports, call.printerName);
    if (!context)
        return -1;
    if (call.sheet) {
        PageAdder adder(ports.system, *call.sheet, *context);
        adder.AddAll(kDevicePages);
    }
    *call.context = std::move(context);
    *call.result = 1;
    DrvTrace(u"  Returning %d\n", 1);
    return 1;
}

std::int32_t DocumentInit(const SheetPorts& ports, const SheetCall& call,
                          const DocumentRecords& records) {
    auto context = OpenSheetContext(ports, call.printerName);
    if (!context)
        return -1;
    InitialisePageCopy(*context, records.in, records.mode);
    if (call.sheet) {
        PageAdder adder(ports.system, *call.sheet, *context);
        adder.AddAll(kDocumentPages);
        if (context->sheetWindow)
            call.sheet->Notify(context->sheetWindow, kSheetWindowMessage);
    }
    *call.context = std::move(context);
    *call.result = 1;
    return 1;
}

}  // namespace

bool IsNewerSystem(const SystemVersion& version) {
    return version.major == 5 && version.minor != 0;
}

PageDescription DescribePage(PageContext& context, std::uint32_t id) {
    PageDescription page;
    page.templateId = id;
    if (context.strings)
        page.title = context.strings->Load(id).value_or(u"");
    page.flags = kPageFlags;
    page.instance = context.resourceModule;
    page.parameter = reinterpret_cast<std::uintptr_t>(&context);
    return page;
}

PageAdder::PageAdder(SystemServices& system, SheetService& sheet, PageContext& context)
    : system_(system), sheet_(sheet), context_(context) {
    newer_ = IsNewerSystem(system_.Version());
    if (!newer_)
        return;
    savedFolder_ = system_.WorkingFolder();
    const std::u16string_view help = context_.helpPath;
    const std::size_t slash = help.find_last_of(u'\\');
    system_.ChangeWorkingFolder(help.substr(0, slash == std::u16string_view::npos ? 0 : slash));
    PageModuleLoad status = PageModuleLoad::Loaded;
    module_ = system_.LoadPageModule(kPageModuleName, kPageModuleExport, status);
    if (!module_) {
        // Without the module no page can be made; every page is skipped.
        DrvTrace(u"   Error -- LoadLibrary() failed!\n");
    }
}

PageAdder::~PageAdder() {
    if (!newer_)
        return;
    system_.ChangeWorkingFolder(savedFolder_);
    module_.reset();
}

void PageAdder::Add(std::uint32_t id) {
    const PageDescription page = DescribePage(context_, id);
    if (!newer_) {
        sheet_.AddPage(page);
        return;
    }
    if (!module_)
        return;
    if (const PageHandle handle = module_->CreatePage(page))
        sheet_.AddPageHandle(handle);
}

void PageAdder::AddAll(std::span<const std::uint32_t> ids) {
    for (std::uint32_t id : ids) Add(id);
}

std::unique_ptr<SheetContext> OpenSheetContext(const SheetPorts& ports,
                                              std::u16string_view printerName) {
    auto settings =
        std::make_unique<PrinterSettings>(ports.platform, printerName, kPrinterAllAccess);
    if (!OpenWithReadFallback(*settings))
        return nullptr;
    const PrinterInfo* info = settings->PrinterInformation(2);
    if (!info)
        return nullptr;
    auto context = std::make_unique<SheetContext>();
    context->platform = &ports.platform;
    context->prompts = &ports.prompts;
    context->pictures = ports.pictures;
    context->printerName = std::u16string(printerName);
    context->driverName = info->driverName;
    context->resources = std::make_unique<ResourceModule>(ports.system, *settings);
    context->strings = &context->resources->Strings();
    context->helpPath = context->resources->HelpPath();
    context->resourceModule = context->resources->Id();
    context->port = ReadPortSummary(ports.platform, printerName);
    context->settings = std::move(settings);
    return context;
}

std::int32_t DevicePropertySheets(const SheetPorts& ports, const SheetCall& call) {
    if (call.reason < psui::kInit || call.reason > psui::kGetIcon) {
        DrvTrace(u"PROPSHEETUI_REASON_ unknown!!!\n");
        return -1;
    }
    DrvTrace(kDeviceReasons[call.reason]);
    switch (call.reason) {
        case psui::kInit:
            return DeviceInit(ports, call);
        case psui::kDestroy:
            call.context->reset();
            return 1;
        default:
            return 1;
    }
}

namespace {

// The page copy into the caller's output record, unless they are the same memory.
void ReturnPageCopy(const SheetContext& context, MutableByteSpan out) {
    if (!out.empty() && static_cast<const void*>(context.pageCopy.data()) !=
                            static_cast<const void*>(out.data()))
        CopySheetResult(context.pageCopy, out);
}

}  // namespace

std::int32_t DocumentPropertySheets(const SheetPorts& ports, const SheetCall& call,
                                    const DocumentRecords& records) {
    switch (call.reason) {
        case psui::kInit:
            return DocumentInit(ports, call, records);
        case psui::kSetResult:
            if (*call.context) {
                (*call.context)->resultDelivered = true;
                ReturnPageCopy(**call.context, records.out);
            }
            *call.result = 1;
            return 1;
        case psui::kDestroy:
            // A host without SET_RESULT (Wine's common sheet service) would otherwise lose
            // what the user applied: the same copy is made on the way out.
            if (*call.context && (*call.context)->pageCopyApplied &&
                !(*call.context)->resultDelivered) {
                DrvTrace(u"  no SET_RESULT from the host: returning the applied page copy\n");
                ReturnPageCopy(**call.context, records.out);
            }
            call.context->reset();
            return 1;
        case psui::kGetInfoHeader:
            DrvTrace(u"Reason = PROPSHEETUI_REASON_GET_INFO_HEADER\n");
            return 1;
        case psui::kGetIcon:
            DrvTrace(u"Reason = PROPSHEETUI_REASON_ICON\n");
            return 1;
        default:
            DrvTrace(u"UNKNOWN Reason = %d\n", call.reason);
            DrvTrace(u"  Returning -1\n");
            return -1;
    }
}

void InitialisePageCopy(SheetContext& context, ByteSpan in, std::uint32_t mode) {
    context.pageCopy = CurrentDefaults();
    context.docDevMode = MutableByteSpan(context.pageCopy);
    if (in.empty() || (mode & kDmInBuffer) == 0)
        return;
    // The completion writes into its input record: it works on a copy of the caller's.
    Bytes input(in.begin(), in.end());
    Bytes filled(kDevModeSize, 0);
    std::int32_t outSize = static_cast<std::int32_t>(kDevModeSize);
    DocumentRequest request{context.printerName, input, filled, kDmInBuffer | kDmOutBuffer,
                            outSize};
    FillFromDefaults(request);
    // The pages work on a whole record of this driver: the completed public members (as far
    // as the caller's public part goes), the private part that followed them, and this
    // driver's sizes.
    const std::size_t privateAt = std::min<std::size_t>(ReadU16(input, kOffDmSize), kDevModeSize);
    std::copy_n(filled.begin(), std::min(privateAt, kDevModePublicSize), context.pageCopy.begin());
    const std::size_t privateBytes = std::min(kDevModePrivateSize, kDevModeSize - privateAt);
    std::copy_n(filled.begin() + static_cast<std::ptrdiff_t>(privateAt), privateBytes,
                context.pageCopy.begin() + kDevModePublicSize);
    WriteU16(context.pageCopy, kOffDmSize, static_cast<std::uint16_t>(kDevModePublicSize));
    WriteU16(context.pageCopy, kOffDmDriverExtra, static_cast<std::uint16_t>(kDevModePrivateSize));
}

std::size_t CopySheetResult(const DevModeImage& pageCopy, MutableByteSpan out) {
    auto total = [](ByteSpan r) {
        return static_cast<std::size_t>(ReadU16(r, kOffDmSize)) + ReadU16(r, kOffDmDriverExtra);
    };
    const std::size_t n = std::min({total(pageCopy), total(out), out.size(), pageCopy.size()});
    if (n > 0)
        std::memmove(out.data(), pageCopy.data(), n);
    return n;
}

std::u16string_view CallbackReasonTrace(std::int32_t reason) {
    if (reason >= 0 && reason < static_cast<std::int32_t>(std::size(kCallbackReasons)))
        return kCallbackReasons[reason];
    return u"CPSUIB_REASON_ unknown!!!\n";
}

}  // namespace kx20
