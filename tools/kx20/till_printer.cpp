#include "till_printer.h"

#include <cstdlib>

#include "platform/memory/registry_file.h"
#include "platform/record_file.h"
#include "platform/text.h"
#include "sim/sim_persist.h"
#include "sim/sim_printer.h"

namespace kx20tool {

namespace {

using namespace kx20;

// Values the printer's port publishes into its own key: the catalogue file leaves them out, as
// they describe the printer attached now, not what the till put into it.
constexpr std::u16string_view kPublishedValues[] = {
    store::kConnectionStatusValue, store::kTypeValue, u"LogosCRC",      u"MessagesCRC",
    u"SBCSThermalCRC",             u"DBCSThermalCRC", u"DBCSImpactCRC"};

std::string DefaultCatalogueFolder() {
    if (const char* dir = std::getenv("KX20_CATALOGUE"); dir && *dir)
        return dir;
    if (const char* data = std::getenv("XDG_DATA_HOME"); data && *data)
        return std::string(data) + "/kx20";
    const char* home = std::getenv("HOME");
    return std::string(home && *home ? home : ".") + "/.local/share/kx20";
}

// The simulated printer answers at once: the flows' waits for it need not pass.
class ImmediateClock : public SystemClock {
  public:
    void Sleep(std::uint32_t) override {}
};

class SimulatedTillPrinter : public TillPrinter {
  public:
    SimulatedTillPrinter(std::string statePath, std::string folder)
        : TillPrinter(std::make_unique<ImmediateClock>(), std::move(folder)),
          statePath_(Utf8ToUtf16(statePath)),
          printer_(sim::LoadState(ports_.files, statePath_, kTillPortName)) {
        printer_.AttachRegistry(&ports_.registry);
        ports_.monitor.handler = printer_.Handler();
        ports_.spooler.onJobEnd = [this](const MemoryJob& job) { printer_.ReceiveJob(job.data); };
    }

  protected:
    bool SavePrinter(std::string& error) override {
        if (sim::SaveState(ports_.files, statePath_, printer_.state()))
            return true;
        error = "cannot write the printer state file " + Utf16ToUtf8(statePath_);
        return false;
    }

  private:
    std::u16string statePath_;
    sim::SimulatedPrinter printer_;
};

}  // namespace

bool TakeTillTarget(std::vector<std::string>& args, std::optional<TillTarget>& target,
                    std::string& error) {
    TillTarget t;
    bool any = false;
    std::vector<std::string> rest;
    for (std::size_t i = 0; i < args.size(); ++i) {
        std::string* into = args[i] == "--state"       ? &t.statePath
                            : args[i] == "--printer"   ? &t.network
                            : args[i] == "--catalogue" ? &t.catalogueFolder
                                                       : nullptr;
        if (!into) {
            rest.push_back(args[i]);
            continue;
        }
        if (i + 1 >= args.size() || args[i + 1].empty()) {
            error = "missing value after " + args[i];
            return false;
        }
        *into = args[++i];
        any = true;
    }
    if (!t.statePath.empty() && !t.network.empty()) {
        error = "--state and --printer name two printers; give one";
        return false;
    }
    args = std::move(rest);
    if (any)
        target = t;
    return true;
}

TillPrinter::TillPrinter(std::unique_ptr<kx20::Clock> clock, std::string catalogueFolder)
    : ports_(std::move(clock)),
      folder_(catalogueFolder.empty() ? DefaultCatalogueFolder() : std::move(catalogueFolder)) {
    ports_.spooler.AddPrinter(kTillPrinterName, kTillPortName);
}

std::unique_ptr<TillPrinter> TillPrinter::Open(const TillTarget& target, std::string& error) {
    std::unique_ptr<TillPrinter> printer;
    if (!target.network.empty())
        printer = OpenNetworkPrinter(target.network, target.catalogueFolder, error);
    else if (!target.statePath.empty())
        printer = std::make_unique<SimulatedTillPrinter>(target.statePath, target.catalogueFolder);
    else
        error = "no printer named: give --printer HOST[:PORT] or --state FILE";
    if (!printer || !printer->LoadCatalogue(error))
        return nullptr;
    return printer;
}

store::ConnectionStatus TillPrinter::Status() {
    store::ConnectionStatus status;
    store::GetConnectionStatus(ports_.p, kTillPortName, status);
    return status;
}

std::string TillPrinter::CataloguePath() {
    const std::u16string identity = Status().identity;
    std::string name;
    // Identities are 8 characters of the printer's code page: anything that could leave the
    // folder or is not printable is written as '_'.
    for (char16_t c : identity)
        name.push_back(c > 0x20 && c < 0x7F && c != '/' && c != '\\' && c != '.'
                           ? static_cast<char>(c)
                           : '_');
    return folder_ + "/" + (name.empty() ? "unknown" : name) + ".kx20cat";
}

bool TillPrinter::LoadCatalogue(std::string& error) {
    const std::u16string path = Utf8ToUtf16(CataloguePath());
    if (!ports_.files.Exists(path))
        return true;
    const auto data = ReadWholeFile(ports_.files, path);
    std::u16string problem = u"cannot be read";
    if (data && LoadBranch(*data, ports_.registry, Hive::LocalMachine,
                           store::PortKeyPath(kTillPortName), problem))
        return true;
    error = "the catalogue " + Utf16ToUtf8(path) + " " + Utf16ToUtf8(problem);
    return false;
}

bool TillPrinter::Save(std::string& error) {
    if (!SavePrinter(error))
        return false;
    for (std::size_t slash = folder_.find('/', 1);; slash = folder_.find('/', slash + 1)) {
        ports_.files.CreateFolder(Utf8ToUtf16(folder_.substr(0, slash)));
        if (slash == std::string::npos)
            break;
    }
    const std::u16string path = Utf8ToUtf16(CataloguePath());
    const Bytes data = SerializeBranch(ports_.registry, Hive::LocalMachine,
                                       store::PortKeyPath(kTillPortName), kPublishedValues);
    if (ReplaceFile(ports_.files, path, data))
        return true;
    error = "cannot write the catalogue " + Utf16ToUtf8(path);
    return false;
}

}  // namespace kx20tool
