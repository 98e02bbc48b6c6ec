#include "devmode/devmode.h"

#include "platform/trace.h"

namespace kx20 {

namespace {

void WriteStationDefaults(MutableByteSpan priv, std::size_t block) {
    // Choices at 0 and 4, the selections and the five list selections stay zero.
    WriteUtf16Field(priv, block + kStationFontName, kPrivFontNameChars, kDefaultStationFont);
    WriteU32(priv, block + kStationChoice2584, 2);
    WriteU32(priv, block + kStationChoice2588, 2);
    WriteU32(priv, block + kStationChoice2592, 0);
}

DevModeImage BuildDefaultDevMode() {
    DevModeImage image{};
    MutableByteSpan r(image);
    WriteUtf16Field(r, kOffDmDeviceName, kDmNameChars, kDefaultDeviceName);
    WriteU16(r, kOffDmSpecVersion, kDevModeSpecVersion);
    WriteU16(r, kOffDmDriverVersion, kDevModeDriverVersion);
    WriteU16(r, kOffDmSize, static_cast<std::uint16_t>(kDevModePublicSize));
    WriteU16(r, kOffDmDriverExtra, static_cast<std::uint16_t>(kDevModePrivateSize));
    // DM_COLOR and DM_MEDIATYPE are left out on purpose: those members are always completed
    // from the defaults when a caller's record is filled.
    WriteU32(r, kOffDmFields,
             kDmOrientation | kDmPaperSize | kDmCopies | kDmDefaultSource | kDmPrintQuality |
                 kDmDuplex | kDmYResolution | kDmTTOption | kDmCollate);
    WriteDmShort(r, kOffDmOrientation, 1);
    WriteDmShort(r, kOffDmPaperSize, kDefaultPaperSize);
    WriteDmShort(r, kOffDmScale, 100);
    WriteDmShort(r, kOffDmCopies, 1);
    WriteDmShort(r, kOffDmPrintQuality, 150);
    WriteDmShort(r, kOffDmColor, 1);
    WriteDmShort(r, kOffDmDuplex, 1);
    WriteDmShort(r, kOffDmYResolution, 150);
    WriteDmShort(r, kOffDmTTOption, 2);
    WriteUtf16Field(r, kOffDmFormName, kDmNameChars, kDefaultFormName);
    WriteU16(r, kOffDmLogPixels, 150);
    WriteU32(r, kOffDmBitsPerPel, 1);
    WriteU32(r, kOffDmPelsWidth, 5100);
    WriteU32(r, kOffDmPelsHeight, 6600);
    WriteU32(r, kOffDmICMMethod, 1);

    MutableByteSpan priv = r.subspan(kDevModePublicSize);
    WriteU32(priv, kPrivUlVersion, kDevModeSignature);
    WriteU32(priv, kPrivOptionWord8, 4);
    WriteU32(priv, kPrivBReceiptStation, 1);
    WriteU32(priv, kPrivOptionWord20, 1);
    WriteU32(priv, kPrivOptionWord24, 1);
    WriteU32(priv, kPrivOptionWord28, 162);
    WriteU32(priv, kPrivOptionsModeFlag, 1);
    WriteU32(priv, kPrivOptionsChoice, 0);
    WriteU32(priv, kPrivBCutPaper, 1);
    WriteU32(priv, kPrivOptionFlag64, 1);
    WriteU32(priv, kPrivFlow, 2);
    WriteU32(priv, kPrivDensity, 2);
    WriteUtf16Field(priv, kPrivFontOverrideName, kPrivFontNameChars, kNoFontOverride);
    WriteStationDefaults(priv, kPrivFirstStation);
    WriteStationDefaults(priv, kPrivSecondStation);
    return image;
}

}  // namespace

const DevModeImage& gsDevMode() {
    static const DevModeImage image = BuildDefaultDevMode();
    return image;
}

void DumpDevMode(ByteSpan record) {
    if (record.empty())
        return;
    DrvTrace(u"\n DEVMODE public data\n");
    DrvTrace(u"   dmDeviceName       %ls\n",
             ReadUtf16Field(record, kOffDmDeviceName, kDmNameChars));
    DrvTrace(u"   dmSpecVersion      0x%04x\n", ReadU16(record, kOffDmSpecVersion));
    DrvTrace(u"   dmDriverVersion    0x%04x\n", ReadU16(record, kOffDmDriverVersion));
    const std::uint16_t size = ReadU16(record, kOffDmSize);
    const std::uint16_t extra = ReadU16(record, kOffDmDriverExtra);
    DrvTrace(u"   dmSize=            %d\n", size);
    DrvTrace(u"   dmDriverExtra=     %d\n", extra);
    DrvTrace(u"   dmOrientation=     %d\n", ReadDmShort(record, kOffDmOrientation));
    DrvTrace(u"   dmPaperSize=       %d\n", ReadDmShort(record, kOffDmPaperSize));
    DrvTrace(u"   dmPaperLength=     %d\n", ReadDmShort(record, kOffDmPaperLength));
    DrvTrace(u"   dmPaperWidth=      %d\n", ReadDmShort(record, kOffDmPaperWidth));
    DrvTrace(u"   dmCopies=          %d\n", ReadDmShort(record, kOffDmCopies));
    DrvTrace(u"   dmDefaultSource=   %d\n", ReadDmShort(record, kOffDmDefaultSource));
    DrvTrace(u"   dmCollate=         %d\n", ReadDmShort(record, kOffDmCollate));
    if (extra != kDevModePrivateSize)
        return;
    // The private part starts where the record's own public part ends.
    DrvTrace(u"\n DEVMODE private data\n");
    DrvTrace(u"   ulVersion=       0x%08X\n", ReadU32(record, size + kPrivUlVersion));
    DrvTrace(u"   bReceiptStation= %d\n", ReadU32(record, size + kPrivBReceiptStation));
}

}  // namespace kx20
