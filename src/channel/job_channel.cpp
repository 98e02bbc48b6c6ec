#include "channel/job_channel.h"

#include <array>
#include <iterator>
#include <optional>

#include "platform/format.h"

namespace kx20::channel {

namespace {

constexpr std::uint32_t kDocNameIds[] = {2270, 2271, 2272, 2273};

constexpr std::uint32_t kJobChangeFlags =
    kPrinterChangeAddJob | kPrinterChangeSetJob | kPrinterChangeDeleteJob | kPrinterChangeWriteJob;

constexpr std::uint32_t kJobFailedBits =
    kJobStatusError | kJobStatusDeleted | kJobStatusUserIntervention;
constexpr std::uint32_t kJobBusyBits = kJobStatusPaused | kJobStatusSpooling | kJobStatusPrinting |
                                       kJobStatusOffline | kJobStatusPaperOut | kJobStatusRestart;

// The verdict of one round of changes on the job `jobId`; rounds that are not about jobs, carry
// no data or hold no status of this job leave it waiting.
JobVerdict JudgeRound(const JobChanges& changes, std::uint32_t jobId) {
    if ((changes.changeFlags & kJobChangeFlags) == 0 || !changes.hasData) {
        return JobVerdict::Waiting;
    }
    for (const JobNotifyItem& item : changes.items) {
        if (item.jobId != jobId || item.type != kJobNotifyType ||
            item.field != kJobNotifyFieldStatus) {
            continue;
        }
        JobVerdict v = JudgeJobStatus(item.value);
        if (v != JobVerdict::Waiting)
            return v;
    }
    return JobVerdict::Waiting;
}

}  // namespace

std::u16string JobDocumentName(ResourceStrings& strings, std::uint32_t kind, std::uint32_t number) {
    if (kind < 1 || kind > std::size(kDocNameIds))
        return {};
    std::optional<std::u16string> text = strings.Load(kDocNameIds[kind - 1]);
    if (!text)
        return {};
    if (kind > 2)
        return *text;
    std::u16string name;
    const std::array<FormatArg, 1> args = {FormatArg(number)};
    // A translated text without its number conversion is still a usable name.
    if (!FormatTo(name, *text, args))
        return *text;
    return name;
}

JobVerdict JudgeJobStatus(std::uint32_t status) {
    if (status & kJobFailedBits)
        return JobVerdict::Failed;
    if ((status & kJobStatusPrinted) && !(status & kJobBusyBits))
        return JobVerdict::Printed;
    return JobVerdict::Waiting;
}

bool SendRawJobAndWait(ResourceStrings& strings, Platform& p, std::u16string_view printerName,
                       std::uint32_t kind, std::uint32_t number, ByteSpan data) {
    return SendNamedRawJobAndWait(p, printerName, JobDocumentName(strings, kind, number), data);
}

bool SendNamedRawJobAndWait(Platform& p, std::u16string_view printerName,
                            std::u16string_view docName, ByteSpan data) {
    auto printer = p.spooler.OpenPrinter(printerName, kPrinterAccessUse, nullptr);
    if (!printer)
        return false;

    const std::uint32_t jobId = printer->StartDoc(docName, u"RAW");
    // Without a job id no status could ever be matched to the job, and the wait would never
    // end.
    if (jobId == 0)
        return false;
    // A failed page start or write shows up as the job's status; the wait decides.
    printer->StartPage();
    std::uint32_t written = 0;
    printer->Write(data, &written);
    printer->EndPage();
    printer->EndDoc();

    auto watch = printer->WatchJobs(kPrinterChangeJob, kJobNotifyFieldStatus, jobId);
    if (!watch)
        return false;

    for (;;) {
        JobChanges changes;
        if (!watch->Wait(changes))
            return false;  // no change can come any more
        switch (JudgeRound(changes, jobId)) {
            case JobVerdict::Waiting:
                break;
            case JobVerdict::Printed:
                return true;
            case JobVerdict::Failed:
                printer->SetJobCommand(jobId, kJobControlDelete);
                return false;
        }
    }
}

}  // namespace kx20::channel
