// The driver as applications reach it through the Wine spooler.
#include "platform/win32/windows_clean.h"

#include <gtest/gtest.h>

#include <vector>

#include "devmode/devmode.h"
#include "tests/wine/wine_environment.h"

namespace kx20::winetest {
namespace {

TEST(SpoolerDevMode, SizeQueryAnswersTheWholeRecord) {
    ScopedPrinter printer;
    ASSERT_NE(printer.get(), nullptr);
    LONG size = DocumentPropertiesW(nullptr, printer.get(), const_cast<LPWSTR>(kPrinterName),
                                    nullptr, nullptr, 0);
    EXPECT_EQ(size, 6004);
}

TEST(SpoolerDevMode, OutputBufferIsFilledFromDefaults) {
    ScopedPrinter printer;
    ASSERT_NE(printer.get(), nullptr);
    std::vector<std::uint8_t> out(6004, 0xEE);
    LONG rc = DocumentPropertiesW(nullptr, printer.get(), const_cast<LPWSTR>(kPrinterName),
                                  reinterpret_cast<DEVMODEW*>(out.data()), nullptr, DM_OUT_BUFFER);
    EXPECT_EQ(rc, IDOK);
    ByteSpan record(out);
    EXPECT_EQ(ReadU16(record, kOffDmSize), 220);
    EXPECT_EQ(ReadU16(record, kOffDmDriverExtra), 5784);
    EXPECT_EQ(ReadU16(record, kOffDmSpecVersion), 0x0401);
    EXPECT_EQ(ReadU16(record, kOffDmPaperSize), 259);
    EXPECT_EQ(ReadU32(record, 220), 0xABABCDCDu);
    EXPECT_EQ(ReadU32(record, 220 + 12), 1u);  // receipt station
    EXPECT_EQ(ReadUtf16Field(record, 220 + 80, 256), u"Do not override font");
}

TEST(SpoolerDevMode, CallerRecordIsCompletedFromDefaults) {
    ScopedPrinter printer;
    ASSERT_NE(printer.get(), nullptr);
    // A public-only record asking for landscape, with no other member marked as set.
    std::vector<std::uint8_t> in(220, 0);
    WriteU16(in, kOffDmSize, 220);
    WriteU32(in, kOffDmFields, DM_ORIENTATION);
    WriteU16(in, kOffDmOrientation, 2);
    std::vector<std::uint8_t> out(6004, 0);
    LONG rc =
        DocumentPropertiesW(nullptr, printer.get(), const_cast<LPWSTR>(kPrinterName),
                            reinterpret_cast<DEVMODEW*>(out.data()),
                            reinterpret_cast<DEVMODEW*>(in.data()), DM_IN_BUFFER | DM_OUT_BUFFER);
    EXPECT_EQ(rc, IDOK);
    EXPECT_EQ(ReadU16(out, kOffDmOrientation), 2);
    EXPECT_EQ(ReadU16(out, kOffDmPaperSize), 259);
    EXPECT_EQ(ReadU32(out, 220), 0xABABCDCDu);
}

// The conversion entry, as the spooler's upgrade and point-and-print code calls it.
class ConvertEntry : public ::testing::Test {
  protected:
    void SetUp() override {
        wchar_t folder[MAX_PATH] = {};
        DWORD needed = 0;
        ASSERT_TRUE(GetPrinterDriverDirectoryW(nullptr, const_cast<LPWSTR>(L"Windows x64"), 1,
                                               reinterpret_cast<LPBYTE>(folder), sizeof folder,
                                               &needed));
        module_ = LoadLibraryW((std::wstring(folder) + L"\\3\\kvorsgui.dll").c_str());
        ASSERT_NE(module_, nullptr);
        convert_ = reinterpret_cast<Fn>(
            reinterpret_cast<void*>(GetProcAddress(module_, "DrvConvertDevMode")));
        ASSERT_NE(convert_, nullptr);
    }
    void TearDown() override {
        if (module_)
            FreeLibrary(module_);
    }
    using Fn = BOOL(WINAPI*)(LPWSTR, DEVMODEW*, DEVMODEW*, LONG*, DWORD);
    HMODULE module_ = nullptr;
    Fn convert_ = nullptr;
};

TEST_F(ConvertEntry, TooSmallFailsWithInsufficientBuffer) {
    std::vector<std::uint8_t> out(6004, 0);
    LONG size = 6003;
    SetLastError(0);
    EXPECT_FALSE(convert_(const_cast<LPWSTR>(kPrinterName), nullptr,
                          reinterpret_cast<DEVMODEW*>(out.data()), &size, 1));
    EXPECT_EQ(GetLastError(), 122u);
    EXPECT_EQ(size, 6004);
}

TEST_F(ConvertEntry, WholeRecordIsCopiedForAnyMode) {
    for (DWORD mode : {1u, 2u, 4u, 77u}) {
        std::vector<std::uint8_t> out(6100, 0xEE);
        LONG size = 6100;
        EXPECT_TRUE(convert_(const_cast<LPWSTR>(kPrinterName), nullptr,
                             reinterpret_cast<DEVMODEW*>(out.data()), &size, mode));
        EXPECT_EQ(size, 6100);
        EXPECT_EQ(ReadU32(out, 220), 0xABABCDCDu);
        EXPECT_EQ(out[6004], 0xEE);  // nothing past the record
    }
}

}  // namespace
}  // namespace kx20::winetest
