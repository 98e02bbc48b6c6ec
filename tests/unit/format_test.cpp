#include "platform/format.h"

#include <gtest/gtest.h>

namespace kx20 {
namespace {

TEST(Format, IntegerConversionsFollowPrintf) {
    EXPECT_EQ(Format(u"<- OutGetPrinterSetup returns %d\n", 1),
              u"<- OutGetPrinterSetup returns 1\n");
    EXPECT_EQ(Format(u"0x%08X|0x%08x|%04x|%02x", 0xABABCDCDu, 0x1234u, 0x2au, 7),
              u"0xABABCDCD|0x00001234|002a|07");
    // 32-bit unless told otherwise: an unsigned all-ones value prints as -1 through %d.
    EXPECT_EQ(Format(u"%d %u %ld", 0xFFFFFFFFu, -1, -5), u"-1 4294967295 -5");
    EXPECT_EQ(Format(u"%lld %I64u", -5000000000LL, 5000000000ULL), u"-5000000000 5000000000");
    EXPECT_EQ(Format(u"[%5d][%-5d][%05d][%+d][% d]", 42, 42, -42, 3, 3),
              u"[   42][42   ][-0042][+3][ 3]");
    EXPECT_EQ(Format(u"%#x %#X %o %c", 255, 255, 8, 'A'), u"0xff 0XFF 10 A");
    EXPECT_EQ(Format(u"%p", 0x1234), u"0000000000001234");
    EXPECT_EQ(Format(u"%hd", 70000), u"4464");
    // The space flag signs only signed conversions; a precision of 0 prints no digit for 0.
    // With a precision the 0 flag pads with spaces.
    EXPECT_EQ(Format(u"[% i][% x][% u][%.0d][%.3d][%05.3d][%05.0d]", 3, 10, 4, 0, 7, 7, 7),
              u"[ 3][a][4][][007][  007][    7]");
}

TEST(Format, TextsOfEitherWidth) {
    EXPECT_EQ(Format(u"PrinterName = %ws\r\n", u"KX20"), u"PrinterName = KX20\r\n");
    EXPECT_EQ(Format(u"-> ResetKX20Printer(%s,%s)\n", "Serial", "Buffered Reset"),
              u"-> ResetKX20Printer(Serial,Buffered Reset)\n");
    EXPECT_EQ(Format(u"%ls|%S|%.3s|%6s|%-6s|", u"abc", "d", u"abcdef", u"ab", u"ab"),
              u"abc|d|abc|    ab|ab    |");
    EXPECT_EQ(Format(u"%s", static_cast<const char16_t*>(nullptr)), u"(null)");
    EXPECT_EQ(Format(u"100%% done"), u"100% done");
}

TEST(Format, MismatchesFailWholeFormat) {
    std::u16string out;
    const FormatArg text[] = {FormatArg(u"x")};
    const FormatArg number[] = {FormatArg(1)};
    EXPECT_FALSE(FormatTo(out, u"%d", text));
    EXPECT_FALSE(FormatTo(out, u"%s", number));
    EXPECT_FALSE(FormatTo(out, u"%d %d", number));  // too few
    EXPECT_FALSE(FormatTo(out, u"none", number));   // too many
    EXPECT_FALSE(FormatTo(out, u"%q", number));     // unknown conversion
    EXPECT_FALSE(FormatTo(out, u"trailing %", {}));
    EXPECT_TRUE(FormatTo(out, u"%d", number));
}

TEST(Format, BoundedOutputCutsAndFails) {
    std::u16string out;
    const std::u16string ten(10, u'a');
    const FormatArg arg[] = {FormatArg(ten)};
    EXPECT_TRUE(FormatTo(out, u"%s", arg, 11));
    EXPECT_EQ(out.size(), 10u);
    EXPECT_FALSE(FormatTo(out, u"%s", arg, 10));
    EXPECT_EQ(out, std::u16string(9, u'a'));
}

}  // namespace
}  // namespace kx20
