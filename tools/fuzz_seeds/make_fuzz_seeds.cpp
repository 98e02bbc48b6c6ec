// Writes the committed seed corpus of the fuzz targets (tests/fuzz/seeds/<target>/) from the
// project's own generators: valid pictures of every format, font files, firmware files, device
// modes, registry records, raw jobs and simulator state files. The same bytes on every run.
// Usage: kx20_fuzz_seeds FOLDER
#include <cstdio>
#include <filesystem>
#include <string>

#include "devmode/devmode.h"
#include "firmware/firmware_file.h"
#include "fonts/fon_file.h"
#include "fonts/font_blocks.h"
#include "logos/logo_payloads.h"
#include "platform/memory/native_pictures.h"
#include "platform/memory/registry_file.h"
#include "sim/sim_persist.h"
#include "sim/sim_printer.h"
#include "store/catalogue.h"
#include "store/registry_layout.h"
#include "unit/font_file_generators.h"
#include "unit/test_pictures.h"

namespace {

using namespace kx20;
namespace fs = std::filesystem;

fs::path root;
int written = 0;

void Seed(const char* target, const std::string& name, const Bytes& prefix, const Bytes& body) {
    const fs::path folder = root / target;
    fs::create_directories(folder);
    std::FILE* f = std::fopen((folder / name).c_str(), "wb");
    if (!f || std::fwrite(prefix.data(), 1, prefix.size(), f) != prefix.size() ||
        std::fwrite(body.data(), 1, body.size(), f) != body.size() || std::fclose(f) != 0) {
        std::fprintf(stderr, "cannot write %s/%s\n", target, name.c_str());
        std::exit(2);
    }
    ++written;
}

void PictureSeeds() {
    const RgbCanvas photo = testpics::PhotoLike(23, 11, 1);
    std::vector<std::uint8_t> alpha(photo.pixels.size());
    for (std::size_t i = 0; i < alpha.size(); ++i) alpha[i] = static_cast<std::uint8_t>(i * 29);
    std::vector<std::uint8_t> indices(photo.pixels.size());
    for (std::size_t i = 0; i < indices.size(); ++i) indices[i] = static_cast<std::uint8_t>(i % 5);
    const char* t = "fuzz_picture_file";
    // The first byte picks the form (bit 0 narrow) and scaling (bit 1 off).
    Seed(t, "bmp24", {0}, testpics::Bmp24(photo));
    Seed(t, "bmp32", {1}, testpics::Bmp32(photo, alpha));
    Seed(t, "png-rgb", {2}, EncodePng(photo));
    Seed(t, "png-rgba", {3}, EncodePng(photo, &alpha));
    Seed(t, "png-stored", {0}, testpics::StoredPng(photo, &alpha));
    Seed(t, "jpeg", {1}, EncodeJpeg(testpics::PhotoLike(40, 24, 2), 80));
    Seed(t, "gif", {2}, testpics::Gif(23, 11, {0, 0xFFFFFF, 0xFF0000, 0x00FF00, 0x0000FF}, indices, 4));

    // The dither target: canvas width, height, grid width and height, four spare bytes, pixels.
    Bytes dither = {37, 21, 5, 33, 0, 0, 0, 0};
    for (std::uint32_t p : testpics::PhotoLike(38, 22, 3).pixels)
        AppendBytes(dither, Bytes{RedOf(p), GreenOf(p), BlueOf(p)});
    Seed("fuzz_logo_dither", "photo", {}, dither);
    Seed("fuzz_logo_dither", "grey-larger-grid", {3, 2, 11, 59, 0, 0, 0, 0}, Bytes(18, 0x80));
}

void Fonts() {
    using testfiles::FonFile;
    using testfiles::FntFile;
    const Bytes fon = testfiles::LargeFonFile(3, 4).Build();
    Seed("fuzz_fon_file", "dbcs-and-sbcs", {}, fon);
    Seed("fuzz_fon_file", "thermal-only", {}, FonFile{}.Dbcs(0x81, 0x40, true, false).Sbcs(0x41, true, false).Build());
    // First byte: bit 0 thermal, bit 1 a path with the region mark, bit 2 serial port.
    Seed("fuzz_fnt_file", "thermal", {3}, FntFile{}.Build(4));
    FntFile impact;
    impact.width = 16;
    impact.height = 16;
    Seed("fuzz_fnt_file", "impact", {6}, impact.Build(4));
    Seed("fuzz_firmware_header", "family-3", {}, testfiles::FirmwareFile(0x41, 1, 3, 64));
    Seed("fuzz_firmware_header", "family-1", {}, testfiles::FirmwareFile(0x50, 2, 1, 8));
}

void Records() {
    const DevModeImage& dm = gsDevMode();
    const Bytes devmode(dm.begin(), dm.end());
    // Mode, then the output size as a multiple of 97 modulo 6200.
    Seed("fuzz_devmode_fill", "defaults", {2, 0}, devmode);
    Seed("fuzz_devmode_fill", "short", {10, 50}, Bytes(devmode.begin(), devmode.begin() + 220));
    Bytes two = devmode;
    AppendBytes(two, devmode);
    Seed("fuzz_entry_records", "two-defaults", {128, 2}, two);
    Seed("fuzz_registry_records", "logo", {},
         store::BuildLogoRecord(3, 1, 0, testpics::Bmp24(testpics::Filled(8, 8, 0)), u"KX20SIM1"));
    Seed("fuzz_registry_records", "message", {}, store::BuildMessageRecord(5, u"Thank you", u"KX20SIM1"));
    Seed("fuzz_registry_records", "status", {},
         store::BuildConnectionStatus({u"KX20SIM1", 9, true, 0x40}));
}

void Jobs() {
    const Bytes raster(16 * 3, 0x5A);
    const Bytes logo = logos::BuildLogoPayload(7, 128, 24, raster);
    Seed("fuzz_sim_job", "logo", {}, logo);
    Seed("fuzz_sim_job", "message", {}, logos::BuildMessagePayload(2, u"Welcome"));
    fonts::FONMetaData meta;
    fonts::FONCharacters chars;
    const Bytes fon = testfiles::LargeFonFile(3, 4).Build();
    if (fonts::ReadFONMetaData(fon, meta) && fonts::ReadFONCharacters(fon, chars))
        if (auto block = fonts::BuildFONDownloadBlock(meta, chars, false))
            Seed("fuzz_sim_job", "font", {}, *block);
    Seed("fuzz_sim_job", "firmware", {},
         firmware::BuildFirmwareBlock(testfiles::FirmwareFile(0x41, 1, 3, 64)));
    sim::SimulatedPrinter printer;
    Seed("fuzz_sim_state", "fresh", {}, sim::SerializeState(printer.state()));
    printer.ReceiveJob(logo);
    printer.ReceiveJob(logos::BuildMessagePayload(2, u"Welcome"));
    Seed("fuzz_sim_state", "logo-and-message", {}, sim::SerializeState(printer.state()));

    // A till's catalogue: the port key's branch with what the printer above now holds.
    MemoryRegistry registry;
    printer.AttachRegistry(&registry);
    const std::u16string port = store::PortKeyPath(u"KX20_USB1");
    registry.CreateKey(Hive::LocalMachine, port + u"\\Messages")
        ->SetValue(u"2_KX20SIM1", kRegBinary, store::BuildMessageRecord(2, u"Welcome", u"KX20SIM1"));
    // The target frames its input itself: the seed is the payload.
    const Bytes branch = SerializeBranch(registry, Hive::LocalMachine, port);
    Seed("fuzz_registry_branch", "port", {}, Bytes(branch.begin() + 20, branch.end()));
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: kx20_fuzz_seeds FOLDER\n");
        return 2;
    }
    root = argv[1];
    PictureSeeds();
    Fonts();
    Records();
    Jobs();
    std::printf("%d seed files in %s\n", written, argv[1]);
    return 0;
}
