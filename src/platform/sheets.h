// The common property-sheet service as the driver sees it: the function handed to the sheet
// entries that adds pages, either as page descriptions or as pages already made; and the
// optional page module that makes a page from a description.
#pragma once

#include <cstdint>
#include <string>

#include "platform/prompts.h"

namespace kx20 {

// Handles travel through the core as opaque numbers.
using ModuleId = std::uintptr_t;
using PageHandle = std::uintptr_t;

// Page flags of every page the driver adds: a title of its own, a Help button, and creation
// before the page is first shown (PSP_USETITLE | PSP_HASHELP | PSP_PREMATURE).
inline constexpr std::uint32_t kPageFlags = 0x428;

// One page as the driver describes it. The dialog template and the title have the same
// number, which also names the page in the driver's page table.
struct PageDescription {
    std::uint32_t templateId = 0;
    std::u16string title;  // at most 255 characters
    std::uint32_t flags = 0;
    ModuleId instance = 0;         // the module holding the template; 0 when it did not load
    std::uintptr_t parameter = 0;  // handed to the page at its creation (the page context)
};

class SheetService {
  public:
    virtual ~SheetService() = default;
    // CPSFUNC_ADD_PROPSHEETPAGEW: the service copies the description. Answers the service's
    // result (a handle to the added page, 0 on failure).
    virtual std::intptr_t AddPage(const PageDescription& page) = 0;
    // CPSFUNC_ADD_HPROPSHEETPAGE with a page already made.
    virtual std::intptr_t AddPageHandle(PageHandle page) = 0;
    // Sends a message to the sheet's window (both parameters 0).
    virtual void Notify(WindowId window, std::uint32_t message) = 0;
};

// The optional page module's page maker; destroying it releases the module.
class PageModule {
  public:
    virtual ~PageModule() = default;
    // A page made from the description; 0 when the module made none.
    virtual PageHandle CreatePage(const PageDescription& page) = 0;
};

}  // namespace kx20
