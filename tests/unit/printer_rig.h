// The one unit rig: the in-memory ports with the simulated KX20 on the printer's port (its
// command entry, its job decoder, its published connection status), scripted prompts, the
// built-in strings, the native picture loader and a sheet context over them. The trace goes
// to the in-memory file "out".
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "devmode/devmode.h"
#include "entry/sheet_context.h"
#include "logos/logo_store.h"
#include "platform/trace.h"
#include "platform/memory/memory_platform.h"
#include "platform/memory/memory_prompts.h"
#include "platform/memory/native_pictures.h"
#include "platform/resources.h"
#include "sim/sim_printer.h"
#include "store/catalogue.h"
#include "store/registry_layout.h"
#include "tests/unit/trace_capture.h"

namespace kx20 {

class PrinterRig : public ::testing::Test, protected MemoryPlatform {
  protected:
    static constexpr char16_t kPrinter[] = u"KX20";
    static constexpr char16_t kPort[] = u"KX20_USB1";
    static constexpr char16_t kId[] = u"KX20SIM1";  // the simulated printer's identity
    static constexpr WindowId kPage = 0x1234;

    void SetUp() override {
        SetTraceTarget(&files, &clock, {u"marker", u"out"});
        files.Put(u"marker", {});
        spooler.AddPrinter(kPrinter, kPort);
        printer.AttachRegistry(&registry);
        monitor.handler = printer.Handler();
        spooler.onJobEnd = [this](const MemoryJob& job) { printer.ReceiveJob(job.data); };
        ctx.platform = &p;
        ctx.prompts = &prompts;
        ctx.strings = &strings;
        ctx.pictures = &pictures;
        ctx.printerName = kPrinter;
    }
    void TearDown() override { SetTraceTarget(nullptr, nullptr); }

    logos::StoreTarget Target() { return {strings, p, pictures, kPrinter, kId}; }
    std::u16string Identity() const { return sim::IdentityText(printer.state()); }
    std::u16string Text(std::uint32_t id) { return strings.Load(id).value_or(u""); }
    std::vector<std::string> Trace() { return TraceMessages(files); }

    std::vector<std::u16string> JobNames() const {
        std::vector<std::u16string> names;
        for (const MemoryJob& job : spooler.jobs) names.push_back(job.docName);
        return names;
    }
    // The erase commands the printer received, as their area numbers.
    std::vector<int> Erases() const {
        std::vector<int> areas;
        for (const auto& call : monitor.calls)
            if (call.command.size() == 2 && call.command[0] == 0x15)
                areas.push_back(call.command[1]);
        return areas;
    }
    // The message boxes shown, as the ids of the flows' three box texts.
    std::vector<std::uint32_t> BoxTexts() const {
        std::vector<std::uint32_t> ids;
        for (const auto& b : prompts.boxes)
            for (std::uint32_t id : {2231u, 2234u, 2238u})
                if (b.text == BuiltinStrings().Load(id).value_or(u"?"))
                    ids.push_back(id);
        return ids;
    }
    // What the catalogue holds for the attached printer, by number.
    std::map<std::uint32_t, Bytes> StoredLogos() {
        std::map<std::uint32_t, Bytes> out;
        for (auto& r : store::ReadLogoRecords(p, kPrinter, kId)) out[r.number] = r.picture;
        return out;
    }
    std::map<std::uint32_t, std::u16string> StoredMessages() {
        std::map<std::uint32_t, std::u16string> out;
        for (auto& r : store::ReadMessageRecords(p, kPrinter, kId)) out[r.number] = r.text;
        return out;
    }

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
    NativePictures pictures;
    SheetContext ctx;
    PageContext& context = ctx;
};

}  // namespace kx20
