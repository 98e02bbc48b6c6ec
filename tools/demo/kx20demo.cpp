// The driver in a Wine spooler: installs the driver package and a KX20 printer, then shows what
// an application sees through the spooler's own calls (capabilities, device mode), what the
// driver learns of the simulated printer, and both property sheets in windows: the device
// sheet as the printer-properties user interface opens it, the document sheet as an
// application's Properties button does. Under a virtual display (no display of the user's)
// each page is saved as a picture of its window and the sheets close by themselves; an HTML
// page shows the pictures beside what the spooler and the printer report. The first thing that
// is not as it should be stops the demo with one line saying what.
//
// Usage: kx20demo [--model N] [--firmware-level 0xNN] [--identity TEXT] [--out FOLDER]
//                 [--no-sheets]
#include "platform/win32/windows_clean.h"

#include <compstui.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
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

// What the demo printed, by section, for the HTML page.
struct Section {
    std::string title, text;
};
std::vector<Section> g_sections;

void StartSection(const char* title) {
    std::printf("\n== %s\n", title);
    g_sections.push_back({title, {}});
}

void Out(const char* format, ...) {
    va_list args, again;
    va_start(args, format);
    va_copy(again, args);
    const int length = std::vsnprintf(nullptr, 0, format, args);
    va_end(args);
    std::string text(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
    if (length > 0)
        std::vsnprintf(text.data(), text.size() + 1, format, again);
    va_end(again);
    std::fputs(text.c_str(), stdout);
    if (!g_sections.empty())
        g_sections.back().text += text;
}

// The one line that ends a demo that found something wrong, just before its exit status.
[[noreturn]] void Stop(const char* format, ...) {
    char buffer[1024];
    va_list args;
    va_start(args, format);
    std::vsnprintf(buffer, sizeof buffer, format, args);
    va_end(args);
    std::fflush(stdout);
    std::printf("kx20demo: stopped: %s\n", buffer);
    std::fflush(stdout);
    std::exit(1);
}

std::string Narrow(const std::wstring& s) {
    std::u16string u(s.begin(), s.end());
    return kx20::Utf16ToUtf8(u);
}

std::string Narrow(std::u16string_view s) {
    return kx20::Utf16ToUtf8(s);
}

void DumpRecord(const std::vector<std::uint8_t>& record) {
    using namespace kx20;
    ByteSpan r(record);
    Out("  dmDeviceName     %s\n", Narrow(ReadUtf16Field(r, kOffDmDeviceName, 32)).c_str());
    Out("  dmSpecVersion    0x%04x   dmDriverVersion 0x%04x\n",
                ReadU16(r, kOffDmSpecVersion), ReadU16(r, kOffDmDriverVersion));
    Out("  dmSize           %u      dmDriverExtra   %u\n", ReadU16(r, kOffDmSize),
                ReadU16(r, kOffDmDriverExtra));
    Out("  dmFields         0x%08x\n", ReadU32(r, kOffDmFields));
    Out("  dmOrientation    %d       dmPaperSize     %d\n",
                ReadDmShort(r, kOffDmOrientation), ReadDmShort(r, kOffDmPaperSize));
    Out("  dmCopies         %d       dmPrintQuality  %d  dmYResolution %d\n",
                ReadDmShort(r, kOffDmCopies), ReadDmShort(r, kOffDmPrintQuality),
                ReadDmShort(r, kOffDmYResolution));
    Out("  dmColor          %d       dmDuplex        %d  dmTTOption %d  dmCollate %d\n",
                ReadDmShort(r, kOffDmColor), ReadDmShort(r, kOffDmDuplex),
                ReadDmShort(r, kOffDmTTOption), ReadDmShort(r, kOffDmCollate));
    Out("  dmFormName       %s\n", Narrow(ReadUtf16Field(r, kOffDmFormName, 32)).c_str());
    std::size_t priv = ReadU16(r, kOffDmSize);
    Out("  private part at  %zu: ulVersion 0x%08X, bReceiptStation %u, bCutPaper %u\n",
                priv, ReadU32(r, priv), ReadU32(r, priv + 12), ReadU32(r, priv + 52));
    Out("  font override    \"%s\"\n", Narrow(ReadUtf16Field(r, priv + 80, 256)).c_str());
    Out("  station fonts    \"%s\", \"%s\"\n",
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
void ShowPrinter() {
    using namespace kx20;
    Win32Platform platform;
    const std::u16string printer = u"KX20";
    store::ConnectionStatus status;
    std::u16string portName = store::PrinterPortName(platform.ports, printer);
    if (!store::GetConnectionStatus(platform.ports, portName, status))
        Stop("the driver finds no connection status for port \"%s\" of printer \"KX20\"",
             Narrow(portName).c_str());
    Out("  connection status: %s, model %u, firmware level 0x%02X, identity \"%s\"\n",
                status.connected ? "connected" : "not connected", status.modelCode,
                status.firmwareLevel, Narrow(status.identity).c_str());
    Out("  port type: %s\n",
                store::IsSerialConnection(platform.ports, portName) ? "serial" : "USB");
    std::uint8_t setup[2] = {};
    if (channel::OutGetPrinterSetup(platform.ports, printer, setup))
        Out(
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
        Out("  checksum of %-26s %s\n", a.name,
                    ok ? Hex(crc, 4).c_str() : "(not available)");
    }
    Out("  ready for double-byte fonts: %s\n",
                channel::IsHaldenPrinterDBCSReady(platform.ports, printer) ? "yes" : "no");
    if (!status.connected)
        Stop("the simulated printer on port \"%s\" is not connected", Narrow(portName).c_str());
}

// What a print dialog asks of the printer.
void ShowCapabilities() {
    auto ask = [](WORD capability, void* out = nullptr) {
        return static_cast<long>(
            DeviceCapabilitiesW(kPrinter, nullptr, capability, static_cast<LPWSTR>(out), nullptr));
    };
    const long count = ask(DC_PAPERS);
    if (count <= 0)
        Stop("DeviceCapabilitiesW(DC_PAPERS) answers %ld papers for \"KX20\"", count);
    std::vector<WORD> ids(count > 0 ? static_cast<std::size_t>(count) : 0);
    std::vector<POINT> sizes(ids.size());
    std::vector<wchar_t> names(ids.size() * 64);
    ask(DC_PAPERS, ids.data());
    ask(DC_PAPERSIZE, sizes.data());
    ask(DC_PAPERNAMES, names.data());
    Out("  %ld papers:\n", count);
    for (std::size_t i = 0; i < ids.size(); ++i)
        Out("    %u  %-28ls %5.1f x %6.1f mm\n", ids[i], &names[i * 64], sizes[i].x / 10.0,
                    sizes[i].y / 10.0);
    const long minExtent = ask(DC_MINEXTENT), maxExtent = ask(DC_MAXEXTENT);
    Out("  extents          %ld x %ld mm to %ld x %ld mm\n", minExtent & 0xFFFF,
                minExtent >> 16, maxExtent & 0xFFFF, maxExtent >> 16);
    LONG resolutions[4] = {};
    ask(DC_ENUMRESOLUTIONS, resolutions);
    Out("  resolutions      %ld x %ld, %ld x %ld dpi\n", resolutions[0], resolutions[1],
                resolutions[2], resolutions[3]);
    wchar_t personalities[2][32] = {};
    ask(DC_PERSONALITY, personalities);
    wchar_t ready[64] = {};
    ask(DC_MEDIAREADY, ready);
    Out("  paper loaded     %ls\n", ready);
    Out("  interfaces       %ls, %ls\n", personalities[0], personalities[1]);
    Out("  copies up to %ld, landscape turned %ld degrees, %ld lines a minute\n",
                ask(DC_COPIES), ask(DC_ORIENTATION), ask(DC_PRINTRATE));
    Out("  device mode      %ld + %ld bytes, version 0x%lx, driver 0x%lx, fields 0x%lx\n",
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
        Out("  sample %ls (%lu bytes)\n", sample.name, static_cast<unsigned long>(written));
    }
    SetCurrentDirectoryW(folder.c_str());
}

struct Options {
    unsigned model = 9;
    unsigned firmwareLevel = 0x40;
    std::wstring identity = L"KX20SIM1";
    std::wstring out;  // the folder of the pictures and the HTML page
    bool sheets = true;
};

constexpr char kUsage[] =
    "usage: kx20demo [--model 2|4|7|9] [--firmware-level 0..0xFF] [--identity 8CHARS]\n"
    "                [--out FOLDER] [--no-sheets]";

Options ParseOptions(int argc, wchar_t** argv) {
    Options o;
    o.out = kx20::winhost::ProgramFolder() + L"demo";
    for (int i = 1; i < argc; ++i) {
        const std::wstring flag = argv[i];
        if (flag == L"--no-sheets") {
            o.sheets = false;
            continue;
        }
        if (flag == L"--help") {
            std::printf("%s\n", kUsage);
            std::exit(0);
        }
        if (i + 1 >= argc)
            Stop("%ls needs a value; %s", flag.c_str(), kUsage);
        const std::wstring value = argv[++i];
        wchar_t* end = nullptr;
        const unsigned long number = std::wcstoul(value.c_str(), &end, 0);
        const bool numeric = !value.empty() && end && *end == L'\0';
        if (flag == L"--model") {
            if (!numeric || (number != 2 && number != 4 && number != 7 && number != 9))
                Stop("--model %ls: the KX20 models are 2, 4, 7 and 9", value.c_str());
            o.model = static_cast<unsigned>(number);
        } else if (flag == L"--firmware-level") {
            if (!numeric || number > 0xFF)
                Stop("--firmware-level %ls: a level is 0 to 0xFF", value.c_str());
            o.firmwareLevel = static_cast<unsigned>(number);
        } else if (flag == L"--identity") {
            if (value.size() != 8)
                Stop("--identity %ls: an identity is 8 characters", value.c_str());
            o.identity = value;
        } else if (flag == L"--out") {
            // A unix path is reached through Wine's Z: drive.
            o.out = value.size() > 1 && value[0] == L'/' ? L"Z:" + value : value;
        } else {
            Stop("unknown option %ls; %s", flag.c_str(), kUsage);
        }
    }
    return o;
}

// The unix path of a file in the prefix's Z: drive, as the shell sees it.
std::string ShellPath(std::wstring path) {
    if (path.rfind(L"Z:", 0) == 0 || path.rfind(L"z:", 0) == 0) {
        path.erase(0, 2);
        for (auto& c : path)
            if (c == L'\\')
                c = L'/';
    }
    return Narrow(path);
}

// One page's picture, as the HTML page lists it.
struct Shot {
    std::string sheet, page, file;  // file: the name inside the output folder
};

struct SheetRun {
    std::vector<std::wstring> titles;
    std::vector<Shot> shots;
};

// The steps that read the sheet's tabs and, on a virtual display, show each page in turn, save
// a picture of the sheet's window and close the sheet with its Cancel button.
std::vector<kx20::winhost::ModalDriver::Step> SheetSteps(const char* sheet, const wchar_t* prefix,
                                                         const std::wstring& folder, bool unattended,
                                                         SheetRun& run) {
    std::vector<kx20::winhost::ModalDriver::Step> steps;
    steps.push_back([&run](HWND window) {
        run.titles = kx20::winhost::SheetTabTitles(window);
        return true;
    });
    if (!unattended)
        return steps;
    // Enough steps for the pages the sheet has; the ones past its last page do nothing.
    for (std::size_t i = 0; i < 8; ++i) {
        steps.push_back([i, &run](HWND window) {
            if (i < run.titles.size()) {
                SendMessageW(window, PSM_SETCURSEL, i, 0);
                RedrawWindow(window, nullptr, nullptr,
                             RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
            }
            return true;
        });
        steps.push_back([i, sheet, prefix, folder, &run](HWND window) {
            if (i >= run.titles.size())
                return true;
            std::wstring name = std::wstring(prefix) + L"-" + std::to_wstring(i + 1) + L"-" +
                                run.titles[i] + L".png";
            for (auto& c : name)
                if (c == L' ')
                    c = L'-';
            if (kx20::winhost::SaveWindowPicture(window, folder + L"\\" + name))
                run.shots.push_back({sheet, Narrow(run.titles[i]), Narrow(name)});
            return true;
        });
    }
    steps.push_back([](HWND window) {
        SendMessageW(window, PSM_PRESSBUTTON, PSBTN_CANCEL, 0);
        return true;
    });
    return steps;
}

void CheckSheet(const char* sheet, const SheetRun& run, std::size_t pages, bool unattended) {
    Out("  pages:");
    for (const auto& t : run.titles) Out(" [%ls]", t.c_str());
    Out("\n");
    if (run.titles.size() != pages)
        Stop("the %s shows %zu pages, not %zu", sheet, run.titles.size(), pages);
    if (unattended && run.shots.size() != pages)
        Stop("%zu of the %s's %zu pages were saved as pictures (is ImageMagick's import there?)",
             run.shots.size(), sheet, pages);
}

// The printer's device sheet as the printer-properties user interface opens it.
SheetRun ShowDeviceSheet(const std::wstring& folder, bool unattended) {
    wchar_t driverFolder[MAX_PATH] = {};
    DWORD needed = 0;
    GetPrinterDriverDirectoryW(nullptr, const_cast<LPWSTR>(kx20::winhost::kEnvironment), 1,
                               reinterpret_cast<LPBYTE>(driverFolder), sizeof driverFolder, &needed);
    HMODULE driver = LoadLibraryW((std::wstring(driverFolder) + L"\\3\\kvorsgui.dll").c_str());
    auto entry = driver ? reinterpret_cast<PFNPROPSHEETUI>(reinterpret_cast<void*>(
                              GetProcAddress(driver, "DrvDevicePropertySheets")))
                        : nullptr;
    if (!entry)
        Stop("the installed driver's DrvDevicePropertySheets cannot be loaded");
    struct {
        WORD cbSize, Flags;
        HANDLE printer;
        LPWSTR name;
    } header = {sizeof header, 0, nullptr, const_cast<LPWSTR>(kPrinter)};
    SheetRun run;
    kx20::winhost::ModalDriver script(
        kx20::winhost::FindThreadPropertySheet,
        SheetSteps("device sheet", L"device-sheet", folder, unattended, run));
    DWORD result = 0;
    CommonPropertySheetUIW(nullptr, entry, reinterpret_cast<LPARAM>(&header), &result);
    FreeLibrary(driver);
    return run;
}

// The document sheet as an application's Properties button opens it.
SheetRun ShowDocumentSheet(const std::wstring& folder, bool unattended) {
    HANDLE printer = nullptr;
    if (!OpenPrinterW(const_cast<LPWSTR>(kPrinter), &printer, nullptr))
        Stop("OpenPrinterW(\"KX20\") failed, error %lu", GetLastError());
    std::vector<std::uint8_t> record(6004, 0);
    SheetRun run;
    kx20::winhost::ModalDriver script(
        kx20::winhost::FindThreadPropertySheet,
        SheetSteps("document sheet", L"document-sheet", folder, unattended, run));
    const LONG rc = DocumentPropertiesW(nullptr, printer, const_cast<LPWSTR>(kPrinter),
                                        reinterpret_cast<DEVMODEW*>(record.data()), nullptr,
                                        DM_IN_PROMPT | DM_OUT_BUFFER);
    ClosePrinter(printer);
    if (rc != IDOK && rc != IDCANCEL)
        Stop("DocumentPropertiesW with DM_IN_PROMPT answered %ld", static_cast<long>(rc));
    return run;
}

std::string Html(const std::string& text) {
    std::string out;
    for (char c : text) {
        switch (c) {
            case '&': out += "&amp;"; break;
            case '<': out += "&lt;"; break;
            case '>': out += "&gt;"; break;
            case '"': out += "&quot;"; break;
            default: out += c;
        }
    }
    return out;
}

// One page: every picture with its page name, beside what the spooler and the printer report.
void WriteHtml(const std::wstring& folder, const Options& o, const std::vector<Shot>& shots) {
    std::string html =
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<title>KX20 driver in a Wine spooler</title>\n<style>\n"
        "body { font-family: sans-serif; margin: 1.5em; color: #222; }\n"
        "main { display: grid; grid-template-columns: minmax(0, 1fr) 44em; gap: 2em; }\n"
        "figure { margin: 0 0 1.5em 0; display: grid; grid-template-columns: 10em auto; gap: 1em; }\n"
        "figcaption { font-weight: bold; }\n"
        "img { border: 1px solid #888; max-width: 100%; }\n"
        "aside { position: sticky; top: 0; align-self: start; max-height: 100vh; overflow: auto; }\n"
        "pre { background: #f4f4f4; padding: 0.6em; font-size: 0.8em; white-space: pre-wrap; }\n"
        "</style>\n</head>\n<body>\n<h1>KX20 driver in a Wine spooler</h1>\n";
    char line[256];
    std::snprintf(line, sizeof line,
                  "<p>Printer \"KX20\" on the simulated KX20: model %u, firmware level 0x%02X, "
                  "identity \"%s\". Made by <code>scripts/demo.sh</code>.</p>\n",
                  o.model, o.firmwareLevel, Html(Narrow(o.identity)).c_str());
    html += line;
    html += "<nav><a href=\"#device-sheet\">Device sheet</a> | <a href=\"#document-sheet\">"
            "Document sheet</a> | <a href=\"#reports\">What the spooler and the printer report"
            "</a></nav>\n<main>\n<div>\n";
    const char* sheets[][3] = {
        {"device sheet", "device-sheet", "Device sheet (the printer's properties)"},
        {"document sheet", "document-sheet",
         "Document sheet (an application's Properties button: DocumentPropertiesW with "
         "DM_IN_PROMPT)"}};
    for (const auto& sheet : sheets) {
        html += std::string("<h2 id=\"") + sheet[1] + "\">" + sheet[2] + "</h2>\n";
        bool any = false;
        for (const Shot& shot : shots) {
            if (shot.sheet != sheet[0])
                continue;
            any = true;
            html += "<figure><figcaption>" + Html(shot.page) + "</figcaption><a href=\"" +
                    Html(shot.file) + "\"><img src=\"" + Html(shot.file) + "\" alt=\"" +
                    Html(shot.page) + " page\"></a></figure>\n";
        }
        if (!any)
            html += "<p>No pictures: the sheet was shown on a display of the user's.</p>\n";
    }
    html += "</div>\n<aside id=\"reports\">\n";
    for (const Section& section : g_sections)
        html += "<h3>" + Html(section.title) + "</h3>\n<pre>" + Html(section.text) + "</pre>\n";
    html += "</aside>\n</main>\n</body>\n</html>\n";
    const std::wstring path = folder + L"\\index.html";
    HANDLE h = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                           FILE_ATTRIBUTE_NORMAL, nullptr);
    DWORD written = 0;
    const bool ok = h != INVALID_HANDLE_VALUE &&
                    WriteFile(h, html.data(), static_cast<DWORD>(html.size()), &written, nullptr) &&
                    written == html.size();
    if (h != INVALID_HANDLE_VALUE)
        CloseHandle(h);
    if (!ok)
        Stop("cannot write %s", ShellPath(path).c_str());
    std::printf("\n  page %s\n", ShellPath(path).c_str());
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    const Options options = ParseOptions(argc, argv);
    std::wstring error;
    StartSection("Installing the driver from its package");
    if (!kx20::winhost::InstallDriver(&error))
        Stop("installing the driver package: %ls", error.c_str());
    const std::wstring port = kx20::winhost::DefaultPortPath();
    if (!kx20::winhost::AddKx20Printer(kPrinter, port, &error))
        Stop("%ls", error.c_str());
    Out("  driver \"KVO KX20\" from %s\n  printer \"KX20\" on %ls\n",
        ShellPath(kx20::winhost::PackageFolder() + L"kx20.inf").c_str(), port.c_str());

    HANDLE printer = nullptr;
    if (!OpenPrinterW(const_cast<LPWSTR>(kPrinter), &printer, nullptr))
        Stop("OpenPrinterW(\"KX20\") failed, error %lu", GetLastError());
    StartSection("DocumentPropertiesW(mode 0): size of the driver's device mode");
    const LONG size =
        DocumentPropertiesW(nullptr, printer, const_cast<LPWSTR>(kPrinter), nullptr, nullptr, 0);
    Out("  %ld bytes\n", static_cast<long>(size));
    if (size != 6004)
        Stop("the spooler answers a device mode of %ld bytes for \"KX20\", not the driver's 6004",
             static_cast<long>(size));
    StartSection("DocumentPropertiesW(DM_OUT_BUFFER): the default device mode");
    std::vector<std::uint8_t> record(6004, 0);
    const LONG rc =
        DocumentPropertiesW(nullptr, printer, const_cast<LPWSTR>(kPrinter),
                            reinterpret_cast<DEVMODEW*>(record.data()), nullptr, DM_OUT_BUFFER);
    ClosePrinter(printer);
    Out("  result %ld\n", static_cast<long>(rc));
    if (rc != IDOK)
        Stop("DocumentPropertiesW(DM_OUT_BUFFER) answered %ld, not IDOK", static_cast<long>(rc));
    DumpRecord(record);

    StartSection("DeviceCapabilitiesW: what a print dialog asks of the printer");
    ShowCapabilities();

    StartSection("The printer, through kvorsmon.dll (the simulated KX20)");
    kx20::winhost::SimulatedPrinterControl sim(port);
    if (!sim.Loaded())
        Stop("kvorsmon.dll (the simulated printer) is not installed");
    // A fresh printer for every run, so that the log below is this run's own.
    const std::wstring commands[] = {L"reset",
                                     L"clearlog",
                                     L"model=" + std::to_wstring(options.model),
                                     L"firmware=" + std::to_wstring(options.firmwareLevel),
                                     L"identity=" + options.identity,
                                     L"connect",
                                     L"publish"};
    for (const std::wstring& command : commands) {
        const DWORD status = sim.Control(command.c_str());
        if (status != 0)
            Stop("the simulated printer refused \"%ls\" (error %lu)", command.c_str(), status);
    }
    ShowPrinter();
    StartSection("The simulated printer's own view");
    Out("%ls", sim.Describe().c_str());

    wchar_t virtualDisplay[8] = {};
    const bool unattended = GetEnvironmentVariableW(L"KX20_VIRTUAL_DISPLAY", virtualDisplay, 8) > 0;
    CreateDirectoryW(options.out.c_str(), nullptr);
    std::vector<Shot> shots;
    if (options.sheets) {
        StartSection("Samples for the sheets' file dialogs");
        WriteSamples();
        if (!unattended)
            std::printf("  each sheet opens in a window: close it to go on\n");
        StartSection("The device sheet (CommonPropertySheetUIW + DrvDevicePropertySheets)");
        SheetRun device = ShowDeviceSheet(options.out, unattended);
        CheckSheet("device sheet", device, 5, unattended);
        StartSection("The document sheet (DocumentPropertiesW with DM_IN_PROMPT)");
        SheetRun document = ShowDocumentSheet(options.out, unattended);
        CheckSheet("document sheet", document, 4, unattended);
        for (const SheetRun* run : {&device, &document})
            for (const Shot& shot : run->shots) {
                shots.push_back(shot);
                std::printf("  picture %s/%s\n", ShellPath(options.out).c_str(),
                            shot.file.c_str());
            }
    }
    WriteHtml(options.out, options, shots);
    return 0;
}
