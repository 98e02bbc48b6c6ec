// An application's view of the document sheet: DocumentPropertiesW with DM_IN_PROMPT shows the
// four pages through Wine's common sheet service; the user changes a job option and presses OK,
// and the application's output record carries the change.
#include "platform/win32/windows_clean.h"

#include <commctrl.h>
#include <gtest/gtest.h>
#include <prsht.h>

#include <vector>

#include "devmode/devmode.h"
#include "platform/bytes.h"
#include "tests/wine/sheet_pages.h"
#include "tests/wine/wine_environment.h"

namespace kx20::winetest {
namespace {

constexpr int kOptionsPageIndex = 1;
constexpr int kFirstOptionCheckBox = 1072;  // private flag at 56

std::uint32_t FirstOptionFlag(const std::vector<std::uint8_t>& record) {
    return ReadU32(ByteSpan(record), kDevModePublicSize + kPrivOptionFlag56);
}

TEST(DocumentPrompt, AnOptionChangedOnTheSheetReachesTheApplicationsRecord) {
    ScopedPrinter printer;
    ASSERT_NE(printer.get(), nullptr);
    auto* name = const_cast<LPWSTR>(kPrinterName);
    const LONG size = DocumentPropertiesW(nullptr, printer.get(), name, nullptr, nullptr, 0);
    ASSERT_EQ(size, static_cast<LONG>(kDevModeSize));
    std::vector<std::uint8_t> in(size, 0);
    ASSERT_EQ(DocumentPropertiesW(nullptr, printer.get(), name,
                                  reinterpret_cast<DEVMODEW*>(in.data()), nullptr, DM_OUT_BUFFER),
              IDOK);
    const std::uint32_t before = FirstOptionFlag(in);
    std::vector<std::uint8_t> out = in;

    bool clicked = false;
    ModalDriver script(FindThreadPropertySheet,
                       {[](HWND sheet) {
                            SendMessageW(sheet, PSM_SETCURSEL, kOptionsPageIndex, 0);
                            return true;
                        },
                        [&](HWND sheet) {
                            auto page = reinterpret_cast<HWND>(
                                SendMessageW(sheet, PSM_GETCURRENTPAGEHWND, 0, 0));
                            HWND box = page ? GetDlgItem(page, kFirstOptionCheckBox) : nullptr;
                            if (!box)
                                return false;
                            SendMessageW(box, BM_CLICK, 0, 0);
                            clicked = true;
                            return true;
                        },
                        [](HWND sheet) {
                            SendMessageW(sheet, PSM_PRESSBUTTON, PSBTN_OK, 0);
                            return true;
                        }});
    const LONG rc = DocumentPropertiesW(nullptr, printer.get(), name,
                                        reinterpret_cast<DEVMODEW*>(out.data()),
                                        reinterpret_cast<DEVMODEW*>(in.data()),
                                        DM_IN_BUFFER | DM_IN_PROMPT | DM_OUT_BUFFER);
    EXPECT_EQ(rc, IDOK);
    ASSERT_TRUE(script.SawWindow()) << "no property sheet appeared";
    ASSERT_TRUE(script.Finished());
    ASSERT_TRUE(clicked);
    EXPECT_EQ(FirstOptionFlag(out), before ? 0u : 1u) << "the option as the user left it";
    EXPECT_EQ(ReadU32(ByteSpan(out), kDevModePublicSize), kDevModeSignature);
    EXPECT_EQ(FirstOptionFlag(in), before) << "the application's input record is not written";
}

}  // namespace
}  // namespace kx20::winetest
