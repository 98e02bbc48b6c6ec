// The driver's pages against the simulated printer: the in-memory ports, the simulated KX20 on
// the printer's port (its command entry, its job decoder, its published connection status),
// scripted prompts, the built-in strings and a page context over them. The trace goes to the
// in-memory file "out".
#pragma once

#include <gtest/gtest.h>

#include "pages/page_context.h"
#include "platform/trace.h"
#include "platform/memory/memory_platform.h"
#include "platform/memory/memory_prompts.h"
#include "platform/resources.h"
#include "sim/sim_printer.h"

namespace kx20 {

class DevicePageTest : public ::testing::Test, protected MemoryPlatform {
  protected:
    static constexpr char16_t kPrinter[] = u"KX20";
    static constexpr char16_t kPort[] = u"KX20_USB1";
    static constexpr WindowId kPage = 0x1234;

    void SetUp() override {
        spooler.AddPrinter(kPrinter, kPort);
        printer.AttachRegistry(&registry);
        monitor.handler = printer.Handler();
        spooler.onJobEnd = [this](const MemoryJob& job) { printer.ReceiveJob(job.data); };
        context.platform = &p;
        context.prompts = &prompts;
        context.strings = &strings;
        context.printerName = kPrinter;
        SetTraceTarget(&files, &clock, {u"marker", u"out"});
        files.Put(u"marker", {});
    }
    void TearDown() override { SetTraceTarget(nullptr, nullptr); }

    std::u16string Identity() const { return sim::IdentityText(printer.state()); }
    std::u16string Str(std::uint32_t id) { return strings.Load(id).value_or(u""); }
    // The erase commands the printer received, as their area numbers.
    std::vector<int> Erased() const {
        std::vector<int> areas;
        for (const auto& call : monitor.calls)
            if (call.command.size() == 2 && call.command[0] == 0x15)
                areas.push_back(call.command[1]);
        return areas;
    }

    sim::SimulatedPrinter printer{kPort};
    ScriptedPrompts prompts;
    BuiltinStrings strings;
    PageContext context;
};

}  // namespace kx20
