#include "store/registry_layout.h"

#include <gtest/gtest.h>

#include "platform/memory/memory_platform.h"

#include "platform/trace.h"
#include "platform/text.h"

namespace kx20::store {
namespace {

const std::u16string kPort = u"USB001";
const std::u16string kPortPath =
    u"SYSTEM\\CurrentControlSet\\Control\\Print\\Monitors\\KVO KX20 Language/Port "
    u"Monitor\\Ports\\USB001";

class RegistryLayoutTest : public ::testing::Test, protected MemoryPlatform {
  protected:
    void SetUp() override {
        spooler.AddPrinter(u"KX20", kPort);
        SetTraceTarget(&files, &clock, {u"marker", u"out"});
        files.Put(u"marker", {});
    }
    void TearDown() override { SetTraceTarget(nullptr, nullptr); }

    std::string TraceText() {
        const Bytes* out = files.Get(u"out");
        return out ? std::string(out->begin(), out->end()) : std::string();
    }
    void PutPortValue(std::u16string_view name, std::uint32_t type, Bytes data) {
        reg.CreateKey(Hive::LocalMachine, kPortPath)->SetValue(name, type, data);
    }
    const Bytes& DriverData(std::u16string_view name) {
        return reg.FindValue(Hive::LocalMachine, DriverDataKeyPath(u"KX20", false), name)->data;
    }

    MemoryRegistry& reg = registry;
};

TEST_F(RegistryLayoutTest, PathsAreBuiltAndCutToTheBuffer) {
    EXPECT_EQ(PortKeyPath(kPort), kPortPath);
    EXPECT_EQ(DriverDataKeyPath(u"KX20", false),
              u"SYSTEM\\CurrentControlSet\\Control\\Print\\Printers\\KX20\\PrinterDriverData");
    EXPECT_EQ(DriverDataKeyPath(u"\\\\srv\\q", true),
              u"Printers\\Connections\\,,srv,q\\PrinterDriverData");
    const std::u16string longPort(300, u'P');
    const std::u16string cut = PortKeyPath(longPort);
    EXPECT_EQ(cut.size(), 259u);
    EXPECT_EQ(cut, (kPortPath.substr(0, kPortPath.size() - 6) + longPort).substr(0, 259));
}

TEST_F(RegistryLayoutTest, OpenersStampBeforeOpeningAndRefuseAnEmptyPort) {
    const std::u16string logos = kPortPath + u"\\Logos";
    auto first = OpenLogosKey(p, u"KX20");
    ASSERT_NE(first, nullptr);
    // Created by the first call, so the stamp found nothing to change yet.
    EXPECT_FALSE(reg.FindKey(Hive::LocalMachine, logos)->accessList.has_value());
    EXPECT_NE(OpenLogosKey(p, u"KX20"), nullptr);
    ASSERT_TRUE(reg.FindKey(Hive::LocalMachine, logos)->accessList.has_value());
    const std::vector<AccessEntry> expected = {
        {u"S-1-5-32-544", 0xF003F}, {u"S-1-5-11", 0xF003F}, {u"S-1-5-4", 0xF003F}};
    EXPECT_EQ(*reg.FindKey(Hive::LocalMachine, logos)->accessList, expected);

    spooler.AddPrinter(u"NoPort", u"");
    EXPECT_EQ(OpenPortKey(p, u"NoPort"), nullptr);
    EXPECT_EQ(OpenLogosKey(p, u"NoPort"), nullptr);
    EXPECT_EQ(OpenMessagesKey(p, u"NoPort"), nullptr);
    EXPECT_EQ(OpenFontsKey(p, u"NoPort"), nullptr);
    EXPECT_EQ(OpenCropsKey(p, u"NoPort"), nullptr);
    EXPECT_EQ(OpenLogosKey(p, u"Unknown"), nullptr);
    // The openers make no exception for the file port.
    spooler.AddPrinter(u"ToFile", u"FILE:");
    EXPECT_NE(OpenFontsKey(p, u"ToFile"), nullptr);
    EXPECT_NE(reg.FindKey(Hive::LocalMachine, PortKeyPath(u"FILE:") + u"\\Fonts"), nullptr);
}

TEST_F(RegistryLayoutTest, ConnectionDriverDataLivesUnderTheUserAndIsNeverStamped) {
    spooler.AddPrinter(u"\\\\srv\\q").info.attributes = kPrinterAttributeNetwork;
    ASSERT_TRUE(IsPrinterConnection(p, u"\\\\srv\\q"));
    ASSERT_TRUE(SetLogSettings(p, u"\\\\srv\\q", 7));
    ASSERT_TRUE(SetLogSettings(p, u"\\\\srv\\q", 8));
    const auto* key =
        reg.FindKey(Hive::CurrentUser, u"Printers\\Connections\\,,srv,q\\PrinterDriverData");
    ASSERT_NE(key, nullptr);
    EXPECT_FALSE(key->accessList.has_value());
    EXPECT_TRUE(reg.KeyPaths(Hive::LocalMachine).empty());
    std::uint32_t v = 0;
    EXPECT_TRUE(GetLogSettings(p, u"\\\\srv\\q", v));
    EXPECT_EQ(v, 8u);

    // A local-machine key under the mangled name makes it a local printer again.
    reg.CreateKey(Hive::LocalMachine, std::u16string(kPrintersRoot) + u",,srv,q");
    EXPECT_FALSE(IsPrinterConnection(p, u"\\\\srv\\q"));
    EXPECT_FALSE(IsPrinterConnection(p, u"KX20"));  // no network attribute
}

TEST_F(RegistryLayoutTest, ConnectionStatusNeedsAValidFirstByte) {
    ConnectionStatus in{u"ID\u00e945678", 9, true, 3};
    Bytes record = BuildConnectionStatus(in);
    EXPECT_EQ(record, (Bytes{1, 1, 9, 3, 'I', 'D', 0xE9, '4', '5', '6', '7', '8'}));
    ConnectionStatus out;
    EXPECT_FALSE(GetConnectionStatus(p, kPort, out));  // no key
    PutPortValue(kConnectionStatusValue, kRegBinary, record);
    ASSERT_TRUE(GetConnectionStatus(p, kPort, out));
    EXPECT_EQ(out.identity, in.identity);
    EXPECT_EQ(out.modelCode, 9u);
    EXPECT_TRUE(out.connected);
    EXPECT_EQ(out.firmwareLevel, 3);

    record[1] = 2;  // only 1 means connected
    PutPortValue(kConnectionStatusValue, kRegBinary, record);
    ASSERT_TRUE(GetConnectionStatus(p, kPort, out));
    EXPECT_FALSE(out.connected);
    record[0] = 0;
    PutPortValue(kConnectionStatusValue, kRegBinary, record);
    EXPECT_FALSE(GetConnectionStatus(p, kPort, out));
    EXPECT_FALSE(ParseConnectionStatus(Bytes{1, 1, 9, 3, 'A'}, out));  // short record

    reg.CreateKey(Hive::LocalMachine, PortKeyPath(u"FILE:"))
        ->SetValue(kConnectionStatusValue, kRegBinary, BuildConnectionStatus(in));
    EXPECT_FALSE(GetConnectionStatus(p, u"FILE:", out));
}

TEST_F(RegistryLayoutTest, TheTwoReadingsOfTypeDifferWhenItIsMissing) {
    EXPECT_TRUE(IsPortTypeNonZero(p, kPort));  // no key at all
    EXPECT_FALSE(IsSerialConnection(p, kPort));
    PutPortValue(u"Other", kRegDword, U32Bytes(1));
    EXPECT_TRUE(IsPortTypeNonZero(p, kPort));
    EXPECT_FALSE(IsSerialConnection(p, kPort));
    EXPECT_TRUE(reg.FindKey(Hive::LocalMachine, kPortPath)->accessList.has_value());

    reg.FindKey(Hive::LocalMachine, kPortPath)->accessList.reset();
    PutPortValue(kTypeValue, kRegDword, U32Bytes(2));
    EXPECT_TRUE(IsSerialConnection(p, kPort));
    EXPECT_FALSE(reg.FindKey(Hive::LocalMachine, kPortPath)->accessList.has_value());
    EXPECT_TRUE(IsPortTypeNonZero(p, kPort));
    PutPortValue(kTypeValue, kRegDword, U32Bytes(0));
    EXPECT_FALSE(IsPortTypeNonZero(p, kPort));
    EXPECT_FALSE(IsSerialConnection(p, kPort));
    EXPECT_NE(TraceText().find(" - U: IsSerialConnection - Type:2"), std::string::npos);

    reg.CreateKey(Hive::LocalMachine, PortKeyPath(u"FILE:"))
        ->SetValue(kTypeValue, kRegDword, U32Bytes(1));
    EXPECT_FALSE(IsPortTypeNonZero(p, u"FILE:"));
    EXPECT_FALSE(IsSerialConnection(p, u"FILE:"));
    EXPECT_TRUE(IsPortTypeNonZero(p, u"file:"));  // the comparison is case-sensitive
}

TEST_F(RegistryLayoutTest, LastPrinterKeepsEverythingButItsFlagByte) {
    reg.CreateKey(Hive::LocalMachine, kPortPath);
    EXPECT_FALSE(GetLastPrinterFlag(p, kPort));
    ASSERT_TRUE(SetLastPrinterFlag(p, kPort, 0x101));
    EXPECT_EQ(reg.FindValue(Hive::LocalMachine, kPortPath, kLastPrinterValue)->data,
              (Bytes{1, 0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_TRUE(GetLastPrinterFlag(p, kPort));

    PutPortValue(kLastPrinterValue, kRegBinary, {7, 1, 2, 3, 4, 5, 6, 7, 8});
    ASSERT_TRUE(SetLastPrinterFlag(p, kPort, 0));
    const auto* v = reg.FindValue(Hive::LocalMachine, kPortPath, kLastPrinterValue);
    EXPECT_EQ(v->data, (Bytes{0, 1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(v->type, kRegBinary);
    EXPECT_FALSE(GetLastPrinterFlag(p, kPort));
    PutPortValue(kLastPrinterValue, kRegBinary, {0, 9, 9});  // written back at its own size
    ASSERT_TRUE(SetLastPrinterFlag(p, kPort, 5));
    EXPECT_EQ(reg.FindValue(Hive::LocalMachine, kPortPath, kLastPrinterValue)->data,
              (Bytes{5, 9, 9}));

    EXPECT_FALSE(SetLastPrinterFlag(p, u"FILE:", 1));
    EXPECT_FALSE(reg.FindKey(Hive::LocalMachine, PortKeyPath(u"FILE:")));
}

TEST_F(RegistryLayoutTest, FolderStringsAreStoredWithAFixedSize) {
    const std::u16string longPath = u"C:\\" + std::u16string(197, u'x');
    ASSERT_TRUE(SetLogPath(p, u"KX20", longPath));
    Bytes expected;
    for (char16_t c : longPath.substr(0, 130)) AppendU16(expected, c);
    EXPECT_EQ(DriverData(kLogPathValue), expected);
    std::u16string got;
    ASSERT_TRUE(GetLogPath(p, u"KX20", got));
    EXPECT_EQ(got, longPath.substr(0, 130));

    SetFirmwarePath(p, u"KX20", u"C:\\fw");
    expected = Bytes(260, 0);
    WriteUtf16Field(expected, 0, 6, u"C:\\fw");
    EXPECT_EQ(DriverData(kFirmwarePathValue), expected);
    EXPECT_EQ(
        reg.FindValue(Hive::LocalMachine, DriverDataKeyPath(u"KX20", false), kFirmwarePathValue)
            ->type,
        kRegString);
    ASSERT_TRUE(GetFirmwarePath(p, u"KX20", got));
    EXPECT_EQ(got, u"C:\\fw");

    got = u"unchanged";
    EXPECT_FALSE(GetLogosPath(p, u"KX20", got));
    EXPECT_EQ(got, u"unchanged");
    // A log path longer than the reader's 260 bytes is not read at all.
    OpenDriverDataKey(p, u"KX20")->SetValue(kLogPathValue, kRegString, Bytes(262, 'a'));
    EXPECT_FALSE(GetLogPath(p, u"KX20", got));
}

TEST_F(RegistryLayoutTest, SessionStateFlagReplacesEveryEarlierFlag) {
    auto key = OpenDriverDataKey(p, u"KX20");
    WriteDwordValue(*key, u"17_ss", 0);
    WriteDwordValue(*key, u"LogSettings", 3);
    WriteDwordValue(*key, u"99_ss", 1);
    WriteDwordValue(*key, u"x_ssy", 1);
    clock.processId = 4242;
    SetSessionStateFlag(p, u"KX20", true);
    const auto& values = reg.FindKey(Hive::LocalMachine, DriverDataKeyPath(u"KX20", false))->values;
    ASSERT_EQ(values.size(), 2u);
    EXPECT_EQ(values[0].name, u"LogSettings");
    EXPECT_EQ(values[1].name, u"4242_ss");
    EXPECT_EQ(values[1].data, U32Bytes(0));
    SetSessionStateFlag(p, u"KX20", false);
    EXPECT_EQ(DriverData(u"4242_ss"), U32Bytes(1));
}

TEST_F(RegistryLayoutTest, PortChecksumsAndTheMonitorDriver) {
    std::uint8_t crc[4] = {9, 9, 9, 9};
    EXPECT_FALSE(ReadPortChecksum(p, kPort, u"LogosCRC", crc));
    PutPortValue(u"LogosCRC", kRegBinary, {1, 2, 3, 4});
    ASSERT_TRUE(ReadPortChecksum(p, kPort, u"LogosCRC", crc));
    EXPECT_EQ(Bytes(crc, crc + 4), (Bytes{1, 2, 3, 4}));
    EXPECT_FALSE(ReadPortChecksum(p, u"FILE:", u"LogosCRC", crc));

    std::u16string name;
    EXPECT_FALSE(GetMonitorDriverName(p, name));
    Bytes driver;
    AppendUtf16z(driver, u"KVO KX20");
    reg.CreateKey(Hive::LocalMachine, MonitorKeyPath())->SetValue(u"Driver", kRegString, driver);
    ASSERT_TRUE(GetMonitorDriverName(p, name));
    EXPECT_EQ(name, u"KVO KX20");
}

}  // namespace
}  // namespace kx20::store
