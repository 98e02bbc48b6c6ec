// The optional page module (Kvorsxps.dll): on the systems that want pages made rather than
// described, the driver hands each page description to GetXPPropSheetPage and adds the page
// handle it answers.
#include "platform/win32/windows_clean.h"

#include <commctrl.h>
#include <prsht.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH)
        DisableThreadLibraryCalls(instance);
    return TRUE;
}

// A page made from the description (which is copied); null when none can be made.
extern "C" __declspec(dllexport) HPROPSHEETPAGE WINAPI GetXPPropSheetPage(PROPSHEETPAGEW* page) {
    if (!page)
        return nullptr;
    PROPSHEETPAGEW copy = *page;
    copy.dwSize = sizeof copy;
    return CreatePropertySheetPageW(&copy);
}
