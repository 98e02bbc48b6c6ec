// kx20 firmware check FILE --model N [--level L]
// kx20 firmware payload FILE -o JOB.bin
//
// `check` reads the file's three header lines and says whether the driver would load the file
// into a printer of that model code; with the printer's current level it also shows the
// question the maintenance page would ask. `payload` writes the raw job of the update.
#include <cstdio>
#include <string>
#include <vector>

#include "command_group.h"
#include "firmware/firmware_file.h"
#include "platform/resources.h"
#include "platform/text.h"
#include "tool_args.h"

namespace kx20tool {

namespace {

using namespace kx20;
using namespace kx20::firmware;

constexpr char kUsage[] =
    "  kx20 firmware check FILE --model N [--level L]\n"
    "  kx20 firmware payload FILE -o JOB.bin\n";

int UsageError(const std::string& why) {
    std::fprintf(stderr, "kx20 firmware: %s\nusage:\n%s", why.c_str(), kUsage);
    return kExitUsage;
}

std::optional<Bytes> ReadFirmware(const ParsedArgs& a, int& rc) {
    rc = kExitOk;
    if (!a.error.empty()) {
        rc = UsageError(a.error);
        return std::nullopt;
    }
    if (a.positional.size() != 1) {
        rc = UsageError("one firmware file expected");
        return std::nullopt;
    }
    std::string error;
    auto data = ReadInput(a.positional[0], kMaxFirmwareFileBytes, error);
    if (!data) {
        std::fprintf(stderr, "kx20 firmware: %s\n", error.c_str());
        rc = kExitUsage;
    }
    return data;
}

void PrintReasons(const std::string& path, const TraceNotes& notes) {
    std::fprintf(stderr, "kx20 firmware: the driver would not load %s:\n", path.c_str());
    for (const auto& n : notes) std::fprintf(stderr, "  %s\n", NoteText(n).c_str());
}

int Check(const std::vector<std::string>& args) {
    const ParsedArgs a = ParseArgs(args, {"--model", "--level"});
    int rc = kExitOk;
    auto data = ReadFirmware(a, rc);
    if (!data)
        return rc;
    if (!a.Has("--model"))
        return UsageError("--model N is needed");
    auto model = ParseNumber(a.values.at("--model"), 255);
    if (!model)
        return UsageError("--model takes a model code 0..255");
    std::optional<std::uint32_t> level;
    if (a.Has("--level") && !(level = ParseNumber(a.values.at("--level"), 255)))
        return UsageError("--level takes the printer's firmware level 0..255 (0x.. for hex)");

    FirmwareHeader header;
    TraceNotes notes;
    std::uint32_t ecLevel = 0;
    const bool headerOk = ReadFirmwareHeader(*data, header, &ecLevel, &notes);
    const bool valid = headerOk && FirmwareFitsModel(header, *model, &notes);
    std::printf("file: %s\n", a.positional[0].c_str());
    std::printf("EcLevel %X, BootLevel %X, DevType %X\n", ecLevel, header.bootLevel,
                header.devType);
    std::printf("model code: %u\nvalid: %s\n", *model, valid ? "yes" : "no");
    if (level) {
        BuiltinStrings strings;
        std::printf("%s\n", Utf16ToUtf8(FirmwareLevelQuestion(strings, *level, ecLevel)).c_str());
    }
    if (!valid)
        PrintReasons(a.positional[0], notes);
    return valid ? kExitOk : kExitInvalid;
}

int Payload(const std::vector<std::string>& args) {
    const ParsedArgs a = ParseArgs(args, {"-o"});
    int rc = kExitOk;
    auto data = ReadFirmware(a, rc);
    if (!data)
        return rc;
    if (!a.Has("-o"))
        return UsageError("-o JOB.bin is needed");
    FirmwareHeader header;
    TraceNotes notes;
    if (!ReadFirmwareHeader(*data, header, nullptr, &notes)) {
        PrintReasons(a.positional[0], notes);
        return kExitInvalid;
    }
    const Bytes block = BuildFirmwareBlock(*data);
    std::string error;
    if (!WriteOutput(a.values.at("-o"), block, error)) {
        std::fprintf(stderr, "kx20 firmware: %s\n", error.c_str());
        return kExitUsage;
    }
    std::printf("%s: %zu bytes\n", a.values.at("-o").c_str(), block.size());
    return kExitOk;
}

int FirmwareMain(const std::vector<std::string>& args) {
    if (args.empty())
        return UsageError("a command is needed");
    const std::vector<std::string> rest(args.begin() + 1, args.end());
    if (args[0] == "check")
        return Check(rest);
    if (args[0] == "payload")
        return Payload(rest);
    return UsageError("unknown command '" + args[0] + "'");
}

const CommandGroup kFirmwareGroup("firmware", kUsage, FirmwareMain);

}  // namespace

}  // namespace kx20tool
