#include "channel/command_transport.h"

#include <gtest/gtest.h>

#include "platform/memory/memory_platform.h"

namespace kx20::channel {
namespace {

TEST(CommandTransport, LoadsPerOperationAndTellsHowEachCommandWent) {
    MemoryPlatform m;
    MemorySpooler& spooler = m.spooler;
    MemoryCommandChannel& monitor = m.monitor;
    Platform& p = m.p;
    spooler.AddPrinter(u"KX20 Receipt", u"USB003");
    monitor.handler = [](std::u16string_view, const std::u16string*, ByteSpan cmd,
                         MonitorReply&) -> std::uint32_t { return cmd[0] == 0x99 ? 31 : 0; };
    const std::uint8_t erase[] = {0x15, 0x01};
    const std::uint8_t bad[] = {0x99};
    {
        MonitorOperation op(p, u"KX20 Receipt");
        EXPECT_TRUE(op.Send(erase, true).ok());
        const CommandResult r = op.Send(bad, false);
        EXPECT_EQ(r.status, CommandStatus::Failed);
        EXPECT_EQ(r.code, 31u);
        EXPECT_EQ(monitor.releases, 0);  // held while the operation lives
    }
    EXPECT_EQ(monitor.loads, 1);
    EXPECT_EQ(monitor.releases, 1);
    ASSERT_EQ(monitor.calls.size(), 2u);
    EXPECT_EQ(monitor.calls[0].port, u"USB003");
    EXPECT_EQ(monitor.calls[0].printerName, u"KX20 Receipt");
    EXPECT_EQ(monitor.calls[0].command, (Bytes{0x15, 0x01}));
    EXPECT_FALSE(monitor.calls[1].hasPrinterName);

    // Without the monitor nothing is sent and the port is not looked up.
    const int opens = spooler.Find(u"KX20 Receipt")->opens;
    MonitorReply reply;
    monitor.loadResult = MonitorLoad::LibraryMissing;
    monitor.loadError = 126;
    CommandResult r = SendPrinterCommand(p, u"KX20 Receipt", false, erase, reply);
    EXPECT_EQ(r.status, CommandStatus::LibraryMissing);
    EXPECT_EQ(r.code, 126u);
    monitor.loadResult = MonitorLoad::EntryMissing;
    EXPECT_EQ(SendPrinterCommand(p, u"KX20 Receipt", false, erase, reply).status,
              CommandStatus::EntryMissing);
    EXPECT_EQ(monitor.calls.size(), 2u);
    EXPECT_EQ(spooler.Find(u"KX20 Receipt")->opens, opens);
}

}  // namespace
}  // namespace kx20::channel
