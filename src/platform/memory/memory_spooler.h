// In-memory spooler: printers with their information, driver information and printer data,
// access that tests can restrict, and raw jobs handed to a sink (the simulated printer) with a
// scripted sequence of job statuses.
#pragma once

#include <deque>
#include <functional>
#include <map>
#include <vector>

#include "platform/spooler.h"

namespace kx20 {

struct MemoryJob {
    std::uint32_t id = 0;
    std::u16string printerName;
    std::u16string docName;
    std::u16string dataType;
    Bytes data;
    bool pageStarted = false;
    bool ended = false;
    std::vector<std::uint32_t> commands;  // SetJob commands received
};

class MemorySpooler : public Spooler {
  public:
    struct Printer {
        PrinterInfo info;  // the level-2 view; other levels are cut from it (level 8: the
                           // global device mode, info.devMode)
        std::optional<Bytes> userDevMode;  // level 9: the per-user device mode
        std::optional<DriverInfo> driver;
        std::map<std::pair<std::u16string, std::u16string>, std::pair<std::uint32_t, Bytes>>
            data;  // (key, value name) -> (type, bytes); key "" for plain printer data
        std::uint32_t grantable = kPrinterAllAccess;  // the rights an open may ask for
        bool failSetPrinter = false;
        bool failStartDoc = false;
        bool noJobWatch = false;
        int opens = 0;
        int setPrinterCalls = 0;
    };

    Printer& AddPrinter(std::u16string_view name, std::u16string_view port = u"KX20_USB1",
                        std::u16string_view driver = u"KVO KX20");
    Printer* Find(std::u16string_view name);

    // Raw jobs, in order of their end; `onJobEnd` sees each one when it ends.
    std::vector<MemoryJob> jobs;
    std::function<void(const MemoryJob&)> onJobEnd;
    // The statuses reported for each job after it ends, one change each. The default reports
    // spooling, printing, then printed.
    std::vector<std::uint32_t> jobStatusScript = {kJobStatusSpooling, kJobStatusPrinting,
                                                  kJobStatusPrinted};

    std::unique_ptr<SpoolerPrinter> OpenPrinter(std::u16string_view name, std::uint32_t access,
                                                const Bytes* devMode) override;
    std::uint32_t LastError() override { return lastError_; }
    std::u16string ErrorText(std::uint32_t code) override;

    // Internal to the printer handles.
    std::deque<JobChanges> pendingChanges;
    std::uint32_t nextJobId = 1;
    void SetLastError(std::uint32_t e) { lastError_ = e; }

  private:
    std::map<std::u16string, Printer> printers_;  // by lower-case name
    std::uint32_t lastError_ = 0;
};

}  // namespace kx20
