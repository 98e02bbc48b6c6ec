// DrvPrinterEvent and DrvUpgradePrinter, called directly as the spooler calls them when a
// printer is created (Wine never sends these events): against the simulated KX20 behind the
// installed kvorsmon.dll, whose log shows what the reconciliation sent.
#include "platform/win32/windows_clean.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "channel/printer_queries.h"
#include "entry/printer_event.h"
#include "platform/win32/win32_platform.h"
#include "store/catalogue.h"
#include "store/registry_layout.h"
#include "tests/wine/wine_environment.h"
#include "tools/winhost/sim_control.h"

namespace kx20::winetest {
namespace {

using PrinterEventFn = BOOL(WINAPI*)(LPWSTR, INT, DWORD, LPARAM);
constexpr char16_t kPrinter[] = u"KX20";
constexpr char16_t kId[] = u"KX20SIM1";

class PrinterEvents : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(sim_.Loaded());
        ASSERT_EQ(sim_.Control(L"reset"), 0u);
        ASSERT_EQ(sim_.Control(L"connect"), 0u);
        ASSERT_NE(event_, nullptr);
    }
    void TearDown() override {
        store::DeleteLogoEntries(win32_.ports, kPrinter, kId);
        store::DeleteMessageEntries(win32_.ports, kPrinter, kId);
    }
    BOOL Initialize() {
        return event_(const_cast<LPWSTR>(kPrinterName), printerevent::kInitialize, 0, 0);
    }

    DriverModule driver_;
    PrinterEventFn event_ = driver_.Entry<PrinterEventFn>("DrvPrinterEvent");
    Win32Platform win32_;
    winhost::SimulatedPrinterControl sim_{PortPath()};
};

TEST_F(PrinterEvents, InitializeReconcilesTheCatalogueWithThePrinter) {
    // A catalogue that claims logos the printer does not hold, and messages whose checksum was
    // never stored.
    const std::vector<std::uint8_t> picture(10, 0x42);
    ASSERT_TRUE(store::RegisterLogo(win32_.ports, 1, 1, 1, 10, picture, kId, kPrinter));
    ASSERT_TRUE(store::SetLogoCRC(win32_.ports, kPrinter, kId, 0x12345678));
    ASSERT_TRUE(store::RegisterMessage(win32_.ports, 1, u"Thank you", kId, kPrinter));
    ASSERT_EQ(sim_.Control(L"clearlog"), 0u);

    ASSERT_TRUE(Initialize());

    // The checksum queries reached the printer through kvorsmon.dll; which areas and what the
    // answers change are the unit suite's (printer_event_test).
    const std::wstring state = sim_.Describe();
    EXPECT_NE(state.find(L"checksum of area 1"), std::wstring::npos);
    EXPECT_EQ(state.find(L"erased"), std::wstring::npos) << "the printer's areas are empty";
    EXPECT_TRUE(store::ReadLogoRecords(win32_.ports, kPrinter, kId).empty());
    EXPECT_TRUE(store::ReadMessageRecords(win32_.ports, kPrinter, kId).empty());

    // The rendering module is named in the printer's data.
    ScopedPrinter printer;
    wchar_t value[64] = {};
    DWORD type = 0, needed = 0;
    ASSERT_EQ(GetPrinterDataW(printer.get(), const_cast<LPWSTR>(L"SPLUserModePrinterDriver"), &type,
                              reinterpret_cast<LPBYTE>(value), sizeof value, &needed),
              ERROR_SUCCESS);
    EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));
    EXPECT_STREQ(value, L"KVORSUSR.DLL");
}

TEST_F(PrinterEvents, ForeignDeviceModeIsReplacedByTheDriversOwn) {
    HANDLE printer = nullptr;
    PRINTER_DEFAULTSW all = {nullptr, nullptr, PRINTER_ALL_ACCESS};
    ASSERT_TRUE(OpenPrinterW(const_cast<LPWSTR>(kPrinterName), &printer, &all));
    // A public-only record, as another driver might have left.
    DEVMODEW foreign = {};
    lstrcpyW(foreign.dmDeviceName, L"Other");
    foreign.dmSize = sizeof foreign;
    foreign.dmSpecVersion = DM_SPECVERSION;
    PRINTER_INFO_9W perUser = {&foreign};
    ASSERT_TRUE(SetPrinterW(printer, 8, reinterpret_cast<LPBYTE>(&perUser), 0));
    auto storedRecord = [&](std::vector<std::uint8_t>& info) -> const DEVMODEW* {
        DWORD needed = 0;
        GetPrinterW(printer, 2, nullptr, 0, &needed);
        info.assign(needed, 0);
        if (!GetPrinterW(printer, 2, info.data(), needed, &needed))
            return nullptr;
        return reinterpret_cast<PRINTER_INFO_2W*>(info.data())->pDevMode;
    };
    std::vector<std::uint8_t> before, after;
    const DEVMODEW* foreignStored = storedRecord(before);
    ASSERT_NE(foreignStored, nullptr);
    ASSERT_STREQ(foreignStored->dmDeviceName, L"Other");

    ASSERT_TRUE(Initialize());

    const DEVMODEW* stored = storedRecord(after);
    ASSERT_NE(stored, nullptr);
    EXPECT_EQ(stored->dmDriverExtra, 5784);
    EXPECT_STREQ(stored->dmDeviceName, L"KVO KX20");
    ClosePrinter(printer);
}

// The spooler's job queries: DevQueryPrintEx accepts every job; DevQueryPrint, forwarded to
// the system, answers without ending the process where the system has no implementation.
TEST(JobQueries, EveryJobMayPrint) {
    DriverModule driver;
    auto queryEx = driver.Entry<BOOL(WINAPI*)(void*)>("DevQueryPrintEx");
    auto query = driver.Entry<BOOL(WINAPI*)(HANDLE, DEVMODEW*, DWORD*)>("DevQueryPrint");
    ASSERT_NE(queryEx, nullptr);
    ASSERT_NE(query, nullptr);
    EXPECT_TRUE(queryEx(nullptr));
    ScopedPrinter printer;
    DWORD resource = 0;
    EXPECT_TRUE(query(printer.get(), nullptr, &resource));
}

}  // namespace
}  // namespace kx20::winetest
