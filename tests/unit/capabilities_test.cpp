// The capability answers checked against each other, the paper table and the default device
// mode; paper names come from the resource module found beside the driver's first dependent file.
#include "entry/capabilities.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "devmode/devmode.h"
#include "devmode/roll_papers.h"
#include "platform/resources.h"
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
        DriverInfo driver;
        driver.name = u"KVO KX20";
        driver.dependentFiles = {kModule, u"C:\\spool\\drivers\\x64\\3\\kvorsgui.dll"};
        spooler.AddPrinter(u"KX20").driver = driver;
        system.AddModule(kModule);
    }
    void TearDown() override { SetTraceTarget(nullptr, nullptr); }

    std::int32_t Ask(std::uint32_t cap) { return AnswerCapability(p, system, u"KX20", cap, {}, false); }
    // The answer into a buffer of exactly the size the capability writes at most.
    Bytes Out(std::uint32_t cap, std::int32_t* result = nullptr) {
        Bytes out(CapabilityOutputSize(cap), 0xEE);
        const std::int32_t r = AnswerCapability(p, system, u"KX20", cap, out, true);
        if (result) *result = r;
        return out;
    }

    MemorySystem system;
    const Bytes dev{gsDevMode().begin(), gsDevMode().end()};
};

TEST_F(CapabilitiesTest, AnswersAgreeWithTheDeviceModeAndThePaperTable) {
    EXPECT_EQ(Ask(dc::kSize), ReadU16(dev, kOffDmSize));
    EXPECT_EQ(Ask(dc::kExtra), ReadU16(dev, kOffDmDriverExtra));
    EXPECT_EQ(Ask(dc::kSize) + Ask(dc::kExtra), static_cast<std::int32_t>(dev.size()));
    EXPECT_EQ(Ask(dc::kVersion), ReadU16(dev, kOffDmSpecVersion));
    EXPECT_EQ(Ask(dc::kDriver), ReadU16(dev, kOffDmDriverVersion));
    EXPECT_GE(Ask(dc::kCopies), ReadDmShort(dev, kOffDmCopies));
    EXPECT_TRUE(Ask(dc::kFields) & kDmPaperSize);

    const auto& table = PaperTable();
    std::int32_t count = 0;
    const Bytes ids = Out(dc::kPapers, &count), sizes = Out(dc::kPaperSize);
    const Bytes names = Out(dc::kPaperNames);
    ASSERT_EQ(count, static_cast<std::int32_t>(kPaperCount));
    EXPECT_EQ(Ask(dc::kPaperSize), count);
    EXPECT_EQ(Ask(dc::kPaperNames), count);
    std::int32_t minW = 1 << 30, minL = 1 << 30, maxW = 0, maxL = 0;
    int defaultPaper = -1;
    for (std::size_t i = 0; i < kPaperCount; ++i) {
        EXPECT_EQ(ReadU16(ids, 2 * i), table[i].id);
        EXPECT_EQ(ReadU32(sizes, 8 * i), static_cast<std::uint32_t>(table[i].width));
        EXPECT_EQ(ReadU32(sizes, 8 * i + 4), static_cast<std::uint32_t>(table[i].length));
        EXPECT_EQ(ReadUtf16Field(names, i * kPaperNameChars * 2, kPaperNameChars),
                  BuiltinStrings().Load(table[i].nameId).value_or(u"?"));
        EXPECT_EQ(PaperIdFromBit(BitFromPaperId(table[i].id)), table[i].id);
        // The device settings page lists the same papers in the same order.
        const RollPaper& roll = RollPapers()[i];
        EXPECT_EQ(roll.bit, table[i].bit);
        EXPECT_EQ(roll.bit, 1u << i);
        EXPECT_EQ(roll.paperId, table[i].id);
        EXPECT_EQ(roll.widthDots, static_cast<std::uint32_t>(table[i].widthDots));
        EXPECT_EQ(roll.lengthDots, static_cast<std::uint32_t>(table[i].lengthDots));
        EXPECT_EQ(roll.widthTenthMm, static_cast<std::uint32_t>(table[i].width));
        EXPECT_EQ(roll.lengthTenthMm, static_cast<std::uint32_t>(table[i].length));
        EXPECT_EQ(roll.nameString, table[i].nameId);
        minW = std::min(minW, table[i].width), maxW = std::max(maxW, table[i].width);
        minL = std::min(minL, table[i].length), maxL = std::max(maxL, table[i].length);
        if (table[i].id == ReadDmShort(dev, kOffDmPaperSize)) defaultPaper = static_cast<int>(i);
    }
    // Only a name and its terminator are written, as the system's string copy does.
    EXPECT_EQ(names[kPaperNameChars * 2 - 1], 0xEE);
    // Extents in whole millimetres: width low, length high.
    EXPECT_EQ(Ask(dc::kMinExtent), minW / 10 | (minL / 10) << 16);
    EXPECT_EQ(Ask(dc::kMaxExtent), maxW / 10 | (maxL / 10) << 16);
    // The paper ready is the default record's paper.
    ASSERT_GE(defaultPaper, 0);
    const Bytes media = Out(dc::kMediaReady, &count);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(ReadUtf16Field(media, 0, kMediaReadyChars),
              ReadUtf16Field(names, defaultPaper * kPaperNameChars * 2, kPaperNameChars));
    // The default record's resolution is one of those offered, each square.
    const Bytes res = Out(dc::kEnumResolutions, &count);
    ASSERT_EQ(res.size(), static_cast<std::size_t>(count) * 8);
    bool offered = false;
    for (std::int32_t i = 0; i < count; ++i) {
        EXPECT_EQ(ReadU32(res, 8 * i), ReadU32(res, 8 * i + 4));
        offered |= ReadU32(res, 8 * i) == static_cast<std::uint32_t>(ReadDmShort(dev, kOffDmPrintQuality)) &&
                    ReadU32(res, 8 * i + 4) == static_cast<std::uint32_t>(ReadDmShort(dev, kOffDmYResolution));
    }
    EXPECT_TRUE(offered);
    const Bytes personalities = Out(dc::kPersonality, &count);
    ASSERT_EQ(personalities.size(), static_cast<std::size_t>(count) * kPersonalityChars * 2);
    for (std::int32_t i = 0; i < count; ++i)
        EXPECT_FALSE(ReadUtf16Field(personalities, i * kPersonalityChars * 2, kPersonalityChars).empty());
}

TEST_F(CapabilitiesTest, EveryCapabilityStaysInItsOutputAndIgnoresTheHighBits) {
    for (std::uint32_t cap = 0; cap <= 40; ++cap) {
        Bytes out(CapabilityOutputSize(cap) + 16, 0xEE);
        const std::int32_t with = AnswerCapability(p, system, u"KX20", cap, out, true);
        EXPECT_TRUE(std::all_of(out.end() - 16, out.end(), [](auto b) { return b == 0xEE; })) << cap;
        EXPECT_EQ(Ask(cap | 0xABCD0000), Ask(cap)) << cap;
        // File dependencies: none listed, -1 for a caller who gave a buffer.
        EXPECT_EQ(with, cap == dc::kFileDependencies ? -1 : Ask(cap)) << cap;
    }
    EXPECT_EQ(Ask(dc::kFileDependencies), 0);
    EXPECT_EQ(Ask(0xFFFF), 0);
    EXPECT_TRUE(Ask(dc::kOrientation) == 90 || Ask(dc::kOrientation) == 270);
}

TEST_F(CapabilitiesTest, NamesStayAsTheyWereWithoutTheResourceModule) {
    MemorySystem none;  // the module is nowhere
    Bytes names(CapabilityOutputSize(dc::kPaperNames), 0xEE);
    EXPECT_EQ(AnswerCapability(p, none, u"KX20", dc::kPaperNames, names, true), 6);
    EXPECT_EQ(names, Bytes(names.size(), 0xEE));
    // Looked for beside the dependent file, once with the user's suffix and once with the first.
    EXPECT_EQ(none.loadAttempts, (std::vector<std::u16string>{kModule, kModule}));
    // An unknown printer still gets every answer.
    EXPECT_EQ(AnswerCapability(p, system, u"Nowhere", dc::kPapers, {}, false), 6);
    EXPECT_TRUE(TraceHas(files, "LoadLibrary"));
    EXPECT_TRUE(TraceHas(files, "DC_PAPERS"));
}

}  // namespace
}  // namespace kx20
