#include "firmware/maintenance_page.h"

#include <gtest/gtest.h>

#include "device_page_fixture.h"
#include "pages/page_status.h"
#include "firmware/firmware_file.h"
#include "font_file_generators.h"
#include "store/catalogue.h"
#include "store/registry_layout.h"

namespace kx20::firmware {
namespace {

class MaintenancePage : public DevicePageTest {
  protected:
    std::string Enablement() const {
        std::string out;
        for (int id : {IDC_ABOUT_BUTTON, IDC_FIRMWARE_LABEL, IDC_FIRMWARE_PATH, IDC_FIRMWARE_BROWSE,
                       IDC_FIRMWARE_UPDATE, IDC_LAST_PRINTER, IDC_MAINTENANCE, IDC_CLEAR_ALL,
                       IDC_PRINTER_STATUS})
            out += model.Enabled(id) ? '1' : '0';
        return out;
    }
    // One entry of every kind in the catalogue of the printer now attached.
    void FillCatalogue() {
        const std::u16string id = Identity();
        store::RegisterLogo(p, 1, 0, 0, 4, Bytes{1, 2, 3, 4}, id, kPrinter);
        store::RegisterMessage(p, 1, u"Thank you", id, kPrinter);
        store::SetSBCSFontCRC(p, kPrinter, id, 7);
        store::RegisterDBCSFont(p, true, Bytes(40, 0), id, kPrinter);
        store::SetDBCSFontCRC(p, kPrinter, id, 9, true);
    }
    std::size_t FontValues() {
        auto* key = registry.FindKey(Hive::LocalMachine, store::PortKeyPath(kPort) + u"\\Fonts");
        return key ? key->values.size() : 0;
    }
    std::vector<RefreshMessage> Broadcasts() {
        std::vector<RefreshMessage> out;
        for (const auto& b : prompts.broadcasts) out.push_back(b.which);
        return out;
    }

    MaintenancePageModel model{context, kPage};
};

TEST_F(MaintenancePage, WithoutAStatusOnlyTheAboutButtonIsUsable) {
    printer.Control(u"remove");
    model.Open();
    EXPECT_EQ(Enablement(), "100000001");
    EXPECT_FALSE(model.LastPrinterChecked());
    EXPECT_EQ(model.Focus(), IDC_ABOUT_BUTTON);
    EXPECT_EQ(model.Text(IDC_PRINTER_STATUS), Str(kStringStatusNoPrinter));

    printer.Control(u"publish");
    printer.Control(u"firmware=0");
    model.Open();
    EXPECT_EQ(Enablement(), "111111111");
    EXPECT_EQ(model.Text(IDC_PRINTER_STATUS),
              u"Printer: " + Str(2218) + Str(kStringStatusNoFirmware));
}

TEST_F(MaintenancePage, TheLastPrinterFlagIsStoredAsClickedEvenWhenDeclined) {
    model.Open();
    prompts.answers = {box::kIdNo};
    model.OnLastPrinterClicked(true);
    EXPECT_FALSE(model.LastPrinterChecked());
    EXPECT_TRUE(store::GetLastPrinterFlag(p, kPort));  // deliberately stored as set
    EXPECT_EQ(prompts.boxes[0].text,
              u"This changes the printer on port KX20_USB1. Do you want to continue?");
    EXPECT_TRUE(model.Enabled(IDC_MAINTENANCE));

    prompts.answers = {box::kIdYes};
    model.OnLastPrinterClicked(true);
    model.Open();
    EXPECT_TRUE(model.LastPrinterChecked());
    EXPECT_FALSE(model.Enabled(IDC_MAINTENANCE));

    model.OnLastPrinterClicked(false);
    EXPECT_TRUE(model.Enabled(IDC_MAINTENANCE));
    EXPECT_FALSE(store::GetLastPrinterFlag(p, kPort));
    EXPECT_EQ(prompts.boxes.size(), 2u);
}

TEST_F(MaintenancePage, UpdateAsksWithTheLevelsAndFlashes) {
    files.Put(u"C:\\fw\\kx20.bin", testfiles::FirmwareFile(0x42, 1, 3, 300));
    model.Open();
    FileDialogRequest seen;
    model.Browse([&](const FileDialogRequest& r) {
        seen = r;
        EXPECT_FALSE(r.accept(u"C:\\fw\\none.bin"));
        EXPECT_TRUE(r.accept(u"C:\\fw\\kx20.bin"));
        return std::optional<std::u16string>(u"C:\\fw\\kx20.bin");
    });
    EXPECT_EQ(seen.titleId, kStringFirmwareTitle);
    EXPECT_EQ(model.Text(IDC_FIRMWARE_PATH), u"C:\\fw\\kx20.bin");
    std::u16string folder;
    store::GetFirmwarePath(p, kPrinter, folder);
    EXPECT_EQ(folder.c_str(), std::u16string(u"C:\\fw"));

    prompts.answers = {box::kIdNo};
    model.Update();
    ASSERT_EQ(prompts.boxes.size(), 1u);
    EXPECT_EQ(prompts.boxes[0].text, FirmwareLevelQuestion(strings, 0x40, 0x42));
    EXPECT_TRUE(spooler.jobs.empty());

    prompts.answers = {box::kIdYes};
    model.Update();
    EXPECT_EQ(printer.state().firmwareLevel, 0x42);
    ASSERT_EQ(prompts.boxes.size(), 3u);
    EXPECT_EQ(prompts.boxes[2].text, Str(kStringFlashDone));
    EXPECT_EQ(model.Text(IDC_FIRMWARE_PATH), u"");
    EXPECT_EQ(model.Focus(), IDC_FIRMWARE_BROWSE);
    EXPECT_EQ(prompts.waits, 1);

    // An empty path or a file that does not fit does nothing at all.
    model.Update();
    model.SetFilePath(u"C:\\fw\\none.bin");
    model.Update();
    EXPECT_EQ(prompts.boxes.size(), 3u);

    model.SetFilePath(u"C:\\fw\\kx20.bin");
    spooler.Find(kPrinter)->info.startTime = 1;
    spooler.Find(kPrinter)->info.untilTime = 2;
    model.Update();
    EXPECT_EQ(prompts.boxes.back().text, Str(kStringOutsideHours));
    EXPECT_EQ(spooler.jobs.size(), 1u);
}

TEST_F(MaintenancePage, ClearAllKeepsDoubleByteEntriesOnlyForModelsWithoutThem) {
    printer.Control(u"model=4");
    FillCatalogue();
    model.Open();
    prompts.answers = {box::kIdNo};
    model.ClearAll();
    EXPECT_TRUE(Erased().empty());

    prompts.answers = {box::kIdYes};
    model.ClearAll();
    EXPECT_EQ(Erased(), (std::vector<int>{1, 2, 3, 4}));
    EXPECT_TRUE(store::ReadLogoRecords(p, kPrinter, Identity()).empty());
    EXPECT_TRUE(store::ReadMessageRecords(p, kPrinter, Identity()).empty());
    EXPECT_EQ(store::GetSBCSFontCRC(p, kPrinter, Identity()), 0u);
    EXPECT_EQ(store::GetDBCSFontCRC(p, kPrinter, Identity(), true), 9u);
    EXPECT_EQ(FontValues(), 2u);
    EXPECT_EQ(monitor.calls.back().command, (Bytes{0x79, 0xB8, 0x0B, 0, 0}));
    EXPECT_EQ(Broadcasts(), (std::vector{RefreshMessage::Logos, RefreshMessage::Messages,
                                         RefreshMessage::Fonts}));

    printer.Control(u"model=9");
    FillCatalogue();
    monitor.calls.clear();
    prompts.answers = {box::kIdYes};
    model.ClearAll();
    EXPECT_EQ(Erased(), (std::vector<int>{1, 2, 3, 4, 6}));
    EXPECT_EQ(FontValues(), 0u);
}

TEST_F(MaintenancePage, TheMaintenanceCommandAfterTheQuestion) {
    model.Open();
    prompts.answers = {box::kIdNo, box::kIdYes};
    model.Maintenance();
    EXPECT_EQ(printer.state().maintenanceCommands, 0u);
    model.Maintenance();
    EXPECT_EQ(printer.state().maintenanceCommands, 1u);
    EXPECT_TRUE(monitor.calls.back().hasPrinterName);
}

}  // namespace
}  // namespace kx20::firmware
