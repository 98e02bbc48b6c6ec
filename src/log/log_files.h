// The user-visible log files: four per-printer logs switched by the printer's `LogSettings`
// and kept in its `LogPath` folder, each restarted once it reaches its wrap size after its
// content has been moved to a numbered archive; and one machine-wide log of unattended
// installation steps. Plain 8-bit text with CR LF line ends. Every failure is silent: a log
// that cannot be resolved is off, a file that cannot be opened loses the line.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "platform/platform.h"

namespace kx20::logs {

// `LogSettings` bits.
inline constexpr std::uint32_t kApiLogBit = 0x01;
inline constexpr std::uint32_t kPrintingLogBit = 0x02;
inline constexpr std::uint32_t kPortIOLogBit = 0x04;
inline constexpr std::uint32_t kRestoreCfgLogBit = 0x08;
inline constexpr std::uint32_t kLoggingOnBit = 0x10;  // master switch

// `LogWrapSize` in kilobytes of 1024 bytes.
inline constexpr std::uint32_t kMinWrapSizeKb = 1024;
inline constexpr std::uint32_t kMaxWrapSizeKb = 10240;
inline constexpr std::uint32_t kDefaultWrapSizeKb = 5120;

// Time stamp and text of one line together.
inline constexpr std::size_t kLogLineBytes = 259;
// The caller's buffer of an unattended-install line, the appended line end included.
inline constexpr std::size_t kUnattendedTextBytes = 64;

inline constexpr std::u16string_view kApiLogName = u"\\KX20API.log";
inline constexpr std::u16string_view kPrintingLogName = u"\\KX20Printing.log";
inline constexpr std::u16string_view kPortIOLogName = u"\\KX20PortIO.log";
inline constexpr std::u16string_view kRestoreCfgLogName = u"\\KX20RestoreCfg.log";
inline constexpr std::u16string_view kUnattendedLogName = u"\\KX20UnatInstCfg.log";

// The drive of the Windows folder (its first two characters) + "\KX20NWD\Log": the default
// log folder and the unattended-install log's folder.
std::u16string DefaultLogFolder(FileSystem& files);

// A wrap size outside 1024..10240 is used as 5120.
std::uint32_t EffectiveWrapSizeKb(std::uint32_t storedKb);

// Resolvers: true only when the log is to be written, that is when `LogSettings` is readable
// with the master bit and the log's own bit, `LogPath` is readable and not empty, its folder
// exists or could be created (one level), and `LogWrapSize` is readable. Then `path` is the
// folder + the log's file name and `wrapKb` the effective wrap size; both are left untouched
// otherwise.
bool GetAPILogFile(Platform& p, std::u16string_view printerName, std::u16string& path,
                   std::uint32_t& wrapKb);
bool GetPrintingLogFile(Platform& p, std::u16string_view printerName, std::u16string& path,
                        std::uint32_t& wrapKb);
bool GetPortIOLogFile(Platform& p, std::u16string_view printerName, std::u16string& path,
                      std::uint32_t& wrapKb);
bool GetRestoreCfgLogFile(Platform& p, std::u16string_view printerName, std::u16string& path,
                          std::uint32_t& wrapKb);

// "KX20API.log" with archive number 3 is "KX20API3.log": the number goes before the final
// ".log" (any case); a name without it gets the number and ".log" appended.
std::u16string ArchiveName(std::u16string_view logName, std::uint32_t number);

// Appends the time-stamped line (at most 259 bytes with its stamp) and CR LF to the log. When
// the log is not empty and the line would take it to `wrapKb` KB or beyond, the log's content
// and as much of the line as still fits go to the lowest free archive number, and the rest of
// the line starts the log afresh. The log is held open sharing only reading, so a second
// writer at the same moment fails to open it and loses its line.
void WriteLogLine(FileSystem& files, Clock& clock, std::u16string_view fileName,
                  std::string_view text, std::uint32_t wrapKb, bool flush);

// Appends a line to "KX20UnatInstCfg.log" in DefaultLogFolder (created, one level). `text` is
// the caller's buffer holding a zero-terminated text; the line end is appended into it, within
// its first 64 bytes and its size. A new section starts with a blank line unless the log is
// empty.
void WriteUnattendedInstallLog(FileSystem& files, Clock& clock, std::span<char> text,
                               bool newSection);

}  // namespace kx20::logs
