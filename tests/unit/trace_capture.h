// Reading back what the trace wrote into an in-memory file system.
#pragma once

#include <string>
#include <vector>

#include "platform/memory/memory_files.h"

namespace kx20 {

// Trace messages in order, with the time stamp and the text-mode line ends taken off. The
// trace must have written to the file "out" with ManualClock's default time.
inline std::vector<std::string> TraceMessages(const MemoryFileSystem& files) {
    const Bytes* raw = files.Get(u"out");
    std::string text = raw ? std::string(raw->begin(), raw->end()) : std::string();
    for (std::size_t at = 0; (at = text.find("\r\n", at)) != std::string::npos; ++at)
        text.erase(at, 1);
    const std::string stamp = "2024/03/05 09:07:02.045 - U: ";
    std::vector<std::string> out;
    for (std::size_t at = text.find(stamp); at != std::string::npos;) {
        const std::size_t next = text.find(stamp, at + 1);
        out.push_back(text.substr(at + stamp.size(), next - at - stamp.size()));
        at = next;
    }
    return out;
}

// Whether some trace message contains `part`.
inline bool TraceHas(const MemoryFileSystem& files, const std::string& part) {
    for (const std::string& m : TraceMessages(files))
        if (m.find(part) != std::string::npos) return true;
    return false;
}

}  // namespace kx20
