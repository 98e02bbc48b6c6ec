// The common property-sheet service through the function the sheet entries are handed
// (pfnComPropSheet with its sheet handle), and the conversion of the core's page
// descriptions into the system's PROPSHEETPAGEW.
#pragma once

#include "platform/win32/windows_clean.h"

#include <commctrl.h>
#include <compstui.h>

#include <string>

#include "platform/sheets.h"

namespace kx20 {

// The dialog procedure of a page, by its template number; null when the driver has none.
using DialogProcFor = DLGPROC (*)(std::uint32_t templateId);

// A PROPSHEETPAGEW for the description; `title` keeps the title text alive as long as the
// page structure is used.
PROPSHEETPAGEW ToPropSheetPage(const PageDescription& page, DLGPROC proc, std::wstring& title);

class Win32SheetService : public SheetService {
  public:
    Win32SheetService(PFNCOMPROPSHEET service, HANDLE sheet, DialogProcFor dialogProcs)
        : service_(service), sheet_(sheet), dialogProcs_(dialogProcs) {}
    std::intptr_t AddPage(const PageDescription& page) override;
    std::intptr_t AddPageHandle(PageHandle page) override;
    void Notify(WindowId window, std::uint32_t message) override;

  private:
    PFNCOMPROPSHEET service_;
    HANDLE sheet_;
    DialogProcFor dialogProcs_;
};

}  // namespace kx20
