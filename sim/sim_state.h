// The simulated KX20 printer's state: identity, setup and configuration, the flash areas with
// what has been downloaded into them, counters, and a log of everything the printer received.
//
// The simulator is an independent printer written from the byte tables of the command and data
// blocks, not from the driver's encoders, so that a round trip through it checks both sides.
//
// Flash areas and what the printer keeps in them:
//   1  logos, by slot 1..40 (width in bytes, height in 8-dot units, raster)
//   2  messages, by slot 1..25 (8-bit text)
//   3  single-byte impact characters (station 0x05), by code
//   4  single-byte thermal characters (station 0x01), by code
//   6  double-byte thermal characters (station 0x00), by lead byte * 256 + second byte
//   7  double-byte impact characters (station 0x01), likewise
// Areas 1 to 4 exist on every model; area 6 on models 2, 7 and 9; area 7 on models 2 and 9
// (model 7 has no impact double-byte font).
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/bytes.h"

namespace kx20::sim {

// The command start marker that opens every command inside a data block.
inline constexpr std::array<std::uint8_t, 15> kStart = {
    0x43, 0x01, 0x4D, 0x01, 0x44, 0x01, 0x53, 0x01, 0x74, 0x01, 0x61, 0x01, 0x72, 0x01, 0x74};

inline constexpr std::uint8_t kAreaLogos = 1;
inline constexpr std::uint8_t kAreaMessages = 2;
inline constexpr std::uint8_t kAreaSbcsImpact = 3;
inline constexpr std::uint8_t kAreaSbcsThermal = 4;
inline constexpr std::uint8_t kAreaDbcsThermal = 6;
inline constexpr std::uint8_t kAreaDbcsImpact = 7;
inline constexpr std::array<std::uint8_t, 6> kAreas = {1, 2, 3, 4, 6, 7};

inline constexpr int kLogoSlots = 40;
inline constexpr int kMessageSlots = 25;
inline constexpr std::size_t kDbcsThermalGlyph = 72;  // 24 x 24 dots
inline constexpr std::size_t kDbcsImpactGlyph = 32;   // 16 x 16 dots

// Results of the command entry and of a job: 0 is success; the failures use system error
// codes so that a trace of them reads naturally.
inline constexpr std::uint32_t kOk = 0;
inline constexpr std::uint32_t kErrInvalidData = 13;       // broken framing in a job
inline constexpr std::uint32_t kErrWriteProtect = 19;      // flash write-protected
inline constexpr std::uint32_t kErrNotReady = 21;          // printer not connected
inline constexpr std::uint32_t kErrNotSupported = 50;      // area or command not on this model
inline constexpr std::uint32_t kErrInvalidParameter = 87;  // unknown class, wrong length
inline constexpr std::uint32_t kErrInvalidName = 123;      // no printer on that port

// Setup byte 2 bits that write-protect the flash.
inline constexpr std::uint8_t kWriteProtectBits = 0xC0;

struct Logo {
    std::uint8_t widthBytes = 0;  // width / 8
    std::uint8_t height8 = 0;     // height / 8
    Bytes raster;                 // widthBytes * height8 * 8 bytes
};

struct SbcsGlyph {
    std::uint8_t width = 0;  // dots, from the size header that preceded the character
    std::uint8_t height = 0;
    Bytes bits;
};

struct Flash {
    std::map<std::uint8_t, Logo> logos;             // area 1
    std::map<std::uint8_t, Bytes> messages;         // area 2
    std::map<std::uint8_t, SbcsGlyph> sbcsImpact;   // area 3
    std::map<std::uint8_t, SbcsGlyph> sbcsThermal;  // area 4
    std::map<std::uint16_t, Bytes> dbcsThermal;     // area 6
    std::map<std::uint16_t, Bytes> dbcsImpact;      // area 7
};

// What the port's ConnectionStatus value shows: the full record, a record marked invalid
// (byte 0 = 0), or no value at all.
enum class Publication : std::uint8_t { Valid = 0, Invalid = 1, Removed = 2 };

enum class LogKind : std::uint8_t { Command = 1, Job = 2, Control = 3, State = 4 };

struct LogRecord {
    std::uint32_t sequence = 0;
    LogKind kind = LogKind::State;
    bool rejected = false;
    std::u16string text;
};

// The log keeps the newest records only, so that a long session's state file stays small.
inline constexpr std::size_t kLogCapacity = 1000;

struct PrinterState {
    std::u16string portName;
    std::uint8_t modelCode = 9;
    std::uint8_t firmwareLevel = 0x40;
    std::array<std::uint8_t, 8> identity = {'K', 'X', '2', '0', 'S', 'I', 'M', '1'};  // ANSI
    bool connected = true;
    bool serialPort = false;  // published as the port's TYPE
    Publication publication = Publication::Valid;

    std::array<std::uint8_t, 2> setup = {0xFE, 0x3F};
    // A setup written through the command entry takes effect with the following commit
    // command (0x05 / 0x06); until then reads answer the old setup.
    std::optional<std::array<std::uint8_t, 2>> stagedSetup;
    std::uint8_t status = 0;
    std::map<std::uint8_t, std::uint16_t> config;  // configuration table entries
    // Setting commands received in jobs (0x16 p1 p2 p3), the latest by p1; the printer setup
    // (p1 0x10) is kept in `setup` instead.
    std::map<std::uint8_t, std::pair<std::uint8_t, std::uint8_t>> settings;
    Flash flash;

    std::uint32_t commands = 0;
    std::uint32_t jobs = 0;
    std::uint32_t rejections = 0;
    std::uint32_t resets = 0;
    std::uint8_t lastResetCommand = 0;
    std::uint32_t lastResetParameter = 0;
    std::uint32_t maintenanceCommands = 0;
    std::uint32_t firmwareUpdates = 0;
    std::uint32_t firmwareImageSize = 0;
    std::uint32_t firmwareImageCrc = 0;

    std::vector<LogRecord> log;
    std::uint32_t nextSequence = 1;
};

// A printer as it leaves the factory, on the given port: model 9, firmware 0x40, connected,
// not serial, flash writable, empty flash, a configuration table that reports double-byte
// readiness.
PrinterState FreshPrinter(std::u16string_view portName);

// Whether the model has the flash area.
bool HasArea(std::uint8_t modelCode, std::uint8_t area);
bool IsAreaEmpty(const Flash& flash, std::uint8_t area);
// The area's content in a canonical byte form (items in slot or code order).
Bytes AreaContent(const Flash& flash, std::uint8_t area);
// CRC-32 of the area number and its canonical content; 0 when the area is empty. A non-empty
// area never answers 0 (the driver reads 0 as "nothing stored").
std::uint32_t AreaChecksum(const Flash& flash, std::uint8_t area);
// The checksum as the printer answers it: 4 bytes, least significant first.
std::array<std::uint8_t, 4> AreaChecksumBytes(const Flash& flash, std::uint8_t area);
void EraseArea(Flash& flash, std::uint8_t area);

bool FlashWritable(const PrinterState& state);
std::u16string IdentityText(const PrinterState& state);

// Appends a log record (dropping the oldest past the capacity); a rejected record also counts
// in `rejections`.
void AddLog(PrinterState& state, LogKind kind, bool rejected, std::u16string text);

// Hexadecimal bytes separated by blanks ("19 01"), at most `max` of them, then "...".
std::u16string HexBytes(ByteSpan data, std::size_t max = 8);

// A readable account of the whole state and the log, for tools, tests and the demo.
std::u16string Describe(const PrinterState& state);

}  // namespace kx20::sim
