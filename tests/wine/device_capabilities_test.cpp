// DeviceCapabilitiesW as applications call it: Wine's spooler loads the driver's
// configuration module and asks DrvDeviceCapabilities, which finds the paper names in the
// resource module beside the installed driver.
#include "platform/win32/windows_clean.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/wine/wine_environment.h"

namespace kx20::winetest {
namespace {

DWORD Ask(WORD capability, void* out = nullptr) {
    return DeviceCapabilitiesW(kPrinterName, nullptr, capability, static_cast<LPWSTR>(out),
                               nullptr);
}

TEST(SpoolerCapabilities, EveryCapabilityAnswersThroughTheSpooler) {
    struct Row {
        WORD cap;
        DWORD result;
    };
    const Row rows[] = {
        {DC_FIELDS, 0x670F},
        {DC_MINEXTENT, 48 | (274 << 16)},
        {DC_MAXEXTENT, 85 | (3276 << 16)},
        {DC_BINS, 0},
        {DC_DUPLEX, 0},
        {DC_SIZE, 220},
        {DC_EXTRA, 5784},
        {DC_VERSION, 0x401},
        {DC_DRIVER, 0x400},
        {DC_BINNAMES, 0},
        {DC_FILEDEPENDENCIES, 0},
        {DC_TRUETYPE, 1},
        {DC_ORIENTATION, 90},
        {DC_COPIES, 1000},
        {DC_BINADJUST, 0xFFFFFFFF},
        {DC_EMF_COMPLIANT, 0xFFFFFFFF},
        {DC_DATATYPE_PRODUCED, 0xFFFFFFFF},
        {DC_COLLATE, 0},
        {23, 0},
        {24, 0},
        {DC_PRINTRATE, 2340},
        {DC_PRINTRATEUNIT, 3},
        {DC_PRINTERMEM, 0},
        {DC_STAPLE, 0},
        {DC_PRINTRATEPPM, 0},
        {DC_COLORDEVICE, 1},
        {DC_NUP, 0},
    };
    for (const Row& r : rows) EXPECT_EQ(Ask(r.cap), r.result) << "capability " << r.cap;
}

TEST(SpoolerCapabilities, PapersNamesAndSizesAgree) {
    ASSERT_EQ(Ask(DC_PAPERS), 6u);
    WORD papers[6] = {};
    ASSERT_EQ(Ask(DC_PAPERS, papers), 6u);
    POINT sizes[6] = {};
    ASSERT_EQ(Ask(DC_PAPERSIZE, sizes), 6u);
    wchar_t names[6][64] = {};
    ASSERT_EQ(Ask(DC_PAPERNAMES, names), 6u);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(papers[i], 257 + i);
    EXPECT_EQ(sizes[2].x, 800);
    EXPECT_EQ(sizes[2].y, 2970);
    EXPECT_EQ(sizes[5].x, 857);
    // The names come from KVORSENU.DLL in the driver's folder.
    EXPECT_STREQ(names[0], L"Roll Paper 58 x 297 mm");
    EXPECT_STREQ(names[2], L"Roll Paper 80 x 297 mm");
    EXPECT_STREQ(names[5], L"Roll Paper 85.7 x 274 mm");

    wchar_t ready[1][64] = {};
    EXPECT_EQ(Ask(DC_MEDIAREADY, ready), 1u);
    EXPECT_STREQ(ready[0], L"Roll Paper 80 x 297 mm");
}

TEST(SpoolerCapabilities, ResolutionsAndPersonalities) {
    LONG resolutions[4] = {};
    ASSERT_EQ(Ask(DC_ENUMRESOLUTIONS, resolutions), 2u);
    EXPECT_EQ(resolutions[0], 150);
    EXPECT_EQ(resolutions[3], 200);
    wchar_t personalities[2][32] = {};
    ASSERT_EQ(Ask(DC_PERSONALITY, personalities), 2u);
    EXPECT_STREQ(personalities[0], L"RS-232");
    EXPECT_STREQ(personalities[1], L"RS-485");
    wchar_t files[4] = {};
    EXPECT_EQ(Ask(DC_FILEDEPENDENCIES, files), 0xFFFFFFFFu);
}

// Wine's own conformance suite asks the narrow form; it must answer as well (it once crashed
// the caller, the driver having no capability entry).
TEST(SpoolerCapabilities, NarrowFormAnswers) {
    EXPECT_EQ(DeviceCapabilitiesA("KX20", nullptr, DC_PAPERS, nullptr, nullptr), 6);
    char names[6][64] = {};
    EXPECT_EQ(DeviceCapabilitiesA("KX20", nullptr, DC_PAPERNAMES, &names[0][0], nullptr), 6);
    EXPECT_STREQ(names[4], "Roll Paper 48 x 274 mm");
}

}  // namespace
}  // namespace kx20::winetest
