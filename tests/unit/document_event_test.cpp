// Document events: the job's section through its life, and the failures each step reports.
#include "entry/document_event.h"

#include <gtest/gtest.h>

#include "devmode/devmode.h"
#include "platform/memory/memory_files.h"
#include "platform/memory/memory_sections.h"
#include "platform/trace.h"
#include "tests/unit/trace_capture.h"

namespace kx20 {
namespace {

constexpr std::uint64_t kPrinterHandle = 0x1'00A3'F2C8;  // only the low 32 bits name it
constexpr char16_t kName[] = u"kvox00A3F2C8";

class DocumentEventTest : public ::testing::Test {
  protected:
    void SetUp() override {
        SetTraceTarget(&files, &clock, {u"marker", u"out"});
        files.Put(u"marker", {});
    }
    void TearDown() override { SetTraceTarget(nullptr, nullptr); }

    std::int32_t Event(std::int32_t event, ByteSpan record = {}) {
        return HandleDocumentEvent(sections, kPrinterHandle, event, record);
    }

    MemoryFileSystem files;
    ManualClock clock;
    MemorySections sections;
};

TEST_F(DocumentEventTest, SectionCarriesTheJobFromCreationToDeletion) {
    DevModeImage record = gsDevMode();
    record[kDevModeSize - 1] = 0x5A;  // the last private byte travels too
    ASSERT_EQ(Event(docevent::kCreateDcPre, record), 1);
    const Bytes* section = sections.Find(kName);
    ASSERT_NE(section, nullptr);
    EXPECT_EQ(section->size(), 8192u) << "6004 bytes rounded to whole pages";
    EXPECT_NE(ReadU32(*section, 0), 0u) << "the creator's handle";
    EXPECT_EQ(ReadU32(*section, 4), 0u);
    EXPECT_TRUE(std::equal(record.begin(), record.end(), section->begin() + 8));
    EXPECT_EQ(sections.OpenHandles(), 1u) << "the creator's handle stays open";

    EXPECT_EQ(Event(docevent::kStartDocPre), 1);
    for (int page = 0; page < 3; ++page) EXPECT_EQ(Event(docevent::kEndPage), 1);
    EXPECT_EQ(ReadU32(*sections.Find(kName), 4), 3u);
    EXPECT_EQ(sections.OpenHandles(), 1u) << "check and count close what they open";
    for (std::int32_t other : {2, 3, 4, 6, 8, 9, 11, 12, 13, 0, 14, -3})
        EXPECT_EQ(Event(other), 1) << "only traced: " << other;
    EXPECT_EQ(sections.OpenHandles(), 1u);

    EXPECT_EQ(Event(docevent::kDeleteDc), 1);
    EXPECT_EQ(sections.Find(kName), nullptr) << "the last handle went with the context";
    EXPECT_EQ(sections.OpenHandles(), 0u);
}

TEST_F(DocumentEventTest, SectionOfAnInformationContextOrAHugeRecordStaysInItsPages) {
    ASSERT_EQ(Event(docevent::kCreateDcPre), 1);
    const Bytes* section = sections.Find(kName);
    ASSERT_NE(section, nullptr);
    EXPECT_TRUE(std::all_of(section->begin() + 8, section->end(), [](auto b) { return b == 0; }));
    ASSERT_EQ(Event(docevent::kDeleteDc), 1);

    // A record that declares 65535 + 65535 bytes fills the mapped pages and no more.
    ASSERT_EQ(Event(docevent::kCreateDcPre, Bytes(131070, 0x11)), 1);
    ASSERT_NE(section = sections.Find(kName), nullptr);
    EXPECT_EQ(section->size(), 8192u);
    EXPECT_EQ(section->back(), 0x11);
}

TEST_F(DocumentEventTest, StepsWithoutASectionAndAFailedMapFail) {
    for (std::int32_t event : {docevent::kEndPage, docevent::kStartDocPre, docevent::kDeleteDc})
        EXPECT_EQ(Event(event), -1) << event;
    EXPECT_TRUE(TraceHas(files, "The system cannot find the file specified."));

    sections.failMap = true;
    EXPECT_EQ(Event(docevent::kCreateDcPre, gsDevMode()), -1);
    EXPECT_EQ(sections.OpenHandles(), 1u);
    EXPECT_TRUE(TraceHas(files, ": 8\n"));
}

}  // namespace
}  // namespace kx20
