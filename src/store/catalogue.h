// The catalogue of what the driver has put into the printer's flash memory: logos, messages
// and downloaded fonts, each area with its last checksum, kept as values in the Logos,
// Messages and Fonts keys under the printer's port key. Every value name begins with the
// identity string of the printer that holds the item, so several printers attached to one port
// in turn keep separate catalogues in the same keys.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/platform.h"

namespace kx20::store {

// Value names. Numbers are decimal without padding.
std::u16string LogoValueName(std::u16string_view id, std::uint32_t number);
std::u16string MessageValueName(std::u16string_view id, std::uint32_t number);
std::u16string SbcsFontValueName(std::u16string_view id, std::uint32_t number);
std::u16string DbcsFontValueName(std::u16string_view id, bool thermal);
std::u16string AreaCrcValueName(std::u16string_view id);  // Logos and Messages keys: "_crc"
std::u16string SbcsCrcValueName(std::u16string_view id);
std::u16string DbcsCrcValueName(std::u16string_view id, bool thermal);

inline constexpr std::u16string_view kLogoTag = u"_logo";
inline constexpr std::u16string_view kMessageTag = u"_msg";
inline constexpr std::u16string_view kAreaCrcTag = u"_crc";
inline constexpr std::u16string_view kSbcsFontTag = u"_sbcsfont";
inline constexpr std::u16string_view kSbcsCrcTag = u"_sbcscrc";
inline constexpr std::u16string_view kDbcsFontTag = u"_dbcsfont";
inline constexpr std::u16string_view kDbcsThermalCrcTag = u"_dbcscrcrc";  // doubled on purpose
inline constexpr std::u16string_view kDbcsImpactCrcTag = u"_dbcsdoccrc";

// Logo record: number, fullWidth, scaleToFit, the identity in 9 wide characters, the picture
// file's length and bytes, then two filler bytes.
inline constexpr std::size_t kLogoPictureOffset = 34;
inline constexpr std::size_t kLogoRecordOverhead = 36;
// Message record: number, 255 wide characters of text (254 and a terminator), the identity.
inline constexpr std::size_t kMessageRecordSize = 532;
inline constexpr std::size_t kMessageTextChars = 255;
// Font records carry their position first and their face name from byte 22 on.
inline constexpr std::size_t kFontFaceNameOffset = 22;
// Every single-byte font record is larger than this; smaller values are not font records.
inline constexpr std::size_t kSbcsFontProbeSize = 628;

struct LogoRecord {
    std::uint32_t number = 0;
    std::uint32_t fullWidth = 0;
    std::uint32_t scaleToFit = 0;
    std::u16string identity;
    Bytes picture;  // the picture file's own bytes
};

struct MessageRecord {
    std::uint32_t number = 0;
    std::u16string text;
    std::u16string identity;
};

Bytes BuildLogoRecord(std::uint32_t number, std::uint32_t fullWidth, std::uint32_t scaleToFit,
                      ByteSpan picture, std::u16string_view id);
// False when the record is too short for its header or its stated picture length.
bool ParseLogoRecord(ByteSpan record, LogoRecord& out);
Bytes BuildMessageRecord(std::uint32_t number, std::u16string_view text, std::u16string_view id);
// False when the record is too short to hold its number; text and identity are read only as
// far as the record goes.
bool ParseMessageRecord(ByteSpan record, MessageRecord& out);

// Area checksums: 0 when missing or unreadable.
std::uint32_t GetLogoCRC(Platform& p, std::u16string_view printerName, std::u16string_view id);
std::uint32_t GetMessageCRC(Platform& p, std::u16string_view printerName, std::u16string_view id);
std::uint32_t GetSBCSFontCRC(Platform& p, std::u16string_view printerName, std::u16string_view id);
std::uint32_t GetDBCSFontCRC(Platform& p, std::u16string_view printerName, std::u16string_view id,
                             bool thermal);
bool SetLogoCRC(Platform& p, std::u16string_view printerName, std::u16string_view id,
                std::uint32_t crc);
bool SetMessageCRC(Platform& p, std::u16string_view printerName, std::u16string_view id,
                   std::uint32_t crc);
bool SetSBCSFontCRC(Platform& p, std::u16string_view printerName, std::u16string_view id,
                    std::uint32_t crc);
bool SetDBCSFontCRC(Platform& p, std::u16string_view printerName, std::u16string_view id,
                    std::uint32_t crc, bool thermal);

// Registration: one value each; true when the store accepted the write. `length` bytes of
// `data` are stored; a length beyond the data given is refused.
bool RegisterLogo(Platform& p, std::uint32_t number, std::uint32_t fullWidth,
                  std::uint32_t scaleToFit, std::uint32_t length, ByteSpan picture,
                  std::u16string_view id, std::u16string_view printerName);
bool RegisterMessage(Platform& p, std::uint32_t number, std::u16string_view text,
                     std::u16string_view id, std::u16string_view printerName);
bool RegisterSBCSFont(Platform& p, std::uint32_t number, std::uint32_t length, ByteSpan data,
                      std::u16string_view id, std::u16string_view printerName);
bool RegisterDBCSFont(Platform& p, bool thermal, ByteSpan data, std::u16string_view id,
                      std::u16string_view printerName);

// Lookups for the printer now attached to the port (identity from its connection status);
// each needs the status and a non-zero firmware level.
// The slot of the downloaded single-byte font with this face name, or 0.
std::uint32_t GetSBCSFontSlot(Platform& p, std::u16string_view printerName,
                              std::u16string_view faceName);
// The face name of the station's double-byte font; `name` is left as it was when none is
// registered.
bool GetDBCSFontName(Platform& p, std::u16string_view printerName, bool thermal,
                     std::u16string& name);
// The face name of the single-byte font registered under `number` (its "_sbcsfont" value);
// `name` is left as it was when there is none.
bool GetSBCSFontName(Platform& p, std::u16string_view printerName, std::uint32_t number,
                     std::u16string& name);
// The face name of the attached printer's first downloaded single-byte font (the first
// "_sbcsfont" record large enough to be one, in enumeration order); `name` is left as it was
// when none is registered.
bool GetDownloadedSBCSFontName(Platform& p, std::u16string_view printerName, std::u16string& name);
bool GetMessageText(Platform& p, std::u16string_view printerName, std::uint32_t number,
                    std::u16string& text);

// The well-formed logo and message records whose value names hold `id` and the kind's tag, in
// enumeration order.
std::vector<LogoRecord> ReadLogoRecords(Platform& p, std::u16string_view printerName,
                                        std::u16string_view id);
std::vector<MessageRecord> ReadMessageRecords(Platform& p, std::u16string_view printerName,
                                              std::u16string_view id);

// The logo values of `id` as they are stored, in enumeration order, whether they parse or not.
std::vector<Bytes> ReadLogoValues(Platform& p, std::u16string_view printerName,
                                  std::u16string_view id);

// Remove every value whose name contains `text` (for the font keys, only values that also
// carry one of the kind's tags). Called with an identity, they clear that printer's catalogue
// of the kind. Answer the number of values deleted.
int DeleteLogoEntries(Platform& p, std::u16string_view printerName, std::u16string_view text);
int DeleteMessageEntries(Platform& p, std::u16string_view printerName, std::u16string_view text);
int DeleteSBCSFontEntries(Platform& p, std::u16string_view printerName, std::u16string_view text);
int DeleteDBCSFontEntries(Platform& p, std::u16string_view printerName, std::u16string_view text);

}  // namespace kx20::store
