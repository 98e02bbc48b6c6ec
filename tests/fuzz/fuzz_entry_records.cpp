// Device-mode records of any size and content where the entry points take them from outside:
// the records an older driver left in the spooler (upgraded), the job's record copied into its
// section, the caller's record the document sheet starts from, and the caller's output record
// the sheet's result goes to.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "entry/document_event.h"
#include "entry/document_properties.h"
#include "entry/printer_event.h"
#include "entry/property_sheets.h"
#include "platform/memory/memory_platform.h"
#include "platform/memory/memory_sections.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kx20;
    if (size < 2)
        return 0;
    // The first byte splits the rest into two records.
    const std::size_t split = 2 + (size - 2) * data[0] / 255;
    const Bytes first(data + 2, data + split), second(data + split, data + size);
    const std::uint32_t mode = data[1] & 0x0F;

    MemoryPlatform platform;
    auto& printer = platform.spooler.AddPrinter(u"KX20");
    printer.info.devMode = first;
    printer.userDevMode = second;
    UpgradePrinter(platform.p, 2, u"KX20");
    // Either left as it was or replaced by a whole record of this driver's size.
    const auto& stored = printer.info.devMode;
    if (stored && *stored != first && stored->size() != kDevModeSize)
        std::abort();

    MemorySections sections;
    HandleDocumentEvent(sections, 0x1234, docevent::kCreateDcPre, first);
    HandleDocumentEvent(sections, 0x1234, docevent::kDeleteDc, {});

    static bool loaded = false;
    if (!loaded) {
        CurrentDefaults() = gsDevMode();
        loaded = true;
    }
    SheetContext context;
    context.printerName = u"KX20";
    InitialisePageCopy(context, first, mode);
    if (ReadU16(context.pageCopy, kOffDmSize) != kDevModePublicSize ||
        ReadU16(context.pageCopy, kOffDmDriverExtra) != kDevModePrivateSize)
        std::abort();
    Bytes out = second;
    CopySheetResult(context.pageCopy, out);
    return 0;
}
