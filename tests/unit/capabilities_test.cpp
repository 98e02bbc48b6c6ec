// The capability answers of the driver, with the paper names loaded from the resource module
// found beside the driver's first dependent file.
#include "entry/capabilities.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/trace.h"
#include "platform/memory/memory_platform.h"
#include "platform/memory/memory_system.h"
#include "tests/unit/trace_capture.h"

namespace kx20 {
namespace {

constexpr char16_t kModule[] = u"C:\\spool\\drivers\\x64\\3\\KVORSENU.DLL";

class CapabilitiesTest : public ::testing::Test, protected MemoryPlatform {
  protected:
    void SetUp() override {
        SetTraceTarget(&files, &clock, {u"marker", u"out"});
        files.Put(u"marker", {});
        auto& printer = spooler.AddPrinter(u"KX20");
        DriverInfo driver;
        driver.name = u"KVO KX20";
        driver.dependentFiles = {kModule, u"C:\\spool\\drivers\\x64\\3\\kvorsgui.dll"};
        printer.driver = driver;
        system.AddModule(kModule);
    }
    void TearDown() override { SetTraceTarget(nullptr, nullptr); }

    std::int32_t Ask(std::uint32_t capability, std::vector<std::uint8_t>* out = nullptr) {
        if (!out)
            return AnswerCapability(p, system, u"KX20", capability, {}, false);
        return AnswerCapability(p, system, u"KX20", capability, *out, true);
    }

    static std::u16string TextAt(const std::vector<std::uint8_t>& b, std::size_t chars,
                                 std::size_t index) {
        return ReadUtf16Field(b, index * chars * 2, chars);
    }

    MemorySystem system;
};

TEST_F(CapabilitiesTest, ConstantAnswers) {
    struct Row {
        std::uint32_t cap;
        std::int32_t result;
    };
    const Row rows[] = {{1, 0x670F}, {6, 0},   {7, 0},     {8, 220}, {9, 5784},  {10, 0x401},
                        {11, 0x400}, {12, 0},  {15, 1},    {17, 90}, {18, 1000}, {19, -1},
                        {20, -1},    {21, -1}, {22, 0},    {23, 0},  {24, 0},    {26, 2340},
                        {27, 3},     {28, 0},  {30, 0},    {31, 0},  {32, 1},    {33, 0},
                        {0, 0},      {34, 0},  {0xFFFF, 0}};
    for (const Row& r : rows) {
        std::vector<std::uint8_t> out(64, 0xEE);
        EXPECT_EQ(Ask(r.cap, &out), r.result) << r.cap;
        EXPECT_EQ(out, std::vector<std::uint8_t>(64, 0xEE)) << r.cap << " writes nothing";
    }
    // File dependencies: 0 without an output buffer, -1 with one.
    std::vector<std::uint8_t> out(8);
    EXPECT_EQ(Ask(14), 0);
    EXPECT_EQ(Ask(14, &out), -1);
    // Extents in whole millimetres (85.7 mm comes out as 85): width low, length high.
    EXPECT_EQ(Ask(4), 48 | (274 << 16));
    EXPECT_EQ(Ask(5), 85 | (3276 << 16));
}

TEST_F(CapabilitiesTest, PaperListsComeFromTheOneTable) {
    std::vector<std::uint8_t> papers(CapabilityOutputSize(2), 0);
    EXPECT_EQ(Ask(2, &papers), 6);
    for (std::size_t i = 0; i < 6; ++i) EXPECT_EQ(ReadU16(papers, 2 * i), 257 + i);

    std::vector<std::uint8_t> sizes(CapabilityOutputSize(3), 0);
    EXPECT_EQ(Ask(3, &sizes), 6);
    const std::int32_t expected[6][2] = {{580, 2970},  {580, 32760}, {800, 2970},
                                         {800, 32760}, {480, 2740},  {857, 2740}};
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_EQ(ReadU32(sizes, 8 * i), static_cast<std::uint32_t>(expected[i][0]));
        EXPECT_EQ(ReadU32(sizes, 8 * i + 4), static_cast<std::uint32_t>(expected[i][1]));
    }

    std::vector<std::uint8_t> names(CapabilityOutputSize(16), 0xEE);
    EXPECT_EQ(Ask(16, &names), 6);
    EXPECT_EQ(TextAt(names, 64, 0), u"Roll Paper 58 x 297 mm");
    EXPECT_EQ(TextAt(names, 64, 2), u"Roll Paper 80 x 297 mm");
    EXPECT_EQ(TextAt(names, 64, 5), u"Roll Paper 85.7 x 274 mm");
    // Only the text and its terminator are written, as the system's string copy does.
    EXPECT_EQ(names[64 * 2 - 1], 0xEE);

    // Without an output the counts are the same and nothing is touched.
    EXPECT_EQ(Ask(2), 6);
    EXPECT_EQ(Ask(16), 6);
    // The high 16 bits of the capability are not looked at.
    EXPECT_EQ(Ask(0x10002), 6);
    EXPECT_EQ(Ask(0xABCD0004), 48 | (274 << 16));
}

TEST_F(CapabilitiesTest, TextAnswers) {
    std::vector<std::uint8_t> res(CapabilityOutputSize(13), 0);
    EXPECT_EQ(Ask(13, &res), 2);
    EXPECT_EQ(ReadU32(res, 0), 150u);
    EXPECT_EQ(ReadU32(res, 4), 150u);
    EXPECT_EQ(ReadU32(res, 8), 200u);
    EXPECT_EQ(ReadU32(res, 12), 200u);

    std::vector<std::uint8_t> personality(CapabilityOutputSize(25), 0);
    EXPECT_EQ(Ask(25, &personality), 2);
    EXPECT_EQ(TextAt(personality, 32, 0), u"RS-232");
    EXPECT_EQ(TextAt(personality, 32, 1), u"RS-485");

    // The default paper's name, in a buffer only as long as the name needs.
    std::vector<std::uint8_t> media(2 * 23, 0);
    EXPECT_EQ(AnswerCapability(p, system, u"KX20", 29, media, true), 1);
    EXPECT_EQ(ReadUtf16Field(media, 0, 23), u"Roll Paper 80 x 297 mm");
}

TEST_F(CapabilitiesTest, NamesStayAsTheyWereWithoutTheResourceModule) {
    MemorySystem none;  // the module is nowhere
    std::vector<std::uint8_t> names(CapabilityOutputSize(16), 0xEE);
    EXPECT_EQ(AnswerCapability(p, none, u"KX20", 16, names, true), 6);
    EXPECT_EQ(names, std::vector<std::uint8_t>(CapabilityOutputSize(16), 0xEE));
    // Looked for beside the dependent file, once with the user's suffix and once with the first.
    EXPECT_EQ(none.loadAttempts, (std::vector<std::u16string>{kModule, kModule}));

    // An unknown printer still gets every answer; the module cannot be found without the
    // driver's files.
    EXPECT_EQ(AnswerCapability(p, system, u"Nowhere", 2, {}, false), 6);
    const auto trace = TraceMessages(files);
    EXPECT_NE(std::find(trace.begin(), trace.end(), "   Error -- LoadLibrary() failed!\n"),
              trace.end());
}

TEST_F(CapabilitiesTest, TraceNamesTheCapabilityAndTheResult) {
    std::vector<std::uint8_t> out(12);
    Ask(2, &out);
    Ask(23);
    EXPECT_EQ(TraceMessages(files),
              (std::vector<std::string>{"   pDeviceName = KX20, pvOutput non-NULL? = 1, \n",
                                        "  iDevCap = DC_PAPERS\n", "   Return 6\n",
                                        "   pDeviceName = KX20, pvOutput non-NULL? = 0, \n",
                                        "  UNKNOWN iDevCap = 23\n", "   Return 0\n"}));
}

}  // namespace
}  // namespace kx20
