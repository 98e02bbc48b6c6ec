// The station page model: lists from the attached printer's catalogue, choices kept by number
// in the station block, choices the printer no longer holds, the station fonts, and reloads.
#include "devmode/station_page.h"

#include "tests/unit/document_page_fixture.h"

namespace kx20 {
namespace {

class StationPage : public DocumentPageTest {
  protected:
    std::vector<std::u16string> Texts(const StationPageModel& page, StationList list) {
        std::vector<std::u16string> out;
        for (const StationEntry& e : page.Entries(list)) out.push_back(e.text);
        return out;
    }
    std::uint32_t BlockU32(std::size_t block, std::size_t offset) {
        return ReadU32(Priv(), block + offset);
    }
    std::u16string BlockFont(std::size_t block) {
        return ReadUtf16Field(Priv(), block + kStationFontName, 256);
    }
};

TEST_F(StationPage, ListsOfTheAttachedPrinterAndChoicesKeptByNumberInTheOwnStationBlock) {
    AddLogo(5);
    AddLogo(3);
    AddLogo(2, u"BBBBBBBB");  // another printer's
    AddMessage(7, u"Welcome\r\nback");
    AddMessage(9, u"Goodbye");
    StationPageModel page(ctx, Station::Second);
    page.Init();
    EXPECT_EQ(Texts(page, StationList::FooterLogo),
              (std::vector<std::u16string>{u"(None)", u"Logo 3", u"Logo 5"}));
    EXPECT_EQ(Texts(page, StationList::TopMessage),
              (std::vector<std::u16string>{u"(None)", u"Message 7: Welcome", u"Message 9: Goodbye"}));
    EXPECT_EQ(page.Selection(StationList::HeaderLogo), 0);
    EXPECT_NE(page.StatusText().find(kId), std::u16string::npos);
    page.Select(StationList::HeaderLogo, 2);     // Logo 5
    page.Select(StationList::FooterLogo, 1);     // Logo 3
    page.Select(StationList::TopMessage, 1);     // Message 7
    page.Select(StationList::BottomMessage, 2);  // Message 9
    page.Select(StationList::BottomMessage, 9);  // ignored
    ASSERT_NE(page.ChosenLogo(StationList::HeaderLogo), nullptr);
    EXPECT_EQ(page.ChosenLogo(StationList::HeaderLogo)->picture, Bytes(100, 5));
    EXPECT_EQ(page.ChosenMessageText(StationList::BottomMessage), u"Goodbye");
    page.Apply();

    std::vector<std::uint32_t> block;
    for (std::size_t at : {kStationHeaderLogo, kStationFooterLogo, kStationTopMessage,
                           kStationBottomMessage, kStationListSelections,
                           kStationListSelections + 12, kStationListSelections + 16,
                           kStationChoice2584})
        block.push_back(BlockU32(kPrivSecondStation, at));
    // Numbers, then list positions (Font A first), and the other choices carried.
    EXPECT_EQ(block, (std::vector<std::uint32_t>{5, 3, 7, 9, 2, 2, 0, 2}));
    // The first station's block is untouched.
    EXPECT_TRUE(std::equal(ctx.pageCopy.begin() + kDevModePublicSize + kPrivFirstStation,
                           ctx.pageCopy.begin() + kDevModePublicSize + kPrivSecondStation,
                           gsDevMode().begin() + kDevModePublicSize + kPrivFirstStation));

    // A logo stored meanwhile under a lower number shifts the list; the choice follows its
    // number, not its old position.
    AddLogo(1);
    StationPageModel again(ctx, Station::Second);
    again.Init();
    EXPECT_EQ(again.Entries(StationList::HeaderLogo)[again.Selection(StationList::HeaderLogo)].text,
              u"Logo 5");
}

TEST_F(StationPage, ChoiceThePrinterNoLongerHoldsIsKeptUntilChanged) {
    AddLogo(1);
    WriteU32(Priv(), kPrivFirstStation + kStationFooterLogo, 12);
    WriteU32(Priv(), kPrivFirstStation + kStationTopMessage, 4);
    WriteUtf16Field(Priv(), kPrivFirstStation + kStationFontName, 256, u"Gothic Thermal");
    StationPageModel page(ctx, Station::First);
    page.Init();
    const auto& footer = page.Entries(StationList::FooterLogo);
    ASSERT_EQ(footer.size(), 3u);
    EXPECT_EQ(footer[2].text, u"Logo 12 (not in the printer now)");
    EXPECT_FALSE(footer[2].inPrinter);
    EXPECT_EQ(page.Selection(StationList::FooterLogo), 2);
    EXPECT_EQ(page.ChosenLogo(StationList::FooterLogo), nullptr);
    EXPECT_EQ(page.Entries(StationList::TopMessage)[1].text, u"Message 4 (not in the printer now)");
    EXPECT_EQ(page.Entries(StationList::Font).back().text,
              u"Gothic Thermal (not in the printer now)");
    EXPECT_EQ(page.Selection(StationList::Font), 3);

    page.Apply();
    EXPECT_EQ(BlockU32(kPrivFirstStation, kStationFooterLogo), 12u);
    EXPECT_EQ(BlockFont(kPrivFirstStation), u"Gothic Thermal");
    page.Select(StationList::FooterLogo, 0);
    page.Select(StationList::Font, 1);
    page.Apply();
    EXPECT_EQ(BlockU32(kPrivFirstStation, kStationFooterLogo), 0u);
    EXPECT_EQ(BlockFont(kPrivFirstStation), u"Font B");
}

TEST_F(StationPage, EachStationOffersTheFontsOfItsHead) {
    AddDbcsFont(true, u"Gothic Thermal");
    AddDbcsFont(false, u"Mincho Impact");
    AddSbcsFont(u"Shop Font");
    StationPageModel receipt(ctx, Station::First);
    receipt.Init();
    EXPECT_EQ(Texts(receipt, StationList::Font),
              (std::vector<std::u16string>{u"Font A", u"Font B", u"Font C", u"Gothic Thermal",
                                           u"Shop Font"}));
    StationPageModel document(ctx, Station::Second);
    document.Init();
    EXPECT_EQ(Texts(document, StationList::Font),
              (std::vector<std::u16string>{u"Font A", u"Font B", u"Mincho Impact"}));
    document.Select(StationList::Font, 2);
    document.Apply();
    EXPECT_EQ(BlockFont(kPrivSecondStation), u"Mincho Impact");
}

TEST_F(StationPage, ReloadFollowsTheCatalogueAndKeepsTheChoices) {
    AddLogo(1);
    AddLogo(2);
    StationPageModel page(ctx, Station::First);
    page.Init();
    page.Select(StationList::HeaderLogo, 2);  // Logo 2
    store::DeleteLogoEntries(p, kPrinter, kId);
    AddLogo(4);
    page.Reload();
    EXPECT_EQ(
        Texts(page, StationList::HeaderLogo),
        (std::vector<std::u16string>{u"(None)", u"Logo 4", u"Logo 2 (not in the printer now)"}));
    EXPECT_EQ(page.Selection(StationList::HeaderLogo), 2);

    // Another printer on the port: its catalogue replaces the lists; the status says whose.
    ASSERT_EQ(printer.Control(u"identity=BBBBBBBB"), 0u);
    AddLogo(9, u"BBBBBBBB");
    ASSERT_EQ(printer.Control(u"disconnect"), 0u);
    page.Reload();
    EXPECT_EQ(page.Entries(StationList::HeaderLogo)[1].text, u"Logo 9");
    EXPECT_EQ(page.StatusText(), Text(3033).replace(Text(3033).find(u"%s"), 2, u"BBBBBBBB"));

    ASSERT_EQ(printer.Control(u"remove"), 0u);
    page.Reload();
    EXPECT_EQ(page.StatusText(), Text(3034));
    EXPECT_EQ(Texts(page, StationList::FooterLogo), std::vector<std::u16string>{u"(None)"});
}

}  // namespace
}  // namespace kx20
