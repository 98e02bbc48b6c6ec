#include "pages/win32/page_procs.h"

#include <commctrl.h>

#include <string>

#include "pages/sheet_pages.h"

namespace kx20 {

namespace {

struct PageProc {
    std::uint32_t id;
    DLGPROC proc;
};

constexpr PageProc kPageProcs[] = {
    {1003, DeviceSettingsPageProc}, {1004, GuiOptionsDlgProc},     {1005, StationPageProc},
    {1006, StationPageProc},        {1007, GuiLogosDlgProc},       {1008, GuiMessagesDlgProc},
    {1009, GuiFontsDlgProc},        {1010, GuiMaintenanceDlgProc}, {1011, GuiLogSettingsDlgProc},
};

constexpr bool Covers(std::uint32_t id) {
    for (const PageProc& p : kPageProcs)
        if (p.id == id)
            return true;
    return false;
}

constexpr bool CoversAll() {
    for (std::uint32_t id : kDevicePages)
        if (!Covers(id))
            return false;
    for (std::uint32_t id : kDocumentPages)
        if (!Covers(id))
            return false;
    return true;
}
static_assert(CoversAll(), "every page of both sheets has a dialog procedure");

}  // namespace

DLGPROC PageDialogProc(std::uint32_t templateId) {
    for (const PageProc& p : kPageProcs)
        if (p.id == templateId)
            return p.proc;
    return nullptr;
}

}  // namespace kx20
