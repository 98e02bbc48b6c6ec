// Document events, called directly (Wine's GDI never calls them): the job's section is created
// in this process and read by name from a second process, as the rendering side reads it.
#include "platform/win32/windows_clean.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "entry/document_event.h"
#include "tests/wine/wine_environment.h"

namespace kx20::winetest {

// Child role "read-section": opens the named section for reading and prints what it holds.
int ReadSectionRole(const std::wstring& name) {
    HANDLE section = OpenFileMappingW(FILE_MAP_READ, FALSE, name.c_str());
    if (!section) {
        std::printf("open failed %lu\n", GetLastError());
        return 2;
    }
    auto* bytes = static_cast<const unsigned char*>(MapViewOfFile(section, FILE_MAP_READ, 0, 0, 0));
    if (!bytes) {
        CloseHandle(section);
        return 3;
    }
    auto u32 = [&](std::size_t at) {
        return bytes[at] | bytes[at + 1] << 8 | bytes[at + 2] << 16 | unsigned(bytes[at + 3]) << 24;
    };
    auto u16 = [&](std::size_t at) { return unsigned(bytes[at] | bytes[at + 1] << 8); };
    std::printf("pages=%u size=%u extra=%u signature=%08X last=%02X\n", u32(4), u16(8 + 68),
                u16(8 + 70), u32(8 + 220), bytes[8 + 6003]);
    UnmapViewOfFile(bytes);
    CloseHandle(section);
    return 0;
}

namespace {

using DocumentEventFn = int(WINAPI*)(HANDLE, HDC, int, ULONG, PVOID, ULONG, PVOID);

TEST(JobSection, SectionIsSharedWithAnotherProcess) {
    DriverModule driver;
    auto event = driver.Entry<DocumentEventFn>("DrvDocumentEvent");
    ASSERT_NE(event, nullptr);
    ScopedPrinter printer;
    ASSERT_NE(printer.get(), nullptr);

    // The job's record, as the driver completes it for this printer.
    std::vector<std::uint8_t> record(6004, 0);
    ASSERT_EQ(
        DocumentPropertiesW(nullptr, printer.get(), const_cast<LPWSTR>(kPrinterName),
                            reinterpret_cast<DEVMODEW*>(record.data()), nullptr, DM_OUT_BUFFER),
        IDOK);
    record[6003] = 0x5A;
    void* block[6] = {};
    block[5] = record.data();  // the argument block's device-mode member

    HANDLE handle = reinterpret_cast<HANDLE>(static_cast<std::uintptr_t>(0x00C0FFEE));
    const std::wstring name = L"kvox00C0FFEE";
    ASSERT_EQ(event(handle, nullptr, docevent::kCreateDcPre, sizeof block, block, 0, nullptr), 1);
    EXPECT_EQ(event(handle, nullptr, docevent::kStartDocPre, 0, nullptr, 0, nullptr), 1);
    EXPECT_EQ(event(handle, nullptr, docevent::kEndPage, 0, nullptr, 0, nullptr), 1);
    EXPECT_EQ(event(handle, nullptr, docevent::kEndPage, 0, nullptr, 0, nullptr), 1);

    std::string seen;
    ASSERT_EQ(RunChildRole(L"read-section", name, &seen), 0) << seen;
    EXPECT_EQ(seen, "pages=2 size=220 extra=5784 signature=ABABCDCD last=5A\r\n");

    EXPECT_EQ(event(handle, nullptr, docevent::kDeleteDc, 0, nullptr, 0, nullptr), 1);
    EXPECT_EQ(RunChildRole(L"read-section", name, &seen), 2) << "the section is gone: " << seen;
    // Without a section the counting step fails.
    EXPECT_EQ(event(handle, nullptr, docevent::kEndPage, 0, nullptr, 0, nullptr), -1);
}

}  // namespace
}  // namespace kx20::winetest
