// Logos and messages in the printer's flash memory and in the catalogue: downloads as raw jobs,
// the checksum the printer reports afterwards kept as the port's "_crc" value, erasure of a
// whole area, reconciliation of the catalogue with the printer, and the re-download of what
// remains after a deletion. All answer success flags and show nothing; the pages speak.
#pragma once

#include <cstdint>
#include <string_view>

#include "logos/raster_conversion.h"
#include "platform/pictures.h"
#include "platform/platform.h"
#include "platform/prompts.h"
#include "platform/resources.h"

namespace kx20::logos {

// The printer and what the flows need to reach it.
struct StoreTarget {
    ResourceStrings& strings;
    Platform& platform;
    Pictures& pictures;
    std::u16string_view printerName;
    std::u16string_view identity;  // of the printer attached to the port now
};

// One logo or message sent as a raw job (document names 2270 / 2271 with the number); true
// when the spooler reported it printed. The logo raster must hold width x height / 8 bytes.
bool DownloadLogo(const StoreTarget& t, std::uint8_t number, int width, int height,
                  ByteSpan raster);
bool DownloadMessage(const StoreTarget& t, std::uint8_t number, std::u16string_view text);

// The area checksums kept beside the catalogue; write failures are ignored.
void StoreLogoCrc(const StoreTarget& t, std::uint32_t crc);
void StoreMessageCrc(const StoreTarget& t, std::uint32_t crc);
// The printer's checksum of the area as a number (the 4 reply bytes, least significant first),
// starting from 0. `answered` tells what the query answered.
std::uint32_t QueryLogosCrc(const StoreTarget& t, bool* answered = nullptr);
std::uint32_t QueryMessagesCrc(const StoreTarget& t, bool* answered = nullptr);

bool EraseLogos(const StoreTarget& t);
bool EraseMessages(const StoreTarget& t);

// Writes the picture file's bytes to the temporary file, converts it for the form, regroups
// the narrow form into column bands, downloads it under `number` and, on success, stores the
// printer's new logo checksum.
bool ConvertAndDownloadLogo(const StoreTarget& t, std::uint8_t number, bool fullWidth,
                            bool scaleToFit, ByteSpan pictureFile);
// Downloads a message and, on success, stores the printer's new message checksum.
bool DownloadMessageAndStoreCrc(const StoreTarget& t, std::uint8_t number,
                                std::u16string_view text);

// When the printer's checksum (if it answered) differs from the stored one, or the stored one
// is 0, the catalogue is not trusted: the area is erased and the identity's values deleted.
// True when that happened.
bool ReconcileLogos(const StoreTarget& t);
bool ReconcileMessages(const StoreTarget& t);

// Downloads every logo (message) of the identity again under its stored number (and form). On
// the first failure every value of the identity is deleted and the answer is false.
bool RedownloadLogos(const StoreTarget& t);
bool RedownloadMessages(const StoreTarget& t);

void BroadcastLogosChanged(UserPrompts& prompts, WindowId sender);
void BroadcastMessagesChanged(UserPrompts& prompts, WindowId sender);

}  // namespace kx20::logos
