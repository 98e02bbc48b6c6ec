#include "tests/wine/sheet_pages.h"

#include <commctrl.h>

namespace kx20::winetest {

const std::vector<ExpectedPage>& DevicePages() {
    static const std::vector<ExpectedPage> pages = {
        {1007, L"Logos"}, {1008, L"Messages"}, {1009, L"Fonts"},
        {1010, L"Maintenance"}, {1011, L"Log Settings"},
    };
    return pages;
}

const std::vector<ExpectedPage>& DocumentPages() {
    static const std::vector<ExpectedPage> pages = {
        {1003, L"Device Settings"}, {1004, L"Options"},
        {1005, L"Receipt Station"}, {1006, L"Document Station"},
    };
    return pages;
}

std::vector<ModalDriver::Step> WalkSheet(const std::vector<ExpectedPage>& pages,
                                         const std::wstring& prefix, SheetWalk& walk) {
    std::vector<ModalDriver::Step> steps;
    steps.push_back([&walk](HWND sheet) {
        walk.titles = SheetTabTitles(sheet);
        return true;
    });
    for (std::size_t i = 0; i < pages.size(); ++i) {
        steps.push_back([i](HWND sheet) {
            SendMessageW(sheet, PSM_SETCURSEL, i, 0);
            RedrawWindow(sheet, nullptr, nullptr,
                         RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
            return true;
        });
        // A tick later the sheet has been drawn and handed to the display.
        steps.push_back([i, &pages, &walk, prefix](HWND sheet) {
            const ExpectedPage& expected = pages[i];
            HWND page = reinterpret_cast<HWND>(SendMessageW(sheet, PSM_GETCURRENTPAGEHWND, 0, 0));
            if (!page)
                walk.missing.push_back(expected.title);
            std::wstring name = prefix + L"-" + std::to_wstring(i + 1) + L"-" + expected.title;
            for (auto& c : name)
                if (c == L' ')
                    c = L'-';
            if (SaveScreenshot(name))
                walk.screenshots.push_back(name);
            return true;
        });
    }
    steps.push_back([&walk](HWND sheet) {
        SendMessageW(sheet, PSM_PRESSBUTTON, PSBTN_CANCEL, 0);
        walk.closed = true;
        return true;
    });
    return steps;
}

}  // namespace kx20::winetest
