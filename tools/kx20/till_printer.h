// The printer a Linux till's kx20 works on, reached through the driver's own ports (the command
// entry, the raw job queue, the registry) so that every flow runs as it runs under the spooler.
// What the registry's catalogue says was put into the printer is kept between runs in a file
// per printer identity, "<catalogue folder>/<identity>.kx20cat"; a printer swapped for another
// is therefore met with its own catalogue, and the flows' reconciliation does the rest.
//
// Two kinds of printer:
//   --state FILE        a simulated KX20 kept in a state file (the one kx20-sim works on)
//   --printer HOST[:P]  a network KX20 (raw TCP, port 9100 when none is given)
#pragma once

#include <memory>
#include <optional>
#include <string>

#include <vector>

#include "platform/memory/memory_monitor.h"
#include "platform/memory/memory_registry.h"
#include "platform/memory/memory_spooler.h"
#include "platform/platform.h"
#include "platform/posix/posix_files.h"
#include "store/registry_layout.h"

namespace kx20tool {

// The names the till's printer has in the ports: the queue's name and the port the command
// entry and the catalogue are keyed by. A simulated printer's state file made for the till
// belongs to this port.
inline constexpr char16_t kTillPrinterName[] = u"KX20";
inline constexpr char16_t kTillPortName[] = u"KX20_NET1";
inline constexpr std::uint16_t kDefaultPrinterPort = 9100;

struct TillTarget {
    std::string statePath;        // --state FILE
    std::string network;          // --printer HOST[:PORT]
    std::string catalogueFolder;  // --catalogue DIR, else $KX20_CATALOGUE, else
                                  // $XDG_DATA_HOME/kx20 or ~/.local/share/kx20
};

// Takes --state, --printer and --catalogue out of `args` (the rest is left in place). False,
// with `error` set, for a missing value or both kinds of printer at once.
bool TakeTillTarget(std::vector<std::string>& args, std::optional<TillTarget>& target,
                    std::string& error);

// The ports a till's flows run over: the registry and the print queue in memory (the queue hands
// each raw job to the printer when it ends), real files, and the clock the printer needs (a
// simulated printer answers at once; a network printer takes real time).
struct TillPorts {
    explicit TillPorts(std::unique_ptr<kx20::Clock> c) : clock(std::move(c)) {}
    kx20::MemoryRegistry registry;
    kx20::MemorySpooler spooler;
    kx20::PosixFileSystem files;
    std::unique_ptr<kx20::Clock> clock;
    kx20::MemoryCommandChannel monitor;
    kx20::Platform p{registry, spooler, files, *clock, monitor};
};

class TillPrinter {
  public:
    virtual ~TillPrinter() = default;

    // The printer attached and its catalogue loaded; nothing, with `error` set, when the printer
    // cannot be reached or its catalogue file is damaged (a damaged file is never overwritten).
    static std::unique_ptr<TillPrinter> Open(const TillTarget& target, std::string& error);

    kx20::Platform& platform() { return ports_.p; }
    kx20::MemoryRegistry& registry() { return ports_.registry; }
    std::u16string_view printerName() const { return kTillPrinterName; }
    std::u16string_view portName() const { return kTillPortName; }
    // The attached printer's status as its port publishes it (identity, model, firmware level).
    kx20::store::ConnectionStatus Status();
    std::string CataloguePath();

    // Keeps the catalogue (and a simulated printer's state); false with `error` set.
    bool Save(std::string& error);

  protected:
    TillPrinter(std::unique_ptr<kx20::Clock> clock, std::string catalogueFolder);
    // Loads the catalogue file of the identity now published, if there is one.
    bool LoadCatalogue(std::string& error);
    virtual bool SavePrinter(std::string& error) = 0;

    TillPorts ports_;

  private:
    std::string folder_;
};

// Opens the network printer at HOST[:PORT] over the platform's ports; provided by the network
// link. Nothing, with `error` set, when it cannot be reached.
std::unique_ptr<TillPrinter> OpenNetworkPrinter(const std::string& hostPort,
                                                const std::string& catalogueFolder,
                                                std::string& error);

}  // namespace kx20tool
