#include "fonts/fonts_page.h"

#include <gtest/gtest.h>

#include "channel/printer_queries.h"
#include "device_page_fixture.h"
#include "pages/page_status.h"
#include "font_file_generators.h"
#include "platform/text.h"
#include "store/catalogue.h"

namespace kx20::fonts {
namespace {

class FontsPage : public DevicePageTest {
  protected:
    // Enabled states of 1170 to 1183, as a string of 0 and 1.
    std::string Enablement() const {
        std::string out;
        for (int id = IDC_SBCS_GROUP; id <= IDC_DBCS_IMPACT_LOAD; ++id)
            out += model.Enabled(id) ? '1' : '0';
        return out;
    }
    void RecordFont(bool thermal, std::u16string_view face, std::uint32_t crc) {
        store::RegisterDBCSFont(p, thermal, BuildDbcsFontRecord(thermal, face, 936, 1), Identity(),
                                kPrinter);
        store::SetDBCSFontCRC(p, kPrinter, Identity(), crc, thermal);
    }
    // A printer holding double-byte fonts in both stations and single-byte ones, with the
    // catalogue agreeing.
    void FillPrinterAndCatalogue() {
        auto& flash = printer.state().flash;
        flash.dbcsThermal[0x8140] = Bytes(72, 1);
        flash.dbcsImpact[0x8140] = Bytes(32, 2);
        flash.sbcsThermal['A'] = sim::SbcsGlyph{24, 24, Bytes(72, 3)};
        RecordFont(true, u"thermal.fon", printer.Checksum(6));
        RecordFont(false, u"impact.fon", printer.Checksum(7));
        store::SetSBCSFontCRC(p, kPrinter, Identity(), printer.Checksum(4));
        Bytes sbcs(700, 0);
        WriteUtf16Field(sbcs, store::kFontFaceNameOffset, 20, u"Courier");
        store::RegisterSBCSFont(p, 2, 700, sbcs, Identity(), kPrinter);
    }
    void FailChecksumQueries() {
        auto simulated = monitor.handler;
        monitor.handler = [simulated](std::u16string_view port, const std::u16string* name,
                                      ByteSpan cmd, MonitorReply& reply) -> std::uint32_t {
            return cmd[0] == 0x19 ? 31 : simulated(port, name, cmd, reply);
        };
    }

    FontsPageModel model{context, kPage};
};

TEST_F(FontsPage, WithoutAUsablePrinterOnlyTheFirstLabelStaysEnabled) {
    printer.Control(u"invalidate");
    model.Open();
    EXPECT_EQ(Enablement(), "10000000000000");
    EXPECT_EQ(model.Text(IDC_PRINTER_STATUS), Str(kStringStatusNoPrinter));
    EXPECT_FALSE(model.DbcsChecked());
    EXPECT_TRUE(monitor.calls.empty());

    printer.Control(u"publish");
    printer.Control(u"firmware=0");
    model.Open();
    EXPECT_EQ(Enablement(), "10000000000000");
    EXPECT_EQ(model.Text(IDC_DBCS_THERMAL_NAME), u"");
}

TEST_F(FontsPage, OpeningKeepsWhatAgreesAndErasesWhatDoesNot) {
    FillPrinterAndCatalogue();
    model.Open();
    EXPECT_TRUE(Erased().empty());
    EXPECT_EQ(model.Text(IDC_DBCS_THERMAL_NAME), u"thermal.fon");
    EXPECT_EQ(model.Text(IDC_DBCS_IMPACT_NAME), u"impact.fon");
    EXPECT_EQ(model.Text(IDC_SBCS_SLOT1_NAME) + model.Text(IDC_SBCS_SLOT2_NAME), u"Courier");

    // The impact station disagrees: the double-byte area and its entries go.
    store::SetDBCSFontCRC(p, kPrinter, Identity(), 0x55, false);
    monitor.calls.clear();
    model.Open();
    EXPECT_EQ(Erased(), std::vector<int>{6});
    EXPECT_EQ(model.Text(IDC_DBCS_THERMAL_NAME) + model.Text(IDC_DBCS_IMPACT_NAME), u"");
    EXPECT_EQ(model.Text(IDC_SBCS_SLOT2_NAME), u"Courier");
    EXPECT_TRUE(printer.state().flash.dbcsThermal.empty());
}

TEST_F(FontsPage, ACatalogueWithoutChecksumsErasesOnlyTheSingleByteArea) {
    // Nothing recorded, nothing held: the single-byte area is erased anyway (its catalogue says
    // 0); the double-byte areas agree at 0.
    model.Open();
    EXPECT_EQ(Erased(), std::vector<int>{4});

    // The printer cannot be asked: a catalogue 0 still erases the single-byte area, but the
    // double-byte fonts and their entries stay.
    FillPrinterAndCatalogue();
    store::SetSBCSFontCRC(p, kPrinter, Identity(), 0);
    store::SetDBCSFontCRC(p, kPrinter, Identity(), 0x99, true);
    FailChecksumQueries();
    monitor.calls.clear();
    model.Open();
    EXPECT_EQ(Erased(), std::vector<int>{4});
    EXPECT_EQ(model.Text(IDC_DBCS_THERMAL_NAME), u"thermal.fon");
    EXPECT_FALSE(printer.state().flash.dbcsThermal.empty());
}

TEST_F(FontsPage, DoubleByteControlsFollowTheModel) {
    struct Case {
        const char16_t* model;
        const char16_t* setup;
        bool checked;
        const char* enabled;  // 1170..1183
    };
    const Case cases[] = {
        {u"model=2", u"protect=0", true, "11111111111111"},
        {u"model=7", u"protect=0", true, "11111111111000"},
        {u"model=2", u"protect=1", false, "11111111000000"},
        {u"model=9", u"protect=1", true, "11111111111111"},
        {u"model=9", u"config=0xA6:13", false, "11111111000000"},
        {u"model=4", u"protect=0", false, "11111110000000"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(Utf16ToUtf8(c.model) + " " + Utf16ToUtf8(c.setup));
        printer.Control(u"reset");
        ASSERT_EQ(printer.Control(c.model), 0u);
        ASSERT_EQ(printer.Control(c.setup), 0u);
        model.Open();
        EXPECT_EQ(model.DbcsChecked(), c.checked);
        EXPECT_EQ(Enablement(), c.enabled);
    }
}

TEST_F(FontsPage, TheDoubleByteSwitch) {
    printer.Control(u"model=2");
    model.Open();
    monitor.calls.clear();
    model.OnDbcsEnabledClicked(false);
    EXPECT_EQ(Enablement(), "11111111000000");
    ASSERT_EQ(monitor.calls.size(), 3u);  // setup read, setup write (protected), commit
    EXPECT_EQ(monitor.calls[1].command, (Bytes{0x16, 0x10, 0xFE, 0xFF}));
    EXPECT_FALSE(channel::IsFlashWritable(p, kPrinter));
    EXPECT_TRUE(prompts.broadcasts.empty());  // unchecking broadcasts nothing

    model.OnDbcsEnabledClicked(true);
    EXPECT_EQ(Enablement(), "11111111111111");
    EXPECT_TRUE(channel::IsFlashWritable(p, kPrinter));
    EXPECT_EQ(prompts.broadcasts.size(), 1u);

    // Model 9: unchecking sends nothing; checking without room for fonts says so.
    printer.Control(u"model=9");
    printer.Control(u"config=0xA7:6");
    monitor.calls.clear();
    model.OnDbcsEnabledClicked(false);
    EXPECT_TRUE(monitor.calls.empty());
    model.OnDbcsEnabledClicked(true);
    EXPECT_EQ(Enablement(), "11111111000000");
    ASSERT_EQ(prompts.boxes.size(), 1u);
    EXPECT_EQ(prompts.boxes[0].text, kNoDbcsMemoryText);
    EXPECT_EQ(prompts.boxes[0].title, kNoDbcsMemoryTitle);
    EXPECT_EQ(prompts.broadcasts.size(), 2u);
    EXPECT_EQ(prompts.waitDepth, 0);
}

TEST_F(FontsPage, RefreshAndLoadShowTheNewNames) {
    model.Open();
    RecordFont(true, u"other.fon", 5);
    EXPECT_EQ(model.Text(IDC_DBCS_THERMAL_NAME), u"");
    model.Refresh();
    EXPECT_EQ(model.Text(IDC_DBCS_THERMAL_NAME), u"other.fon");

    files.Put(u"C:\\f.fon", testfiles::FonFile().Dbcs(0x81, 0x40).Build());
    model.LoadDbcsFont(
        true, [](const FileDialogRequest&) { return std::optional<std::u16string>(u"C:\\f.fon"); });
    EXPECT_EQ(model.Text(IDC_DBCS_THERMAL_NAME), u"f.fon");
    EXPECT_EQ(prompts.broadcasts.back().sender, kPage);
}

}  // namespace
}  // namespace kx20::fonts
