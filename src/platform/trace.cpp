#include "platform/trace.h"

#include <cstdio>

#include "platform/text.h"

namespace kx20 {

namespace {

struct TraceTarget {
    FileSystem* files = nullptr;
    Clock* clock = nullptr;
    TracePaths paths;
};

TraceTarget& Target() {
    static TraceTarget target;
    return target;
}

// The calling thread's open calls, and whether the outermost one has found the marker absent.
struct CallState {
    int depth = 0;
    bool markerAbsent = false;
};
thread_local CallState tCall;

bool MarkerPresent(TraceTarget& t) {
    if (!t.files || !t.clock)
        return false;
    if (tCall.depth > 0 && tCall.markerAbsent)
        return false;
    const bool present = t.files->Exists(t.paths.marker);
    if (!present && tCall.depth > 0)
        tCall.markerAbsent = true;
    return present;
}

// The output file is written in text mode: every line feed goes to disk as CR LF.
bool WriteText(FileHandle& file, std::string_view text) {
    std::string out;
    out.reserve(text.size() + 16);
    for (char c : text) {
        if (c == '\n')
            out.push_back('\r');
        out.push_back(c);
    }
    return file.Write(ByteSpan(reinterpret_cast<const std::uint8_t*>(out.data()), out.size()));
}

std::string TimeStamp(Clock& clock) {
    LocalTime t = clock.Now();
    char buf[30] = {};
    std::snprintf(buf, sizeof buf, "%4d/%02d/%02d %02d:%02d:%02d.%03d", t.year, t.month, t.day,
                  t.hour, t.minute, t.second, t.millisecond);
    return buf;
}

// The narrow form has room for 260 bytes; the rest of a longer message is lost.
std::string NarrowMessage(std::u16string_view text) {
    std::string narrow = Utf16ToAnsi(text);
    if (narrow.size() > kTraceNarrowBytes)
        narrow.resize(kTraceNarrowBytes);
    return narrow;
}

}  // namespace

TracePaths DefaultTracePaths() {
#ifdef _WIN32
    return {u"c:\\kvorsgui.trace", u"c:\\KX20DrvTrace.out"};
#else
    return {u"/tmp/kvorsgui.trace", u"/tmp/KX20DrvTrace.out"};
#endif
}

void SetTraceTarget(FileSystem* files, Clock* clock, TracePaths paths) {
    Target() = TraceTarget{files, clock, std::move(paths)};
}

TraceCall::TraceCall() {
    if (tCall.depth++ == 0)
        tCall.markerAbsent = false;
}

TraceCall::~TraceCall() {
    --tCall.depth;
}

void DrvTraceArgs(std::u16string_view format, std::span<const FormatArg> args) {
    TraceTarget& t = Target();
    if (!MarkerPresent(t))
        return;
    auto file = t.files->Open(t.paths.output, OpenMode::AppendOrCreate, ShareMode::ReadWrite);
    if (!file)
        return;
    std::u16string message;
    if (!FormatTo(message, format, args, kTraceMessageChars))
        return;
    std::string line = TimeStamp(*t.clock) + " - U: " + NarrowMessage(message);
    WriteText(*file, line);
    file->Flush();
}

std::uint32_t DrvTraceData(std::u16string_view text, ByteSpan data) {
    TraceTarget& t = Target();
    if (!MarkerPresent(t))
        return 1;
    auto file = t.files->Open(t.paths.output, OpenMode::AppendOrCreate, ShareMode::ReadWrite);
    if (!file)
        return 2;
    const std::string stamp = TimeStamp(*t.clock);
    const std::string prefix = stamp + " - Data:  ";
    std::string out = stamp + " - " + NarrowMessage(text) + "\n" + prefix;
    char hex[4];
    for (std::size_t i = 0; i < data.size(); ++i) {
        std::snprintf(hex, sizeof hex, "%02x.", data[i]);
        out += hex;
        // The break test follows the byte, so the first line holds 26 bytes and later ones 25.
        if (i != 0 && i % 25 == 0)
            out += "\n" + prefix;
    }
    out += "\n";
    bool ok = WriteText(*file, out);
    ok = file->Flush() && ok;
    return ok ? 0 : 3;
}

}  // namespace kx20
