// The driver in a Wine spooler: installs the built driver and a KX20 printer, then shows what
// an application sees through the spooler's own calls (capabilities, device mode), what the
// driver learns of the simulated printer, and the printer's property sheet in a window. Under
// a virtual display (no display of the user's) each page of the sheet is saved as a screenshot
// and the sheet closes by itself.
#include "platform/win32/windows_clean.h"

#include <compstui.h>

#include <cstdio>
#include <string>
#include <vector>

#include "channel/printer_queries.h"
#include "devmode/devmode.h"
#include "platform/bytes.h"
#include "platform/text.h"
#include "platform/win32/win32_platform.h"
#include "store/registry_layout.h"
#include "tests/unit/font_file_generators.h"
#include "tests/unit/test_pictures.h"
#include "tools/winhost/driver_install.h"
#include "tools/winhost/sim_control.h"
#include "tools/winhost/window_script.h"

namespace {

constexpr wchar_t kPrinter[] = L"KX20";

void Section(const char* title) {
    std::printf("\n== %s\n", title);
}

std::string Narrow(std::u16string_view s) {
    return kx20::Utf16ToUtf8(s);
}

void DumpRecord(const std::vector<std::uint8_t>& record) {
    using namespace kx20;
    ByteSpan r(record);
    std::printf("  dmDeviceName     %s\n", Narrow(ReadUtf16Field(r, kOffDmDeviceName, 32)).c_str());
    std::printf("  dmSpecVersion    0x%04x   dmDriverVersion 0x%04x\n",
                ReadU16(r, kOffDmSpecVersion), ReadU16(r, kOffDmDriverVersion));
    std::printf("  dmSize           %u      dmDriverExtra   %u\n", ReadU16(r, kOffDmSize),
                ReadU16(r, kOffDmDriverExtra));
    std::printf("  dmFields         0x%08x\n", ReadU32(r, kOffDmFields));
    std::printf("  dmOrientation    %d       dmPaperSize     %d\n",
                ReadDmShort(r, kOffDmOrientation), ReadDmShort(r, kOffDmPaperSize));
    std::printf("  dmCopies         %d       dmPrintQuality  %d  dmYResolution %d\n",
                ReadDmShort(r, kOffDmCopies), ReadDmShort(r, kOffDmPrintQuality),
                ReadDmShort(r, kOffDmYResolution));
    std::printf("  dmColor          %d       dmDuplex        %d  dmTTOption %d  dmCollate %d\n",
                ReadDmShort(r, kOffDmColor), ReadDmShort(r, kOffDmDuplex),
                ReadDmShort(r, kOffDmTTOption), ReadDmShort(r, kOffDmCollate));
    std::printf("  dmFormName       %s\n", Narrow(ReadUtf16Field(r, kOffDmFormName, 32)).c_str());
    std::size_t priv = ReadU16(r, kOffDmSize);
    std::printf("  private part at  %zu: ulVersion 0x%08X, bReceiptStation %u, bCutPaper %u\n",
                priv, ReadU32(r, priv), ReadU32(r, priv + 12), ReadU32(r, priv + 52));
    std::printf("  font override    \"%s\"\n", Narrow(ReadUtf16Field(r, priv + 80, 256)).c_str());
    std::printf("  station fonts    \"%s\", \"%s\"\n",
                Narrow(ReadUtf16Field(r, priv + 592 + 2072, 256)).c_str(),
                Narrow(ReadUtf16Field(r, priv + 3188 + 2072, 256)).c_str());
}

std::string Hex(const std::uint8_t* b, std::size_t n) {
    std::string s;
    char part[4];
    for (std::size_t i = 0; i < n; ++i) {
        std::snprintf(part, sizeof part, "%02X", b[i]);
        s += part;
    }
    return s;
}

// What the driver learns of the printer through the port monitor's command entry and the
// port's registry values.
void ShowPrinter(const std::wstring& port) {
    using namespace kx20;
    Win32Platform platform;
    const std::u16string printer = u"KX20";
    store::ConnectionStatus status;
    std::u16string portName = store::PrinterPortName(platform.ports, printer);
    if (!store::GetConnectionStatus(platform.ports, portName, status)) {
        std::printf("  no connection status for port %s\n", Narrow(portName).c_str());
        return;
    }
    std::printf("  connection status: %s, model %u, firmware level 0x%02X, identity \"%s\"\n",
                status.connected ? "connected" : "not connected", status.modelCode,
                status.firmwareLevel, Narrow(status.identity).c_str());
    std::printf("  port type: %s\n",
                store::IsSerialConnection(platform.ports, portName) ? "serial" : "USB");
    std::uint8_t setup[2] = {};
    if (channel::OutGetPrinterSetup(platform.ports, printer, setup))
        std::printf(
            "  printer setup %s, flash %s\n", Hex(setup, 2).c_str(),
            channel::IsFlashWritable(platform.ports, printer) ? "writable" : "write-protected");
    struct Area {
        const char* name;
        bool (*query)(Platform&, bool, std::u16string_view, std::uint8_t*);
    };
    const Area areas[] = {{"logos", channel::GetLogosCRC},
                          {"messages", channel::GetMessagesCRC},
                          {"single-byte thermal fonts", channel::GetSBCSThermalCRC}};
    for (const Area& a : areas) {
        std::uint8_t crc[4] = {};
        bool ok = a.query(platform.ports, status.connected, printer, crc);
        std::printf("  checksum of %-26s %s\n", a.name,
                    ok ? Hex(crc, 4).c_str() : "(not available)");
    }
    std::printf("  ready for double-byte fonts: %s\n",
                channel::IsHaldenPrinterDBCSReady(platform.ports, printer) ? "yes" : "no");
    (void)port;
}

// What a print dialog asks of the printer.
void ShowCapabilities() {
    auto ask = [](WORD capability, void* out = nullptr) {
        return static_cast<long>(
            DeviceCapabilitiesW(kPrinter, nullptr, capability, static_cast<LPWSTR>(out), nullptr));
    };
    const long count = ask(DC_PAPERS);
    std::vector<WORD> ids(count > 0 ? static_cast<std::size_t>(count) : 0);
    std::vector<POINT> sizes(ids.size());
    std::vector<wchar_t> names(ids.size() * 64);
    ask(DC_PAPERS, ids.data());
    ask(DC_PAPERSIZE, sizes.data());
    ask(DC_PAPERNAMES, names.data());
    std::printf("  %ld papers:\n", count);
    for (std::size_t i = 0; i < ids.size(); ++i)
        std::printf("    %u  %-28ls %5.1f x %6.1f mm\n", ids[i], &names[i * 64], sizes[i].x / 10.0,
                    sizes[i].y / 10.0);
    const long minExtent = ask(DC_MINEXTENT), maxExtent = ask(DC_MAXEXTENT);
    std::printf("  extents          %ld x %ld mm to %ld x %ld mm\n", minExtent & 0xFFFF,
                minExtent >> 16, maxExtent & 0xFFFF, maxExtent >> 16);
    LONG resolutions[4] = {};
    ask(DC_ENUMRESOLUTIONS, resolutions);
    std::printf("  resolutions      %ld x %ld, %ld x %ld dpi\n", resolutions[0], resolutions[1],
                resolutions[2], resolutions[3]);
    wchar_t personalities[2][32] = {};
    ask(DC_PERSONALITY, personalities);
    wchar_t ready[64] = {};
    ask(DC_MEDIAREADY, ready);
    std::printf("  paper loaded     %ls\n", ready);
    std::printf("  interfaces       %ls, %ls\n", personalities[0], personalities[1]);
    std::printf("  copies up to %ld, landscape turned %ld degrees, %ld lines a minute\n",
                ask(DC_COPIES), ask(DC_ORIENTATION), ask(DC_PRINTRATE));
    std::printf("  device mode      %ld + %ld bytes, version 0x%lx, driver 0x%lx, fields 0x%lx\n",
                ask(DC_SIZE), ask(DC_EXTRA), ask(DC_VERSION), ask(DC_DRIVER), ask(DC_FIELDS));
}

// The printer's property sheet as the printer-properties user interface opens it.
// A picture and a double-byte font file made by the project's own generators, written to
// samples\ beside the program; the sheet's file dialogs open there (the current directory).
void WriteSamples() {
    const std::wstring folder = kx20::winhost::ProgramFolder() + L"samples";
    CreateDirectoryW(folder.c_str(), nullptr);
    struct Sample {
        const wchar_t* name;
        kx20::Bytes content;
    };
    const Sample samples[] = {
        {L"kx20-logo.bmp", kx20::testpics::Bmp24(kx20::testpics::PhotoLike(240, 96, 7))},
        {L"kx20-dbcs.fon", kx20::testfiles::LargeFonFile(189, 32).Build()},
    };
    for (const Sample& sample : samples) {
        const std::wstring path = folder + L"\\" + sample.name;
        HANDLE h = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                               FILE_ATTRIBUTE_NORMAL, nullptr);
        DWORD written = 0;
        if (h != INVALID_HANDLE_VALUE) {
            WriteFile(h, sample.content.data(), static_cast<DWORD>(sample.content.size()), &written,
                      nullptr);
            CloseHandle(h);
        }
        std::printf("  sample %ls (%lu bytes)\n", sample.name, static_cast<unsigned long>(written));
    }
    SetCurrentDirectoryW(folder.c_str());
}

int ShowDeviceSheet() {
    wchar_t folder[MAX_PATH] = {};
    DWORD needed = 0;
    GetPrinterDriverDirectoryW(nullptr, const_cast<LPWSTR>(kx20::winhost::kEnvironment), 1,
                               reinterpret_cast<LPBYTE>(folder), sizeof folder, &needed);
    HMODULE driver = LoadLibraryW((std::wstring(folder) + L"\\3\\kvorsgui.dll").c_str());
    auto entry = driver ? reinterpret_cast<PFNPROPSHEETUI>(reinterpret_cast<void*>(
                              GetProcAddress(driver, "DrvDevicePropertySheets")))
                        : nullptr;
    if (!entry) {
        std::printf("  the driver's DrvDevicePropertySheets cannot be loaded\n");
        return 1;
    }
    struct {
        WORD cbSize, Flags;
        HANDLE printer;
        LPWSTR name;
    } header = {sizeof header, 0, nullptr, const_cast<LPWSTR>(kPrinter)};
    wchar_t virtualDisplay[8] = {};
    const bool unattended = GetEnvironmentVariableW(L"KX20_VIRTUAL_DISPLAY", virtualDisplay, 8) > 0;
    std::vector<kx20::winhost::ModalDriver::Step> steps;
    std::vector<std::wstring> titles, shots;
    if (unattended) {
        steps.push_back([&](HWND sheet) {
            titles = kx20::winhost::SheetTabTitles(sheet);
            return true;
        });
        for (int i = 0; i < 5; ++i) {
            steps.push_back([i](HWND sheet) {
                SendMessageW(sheet, PSM_SETCURSEL, i, 0);
                RedrawWindow(sheet, nullptr, nullptr,
                             RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
                return true;
            });
            steps.push_back([i, &shots](HWND) {
                const std::wstring name = L"demo-device-sheet-" + std::to_wstring(i + 1);
                if (kx20::winhost::SaveScreenshot(name))
                    shots.push_back(kx20::winhost::ScreenshotPath(name));
                return true;
            });
        }
        steps.push_back([](HWND sheet) {
            SendMessageW(sheet, PSM_PRESSBUTTON, PSBTN_CANCEL, 0);
            return true;
        });
    } else {
        std::printf("  the sheet is open in a window: close it to end the demo\n");
        steps.push_back([&](HWND sheet) {
            titles = kx20::winhost::SheetTabTitles(sheet);
            return true;
        });
    }
    kx20::winhost::ModalDriver script(kx20::winhost::FindThreadPropertySheet, steps);
    DWORD result = 0;
    CommonPropertySheetUIW(nullptr, entry, reinterpret_cast<LPARAM>(&header), &result);
    FreeLibrary(driver);
    std::printf("  pages:");
    for (const auto& t : titles) std::printf(" [%ls]", t.c_str());
    std::printf("\n");
    for (std::wstring shot : shots) {
        // Z: is the unix root in a Wine prefix: show the path as the shell sees it.
        if (shot.rfind(L"Z:", 0) == 0) {
            shot.erase(0, 2);
            for (auto& c : shot)
                if (c == L'\\')
                    c = L'/';
        }
        std::printf("  screenshot %ls\n", shot.c_str());
    }
    return titles.size() == 5 && (!unattended || shots.size() == 5) ? 0 : 1;
}

}  // namespace

int wmain() {
    std::wstring error;
    Section("Installing the driver");
    if (!kx20::winhost::InstallDriver(&error)) {
        std::fprintf(stderr, "%ls\n", error.c_str());
        return 1;
    }
    std::wstring port = kx20::winhost::DefaultPortPath();
    if (!kx20::winhost::AddKx20Printer(kPrinter, port, &error)) {
        std::fprintf(stderr, "%ls\n", error.c_str());
        return 1;
    }
    std::printf("  driver \"KVO KX20\" (kvorsgui.dll, KVORSENU.DLL), printer \"KX20\" on %ls\n",
                port.c_str());

    HANDLE printer = nullptr;
    if (!OpenPrinterW(const_cast<LPWSTR>(kPrinter), &printer, nullptr)) {
        std::fprintf(stderr, "OpenPrinterW failed: %lu\n", GetLastError());
        return 1;
    }

    Section("DocumentPropertiesW(mode 0): size of the driver's device mode");
    LONG size =
        DocumentPropertiesW(nullptr, printer, const_cast<LPWSTR>(kPrinter), nullptr, nullptr, 0);
    std::printf("  %ld bytes\n", size);

    Section("DocumentPropertiesW(DM_OUT_BUFFER): the default device mode");
    std::vector<std::uint8_t> record(size > 0 ? static_cast<std::size_t>(size) : 6004, 0);
    LONG rc =
        DocumentPropertiesW(nullptr, printer, const_cast<LPWSTR>(kPrinter),
                            reinterpret_cast<DEVMODEW*>(record.data()), nullptr, DM_OUT_BUFFER);
    std::printf("  result %ld\n", rc);
    DumpRecord(record);

    ClosePrinter(printer);

    Section("DeviceCapabilitiesW: what a print dialog asks of the printer");
    ShowCapabilities();

    Section("The printer, through kvorsmon.dll (the simulated KX20)");
    kx20::winhost::SimulatedPrinterControl sim(port);
    if (!sim.Loaded()) {
        std::printf("  kvorsmon.dll is not installed\n");
        return 1;
    }
    // A fresh printer for every run, so that the log below is this run's own.
    sim.Control(L"reset");
    sim.Control(L"clearlog");
    sim.Control(L"connect");
    ShowPrinter(port);
    Section("The simulated printer's own view");
    std::printf("%ls", sim.Describe().c_str());

    Section("The printer's property sheet (CommonPropertySheetUIW + DrvDevicePropertySheets)");
    WriteSamples();
    const int sheet = ShowDeviceSheet();
    return rc == IDOK && size == 6004 && sheet == 0 ? 0 : 1;
}
