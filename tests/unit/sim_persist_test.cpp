#include "sim/sim_persist.h"

#include <gtest/gtest.h>

#include "platform/memory/memory_files.h"
#include "platform/memory/memory_registry.h"
#include "platform/text.h"
#include "sim/sim_monitor.h"
#include "sim/sim_printer.h"
#include "sim/sim_publish.h"
#include "unit/sim_test_blocks.h"

namespace kx20::sim {
namespace {

using namespace kx20::simtest;

// A printer with something in every area, settings, a staged setup and log records.
PrinterState BusyPrinter() {
    SimulatedPrinter p(u"/tmp/x/port.prn");
    p.Control(u"identity=QRST5678");
    p.Control(u"serial=1");
    EXPECT_TRUE(
        p.ReceiveJob(Cat({LogoBlock(3, 2, 1), MessageBlock(4, "hello"), Cmd({0x16, 0x02, 24, 24}),
                          Cmd({0x12, 0x01, 0x41, 0x41}), Fill(72, 3), Cmd({0x16, 0x04, 16, 16}),
                          Cmd({0x12, 0x05, 0x41, 0x41}), Fill(32, 4), Cmd({0x14, 0x00, 1}),
                          Fill(74, 5), Cmd({0x14, 0x01, 1}), Fill(34, 6), Cmd({0x7A, 1, 2, 3, 4})}))
            .accepted);
    MonitorReply reply;
    Bytes setup = {0x16, 0x10, 0x12, 0x34};
    p.HandleCommand(u"/tmp/x/port.prn", nullptr, setup, reply);
    p.ReceiveJob(Cmd({0x42}));  // a rejection in the log
    return p.state();
}

TEST(SimPersist, DamagedBytesAreRefusedWithoutHarm) {
    Bytes good = SerializeState(BusyPrinter());
    PrinterState out = FreshPrinter(u"untouched");
    std::u16string problem;
    // Every cut of the file, and every single flipped byte, is refused.
    for (std::size_t n = 0; n < good.size(); n += 7) {
        Bytes cut(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(n));
        EXPECT_FALSE(DeserializeState(cut, out, problem)) << n;
    }
    for (std::size_t i = 0; i < good.size(); i += 5) {
        Bytes flipped = good;
        flipped[i] ^= 0x20;
        EXPECT_FALSE(DeserializeState(flipped, out, problem)) << i;
    }
    EXPECT_EQ(out.portName, u"untouched");

    // A payload whose checksum fits but whose fields run past its end.
    Bytes payload(good.begin() + 20, good.end());
    payload.resize(40);
    std::fill(payload.begin() + 30, payload.end(), 0xFF);
    Bytes forged = {'K', 'X', '2', '0', 'S', 'I', 'M', 'S'};
    AppendU32(forged, kStateFormatVersion);
    AppendU32(forged, static_cast<std::uint32_t>(payload.size()));
    AppendU32(forged, Crc32(payload));
    AppendBytes(forged, payload);
    EXPECT_FALSE(DeserializeState(forged, out, problem));
    EXPECT_EQ(problem, u"payload fields do not fit");
}

TEST(SimPersist, LoadGivesAFreshPrinterForAMissingOrDamagedFile) {
    MemoryFileSystem files;
    const std::u16string path = u"C:\\kx20sim\\p.kx20sim";
    PrinterState s = LoadState(files, path, u"P");
    EXPECT_TRUE(s.log.empty());

    s.flash.messages[1] = Text("kept");
    ASSERT_TRUE(SaveState(files, path, s));
    EXPECT_EQ(LoadState(files, path, u"p").flash.messages[1], Text("kept"));
    EXPECT_FALSE(files.Exists(path + u".new"));

    // The file of another port, and a damaged file, give a fresh printer and say why.
    for (const auto& [port, damage] : {std::pair{u"Q", false}, std::pair{u"P", true}}) {
        if (damage)
            files.Put(path, Text("KX20SIMS garbage"));
        PrinterState loaded = LoadState(files, path, port);
        EXPECT_TRUE(loaded.flash.messages.empty());
        EXPECT_EQ(loaded.portName, port);
        ASSERT_EQ(loaded.log.size(), 1u);
        EXPECT_TRUE(loaded.log[0].rejected);
        EXPECT_NE(loaded.log[0].text.find(u"fresh printer"), std::u16string::npos);
    }
}

TEST(SimPublish, PortValuesFollowThePrinter) {
    MemoryRegistry registry;
    SimulatedPrinter printer(u"KX20_USB1");
    printer.AttachRegistry(&registry);
    const std::u16string key =
        u"SYSTEM\\CurrentControlSet\\Control\\Print\\Monitors\\KVO KX20 Language/Port "
        u"Monitor\\Ports\\KX20_USB1";
    auto value = [&](const char16_t* name) -> Bytes {
        auto* v = registry.FindValue(Hive::LocalMachine, key, name);
        return v ? v->data : Bytes{};
    };
    printer.ReceiveJob(LogoBlock(1, 1, 1));
    auto crc = AreaChecksumBytes(printer.state().flash, 1);
    EXPECT_EQ(value(u"LogosCRC"), Bytes(crc.begin(), crc.end()));

    // Disconnected: the record says so and the stored checksums keep their last values.
    printer.Control(u"disconnect");
    printer.state().flash.logos.clear();
    printer.Control(u"serial=1");
    EXPECT_EQ(value(u"ConnectionStatus")[1], 0);
    EXPECT_EQ(value(u"LogosCRC"), Bytes(crc.begin(), crc.end()));
    EXPECT_EQ(value(u"TYPE"), (Bytes{1, 0, 0, 0}));

    // Model 4 has no double-byte areas, so no such checksums are published for it.
    MemoryRegistry other;
    SimulatedPrinter model4(u"COM2:");
    model4.Control(u"model=4");
    model4.AttachRegistry(&other);
    EXPECT_EQ(other.FindValue(Hive::LocalMachine, PortKeyPathOf(u"COM2:"), u"DBCSThermalCRC"),
              nullptr);
    EXPECT_NE(other.FindValue(Hive::LocalMachine, PortKeyPathOf(u"COM2:"), u"SBCSThermalCRC"),
              nullptr);
}

class SimMonitorHost : public ::testing::Test {
  protected:
    MonitorHost Host() { return MonitorHost{files, registry, u"C:\\sim\\state"}; }
    std::uint32_t Send(Bytes command) {
        MonitorHost host = Host();
        return MonitorSendCommand(host, kPort, nullptr, command, reply);
    }

    const std::u16string kPort = u"/tmp/x/port.prn";
    const std::u16string kPortFile = u"Z:\\tmp\\x\\port.prn";
    MemoryFileSystem files;
    MemoryRegistry registry;
    MonitorReply reply;
};

TEST_F(SimMonitorHost, AJobThatArrivesWhileDisconnectedIsDropped) {
    EXPECT_EQ(PortFileDosPath(u"KX20_USB1"), u"");
    files.Put(kPortFile, LogoBlock(1, 1, 1));
    EXPECT_EQ(Send({0x19, 0x01}), kOk);
    const Bytes logos = reply.data;
    MonitorHost host = Host();
    EXPECT_EQ(MonitorControl(host, kPort, u"disconnect"), kOk);

    // A job that arrives while disconnected is refused and dropped.
    files.Put(kPortFile, LogoBlock(5, 1, 1));
    EXPECT_EQ(MonitorControl(host, kPort, u"connect"), kOk);
    EXPECT_TRUE(files.Get(kPortFile)->empty());
    EXPECT_EQ(Send({0x19, 0x01}), kOk);
    EXPECT_EQ(reply.data, logos);
}

TEST_F(SimMonitorHost, DamagedStateFileStartsAFreshPrinter) {
    files.Put(kPortFile, LogoBlock(1, 1, 1));
    ASSERT_EQ(Send({0x19, 0x01}), kOk);
    files.Put(StateFilePath(u"C:\\sim\\state", kPort), Text("not a state"));
    EXPECT_EQ(Send({0x19, 0x01}), kOk);
    EXPECT_EQ(reply.data, (Bytes{0, 0, 0, 0}));
    MonitorHost host = Host();
    EXPECT_NE(MonitorDescribe(host, kPort).find(u"REJECTED: state file"), std::u16string::npos);

    // A state that cannot be saved fails the call rather than losing its effect quietly.
    files.locked.insert(ToLowerAscii(StateFilePath(u"C:\\sim\\state", kPort) + u".new"));
    EXPECT_EQ(Send({0x19, 0x01}), kErrStateNotSaved);
    EXPECT_FALSE(reply.hasBuffer);
}

}  // namespace
}  // namespace kx20::sim
