// The document sheet's four pages as windows: made from KVORSENU.DLL's templates with their
// dialog procedures, shown in a modeless property sheet over the Win32 adapters, driven by
// messages, and read back from the page copy of the device mode. Screenshots of the pages go
// to screenshots/ in the build folder.
#include "platform/win32/windows_clean.h"

#include <commctrl.h>
#include <prsht.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "channel/command_start.h"
#include "channel/job_channel.h"
#include "channel/printer_queries.h"
#include "devmode/devmode.h"
#include "devmode/win32/document_pages.h"
#include "pages/page_context.h"
#include "ids_document_pages.h"
#include "platform/text.h"
#include "platform/win32/win32_platform.h"
#include "platform/win32/win32_prompts.h"
#include "platform/win32/win32_resources.h"
#include "platform/win32/win32_text.h"
#include "store/catalogue.h"
#include "store/registry_layout.h"
#include "tests/wine/modeless_sheet.h"
#include "tests/wine/wine_environment.h"
#include "tools/winhost/driver_install.h"
#include "tools/winhost/sim_control.h"
#include "tools/winhost/window_script.h"

namespace kx20::winetest {
namespace {

constexpr char16_t kPrinter[] = u"KX20";
constexpr int kDeviceSettingsPage = 0;
constexpr int kOptionsPage = 1;
constexpr int kFirstStationPage = 2;
constexpr int kSecondStationPage = 3;

class DocumentSheet : public SimulatedPrinterPagesTest {
  protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(SetUpPrinterAndContext());
        // The record an application gets from the printer, as the sheet starts from it.
        ScopedPrinter printer;
        ASSERT_NE(printer.get(), nullptr);
        ASSERT_EQ(DocumentPropertiesW(nullptr, printer.get(), const_cast<LPWSTR>(kPrinterName),
                                      reinterpret_cast<DEVMODEW*>(ctx_.pageCopy.data()), nullptr,
                                      DM_OUT_BUFFER),
                  IDOK);
        ctx_.docDevMode = MutableByteSpan(ctx_.pageCopy);
    }

    void Open() {
        OpenSheet({kx20::DeviceSettingsPageProc, kx20::GuiOptionsDlgProc, kx20::StationPageProc,
                   kx20::StationPageProc},
                  IDD_DEVICE_SETTINGS, L"KX20 Document Properties",
                  PSP_USETITLE | PSP_HASHELP | PSP_PREMATURE, 0);
    }

    void Choose(HWND page, int control, int index) {
        HWND list = GetDlgItem(page, control);
        SendMessageW(list, CB_SETCURSEL, index, 0);
        SendMessageW(page, WM_COMMAND, MAKEWPARAM(control, CBN_SELCHANGE),
                     reinterpret_cast<LPARAM>(list));
        Pump();
    }
    void Apply() {
        SendMessageW(sheet_, PSM_PRESSBUTTON, PSBTN_APPLYNOW, 0);
        Pump();
    }
    std::vector<std::wstring> Items(HWND page, int control) {
        std::vector<std::wstring> out;
        const int count = static_cast<int>(SendDlgItemMessageW(page, control, CB_GETCOUNT, 0, 0));
        for (int i = 0; i < count; ++i) {
            wchar_t buf[300] = {};
            SendDlgItemMessageW(page, control, CB_GETLBTEXT, i, reinterpret_cast<LPARAM>(buf));
            out.push_back(buf);
        }
        return out;
    }
    int Selected(HWND page, int control) {
        return static_cast<int>(SendDlgItemMessageW(page, control, CB_GETCURSEL, 0, 0));
    }
    MutableByteSpan Priv() { return MutableByteSpan(ctx_.pageCopy).subspan(kDevModePublicSize); }

    // A logo really downloaded into the simulated printer and registered, as the logos page
    // leaves it.
    void DownloadLogo(std::uint8_t number) {
        Bytes block(channel::kCommandStart.begin(), channel::kCommandStart.end());
        block.insert(block.end(), {0x0F, number, 2, 1});
        block.resize(block.size() + 16, 0x81);
        block.push_back(0xFF);
        ASSERT_TRUE(
            channel::SendRawJobAndWait(*strings_, win32_.ports, kPrinter, 1, number, block));
        RegisterLogo(number);
    }
    void RegisterLogo(std::uint32_t number) {
        const Bytes picture(64, static_cast<std::uint8_t>(number));
        ASSERT_TRUE(store::RegisterLogo(win32_.ports, number, 1, 1, 64, picture, id_, kPrinter));
    }
};

// The options and station pages: choices made by messages, a logo stored meanwhile, Apply.
TEST_F(DocumentSheet, OptionsAndStationChoicesReachThePageCopy) {
    DownloadLogo(1);
    RegisterLogo(4);
    ASSERT_TRUE(store::RegisterMessage(win32_.ports, 2, u"Thank you for shopping\r\nSee you soon",
                                       id_, kPrinter));
    Open();
    HWND options = Show(kOptionsPage);
    EXPECT_FALSE(IsWindowEnabled(GetDlgItem(options, IDC_OPT_CHOICE)));
    EXPECT_FALSE(IsWindowEnabled(GetDlgItem(options, IDC_OPT_FLOW)))
        << "the simulated USB port offers no flow control";
    Click(options, IDC_OPT_MODE_SECOND);
    EXPECT_EQ(Items(options, IDC_OPT_CHOICE).size(), 3u);
    Choose(options, IDC_OPT_CHOICE, 2);
    Click(options, IDC_OPT_CUT_PAPER);
    Click(options, IDC_OPT_FLAG_56);
    Choose(options, IDC_OPT_DENSITY, 4);
    Choose(options, IDC_OPT_FONT, 4);
    Screenshot(L"options");

    HWND first = Show(kFirstStationPage);
    EXPECT_EQ(Items(first, IDC_ST_HEADER_LOGO),
              (std::vector<std::wstring>{L"(None)", L"Logo 1", L"Logo 4"}));
    Choose(first, IDC_ST_HEADER_LOGO, 2);
    Choose(first, IDC_ST_TOP_MESSAGE, 1);
    EXPECT_EQ(Text(first, IDC_ST_TOP_TEXT), L"Thank you for shopping\r\nSee you soon");
    HWND second = Show(kSecondStationPage);
    Choose(second, IDC_ST_FOOTER_LOGO, 1);
    Screenshot(L"station2");
    // A logo stored meanwhile (the logos page broadcasts the refresh) appears at once.
    RegisterLogo(2);
    prompts_.Broadcast(RefreshMessage::Logos, 0);
    Show(kFirstStationPage);
    EXPECT_EQ(Items(first, IDC_ST_HEADER_LOGO).size(), 4u);
    EXPECT_EQ(Selected(first, IDC_ST_HEADER_LOGO), 3) << "the choice follows its logo";
    Screenshot(L"station1");
    Apply();

    EXPECT_EQ(ReadU32(Priv(), kPrivOptionsModeFlag), 0u);
    EXPECT_EQ(ReadU32(Priv(), kPrivOptionsChoice), 2u);
    EXPECT_EQ(ReadU32(Priv(), kPrivBCutPaper), 0u);
    EXPECT_EQ(ReadU32(Priv(), kPrivOptionFlag56), 1u);
    EXPECT_EQ(ReadU32(Priv(), kPrivDensity), 4u);
    EXPECT_EQ(ReadUtf16Field(Priv(), kPrivFontOverrideName, 256), u"Override using Font B");
    EXPECT_EQ(ctx_.applyState.fontOverrideText, u"Override using Font B") << "on the sheet frame";
    EXPECT_EQ(ReadU32(Priv(), kPrivFirstStation + 8), 4u);
    EXPECT_EQ(ReadU32(Priv(), kPrivFirstStation + 16), 2u);
    EXPECT_EQ(ReadU32(Priv(), kPrivSecondStation + 12), 1u);
}

// The device settings page: the document station changes the options page and the job's flag;
// narrower paper offers to erase the printer's logos and erases them on Yes.
TEST_F(DocumentSheet, DocumentStationAndNarrowerPaperOnTheDeviceSettingsPage) {
    DownloadLogo(3);
    std::uint8_t crc[4] = {};
    ASSERT_TRUE(channel::GetLogosCRC(win32_.ports, true, kPrinter, crc));
    ASSERT_NE(ReadU32(ByteSpan(crc, 4), 0), 0u);
    Open();
    HWND device = Show(kDeviceSettingsPage);
    EXPECT_EQ(Selected(device, IDC_DS_PAPER), 2);
    Screenshot(L"device_settings");
    Choose(device, IDC_DS_PAPER, 4);  // 48 mm
    boxes_.answer = IDYES;
    Apply();
    EXPECT_EQ(boxes_.seen, 1);
    EXPECT_NE(boxes_.text.find(String(3012).substr(0, 20)), std::wstring::npos)
        << Narrow(boxes_.text);
    ASSERT_TRUE(channel::GetLogosCRC(win32_.ports, true, kPrinter, crc));
    EXPECT_EQ(ReadU32(ByteSpan(crc, 4), 0), 0u) << "the printer's logo area is empty";
    EXPECT_TRUE(store::ReadLogoRecords(win32_.ports, kPrinter, id_).empty());
    EXPECT_EQ(ReadDmShort(ctx_.pageCopy, kOffDmPaperSize), 261);

    Choose(device, IDC_DS_STATION, 1);
    EXPECT_EQ(Text(device, IDC_DS_STATION_NOTE), String(3009));
    HWND options = Show(kOptionsPage);
    EXPECT_FALSE(IsWindowEnabled(GetDlgItem(options, IDC_OPT_MODE_SECOND)));
    EXPECT_EQ(Text(options, IDC_OPT_CUT_PAPER), String(1071));
    Apply();
    EXPECT_EQ(ReadU32(Priv(), kPrivBReceiptStation), 0u);
    auto key = store::OpenDriverDataKey(win32_.ports, kPrinter);
    ASSERT_TRUE(key);
    EXPECT_EQ(ReadDwordValue(*key, DecimalText(GetCurrentProcessId()) + u"_ss"), 1u)
        << "the job prints on the document station";
    EXPECT_EQ(boxes_.seen, 1);
}

TEST_F(DocumentSheet, TabAndShiftTabVisitEveryEnabledControlOnceInReadingOrder) {
    Open();
    for (int i = kDeviceSettingsPage; i <= kSecondStationPage; ++i) ExpectTabOrder(Show(i));
}

}  // namespace
}  // namespace kx20::winetest
