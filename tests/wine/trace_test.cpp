// The developer's trace of the installed driver, switched by the marker file on C:.
#include "platform/win32/windows_clean.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "tests/wine/wine_environment.h"

namespace kx20::winetest {
namespace {

std::string ReadFileText(const wchar_t* path) {
    std::ifstream f(path, std::ios::binary);
    std::ostringstream s;
    s << f.rdbuf();
    return s.str();
}

void AskForSize() {
    ScopedPrinter printer;
    ASSERT_NE(printer.get(), nullptr);
    DocumentPropertiesW(nullptr, printer.get(), const_cast<LPWSTR>(kPrinterName), nullptr, nullptr,
                        0);
}

TEST(DriverTrace, WrittenOnlyWhileMarkerExists) {
    const wchar_t* marker = L"c:\\kvorsgui.trace";
    const wchar_t* output = L"c:\\KX20DrvTrace.out";
    DeleteFileW(marker);
    DeleteFileW(output);

    AskForSize();
    EXPECT_EQ(GetFileAttributesW(output), INVALID_FILE_ATTRIBUTES);

    HANDLE h = CreateFileW(marker, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    ASSERT_NE(h, INVALID_HANDLE_VALUE);
    CloseHandle(h);
    AskForSize();
    std::string text = ReadFileText(output);
    // The call's printer and its answer, written by the driver the spooler loaded.
    EXPECT_NE(text.find("KX20"), std::string::npos) << text;
    EXPECT_NE(text.find("6004"), std::string::npos) << text;

    DeleteFileW(marker);
    AskForSize();
    EXPECT_EQ(ReadFileText(output), text);
    DeleteFileW(output);
}

}  // namespace
}  // namespace kx20::winetest
