#include "entry/document_properties.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "devmode/printer_settings.h"
#include "platform/trace.h"
#include "platform/spooler.h"

namespace kx20 {

namespace {

struct MemberDefault {
    std::uint32_t bit;
    std::size_t offset;
    std::size_t width;
    std::u16string_view trace;
};

// Members completed from the defaults when the caller's dmFields does not claim them.
constexpr std::array<MemberDefault, 11> kMemberDefaults = {{
    {kDmOrientation, kOffDmOrientation, 2, u"DM_ORIENTATION adjusted to default\n"},
    {kDmPaperSize, kOffDmPaperSize, 2, u"DM_PAPERSIZE adjusted to default\n"},
    {kDmCopies, kOffDmCopies, 2, u"DM_COPIES adjusted to default\n"},
    {kDmDefaultSource, kOffDmDefaultSource, 2, u"DM_DEFAULTSOURCE adjusted to default\n"},
    {kDmPrintQuality, kOffDmPrintQuality, 2, u"DM_PRINTQUALITY adjusted to default\n"},
    {kDmColor, kOffDmColor, 2, u"DM_COLOR adjusted to default\n"},
    {kDmDuplex, kOffDmDuplex, 2, u"DM_DUPLEX adjusted to default\n"},
    {kDmYResolution, kOffDmYResolution, 2, u"DM_YRESOLUTION adjusted to default\n"},
    {kDmTTOption, kOffDmTTOption, 2, u"DM_TTOPTION adjusted to default\n"},
    {kDmCollate, kOffDmCollate, 2, u"DM_COLLATE adjusted to default\n"},
    {kDmMediaType, kOffDmMediaType, 4, u"DM_MEDIATYPE adjusted to default\n"},
}};

constexpr std::size_t kDocumentNameChars = 260;

DevModeImage& WorkingRecord() {
    static DevModeImage record{};
    return record;
}

// A caller that put the whole size into dmSize gets the two sizes split as they should be.
void RepairSizes(MutableByteSpan record) {
    const std::uint16_t size = ReadU16(record, kOffDmSize);
    const std::uint16_t extra = ReadU16(record, kOffDmDriverExtra);
    if (size != kDevModePublicSize && extra == 0 && size == kDevModeSize) {
        WriteU16(record, kOffDmSize, static_cast<std::uint16_t>(kDevModePublicSize));
        WriteU16(record, kOffDmDriverExtra, static_cast<std::uint16_t>(kDevModePrivateSize));
    }
}

// The record carries this driver's private part: the signature, and all of the private bytes
// inside the caller's record.
bool HasOwnPrivatePart(ByteSpan record, std::size_t publicSize) {
    return FitsIn(record.size(), publicSize, kDevModePrivateSize) &&
           ReadU32(record, publicSize + kPrivUlVersion) == kDevModeSignature;
}

// Copies the unclaimed members from the defaults. The dmFields word is left as it is. A member
// that lies beyond the record's own public part is not the record's to fill.
void FillMembers(MutableByteSpan source, std::size_t publicSize, ByteSpan defaults) {
    const std::uint32_t fields = ReadU32(source, kOffDmFields);
    for (const MemberDefault& m : kMemberDefaults) {
        if ((fields & m.bit) != 0)
            continue;
        if (m.offset + m.width > publicSize || !FitsIn(source.size(), m.offset, m.width))
            continue;
        if (m.width == 2) {
            WriteU16(source, m.offset, ReadU16(defaults, m.offset));
        } else {
            WriteU32(source, m.offset, ReadU32(defaults, m.offset));
        }
        DrvTrace(m.trace);
    }
}

// The public part, then the private part right after it, each cut at the end of the output.
void CopyOut(ByteSpan source, std::size_t publicSize, ByteSpan privatePart, MutableByteSpan out) {
    // The private part is taken first: the caller's input and output may share memory.
    std::array<std::uint8_t, kDevModePrivateSize> priv;
    std::copy(privatePart.begin(), privatePart.end(), priv.begin());
    const std::size_t publicCopy = std::min({publicSize, source.size(), out.size()});
    if (publicCopy > 0)
        std::memmove(out.data(), source.data(), publicCopy);
    if (publicSize >= out.size())
        return;
    const std::size_t privateCopy = std::min(kDevModePrivateSize, out.size() - publicSize);
    std::memcpy(out.data() + publicSize, priv.data(), privateCopy);
}

void TraceConvertMode(std::uint32_t mode) {
    switch (mode) {
        case kCdmConvert:
            DrvTrace(u"fMode = CDM_CONVERT       \n");
            break;
        case kCdmConvert351:
            DrvTrace(u"fMode = CDM_CONVERT351    \n");
            break;
        case kCdmDriverDefault:
            DrvTrace(u"fMode = CDM_DRIVER_DEFAULT\n");
            break;
        default:
            DrvTrace(u"fMode = default\n");
            break;
    }
}

}  // namespace

DevModeImage& CurrentDefaults() {
    return WorkingRecord();
}

void ResetCurrentDefaults() {
    WorkingRecord().fill(0);
}

bool LoadCurrentDefaults(Platform& platform, std::u16string_view printerName, DefaultsTrace texts) {
    PrinterSettings settings(platform, printerName, kPrinterAllAccess);
    OpenWithReadFallback(settings);
    const DevModeImage* stored = settings.GetDevMode();
    const bool init = texts == DefaultsTrace::SheetInit;
    if (stored) {
        WorkingRecord() = *stored;
        DrvTrace(init ? u"DrvDocumentPropertySheets(PROPSHEETUI_REASON_INIT): Using "
                        u"pRegistr->GetDevMode()\n"
                      : u"DrvDocumentPropertySheets: Using registr.GetDevMode()\n");
    } else {
        WorkingRecord() = gsDevMode();
        DrvTrace(init ? u"DrvDocumentPropertySheets(PROPSHEETUI_REASON_INIT): Using default "
                        u"&gsDevMode\n"
                      : u"DrvDocumentPropertySheets: Using default &gsDevMode\n");
    }
    settings.Close();
    return stored != nullptr;
}

bool IsSizeQuery(const DocumentRequest& request) {
    return request.mode == 0 || request.out.empty();
}

std::int32_t FillFromDefaults(const DocumentRequest& request) {
    if (IsSizeQuery(request)) {
        request.outSize = static_cast<std::int32_t>(kDevModeSize);
        return static_cast<std::int32_t>(kDevModeSize);
    }
    DevModeImage& working = WorkingRecord();
    MutableByteSpan source(working);
    std::size_t publicSize = kDevModePublicSize;
    ByteSpan privatePart = ByteSpan(working).subspan(kDevModePublicSize, kDevModePrivateSize);

    if ((request.mode & kDmInBuffer) != 0 && !request.in.empty()) {
        source = request.in;
        RepairSizes(source);
        publicSize = ReadU16(source, kOffDmSize);
        if (HasOwnPrivatePart(source, publicSize)) {
            privatePart = ByteSpan(source).subspan(publicSize, kDevModePrivateSize);
        }
    }

    FillMembers(source, publicSize, working);

    if ((request.mode & kDmOutBuffer) != 0) {
        CopyOut(source, publicSize, privatePart, request.out);
        DumpDevMode(request.out);
    }
    return kIdOk;
}

std::int32_t DocumentPropertiesNoUi(Platform& platform, const DocumentRequest& request) {
    if (IsSizeQuery(request)) {
        request.outSize = static_cast<std::int32_t>(kDevModeSize);
        DrvTrace(u"  Returning %d\n", request.outSize);
        return request.outSize;
    }
    LoadCurrentDefaults(platform, request.printerName);
    const std::int32_t result = FillFromDefaults(request);
    DrvTrace(u"   returning %d\n", result);
    return result;
}

std::u16string TraceDocumentCall(std::uint32_t lParam, bool hasInfo,
                                 std::u16string_view printerName, std::uint32_t pdmIn,
                                 std::uint32_t pdmOut) {
    DrvTrace(u"  lParam = 0x%08X, pPSUIInfo non-NULL? = %d\n", lParam, hasInfo ? 1 : 0);
    std::u16string name(
        printerName.substr(0, std::min(printerName.size(), kDocumentNameChars - 1)));
    DrvTrace(u"PrinterName = %ws\r\n", name);
    DrvTrace(u"pdmIn=0X%08X, pdmOut=0X%08X\n", pdmIn, pdmOut);
    return name;
}

bool ConvertDevModeCore(Platform& platform, std::u16string_view printerName, MutableByteSpan out,
                        std::int32_t& inOutSize, std::uint32_t mode, std::uint32_t& lastError) {
    TraceConvertMode(mode);
    if (!out.empty() && inOutSize >= static_cast<std::int32_t>(kDevModeSize) &&
        out.size() >= kDevModeSize) {
        PrinterSettings settings(platform, printerName, kPrinterAllAccess);
        OpenWithReadFallback(settings);
        std::fill_n(out.begin(), kDevModeSize, std::uint8_t{0});
        const DevModeImage* stored = settings.GetDevMode();
        const DevModeImage& record = stored ? *stored : gsDevMode();
        std::copy(record.begin(), record.end(), out.begin());
        settings.Close();
        return true;
    }
    inOutSize = static_cast<std::int32_t>(kDevModeSize);
    lastError = kErrorInsufficientBuffer;
    return false;
}

}  // namespace kx20
