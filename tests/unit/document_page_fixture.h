// A document sheet's page context over the in-memory ports, with the simulated printer on the
// printer's port, scripted prompts and the built-in strings: what the page-model tests share.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "devmode/devmode.h"
#include "entry/sheet_context.h"
#include "platform/trace.h"
#include "platform/memory/memory_platform.h"
#include "platform/memory/memory_prompts.h"
#include "platform/resources.h"
#include "sim/sim_printer.h"
#include "store/catalogue.h"
#include "store/registry_layout.h"
#include "tests/unit/trace_capture.h"

namespace kx20 {

class DocumentPageTest : public ::testing::Test, protected MemoryPlatform {
  protected:
    static constexpr char16_t kPrinter[] = u"KX20";
    static constexpr char16_t kPort[] = u"KX20_USB1";
    static constexpr char16_t kId[] = u"KX20SIM1";  // the simulated printer's identity

    void SetUp() override {
        SetTraceTarget(&files, &clock, {u"marker", u"out"});
        files.Put(u"marker", {});
        spooler.AddPrinter(kPrinter, kPort);
        printer.AttachRegistry(&registry);
        monitor.handler = printer.Handler();
        ctx.platform = &p;
        ctx.prompts = &prompts;
        ctx.strings = &strings;
        ctx.printerName = kPrinter;
        ctx.pageCopy = gsDevMode();
        ctx.docDevMode = MutableByteSpan(ctx.pageCopy);
    }
    void TearDown() override { SetTraceTarget(nullptr, nullptr); }

    MutableByteSpan Priv() { return MutableByteSpan(ctx.pageCopy).subspan(kDevModePublicSize); }
    std::u16string Text(std::uint32_t id) { return strings.Load(id).value_or(u""); }
    std::vector<std::string> Trace() { return TraceMessages(files); }

    // A font record as the font download registers it: position first, face name at byte 22,
    // padded to `size` bytes.
    static Bytes FontRecord(std::uint32_t position, std::u16string_view face, std::size_t size) {
        Bytes record(size, 0);
        WriteU32(record, 0, position);
        WriteUtf16Field(record, store::kFontFaceNameOffset, (size - 22) / 2, face);
        return record;
    }
    void AddLogo(std::uint32_t number, std::u16string_view id = kId) {
        const Bytes picture(100, static_cast<std::uint8_t>(number));
        ASSERT_TRUE(store::RegisterLogo(p, number, 1, 1, 100, picture, id, kPrinter));
    }
    void AddMessage(std::uint32_t number, std::u16string_view text, std::u16string_view id = kId) {
        ASSERT_TRUE(store::RegisterMessage(p, number, text, id, kPrinter));
    }
    void AddSbcsFont(std::u16string_view face) {
        ASSERT_TRUE(store::RegisterSBCSFont(p, 1, 700, FontRecord(1, face, 700), kId, kPrinter));
    }
    void AddDbcsFont(bool thermal, std::u16string_view face) {
        ASSERT_TRUE(store::RegisterDBCSFont(p, thermal, FontRecord(0, face, 200), kId, kPrinter));
    }
    void SetPortType(std::uint32_t type) {
        auto key = registry.CreateKey(Hive::LocalMachine, store::PortKeyPath(kPort));
        ASSERT_TRUE(key);
        ASSERT_EQ(WriteDwordValue(*key, store::kTypeValue, type), kRegOk);
    }

    sim::SimulatedPrinter printer{kPort};
    ScriptedPrompts prompts;
    BuiltinStrings strings;
    SheetContext ctx;
};

}  // namespace kx20
