// The messages page's own parts against the simulated printer: storing (with the checksum-0
// rule), the edit, the deletion question, and a list kept while the printer is unplugged. The
// shared slot-list machinery and the connection watch are tested through the logos page.
#include "logos/messages_page.h"

#include "logos/logos_page.h"
#include "printer_rig.h"

namespace kx20::logos {
namespace {

class MessagesPage : public PrinterRig {
  protected:
    std::unique_ptr<MessagesPageModel> Open() {
        auto page = std::make_unique<MessagesPageModel>(context, 0x101);
        page->Initialise();
        return page;
    }
    bool Store(MessagesPageModel& page, int row, std::u16string_view text) {
        page.SetSelection({row});
        return page.StoreMessage(text);
    }
};

TEST_F(MessagesPage, StoredTextReachesThePrinterWithoutLineFeedsAndTheCatalogueAsTyped) {
    auto page = Open();
    ASSERT_EQ(page->Slots().size(), 25u);
    EXPECT_EQ(page->Slots()[24].name, u"Message 25");
    EXPECT_FALSE(page->StoreEnabled());
    ASSERT_TRUE(Store(*page, 3, u"Thank you\r\nfor your visit \u20AC"));
    EXPECT_EQ(printer.state().flash.messages.at(4),
              Bytes({'T', 'h', 'a', 'n', 'k', ' ', 'y', 'o', 'u', '\r', 'f', 'o', 'r',
                     ' ', 'y', 'o', 'u', 'r', ' ', 'v', 'i', 's', 'i',  't', ' ', 0xAC}));
    EXPECT_EQ(StoredMessages().at(4), u"Thank you\r\nfor your visit \u20AC");
    EXPECT_EQ(store::GetMessageCRC(p, kPrinter, kId), printer.Checksum(2));
    EXPECT_EQ(JobNames(), std::vector<std::u16string>{u"KX20 Message 4"});
    EXPECT_EQ(page->Slots()[3].state, u"Stored");
    ASSERT_EQ(prompts.broadcasts.size(), 1u);
    EXPECT_EQ(prompts.broadcasts[0].which, RefreshMessage::Messages);

    // The edit follows the selection.
    page->SetSelection({3});
    EXPECT_EQ(page->EditText(), u"Thank you\r\nfor your visit \u20AC");
    page->SetSelection({3, 4});
    EXPECT_EQ(page->EditText(), u"");
    // A used slot, an empty text or no single selection: nothing happens.
    EXPECT_FALSE(Store(*page, 3, u"again"));
    EXPECT_FALSE(Store(*page, 5, u""));
    page->SetSelection({5, 6});
    EXPECT_FALSE(page->StoreMessage(u"two rows"));
    EXPECT_EQ(spooler.jobs.size(), 1u);
    EXPECT_TRUE(prompts.boxes.empty());
}

TEST_F(MessagesPage, ChecksumZeroAfterTheDownloadWipesTheArea) {
    auto page = Open();
    store::RegisterMessage(p, 5, u"listed", kId, kPrinter);
    // The printer takes the job but stores nothing (its flash is protected): checksum 0.
    ASSERT_EQ(printer.Control(u"protect=1"), 0u);
    monitor.calls.clear();
    EXPECT_FALSE(Store(*page, 1, u"lost"));
    EXPECT_EQ(Erases(), std::vector<int>{2});
    EXPECT_TRUE(StoredMessages().empty());
    EXPECT_EQ(BoxTexts(), std::vector<std::uint32_t>{2238});
    EXPECT_FALSE(page->Slots()[1].used);

    // A failed job: the list is refilled, nothing is erased.
    ASSERT_EQ(printer.Control(u"protect=0"), 0u);
    spooler.jobStatusScript = {kJobStatusError};
    monitor.calls.clear();
    EXPECT_FALSE(Store(*page, 1, u"again"));
    EXPECT_TRUE(Erases().empty());
    EXPECT_EQ(prompts.boxes.size(), 2u);
}

TEST_F(MessagesPage, DeletingTwoOfThreeAsksOnceAndDownloadsTheThird) {
    auto page = Open();
    for (int row : {0, 1, 2}) ASSERT_TRUE(Store(*page, row, row == 1 ? u"two" : u"x"));
    spooler.jobs.clear();
    monitor.calls.clear();
    page->SetSelection({0, 2});
    prompts.answers = {box::kIdYes};
    page->DeleteSelected();
    EXPECT_EQ(prompts.boxes.back().text, u"Delete the selected messages from the printer?");
    EXPECT_EQ(Erases(), std::vector<int>{2});
    EXPECT_EQ(JobNames(), std::vector<std::u16string>{u"KX20 Message 2"});
    EXPECT_EQ(printer.state().flash.messages.size(), 1u);
    EXPECT_EQ(StoredMessages(), (std::map<std::uint32_t, std::u16string>{{2, u"two"}}));
    EXPECT_EQ(store::GetMessageCRC(p, kPrinter, kId), printer.Checksum(2));
    EXPECT_EQ(page->EditText(), u"");
}

TEST_F(MessagesPage, UnpluggedPrinterKeepsTheControlsUnreadableStatusDisablesThem) {
    ASSERT_EQ(printer.Control(u"disconnect"), 0u);
    auto unplugged = Open();
    EXPECT_EQ(unplugged->StatusText(), u"Printer: KX20 II Receipt/Slip DBCS - not ready");
    EXPECT_TRUE(unplugged->Slots().empty());
    EXPECT_TRUE(unplugged->ControlsEnabled());
    unplugged.reset();
    ASSERT_EQ(printer.Control(u"remove"), 0u);
    EXPECT_FALSE(Open()->ControlsEnabled());

    // Entered in the logos page's record, the timer reaches it.
    ASSERT_EQ(printer.Control(u"publish"), 0u);
    ASSERT_EQ(printer.Control(u"connect"), 0u);
    LogosPageModel logos(context, 0x100);
    logos.Initialise();
    auto page = Open();
    ASSERT_EQ(context.devicePages->At(DevicePageSlot::Messages), page.get());
    ASSERT_EQ(printer.Control(u"disconnect"), 0u);
    logos.Watch().Tick();
    EXPECT_TRUE(page->Slots().empty());
    EXPECT_FALSE(page->ControlsEnabled());
    EXPECT_EQ(page->StatusText(), Text(2201));
}

}  // namespace
}  // namespace kx20::logos
