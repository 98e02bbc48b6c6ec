// The resource module's texts as the pages show them: single strings, runs of strings, and
// the table form in which a page names the string that labels each of its controls.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "pages/page_context.h"
#include "platform/format.h"

namespace kx20 {

// A control and the string that labels it.
struct PageLabel {
    int control;
    std::uint32_t stringId;
};

// A string of the resource module, at most 255 characters; empty when it is missing.
std::u16string PageString(PageContext& ctx, std::uint32_t id);

// A string with its one conversion filled by `arg`; the string as it stands when it does not
// take the argument.
std::u16string PageStringWith(PageContext& ctx, std::uint32_t id, const FormatArg& arg);

// The strings `first`, `first + 1`, ... `first + count - 1`.
std::vector<std::u16string> PageStrings(PageContext& ctx, std::uint32_t first, std::size_t count);

}  // namespace kx20
