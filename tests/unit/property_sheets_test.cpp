// Both property sheets assembled against a collecting sheet service: page order, ids, flags,
// titles from the resource module, the optional page module on the systems that use it, and
// the document sheet's page copy and result.
#include "entry/property_sheets.h"

#include <gtest/gtest.h>

#include "entry/document_properties.h"
#include "platform/memory/memory_platform.h"
#include "platform/memory/memory_prompts.h"
#include "platform/memory/memory_sheets.h"
#include "platform/memory/memory_system.h"
#include "platform/trace.h"
#include "store/registry_layout.h"

namespace kx20 {
namespace {

constexpr char16_t kFolder[] = u"C:\\spool\\drivers\\x64\\3";
constexpr char16_t kModule[] = u"C:\\spool\\drivers\\x64\\3\\KVORSENU.DLL";

class SheetTest : public ::testing::Test, protected MemoryPlatform {
  protected:
    void SetUp() override {
        SetTraceTarget(&files, &clock, {u"marker", u"out"});
        files.Put(u"marker", {});
        auto& printer = spooler.AddPrinter(u"KX20", u"KX20_USB1");
        DriverInfo driver;
        driver.name = u"KVO KX20";
        driver.dependentFiles = {kModule};
        printer.driver = driver;
        system.AddModule(kModule);
        ResetCurrentDefaults();
    }
    void TearDown() override { SetTraceTarget(nullptr, nullptr); }

    std::int32_t Device(std::int32_t reason, std::u16string_view name = u"KX20") {
        SheetCall call{reason, name, &sheet, &context, &result};
        return DevicePropertySheets(ports, call);
    }
    std::int32_t Document(std::int32_t reason, DocumentRecords records = {}) {
        SheetCall call{reason, u"KX20", &sheet, &context, &result};
        return DocumentPropertySheets(ports, call, records);
    }
    std::vector<std::uint32_t> AddedIds() const {
        std::vector<std::uint32_t> ids;
        for (const auto& a : sheet.added) ids.push_back(a.page.templateId);
        return ids;
    }

    MemorySystem system;
    ScriptedPrompts prompts;
    SheetPorts ports{p, system, prompts};
    CollectingSheet sheet;
    std::unique_ptr<SheetContext> context;
    std::intptr_t result = 0;
};

TEST_F(SheetTest, DeviceSheetDescribesItsFivePages) {
    registry.CreateKey(Hive::LocalMachine, store::PortKeyPath(u"KX20_USB1"))
        ->SetValue(u"ConnectionStatus", kRegBinary,
                   store::BuildConnectionStatus({u"AAAAAAAA", 7, true, 0x41}));
    ASSERT_EQ(Device(psui::kInit), 1);
    EXPECT_EQ(result, 1);
    ASSERT_NE(context, nullptr);
    EXPECT_EQ(AddedIds(), (std::vector<std::uint32_t>{1007, 1008, 1009, 1010, 1011}));
    const char16_t* titles[] = {u"Logos", u"Messages", u"Fonts", u"Maintenance", u"Log Settings"};
    for (std::size_t i = 0; i < sheet.added.size(); ++i) {
        const auto& a = sheet.added[i];
        EXPECT_EQ(a.page.title, titles[i]);
        EXPECT_EQ(a.page.flags, 0x428u);
        EXPECT_EQ(a.page.instance, context->resources->Id());
        EXPECT_EQ(a.page.parameter, reinterpret_cast<std::uintptr_t>(context.get()));
    }
    EXPECT_EQ(context->printerName, u"KX20");
    EXPECT_EQ(context->driverName, u"KVO KX20");
    EXPECT_EQ(context->helpPath, u"C:\\spool\\drivers\\x64\\3\\KVORSENU.HLP");
    EXPECT_TRUE(context->docDevMode.empty());
    EXPECT_TRUE(context->settings->IsOpen());
    EXPECT_EQ(context->port.identity, u"AAAAAAAA");

    EXPECT_EQ(Device(psui::kGetInfoHeader), 1);
    EXPECT_EQ(Device(psui::kDestroy), 1);
    EXPECT_EQ(context, nullptr);
    EXPECT_EQ(system.modulesReleased, 1);
}

TEST_F(SheetTest, SheetsRefuseOrOnlyAcknowledgeWhatTheyCannotServe) {
    // The common sheet's first call (before its initialisation) is not one of the driver's.
    EXPECT_EQ(Device(5), -1);
    EXPECT_EQ(Device(-1), -1);
    EXPECT_EQ(Device(psui::kInit, u"Nowhere"), -1);
    EXPECT_EQ(Document(psui::kGetInfoHeader), 1);
    EXPECT_EQ(Document(psui::kGetIcon), 1);
    EXPECT_EQ(Document(7), -1);
    EXPECT_EQ(context, nullptr);
    EXPECT_TRUE(sheet.added.empty());
    EXPECT_EQ(result, 0);

    // Read access is enough for the sheet.
    spooler.Find(u"KX20")->grantable = kPrinterRead;
    EXPECT_EQ(Device(psui::kInit), 1);
    EXPECT_EQ(context->settings->GrantedAccess(), kPrinterRead);
}

TEST_F(SheetTest, AnyLanguageLoadsTheEnglishModuleAndWithoutItThePagesAreStillDescribed) {
    system.locale = 0x0411;
    ASSERT_EQ(Device(psui::kInit), 1);
    EXPECT_EQ(system.loadAttempts, std::vector<std::u16string>{kModule});
    Device(psui::kDestroy);
    sheet.added.clear();

    MemorySystem none;
    SheetPorts bare{p, none, prompts};
    SheetCall call{psui::kInit, u"KX20", &sheet, &context, &result};
    ASSERT_EQ(DevicePropertySheets(bare, call), 1);
    ASSERT_EQ(sheet.added.size(), 5u);
    EXPECT_EQ(sheet.added[0].page.instance, 0u);
    EXPECT_EQ(sheet.added[0].page.title, u"");
    EXPECT_EQ(context->helpPath, u"");
}

TEST_F(SheetTest, NewerSystemsHaveThePageModuleMakeThePages) {
    system.pageModuleLoad = PageModuleLoad::Loaded;
    system.workingFolder = u"C:\\work";
    for (SystemVersion v : {SystemVersion{5, 0, 2195}, {5, 1, 2600}, {5, 2, 3790}, {6, 1, 7601}}) {
        const int minor = static_cast<int>(v.major * 10 + v.minor);
        const bool newer = minor == 51 || minor == 52;
        system.version = v;
        system.folderChanges.clear();
        sheet.added.clear();
        ASSERT_EQ(Device(psui::kInit), 1);
        ASSERT_EQ(sheet.added.size(), 5u) << minor;
        for (const auto& a : sheet.added) EXPECT_EQ(a.asHandle, newer) << minor;
        if (newer) {
            EXPECT_EQ(system.pageModuleName, u"Kvorsxps.dll");
            EXPECT_EQ(system.pageModuleFolder, kFolder) << "loaded from the driver's folder";
            EXPECT_EQ(system.folderChanges, (std::vector<std::u16string>{kFolder, u"C:\\work"}));
            EXPECT_EQ(system.pageModuleReleases, system.pageModuleLoads);
        } else {
            EXPECT_TRUE(system.folderChanges.empty());
        }
        Device(psui::kDestroy);
    }
}

TEST_F(SheetTest, PagesTheModuleDoesNotMakeAreSkipped) {
    system.version = {5, 1, 2600};
    system.pageModuleLoad = PageModuleLoad::Loaded;
    system.makePage = [](const PageDescription& page) -> PageHandle {
        return page.templateId == 1009 ? 0 : 0x7000 + page.templateId;
    };
    ASSERT_EQ(Device(psui::kInit), 1);
    std::vector<PageHandle> handles;
    for (const auto& a : sheet.added) handles.push_back(a.handle);
    EXPECT_EQ(handles, (std::vector<PageHandle>{0x7000 + 1007, 0x7000 + 1008, 0x7000 + 1010,
                                                0x7000 + 1011}));

    // Without the module no page can be made, and the folder is restored all the same.
    Device(psui::kDestroy);
    sheet.added.clear();
    system.pageModuleLoad = PageModuleLoad::EntryMissing;
    system.folderChanges.clear();
    ASSERT_EQ(Device(psui::kInit), 1);
    EXPECT_TRUE(sheet.added.empty());
    EXPECT_EQ(system.folderChanges.size(), 2u);
}

TEST_F(SheetTest, DocumentSheetStartsFromTheCallersRecord) {
    LoadCurrentDefaults(p, u"KX20", DefaultsTrace::SheetInit);
    Bytes in(220, 0);
    WriteU16(in, kOffDmSize, 220);
    WriteU32(in, kOffDmFields, kDmOrientation);
    WriteU16(in, kOffDmOrientation, 2);
    const Bytes original = in;
    Bytes out(6004, 0);
    ASSERT_EQ(Document(psui::kInit, {in, out, kDmInBuffer | kDmOutBuffer | kDmPrompt}), 1);
    EXPECT_EQ(result, 1);
    EXPECT_EQ(AddedIds(), (std::vector<std::uint32_t>{1003, 1004, 1005, 1006}));
    EXPECT_EQ(sheet.added[1].page.title, u"Options");
    ASSERT_NE(context, nullptr);
    ASSERT_EQ(context->docDevMode.data(), context->pageCopy.data());
    EXPECT_EQ(ReadU16(context->pageCopy, kOffDmOrientation), 2);
    EXPECT_EQ(ReadU16(context->pageCopy, kOffDmPaperSize), 259) << "completed from defaults";
    EXPECT_EQ(ReadU32(context->pageCopy, 220), kDevModeSignature);
    EXPECT_EQ(in, original) << "the caller's record is not written";
    EXPECT_TRUE(sheet.messages.empty()) << "no page has set the sheet window";

    // The result goes back to the caller's output record when the sheet applies.
    WriteU16(context->pageCopy, kOffDmCopies, 3);
    WriteU16(out, kOffDmSize, 220);
    WriteU16(out, kOffDmDriverExtra, 5784);
    ASSERT_EQ(Document(psui::kSetResult, {in, out, kDmPrompt}), 1);
    EXPECT_EQ(ReadU16(out, kOffDmCopies), 3);
    EXPECT_EQ(ReadU32(out, 220), kDevModeSignature);
    EXPECT_EQ(Document(psui::kDestroy), 1);
    EXPECT_EQ(context, nullptr);
}

TEST_F(SheetTest, AHostWithoutSetResultGetsTheAppliedCopyAtDestroy) {
    LoadCurrentDefaults(p, u"KX20", DefaultsTrace::SheetInit);
    Bytes out(6004, 0);
    WriteU16(out, kOffDmSize, 220);
    WriteU16(out, kOffDmDriverExtra, 5784);
    const Bytes untouched = out;

    // Closed without applying (Cancel): the caller's record stays as it was.
    ASSERT_EQ(Document(psui::kInit, {{}, out, kDmOutBuffer | kDmPrompt}), 1);
    WriteU16(context->pageCopy, kOffDmCopies, 4);
    ASSERT_EQ(Document(psui::kDestroy, {{}, out, kDmPrompt}), 1);
    EXPECT_EQ(out, untouched);

    // Applied, and the host never asks for the result: the copy goes out on DESTROY.
    ASSERT_EQ(Document(psui::kInit, {{}, out, kDmOutBuffer | kDmPrompt}), 1);
    WriteU16(context->pageCopy, kOffDmCopies, 5);
    context->pageCopyApplied = true;
    ASSERT_EQ(Document(psui::kDestroy, {{}, out, kDmPrompt}), 1);
    EXPECT_EQ(ReadU16(out, kOffDmCopies), 5);
    EXPECT_EQ(ReadU32(out, 220), kDevModeSignature);

    // A host that asked for the result is not given a second copy.
    ASSERT_EQ(Document(psui::kInit, {{}, out, kDmOutBuffer | kDmPrompt}), 1);
    context->pageCopyApplied = true;
    ASSERT_EQ(Document(psui::kSetResult, {{}, out, kDmPrompt}), 1);
    WriteU16(context->pageCopy, kOffDmCopies, 7);
    ASSERT_EQ(Document(psui::kDestroy, {{}, out, kDmPrompt}), 1);
    EXPECT_NE(ReadU16(out, kOffDmCopies), 7);
}

TEST_F(SheetTest, SheetResultIsCutToTheSmallerRecord) {
    DevModeImage copy = gsDevMode();
    Bytes out(6004, 0xEE);
    WriteU16(out, kOffDmSize, 220);
    WriteU16(out, kOffDmDriverExtra, 0);  // a public-only record
    EXPECT_EQ(CopySheetResult(copy, out), 220u);
    EXPECT_EQ(out[220], 0xEE);
    // An output buffer shorter than the totals it declares is not written past.
    Bytes small(100, 0);
    WriteU16(small, kOffDmSize, 220);
    WriteU16(small, kOffDmDriverExtra, 5784);
    EXPECT_EQ(CopySheetResult(copy, small), 100u);
}

TEST_F(SheetTest, DocumentSheetTellsTheSheetWindowWhenAPageHasSetIt) {
    struct PageThatSetsTheWindow : CollectingSheet {
        std::intptr_t AddPage(const PageDescription& page) override {
            reinterpret_cast<PageContext*>(page.parameter)->sheetWindow = 0x4242;
            return CollectingSheet::AddPage(page);
        }
    } windowed;
    SheetCall call{psui::kInit, u"KX20", &windowed, &context, &result};
    ASSERT_EQ(DocumentPropertySheets(ports, call, {}), 1);
    ASSERT_EQ(windowed.messages.size(), 1u);
    EXPECT_EQ(windowed.messages[0].window, 0x4242u);
    EXPECT_EQ(windowed.messages[0].message, 1160u);
}

}  // namespace
}  // namespace kx20
