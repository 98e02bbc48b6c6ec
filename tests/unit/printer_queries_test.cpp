#include "channel/printer_queries.h"

#include <gtest/gtest.h>

#include "platform/memory/memory_platform.h"

#include <functional>
#include <map>
#include <string>

#include "platform/trace.h"
#include "store/registry_layout.h"

namespace kx20::channel {
namespace {

constexpr char16_t kPrinter[] = u"KX20";
using Sleeps = std::vector<std::uint32_t>;

class PrinterQueries : public ::testing::Test, protected MemoryPlatform {
  protected:
    void SetUp() override {
        spooler.AddPrinter(kPrinter, u"USB001");
        SetTraceTarget(&files, &clock, {u"trace.on", u"trace.out"});
        files.Put(u"trace.on", {});
    }
    void TearDown() override { SetTraceTarget(nullptr, nullptr); }

    // Every command answers `rc` and `reply`, with the stated length `length` (default: size).
    void AnswerWith(Bytes reply, std::uint32_t rc = 0, int length = -1) {
        const std::uint32_t n = length < 0 ? static_cast<std::uint32_t>(reply.size()) : length;
        monitor.handler = [=](std::u16string_view, const std::u16string*, ByteSpan,
                              MonitorReply& r) {
            r = MonitorReply{n, true, reply};
            return rc;
        };
    }
    // Commands starting with `failing` (and `second`, when given) answer 1; others 0 and `reply`.
    void FailCommand(std::uint8_t failing, int second = -1, Bytes reply = {}) {
        monitor.handler = [=](std::u16string_view, const std::u16string*, ByteSpan cmd,
                              MonitorReply& r) -> std::uint32_t {
            if (cmd[0] == failing && (second < 0 || cmd[1] == second))
                return 1;
            r = MonitorReply{static_cast<std::uint32_t>(reply.size()), true, reply};
            return 0;
        };
    }
    void StorePortValue(std::u16string_view name, Bytes data, std::uint32_t type = kRegBinary) {
        registry.CreateKey(Hive::LocalMachine, store::PortKeyPath(u"USB001"))
            ->SetValue(name, type, data);
    }
    Bytes Command(std::size_t i) const { return monitor.calls.at(i).command; }
    bool Traced(const std::string& text) const {
        const Bytes* b = files.Get(u"trace.out");
        return b && std::string(b->begin(), b->end()).find(text) != std::string::npos;
    }
};

struct ChecksumCase {
    std::uint8_t area;
    const char16_t* value;
    std::function<bool(Platform&, bool, std::uint8_t*)> query;
};
const ChecksumCase kChecksums[] = {
    {1, u"LogosCRC", [](Platform& p, bool on, auto o) { return GetLogosCRC(p, on, kPrinter, o); }},
    {2, u"MessagesCRC",
     [](Platform& p, bool on, auto o) { return GetMessagesCRC(p, on, kPrinter, o); }},
    {4, u"SBCSThermalCRC",
     [](Platform& p, bool on, auto o) { return GetSBCSThermalCRC(p, on, kPrinter, o); }},
    {6, u"DBCSThermalCRC",
     [](Platform& p, bool on, auto o) { return GetDBCSCRC(p, on, kPrinter, o, true); }},
    {7, u"DBCSImpactCRC",
     [](Platform& p, bool on, auto o) { return GetDBCSCRC(p, on, kPrinter, o, false); }},
};

TEST_F(PrinterQueries, ChecksumsOnlineAndFromThePortKey) {
    AnswerWith({0xDE, 0xAD, 0xBE, 0xEF, 0x55});
    std::uint8_t n = 0x10;
    for (const ChecksumCase& c : kChecksums) StorePortValue(c.value, {n++, 0xA2, 0xA3, 0xA4});
    n = 0x10;
    for (const ChecksumCase& c : kChecksums) {
        monitor.calls.clear();
        std::uint8_t out[4] = {};
        EXPECT_TRUE(c.query(p, true, out)) << int(c.area);
        ASSERT_EQ(monitor.calls.size(), 1u);
        EXPECT_EQ(Command(0), (Bytes{0x19, c.area}));
        EXPECT_FALSE(monitor.calls[0].hasPrinterName);
        EXPECT_EQ(monitor.calls[0].port, u"USB001");
        EXPECT_EQ(Bytes(out, out + 4), (Bytes{0xDE, 0xAD, 0xBE, 0xEF}));
        // Offline: the stored copy, without the monitor.
        EXPECT_TRUE(c.query(p, false, out)) << int(c.area);
        EXPECT_EQ(Bytes(out, out + 4), (Bytes{n++, 0xA2, 0xA3, 0xA4}));
        EXPECT_EQ(monitor.calls.size(), 1u);
    }
    EXPECT_EQ(monitor.releases, 5);
}

TEST_F(PrinterQueries, ChecksumFailuresAndTheMessagesAsymmetry) {
    // Success with an empty reply, too short a reply, or a stated length of 0: all fail,
    // messages included.
    for (int round = 0; round < 3; ++round) {
        AnswerWith(round == 1 ? Bytes{1, 2, 3} : Bytes{1, 2, 3, 4}, 0, round == 1 ? -1 : 0);
        for (const ChecksumCase& c : kChecksums) {
            std::uint8_t out[4] = {9, 9, 9, 9};
            EXPECT_FALSE(c.query(p, true, out)) << int(c.area) << " round " << round;
            EXPECT_EQ(Bytes(out, out + 4), (Bytes{9, 9, 9, 9}));
        }
    }
    // A failed command, a missing monitor, or (offline) nothing stored: only messages is true.
    for (int round = 0; round < 3; ++round) {
        AnswerWith({1, 2, 3, 4}, 7);
        monitor.loadResult = round == 1 ? MonitorLoad::LibraryMissing : MonitorLoad::Loaded;
        for (const ChecksumCase& c : kChecksums) {
            std::uint8_t out[4] = {9, 9, 9, 9};
            EXPECT_EQ(c.query(p, round != 2, out), c.area == 2) << int(c.area) << " " << round;
            EXPECT_EQ(Bytes(out, out + 4), (Bytes{9, 9, 9, 9}));
        }
    }
}

TEST_F(PrinterQueries, StatusByteSetupAndFlashProtection) {
    AnswerWith({0x5A, 0x81, 0x00});
    std::uint8_t status = 0, setup[2] = {};
    EXPECT_TRUE(GetStatusByte(p, kPrinter, status));
    EXPECT_TRUE(OutGetPrinterSetup(p, kPrinter, setup));
    EXPECT_TRUE(OutGetPrinterSetup(p, kPrinter, nullptr));
    EXPECT_EQ(Command(0), (Bytes{0x17, 0x14}));
    EXPECT_EQ(Command(1), (Bytes{0x17, 0x10}));
    EXPECT_EQ(status, 0x5A);
    EXPECT_EQ(Bytes(setup, setup + 2), (Bytes{0x5A, 0x81}));
    EXPECT_FALSE(IsFlashWritable(p, kPrinter));  // 0x80 set
    AnswerWith({0x00, 0x40});
    EXPECT_FALSE(IsFlashWritable(p, kPrinter));
    AnswerWith({0xFF, 0x3F});
    EXPECT_TRUE(IsFlashWritable(p, kPrinter));

    AnswerWith({0x5A});  // one byte is a status byte but no setup
    EXPECT_TRUE(GetStatusByte(p, kPrinter, status));
    EXPECT_FALSE(OutGetPrinterSetup(p, kPrinter, setup));
    EXPECT_TRUE(IsFlashWritable(p, kPrinter));  // an unreadable setup does not block
    AnswerWith({});
    EXPECT_FALSE(GetStatusByte(p, kPrinter, status));
}

TEST_F(PrinterQueries, SetFlashWritableRewritesTheWholeSecondByte) {
    AnswerWith({0xAB, 0xC1});
    EXPECT_TRUE(OutSetFlashWritable(p, kPrinter, true));
    ASSERT_EQ(monitor.calls.size(), 3u);
    EXPECT_EQ(Command(1), (Bytes{0x16, 0x10, 0xAB, 0x3F}));
    EXPECT_EQ(Command(2), (Bytes{0x06}));  // no TYPE: not serial
    StorePortValue(u"TYPE", U32Bytes(1), kRegDword);
    EXPECT_TRUE(OutSetFlashWritable(p, kPrinter, false));
    EXPECT_EQ(Command(4), (Bytes{0x16, 0x10, 0xAB, 0xFF}));
    EXPECT_EQ(Command(5), (Bytes{0x05}));

    FailCommand(0x16, -1, {0, 0});  // a failed write still gets its follow-up
    EXPECT_FALSE(OutSetFlashWritable(p, kPrinter, true));
    EXPECT_EQ(monitor.calls.size(), 9u);
    // The monitor gone between reading the setup and writing it: nothing is written.
    AnswerWith({0xAB, 0xC1});
    auto answer = monitor.handler;
    monitor.handler = [&](auto port, auto name, ByteSpan cmd, MonitorReply& r) {
        monitor.loadResult = MonitorLoad::LibraryMissing;
        return answer(port, name, cmd, r);
    };
    EXPECT_FALSE(OutSetFlashWritable(p, kPrinter, true));
    EXPECT_EQ(monitor.calls.size(), 10u);
    monitor.loadResult = MonitorLoad::Loaded;
    AnswerWith({});  // without the setup nothing is written
    EXPECT_FALSE(OutSetFlashWritable(p, kPrinter, true));
    EXPECT_EQ(monitor.calls.size(), 11u);
}

TEST_F(PrinterQueries, EraseSequencesAndMaintenancePassThePrinterName) {
    const std::map<std::uint32_t, Bytes> areas = {{9, {1, 2, 3, 4, 6}},
                                                  {2, {1, 2, 3, 4, 6}},
                                                  {7, {1, 2, 3, 4, 6}},
                                                  {1, {1, 2, 3, 4}},
                                                  {8, {1, 2, 3, 4}}};
    for (const auto& [model, expected] : areas) {
        monitor.calls.clear();
        EXPECT_TRUE(OutEraseAllSectors(p, kPrinter, model));
        Bytes sent;
        for (const auto& call : monitor.calls) {
            EXPECT_EQ(call.command.size(), 2u);
            EXPECT_EQ(call.command[0], 0x15);
            EXPECT_EQ(call.printerName, u"KX20");
            sent.push_back(call.command[1]);
        }
        EXPECT_EQ(sent, expected) << model;
    }
    EXPECT_EQ(monitor.loads, 5);  // one per sequence
    monitor.calls.clear();
    EXPECT_TRUE(OutEraseAllFontSectors(p, kPrinter, 7));
    EXPECT_TRUE(OutEraseAllFontSectors(p, kPrinter, 3));
    EXPECT_EQ(monitor.calls.size(), 5u);
    EXPECT_EQ(Command(2), (Bytes{0x15, 6}));
    EXPECT_EQ(Command(4), (Bytes{0x15, 4}));

    FailCommand(0x15, 2);  // the sequence goes on after a failure
    monitor.calls.clear();
    EXPECT_FALSE(OutEraseAllSectors(p, kPrinter, 9));
    EXPECT_EQ(monitor.calls.size(), 5u);

    EXPECT_TRUE(OutMaintenanceCommand(p, kPrinter));
    EXPECT_EQ(monitor.calls.back().command, (Bytes{0x6E}));
    EXPECT_EQ(monitor.calls.back().printerName, u"KX20");
    FailCommand(0x6E);
    EXPECT_FALSE(OutMaintenanceCommand(p, kPrinter));
    monitor.loadResult = MonitorLoad::EntryMissing;
    EXPECT_FALSE(OutEraseAllFontSectors(p, kPrinter, 1));
}

TEST_F(PrinterQueries, ResetCommandsAlwaysWaitFiveSeconds) {
    ResetKX20Printer(p, true, true, kPrinter, 10000);
    ResetKX20Printer(p, false, true, kPrinter, 5000);
    ResetKX20Printer(p, false, false, kPrinter, 0x01020304);
    ASSERT_EQ(monitor.calls.size(), 3u);
    EXPECT_EQ(Command(0), (Bytes{0x7A, 0x10, 0x27, 0x00, 0x00}));
    EXPECT_EQ(Command(1), (Bytes{0x79, 0x88, 0x13, 0x00, 0x00}));
    EXPECT_EQ(Command(2), (Bytes{0x78, 0x04, 0x03, 0x02, 0x01}));
    EXPECT_FALSE(monitor.calls[0].hasPrinterName);
    EXPECT_FALSE(Traced("Failed"));

    FailCommand(0x78);
    ResetKX20Printer(p, false, false, kPrinter, 1);
    EXPECT_TRUE(Traced("BIDISendCmdToPrinter Failed"));
    monitor.loadResult = MonitorLoad::EntryMissing;
    ResetKX20Printer(p, false, false, kPrinter, 1);
    EXPECT_TRUE(Traced("GetProcAddress Failed"));
    monitor.loadResult = MonitorLoad::LibraryMissing;
    ResetKX20Printer(p, false, false, kPrinter, 1);
    EXPECT_TRUE(Traced("LoadLibrary Failed"));
    EXPECT_EQ(clock.sleeps, Sleeps(6, 5000));
}

TEST_F(PrinterQueries, MctValueIsSwappedIntoHostOrder) {
    AnswerWith({0x12, 0x34});
    std::uint8_t out[2] = {};
    EXPECT_TRUE(GetMctValueFromPrinter(p, kPrinter, 0xA6, out));
    EXPECT_EQ(Command(0), (Bytes{0x17, 0xA6}));
    EXPECT_EQ(Bytes(out, out + 2), (Bytes{0x34, 0x12}));

    AnswerWith({0x77});  // too short to hold the value
    EXPECT_FALSE(GetMctValueFromPrinter(p, kPrinter, 0xA0, out));
    EXPECT_EQ(Bytes(out, out + 2), (Bytes{0x34, 0x12}));
    FailCommand(0x17);
    EXPECT_FALSE(GetMctValueFromPrinter(p, kPrinter, 0xA0, out));
    EXPECT_TRUE(Traced("BIDISendCmdToPrinter Failed"));
    monitor.loadResult = MonitorLoad::LibraryMissing;
    monitor.loadError = 126;
    EXPECT_FALSE(GetMctValueFromPrinter(p, kPrinter, 0xA0, out));
    EXPECT_TRUE(Traced("GetLastError:126"));
}

TEST_F(PrinterQueries, DbcsReadinessStopsAtTheFirstFailingStep) {
    struct Case {
        std::map<std::uint8_t, std::uint16_t> table;  // entries missing fail their read
        bool ready;
        std::size_t reads;
    };
    const Case cases[] = {
        {{{0xA1, 1}, {0xA6, 14}, {0xA0, 0x100}, {0xA7, 7}}, true, 4},
        {{{0xA1, 5}, {0xA6, 13}, {0xA0, 1}, {0xA7, 7}}, false, 2},
        {{{0xA1, 0}, {0xA6, 14}, {0xA0, 1}, {0xA7, 7}}, false, 1},
        {{{0xA1, 1}, {0xA6, 14}, {0xA0, 1}, {0xA7, 6}}, false, 4},
        {{{0xA1, 1}, {0xA6, 14}, {0xA7, 7}}, false, 3},
    };
    for (const Case& c : cases) {
        monitor.calls.clear();
        clock.sleeps.clear();
        monitor.handler = [&c](std::u16string_view, const std::u16string*, ByteSpan cmd,
                               MonitorReply& r) -> std::uint32_t {
            auto it = c.table.find(cmd[1]);
            if (cmd[0] != 0x17 || it == c.table.end())
                return 1;
            r = MonitorReply{2, true, {std::uint8_t(it->second >> 8), std::uint8_t(it->second)}};
            return 0;
        };
        EXPECT_EQ(IsHaldenPrinterDBCSReady(p, kPrinter), c.ready);
        ASSERT_EQ(monitor.calls.size(), c.reads);
        const Bytes order{0xA1, 0xA6, 0xA0, 0xA7};
        for (std::size_t i = 0; i < c.reads; ++i) EXPECT_EQ(Command(i), (Bytes{0x17, order[i]}));
        EXPECT_EQ(clock.sleeps, Sleeps(c.reads, 50)) << "a wait after every read, failed or not";
    }
    EXPECT_TRUE(Traced("<- IsHaldenPrinterDBCSReady returns 1\r\n"));
    EXPECT_TRUE(Traced("<- IsHaldenPrinterDBCSReady returns 0\r\n"));
}

}  // namespace
}  // namespace kx20::channel
