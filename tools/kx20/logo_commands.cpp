// kx20 logo ... and kx20 message ...: the driver's logo conversion and the exact job bytes of
// logo and message downloads, for a person who wants to see what the printer will print and
// for a Linux till that sends the jobs through a raw print queue.
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "command_group.h"
#include "logos/logo_payloads.h"
#include "logos/logos_page.h"
#include "logos/messages_page.h"
#include "logos/raster_conversion.h"
#include "platform/memory/native_pictures.h"
#include "platform/posix/posix_files.h"
#include "platform/text.h"

namespace kx20tool {

namespace {

using namespace kx20;

constexpr char kLogoUsage[] =
    "  kx20 logo convert PICTURE --form full|narrow [--no-scale] -o OUT.png\n"
    "      the printer's raster of the picture as a black-and-white image\n"
    "  kx20 logo payload PICTURE --number N --form full|narrow [--no-scale] -o JOB.bin\n"
    "      the raw job that stores the picture as logo N (1-40)\n";
constexpr char kMessageUsage[] =
    "  kx20 message payload NUMBER TEXT -o JOB.bin\n"
    "      the raw job that stores TEXT as message NUMBER (1-25)\n";

int Fail(int status, const char* what, const std::string& detail = {}) {
    std::fprintf(stderr, "kx20: %s%s%s\n", what, detail.empty() ? "" : ": ", detail.c_str());
    return status;
}

std::optional<int> Number(const std::string& text, int least, int most) {
    if (text.empty() || text.size() > 9 ||
        text.find_first_not_of("0123456789") != std::string::npos)
        return std::nullopt;
    const int n = std::atoi(text.c_str());
    if (n < least || n > most)
        return std::nullopt;
    return n;
}

struct Options {
    std::vector<std::string> positional;
    std::optional<std::string> form;
    std::optional<std::string> number;
    std::optional<std::string> output;
    bool noScale = false;
    std::string error;
};

Options Parse(const std::vector<std::string>& args) {
    Options o;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        auto value = [&](std::optional<std::string>& into) {
            if (i + 1 >= args.size())
                o.error = "missing value after " + a;
            else
                into = args[++i];
        };
        if (a == "--form")
            value(o.form);
        else if (a == "--number")
            value(o.number);
        else if (a == "-o")
            value(o.output);
        else if (a == "--no-scale")
            o.noScale = true;
        else if (a.size() > 1 && a[0] == '-' && a != "-")
            o.error = "unknown option " + a;
        else
            o.positional.push_back(a);
    }
    return o;
}

bool WriteFile(const std::string& path, ByteSpan data) {
    PosixFileSystem files;
    auto file = files.Open(Utf8ToUtf16(path), OpenMode::CreateAlways, ShareMode::None);
    return file && file->Write(data) && file->Flush();
}

// The picture converted for the form, as the printer receives it (column bands for the narrow
// form) and as rows. The status is set when it cannot be had.
struct Converted {
    logos::Raster rows;
    Bytes printed;
};

std::optional<Converted> ConvertFile(const std::string& path, bool fullWidth, bool scale,
                                     int& status) {
    PosixFileSystem files;
    const auto bytes = ReadWholeFile(files, Utf8ToUtf16(path));
    if (!bytes) {
        status = Fail(kExitUsage, "cannot read the picture", path);
        return std::nullopt;
    }
    if (bytes->empty() || bytes->size() > kMaxPictureFileBytes) {
        status =
            Fail(kExitInvalid, "not a picture the driver can convert (empty or too large)", path);
        return std::nullopt;
    }
    NativePictures pictures;
    auto opened = OpenPictureBytes(pictures, *bytes);
    if (!opened) {
        const std::u16string& why = pictures.LastRefusal();
        status = Fail(kExitInvalid, "not a picture the driver can convert (BMP, PNG, JPEG, GIF)",
                      path + ": " + Utf16ToUtf8(why.empty() ? u"damaged" : why));
        return std::nullopt;
    }
    auto raster = logos::ConvertOpenedPicture(*opened, logos::LimitsFor(fullWidth), scale);
    if (!raster) {
        status = Fail(kExitInvalid, "the picture cannot be drawn at the logo's size", path);
        return std::nullopt;
    }
    Converted c;
    if (fullWidth) {
        c.printed = raster->bits;
        c.rows = std::move(*raster);
        return c;
    }
    c.printed = logos::RegroupToColumnBands(*raster);
    // What the printer will print, read back from the bands it receives.
    auto rows = logos::ColumnBandsToRows(c.printed, raster->width, raster->height);
    if (!rows) {
        status = Fail(kExitInvalid, "the narrow form cannot be regrouped", path);
        return std::nullopt;
    }
    c.rows = std::move(*rows);
    return c;
}

int LogoCommand(const std::string& command, const Options& o) {
    if (o.positional.size() != 1 || !o.form || !o.output)
        return Fail(kExitUsage, "usage", std::string("\n") + kLogoUsage);
    if (*o.form != "full" && *o.form != "narrow")
        return Fail(kExitUsage, "--form must be full or narrow", *o.form);
    std::optional<int> number;
    if (command == "payload") {
        number = o.number ? Number(*o.number, 1, logos::kLogoSlots) : std::nullopt;
        if (!number)
            return Fail(kExitUsage, "--number must be a logo number from 1 to 40",
                        o.number.value_or(""));
    } else if (o.number) {
        return Fail(kExitUsage, "--number belongs to logo payload");
    }
    int status = kExitOk;
    auto converted = ConvertFile(o.positional[0], *o.form == "full", !o.noScale, status);
    if (!converted)
        return status;
    Bytes out;
    if (command == "convert") {
        RgbCanvas image(converted->rows.width, converted->rows.height);
        for (int y = 0; y < image.height; ++y)
            for (int x = 0; x < image.width; ++x) {
                const std::uint8_t byte =
                    converted->rows.bits[static_cast<std::size_t>(y) * (image.width / 8) + x / 8];
                image.At(x, y) = (byte >> (7 - x % 8)) & 1 ? 0x000000u : 0xFFFFFFu;
            }
        out = EncodePng(image);
    } else {
        out = logos::BuildLogoPayload(static_cast<std::uint8_t>(*number), converted->rows.width,
                                      converted->rows.height, converted->printed);
    }
    if (out.empty() || !WriteFile(*o.output, out))
        return Fail(kExitUsage, "cannot write", *o.output);
    return kExitOk;
}

int LogoMain(const std::vector<std::string>& args) {
    if (args.empty() || (args[0] != "convert" && args[0] != "payload"))
        return Fail(kExitUsage, "usage", std::string("\n") + kLogoUsage);
    const Options o = Parse(std::vector<std::string>(args.begin() + 1, args.end()));
    if (!o.error.empty())
        return Fail(kExitUsage, o.error.c_str());
    return LogoCommand(args[0], o);
}

int MessageMain(const std::vector<std::string>& args) {
    if (args.empty() || args[0] != "payload")
        return Fail(kExitUsage, "usage", std::string("\n") + kMessageUsage);
    const Options o = Parse(std::vector<std::string>(args.begin() + 1, args.end()));
    if (!o.error.empty())
        return Fail(kExitUsage, o.error.c_str());
    if (o.positional.size() != 2 || !o.output || o.form || o.number || o.noScale)
        return Fail(kExitUsage, "usage", std::string("\n") + kMessageUsage);
    const auto number = Number(o.positional[0], 1, logos::kMessageSlots);
    if (!number)
        return Fail(kExitUsage, "the message number must be from 1 to 25", o.positional[0]);
    const std::u16string text = Utf8ToUtf16(o.positional[1]);
    if (text.empty() || text.size() > logos::kMessageEditChars)
        return Fail(kExitUsage, "the text must have 1 to 255 characters");
    const Bytes out = logos::BuildMessagePayload(static_cast<std::uint8_t>(*number), text);
    if (!WriteFile(*o.output, out))
        return Fail(kExitUsage, "cannot write", *o.output);
    return kExitOk;
}

const CommandGroup kLogoGroup("logo", kLogoUsage, LogoMain);
const CommandGroup kMessageGroup("message", kMessageUsage, MessageMain);

}  // namespace

}  // namespace kx20tool
