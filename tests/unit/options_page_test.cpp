// The options page model: job options between the page and the private device mode, list 1077
// by the port's connection type, the font-override list from the catalogue, and the
// apply-state record shared with the device settings page.
#include "devmode/options_page.h"

#include "tests/unit/document_page_fixture.h"

namespace kx20 {
namespace {

class OptionsPage : public DocumentPageTest {
  protected:
    std::u16string Over(std::u16string_view name) {
        return u"Override using " + std::u16string(name);
    }
    std::u16string StoredFont() { return ReadUtf16Field(Priv(), kPrivFontOverrideName, 256); }
    std::unique_ptr<OptionsPageModel> Open(ApplyState* state = nullptr) {
        auto page = std::make_unique<OptionsPageModel>(ctx);
        page->Init(state);
        return page;
    }
};

TEST_F(OptionsPage, UnchangedPageWritesTheDefaultRecordBackAsItWas) {
    auto page = Open();
    EXPECT_EQ(page->ChoiceEntries(), std::vector<std::u16string>{Text(2070)});
    page->Apply(nullptr);
    EXPECT_TRUE(std::equal(ctx.pageCopy.begin(), ctx.pageCopy.end(), gsDevMode().begin()));
}

TEST_F(OptionsPage, ChangesReachTheirFieldsAndTheChoiceOnlyInTheSecondMode) {
    WriteU32(Priv(), kPrivOptionsChoice, 2);
    OptionsPageModel page(ctx);
    page.Init(nullptr);
    page.SelectChoice(0);  // ignored: the list is disabled in the first mode
    page.Apply(nullptr);
    EXPECT_EQ(ReadU32(Priv(), kPrivOptionsChoice), 2u) << "1067 is read only when 1065 is checked";

    page.SetModeFirst(false);
    EXPECT_TRUE(page.ChoiceEnabled());
    EXPECT_EQ(page.ChoiceEntries(),
              (std::vector<std::u16string>{Text(2071), Text(2072), Text(2073)}));
    EXPECT_EQ(page.ChoiceSelection(), 2) << "the stored choice comes back with the second mode";
    page.SelectChoice(1);
    page.SelectChoice(3);  // out of range
    page.SetCutPaper(false);
    page.SetFlag(0, true);
    page.SetFlag(2, false);
    page.SetFlag(3, true);
    page.SelectDensity(4);
    page.SelectFont(4);
    page.Apply(nullptr);

    std::vector<std::uint32_t> fields;
    for (std::size_t at : {kPrivOptionsModeFlag, kPrivOptionsChoice, kPrivBCutPaper,
                           kPrivOptionFlag56, kPrivOptionFlag60, kPrivOptionFlag64,
                           kPrivOptionFlag68, kPrivDensity})
        fields.push_back(ReadU32(Priv(), at));
    EXPECT_EQ(fields, (std::vector<std::uint32_t>{0, 1, 0, 1, 0, 0, 1, 4}));
    EXPECT_EQ(StoredFont(), Over(u"Font B"));

    // Reopened, the page shows what was applied.
    auto again = Open();
    EXPECT_FALSE(again->ModeFirst());
    EXPECT_EQ(again->ChoiceSelection(), 1);
    EXPECT_EQ(again->FontSelection(), 4);
    EXPECT_EQ(again->DensitySelection(), 4);
}

TEST_F(OptionsPage, OutOfRangeStoredChoicesShowSensibleEntries) {
    WriteU32(Priv(), kPrivOptionsModeFlag, 0);
    WriteU32(Priv(), kPrivOptionsChoice, 7);
    WriteU32(Priv(), kPrivDensity, 99);
    WriteUtf16Field(Priv(), kPrivFontOverrideName, 256, u"Override using Font Z");
    auto page = Open();
    EXPECT_EQ(page->ChoiceSelection(), 0);
    EXPECT_EQ(page->DensitySelection(), 2);
    EXPECT_EQ(page->FontSelection(), 0) << "an unknown override name leaves the first entry";
    page->Apply(nullptr);
    EXPECT_EQ(StoredFont(), u"Do not override font");
}

TEST_F(OptionsPage, FlowListFollowsThePortConnectionType) {
    for (std::uint32_t type : {0u, 1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u}) {
        SCOPED_TRACE(type);
        SetPortType(type);
        ctx.pageCopy = gsDevMode();
        WriteU32(Priv(), kPrivFlow, 0);
        auto page = Open();
        const bool offered = type == 3 || type == 5 || type == 7;
        EXPECT_EQ(page->FlowEnabled(), offered);
        EXPECT_EQ(page->FlowSelection(), offered ? 0 : 1);
        page->SelectFlow(offered ? 1 : 0);
        page->Apply(nullptr);
        EXPECT_EQ(ReadU32(Priv(), kPrivFlow), offered ? 1u : 2u);
    }
    // No port key at all: the configuration cannot be read.
    spooler.Find(kPrinter)->info.portName = u"";
    EXPECT_FALSE(Open()->FlowEnabled());
}

TEST_F(OptionsPage, FontListTakesTheCatalogueFontsInOrder) {
    AddDbcsFont(false, u"Mincho Impact");
    AddDbcsFont(true, u"Gothic Thermal");
    AddSbcsFont(u"Shop Logo Font");
    // Another printer's font on the same port is not offered.
    ASSERT_TRUE(
        store::RegisterSBCSFont(p, 2, 700, FontRecord(2, u"Other", 700), u"BBBBBBBB", kPrinter));
    WriteUtf16Field(Priv(), kPrivFontOverrideName, 256, Over(u"Mincho Impact"));
    auto page = Open();
    const auto& entries = page->FontEntries();
    ASSERT_EQ(entries.size(), 9u);
    EXPECT_EQ(entries[0], u"Do not override font");
    EXPECT_EQ(entries[5], Over(u"Font C"));
    EXPECT_EQ(std::vector(entries.begin() + 6, entries.end()),
              (std::vector{Over(u"Gothic Thermal"), Over(u"Mincho Impact"), Over(u"Shop Logo Font")}));
    EXPECT_EQ(page->FontSelection(), 7);

    // A printer whose status cannot be read has no catalogue.
    ASSERT_EQ(printer.Control(u"remove"), 0u);
    auto offline = Open();
    EXPECT_EQ(offline->FontEntries().size(), 6u);
    EXPECT_EQ(offline->FontSelection(), 0);
}

TEST_F(OptionsPage, DocumentStationForcesTheFirstModeAndShortensTheFontList) {
    AddDbcsFont(true, u"Gothic Thermal");
    AddSbcsFont(u"Shop Logo Font");
    WriteU32(Priv(), kPrivOptionsModeFlag, 0);
    WriteUtf16Field(Priv(), kPrivFontOverrideName, 256, Over(u"Gothic Thermal"));
    ctx.applyState.stationSelection = 1;
    OptionsPageModel page(ctx);
    page.Init(&ctx.applyState);

    EXPECT_TRUE(page.ModeFirst());
    EXPECT_TRUE(page.ModeLocked());
    page.SetModeFirst(false);
    EXPECT_TRUE(page.ModeFirst()) << "the radios are disabled";
    EXPECT_EQ(page.CutPaperLabel(), 1071u);
    ASSERT_EQ(page.FontEntries().size(), 6u) << "Font C and the double-byte font are not offered";
    EXPECT_EQ(page.FontEntries()[4], Over(u"Font B"));
    EXPECT_EQ(page.FontEntries()[5], Over(u"Shop Logo Font"));
    EXPECT_EQ(page.FontSelection(), 0);

    // Back on the receipt station the page offers everything again and keeps its choice.
    page.SelectFont(5);
    ctx.applyState.stationSelection = 0;
    page.FollowDeviceSettings(&ctx.applyState);
    EXPECT_FALSE(page.ModeLocked());
    EXPECT_EQ(page.CutPaperLabel(), 1070u);
    EXPECT_EQ(page.FontEntries()[page.FontSelection()], Over(u"Shop Logo Font"));
    page.SetModeFirst(false);

    // And to the document station again: the mode is forced once more.
    ctx.applyState.stationSelection = 1;
    page.FollowDeviceSettings(&ctx.applyState);
    EXPECT_TRUE(page.ModeFirst());
    page.Apply(&ctx.applyState);
    EXPECT_EQ(ReadU32(Priv(), kPrivOptionsModeFlag), 1u);
}

TEST_F(OptionsPage, ApplyStateRecordMirrorsThePage) {
    SetPortType(5);
    auto page = Open(&ctx.applyState);
    const ApplyState& s = ctx.applyState;
    EXPECT_EQ(s.optionsMode, 1u);
    EXPECT_EQ(s.optionsChoiceText, Text(2070));
    EXPECT_EQ(s.bOptionsCutPaper, 1u);
    EXPECT_EQ(s.optionFlags, (std::array<std::uint32_t, 4>{0, 0, 1, 0}));
    EXPECT_EQ(s.optionFirstEntry, 0u) << "stored 2 shows the second entry";
    EXPECT_EQ(s.densityText, Text(3047));

    page->SetModeFirst(false);
    page->SelectChoice(2);
    page->SetCutPaper(false);
    page->SelectFlow(0);
    page->SelectFont(3);
    EXPECT_EQ(s.bOptionsCutPaper, 1u) << "the record changes on Apply, not on every click";
    page->Apply(&ctx.applyState);
    EXPECT_EQ(s.optionsMode, 0u);
    EXPECT_EQ(s.optionsChoiceText, Text(2073));
    EXPECT_EQ(s.bOptionsCutPaper, 0u);
    EXPECT_EQ(s.optionFirstEntry, 1u);
    EXPECT_EQ(s.fontOverrideText, Over(u"Font A"));
}

TEST_F(OptionsPage, LongCatalogueFontNameIsCutToTheField) {
    const std::u16string longName(300, u'x');
    AddSbcsFont(longName);
    auto page = Open(&ctx.applyState);
    page->SelectFont(static_cast<int>(page->FontEntries().size()) - 1);
    page->Apply(&ctx.applyState);
    EXPECT_EQ(StoredFont(), (u"Override using " + longName).substr(0, 255));
    EXPECT_EQ(ReadU16(Priv(), kPrivFontOverrideName + 255 * 2), 0) << "terminated in the field";
    EXPECT_EQ(ctx.applyState.fontOverrideText.size(), 255u);
    EXPECT_EQ(ReadU32(Priv(), kPrivFirstStation), 0u) << "the station block behind is intact";
    EXPECT_EQ(ReadUtf16Field(Priv(), kPrivFirstStation + kStationFontName, 256), u"Font A");
}

TEST_F(OptionsPage, RecordWithoutRoomForItsPrivatePartIsReadAt220) {
    WriteU16(MutableByteSpan(ctx.pageCopy), kOffDmSize, 400);  // 400 + 5784 > 6004
    WriteU32(Priv(), kPrivBCutPaper, 0);
    auto page = Open();
    EXPECT_FALSE(page->CutPaper());
    page->SetCutPaper(true);
    page->Apply(nullptr);
    EXPECT_EQ(ReadU32(Priv(), kPrivBCutPaper), 1u);
}

}  // namespace
}  // namespace kx20
