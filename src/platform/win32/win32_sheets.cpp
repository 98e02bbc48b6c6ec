#include "platform/win32/win32_sheets.h"

#include "platform/win32/win32_text.h"

namespace kx20 {

PROPSHEETPAGEW ToPropSheetPage(const PageDescription& page, DLGPROC proc, std::wstring& title) {
    title = ToWide(page.title);
    PROPSHEETPAGEW psp = {};
    psp.dwSize = sizeof psp;
    psp.dwFlags = page.flags;
    psp.hInstance = reinterpret_cast<HINSTANCE>(page.instance);
    psp.pszTemplate = MAKEINTRESOURCEW(page.templateId);
    psp.pfnDlgProc = proc;
    psp.pszTitle = title.c_str();
    psp.lParam = static_cast<LPARAM>(page.parameter);
    return psp;
}

std::intptr_t Win32SheetService::AddPage(const PageDescription& page) {
    if (!service_)
        return 0;
    std::wstring title;
    PROPSHEETPAGEW psp =
        ToPropSheetPage(page, dialogProcs_ ? dialogProcs_(page.templateId) : nullptr, title);
    // The service copies the description before it returns.
    return static_cast<std::intptr_t>(
        service_(sheet_, CPSFUNC_ADD_PROPSHEETPAGEW, reinterpret_cast<LPARAM>(&psp), 0));
}

std::intptr_t Win32SheetService::AddPageHandle(PageHandle page) {
    if (!service_)
        return 0;
    return static_cast<std::intptr_t>(
        service_(sheet_, CPSFUNC_ADD_HPROPSHEETPAGE, static_cast<LPARAM>(page), 0));
}

void Win32SheetService::Notify(WindowId window, std::uint32_t message) {
    SendMessageW(reinterpret_cast<HWND>(window), message, 0, 0);
}

}  // namespace kx20
