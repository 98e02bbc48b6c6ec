// kx20 font inspect FILE [--model N]
// kx20 font payload FILE --station thermal|impact -o JOB.bin [--model N] [--serial]
//
// A tagged font file (model code 9) or a headered one (any other model code; without --model
// the file's own magic decides). `inspect` shows what the driver reads from the file and
// whether it would load it, with the reasons; `payload` writes the raw job the driver would
// send to load it.
#include <algorithm>
#include <array>
#include <cstdio>
#include <string>
#include <vector>

#include "command_group.h"
#include "fonts/fnt_file.h"
#include "fonts/fon_file.h"
#include "fonts/font_blocks.h"
#include "platform/text.h"
#include "tool_args.h"

namespace kx20tool {

namespace {

using namespace kx20;
using namespace kx20::fonts;

constexpr char kUsage[] =
    "  kx20 font inspect FILE [--model N]\n"
    "  kx20 font payload FILE --station thermal|impact -o JOB.bin [--model N] [--serial]\n";

int UsageError(const std::string& why) {
    std::fprintf(stderr, "kx20 font: %s\nusage:\n%s", why.c_str(), kUsage);
    return kExitUsage;
}

// The file, the layout the driver would read it as, and the options common to both commands.
struct Input {
    std::string path;
    Bytes data;
    bool tagged = false;
};

int ReadFontInput(const ParsedArgs& a, Input& in) {
    if (!a.error.empty())
        return UsageError(a.error);
    if (a.positional.size() != 1)
        return UsageError("one font file expected");
    in.path = a.positional[0];
    std::string error;
    auto data = ReadInput(in.path, kMaxFontFileBytes, error);
    if (!data) {
        std::fprintf(stderr, "kx20 font: %s\n", error.c_str());
        return kExitUsage;
    }
    in.data = std::move(*data);
    if (a.Has("--model")) {
        auto model = ParseNumber(a.values.at("--model"), 255);
        if (!model)
            return UsageError("--model takes a model code 0..255");
        in.tagged = *model == 9;
    } else {
        in.tagged = !(in.data.size() >= kFntMagic.size() &&
                      std::equal(kFntMagic.begin(), kFntMagic.end(), in.data.begin()));
    }
    return kExitOk;
}

void PrintReasons(const TraceNotes& notes, std::u16string_view onlyStartingWith = u"") {
    for (const auto& n : notes) {
        if (n.rfind(onlyStartingWith, 0) == 0)
            std::fprintf(stderr, "  %s\n", NoteText(n).c_str());
    }
}

bool IsProblem(const std::u16string& note) {
    for (std::u16string_view word : {u"Invalid", u"Fail", u"fail", u"over", u"more than"}) {
        if (note.find(word) != std::u16string::npos)
            return true;
    }
    return false;
}

int InspectTagged(const Input& in) {
    FONMetaData meta;
    TraceNotes notes;
    const bool metaOk = ReadFONMetaData(in.data, meta, &notes);
    FONCharacters chars;
    const bool charsOk = ReadFONCharacters(in.data, chars, &notes);
    std::printf("file: %s\nlayout: tagged (model code 9)\n", in.path.c_str());
    std::printf("code page: %u\n", meta.codePage);
    std::printf("thermal size: %u x %u, impact size: %u x %u (0: the printer's default)\n",
                meta.thermalWidth, meta.thermalHeight, meta.impactWidth, meta.impactHeight);
    std::printf("spacing: double-byte %u, single-byte %u; matrix %u\n", meta.dbcsSpacing,
                meta.sbcsSpacing, meta.dbcsMatrix);
    std::printf("lead-byte ranges: %02X-%02X %02X-%02X %02X-%02X\n", meta.vectors[0].first,
                meta.vectors[0].last, meta.vectors[1].first, meta.vectors[1].last,
                meta.vectors[2].first, meta.vectors[2].last);
    if (charsOk) {
        std::printf("double-byte characters: %zu (thermal %u, impact %u)\n", chars.dbcs.size(),
                    chars.dbcsThermalCount, chars.dbcsImpactCount);
        std::printf("single-byte characters: %zu (thermal %u, impact %u)\n", chars.sbcs.size(),
                    chars.sbcsThermalCount, chars.sbcsImpactCount);
    }
    const bool valid = metaOk && charsOk;
    std::printf("valid: %s\n", valid ? "yes" : "no");
    if (!valid) {
        std::fprintf(stderr, "kx20 font: the driver would not load %s:\n", in.path.c_str());
        TraceNotes problems;
        for (const auto& n : notes)
            if (IsProblem(n))
                problems.push_back(n);
        // The metadata check refuses a foreign record among the first 13 without a trace line.
        if (!metaOk && std::none_of(problems.begin(), problems.end(), [](const auto& n) {
                return n.rfind(u"GetFONFileMetaData", 0) == 0;
            })) {
            problems.push_back(u"a record among the first 13 is not a metadata record\n");
        }
        PrintReasons(problems);
    }
    return valid ? kExitOk : kExitInvalid;
}

int InspectHeadered(const Input& in) {
    std::array<std::uint8_t, kFntHeaderSize> h{};
    std::copy_n(in.data.begin(), std::min(in.data.size(), kFntHeaderSize), h.begin());
    const std::uint32_t width = ReadU32(h, kFntWidth);
    const bool thermal = width == kThermalDots;
    std::printf("file: %s\nlayout: headered (model codes other than 9)\n", in.path.c_str());
    const RegionMark* mark = FindRegionMark(Utf8ToUtf16(in.path));
    if (mark)
        std::printf("region mark: %s, code page %u\n", Utf16ToUtf8(mark->mark).c_str(),
                    mark->codePage);
    std::printf("dot matrix: %u wide, %u high; highest code %04X\n", width, ReadU32(h, kFntHeight),
                ReadU16(h, kFntHighestCode));
    std::printf("lead-byte ranges:");
    for (std::size_t i = 0; i < 4 && h[kFntLeadRanges + 2 * i]; ++i)
        std::printf(" %02X-%02X", h[kFntLeadRanges + 2 * i], h[kFntLeadRanges + 2 * i + 1]);
    std::printf("\nsecond-byte ranges:");
    for (std::size_t i = 0; i < 4; ++i)
        if (h[kFntSecondRanges + 2 * i])
            std::printf(" %02X-%02X", h[kFntSecondRanges + 2 * i], h[kFntSecondRanges + 2 * i + 1]);
    std::printf("\n");

    TraceNotes notes;
    bool valid = CheckFntFile(in.data, Utf8ToUtf16(in.path), thermal, &notes);
    if (valid) {
        std::uint32_t codePage = 0;
        std::vector<FntRecord> records;
        valid = ReadFntRecords(in.data, Utf8ToUtf16(in.path), thermal, codePage, records, &notes);
        if (valid)
            std::printf("station: %s, characters: %zu\n", thermal ? "thermal" : "impact",
                        records.size());
    }
    std::printf("valid: %s\n", valid ? "yes" : "no");
    if (!valid) {
        std::fprintf(stderr, "kx20 font: the driver would not load %s:\n", in.path.c_str());
        PrintReasons(notes);
    }
    return valid ? kExitOk : kExitInvalid;
}

int Inspect(const std::vector<std::string>& args) {
    Input in;
    if (int rc = ReadFontInput(ParseArgs(args, {"--model"}), in); rc != kExitOk)
        return rc;
    return in.tagged ? InspectTagged(in) : InspectHeadered(in);
}

int Payload(const std::vector<std::string>& args) {
    const ParsedArgs a = ParseArgs(args, {"--model", "--station", "-o"}, {"--serial"});
    Input in;
    if (int rc = ReadFontInput(a, in); rc != kExitOk)
        return rc;
    if (!a.Has("-o"))
        return UsageError("-o JOB.bin is needed");
    if (!a.Has("--station"))
        return UsageError("--station thermal|impact is needed");
    const std::string station = a.values.at("--station");
    if (station != "thermal" && station != "impact")
        return UsageError("--station takes thermal or impact");
    const bool thermal = station == "thermal";
    const bool serial = a.flags.count("--serial") != 0;

    TraceNotes notes;
    std::optional<Bytes> block;
    if (in.tagged) {
        // A tagged file loads both stations at once.
        FONMetaData meta;
        FONCharacters chars;
        const bool metaOk = ReadFONMetaData(in.data, meta, &notes);
        if (ReadFONCharacters(in.data, chars, &notes) && metaOk)
            block = BuildFONDownloadBlock(meta, chars, serial);
    } else {
        std::uint32_t codePage = 0;
        std::vector<FntRecord> records;
        const std::u16string path = Utf8ToUtf16(in.path);
        if (CheckFntFile(in.data, path, thermal, &notes) &&
            ReadFntRecords(in.data, path, thermal, codePage, records, &notes)) {
            block = BuildFNTDownloadBlock(records, thermal, serial);
        }
    }
    if (!block) {
        std::fprintf(stderr, "kx20 font: the driver would not load %s:\n", in.path.c_str());
        TraceNotes problems;
        for (const auto& n : notes)
            if (IsProblem(n) || n.find(u"ValidateDBCSFontFile") == 0)
                problems.push_back(n);
        PrintReasons(problems.empty() ? notes : problems);
        return kExitInvalid;
    }
    std::string error;
    if (!WriteOutput(a.values.at("-o"), *block, error)) {
        std::fprintf(stderr, "kx20 font: %s\n", error.c_str());
        return kExitUsage;
    }
    std::printf("%s: %zu bytes\n", a.values.at("-o").c_str(), block->size());
    return kExitOk;
}

int FontMain(const std::vector<std::string>& args) {
    if (args.empty())
        return UsageError("a command is needed");
    const std::vector<std::string> rest(args.begin() + 1, args.end());
    if (args[0] == "inspect")
        return Inspect(rest);
    if (args[0] == "payload")
        return Payload(rest);
    return UsageError("unknown command '" + args[0] + "'");
}

const CommandGroup kFontGroup("font", kUsage, FontMain);

}  // namespace

}  // namespace kx20tool
