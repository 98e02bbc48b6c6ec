// Spooler port: opened printers, their information levels, driver information, printer data,
// and raw jobs with a watch on their status.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/bytes.h"

namespace kx20 {

// Printer access rights.
inline constexpr std::uint32_t kPrinterAccessAdminister = 0x4;
inline constexpr std::uint32_t kPrinterAccessUse = 0x8;
inline constexpr std::uint32_t kPrinterAllAccess = 0xF000C;
inline constexpr std::uint32_t kPrinterRead = 0x20008;

inline constexpr std::uint32_t kPrinterAttributeNetwork = 0x10;

// Spooler error codes the module looks at.
inline constexpr std::uint32_t kErrorInsufficientBuffer = 122;
inline constexpr std::uint32_t kErrorInvalidPrinterName = 1801;
inline constexpr std::uint32_t kErrorFileNotFound = 2;
inline constexpr std::uint32_t kErrorInvalidParameter = 87;

// The fields of the printer information levels 1, 2, 4, 5, 8 and 9 in one record; a level
// fills the fields it carries and leaves the others empty.
struct PrinterInfo {
    std::u16string serverName;
    std::u16string printerName;
    std::u16string shareName;
    std::u16string portName;
    std::u16string driverName;
    std::u16string comment;
    std::u16string location;
    std::u16string printProcessor;
    std::u16string dataType;
    std::optional<Bytes> devMode;  // levels 2, 8 and 9; absent when the printer has none
    std::uint32_t attributes = 0;
    std::uint32_t priority = 0;
    std::uint32_t status = 0;
    std::uint32_t jobs = 0;
    // Level 2: the hours the printer takes jobs, minutes after midnight (UTC); both 0 when
    // it is always available.
    std::uint32_t startTime = 0;
    std::uint32_t untilTime = 0;
};

struct DriverInfo {
    std::uint32_t version = 0;
    std::u16string name;
    std::u16string environment;
    std::u16string driverPath;
    std::u16string dataFile;
    std::u16string configFile;
    std::u16string helpFile;
    std::vector<std::u16string> dependentFiles;  // in list order
    std::u16string monitorName;
    std::u16string defaultDataType;
};

// Job notification constants.
inline constexpr std::uint32_t kPrinterChangeAddJob = 0x100;
inline constexpr std::uint32_t kPrinterChangeSetJob = 0x200;
inline constexpr std::uint32_t kPrinterChangeDeleteJob = 0x400;
inline constexpr std::uint32_t kPrinterChangeWriteJob = 0x800;
inline constexpr std::uint32_t kPrinterChangeJob = 0xFF00;
inline constexpr std::uint16_t kJobNotifyType = 1;
inline constexpr std::uint16_t kJobNotifyFieldStatus = 10;

inline constexpr std::uint32_t kJobStatusPaused = 0x1;
inline constexpr std::uint32_t kJobStatusError = 0x2;
inline constexpr std::uint32_t kJobStatusSpooling = 0x8;
inline constexpr std::uint32_t kJobStatusPrinting = 0x10;
inline constexpr std::uint32_t kJobStatusOffline = 0x20;
inline constexpr std::uint32_t kJobStatusPaperOut = 0x40;
inline constexpr std::uint32_t kJobStatusPrinted = 0x80;
inline constexpr std::uint32_t kJobStatusDeleted = 0x100;
inline constexpr std::uint32_t kJobStatusUserIntervention = 0x400;
inline constexpr std::uint32_t kJobStatusRestart = 0x800;

inline constexpr std::uint32_t kJobControlDelete = 5;

struct JobNotifyItem {
    std::uint16_t type = 0;
    std::uint16_t field = 0;
    std::uint32_t jobId = 0;
    std::uint32_t value = 0;  // the job status for the status field
};

struct JobChanges {
    std::uint32_t changeFlags = 0;
    bool hasData = false;
    std::vector<JobNotifyItem> items;
};

// A watch on the job changes of one printer. Wait blocks until the next change and reports it;
// it answers false when the watch itself has broken and no change can come any more.
class JobWatch {
  public:
    virtual ~JobWatch() = default;
    virtual bool Wait(JobChanges& changes) = 0;
};

// One printer opened in the spooler; destroying it closes the handle.
class SpoolerPrinter {
  public:
    virtual ~SpoolerPrinter() = default;

    virtual bool GetPrinter(std::uint32_t level, PrinterInfo& info) = 0;
    virtual bool SetPrinter(std::uint32_t level, const PrinterInfo& info) = 0;
    virtual bool GetPrinterDriver(std::uint32_t level, DriverInfo& info) = 0;
    // As the system's printer data calls: results are system error codes (0 = success);
    // a buffer too small answers kErrorMoreData (234) with `*needed` set.
    virtual std::uint32_t GetPrinterData(std::u16string_view name, std::uint32_t* type,
                                         std::uint8_t* data, std::uint32_t size,
                                         std::uint32_t* needed) = 0;
    virtual std::uint32_t SetPrinterData(std::u16string_view name, std::uint32_t type,
                                         ByteSpan data) = 0;
    virtual std::uint32_t SetPrinterDataEx(std::u16string_view key, std::u16string_view name,
                                           std::uint32_t type, ByteSpan data) = 0;
    virtual bool ResetPrinter(std::u16string_view dataType, const Bytes* devMode) = 0;

    // Raw jobs: StartDoc answers the job id, 0 on failure.
    virtual std::uint32_t StartDoc(std::u16string_view docName, std::u16string_view dataType) = 0;
    virtual bool StartPage() = 0;
    virtual bool Write(ByteSpan data, std::uint32_t* written) = 0;
    virtual bool EndPage() = 0;
    virtual bool EndDoc() = 0;
    // A watch on the printer's job changes reporting the given job field; `jobId` is the job the
    // caller waits for (an adapter whose spooler has no change notifications watches that job
    // itself). Null when no watch can be set up.
    virtual std::unique_ptr<JobWatch> WatchJobs(std::uint32_t changeFlags, std::uint16_t field,
                                                std::uint32_t jobId) = 0;
    virtual bool SetJobCommand(std::uint32_t jobId, std::uint32_t command) = 0;
};

class Spooler {
  public:
    virtual ~Spooler() = default;
    // Null when the printer cannot be opened with that access; LastError tells why.
    virtual std::unique_ptr<SpoolerPrinter> OpenPrinter(std::u16string_view name,
                                                        std::uint32_t access,
                                                        const Bytes* devMode) = 0;
    virtual std::uint32_t LastError() = 0;
    // The system's text for an error code (at most 1024 characters).
    virtual std::u16string ErrorText(std::uint32_t code) = 0;
};

inline constexpr std::uint32_t kErrorMoreData = 234;

}  // namespace kx20
