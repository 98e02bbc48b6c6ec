// One simulated KX20 on one port, for tests, the command-line tool and the simulated port
// monitor: its state, the command entry, the job decoder, control commands that play the part
// of the person at the printer, and the registry publication a port monitor would make.
//
// Wiring into the in-memory ports:
//   SimulatedPrinter printer(u"KX20_USB1");
//   printer.AttachRegistry(&memoryRegistry);          // ConnectionStatus, TYPE, checksums
//   channel.handler = printer.Handler();              // MemoryCommandChannel
//   spooler.onJobEnd = [&](const MemoryJob& j) { printer.ReceiveJob(j.data); };
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/bytes.h"
#include "platform/monitor.h"
#include "platform/registry.h"
#include "sim/sim_jobs.h"
#include "sim/sim_state.h"

namespace kx20::sim {

// Control commands (answer kOk, or kErrInvalidParameter for an unknown command or value;
// every one is logged):
//   connect | disconnect          the printer's link
//   reset                         a fresh printer on the same port (the log is kept)
//   model=N  firmware=N  status=N numbers in decimal or 0x hexadecimal, 0..255
//   identity=XXXXXXXX             exactly 8 characters of the ANSI code page
//   protect=0|1                   clear or set the write-protection bits of setup byte 2
//   serial=0|1                    the port's interface (published as TYPE)
//   config=E:V                    configuration entry E (0..255) gets V (0..65535)
//   erase=N                       erase flash area N as the printer does
//   publish | invalidate | remove the ConnectionStatus value: full, byte 0 = 0, deleted
//   clearlog                      empty the log
std::uint32_t ApplyControl(PrinterState& state, std::u16string_view command);

// Faults of the link, the answers and the power, for the tests' fault sweeps. Each applies to
// the next job or answer only and is spent by it.
struct FaultPlan {
    // The link drops after this many bytes of the next job (when the job is longer). The printer
    // takes a download into its receive buffer and writes it to flash only once the job has
    // arrived whole, so a cut job is dropped whole. The printer stays disconnected and the
    // port's connection status marked invalid until the `connect` and `publish` controls.
    std::optional<std::size_t> cutJobAfter;
    // The next command's answer: every byte inverted, or cut to its first half.
    enum class Reply : std::uint8_t { Intact, Garbled, Truncated } nextReply = Reply::Intact;
    // The power fails after this many bytes of the next job (when the job is longer). The
    // printer checks a firmware image's header lines when they have arrived, then erases its
    // firmware and writes the image as it comes: power lost after that point leaves the boot
    // loader alone when the power returns (firmware level 0, shown as "not ready"), which
    // answers commands and takes the next firmware download. Before it, the old firmware stays.
    // The job is lost either way; the flash areas (logos, messages, fonts) are kept.
    std::optional<std::size_t> powerLossAfter;
};

class SimulatedPrinter {
  public:
    using CommandHandler =
        std::function<std::uint32_t(std::u16string_view port, const std::u16string* printerName,
                                    ByteSpan command, MonitorReply& reply)>;

    explicit SimulatedPrinter(std::u16string_view portName = u"KX20_USB1");
    explicit SimulatedPrinter(PrinterState state) : state_(std::move(state)) {}

    PrinterState& state() { return state_; }
    const PrinterState& state() const { return state_; }

    // Publishes into `registry` now and after every command, job and control; null stops it.
    void AttachRegistry(Registry* registry);
    bool Publish();

    std::uint32_t HandleCommand(std::u16string_view port, const std::u16string* printerName,
                                ByteSpan command, MonitorReply& reply);
    JobResult ReceiveJob(ByteSpan job);
    std::uint32_t Control(std::u16string_view command);

    // The command entry bound to this printer (which must outlive it).
    CommandHandler Handler();

    std::uint32_t Checksum(std::uint8_t area) const { return AreaChecksum(state_.flash, area); }

    FaultPlan faults;

  private:
    void Changed();
    std::optional<JobResult> InterruptedJob(ByteSpan job);

    PrinterState state_;
    Registry* registry_ = nullptr;
};

}  // namespace kx20::sim
