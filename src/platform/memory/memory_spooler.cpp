#include "platform/memory/memory_spooler.h"

#include <cstring>

#include "platform/text.h"

namespace kx20 {

namespace {

class MemoryJobWatch : public JobWatch {
  public:
    explicit MemoryJobWatch(MemorySpooler& s) : spooler_(s) {}
    bool Wait(JobChanges& changes) override {
        // A real watch would block for ever here; with nothing left to report the watch ends.
        if (spooler_.pendingChanges.empty())
            return false;
        changes = spooler_.pendingChanges.front();
        spooler_.pendingChanges.pop_front();
        return true;
    }

  private:
    MemorySpooler& spooler_;
};

class MemoryPrinterHandle : public SpoolerPrinter {
  public:
    MemoryPrinterHandle(MemorySpooler& s, std::u16string name) : s_(s), name_(std::move(name)) {}

    MemorySpooler::Printer* P() { return s_.Find(name_); }

    bool GetPrinter(std::uint32_t level, PrinterInfo& out) override {
        auto* p = P();
        if (!p)
            return Fail(kErrorInvalidPrinterName);
        const PrinterInfo& in = p->info;
        out = PrinterInfo{};
        switch (level) {
            case 1:
                out.printerName = in.printerName;
                out.comment = in.comment;
                break;
            case 2:
                out = in;
                break;
            case 4:
                out.printerName = in.printerName;
                out.serverName = in.serverName;
                out.attributes = in.attributes;
                break;
            case 5:
                out.printerName = in.printerName;
                out.portName = in.portName;
                out.attributes = in.attributes;
                break;
            case 8:
                out.devMode = in.devMode;
                break;
            case 9:
                out.devMode = p->userDevMode;
                break;
            default:
                return Fail(kErrorInvalidParameter);
        }
        return true;
    }

    bool SetPrinter(std::uint32_t level, const PrinterInfo& info) override {
        auto* p = P();
        if (!p)
            return Fail(kErrorInvalidPrinterName);
        ++p->setPrinterCalls;
        if (p->failSetPrinter)
            return Fail(5);
        if (level == 2) {
            p->info = info;
        } else if (level == 5) {
            p->info.portName = info.portName;
            p->info.attributes = info.attributes;
        } else if (level == 8) {
            p->info.devMode = info.devMode;
        } else if (level == 9) {
            p->userDevMode = info.devMode;
        }
        return true;
    }

    bool GetPrinterDriver(std::uint32_t level, DriverInfo& out) override {
        auto* p = P();
        if (!p || !p->driver || level < 1 || level > 3)
            return Fail(kErrorInvalidParameter);
        out = DriverInfo{};
        out.name = p->driver->name;
        if (level >= 2) {
            out.version = p->driver->version;
            out.environment = p->driver->environment;
            out.driverPath = p->driver->driverPath;
            out.dataFile = p->driver->dataFile;
            out.configFile = p->driver->configFile;
        }
        if (level >= 3)
            out = *p->driver;
        return true;
    }

    std::uint32_t GetPrinterData(std::u16string_view name, std::uint32_t* type, std::uint8_t* data,
                                 std::uint32_t size, std::uint32_t* needed) override {
        auto* p = P();
        if (!p)
            return kErrorInvalidPrinterName;
        auto it = p->data.find({u"", ToLowerAscii(name)});
        if (it == p->data.end())
            return kErrorFileNotFound;
        const Bytes& v = it->second.second;
        if (type)
            *type = it->second.first;
        if (needed)
            *needed = static_cast<std::uint32_t>(v.size());
        if (size < v.size() || (!data && !v.empty()))
            return kErrorMoreData;
        if (!v.empty())
            std::memcpy(data, v.data(), v.size());
        return 0;
    }

    std::uint32_t SetPrinterData(std::u16string_view name, std::uint32_t type,
                                 ByteSpan data) override {
        return SetPrinterDataEx(u"", name, type, data);
    }

    std::uint32_t SetPrinterDataEx(std::u16string_view key, std::u16string_view name,
                                   std::uint32_t type, ByteSpan data) override {
        auto* p = P();
        if (!p)
            return kErrorInvalidPrinterName;
        p->data[{ToLowerAscii(key), ToLowerAscii(name)}] = {type, Bytes(data.begin(), data.end())};
        return 0;
    }

    bool ResetPrinter(std::u16string_view, const Bytes*) override { return P() != nullptr; }

    std::uint32_t StartDoc(std::u16string_view docName, std::u16string_view dataType) override {
        auto* p = P();
        if (!p || p->failStartDoc || job_)
            return 0;
        MemoryJob job;
        job.id = s_.nextJobId++;
        job.printerName = name_;
        job.docName = std::u16string(docName);
        job.dataType = std::u16string(dataType);
        job_ = std::move(job);
        return job_->id;
    }
    bool StartPage() override {
        if (!job_)
            return false;
        job_->pageStarted = true;
        return true;
    }
    bool Write(ByteSpan data, std::uint32_t* written) override {
        if (!job_)
            return false;
        job_->data.insert(job_->data.end(), data.begin(), data.end());
        if (written)
            *written = static_cast<std::uint32_t>(data.size());
        return true;
    }
    bool EndPage() override { return job_.has_value(); }
    bool EndDoc() override {
        if (!job_)
            return false;
        job_->ended = true;
        s_.jobs.push_back(std::move(*job_));
        const MemoryJob& done = s_.jobs.back();
        for (std::uint32_t status : s_.jobStatusScript) {
            JobChanges c;
            c.changeFlags = kPrinterChangeSetJob;
            c.hasData = true;
            c.items.push_back({kJobNotifyType, kJobNotifyFieldStatus, done.id, status});
            s_.pendingChanges.push_back(c);
        }
        job_.reset();
        if (s_.onJobEnd)
            s_.onJobEnd(done);
        return true;
    }

    std::unique_ptr<JobWatch> WatchJobs(std::uint32_t, std::uint16_t, std::uint32_t) override {
        auto* p = P();
        if (!p || p->noJobWatch)
            return nullptr;
        return std::make_unique<MemoryJobWatch>(s_);
    }

    bool SetJobCommand(std::uint32_t jobId, std::uint32_t command) override {
        for (auto& j : s_.jobs)
            if (j.id == jobId) {
                j.commands.push_back(command);
                return true;
            }
        return Fail(kErrorInvalidParameter);
    }

  private:
    bool Fail(std::uint32_t e) {
        s_.SetLastError(e);
        return false;
    }

    MemorySpooler& s_;
    std::u16string name_;
    std::optional<MemoryJob> job_;
};

}  // namespace

MemorySpooler::Printer& MemorySpooler::AddPrinter(std::u16string_view name,
                                                  std::u16string_view port,
                                                  std::u16string_view driver) {
    Printer& p = printers_[ToLowerAscii(name)];
    p.info.printerName = std::u16string(name);
    p.info.portName = std::u16string(port);
    p.info.driverName = std::u16string(driver);
    p.info.dataType = u"RAW";
    return p;
}

MemorySpooler::Printer* MemorySpooler::Find(std::u16string_view name) {
    auto it = printers_.find(ToLowerAscii(name));
    return it == printers_.end() ? nullptr : &it->second;
}

std::unique_ptr<SpoolerPrinter> MemorySpooler::OpenPrinter(std::u16string_view name,
                                                           std::uint32_t access, const Bytes*) {
    Printer* p = Find(name);
    if (!p) {
        lastError_ = kErrorInvalidPrinterName;
        return nullptr;
    }
    if ((access & p->grantable) != access) {
        lastError_ = 5;  // access denied
        return nullptr;
    }
    ++p->opens;
    return std::make_unique<MemoryPrinterHandle>(*this, std::u16string(name));
}

std::u16string MemorySpooler::ErrorText(std::uint32_t code) {
    return u"System error " + DecimalText(code) + u".";
}

}  // namespace kx20
