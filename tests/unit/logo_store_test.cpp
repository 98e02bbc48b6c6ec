// Logo and message blocks byte for byte, and the download, checksum, reconciliation and
// re-download flows against the simulated printer.
#include "logos/logo_store.h"

#include "channel/command_start.h"
#include "logos/logo_payloads.h"
#include "platform/text.h"
#include "printer_rig.h"
#include "unit/test_pictures.h"

namespace kx20::logos {
namespace {

Bytes Start() {
    return Bytes(channel::kCommandStart.begin(), channel::kCommandStart.end());
}

TEST(LogoPayloads, LayoutsAreByteExact) {
    const Bytes raster(576 / 8 * 2040, 0xA5);
    const Bytes logo = BuildLogoPayload(7, 576, 2040, raster);
    ASSERT_EQ(logo.size(), 146900u);
    Bytes head = Start();
    head.insert(head.end(), {0x0F, 7, 72, 255});
    EXPECT_TRUE(std::equal(head.begin(), head.end(), logo.begin()));
    EXPECT_EQ(logo[19], 0xA5);
    EXPECT_EQ(logo.back(), 0xFF);
    EXPECT_TRUE(BuildLogoPayload(1, 576, 2048, Bytes(576 / 8 * 2048)).empty());  // 256 bands
    EXPECT_TRUE(BuildLogoPayload(1, 16, 8, Bytes(15)).empty());

    // Line feeds are left out (one byte shorter each), a character above 255 keeps its low byte.
    const Bytes message = BuildMessagePayload(3, u"A\nB\r\n\u0141");
    Bytes expected = Start();
    expected.insert(expected.end(), {0x10, 3});
    AppendBytes(expected, Start());
    expected.insert(expected.end(), {0x00, 'A', 'B', '\r', 0x41});
    AppendBytes(expected, Start());
    expected.push_back(0x11);
    AppendBytes(expected, Start());
    expected.push_back(0x00);
    EXPECT_EQ(message, expected);
}

class LogoStore : public PrinterRig {};

// A picture of pure black and white dithers to exactly its own dots.
RgbCanvas Pattern(int w, int h) {
    return testpics::Painted(w, h,
                             [](int x, int y) { return (x * 7 + y * 3) % 5 < 2 ? 0u : 0xFFFFFFu; });
}

TEST_F(LogoStore, PictureReachesThePrinterAsItsRasterAndTheChecksumIsKept) {
    const RgbCanvas picture = Pattern(64, 16);
    ASSERT_TRUE(ConvertAndDownloadLogo(Target(), 5, true, false, testpics::Bmp24(picture)));
    const sim::Logo& full = printer.state().flash.logos.at(5);
    EXPECT_EQ(full.widthBytes, 8);
    EXPECT_EQ(full.height8, 2);
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 64; ++x)
            ASSERT_EQ((full.raster[y * 8 + x / 8] >> (7 - x % 8)) & 1,
                      picture.At(x, y) == 0 ? 1 : 0);
    EXPECT_EQ(JobNames(), std::vector<std::u16string>{u"KX20 Logo 5"});
    EXPECT_TRUE(files.Get(TempPicturePath(files)));  // left in place

    // The narrow form goes in column bands: bit p of column x of band r is row 8r + p.
    ASSERT_TRUE(ConvertAndDownloadLogo(Target(), 6, false, false, testpics::Bmp24(picture)));
    const sim::Logo& narrow = printer.state().flash.logos.at(6);
    ASSERT_EQ(narrow.raster.size(), 64u * 2);
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 64; ++x)
            ASSERT_EQ((narrow.raster[(y / 8) * 64 + x] >> (y % 8)) & 1,
                      picture.At(x, y) == 0 ? 1 : 0);
    EXPECT_EQ(store::GetLogoCRC(p, kPrinter, kId), printer.Checksum(1));

    // Nothing is sent for a file that is not a picture, and the checksum stays.
    const std::uint32_t crc = store::GetLogoCRC(p, kPrinter, kId);
    EXPECT_FALSE(ConvertAndDownloadLogo(Target(), 7, true, true, Bytes(500, 'x')));
    EXPECT_EQ(spooler.jobs.size(), 2u);
    EXPECT_EQ(store::GetLogoCRC(p, kPrinter, kId), crc);
}

TEST_F(LogoStore, FailedJobWritesNoChecksumAndALockedTempFileStopsTheLogo) {
    spooler.jobStatusScript = {kJobStatusError};
    EXPECT_FALSE(ConvertAndDownloadLogo(Target(), 1, true, true, testpics::Bmp24(Pattern(8, 8))));
    EXPECT_EQ(store::GetLogoCRC(p, kPrinter, kId), 0u);

    spooler.jobStatusScript = {kJobStatusPrinted};
    files.locked.insert(ToLowerAscii(TempPicturePath(files)));
    EXPECT_FALSE(ConvertAndDownloadLogo(Target(), 1, true, true, testpics::Bmp24(Pattern(8, 8))));
    EXPECT_EQ(spooler.jobs.size(), 1u);
}

TEST_F(LogoStore, ReconciliationTrustsOnlyAMatchingNonZeroChecksum) {
    // The printer holds a logo; the catalogue has never recorded a checksum on this port.
    ASSERT_TRUE(ConvertAndDownloadLogo(Target(), 2, true, true, testpics::Bmp24(Pattern(8, 8))));
    store::RegisterLogo(p, 2, 1, 1, 3, Bytes{1, 2, 3}, kId, kPrinter);
    store::SetLogoCRC(p, kPrinter, kId, 0);
    EXPECT_TRUE(ReconcileLogos(Target()));
    EXPECT_TRUE(printer.state().flash.logos.empty());
    EXPECT_TRUE(StoredLogos().empty());

    // Matching: kept.
    ASSERT_TRUE(ConvertAndDownloadLogo(Target(), 2, true, true, testpics::Bmp24(Pattern(8, 8))));
    store::RegisterLogo(p, 2, 1, 1, 3, Bytes{1, 2, 3}, kId, kPrinter);
    EXPECT_FALSE(ReconcileLogos(Target()));
    EXPECT_EQ(StoredLogos().size(), 1u);

    // Another printer's values on the same port are left alone when this one's go.
    store::RegisterLogo(p, 4, 1, 1, 1, Bytes{9}, u"OTHERPRN", kPrinter);
    ASSERT_EQ(printer.Control(u"erase=1"), 0u);
    EXPECT_TRUE(ReconcileLogos(Target()));
    EXPECT_TRUE(StoredLogos().empty());
    EXPECT_EQ(store::ReadLogoRecords(p, kPrinter, u"OTHERPRN").size(), 1u);

    // Messages: a monitor that cannot be loaded still "answers" 0, which differs from any
    // stored checksum.
    store::RegisterMessage(p, 1, u"hi", kId, kPrinter);
    store::SetMessageCRC(p, kPrinter, kId, 1234);
    monitor.loadResult = MonitorLoad::LibraryMissing;
    EXPECT_TRUE(ReconcileMessages(Target()));
    EXPECT_TRUE(StoredMessages().empty());
}

TEST_F(LogoStore, RedownloadSendsEachRemainingItemUnderItsNumberOrClearsAll) {
    const Bytes a = testpics::Bmp24(Pattern(8, 8));
    store::RegisterLogo(p, 3, 1, 0, static_cast<std::uint32_t>(a.size()), a, kId, kPrinter);
    store::RegisterLogo(p, 9, 0, 0, static_cast<std::uint32_t>(a.size()), a, kId, kPrinter);
    store::RegisterMessage(p, 2, u"two", kId, kPrinter);
    store::RegisterMessage(p, 5, u"fi\nve", kId, kPrinter);
    ASSERT_TRUE(RedownloadLogos(Target()));
    ASSERT_TRUE(RedownloadMessages(Target()));
    EXPECT_EQ(printer.state().flash.logos.size(), 2u);
    EXPECT_EQ(printer.state().flash.logos.at(9).height8, 1);  // narrow: 8 dots in one band
    EXPECT_EQ(printer.state().flash.messages.at(5), Bytes({'f', 'i', 'v', 'e'}));
    EXPECT_EQ(store::GetLogoCRC(p, kPrinter, kId), printer.Checksum(1));
    EXPECT_EQ(store::GetMessageCRC(p, kPrinter, kId), printer.Checksum(2));

    spooler.jobStatusScript = {kJobStatusError};
    EXPECT_FALSE(RedownloadLogos(Target()));
    EXPECT_TRUE(StoredLogos().empty());
    EXPECT_FALSE(RedownloadMessages(Target()));
    EXPECT_TRUE(StoredMessages().empty());
}

}  // namespace
}  // namespace kx20::logos
