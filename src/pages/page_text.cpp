#include "pages/page_text.h"

namespace kx20 {

std::u16string PageString(PageContext& ctx, std::uint32_t id) {
    if (!ctx.strings)
        return {};
    return ctx.strings->Load(id).value_or(u"");
}

std::u16string PageStringWith(PageContext& ctx, std::uint32_t id, const FormatArg& arg) {
    const std::u16string pattern = PageString(ctx, id);
    std::u16string out;
    if (!FormatTo(out, pattern, std::span<const FormatArg>(&arg, 1)))
        return pattern;
    return out;
}

std::vector<std::u16string> PageStrings(PageContext& ctx, std::uint32_t first, std::size_t count) {
    std::vector<std::u16string> out;
    for (std::size_t i = 0; i < count; ++i)
        out.push_back(PageString(ctx, first + static_cast<std::uint32_t>(i)));
    return out;
}

}  // namespace kx20
