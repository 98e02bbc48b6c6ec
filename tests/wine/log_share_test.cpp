// The log writer on real files through the Win32 files adapter: the system's share modes keep
// a second writer out while the first holds the log, and the archive step works on disk.
#include "platform/win32/windows_clean.h"

#include <gtest/gtest.h>

#include <string>

#include "log/log_files.h"
#include "platform/memory/memory_files.h"
#include "platform/win32/win32_files.h"
#include "unit/hooked_files.h"

namespace kx20 {
namespace {

const std::u16string kFolder = u"C:\\kx20logtest";
const std::u16string kLog = kFolder + u"\\KX20API.log";
const std::string kStamp = "03/05/2024 09:07:02 - ";  // ManualClock's time

std::string ReadText(const std::u16string& path) {
    Win32FileSystem files;
    auto data = ReadWholeFile(files, path);
    return data ? std::string(data->begin(), data->end()) : std::string("<unreadable>");
}

void RemoveAll() {
    Win32FileSystem files;
    for (const char16_t* name : {u"\\KX20API.log", u"\\KX20API1.log", u"\\KX20API2.log"})
        files.Remove(kFolder + name);
    RemoveDirectoryW(L"C:\\kx20logtest\\sub");
    RemoveDirectoryW(L"C:\\kx20logtest");
}

class LogShare : public ::testing::Test {
  protected:
    void SetUp() override {
        RemoveAll();
        ASSERT_TRUE(files.CreateFolder(kFolder));
    }
    void TearDown() override { RemoveAll(); }

    Win32FileSystem files;
    ManualClock clock;
};

TEST_F(LogShare, ASecondWriterAtTheSameMomentFailsToOpenAndLosesItsLine) {
    HookedFileSystem first(files);
    first.hookSuffix = u"\\KX20API.log";
    int secondWriters = 0;
    std::uint32_t secondOpenError = 0;
    first.beforeWrite = [&](std::u16string_view) {
        if (secondWriters++ == 0) {
            // While the first writer holds the log: a plain open of the second writer's kind
            // is refused by the system, and so is the whole second line.
            EXPECT_EQ(files.Open(kLog, OpenMode::ReadWriteOrCreate, ShareMode::Read), nullptr);
            secondOpenError = files.LastError();
            logs::WriteLogLine(files, clock, kLog, "second", 1024, true);
        }
        return true;
    };
    logs::WriteLogLine(first, clock, kLog, "first", 1024, true);
    EXPECT_EQ(secondOpenError, static_cast<std::uint32_t>(ERROR_SHARING_VIOLATION));
    EXPECT_EQ(ReadText(kLog), kStamp + "first\r\n");

    // Once the first writer has closed the log, the next line goes in.
    logs::WriteLogLine(files, clock, kLog, "third", 1024, false);
    EXPECT_EQ(ReadText(kLog), kStamp + "first\r\n" + kStamp + "third\r\n");
}

TEST_F(LogShare, TheArchiveStepMovesTheLogOnDiskAndFoldersAreMadeOneLevelAtATime) {
    {
        auto seed = files.Open(kLog, OpenMode::CreateAlways, ShareMode::None);
        ASSERT_NE(seed, nullptr);
        const std::string old(1010, 'a');
        ASSERT_TRUE(
            seed->Write(ByteSpan(reinterpret_cast<const std::uint8_t*>(old.data()), old.size())));
    }
    logs::WriteLogLine(files, clock, kLog, "x", 1, true);  // 1010 + 23 bytes cross 1024
    const std::string line = kStamp + "x";
    EXPECT_EQ(ReadText(kFolder + u"\\KX20API1.log"), std::string(1010, 'a') + line.substr(0, 14));
    EXPECT_EQ(ReadText(kLog), line.substr(14) + "\r\n");

    EXPECT_FALSE(files.CreateFolder(kFolder + u"\\missing\\sub"));
    EXPECT_TRUE(files.CreateFolder(kFolder + u"\\sub"));
    EXPECT_TRUE(files.CreateFolder(kFolder + u"\\sub"));
    EXPECT_FALSE(files.CreateFolder(kLog));  // a file is not a folder
}

}  // namespace
}  // namespace kx20
