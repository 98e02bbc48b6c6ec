#include "channel/job_channel.h"

#include <gtest/gtest.h>

#include "platform/memory/memory_platform.h"

namespace kx20::channel {
namespace {

class JobChannel : public ::testing::Test, protected MemoryPlatform {
  protected:
    void SetUp() override { spooler.AddPrinter(u"KX20", u"USB001"); }
    bool Send(std::uint32_t kind = 1, std::uint32_t number = 3) {
        spooler.pendingChanges.clear();
        return SendRawJobAndWait(strings, p, u"KX20", kind, number, data);
    }

    BuiltinStrings strings;
    Bytes data{0x43, 0x01, 0x4D, 0x00, 0xFF, 0x10};
};

TEST_F(JobChannel, PrintedJobCarriesTheWholeBlockAsOneRawPage) {
    EXPECT_TRUE(Send(1, 3));
    ASSERT_EQ(spooler.jobs.size(), 1u);
    const MemoryJob& job = spooler.jobs[0];
    EXPECT_EQ(job.docName, u"KX20 Logo 3");
    EXPECT_EQ(job.dataType, u"RAW");
    EXPECT_EQ(job.data, data);
    EXPECT_TRUE(job.pageStarted && job.ended && job.commands.empty());

    EXPECT_EQ(JobDocumentName(strings, 2, 12), u"KX20 Message 12");
    EXPECT_EQ(JobDocumentName(strings, 3, 12), u"KX20 Single-Byte Font");
    EXPECT_EQ(JobDocumentName(strings, 5, 1), u"");
}

TEST_F(JobChannel, FailedStatusDeletesTheJobAndBusyPrintedKeepsWaiting) {
    for (std::uint32_t bad : {kJobStatusError, kJobStatusDeleted, kJobStatusUserIntervention}) {
        spooler.jobStatusScript = {kJobStatusSpooling, bad | kJobStatusPrinted};
        EXPECT_FALSE(Send()) << bad;
        EXPECT_EQ(spooler.jobs.back().commands, (std::vector<std::uint32_t>{kJobControlDelete}));
    }
    for (std::uint32_t busy : {kJobStatusPaused, kJobStatusSpooling, kJobStatusPrinting,
                               kJobStatusOffline, kJobStatusPaperOut, kJobStatusRestart}) {
        // Had the first round ended the wait, the error behind it would not be seen.
        spooler.jobStatusScript = {kJobStatusPrinted | busy, kJobStatusError};
        EXPECT_FALSE(Send()) << busy;
        spooler.jobStatusScript = {kJobStatusPrinted | busy, kJobStatusPrinted};
        EXPECT_TRUE(Send()) << busy;
    }
}

TEST_F(JobChannel, RoundsNotAboutThisJobsStatusAreIgnored) {
    const std::uint32_t id = spooler.nextJobId;
    auto round = [&](std::uint32_t flags, bool hasData, JobNotifyItem item) {
        spooler.pendingChanges.push_back({flags, hasData, {item}});
    };
    round(kPrinterChangeSetJob, false, {1, 10, id, kJobStatusPrinted});     // no data
    round(0x2, true, {1, 10, id, kJobStatusPrinted});                       // not a job change
    round(kPrinterChangeSetJob, true, {1, 10, id + 1, kJobStatusPrinted});  // another job
    round(kPrinterChangeSetJob, true, {1, 11, id, kJobStatusPrinted});      // another field
    round(kPrinterChangeWriteJob, true, {1, 10, id, kJobStatusError});
    spooler.jobStatusScript.clear();
    EXPECT_FALSE(SendRawJobAndWait(strings, p, u"KX20", 1, 1, data));
    EXPECT_EQ(spooler.jobs[0].commands.size(), 1u);
}

TEST_F(JobChannel, GivesUpInsteadOfWaitingForEver) {
    spooler.jobStatusScript = {kJobStatusSpooling, kJobStatusPrinting};  // the watch breaks
    EXPECT_FALSE(Send());
    spooler.jobStatusScript = {kJobStatusPrinted};
    spooler.Find(u"KX20")->noJobWatch = true;
    EXPECT_FALSE(Send());
    EXPECT_EQ(spooler.jobs.size(), 2u);
    // No job could be started: there is no id to wait for, not even a status of "job 0".
    spooler.Find(u"KX20")->noJobWatch = false;
    spooler.Find(u"KX20")->failStartDoc = true;
    spooler.pendingChanges.clear();
    spooler.pendingChanges.push_back({kPrinterChangeSetJob, true, {{1, 10, 0, kJobStatusPrinted}}});
    EXPECT_FALSE(SendRawJobAndWait(strings, p, u"KX20", 1, 1, data));
    EXPECT_EQ(spooler.jobs.size(), 2u);
    EXPECT_FALSE(SendRawJobAndWait(strings, p, u"No Such Printer", 1, 1, data));
}

}  // namespace
}  // namespace kx20::channel
