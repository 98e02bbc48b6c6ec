// The in-memory files adapter keeps the system's rules that the log files rely on: share
// modes, one-level folder creation, and no removal of a file that is open.
#include "platform/memory/memory_files.h"

#include <gtest/gtest.h>

namespace kx20 {
namespace {

TEST(MemoryFiles, ShareModesKeepOutWhatTheOpenHandleDoesNotShare) {
    MemoryFileSystem fs;
    auto writer = fs.Open(u"C:\\a.log", OpenMode::ReadWriteOrCreate, ShareMode::Read);
    ASSERT_NE(writer, nullptr);
    // A second writer is refused, whatever it shares; a reader that shares writing is let in.
    EXPECT_EQ(fs.Open(u"c:/A.LOG", OpenMode::ReadWriteOrCreate, ShareMode::Read), nullptr);
    EXPECT_EQ(fs.LastError(), 32u);
    EXPECT_EQ(fs.Open(u"C:\\a.log", OpenMode::ReadExisting, ShareMode::Read), nullptr);
    auto reader = fs.Open(u"C:\\a.log", OpenMode::ReadExisting, ShareMode::ReadWrite);
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(fs.OpenCount(u"C:\\A.log"), 2u);
    // An open file is neither removed nor renamed.
    EXPECT_FALSE(fs.Remove(u"C:\\a.log"));
    EXPECT_FALSE(fs.Rename(u"C:\\a.log", u"C:\\b.log"));
    writer.reset();
    reader.reset();
    EXPECT_TRUE(fs.Remove(u"C:\\a.log"));
}

TEST(MemoryFiles, FoldersAreCreatedOneLevelAtATime) {
    MemoryFileSystem fs;
    EXPECT_FALSE(fs.CreateFolder(u"C:\\KX20NWD\\Log"));
    EXPECT_EQ(fs.LastError(), 3u);
    EXPECT_FALSE(fs.Exists(u"C:\\KX20NWD\\Log"));
    EXPECT_TRUE(fs.CreateFolder(u"C:\\KX20NWD"));
    EXPECT_TRUE(fs.CreateFolder(u"C:\\KX20NWD\\Log\\"));
    EXPECT_TRUE(fs.CreateFolder(u"c:\\kx20nwd\\log"));  // already there
    EXPECT_TRUE(fs.Exists(u"C:\\KX20NWD\\Log"));
    // A folder that holds a file exists; a file is not a folder.
    fs.Put(u"D:\\logs\\old.log", {});
    EXPECT_TRUE(fs.Exists(u"D:\\logs"));
    EXPECT_TRUE(fs.CreateFolder(u"D:\\logs\\new"));
    EXPECT_FALSE(fs.CreateFolder(u"D:\\logs\\old.log"));
    // Creating a file needs its folder only when folders are strict.
    EXPECT_NE(fs.Open(u"E:\\none\\a.log", OpenMode::ReadWriteOrCreate, ShareMode::Read), nullptr);
    fs.strictFolders = true;
    EXPECT_EQ(fs.Open(u"E:\\gone\\a.log", OpenMode::ReadWriteOrCreate, ShareMode::Read), nullptr);
    EXPECT_EQ(fs.LastError(), 3u);
    EXPECT_NE(fs.Open(u"C:\\KX20NWD\\Log\\a.log", OpenMode::CreateAlways, ShareMode::Read),
              nullptr);
}

}  // namespace
}  // namespace kx20
