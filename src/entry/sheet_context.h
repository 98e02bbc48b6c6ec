// What a sheet owns for its whole life: the page context its pages receive, the printer
// settings object and resource module it opened, and the document sheet's page copy.
#pragma once

#include <memory>

#include "devmode/devmode.h"
#include "devmode/printer_settings.h"
#include "entry/resource_module.h"
#include "pages/page_context.h"

namespace kx20 {

struct SheetContext : PageContext {
    std::unique_ptr<PrinterSettings> settings;
    std::unique_ptr<ResourceModule> resources;
    // The document sheet's page copy (docDevMode points at it once it is made).
    DevModeImage pageCopy{};
    // The host asked for the result (SET_RESULT); a host that never does gets the page copy
    // when the sheet is destroyed.
    bool resultDelivered = false;
};

}  // namespace kx20
