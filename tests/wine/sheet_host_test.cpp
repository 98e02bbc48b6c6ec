// Both sheets through the real host paths: the device sheet as the printer-properties user
// interface of Windows shows it (CommonPropertySheetUIW with DrvDevicePropertySheets, which
// first gets the common sheet's own reason 5), and the document sheet through
// DocumentPropertiesW with DM_IN_PROMPT, which Wine hands to its compstui. Every page is
// visited, its controls checked and a screenshot saved; the test closes the sheet itself.
#include "platform/win32/windows_clean.h"

#include <compstui.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "entry/win32/ddi_types.h"
#include "tests/wine/sheet_pages.h"
#include "tests/wine/wine_environment.h"

namespace kx20::winetest {
namespace {

std::vector<std::wstring> Titles(const std::vector<ExpectedPage>& pages) {
    std::vector<std::wstring> titles;
    for (const auto& p : pages) titles.emplace_back(p.title);
    return titles;
}

TEST(SheetHost, DeviceSheetThroughCommonPropertySheetUI) {
    DriverModule driver;
    auto entry = driver.Entry<PFNPROPSHEETUI>("DrvDevicePropertySheets");
    ASSERT_NE(entry, nullptr);
    ScopedPrinter printer;
    ASSERT_NE(printer.get(), nullptr);
    DevicePropertyHeader header{sizeof(DevicePropertyHeader), 0, printer.get(),
                                const_cast<LPWSTR>(kPrinterName)};
    SheetWalk walk;
    ModalDriver script(FindThreadPropertySheet, WalkSheet(DevicePages(), L"device-sheet", walk));
    DWORD result = 0;
    const LONG rc =
        CommonPropertySheetUIW(nullptr, entry, reinterpret_cast<LPARAM>(&header), &result);
    EXPECT_GE(rc, 0);
    ASSERT_TRUE(script.SawWindow()) << "no property sheet appeared";
    EXPECT_TRUE(script.Finished());
    EXPECT_TRUE(walk.closed);
    EXPECT_EQ(walk.titles, Titles(DevicePages()));
    EXPECT_TRUE(walk.missing.empty())
        << std::string(walk.missing.front().begin(), walk.missing.front().end());
    EXPECT_EQ(walk.screenshots.size(), DevicePages().size());
}

TEST(SheetHost, DocumentSheetThroughDocumentPropertiesWithPrompt) {
    ScopedPrinter printer;
    ASSERT_NE(printer.get(), nullptr);
    std::vector<std::uint8_t> out(6004, 0);
    SheetWalk walk;
    ModalDriver script(FindThreadPropertySheet,
                       WalkSheet(DocumentPages(), L"document-sheet", walk));
    const LONG rc = DocumentPropertiesW(nullptr, printer.get(), const_cast<LPWSTR>(kPrinterName),
                                        reinterpret_cast<DEVMODEW*>(out.data()), nullptr,
                                        DM_IN_PROMPT | DM_OUT_BUFFER);
    EXPECT_EQ(rc, IDOK);
    ASSERT_TRUE(script.SawWindow()) << "no property sheet appeared";
    EXPECT_TRUE(script.Finished());
    EXPECT_EQ(walk.titles, Titles(DocumentPages()));
    EXPECT_TRUE(walk.missing.empty());
    EXPECT_EQ(walk.screenshots.size(), DocumentPages().size());
}

}  // namespace
}  // namespace kx20::winetest
