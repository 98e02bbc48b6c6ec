#include "platform/memory/registry_file.h"

#include <gtest/gtest.h>

#include "platform/record_file.h"

namespace kx20 {
namespace {

constexpr std::u16string_view kRoot = u"SYSTEM\\Ports\\P1";

TEST(RegistryBranch, RoundTripKeepsTheBranchAndLeavesOutSkippedValues) {
    MemoryRegistry from;
    from.CreateKey(Hive::LocalMachine, u"SYSTEM\\Ports\\P1\\Logos")
        ->SetValue(u"1_id", kRegBinary, Bytes{1, 2, 3});
    auto port = from.CreateKey(Hive::LocalMachine, kRoot);
    port->SetValue(u"ConnectionStatus", kRegBinary, Bytes(12, 1));
    port->SetValue(u"_sbcscrc", kRegDword, Bytes{4, 0, 0, 0});
    from.CreateKey(Hive::LocalMachine, u"SYSTEM\\Ports\\P10")->SetValue(u"x", kRegDword, Bytes(4));
    const std::u16string_view skip[] = {u"connectionstatus"};
    const Bytes file = SerializeBranch(from, Hive::LocalMachine, kRoot, skip);

    MemoryRegistry to;
    std::u16string problem;
    ASSERT_TRUE(LoadBranch(file, to, Hive::LocalMachine, u"SYSTEM\\Ports\\P2", problem));
    EXPECT_EQ(to.FindValue(Hive::LocalMachine, u"SYSTEM\\Ports\\P2\\Logos", u"1_id")->data,
              (Bytes{1, 2, 3}));
    EXPECT_EQ(to.FindValue(Hive::LocalMachine, u"SYSTEM\\Ports\\P2", u"_sbcscrc")->type, kRegDword);
    EXPECT_EQ(to.FindValue(Hive::LocalMachine, u"SYSTEM\\Ports\\P2", u"ConnectionStatus"), nullptr);
    // SYSTEM, Ports, P2 and its Logos: nothing of the neighbouring P10.
    EXPECT_EQ(to.KeyPaths(Hive::LocalMachine).size(), 4u);
}

TEST(RegistryBranch, DamagedOrOversizedFilesAreRefusedWithoutHarm) {
    MemoryRegistry from;
    from.CreateKey(Hive::LocalMachine, kRoot)->SetValue(u"v", kRegBinary, Bytes(40, 7));
    const Bytes good = SerializeBranch(from, Hive::LocalMachine, kRoot);
    MemoryRegistry to;
    std::u16string problem;
    for (std::size_t n = 0; n < good.size(); ++n) {
        Bytes cut(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(n));
        EXPECT_FALSE(LoadBranch(cut, to, Hive::LocalMachine, kRoot, problem)) << n;
    }
    // Well framed, but announcing more keys than a branch may hold.
    Bytes many;
    AppendU32(many, kBranchMaxKeys + 1);
    EXPECT_FALSE(LoadBranch(FrameRecord("KX20REGB", 1, many), to, Hive::LocalMachine, kRoot,
                            problem));
    EXPECT_TRUE(to.KeyPaths(Hive::LocalMachine).empty());
}

}  // namespace
}  // namespace kx20
