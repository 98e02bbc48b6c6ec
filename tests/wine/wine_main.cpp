// Test program run under Wine: installs the built driver and a KX20 printer into the prefix's
// spooler once, then runs the tests against them.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "tests/wine/wine_environment.h"
#include "tools/winhost/driver_install.h"

namespace kx20::winetest {

const std::wstring& PortPath() {
    static const std::wstring path = winhost::DefaultPortPath();
    return path;
}

ScopedPrinter::ScopedPrinter(const wchar_t* name) {
    if (!OpenPrinterW(const_cast<LPWSTR>(name), &h_, nullptr))
        h_ = nullptr;
}

ScopedPrinter::~ScopedPrinter() {
    if (h_)
        ClosePrinter(h_);
}

namespace {

class DriverEnvironment : public ::testing::Environment {
  public:
    void SetUp() override {
        std::wstring error;
        ASSERT_TRUE(winhost::InstallDriver(&error)) << std::string(error.begin(), error.end());
        ASSERT_TRUE(winhost::AddKx20Printer(kPrinterName, PortPath(), &error))
            << std::string(error.begin(), error.end());
    }
};

}  // namespace
}  // namespace kx20::winetest

int wmain(int argc, wchar_t** argv) {
    if (argc == 4 && std::wstring(argv[1]) == L"--child-role")
        return kx20::winetest::ChildRoleMain(argv[2], argv[3]);
    ::testing::InitGoogleTest(&argc, argv);
    ::testing::AddGlobalTestEnvironment(new kx20::winetest::DriverEnvironment);
    return RUN_ALL_TESTS();
}
