// The log files: which logs are on and where, the wrapping writer with its numbered archives,
// and the unattended-install log.
#include "log/log_files.h"

#include <gtest/gtest.h>

#include <array>

#include "platform/memory/memory_platform.h"
#include "platform/text.h"
#include "store/registry_layout.h"
#include "unit/hooked_files.h"

namespace kx20::logs {
namespace {

const std::u16string kPrinter = u"KX20";
const std::u16string kLog = u"C:\\logs\\KX20API.log";
// ManualClock's default time in the per-printer logs' stamp: 22 bytes.
const std::string kStamp = "03/05/2024 09:07:02 - ";

std::string Str(const Bytes* b) {
    return b ? std::string(b->begin(), b->end()) : std::string("<missing>");
}
Bytes Text(std::string_view s) {
    return Bytes(s.begin(), s.end());
}

class LogFiles : public ::testing::Test, protected MemoryPlatform {
  protected:
    void SetUp() override { spooler.AddPrinter(kPrinter, u"USB001"); }
    void Settings(std::uint32_t bits, std::u16string_view folder, std::uint32_t wrapKb) {
        store::SetLogSettings(p, kPrinter, bits);
        store::SetLogPath(p, kPrinter, folder);
        store::SetLogWrapSize(p, kPrinter, wrapKb);
    }
    void Write(std::string_view text, std::uint32_t wrapKb) {
        WriteLogLine(files, clock, kLog, text, wrapKb, true);
    }
    std::string File(std::u16string_view path) { return Str(files.Get(path)); }
};

TEST_F(LogFiles, ALogIsOnOnlyWithTheMasterBitAndItsOwnBit) {
    Settings(0x01, u"C:\\logs", 2048);
    std::u16string path = u"untouched";
    std::uint32_t wrap = 7;
    EXPECT_FALSE(GetAPILogFile(p, kPrinter, path, wrap));
    EXPECT_EQ(path, u"untouched");
    EXPECT_EQ(wrap, 7u);

    using Resolver = bool (*)(Platform&, std::u16string_view, std::u16string&, std::uint32_t&);
    const struct {
        Resolver resolve;
        std::uint32_t bit;
        std::u16string name;
    } logs[] = {{GetAPILogFile, 0x01, u"C:\\logs\\KX20API.log"},
                {GetPrintingLogFile, 0x02, u"C:\\logs\\KX20Printing.log"},
                {GetPortIOLogFile, 0x04, u"C:\\logs\\KX20PortIO.log"},
                {GetRestoreCfgLogFile, 0x08, u"C:\\logs\\KX20RestoreCfg.log"}};
    for (const auto& log : logs) {
        SCOPED_TRACE(Utf16ToUtf8(log.name));
        Settings(0x1F & ~log.bit, u"C:\\logs", 2048);
        EXPECT_FALSE(log.resolve(p, kPrinter, path, wrap));
        Settings(0x10 | log.bit, u"C:\\logs", 2048);
        ASSERT_TRUE(log.resolve(p, kPrinter, path, wrap));
        EXPECT_EQ(path, log.name);
        EXPECT_EQ(wrap, 2048u);
    }
}

TEST_F(LogFiles, ResolvingNeedsEveryValueAndCreatesOneFolderLevel) {
    std::u16string path;
    std::uint32_t wrap = 0;
    EXPECT_FALSE(GetAPILogFile(p, kPrinter, path, wrap));  // nothing stored
    Settings(0x11, u"", 2048);
    EXPECT_FALSE(GetAPILogFile(p, kPrinter, path, wrap));

    // The folder is made when its parent exists, and not otherwise.
    Settings(0x11, u"C:\\KX20NWD\\Log", 2048);
    EXPECT_FALSE(GetAPILogFile(p, kPrinter, path, wrap));
    EXPECT_FALSE(files.Exists(u"C:\\KX20NWD\\Log"));
    ASSERT_TRUE(files.CreateFolder(u"C:\\KX20NWD"));
    EXPECT_TRUE(GetAPILogFile(p, kPrinter, path, wrap));
    EXPECT_TRUE(files.HasFolder(u"C:\\KX20NWD\\Log"));

    // Without a readable wrap size the log is off.
    registry.CreateKey(Hive::LocalMachine, store::DriverDataKeyPath(kPrinter, false))
        ->DeleteValue(u"LogWrapSize");
    EXPECT_FALSE(GetAPILogFile(p, kPrinter, path, wrap));
}

TEST_F(LogFiles, AWrapSizeOutsideItsRangeIsUsedAs5120AndLeftAsStored) {
    for (auto [stored, used] : {std::pair{1023u, 5120u},
                                {1024u, 1024u},
                                {10240u, 10240u},
                                {10241u, 5120u},
                                {0u, 5120u}}) {
        Settings(0x11, u"C:\\logs", stored);
        std::u16string path;
        std::uint32_t wrap = 0;
        ASSERT_TRUE(GetAPILogFile(p, kPrinter, path, wrap));
        EXPECT_EQ(wrap, used) << stored;
        std::uint32_t kept = 0;
        ASSERT_TRUE(store::GetLogWrapSize(p, kPrinter, kept));
        EXPECT_EQ(kept, stored);
    }
}

TEST_F(LogFiles, LinesAreStampedCutAt259BytesAndEndInCrLf) {
    Write("first", 1024);
    clock.now = {2031, 12, 24, 23, 59, 58, 999};
    Write(std::string(300, 'x'), 1024);
    const std::string second = "12/24/2031 23:59:58 - " + std::string(259 - 22, 'x');
    EXPECT_EQ(File(kLog), kStamp + "first\r\n" + second + "\r\n");
}

TEST_F(LogFiles, TheLineThatCrossesTheWrapSizeIsSplitBetweenArchiveAndFreshLog) {
    const std::uint64_t wrap = 1024 * 1024;
    const Bytes old(1048570, 'o');
    files.Put(kLog, old);
    Write("12345678", 1024);  // 22 + 8 = 30 bytes
    const std::string line = kStamp + "12345678";
    const Bytes* archive = files.Get(u"C:\\logs\\KX20API1.log");
    ASSERT_NE(archive, nullptr);
    EXPECT_EQ(archive->size(), wrap);
    EXPECT_EQ(Str(archive), std::string(old.begin(), old.end()) + line.substr(0, 6));
    EXPECT_EQ(File(kLog), line.substr(6) + "\r\n");
    EXPECT_EQ(files.OpenCount(kLog), 0u);

    // A line that fills the log exactly goes wholly into the archive; the fresh log gets only
    // the line end.
    files.Put(kLog, Bytes(wrap - line.size(), 'o'));
    Write("12345678", 1024);
    EXPECT_EQ(files.Get(u"C:\\logs\\KX20API2.log")->size(), wrap);
    EXPECT_EQ(File(kLog), "\r\n");
}

TEST_F(LogFiles, ArchivesTakeTheLowestFreeNumberAndAreNeverReused) {
    files.Put(u"C:\\logs\\KX20API1.log", Text("one"));
    files.Put(u"C:\\logs\\kx20api2.LOG", Text("two"));
    files.Put(u"C:\\logs\\KX20API4.log", Text("four"));
    files.Put(kLog, Bytes(1010, 'a'));
    Write("x", 1);
    EXPECT_EQ(File(u"C:\\logs\\KX20API3.log"), std::string(1010, 'a') + kStamp.substr(0, 14));
    EXPECT_EQ(File(u"C:\\logs\\KX20API1.log"), "one");
    EXPECT_EQ(File(u"C:\\logs\\KX20API4.log"), "four");
    EXPECT_EQ(ArchiveName(u"C:\\x.log\\KX20API.LOG", 12), u"C:\\x.log\\KX20API12.log");
    EXPECT_EQ(ArchiveName(u"trace", 1), u"trace1.log");
}

TEST_F(LogFiles, AnEmptyLogNeverWrapsAndAnOverfullOneRestartsWithTheWholeLine) {
    Write(std::string(300, 'e'), 0);
    const std::string first = File(kLog);
    EXPECT_EQ(first.size(), 259u + 2);
    EXPECT_FALSE(files.Exists(u"C:\\logs\\KX20API1.log"));

    // Already at or over the wrap size: nothing of the line goes to the archive.
    Write("next", 0);
    EXPECT_EQ(File(u"C:\\logs\\KX20API1.log"), first);
    EXPECT_EQ(File(kLog), kStamp + "next\r\n");
}

TEST_F(LogFiles, AFailedArchiveLeavesTheLogAndAppendsTheLineUnsplit) {
    const std::string old(1020, 'a');
    files.Put(kLog, Text(old));
    files.locked.insert(u"c:\\logs\\kx20api1.log");
    Write("z", 1);
    EXPECT_EQ(File(kLog), old + kStamp + "z\r\n");
    EXPECT_FALSE(files.Exists(u"C:\\logs\\KX20API1.log"));

    // An archive that was created but not filled is removed again.
    files.locked.clear();
    files.Put(kLog, Text(old));
    HookedFileSystem failing(files);
    failing.hookSuffix = u"KX20API1.log";
    failing.beforeWrite = [](std::u16string_view) { return false; };
    WriteLogLine(failing, clock, kLog, "y", 1, false);
    EXPECT_EQ(File(kLog), old + kStamp + "y\r\n");
    EXPECT_FALSE(files.Exists(u"C:\\logs\\KX20API1.log"));
}

TEST_F(LogFiles, ASecondWriterAtTheSameMomentLosesItsLine) {
    HookedFileSystem first(files);
    first.hookSuffix = kLog;
    int secondWriters = 0;
    first.beforeWrite = [&](std::u16string_view) {
        if (secondWriters++ == 0)
            WriteLogLine(files, clock, kLog, "second", 1024, true);
        return true;
    };
    WriteLogLine(first, clock, kLog, "first", 1024, true);
    EXPECT_EQ(File(kLog), kStamp + "first\r\n");
    EXPECT_EQ(files.OpenCount(kLog), 0u);
    Write("third", 1024);
    EXPECT_EQ(File(kLog), kStamp + "first\r\n" + kStamp + "third\r\n");
}

TEST_F(LogFiles, UnattendedInstallLogHasItsOwnFolderStampsAndSections) {
    files.windowsFolder = u"D:\\WINNT";
    files.strictFolders = true;
    char text[64] = "lost";
    WriteUnattendedInstallLog(files, clock, text, false);  // D:\KX20NWD is missing
    EXPECT_FALSE(files.Exists(u"D:\\KX20NWD\\Log\\KX20UnatInstCfg.log"));

    ASSERT_TRUE(files.CreateFolder(u"D:\\KX20NWD"));
    char one[64] = "one";
    WriteUnattendedInstallLog(files, clock, one, true);  // fresh: no blank line first
    EXPECT_STREQ(one, "one\r\n");
    char two[64] = "two";
    WriteUnattendedInstallLog(files, clock, two, false);
    char three[64] = "three";
    WriteUnattendedInstallLog(files, clock, three, true);
    EXPECT_EQ(File(u"D:\\KX20NWD\\Log\\KX20UnatInstCfg.log"),
              "3/5/2024 9:7:2 - one\r\n3/5/2024 9:7:2 - two\r\n"
              "\r\n\r\n3/5/2024 9:7:2 - three\r\n");
}

TEST_F(LogFiles, UnattendedLineEndStaysInsideTheCallersFirst64Bytes) {
    ASSERT_TRUE(files.CreateFolder(u"C:\\KX20NWD"));
    const std::u16string path = u"C:\\KX20NWD\\Log\\KX20UnatInstCfg.log";
    auto lineOf = [&](std::span<char> buffer) {
        files.Put(path, {});
        WriteUnattendedInstallLog(files, clock, buffer, false);
        return File(path).substr(std::string("3/5/2024 9:7:2 - ").size());
    };
    std::array<char, 80> buf{};
    std::fill_n(buf.begin(), 61, 'a');
    EXPECT_EQ(lineOf(buf), std::string(61, 'a') + "\r\n");
    buf.fill(0);
    std::fill_n(buf.begin(), 62, 'b');
    EXPECT_EQ(lineOf(buf), std::string(62, 'b') + "\r");
    buf.fill('c');  // no terminator at all
    EXPECT_EQ(lineOf(buf), std::string(63, 'c'));
    EXPECT_EQ(buf[63], '\0');
    EXPECT_EQ(buf[64], 'c');
    std::array<char, 4> small = {'d', 'd', 'd', 'd'};
    EXPECT_EQ(lineOf(small), "ddd");
}

}  // namespace
}  // namespace kx20::logs
