// Trace lines that a check also hands back to its caller: the file checks trace every problem
// they find, and the command-line tool shows the same lines as the reasons of its verdict.
#pragma once

#include <string>
#include <vector>

#include "platform/trace.h"
#include "platform/format.h"

namespace kx20 {

using TraceNotes = std::vector<std::u16string>;

// Traces the formatted line and, when `notes` is given, keeps it there too.
template <class... A>
void TraceNote(TraceNotes* notes, std::u16string_view format, const A&... args) {
    std::u16string line = Format(format, args...);
    DrvTrace(u"%s", line);
    if (notes)
        notes->push_back(std::move(line));
}

}  // namespace kx20
