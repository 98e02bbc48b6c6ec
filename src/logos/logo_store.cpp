#include "logos/logo_store.h"

#include <new>
#include <optional>

#include "channel/job_channel.h"
#include "channel/printer_queries.h"
#include "platform/picture_files.h"
#include "platform/trace.h"
#include "logos/logo_payloads.h"
#include "store/catalogue.h"

namespace kx20::logos {

namespace {

std::uint32_t ChecksumNumber(const std::uint8_t crc[4]) {
    return ReadU32(ByteSpan(crc, 4), 0);
}

}  // namespace

bool DownloadLogo(const StoreTarget& t, std::uint8_t number, int width, int height,
                  ByteSpan raster) {
    const Bytes payload = BuildLogoPayload(number, width, height, raster);
    if (payload.empty()) {
        DrvTrace(u"DownloadLogo - raster of %d x %d with %u bytes refused\n", width, height,
                 raster.size());
        return false;
    }
    return channel::SendRawJobAndWait(t.strings, t.platform, t.printerName,
                                      static_cast<std::uint32_t>(channel::JobKind::Logo), number,
                                      payload);
}

bool DownloadMessage(const StoreTarget& t, std::uint8_t number, std::u16string_view text) {
    const Bytes payload = BuildMessagePayload(number, text);
    return channel::SendRawJobAndWait(t.strings, t.platform, t.printerName,
                                      static_cast<std::uint32_t>(channel::JobKind::Message), number,
                                      payload);
}

void StoreLogoCrc(const StoreTarget& t, std::uint32_t crc) {
    store::SetLogoCRC(t.platform, t.printerName, t.identity, crc);
}

void StoreMessageCrc(const StoreTarget& t, std::uint32_t crc) {
    store::SetMessageCRC(t.platform, t.printerName, t.identity, crc);
}

std::uint32_t QueryLogosCrc(const StoreTarget& t, bool* answered) {
    std::uint8_t crc[4] = {};
    const bool ok = channel::GetLogosCRC(t.platform, true, t.printerName, crc);
    if (answered)
        *answered = ok;
    return ChecksumNumber(crc);
}

std::uint32_t QueryMessagesCrc(const StoreTarget& t, bool* answered) {
    std::uint8_t crc[4] = {};
    const bool ok = channel::GetMessagesCRC(t.platform, true, t.printerName, crc);
    if (answered)
        *answered = ok;
    return ChecksumNumber(crc);
}

namespace {

// Readings of an area's checksum after a download: the first two that agree are taken. A
// damaged answer stored as the area's checksum would make the next reconciliation erase the
// whole area, with every logo or message stored before; one confirming reading prevents that.
constexpr int kChecksumReadings = 4;

std::uint32_t ConfirmedChecksum(const StoreTarget& t,
                                std::uint32_t (*query)(const StoreTarget&, bool*)) {
    std::optional<std::uint32_t> previous;
    for (int i = 0; i < kChecksumReadings; ++i) {
        bool answered = false;
        const std::uint32_t crc = query(t, &answered);
        if (answered && previous == crc)
            return crc;
        previous = answered ? std::optional(crc) : std::nullopt;
    }
    DrvTrace(u"ConfirmedChecksum - no two readings agree, none stored\n");
    return 0;
}

}  // namespace

bool EraseLogos(const StoreTarget& t) {
    return channel::OutEraseFlashArea(t.platform, t.printerName, channel::kAreaLogos);
}

bool EraseMessages(const StoreTarget& t) {
    return channel::OutEraseFlashArea(t.platform, t.printerName, channel::kAreaMessages);
}

bool ConvertAndDownloadLogo(const StoreTarget& t, std::uint8_t number, bool fullWidth,
                            bool scaleToFit, ByteSpan pictureFile) {
    FileSystem& files = t.platform.files;
    const std::u16string path = WriteTempPicture(files, u"ConvertAndDownloadLogo", pictureFile);
    if (path.empty())
        return false;
    auto raster = ConvertPictureToRaster(files, t.pictures, LimitsFor(fullWidth), scaleToFit, path);
    if (!raster) {
        DrvTrace(u"ConvertAndDownloadLogo - ConvertPictureToRaster Failed\n");
        return false;
    }
    if (!fullWidth) {
        // Without the band buffer the rows go as they are.
        try {
            Bytes bands = RegroupToColumnBands(*raster);
            if (!bands.empty())
                raster->bits = std::move(bands);
        } catch (const std::bad_alloc&) {
            DrvTrace(u"ConvertAndDownloadLogo - no memory for the column bands\n");
        }
    }
    if (!DownloadLogo(t, number, raster->width, raster->height, raster->bits))
        return false;
    StoreLogoCrc(t, ConfirmedChecksum(t, QueryLogosCrc));
    return true;
}

bool DownloadMessageAndStoreCrc(const StoreTarget& t, std::uint8_t number,
                                std::u16string_view text) {
    if (!DownloadMessage(t, number, text))
        return false;
    StoreMessageCrc(t, ConfirmedChecksum(t, QueryMessagesCrc));
    return true;
}

bool ReconcileLogos(const StoreTarget& t) {
    bool answered = false;
    const std::uint32_t printer = QueryLogosCrc(t, &answered);
    const std::uint32_t stored = store::GetLogoCRC(t.platform, t.printerName, t.identity);
    if (!((answered && printer != stored) || stored == 0))
        return false;
    EraseLogos(t);
    store::DeleteLogoEntries(t.platform, t.printerName, t.identity);
    return true;
}

bool ReconcileMessages(const StoreTarget& t) {
    bool answered = false;
    const std::uint32_t printer = QueryMessagesCrc(t, &answered);
    const std::uint32_t stored = store::GetMessageCRC(t.platform, t.printerName, t.identity);
    if (!((answered && printer != stored) || stored == 0))
        return false;
    EraseMessages(t);
    store::DeleteMessageEntries(t.platform, t.printerName, t.identity);
    return true;
}

bool RedownloadLogos(const StoreTarget& t) {
    for (const store::LogoRecord& logo :
         store::ReadLogoRecords(t.platform, t.printerName, t.identity)) {
        if (logo.number < 1 || logo.number > 255 ||
            !ConvertAndDownloadLogo(t, static_cast<std::uint8_t>(logo.number), logo.fullWidth != 0,
                                    logo.scaleToFit != 0, logo.picture)) {
            DrvTrace(u"RedownloadLogos - logo %d failed, catalogue cleared\n", logo.number);
            store::DeleteLogoEntries(t.platform, t.printerName, t.identity);
            return false;
        }
    }
    return true;
}

bool RedownloadMessages(const StoreTarget& t) {
    for (const store::MessageRecord& message :
         store::ReadMessageRecords(t.platform, t.printerName, t.identity)) {
        if (message.number < 1 || message.number > 255 ||
            !DownloadMessageAndStoreCrc(t, static_cast<std::uint8_t>(message.number),
                                        message.text)) {
            DrvTrace(u"RedownloadMessages - message %d failed, catalogue cleared\n",
                     message.number);
            store::DeleteMessageEntries(t.platform, t.printerName, t.identity);
            return false;
        }
    }
    return true;
}

void BroadcastLogosChanged(UserPrompts& prompts, WindowId sender) {
    prompts.Broadcast(RefreshMessage::Logos, sender);
}

void BroadcastMessagesChanged(UserPrompts& prompts, WindowId sender) {
    prompts.Broadcast(RefreshMessage::Messages, sender);
}

}  // namespace kx20::logos
