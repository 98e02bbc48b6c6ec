// What the Wine tests expect of the sheets' pages: the ids and titles in order. (The controls
// each page uses are reached by the page tests, device_pages_test and document_pages_test.)
#pragma once

#include "platform/win32/windows_clean.h"

#include <string>
#include <vector>

#include "tools/winhost/window_script.h"

namespace kx20::winetest {

using winhost::FindThreadDialog;
using winhost::FindThreadPropertySheet;
using winhost::ModalDriver;
using winhost::SaveScreenshot;
using winhost::SheetTabTitles;

struct ExpectedPage {
    UINT id;
    const wchar_t* title;
};

const std::vector<ExpectedPage>& DevicePages();
const std::vector<ExpectedPage>& DocumentPages();

// What a walk through a shown sheet found.
struct SheetWalk {
    std::vector<std::wstring> titles;
    std::vector<std::wstring> missing;      // the titles of the pages that did not show
    std::vector<std::wstring> screenshots;  // the names of the screenshots that were saved
    bool closed = false;
};

// The steps that visit every page of a shown sheet in turn, check that it shows, save a
// screenshot of each (named `prefix`-N-title) and close the sheet with its Cancel button.
std::vector<ModalDriver::Step> WalkSheet(const std::vector<ExpectedPage>& pages,
                                         const std::wstring& prefix, SheetWalk& walk);

}  // namespace kx20::winetest
