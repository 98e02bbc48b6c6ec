#include "firmware/firmware_file.h"

#include <gtest/gtest.h>

#include "device_page_fixture.h"
#include "font_file_generators.h"

namespace kx20::firmware {
namespace {

using testfiles::FirmwareFile;

bool Valid(const Bytes& file, std::uint32_t model) {
    FirmwareHeader h;
    return ReadFirmwareHeader(file, h, nullptr) && FirmwareFitsModel(h, model);
}

TEST(FirmwareHeader, FamiliesModelsAndLevels) {
    EXPECT_TRUE(Valid(FirmwareFile(0x5A, 1, 1, 10), 4));
    EXPECT_FALSE(Valid(FirmwareFile(0x5A, 1, 1, 10), 2));
    EXPECT_TRUE(Valid(FirmwareFile(0x5D, 1, 2, 10), 7));
    EXPECT_TRUE(Valid(FirmwareFile(0x30, 1, 1, 10), 5));
    EXPECT_FALSE(Valid(FirmwareFile(0x2F, 1, 1, 10), 5));
    EXPECT_FALSE(Valid(FirmwareFile(0x5E, 1, 1, 10), 1));
    EXPECT_FALSE(Valid(FirmwareFile(0x5E, 1, 2, 10), 2));
    EXPECT_TRUE(Valid(FirmwareFile(0x5E, 1, 3, 10), 8));
    EXPECT_FALSE(Valid(FirmwareFile(0x5D, 1, 3, 10), 8));
    EXPECT_TRUE(Valid(FirmwareFile(0x01, 1, 3, 10), 9));
    EXPECT_FALSE(Valid(FirmwareFile(0x40, 1, 3, 10), 2));
    EXPECT_FALSE(Valid(FirmwareFile(0x40, 1, 4, 10), 9));
    EXPECT_FALSE(Valid(FirmwareFile(0x40, 0, 3, 10), 9));  // BootLevel 0
}

TEST(FirmwareHeader, LinesAreReadAtTheirPlacesWithTheScanRules) {
    FirmwareHeader h;
    std::uint32_t ec = 0;
    // Lines out of order: line 2 is not BootLevel. The level of line 1 is out all the same.
    EXPECT_FALSE(
        ReadFirmwareHeader(FirmwareFile("EcLevel 41\nDevType 3\nBootLevel 1\n", 4), h, &ec));
    EXPECT_EQ(ec, 0x41u);
    EXPECT_FALSE(ReadFirmwareHeader(FirmwareFile("EcLevel 41\nBootLevel 1", 0), h, &ec));
    EXPECT_FALSE(
        ReadFirmwareHeader(FirmwareFile("ECLevel 41\nBootLevel 1\nDevType 3\n", 4), h, &ec));
    ASSERT_TRUE(
        ReadFirmwareHeader(FirmwareFile("EcLevel  0x5a\r\nBootLevel 1\nDevType 3", 0), h, &ec));
    EXPECT_EQ(h.ecLevel, 0x5Au);
    EXPECT_EQ(h.devType, 3u);
    // A line without a number reads as 0, which the level rule refuses.
    EXPECT_FALSE(
        ReadFirmwareHeader(FirmwareFile("EcLevel zz\nBootLevel 1\nDevType 3\n", 0), h, &ec));

    std::uint32_t v = 0;
    EXPECT_TRUE(ScanWordAndHex("DevType 1FFFFFFFFF", v));
    EXPECT_EQ(v, 0xFFFFFFFFu);
    EXPECT_TRUE(ScanWordAndHex("DevType -2", v));
    EXPECT_EQ(v, 0xFFFFFFFEu);
    EXPECT_TRUE(ScanWordAndHex("DevType 0xg", v));
    EXPECT_EQ(v, 0u);
    EXPECT_FALSE(ScanWordAndHex("DevType", v));
    EXPECT_FALSE(ScanWordAndHex("   ", v));
}

class Firmware : public DevicePageTest {};

TEST_F(Firmware, ValidationAgainstThePrinterAndTheFlash) {
    files.Put(u"C:\\fw\\kx20.bin", FirmwareFile(0x41, 2, 3, 500));
    std::uint32_t ec = 0;
    EXPECT_TRUE(ValidateFirmwareFile(p, kPrinter, u"C:\\fw\\kx20.bin", ec));
    EXPECT_EQ(ec, 0x41u);
    printer.Control(u"model=2");
    ec = 0;
    EXPECT_FALSE(ValidateFirmwareFile(p, kPrinter, u"C:\\fw\\kx20.bin", ec));
    EXPECT_EQ(ec, 0x41u);
    printer.Control(u"model=9");
    printer.Control(u"remove");
    EXPECT_FALSE(ValidateFirmwareFile(p, kPrinter, u"C:\\fw\\kx20.bin", ec));
    EXPECT_FALSE(ValidateFirmwareFile(p, kPrinter, u"C:\\fw\\none.bin", ec));
    printer.Control(u"publish");

    ASSERT_TRUE(OutFlashFirmware(strings, p, kPrinter, u"C:\\fw\\kx20.bin"));
    ASSERT_EQ(spooler.jobs.size(), 1u);
    EXPECT_EQ(spooler.jobs[0].docName, u"KX20 Firmware Update");
    EXPECT_EQ(spooler.jobs[0].data.size(), files.Get(u"C:\\fw\\kx20.bin")->size() + 31);
    EXPECT_EQ(printer.state().firmwareLevel, 0x41);
    EXPECT_EQ(printer.state().firmwareUpdates, 1u);

    // A file that cannot be read sends an empty job: the job's end alone decides.
    EXPECT_TRUE(OutFlashFirmware(strings, p, kPrinter, u"C:\\fw\\none.bin"));
    EXPECT_TRUE(spooler.jobs[1].data.empty());
    spooler.jobStatusScript = {kJobStatusDeleted};
    EXPECT_FALSE(OutFlashFirmware(strings, p, kPrinter, u"C:\\fw\\kx20.bin"));
}

TEST_F(Firmware, TheQuestionNamesTheWayTheLevelGoes) {
    const std::u16string head = Str(kStringLevelQuestion) + u"\n";
    EXPECT_EQ(FirmwareLevelQuestion(strings, 0x40, 0x41),
              head + u"The printer has firmware level 40; the file holds the newer level 41.");
    EXPECT_EQ(FirmwareLevelQuestion(strings, 0x41, 0x41),
              head + u"The printer already has firmware level 41.");
    EXPECT_EQ(FirmwareLevelQuestion(strings, 0x5D, 0x30),
              head + u"The printer has firmware level 5D; the file holds the older level 30.");
}

}  // namespace
}  // namespace kx20::firmware
