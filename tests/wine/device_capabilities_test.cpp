// DeviceCapabilitiesW and DocumentPropertiesW as applications call them: Wine's spooler loads
// the driver's configuration module, which finds the paper names in the resource module beside
// the installed driver. The answers themselves are the unit suite's; here they must arrive.
#include "platform/win32/windows_clean.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "devmode/devmode.h"
#include "tests/wine/wine_environment.h"

namespace kx20::winetest {
namespace {

DWORD Ask(WORD capability, void* out = nullptr) {
    return DeviceCapabilitiesW(kPrinterName, nullptr, capability, static_cast<LPWSTR>(out),
                               nullptr);
}

TEST(SpoolerCapabilities, AnswersArriveInBothFormsAndAgreeWithTheDeviceMode) {
    ScopedPrinter printer;
    ASSERT_NE(printer.get(), nullptr);
    const LONG size = DocumentPropertiesW(nullptr, printer.get(), const_cast<LPWSTR>(kPrinterName),
                                          nullptr, nullptr, 0);
    EXPECT_EQ(static_cast<LONG>(Ask(DC_SIZE) + Ask(DC_EXTRA)), size);
    std::vector<std::uint8_t> dev(size, 0xEE);
    ASSERT_EQ(DocumentPropertiesW(nullptr, printer.get(), const_cast<LPWSTR>(kPrinterName),
                                  reinterpret_cast<DEVMODEW*>(dev.data()), nullptr, DM_OUT_BUFFER),
              IDOK);
    EXPECT_EQ(Ask(DC_SIZE), ReadU16(dev, kOffDmSize));
    EXPECT_EQ(ReadU32(dev, kDevModePublicSize), kDevModeSignature);

    ASSERT_EQ(Ask(DC_PAPERS), 6u);
    WORD papers[6] = {};
    wchar_t names[6][64] = {};
    char narrow[6][64] = {};
    wchar_t ready[64] = {};
    ASSERT_EQ(Ask(DC_PAPERS, papers), 6u);
    ASSERT_EQ(Ask(DC_PAPERNAMES, names), 6u);
    ASSERT_EQ(Ask(DC_MEDIAREADY, ready), 1u);
    // Wine's own conformance suite asks the narrow form (it once crashed the caller).
    ASSERT_EQ(DeviceCapabilitiesA("KX20", nullptr, DC_PAPERNAMES, &narrow[0][0], nullptr), 6);
    for (int i = 0; i < 6; ++i) {
        EXPECT_GT(lstrlenW(names[i]), 0) << "names from KVORSENU.DLL";
        EXPECT_EQ(std::wstring(names[i]), std::wstring(narrow[i], narrow[i] + strlen(narrow[i])));
        if (papers[i] == ReadU16(dev, kOffDmPaperSize)) {
            EXPECT_STREQ(ready, names[i]);
        }
    }
    wchar_t files[4] = {};
    EXPECT_EQ(Ask(DC_FILEDEPENDENCIES, files), 0xFFFFFFFFu);
}

TEST(SpoolerCapabilities, CallerRecordIsCompletedFromDefaults) {
    ScopedPrinter printer;
    ASSERT_NE(printer.get(), nullptr);
    // A public-only record asking for landscape, with no other member marked as set.
    std::vector<std::uint8_t> in(220, 0), out(6004, 0);
    WriteU16(in, kOffDmSize, 220);
    WriteU32(in, kOffDmFields, DM_ORIENTATION);
    WriteU16(in, kOffDmOrientation, 2);
    EXPECT_EQ(DocumentPropertiesW(nullptr, printer.get(), const_cast<LPWSTR>(kPrinterName),
                                  reinterpret_cast<DEVMODEW*>(out.data()),
                                  reinterpret_cast<DEVMODEW*>(in.data()),
                                  DM_IN_BUFFER | DM_OUT_BUFFER),
              IDOK);
    EXPECT_EQ(ReadU16(out, kOffDmOrientation), 2);
    EXPECT_EQ(ReadU16(out, kOffDmPaperSize), ReadU16(gsDevMode(), kOffDmPaperSize));
    EXPECT_EQ(ReadU32(out, 220), kDevModeSignature);
}

// The conversion entry, as the spooler's upgrade and point-and-print code calls it.
TEST(ConvertEntry, TooSmallFailsAndAnyModeCopiesTheWholeRecord) {
    DriverModule driver;
    using Fn = BOOL(WINAPI*)(LPWSTR, DEVMODEW*, DEVMODEW*, LONG*, DWORD);
    auto convert = driver.Entry<Fn>("DrvConvertDevMode");
    ASSERT_NE(convert, nullptr);
    std::vector<std::uint8_t> out(6100, 0xEE);
    LONG size = 6003;
    SetLastError(0);
    EXPECT_FALSE(convert(const_cast<LPWSTR>(kPrinterName), nullptr,
                         reinterpret_cast<DEVMODEW*>(out.data()), &size, 1));
    EXPECT_EQ(GetLastError(), 122u);
    EXPECT_EQ(size, 6004);
    size = 6100;  // the modes themselves are the unit suite's
    EXPECT_TRUE(convert(const_cast<LPWSTR>(kPrinterName), nullptr,
                        reinterpret_cast<DEVMODEW*>(out.data()), &size, 1));
    EXPECT_EQ(ReadU32(out, 220), kDevModeSignature);
    EXPECT_EQ(out[6004], 0xEE);  // nothing past the record
}

}  // namespace
}  // namespace kx20::winetest
