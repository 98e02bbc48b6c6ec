// The log settings page model against the in-memory registry and files: what it shows, what it
// stores on every change, and its status line.
#include "log/log_settings_page.h"

#include <gtest/gtest.h>

#include "platform/memory/memory_platform.h"
#include "platform/text.h"
#include "store/registry_layout.h"

namespace kx20::logs {
namespace {

const std::u16string kPrinter = u"KX20";

class LogSettingsPageTest : public ::testing::Test, protected MemoryPlatform {
  protected:
    void SetUp() override { spooler.AddPrinter(kPrinter, u"USB001"); }

    std::uint32_t Stored(std::u16string_view name) {
        auto* v =
            registry.FindValue(Hive::LocalMachine, store::DriverDataKeyPath(kPrinter, false), name);
        return v && v->data.size() == 4 ? ReadU32(v->data, 0) : 0xDEADBEEF;
    }
    std::u16string StoredPath() {
        std::u16string path = u"<none>";
        store::GetLogPath(p, kPrinter, path);
        return path;
    }
    void Forget(std::u16string_view name) {
        registry.CreateKey(Hive::LocalMachine, store::DriverDataKeyPath(kPrinter, false))
            ->DeleteValue(name);
    }

    BuiltinStrings strings;
    LogSettingsPageModel page{p, strings, kPrinter};
};

TEST_F(LogSettingsPageTest, FirstOpenStoresTheDefaultsAndStoredValuesAreShownAsStored) {
    ASSERT_TRUE(files.CreateFolder(u"C:\\KX20NWD"));
    files.windowsFolder = u"C:\\Windows";
    page.Open();
    EXPECT_EQ(Stored(u"LogSettings"), 0u);
    EXPECT_EQ(Stored(u"LogWrapSize"), 5120u);
    EXPECT_EQ(StoredPath(), u"C:\\KX20NWD\\Log");
    EXPECT_TRUE(files.HasFolder(u"C:\\KX20NWD\\Log"));
    EXPECT_EQ(page.Folder(), u"C:\\KX20NWD\\Log");
    EXPECT_EQ(page.WrapText(), u"5120");
    EXPECT_EQ(page.StatusText(), strings.Load(2201).value_or(u"?"));
    for (int id = 1200; id <= 1213; ++id) {
        EXPECT_FALSE(page.Checked(id)) << id;
        EXPECT_EQ(page.Enabled(id), id == 1200 || id == 1213) << id;
    }

    store::SetLogSettings(p, kPrinter, 0x35);  // 0x20 is no box's bit
    store::SetLogPath(p, kPrinter, u"");
    store::SetLogWrapSize(p, kPrinter, 99999);
    files.windowsFolder = u"E:\\WINNT";
    page.Open();
    EXPECT_EQ(Stored(u"LogSettings"), 0x35u);
    EXPECT_EQ(page.Folder(), u"");
    EXPECT_EQ(page.WrapText(), u"99999");
    EXPECT_TRUE(page.Checked(1200) && page.Checked(1205) && page.Checked(1207));
    EXPECT_FALSE(page.Checked(1206) || page.Checked(1208));
    EXPECT_TRUE(page.Enabled(1202) && page.Enabled(1211));
    // The default folder of a missing parent is still shown and stored, though not created.
    Forget(u"LogPath");
    page.Open();
    EXPECT_EQ(StoredPath(), u"E:\\KX20NWD\\Log");
    EXPECT_FALSE(files.Exists(u"E:\\KX20NWD\\Log"));
}

TEST_F(LogSettingsPageTest, ACheckBoxRewritesOnlyItsOwnBitOfTheStoredValue) {
    store::SetLogSettings(p, kPrinter, 0x11);
    page.Open();
    page.Click(1206, true);
    EXPECT_EQ(Stored(u"LogSettings"), 0x13u);
    // Changed elsewhere meanwhile: the stored bits are kept, not the ones shown.
    store::SetLogSettings(p, kPrinter, 0x1B);
    page.Click(1205, false);
    EXPECT_EQ(Stored(u"LogSettings"), 0x1Au);
    page.Click(1200, false);
    EXPECT_EQ(Stored(u"LogSettings"), 0x0Au);
    EXPECT_FALSE(page.Enabled(1210));
    EXPECT_TRUE(page.Checked(1206));
    Forget(u"LogSettings");
    page.Click(1208, true);
    EXPECT_EQ(Stored(u"LogSettings"), 0x08u);
}

TEST_F(LogSettingsPageTest, WrapSizeStepsReversedTypedNumbersStoredAtOnceClampedOnFocusLoss) {
    page.Open();
    const struct {
        const char16_t* shown;
        int delta;
        const char16_t* after;
        bool changed;
    } steps[] = {{u"10240", -1, u"10240", false}, {u"1024", 1, u"1024", false},
                 {u"5000", -1, u"5001", true},    {u"5000", 1, u"4999", true},
                 {u"500", 1, u"1024", true},      {u"20000", -1, u"10240", true},
                 {u"", -1, u"1024", true}};
    for (const auto& s : steps) {
        page.WrapTextChanged(s.shown);
        EXPECT_EQ(page.Step(s.delta), s.changed) << Utf16ToUtf8(s.shown) << " " << s.delta;
        EXPECT_EQ(page.WrapText(), s.after);
        EXPECT_EQ(Stored(u"LogWrapSize"), NumberShown(s.after));
    }

    page.WrapTextChanged(u"99999");
    EXPECT_EQ(Stored(u"LogWrapSize"), 99999u);
    page.WrapFocusLost();
    EXPECT_EQ(page.WrapText(), u"10240");
    EXPECT_EQ(Stored(u"LogWrapSize"), 10240u);
    page.WrapTextChanged(u"");
    EXPECT_EQ(Stored(u"LogWrapSize"), 0u);
    page.WrapFocusLost();
    EXPECT_EQ(page.WrapText(), u"1024");
    page.WrapTextChanged(u"02048");
    page.WrapFocusLost();
    EXPECT_EQ(page.WrapText(), u"02048");
    EXPECT_EQ(NumberShown(u" 12 "), 12u);
    EXPECT_EQ(NumberShown(u"1a"), 0u);
    EXPECT_EQ(NumberShown(u"4294967296"), 0u);
}

TEST_F(LogSettingsPageTest, BrowseStartsAtTheStoredFolderAndStoresTheChoice) {
    page.Open();
    store::SetLogPath(p, kPrinter, u"");
    std::u16string title, start;
    std::optional<std::u16string> answer;
    auto picker = [&](std::u16string_view t, std::u16string_view s) {
        title = t;
        start = s;
        return answer;
    };
    // An empty folder is replaced by the default before the browser opens there.
    EXPECT_FALSE(page.Browse(picker));
    EXPECT_EQ(title, u"Choose the folder for the log files.");
    EXPECT_EQ(start, u"C:\\KX20NWD\\Log");
    EXPECT_EQ(StoredPath(), u"C:\\KX20NWD\\Log");
    answer = u"D:\\Logs";
    EXPECT_TRUE(page.Browse(picker));
    EXPECT_EQ(StoredPath(), u"D:\\Logs");
    EXPECT_EQ(page.Folder(), u"D:\\Logs");
    page.Browse(picker);
    EXPECT_EQ(start, u"D:\\Logs");
}

TEST_F(LogSettingsPageTest, StatusLineNamesTheModelAndMarksAPrinterThatIsNotReady) {
    auto put = [&](std::uint32_t model, std::uint8_t level) {
        registry.CreateKey(Hive::LocalMachine, store::PortKeyPath(u"USB001"))
            ->SetValue(u"ConnectionStatus", 3,
                       store::BuildConnectionStatus({u"KX20ABCD", model, true, level}));
    };
    put(9, 0x40);
    page.Open();
    EXPECT_EQ(page.StatusText(), u"Printer: KX20 II Receipt/Slip DBCS");
    put(7, 0);
    page.RefreshStatus();
    EXPECT_EQ(page.StatusText(), u"Printer: KX20 Receipt DBCS - not ready");
    put(6, 1);  // no such model: named as model code 0
    page.RefreshStatus();
    EXPECT_EQ(page.StatusText(), u"Printer: KX20 (model not identified)");
}

}  // namespace
}  // namespace kx20::logs
