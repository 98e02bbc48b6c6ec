#include "devmode/printer_settings.h"

#include <gtest/gtest.h>

#include "platform/memory/memory_platform.h"

#include <algorithm>
#include <string>
#include <vector>

#include "platform/trace.h"
#include "tests/unit/trace_capture.h"

namespace kx20 {
namespace {

class PrinterSettingsTest : public ::testing::Test, protected MemoryPlatform {
  protected:
    void SetUp() override {
        SetTraceTarget(&files, &clock, {u"marker", u"out"});
        files.Put(u"marker", {});
        printer = &spooler.AddPrinter(u"KX20");
    }
    void TearDown() override { SetTraceTarget(nullptr, nullptr); }

    MemorySpooler::Printer* printer = nullptr;
};

TEST_F(PrinterSettingsTest, OpensWithReadAccessWhenAllAccessIsRefused) {
    printer->grantable = kPrinterRead;
    PrinterSettings s(p, u"KX20", kPrinterAllAccess);
    EXPECT_FALSE(s.IsOpen());
    EXPECT_EQ(s.GrantedAccess(), 0u);
    EXPECT_EQ(s.GetDevMode(), nullptr);
    EXPECT_TRUE(OpenWithReadFallback(s));
    EXPECT_EQ(s.GrantedAccess(), kPrinterRead);
    EXPECT_FALSE(s.CanAdminister());
    EXPECT_TRUE(s.Open(kPrinterAllAccess));  // already open: kept as it is
    EXPECT_EQ(s.GrantedAccess(), kPrinterRead);
    EXPECT_EQ(printer->opens, 1);
    EXPECT_EQ(TraceMessages(files).size(), 1u);

    // Read access: storing a device mode does nothing and says nothing.
    s.SetDevMode(gsDevMode());
    EXPECT_EQ(printer->setPrinterCalls, 0);
    EXPECT_FALSE(printer->info.devMode.has_value());
    EXPECT_EQ(TraceMessages(files).size(), 1u);

    // An unknown printer stays closed after both tries; the object is still usable.
    PrinterSettings none(p, u"Nowhere" + std::u16string(300, u'n'), kPrinterAllAccess);
    EXPECT_EQ(none.PrinterName().size(), 259u);
    EXPECT_FALSE(OpenWithReadFallback(none));
    EXPECT_EQ(TraceMessages(files).size(), 3u);
    EXPECT_EQ(none.PrinterInformation(2), nullptr);
    EXPECT_EQ(none.DriverPath(), nullptr);
    EXPECT_EQ(none.SetPrinterData(u"Value", 4, Bytes{1}), 6u);
    EXPECT_TRUE(TraceHas(files, "Value"));
}

TEST_F(PrinterSettingsTest, DeviceModeCopyIsAlwaysAWholeRecord) {
    PrinterSettings s(p, u"KX20", kPrinterAllAccess);
    ASSERT_TRUE(s.IsOpen());
    // No stored record: the built-in defaults with the roll paper.
    const DevModeImage* dm = s.GetDevMode();
    ASSERT_NE(dm, nullptr);
    EXPECT_EQ(*dm, gsDevMode());
    EXPECT_EQ(ReadDmShort(*dm, kOffDmPaperSize), 259);

    // A stored record is taken as it is, 6004 bytes whatever its sizes say.
    Bytes stored(7000, 0x5A);
    WriteU16(stored, kOffDmDriverExtra, 0);
    printer->info.devMode = stored;
    dm = s.GetDevMode();
    EXPECT_TRUE(std::equal(dm->begin(), dm->end(), stored.begin()));

    // A stored record shorter than that keeps the built-in bytes it lacks.
    printer->info.devMode = Bytes(220, 0x11);
    dm = s.GetDevMode();
    EXPECT_EQ(std::count(dm->begin(), dm->begin() + 220, 0x11), 220);
    EXPECT_TRUE(std::equal(dm->begin() + 220, dm->end(), gsDevMode().begin() + 220));
}

TEST_F(PrinterSettingsTest, StoresDeviceModeWithAdministerRights) {
    PrinterSettings s(p, u"KX20", kPrinterAllAccess);
    ASSERT_TRUE(s.CanAdminister());
    DevModeImage record = gsDevMode();
    WriteDmShort(record, kOffDmCopies, 3);
    s.SetDevMode(record);
    ASSERT_TRUE(printer->info.devMode.has_value());
    EXPECT_EQ(*printer->info.devMode, Bytes(record.begin(), record.end()));
    EXPECT_EQ(printer->info.portName, u"KX20_USB1");  // the rest of level 2 is kept
    EXPECT_FALSE(TraceHas(files, "System error"));

    printer->failSetPrinter = true;
    s.SetDevMode(gsDevMode());
    EXPECT_TRUE(TraceHas(files, "System error 5."));
}

TEST_F(PrinterSettingsTest, DriverFilesComeFromCachedLevel3Information) {
    DriverInfo driver;
    driver.driverPath = u"C:\\drv\\KVORSUSR.DLL";
    driver.dataFile = u"C:\\drv\\KX20.GPD";
    driver.dependentFiles = {u"C:\\drv\\first.XPI", u"C:\\drv\\KVORSENU.DLL",
                             u"C:\\drv\\second.XPI", u"C:\\drv\\third.xpi"};
    printer->driver = driver;
    PrinterSettings s(p, u"KX20", kPrinterAllAccess);
    const std::u16string* xpi = s.FindXpiFile();
    ASSERT_NE(xpi, nullptr);
    EXPECT_EQ(*xpi, u"C:\\drv\\second.XPI");  // the last upper-case match
    // Cached: a later change in the spooler is not seen.
    printer->driver->driverPath = u"changed";
    ASSERT_NE(s.DriverPath(), nullptr);
    EXPECT_EQ(*s.DriverPath(), u"C:\\drv\\KVORSUSR.DLL");
    EXPECT_EQ(*s.DataFile(), u"C:\\drv\\KX20.GPD");

    printer->driver->dependentFiles = {u"a.dll"};
    ASSERT_NE(s.DriverInformation(3), nullptr);  // fetched again
    EXPECT_EQ(s.FindXpiFile(), nullptr);
    printer->driver.reset();
    PrinterSettings noDriver(p, u"KX20", kPrinterAllAccess);
    EXPECT_EQ(noDriver.FindXpiFile(), nullptr);
    EXPECT_EQ(noDriver.DataFile(), nullptr);
}

}  // namespace
}  // namespace kx20
