// The driver in a Wine spooler: installs the built driver and a KX20 printer, then shows what
// an application sees through the spooler's own calls.
#include "platform/win32/windows_clean.h"

#include <cstdio>
#include <string>
#include <vector>

#include "devmode/devmode.h"
#include "platform/bytes.h"
#include "platform/text.h"
#include "tools/winhost/driver_install.h"

namespace {

constexpr wchar_t kPrinter[] = L"KX20";

void Section(const char* title) { std::printf("\n== %s\n", title); }

std::string Narrow(std::u16string_view s) { return kx20::Utf16ToUtf8(s); }

void DumpRecord(const std::vector<std::uint8_t>& record) {
    using namespace kx20;
    ByteSpan r(record);
    std::printf("  dmDeviceName     %s\n", Narrow(ReadUtf16Field(r, kOffDmDeviceName, 32)).c_str());
    std::printf("  dmSpecVersion    0x%04x   dmDriverVersion 0x%04x\n", ReadU16(r, kOffDmSpecVersion),
                ReadU16(r, kOffDmDriverVersion));
    std::printf("  dmSize           %u      dmDriverExtra   %u\n", ReadU16(r, kOffDmSize),
                ReadU16(r, kOffDmDriverExtra));
    std::printf("  dmFields         0x%08x\n", ReadU32(r, kOffDmFields));
    std::printf("  dmOrientation    %d       dmPaperSize     %d\n", ReadDmShort(r, kOffDmOrientation),
                ReadDmShort(r, kOffDmPaperSize));
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
    LONG size = DocumentPropertiesW(nullptr, printer, const_cast<LPWSTR>(kPrinter), nullptr,
                                    nullptr, 0);
    std::printf("  %ld bytes\n", size);

    Section("DocumentPropertiesW(DM_OUT_BUFFER): the default device mode");
    std::vector<std::uint8_t> record(size > 0 ? static_cast<std::size_t>(size) : 6004, 0);
    LONG rc = DocumentPropertiesW(nullptr, printer, const_cast<LPWSTR>(kPrinter),
                                  reinterpret_cast<DEVMODEW*>(record.data()), nullptr,
                                  DM_OUT_BUFFER);
    std::printf("  result %ld\n", rc);
    DumpRecord(record);

    ClosePrinter(printer);
    return rc == IDOK && size == 6004 ? 0 : 1;
}
