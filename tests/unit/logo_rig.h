// The driver's logo and message flows wired to the simulated printer: in-memory ports, the
// native picture loader, scripted prompts, and a page context for the page models.
#pragma once

#include <gtest/gtest.h>

#include "entry/page_context.h"
#include "log/trace.h"
#include "logos/logo_store.h"
#include "platform/memory/memory_platform.h"
#include "platform/memory/memory_prompts.h"
#include "platform/memory/native_pictures.h"
#include "platform/resources.h"
#include "sim/sim_printer.h"
#include "store/catalogue.h"
#include "store/registry_layout.h"

namespace kx20 {

class LogoRig : public ::testing::Test, protected MemoryPlatform {
  protected:
    static constexpr char16_t kPrinter[] = u"KX20";
    static constexpr char16_t kPort[] = u"KX20_USB1";
    static constexpr char16_t kId[] = u"KX20SIM1";  // the simulated printer's identity

    void SetUp() override {
        spooler.AddPrinter(kPrinter, kPort);
        printer.AttachRegistry(&registry);
        monitor.handler = printer.Handler();
        spooler.onJobEnd = [this](const MemoryJob& job) { printer.ReceiveJob(job.data); };
        context.platform = &p;
        context.prompts = &prompts;
        context.strings = &strings;
        context.pictures = &pictures;
        context.printerName = kPrinter;
        SetTraceTarget(&files, &clock, {u"marker", u"out"});
        files.Put(u"marker", {});
    }
    void TearDown() override { SetTraceTarget(nullptr, nullptr); }

    logos::StoreTarget Target() { return {strings, p, pictures, kPrinter, kId}; }

    // The job data the spooler received, in order.
    std::vector<std::u16string> JobNames() const {
        std::vector<std::u16string> names;
        for (const MemoryJob& job : spooler.jobs) names.push_back(job.docName);
        return names;
    }
    // Erase commands the printer received, by area.
    std::vector<int> Erases() const {
        std::vector<int> areas;
        for (const auto& call : monitor.calls)
            if (call.command.size() == 2 && call.command[0] == 0x15)
                areas.push_back(call.command[1]);
        return areas;
    }
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

    sim::SimulatedPrinter printer{kPort};
    ScriptedPrompts prompts;
    BuiltinStrings strings;
    NativePictures pictures;
    PageContext context;
};

}  // namespace kx20
