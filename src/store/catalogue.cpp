#include "store/catalogue.h"

#include <algorithm>
#include <array>

#include "platform/trace.h"
#include "platform/format.h"
#include "platform/text.h"
#include "store/registry_layout.h"

namespace kx20::store {

namespace {

constexpr std::size_t kIdentityChars = 9;  // 8 characters and a terminator
constexpr std::size_t kLogoIdentityOffset = 12;
constexpr std::size_t kLogoLengthOffset = 30;
constexpr std::size_t kMessageTextOffset = 4;
constexpr std::size_t kMessageIdentityOffset = 514;

std::u16string NumberedName(std::u16string_view id, std::u16string_view tag, std::uint32_t number) {
    return std::u16string(id) + std::u16string(tag) + Format(u"%ld", number);
}

std::u16string TaggedName(std::u16string_view id, std::u16string_view tag) {
    return std::u16string(id) + std::u16string(tag);
}

// The identity of the printer attached to the port now, when its status is available and its
// firmware level allows the catalogue lookups.
bool AttachedIdentity(Platform& p, std::u16string_view printerName, std::u16string& id) {
    ConnectionStatus status;
    if (!GetConnectionStatus(p, PrinterPortName(p, printerName), status))
        return false;
    if (status.firmwareLevel == 0)
        return false;
    id = status.identity;
    return true;
}

// The attached printer's identity and the catalogue key `open` opens for it; null when the
// printer has no identity now or the key cannot be opened.
std::unique_ptr<RegistryKey> OpenAttachedKey(
    Platform& p, std::u16string_view printerName,
    std::unique_ptr<RegistryKey> (*open)(Platform&, std::u16string_view), std::u16string& id) {
    if (!AttachedIdentity(p, printerName, id))
        return nullptr;
    return open(p, printerName);
}

// Calls `visit` with each readable value name of the key in index order until it answers true.
template <class Visit>
void ForEachValueName(RegistryKey& key, Visit visit) {
    std::u16string name;
    for (std::uint32_t index = 0;; ++index) {
        long rc = key.EnumValue(index, name);
        if (rc == kRegMoreData)
            continue;  // longer than any name the catalogue writes
        if (rc != kRegOk)
            return;
        if (visit(name))
            return;
    }
}

std::uint32_t ReadChecksum(std::unique_ptr<RegistryKey> key, const std::u16string& name) {
    if (!key)
        return 0;
    std::array<std::uint8_t, 4> buf{};
    std::uint32_t size = 4;
    if (key->QueryValue(name, nullptr, buf.data(), &size) != kRegOk)
        return 0;
    return ReadU32(buf, 0);
}

bool WriteChecksum(std::unique_ptr<RegistryKey> key, const std::u16string& name,
                   std::uint32_t crc) {
    return key && WriteDwordValue(*key, name, crc) == kRegOk;
}

bool WriteBinary(std::unique_ptr<RegistryKey> key, const std::u16string& name, ByteSpan data) {
    return key && key->SetValue(name, kRegBinary, data) == kRegOk;
}

int DeleteWhere(std::unique_ptr<RegistryKey> key,
                const std::function<bool(std::u16string_view)>& match) {
    return key ? DeleteValuesWhere(*key, match) : 0;
}

// A single-byte font value read whole, but only when it is larger than the probe buffer: the
// first read goes into kSbcsFontProbeSize bytes and only a value that does not fit is read
// again at its own size.
std::optional<Bytes> ReadLargeFontValue(RegistryKey& key, std::u16string_view name) {
    Bytes buf(kSbcsFontProbeSize);
    std::uint32_t size = static_cast<std::uint32_t>(buf.size());
    if (key.QueryValue(name, nullptr, buf.data(), &size) != kRegMoreData)
        return std::nullopt;
    buf.assign(size, 0);
    if (key.QueryValue(name, nullptr, buf.data(), &size) != kRegOk)
        return std::nullopt;
    buf.resize(std::min<std::size_t>(size, buf.size()));
    return buf;
}

std::u16string FaceNameOf(ByteSpan record) {
    return ReadUtf16Field(record, kFontFaceNameOffset, record.size() / 2);
}

int CompareSign(std::u16string_view a, std::u16string_view b) {
    int c = a.compare(b);
    return c < 0 ? -1 : (c > 0 ? 1 : 0);
}

}  // namespace

std::u16string LogoValueName(std::u16string_view id, std::uint32_t number) {
    return NumberedName(id, kLogoTag, number);
}
std::u16string MessageValueName(std::u16string_view id, std::uint32_t number) {
    return NumberedName(id, kMessageTag, number);
}
std::u16string SbcsFontValueName(std::u16string_view id, std::uint32_t number) {
    return NumberedName(id, kSbcsFontTag, number);
}
std::u16string DbcsFontValueName(std::u16string_view id, bool thermal) {
    return TaggedName(id, kDbcsFontTag) + (thermal ? u"1" : u"0");
}
std::u16string AreaCrcValueName(std::u16string_view id) {
    return TaggedName(id, kAreaCrcTag);
}
std::u16string SbcsCrcValueName(std::u16string_view id) {
    return TaggedName(id, kSbcsCrcTag);
}
std::u16string DbcsCrcValueName(std::u16string_view id, bool thermal) {
    return TaggedName(id, thermal ? kDbcsThermalCrcTag : kDbcsImpactCrcTag);
}

Bytes BuildLogoRecord(std::uint32_t number, std::uint32_t fullWidth, std::uint32_t scaleToFit,
                      ByteSpan picture, std::u16string_view id) {
    // The two filler bytes after the picture are written as zeros.
    Bytes out(picture.size() + kLogoRecordOverhead, 0);
    WriteU32(out, 0, number);
    WriteU32(out, 4, fullWidth);
    WriteU32(out, 8, scaleToFit);
    WriteUtf16Field(out, kLogoIdentityOffset, kIdentityChars, id);
    WriteU32(out, kLogoLengthOffset, static_cast<std::uint32_t>(picture.size()));
    std::copy(picture.begin(), picture.end(), out.begin() + kLogoPictureOffset);
    return out;
}

bool ParseLogoRecord(ByteSpan record, LogoRecord& out) {
    if (record.size() < kLogoPictureOffset)
        return false;
    const std::uint32_t length = ReadU32(record, kLogoLengthOffset);
    if (!FitsIn(record.size(), kLogoPictureOffset, length))
        return false;
    out.number = ReadU32(record, 0);
    out.fullWidth = ReadU32(record, 4);
    out.scaleToFit = ReadU32(record, 8);
    out.identity = ReadUtf16Field(record, kLogoIdentityOffset, kIdentityChars);
    auto picture = record.subspan(kLogoPictureOffset, length);
    out.picture.assign(picture.begin(), picture.end());
    return true;
}

Bytes BuildMessageRecord(std::uint32_t number, std::u16string_view text, std::u16string_view id) {
    Bytes out(kMessageRecordSize, 0);
    WriteU32(out, 0, number);
    WriteUtf16Field(out, kMessageTextOffset, kMessageTextChars, text);
    WriteUtf16Field(out, kMessageIdentityOffset, kIdentityChars, id);
    return out;
}

bool ParseMessageRecord(ByteSpan record, MessageRecord& out) {
    if (record.size() < 4)
        return false;
    out.number = ReadU32(record, 0);
    out.text = ReadUtf16Field(record, kMessageTextOffset, kMessageTextChars);
    out.identity = ReadUtf16Field(record, kMessageIdentityOffset, kIdentityChars);
    return true;
}

std::uint32_t GetLogoCRC(Platform& p, std::u16string_view printerName, std::u16string_view id) {
    return ReadChecksum(OpenLogosKey(p, printerName), AreaCrcValueName(id));
}
std::uint32_t GetMessageCRC(Platform& p, std::u16string_view printerName, std::u16string_view id) {
    return ReadChecksum(OpenMessagesKey(p, printerName), AreaCrcValueName(id));
}
std::uint32_t GetSBCSFontCRC(Platform& p, std::u16string_view printerName, std::u16string_view id) {
    return ReadChecksum(OpenFontsKey(p, printerName), SbcsCrcValueName(id));
}
std::uint32_t GetDBCSFontCRC(Platform& p, std::u16string_view printerName, std::u16string_view id,
                             bool thermal) {
    return ReadChecksum(OpenFontsKey(p, printerName), DbcsCrcValueName(id, thermal));
}

bool SetLogoCRC(Platform& p, std::u16string_view printerName, std::u16string_view id,
                std::uint32_t crc) {
    return WriteChecksum(OpenLogosKey(p, printerName), AreaCrcValueName(id), crc);
}
bool SetMessageCRC(Platform& p, std::u16string_view printerName, std::u16string_view id,
                   std::uint32_t crc) {
    return WriteChecksum(OpenMessagesKey(p, printerName), AreaCrcValueName(id), crc);
}
bool SetSBCSFontCRC(Platform& p, std::u16string_view printerName, std::u16string_view id,
                    std::uint32_t crc) {
    return WriteChecksum(OpenFontsKey(p, printerName), SbcsCrcValueName(id), crc);
}
bool SetDBCSFontCRC(Platform& p, std::u16string_view printerName, std::u16string_view id,
                    std::uint32_t crc, bool thermal) {
    return WriteChecksum(OpenFontsKey(p, printerName), DbcsCrcValueName(id, thermal), crc);
}

bool RegisterLogo(Platform& p, std::uint32_t number, std::uint32_t fullWidth,
                  std::uint32_t scaleToFit, std::uint32_t length, ByteSpan picture,
                  std::u16string_view id, std::u16string_view printerName) {
    if (length > picture.size())
        return false;
    const Bytes record = BuildLogoRecord(number, fullWidth, scaleToFit, picture.first(length), id);
    return WriteBinary(OpenLogosKey(p, printerName), LogoValueName(id, number), record);
}

bool RegisterMessage(Platform& p, std::uint32_t number, std::u16string_view text,
                     std::u16string_view id, std::u16string_view printerName) {
    const Bytes record = BuildMessageRecord(number, text, id);
    return WriteBinary(OpenMessagesKey(p, printerName), MessageValueName(id, number), record);
}

bool RegisterSBCSFont(Platform& p, std::uint32_t number, std::uint32_t length, ByteSpan data,
                      std::u16string_view id, std::u16string_view printerName) {
    if (length > data.size())
        return false;
    return WriteBinary(OpenFontsKey(p, printerName), SbcsFontValueName(id, number),
                       data.first(length));
}

bool RegisterDBCSFont(Platform& p, bool thermal, ByteSpan data, std::u16string_view id,
                      std::u16string_view printerName) {
    return WriteBinary(OpenFontsKey(p, printerName), DbcsFontValueName(id, thermal), data);
}

std::uint32_t GetSBCSFontSlot(Platform& p, std::u16string_view printerName,
                              std::u16string_view faceName) {
    DrvTrace(u"-> GetSBCSFontSlot\n");
    std::u16string id;
    if (!AttachedIdentity(p, printerName, id)) {
        DrvTrace(u"<- GetSBCSFontSlot\n");
        return 0;
    }
    auto key = OpenFontsKey(p, printerName);
    if (!key)
        return 0;
    std::optional<std::uint32_t> position;
    ForEachValueName(*key, [&](const std::u16string& name) {
        if (!Contains(name, id) || !Contains(name, kSbcsFontTag))
            return false;
        auto record = ReadLargeFontValue(*key, name);
        if (!record)
            return false;
        const std::uint32_t nPosition = ReadU32(*record, 0);
        const int order = CompareSign(FaceNameOf(*record), faceName);
        DrvTrace(u"NT: GetSBCSFontSlot - lpRegFont->nPosition: 0x%08x\n", nPosition);
        DrvTrace(u"NT: GetSBCSFontSlot - lstrcmp: %d\n", order);
        if (order != 0)
            return false;
        position = nPosition;
        return true;
    });
    if (!position)
        return 0;
    // Positions 1 and 2 are the two capture slots, which the printer numbers 1 and 3.
    const std::uint32_t slot = *position == 2 ? 3 : *position;
    DrvTrace(u"<- GetSBCSFontSlot\n");
    return slot;
}

bool GetDBCSFontName(Platform& p, std::u16string_view printerName, bool thermal,
                     std::u16string& name) {
    std::u16string id;
    auto key = OpenAttachedKey(p, printerName, OpenFontsKey, id);
    if (!key)
        return false;
    const std::u16string tag = TaggedName(u"", kDbcsFontTag) + (thermal ? u"1" : u"0");
    bool found = false;
    ForEachValueName(*key, [&](const std::u16string& valueName) {
        if (!Contains(valueName, id) || !Contains(valueName, tag))
            return false;
        // The first matching value decides, readable or not.
        if (auto record = ReadValueBytes(*key, valueName)) {
            name = FaceNameOf(*record);
            found = true;
        }
        return true;
    });
    return found;
}

bool GetSBCSFontName(Platform& p, std::u16string_view printerName, std::uint32_t number,
                     std::u16string& name) {
    std::u16string id;
    auto key = OpenAttachedKey(p, printerName, OpenFontsKey, id);
    if (!key)
        return false;
    auto record = ReadValueBytes(*key, SbcsFontValueName(id, number));
    if (!record)
        return false;
    name = FaceNameOf(*record);
    return true;
}

bool GetDownloadedSBCSFontName(Platform& p, std::u16string_view printerName, std::u16string& name) {
    std::u16string id;
    auto key = OpenAttachedKey(p, printerName, OpenFontsKey, id);
    if (!key)
        return false;
    bool found = false;
    ForEachValueName(*key, [&](const std::u16string& valueName) {
        if (!Contains(valueName, id) || !Contains(valueName, kSbcsFontTag))
            return false;
        auto record = ReadLargeFontValue(*key, valueName);
        if (!record)
            return false;
        name = FaceNameOf(*record);
        found = true;
        return true;
    });
    return found;
}

bool GetMessageText(Platform& p, std::u16string_view printerName, std::uint32_t number,
                    std::u16string& text) {
    std::u16string id;
    auto key = OpenAttachedKey(p, printerName, OpenMessagesKey, id);
    if (!key)
        return false;
    bool found = false;
    ForEachValueName(*key, [&](const std::u16string& name) {
        if (!Contains(name, id) || !Contains(name, kMessageTag))
            return false;
        // A message record never fits in two bytes; a value that does is no message.
        std::uint8_t probe[2];
        std::uint32_t size = sizeof probe;
        if (key->QueryValue(name, nullptr, probe, &size) != kRegMoreData)
            return false;
        MessageRecord record;
        auto bytes = ReadValueBytes(*key, name);
        if (!bytes || !ParseMessageRecord(*bytes, record) || record.number != number)
            return false;
        text = record.text;
        found = true;
        return true;
    });
    return found;
}

namespace {

// Every record of the identity `id` in a catalogue key whose value names carry `tag`, in
// enumeration order; values that do not parse are passed over.
template <class Record>
std::vector<Record> ReadRecords(std::unique_ptr<RegistryKey> key, std::u16string_view id,
                                std::u16string_view tag, bool (*parse)(ByteSpan, Record&)) {
    std::vector<Record> out;
    if (!key)
        return out;
    ForEachValueName(*key, [&](const std::u16string& name) {
        Record record;
        if (Contains(name, id) && Contains(name, tag)) {
            auto bytes = ReadValueBytes(*key, name);
            if (bytes && parse(*bytes, record))
                out.push_back(std::move(record));
        }
        return false;
    });
    return out;
}

}  // namespace

std::vector<LogoRecord> ReadLogoRecords(Platform& p, std::u16string_view printerName,
                                        std::u16string_view id) {
    return ReadRecords<LogoRecord>(OpenLogosKey(p, printerName), id, kLogoTag, ParseLogoRecord);
}

std::vector<MessageRecord> ReadMessageRecords(Platform& p, std::u16string_view printerName,
                                              std::u16string_view id) {
    return ReadRecords<MessageRecord>(OpenMessagesKey(p, printerName), id, kMessageTag,
                                      ParseMessageRecord);
}

std::vector<Bytes> ReadLogoValues(Platform& p, std::u16string_view printerName,
                                  std::u16string_view id) {
    std::vector<Bytes> out;
    auto key = OpenLogosKey(p, printerName);
    if (!key)
        return out;
    ForEachValueName(*key, [&](const std::u16string& name) {
        if (Contains(name, id) && Contains(name, kLogoTag)) {
            if (auto bytes = ReadValueBytes(*key, name))
                out.push_back(std::move(*bytes));
        }
        return false;
    });
    return out;
}

int DeleteLogoEntries(Platform& p, std::u16string_view printerName, std::u16string_view text) {
    return DeleteWhere(OpenLogosKey(p, printerName),
                       [&](std::u16string_view name) { return Contains(name, text); });
}

int DeleteMessageEntries(Platform& p, std::u16string_view printerName, std::u16string_view text) {
    return DeleteWhere(OpenMessagesKey(p, printerName),
                       [&](std::u16string_view name) { return Contains(name, text); });
}

int DeleteSBCSFontEntries(Platform& p, std::u16string_view printerName, std::u16string_view text) {
    return DeleteWhere(OpenFontsKey(p, printerName), [&](std::u16string_view name) {
        return Contains(name, text) &&
               (Contains(name, kSbcsFontTag) || Contains(name, kSbcsCrcTag));
    });
}

int DeleteDBCSFontEntries(Platform& p, std::u16string_view printerName, std::u16string_view text) {
    return DeleteWhere(OpenFontsKey(p, printerName), [&](std::u16string_view name) {
        return Contains(name, text) &&
               (Contains(name, kDbcsFontTag) || Contains(name, kDbcsThermalCrcTag) ||
                Contains(name, kDbcsImpactCrcTag));
    });
}

}  // namespace kx20::store
