#include "log/log_files.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "platform/text.h"
#include "store/registry_layout.h"

namespace kx20::logs {

namespace {

constexpr std::u16string_view kLogSuffix = u".log";
constexpr std::uint32_t kLastArchiveNumber = 0x7FFFFFFF;  // the largest "%ld" of the system
constexpr std::size_t kCopyChunk = 64 * 1024;

ByteSpan BytesOf(std::string_view s) {
    return ByteSpan(reinterpret_cast<const std::uint8_t*>(s.data()), s.size());
}

bool WriteText(FileHandle& file, std::string_view s) {
    return file.Write(BytesOf(s));
}

bool ResolveLogFile(Platform& p, std::u16string_view printerName, std::uint32_t ownBit,
                    std::u16string_view fileName, std::u16string& path, std::uint32_t& wrapKb) {
    std::uint32_t settings = 0;
    if (!store::GetLogSettings(p, printerName, settings))
        return false;
    if (!(settings & kLoggingOnBit) || !(settings & ownBit))
        return false;
    std::u16string folder;
    if (!store::GetLogPath(p, printerName, folder) || folder.empty())
        return false;
    if (!p.files.Exists(folder))
        p.files.CreateFolder(folder);
    std::uint32_t storedKb = 0;
    if (!p.files.Exists(folder) || !store::GetLogWrapSize(p, printerName, storedKb))
        return false;
    wrapKb = EffectiveWrapSizeKb(storedKb);
    path = folder + std::u16string(fileName);
    return true;
}

// "%02d/%02d/%d %02d:%02d:%02d - " and the text, cut to 259 bytes.
std::string LogLine(Clock& clock, std::string_view text) {
    const LocalTime t = clock.Now();
    std::array<char, 64> stamp{};
    std::snprintf(stamp.data(), stamp.size(), "%02d/%02d/%d %02d:%02d:%02d - ", t.month, t.day,
                  t.year, t.hour, t.minute, t.second);
    std::string line = stamp.data();
    line.append(text.substr(0, kLogLineBytes - std::min(line.size(), kLogLineBytes)));
    line.resize(std::min(line.size(), kLogLineBytes));
    return line;
}

// Copies `size` bytes from the current position of `from`; true only when all were read and
// written.
bool CopyBytes(FileHandle& from, FileHandle& to, std::uint64_t size) {
    Bytes chunk(static_cast<std::size_t>(std::min<std::uint64_t>(size, kCopyChunk)));
    for (std::uint64_t left = size; left > 0;) {
        const std::size_t want =
            static_cast<std::size_t>(std::min<std::uint64_t>(left, kCopyChunk));
        std::size_t got = 0;
        if (!from.Read(MutableByteSpan(chunk.data(), want), &got) || got != want)
            return false;
        if (!to.Write(ByteSpan(chunk.data(), want)))
            return false;
        left -= want;
    }
    return true;
}

// 0 when every number is taken.
std::uint32_t LowestFreeArchiveNumber(FileSystem& files, std::u16string_view fileName) {
    for (std::uint32_t n = 1; n <= kLastArchiveNumber; ++n) {
        if (!files.Exists(ArchiveName(fileName, n)))
            return n;
    }
    return 0;
}

// Moves the log's `size` bytes and the line's `head` into a new archive. The archive counts as
// made only when all of it arrived; a partial archive is removed again, so that the log stays
// as it was and the archive's number stays free.
bool Archive(FileSystem& files, std::u16string_view fileName, FileHandle& log, std::uint64_t size,
             std::string_view head) {
    const std::uint32_t number = LowestFreeArchiveNumber(files, fileName);
    if (number == 0)
        return false;
    const std::u16string archiveName = ArchiveName(fileName, number);
    bool made = false;
    {
        auto archive = files.Open(archiveName, OpenMode::CreateAlways, ShareMode::Read);
        if (!archive)
            return false;
        if (CopyBytes(log, *archive, size)) {
            archive->Flush();
            made = true;
        }
        if (!head.empty()) {
            made = WriteText(*archive, head) && made;
            archive->Flush();
        }
    }
    if (!made)
        files.Remove(archiveName);
    return made;
}

}  // namespace

std::u16string DefaultLogFolder(FileSystem& files) {
    const std::u16string windows = files.WindowsFolder();
    return windows.substr(0, 2) + u"\\KX20NWD" + u"\\Log";
}

std::uint32_t EffectiveWrapSizeKb(std::uint32_t storedKb) {
    return storedKb < kMinWrapSizeKb || storedKb > kMaxWrapSizeKb ? kDefaultWrapSizeKb : storedKb;
}

bool GetAPILogFile(Platform& p, std::u16string_view printerName, std::u16string& path,
                   std::uint32_t& wrapKb) {
    return ResolveLogFile(p, printerName, kApiLogBit, kApiLogName, path, wrapKb);
}

bool GetPrintingLogFile(Platform& p, std::u16string_view printerName, std::u16string& path,
                        std::uint32_t& wrapKb) {
    return ResolveLogFile(p, printerName, kPrintingLogBit, kPrintingLogName, path, wrapKb);
}

bool GetPortIOLogFile(Platform& p, std::u16string_view printerName, std::u16string& path,
                      std::uint32_t& wrapKb) {
    return ResolveLogFile(p, printerName, kPortIOLogBit, kPortIOLogName, path, wrapKb);
}

bool GetRestoreCfgLogFile(Platform& p, std::u16string_view printerName, std::u16string& path,
                          std::uint32_t& wrapKb) {
    return ResolveLogFile(p, printerName, kRestoreCfgLogBit, kRestoreCfgLogName, path, wrapKb);
}

std::u16string ArchiveName(std::u16string_view logName, std::uint32_t number) {
    const bool hasSuffix =
        logName.size() >= kLogSuffix.size() &&
        EqualsIgnoreCase(logName.substr(logName.size() - kLogSuffix.size()), kLogSuffix);
    const std::u16string_view stem =
        hasSuffix ? logName.substr(0, logName.size() - kLogSuffix.size()) : logName;
    return std::u16string(stem) + DecimalText(number) + std::u16string(kLogSuffix);
}

void WriteLogLine(FileSystem& files, Clock& clock, std::u16string_view fileName,
                  std::string_view text, std::uint32_t wrapKb, bool flush) {
    // 64-bit, so that no wrap size the caller passes can overflow.
    const std::uint64_t wrapBytes = std::uint64_t{wrapKb} * 1024;
    const std::string line = LogLine(clock, text);
    auto log = files.Open(fileName, OpenMode::ReadWriteOrCreate, ShareMode::Read);
    if (!log)
        return;
    // A size that cannot be read is not wrapped: the line is appended unsplit.
    const std::uint64_t size = log->Size().value_or(0);
    std::size_t split = 0;  // line bytes that went to the archive
    bool archived = false;
    if (size != 0 && size + line.size() >= wrapBytes) {
        // K = W - S, 0 when the log is already at or over the wrap size.
        split =
            wrapBytes > size
                ? static_cast<std::size_t>(std::min<std::uint64_t>(wrapBytes - size, line.size()))
                : 0;
        archived = Archive(files, fileName, *log, size, std::string_view(line).substr(0, split));
        if (archived) {
            log.reset();
            files.Remove(fileName);
            log = files.Open(fileName, OpenMode::CreateAlways, ShareMode::Read);
            if (!log)
                return;
        }
    }
    log->SeekToEnd();
    if (archived && split != 0) {
        if (WriteText(*log, std::string_view(line).substr(split)))
            WriteText(*log, "\r\n");
    } else {
        WriteText(*log, line);
        WriteText(*log, "\r\n");
    }
    if (flush)
        log->Flush();
}

void WriteUnattendedInstallLog(FileSystem& files, Clock& clock, std::span<char> text,
                               bool newSection) {
    const std::u16string folder = DefaultLogFolder(files);
    files.CreateFolder(folder);
    auto log = files.Open(folder + std::u16string(kUnattendedLogName), OpenMode::ReadWriteOrCreate,
                          ShareMode::Read);
    if (!log)
        return;
    const bool fresh = log->Size().value_or(1) == 0;
    log->SeekToEnd();
    const LocalTime t = clock.Now();
    std::array<char, 80> stamp{};
    std::snprintf(stamp.data(), stamp.size(),
                  !newSection || fresh ? "%d/%d/%d %d:%d:%d - " : "\r\n\r\n%d/%d/%d %d:%d:%d - ",
                  t.month, t.day, t.year, t.hour, t.minute, t.second);
    WriteText(*log, stamp.data());

    // The line end goes into the caller's buffer, bounded by its first 64 bytes: a text with
    // no terminator there is cut at 63 bytes, and the line end takes what room is left.
    const std::size_t room = std::min(text.size(), kUnattendedTextBytes);
    if (room == 0)
        return;
    std::size_t length =
        static_cast<std::size_t>(std::find(text.begin(), text.begin() + room, '\0') - text.begin());
    if (length == room)
        text[--length] = '\0';
    for (char c : {'\r', '\n'}) {
        if (length + 1 >= room)
            break;
        text[length++] = c;
        text[length] = '\0';
    }
    WriteText(*log, std::string_view(text.data(), length));
}

}  // namespace kx20::logs
