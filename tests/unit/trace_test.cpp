#include "platform/trace.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/memory/memory_files.h"

namespace kx20 {
namespace {

class Trace : public ::testing::Test {
  protected:
    void SetUp() override { SetTraceTarget(&files, &clock, {u"marker", u"out"}); }
    void TearDown() override { SetTraceTarget(nullptr, nullptr); }

    void SwitchOn() { files.Put(u"marker", {}); }
    std::string Output() const {
        const Bytes* b = files.Get(u"out");
        return b ? std::string(b->begin(), b->end()) : std::string("<no file>");
    }

    MemoryFileSystem files;
    ManualClock clock;
};

TEST_F(Trace, NothingHappensWithoutTheMarker) {
    DrvTrace(u"-> GetSBCSFontSlot\n");
    EXPECT_EQ(DrvTraceData(u"Setup", Bytes{1, 2}), 1u);
    EXPECT_EQ(files.Get(u"out"), nullptr);
}

TEST_F(Trace, LinesCarryTheTimeStampAndTextModeLineEnds) {
    SwitchOn();
    DrvTrace(u"<- OutGetPrinterSetup returns %d\n", 1);
    DrvTrace(u"PrinterName = %ws\r\n", u"KX20");
    DrvTrace(u"ResetKX20Printer - BIDISendCmdToPrinter Failed/n");
    EXPECT_EQ(Output(),
              "2024/03/05 09:07:02.045 - U: <- OutGetPrinterSetup returns 1\r\n"
              "2024/03/05 09:07:02.045 - U: PrinterName = KX20\r\r\n"
              "2024/03/05 09:07:02.045 - U: ResetKX20Printer - BIDISendCmdToPrinter Failed/n");
    // The marker is tested on every call: removing it stops the trace at once.
    files.Remove(u"marker");
    DrvTrace(u"more\n");
    EXPECT_EQ(Output().find("more"), std::string::npos);
}

TEST_F(Trace, OverlongOrMismatchedMessagesWriteNoLine) {
    SwitchOn();
    const std::u16string fits(4999, u'a'), tooLong(5000, u'a');
    DrvTrace(u"%s", tooLong);
    DrvTrace(u"%d\n", u"not a number");
    EXPECT_EQ(files.Get(u"out") ? files.Get(u"out")->size() : 0u, 0u);
    DrvTrace(u"%s", fits);
    // The narrow form keeps 260 bytes of the 4999 characters.
    EXPECT_EQ(Output(), "2024/03/05 09:07:02.045 - U: " + std::string(260, 'a'));
}

TEST_F(Trace, NarrowFormUsesTheAnsiCodePage) {
    SwitchOn();
    DrvTrace(u"%s\n", u"caf\u00e9 \u20ac \u4e2d");
    EXPECT_EQ(Output(), "2024/03/05 09:07:02.045 - U: caf\xe9 \x80 ?\r\n");
}

TEST_F(Trace, DataDumpBreaksAfterTheTwentySixthByteThenEveryTwentyFifth) {
    SwitchOn();
    const std::string stamp = "2024/03/05 09:07:02.045";
    EXPECT_EQ(DrvTraceData(u"Setup", Bytes{0x1B, 0x76, 0x00}), 0u);
    EXPECT_EQ(Output(), stamp + " - Setup\r\n" + stamp + " - Data:  1b.76.00.\r\n");

    files.Remove(u"out");
    EXPECT_EQ(DrvTraceData(u"Empty", Bytes{}), 0u);
    EXPECT_EQ(Output(), stamp + " - Empty\r\n" + stamp + " - Data:  \r\n");

    // Lines that hold bytes. The break follows the byte, so a dump that ends exactly at a
    // break also leaves an empty prefix line behind it.
    auto dumpLines = [&](std::size_t n) {
        files.Remove(u"out");
        Bytes data(n, 0xAB);
        DrvTraceData(u"x", data);
        std::string out = Output();
        std::size_t lines = 0;
        for (std::size_t at = 0; (at = out.find(" - Data:  ab", at)) != std::string::npos; ++at)
            ++lines;
        return lines;
    };
    EXPECT_EQ(dumpLines(26), 1u);
    const std::string tail = "ab.ab.\r\n" + stamp + " - Data:  \r\n";
    EXPECT_EQ(Output().substr(Output().size() - tail.size()), tail);
    EXPECT_EQ(dumpLines(27), 2u);
    EXPECT_EQ(dumpLines(51), 2u);
    EXPECT_EQ(dumpLines(52), 3u);
}

TEST_F(Trace, FailedOpenIsSilentAndReported) {
    SwitchOn();
    files.locked.insert(u"out");
    DrvTrace(u"lost\n");
    EXPECT_EQ(DrvTraceData(u"x", Bytes{1}), 2u);
}

// A file system that counts how often the marker is asked for.
class CountingFiles : public MemoryFileSystem {
  public:
    bool Exists(std::u16string_view path) override {
        ++existsCalls;
        return MemoryFileSystem::Exists(path);
    }
    int existsCalls = 0;
};

TEST(TraceCalls, AnAbsentMarkerIsAskedForOncePerCallAndAPresentOneOnEveryLine) {
    CountingFiles files;
    ManualClock clock;
    SetTraceTarget(&files, &clock, {u"marker", u"out"});
    auto output = [&] {
        const Bytes* b = files.Get(u"out");
        return b ? std::string(b->begin(), b->end()) : std::string();
    };
    {
        const TraceCall call;
        DrvTrace(u"a\n");
        EXPECT_EQ(DrvTraceData(u"b", Bytes{1}), 1u);
        const TraceCall nested;
        DrvTrace(u"c\n");
        files.Put(u"marker", {});  // made during the call: seen from the next call on
        DrvTrace(u"lost\n");
    }
    EXPECT_EQ(files.existsCalls, 1);
    {
        const TraceCall call;
        DrvTrace(u"seen\n");
        DrvTrace(u"seen too\n");
        files.Remove(u"marker");  // deleted while present: the next line stops
        DrvTrace(u"after\n");
    }
    EXPECT_EQ(files.existsCalls, 4);
    EXPECT_EQ(output().find("lost"), std::string::npos);
    EXPECT_NE(output().find("seen too"), std::string::npos);
    EXPECT_EQ(output().find("after"), std::string::npos);
    // Outside any call every line asks, as before.
    DrvTrace(u"x\n");
    DrvTrace(u"y\n");
    EXPECT_EQ(files.existsCalls, 6);
    SetTraceTarget(nullptr, nullptr);
}

}  // namespace
}  // namespace kx20
