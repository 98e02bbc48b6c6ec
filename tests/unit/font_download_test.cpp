// Double-byte font loads end to end: generated font files through SelectDBCSFont into the
// simulated printer, checking what it stored and what the catalogue recorded.
#include "fonts/font_download.h"

#include <gtest/gtest.h>

#include "device_page_fixture.h"
#include "font_file_generators.h"
#include "store/catalogue.h"
#include "store/registry_layout.h"
#include "trace_capture.h"

namespace kx20::fonts {
namespace {

using testfiles::FntFile;
using testfiles::FonFile;
using Operands = std::pair<std::uint8_t, std::uint8_t>;

class FontDownload : public DevicePageTest {
  protected:
    FontFlowContext Flow() { return FontFlowContext{p, prompts, strings, kPage, kPrinter}; }

    // Loads `path` for the station as if the user had picked it.
    void Load(const std::u16string& path, bool thermal) {
        SelectDBCSFont(Flow(), names, thermal, [&](const FileDialogRequest& r) {
            request = r;
            return std::optional<std::u16string>(path);
        });
    }
    std::uint32_t CatalogueCrc(bool thermal) {
        return store::GetDBCSFontCRC(p, kPrinter, Identity(), thermal);
    }
    std::vector<int> DownloadedCodes(bool thermal) {
        std::vector<int> codes;
        for (const auto& [code, glyph] :
             thermal ? printer.state().flash.dbcsThermal : printer.state().flash.dbcsImpact)
            codes.push_back(code);
        return codes;
    }
    // An earlier font, recorded for both stations.
    void RecordOldFonts() {
        for (bool thermal : {true, false}) {
            store::RegisterDBCSFont(p, thermal, BuildDbcsFontRecord(thermal, u"old", 936, 1),
                                    Identity(), kPrinter);
            store::SetDBCSFontCRC(p, kPrinter, Identity(), 0x1234, thermal);
        }
    }

    FontNames names;
    FileDialogRequest request;
};

TEST_F(FontDownload, TaggedFileLoadsBothStationsAndTheSingleByteFonts) {
    FonFile f;
    f.Dbcs(0x81, 0x40).Dbcs(0x81, 0x41).Dbcs(0xA4, 0xA1).Sbcs('A').Sbcs('B');
    const Bytes file = f.Build();
    files.Put(u"C:\\fonts\\big5.fon", file);
    Load(u"C:\\fonts\\big5.fon", true);

    EXPECT_EQ(request.titleId, kStringThermalFontTitle);
    EXPECT_EQ(request.filterId, kStringTaggedFontFilter);
    const auto& flash = printer.state().flash;
    EXPECT_EQ(DownloadedCodes(true), (std::vector<int>{0x8140, 0x8141, 0xA4A1}));
    EXPECT_EQ(DownloadedCodes(false), DownloadedCodes(true));
    const Bytes record = testfiles::CharData(0x81, 0x41, true, 72, true, 32);
    EXPECT_EQ(flash.dbcsThermal.at(0x8141), Bytes(record.begin() + 8, record.begin() + 80));
    EXPECT_EQ(flash.dbcsImpact.at(0x8141), Bytes(record.begin() + 80, record.end()));
    ASSERT_EQ(flash.sbcsThermal.size(), 2u);
    EXPECT_EQ(flash.sbcsImpact.at('B').bits.size(), 32u);
    // The settings and the reset at the end of the job.
    EXPECT_EQ(printer.state().settings.at(0x50), Operands(0xB6, 3));
    EXPECT_EQ(printer.state().settings.at(0x55), Operands(0, 6));
    EXPECT_EQ(printer.state().lastResetCommand, 0x78);
    EXPECT_EQ(printer.state().lastResetParameter, 60000u);
    ASSERT_EQ(spooler.jobs.size(), 1u);
    EXPECT_EQ(spooler.jobs[0].docName, u"KX20 Double-Byte Font");

    // Font areas erased and a reset of 5000 before the job.
    EXPECT_EQ(Erased(), (std::vector<int>{3, 4, 6}));
    ASSERT_GE(monitor.calls.size(), 4u);
    EXPECT_EQ(monitor.calls[3].command, (Bytes{0x79, 0x88, 0x13, 0, 0}));

    // What the printer reports is what the catalogue records.
    EXPECT_EQ(CatalogueCrc(true), printer.Checksum(6));
    EXPECT_EQ(CatalogueCrc(false), printer.Checksum(7));
    EXPECT_EQ(store::GetSBCSFontCRC(p, kPrinter, Identity()), printer.Checksum(4));
    EXPECT_EQ(names.dbcsThermal, u"big5.fon");
    EXPECT_EQ(names.dbcsImpact, u"big5.fon");
    std::u16string recorded;
    EXPECT_TRUE(store::GetDBCSFontName(p, kPrinter, false, recorded));
    EXPECT_EQ(recorded, u"big5.fon");
    std::u16string folder;
    store::GetDBCSFontPath(p, kPrinter, folder);
    EXPECT_EQ(folder.c_str(), std::u16string(u"C:\\fonts"));
    ASSERT_EQ(prompts.broadcasts.size(), 1u);
    EXPECT_EQ(prompts.broadcasts[0].which, RefreshMessage::Fonts);
    EXPECT_TRUE(prompts.boxes.empty());
    EXPECT_EQ(prompts.waitDepth, 0);
}

TEST_F(FontDownload, AStationWithoutCharactersRecordsNothingForIt) {
    RecordOldFonts();
    FonFile f;
    f.codePage = 932;
    f.Dbcs(0x88, 0x9F, true, false);
    files.Put(u"C:\\f.fon", f.Build());
    Load(u"C:\\f.fon", false);
    EXPECT_EQ(printer.state().lastResetParameter, 45000u);
    EXPECT_EQ(printer.Checksum(7), 0u);
    EXPECT_NE(CatalogueCrc(true), 0u);
    EXPECT_EQ(CatalogueCrc(false), 0u);  // the old entry went with the erase, the zero is not kept
    std::u16string impactName = u"none";
    EXPECT_FALSE(store::GetDBCSFontName(p, kPrinter, false, impactName));
    EXPECT_EQ(names.dbcsImpact, u"");

    // One impact character is enough to record the impact font.
    FonFile one;
    one.codePage = 932;
    one.Dbcs(0x88, 0x9F, false, true);
    files.Put(u"C:\\one.fon", one.Build());
    Load(u"C:\\one.fon", false);
    EXPECT_NE(CatalogueCrc(false), 0u);
    EXPECT_EQ(CatalogueCrc(false), printer.Checksum(7));
}

TEST_F(FontDownload, TaggedFailuresStopWhereTheyHappen) {
    RecordOldFonts();
    FonFile bad;
    bad.thermalWidth = 25;
    files.Put(u"C:\\bad.fon", bad.Build());
    Load(u"C:\\bad.fon", true);
    EXPECT_TRUE(TraceHas(files, "GetFONFileMetaData"));
    EXPECT_TRUE(Erased().empty());
    EXPECT_TRUE(spooler.jobs.empty());

    // The erase fails: nothing more is done.
    files.Put(u"C:\\good.fon", FonFile().Dbcs(0x81, 0x40).Build());
    auto simulated = monitor.handler;
    monitor.handler = [&](std::u16string_view port, const std::u16string* name, ByteSpan cmd,
                          MonitorReply& reply) -> std::uint32_t {
        return cmd[0] == 0x15 ? 31 : simulated(port, name, cmd, reply);
    };
    Load(u"C:\\good.fon", true);
    EXPECT_TRUE(TraceHas(files, "OutEraseAllSectors"));
    EXPECT_TRUE(spooler.jobs.empty());
    EXPECT_EQ(CatalogueCrc(true), 0x1234u);

    // The job fails: the font areas are erased again and the catalogue forgets the fonts.
    monitor.handler = simulated;
    monitor.calls.clear();
    spooler.jobStatusScript = {kJobStatusError};
    names = {u"a", u"b", u"c", u"d"};
    Load(u"C:\\good.fon", true);
    EXPECT_EQ(Erased(), (std::vector<int>{3, 4, 6, 3, 4, 6}));
    EXPECT_EQ(CatalogueCrc(true), 0u);
    EXPECT_EQ(names.sbcs1 + names.sbcs2 + names.dbcsThermal + names.dbcsImpact, u"");
    ASSERT_EQ(prompts.boxes.size(), 1u);
    EXPECT_EQ(prompts.boxes[0].text, Str(kStringFontLoadFailed));
    EXPECT_EQ(prompts.boxes[0].style, box::kOk | box::kIconError);
}

TEST_F(FontDownload, NothingHappensWithoutAFileOrOutsideTheHours) {
    SelectDBCSFont(Flow(), names, true,
                   [](const FileDialogRequest&) { return std::optional<std::u16string>(); });
    EXPECT_TRUE(monitor.calls.empty());
    EXPECT_TRUE(prompts.boxes.empty());

    files.Put(u"C:\\good.fon", FonFile().Dbcs(0x81, 0x40).Build());
    auto& info = spooler.Find(kPrinter)->info;
    info.startTime = 10 * 60;  // 10:00 to 18:00 UTC; the clock says 09:07
    info.untilTime = 18 * 60;
    Load(u"C:\\good.fon", true);
    EXPECT_TRUE(monitor.calls.empty());
    ASSERT_EQ(prompts.boxes.size(), 1u);
    EXPECT_EQ(prompts.boxes[0].text, Str(kStringFontLoadFailed));
    clock.utc.hour = 17;
    clock.utc.minute = 59;
    Load(u"C:\\good.fon", true);
    EXPECT_EQ(spooler.jobs.size(), 1u);
}

TEST_F(FontDownload, HeaderedFileLoadsOneStationAndAsksBeforeReplacingIt) {
    printer.Control(u"model=2");
    FntFile thermal;  // 0x8840, 0x8841, 0x8940, 0x8941
    files.Put(u"C:\\fonts\\jpn24.fnt", thermal.Build(4));
    Load(u"C:\\fonts\\jpn24.fnt", true);
    EXPECT_EQ(request.filterId, kStringHeaderedFontFilter);
    EXPECT_TRUE(prompts.boxes.empty());
    EXPECT_EQ(DownloadedCodes(true), (std::vector<int>{0x8840, 0x8841, 0x8940, 0x8941}));
    EXPECT_EQ(printer.state().flash.dbcsThermal.at(0x8940)[0], 3);  // third glyph, top row
    EXPECT_EQ(printer.state().settings.at(0x50), Operands(0xA4, 3));
    EXPECT_EQ(printer.state().lastResetCommand, 0x07);
    EXPECT_EQ(CatalogueCrc(true), printer.Checksum(6));
    EXPECT_EQ(names.dbcsThermal, u"jpn24.fnt");

    // A second thermal load asks first: cancel ends the flow.
    prompts.answers = {box::kIdCancel};
    Load(u"C:\\fonts\\jpn24.fnt", true);
    ASSERT_EQ(prompts.boxes.size(), 1u);
    EXPECT_NE(prompts.boxes[0].text.find(Str(kStringThermalStation)), std::u16string::npos);
    EXPECT_EQ(prompts.boxes[0].style, box::kYesNoCancel | box::kIconWarning);
    EXPECT_EQ(spooler.jobs.size(), 1u);

    // No: the double-byte area is erased and the printer reset before the new font goes.
    FntFile other = thermal;
    other.leadRanges = {0x90, 0x90, 0, 0, 0, 0, 0, 0};
    files.Put(u"C:\\fonts\\jpn-b.fnt", other.Build(2));
    monitor.calls.clear();
    prompts.answers = {box::kIdNo};
    Load(u"C:\\fonts\\jpn-b.fnt", true);
    EXPECT_EQ(Erased(), std::vector<int>{6});
    EXPECT_EQ(monitor.calls[1].command, (Bytes{0x79, 0x10, 0x27, 0, 0}));
    EXPECT_EQ(DownloadedCodes(true), (std::vector<int>{0x9040, 0x9041}));

    // Yes: loaded beside what the printer holds; only the catalogue starts again.
    monitor.calls.clear();
    prompts.answers = {box::kIdYes};
    Load(u"C:\\fonts\\jpn24.fnt", true);
    EXPECT_TRUE(Erased().empty());
    EXPECT_EQ(DownloadedCodes(true).size(), 6u);
    EXPECT_EQ(CatalogueCrc(true), printer.Checksum(6));
}

TEST_F(FontDownload, HeaderedImpactFontAndAFileThatCannotBeParsed) {
    printer.Control(u"model=2");
    FntFile impact;
    impact.width = 16;
    impact.height = 16;
    files.Put(u"C:\\kor16.fnt", impact.Build(4));
    Load(u"C:\\kor16.fnt", false);
    EXPECT_EQ(DownloadedCodes(false).size(), 4u);
    EXPECT_EQ(printer.state().settings.at(0x01), Operands(0xFF, 0));
    EXPECT_EQ(CatalogueCrc(false), printer.Checksum(7));
    EXPECT_EQ(names.dbcsImpact, u"kor16.fnt");

    // Glyph data shorter than the header's ranges: the area and the catalogue are cleared.
    files.Put(u"C:\\kor16-cut.fnt", impact.Build(3));
    prompts.answers = {box::kIdYes};
    monitor.calls.clear();
    Load(u"C:\\kor16-cut.fnt", false);
    EXPECT_EQ(Erased(), std::vector<int>{6});
    EXPECT_EQ(CatalogueCrc(false), 0u);
    EXPECT_EQ(names.dbcsImpact, u"");
    EXPECT_EQ(prompts.boxes.back().text, Str(kStringFontLoadFailed));
    EXPECT_EQ(spooler.jobs.size(), 1u);
}

TEST_F(FontDownload, TheFileDialogRefusesAFileThatDoesNotSuit) {
    printer.Control(u"model=7");
    files.Put(u"C:\\jpn16.fnt", FntFile{.width = 16, .height = 16}.Build(1));
    EXPECT_TRUE(AcceptDbcsFontFile(Flow(), u"C:\\jpn16.fnt", false));
    EXPECT_TRUE(prompts.boxes.empty());
    EXPECT_FALSE(AcceptDbcsFontFile(Flow(), u"C:\\jpn16.fnt", true));
    ASSERT_EQ(prompts.boxes.size(), 1u);
    EXPECT_EQ(prompts.boxes[0].text, Str(kStringNotAFontFile));
}

}  // namespace
}  // namespace kx20::fonts
