#include "store/catalogue.h"

#include <gtest/gtest.h>

#include "platform/memory/memory_platform.h"

#include "platform/trace.h"
#include "store/registry_layout.h"

namespace kx20::store {
namespace {

const std::u16string kA = u"AAAAAAAA";
const std::u16string kB = u"BBBBBBBB";

class CatalogueTest : public ::testing::Test, protected MemoryPlatform {
  protected:
    void SetUp() override {
        spooler.AddPrinter(u"KX20", u"USB001");
        Attach(kA, 1);
        SetTraceTarget(&files, &clock, {u"marker", u"out"});
        files.Put(u"marker", {});
    }
    void TearDown() override { SetTraceTarget(nullptr, nullptr); }

    // The port monitor publishing the printer now on the port.
    void Attach(const std::u16string& id, std::uint8_t firmwareLevel) {
        reg.CreateKey(Hive::LocalMachine, PortKeyPath(u"USB001"))
            ->SetValue(kConnectionStatusValue, kRegBinary,
                       BuildConnectionStatus({id, 9, true, firmwareLevel}));
    }
    std::u16string KeyPath(std::u16string_view suffix) {
        return PortKeyPath(u"USB001") + std::u16string(suffix);
    }
    std::vector<std::u16string> Names(std::u16string_view suffix) {
        std::vector<std::u16string> out;
        if (auto* key = reg.FindKey(Hive::LocalMachine, KeyPath(suffix)))
            for (const auto& v : key->values) out.push_back(v.name);
        return out;
    }
    // A font record: position, filler up to the face name at byte 22, then padding to `size`.
    static Bytes FontRecord(std::uint32_t position, std::u16string_view face, std::size_t size) {
        Bytes b(size, 0);
        WriteU32(b, 0, position);
        WriteUtf16Field(b, kFontFaceNameOffset, face.size() + 1, face);
        return b;
    }
    void PutFont(std::u16string_view name, Bytes data) {
        OpenFontsKey(p, u"KX20")->SetValue(name, kRegBinary, data);
    }
    std::string TraceText() {
        const Bytes* out = files.Get(u"out");
        return out ? std::string(out->begin(), out->end()) : std::string();
    }

    MemoryRegistry& reg = registry;
};

TEST_F(CatalogueTest, RecordsAreStoredByteExact) {
    Bytes picture(100);
    for (std::size_t i = 0; i < picture.size(); ++i) picture[i] = static_cast<std::uint8_t>(i);
    ASSERT_TRUE(RegisterLogo(p, 7, 1, 0, 100, picture, kA, u"KX20"));
    const auto* logo = reg.FindValue(Hive::LocalMachine, KeyPath(kLogosSuffix), u"AAAAAAAA_logo7");
    ASSERT_NE(logo, nullptr);
    EXPECT_EQ(logo->type, kRegBinary);
    ASSERT_EQ(logo->data.size(), 136u);
    Bytes head = {7, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0};
    for (char16_t c : kA) AppendU16(head, c);
    AppendU16(head, 0);
    AppendU32(head, 100);
    EXPECT_EQ(Bytes(logo->data.begin(), logo->data.begin() + 34), head);
    EXPECT_EQ(Bytes(logo->data.begin() + 34, logo->data.end() - 2), picture);
    EXPECT_FALSE(RegisterLogo(p, 8, 1, 0, 101, picture, kA, u"KX20"));  // more than given

    ASSERT_TRUE(RegisterMessage(p, 3, std::u16string(300, u'm'), kA, u"KX20"));
    const auto* msg = reg.FindValue(Hive::LocalMachine, KeyPath(kMessagesSuffix), u"AAAAAAAA_msg3");
    ASSERT_NE(msg, nullptr);
    ASSERT_EQ(msg->data.size(), 532u);
    EXPECT_EQ(ReadU32(msg->data, 0), 3u);
    EXPECT_EQ(ReadUtf16Field(msg->data, 4, 255), std::u16string(254, u'm'));
    EXPECT_EQ(ReadU16(msg->data, 4 + 2 * 254), 0);
    EXPECT_EQ(ReadUtf16Field(msg->data, 514, 9), kA);
    EXPECT_EQ(ReadU16(msg->data, 530), 0);

    EXPECT_EQ(DbcsCrcValueName(kA, true), u"AAAAAAAA_dbcscrcrc");
    EXPECT_EQ(DbcsCrcValueName(kA, false), u"AAAAAAAA_dbcsdoccrc");
    EXPECT_EQ(DbcsFontValueName(kA, false), u"AAAAAAAA_dbcsfont0");
    EXPECT_EQ(SbcsFontValueName(kA, 12), u"AAAAAAAA_sbcsfont12");
}

TEST_F(CatalogueTest, ChecksumsAreFourBytesAndMissingReadsAsZero) {
    EXPECT_EQ(GetLogoCRC(p, u"KX20", kA), 0u);
    ASSERT_TRUE(SetLogoCRC(p, u"KX20", kA, 0x12345678));
    ASSERT_TRUE(SetDBCSFontCRC(p, u"KX20", kA, 0xCAFE, true));
    ASSERT_TRUE(SetSBCSFontCRC(p, u"KX20", kA, 5));
    EXPECT_EQ(GetLogoCRC(p, u"KX20", kA), 0x12345678u);
    EXPECT_EQ(GetMessageCRC(p, u"KX20", kA), 0u);
    EXPECT_EQ(GetDBCSFontCRC(p, u"KX20", kA, true), 0xCAFEu);
    EXPECT_EQ(GetDBCSFontCRC(p, u"KX20", kA, false), 0u);
    EXPECT_EQ(GetSBCSFontCRC(p, u"KX20", kA), 5u);
    EXPECT_EQ(GetLogoCRC(p, u"KX20", kB), 0u);
    const auto* v = reg.FindValue(Hive::LocalMachine, KeyPath(kFontsSuffix), u"AAAAAAAA_dbcscrcrc");
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v->type, kRegDword);
    EXPECT_EQ(v->data, (Bytes{0xFE, 0xCA, 0, 0}));
    spooler.AddPrinter(u"NoPort", u"");
    EXPECT_FALSE(SetLogoCRC(p, u"NoPort", kA, 1));
}

TEST_F(CatalogueTest, TwoPrintersOnOnePortKeepSeparateCatalogues) {
    const Bytes picture = {1, 2, 3};
    for (const auto& id : {kA, kB}) {
        RegisterLogo(p, 1, 0, 0, 3, picture, id, u"KX20");
        RegisterLogo(p, 2, 0, 0, 3, picture, id, u"KX20");
        SetLogoCRC(p, u"KX20", id, 9);
        RegisterMessage(p, 1, id == kA ? u"for A" : u"for B", id, u"KX20");
        RegisterSBCSFont(p, 1, 700, FontRecord(1, u"Face", 700), id, u"KX20");
        SetSBCSFontCRC(p, u"KX20", id, 1);
        RegisterDBCSFont(p, true, FontRecord(0, u"Mincho", 40), id, u"KX20");
        SetDBCSFontCRC(p, u"KX20", id, 2, true);
    }
    std::u16string text;
    ASSERT_TRUE(GetMessageText(p, u"KX20", 1, text));
    EXPECT_EQ(text, u"for A");
    Attach(kB, 1);
    ASSERT_TRUE(GetMessageText(p, u"KX20", 1, text));
    EXPECT_EQ(text, u"for B");
    EXPECT_FALSE(GetMessageText(p, u"KX20", 2, text));
    EXPECT_EQ(ReadLogoRecords(p, u"KX20", kB).size(), 2u);

    EXPECT_EQ(DeleteLogoEntries(p, u"KX20", kA), 3);
    EXPECT_EQ(Names(kLogosSuffix),
              (std::vector<std::u16string>{u"BBBBBBBB_logo1", u"BBBBBBBB_logo2", u"BBBBBBBB_crc"}));
    EXPECT_EQ(DeleteMessageEntries(p, u"KX20", kA), 1);
    EXPECT_EQ(Names(kMessagesSuffix), (std::vector<std::u16string>{u"BBBBBBBB_msg1"}));
    EXPECT_EQ(DeleteSBCSFontEntries(p, u"KX20", kA), 2);
    EXPECT_EQ(DeleteDBCSFontEntries(p, u"KX20", kB), 2);
    EXPECT_EQ(Names(kFontsSuffix),
              (std::vector<std::u16string>{u"AAAAAAAA_dbcsfont1", u"AAAAAAAA_dbcscrcrc",
                                           u"BBBBBBBB_sbcsfont1", u"BBBBBBBB_sbcscrc"}));
}

TEST_F(CatalogueTest, SingleByteFontSlotsFollowThePositionRule) {
    PutFont(u"AAAAAAAA_sbcsfont9", FontRecord(1, u"Small", 600));  // too small to be a font
    PutFont(u"BBBBBBBB_sbcsfont1", FontRecord(4, u"Two", 700));    // another printer's
    PutFont(u"AAAAAAAA_sbcsfont1", FontRecord(1, u"One", 629));
    PutFont(u"AAAAAAAA_sbcsfont2", FontRecord(2, u"Two", 700));
    PutFont(u"AAAAAAAA_sbcsfont5", FontRecord(5, u"Five", 700));
    PutFont(u"AAAAAAAA_sbcsfont6", FontRecord(6, u"Two", 700));  // later duplicate loses
    EXPECT_EQ(GetSBCSFontSlot(p, u"KX20", u"One"), 1u);
    EXPECT_EQ(GetSBCSFontSlot(p, u"KX20", u"Two"), 3u);
    EXPECT_EQ(GetSBCSFontSlot(p, u"KX20", u"Five"), 5u);
    EXPECT_EQ(GetSBCSFontSlot(p, u"KX20", u"Small"), 0u);
    EXPECT_EQ(GetSBCSFontSlot(p, u"KX20", u"two"), 0u);  // case-sensitive
    EXPECT_EQ(TraceText().find("0x00000004"), std::string::npos);  // the other printer's unread

    Attach(kA, 0);  // firmware level 0: no font lookups
    EXPECT_EQ(GetSBCSFontSlot(p, u"KX20", u"One"), 0u);
    std::u16string name = u"kept";
    EXPECT_FALSE(GetDBCSFontName(p, u"KX20", true, name));
    EXPECT_EQ(name, u"kept");
}

TEST_F(CatalogueTest, MalformedRecordsCountAsNothing) {
    LogoRecord logo;
    Bytes record = BuildLogoRecord(1, 0, 1, Bytes{5, 6}, kA);
    ASSERT_TRUE(ParseLogoRecord(record, logo));
    EXPECT_EQ(logo.picture, (Bytes{5, 6}));
    EXPECT_EQ(logo.identity, kA);
    WriteU32(record, 30, 5);  // states more picture than the value holds
    EXPECT_FALSE(ParseLogoRecord(record, logo));
    WriteU32(record, 30, 0xFFFFFFFF);
    EXPECT_FALSE(ParseLogoRecord(record, logo));
    OpenLogosKey(p, u"KX20")->SetValue(u"AAAAAAAA_logo1", kRegBinary, record);
    OpenLogosKey(p, u"KX20")->SetValue(u"AAAAAAAA_logo2", kRegBinary, Bytes(20, 0));
    EXPECT_TRUE(ReadLogoRecords(p, u"KX20", kA).empty());

    // Messages too short for their fields: skipped, or read only as far as they go.
    auto messages = OpenMessagesKey(p, u"KX20");
    messages->SetValue(u"AAAAAAAA_msg1", kRegBinary, Bytes{1, 0});
    messages->SetValue(u"AAAAAAAA_msg2", kRegBinary, Bytes{1, 0, 0});
    Bytes shortMessage = {1, 0, 0, 0, 'h', 0, 'i'};
    messages->SetValue(u"AAAAAAAA_msg3", kRegBinary, shortMessage);
    std::u16string text = u"kept";
    ASSERT_TRUE(GetMessageText(p, u"KX20", 1, text));
    EXPECT_EQ(text, u"h");

    // A double-byte font value that ends before its face name gives an empty name.
    PutFont(u"AAAAAAAA_dbcsfont1", Bytes(10, 0x41));
    std::u16string name = u"kept";
    ASSERT_TRUE(GetDBCSFontName(p, u"KX20", true, name));
    EXPECT_EQ(name, u"");
    // A single-byte record whose face name runs to the end of the value unterminated.
    Bytes big(700, 0);
    WriteU32(big, 0, 2);
    for (std::size_t i = 22; i + 1 < big.size(); i += 2) big[i] = 'z';
    PutFont(u"AAAAAAAA_sbcsfont2", big);
    EXPECT_EQ(GetSBCSFontSlot(p, u"KX20", std::u16string(339, u'z')), 3u);
}

}  // namespace
}  // namespace kx20::store
