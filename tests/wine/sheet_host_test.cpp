// Both sheets through the real host paths: the device sheet as the printer-properties user
// interface of Windows shows it (CommonPropertySheetUIW with DrvDevicePropertySheets, which
// first gets the common sheet's own reason 5), and the document sheet through
// DocumentPropertiesW with DM_IN_PROMPT, which Wine hands to its compstui. Every page is
// visited, its controls checked and a screenshot saved; the test closes the sheet itself
// (the document sheet with an option changed and OK).
#include "platform/win32/windows_clean.h"

#include <commctrl.h>
#include <compstui.h>
#include <prsht.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "devmode/devmode.h"
#include "entry/win32/ddi_types.h"
#include "platform/bytes.h"
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

// As an application's Properties button: every page visited, then a job option changed on the
// options page and OK pressed; the output record carries the change, the input one is kept.
TEST(SheetHost, DocumentSheetThroughDocumentPropertiesWithPrompt) {
    ScopedPrinter printer;
    ASSERT_NE(printer.get(), nullptr);
    auto* name = const_cast<LPWSTR>(kPrinterName);
    std::vector<std::uint8_t> in(kDevModeSize, 0);
    ASSERT_EQ(DocumentPropertiesW(nullptr, printer.get(), name,
                                  reinterpret_cast<DEVMODEW*>(in.data()), nullptr, DM_OUT_BUFFER),
              IDOK);
    auto optionFlag = [](const std::vector<std::uint8_t>& record) {
        return ReadU32(ByteSpan(record), kDevModePublicSize + kPrivOptionFlag56);
    };
    const std::uint32_t before = optionFlag(in);
    std::vector<std::uint8_t> out = in;
    SheetWalk walk;
    auto steps = WalkSheet(DocumentPages(), L"document-sheet", walk);
    steps.back() = [](HWND sheet) {  // instead of Cancel
        SendMessageW(sheet, PSM_SETCURSEL, 1, 0);
        auto page = reinterpret_cast<HWND>(SendMessageW(sheet, PSM_GETCURRENTPAGEHWND, 0, 0));
        SendDlgItemMessageW(page, 1072, BM_CLICK, 0, 0);  // the option flag at 56
        SendMessageW(sheet, PSM_PRESSBUTTON, PSBTN_OK, 0);
        return true;
    };
    ModalDriver script(FindThreadPropertySheet, std::move(steps));
    const LONG rc = DocumentPropertiesW(nullptr, printer.get(), name,
                                        reinterpret_cast<DEVMODEW*>(out.data()),
                                        reinterpret_cast<DEVMODEW*>(in.data()),
                                        DM_IN_BUFFER | DM_IN_PROMPT | DM_OUT_BUFFER);
    EXPECT_EQ(rc, IDOK);
    ASSERT_TRUE(script.SawWindow()) << "no property sheet appeared";
    EXPECT_TRUE(script.Finished());
    EXPECT_EQ(walk.titles, Titles(DocumentPages()));
    EXPECT_TRUE(walk.missing.empty());
    EXPECT_EQ(walk.screenshots.size(), DocumentPages().size());
    EXPECT_EQ(optionFlag(out), before ? 0u : 1u) << "the option as the user left it";
    EXPECT_EQ(optionFlag(in), before) << "the application's input record is not written";
}

}  // namespace
}  // namespace kx20::winetest
