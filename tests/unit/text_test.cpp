// Text conversions and path parts, against encodings written out independently.
#include "platform/text.h"

#include <gtest/gtest.h>

#include "platform/file_choice.h"

namespace kx20 {
namespace {

TEST(Text, UtfFormsOfEveryLengthRoundTrip) {
    // One, two, three and four UTF-8 bytes; the last is a surrogate pair in UTF-16.
    const std::string utf8 = "a\xC3\xA9\xE2\x82\xAC\xE4\xB8\xAD\xF0\x9F\x98\x80";
    const std::u16string utf16 = u"a\u00E9\u20AC\u4E2D\U0001F600";
    EXPECT_EQ(Utf8ToUtf16(utf8), utf16);
    EXPECT_EQ(Utf16ToUtf8(utf16), utf8);
    EXPECT_EQ(Utf8ToUtf16("\xF0\x9F"), u"\uFFFD\uFFFD");  // cut short
}

TEST(Text, AnsiIsCodePage1252) {
    EXPECT_EQ(AnsiToUtf16("\x80\x9F\xE9\x81"), u"\u20AC\u0178\u00E9\u0081");
    EXPECT_EQ(Utf16ToAnsi(u"\u20AC\u0178\u00E9\u0081\u4E2D"), "\x80\x9F\xE9\x81?");
}

TEST(Text, FolderAndFileOfAPath) {
    EXPECT_EQ(FolderOfPath(u"C:\\logo.bmp"), u"C:\\");
    EXPECT_EQ(FolderOfPath(u"C:\\pics\\logo.bmp"), u"C:\\pics");
    EXPECT_EQ(FolderOfPath(u"x:/logo.bmp"), u"x:/");
    EXPECT_EQ(FolderOfPath(u"logo.bmp"), u"");
    EXPECT_EQ(FileNameOfPath(u"C:\\pics/logo.bmp"), u"logo.bmp");
}

}  // namespace
}  // namespace kx20
