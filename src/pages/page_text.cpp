#include "pages/page_text.h"

namespace kx20 {

std::u16string PageString(PageContext& ctx, std::uint32_t id) {
    if (!ctx.strings)
        return {};
    return ctx.strings->Load(id).value_or(u"");
}

std::vector<std::u16string> PageStrings(PageContext& ctx, std::uint32_t first, std::size_t count) {
    std::vector<std::u16string> out;
    for (std::size_t i = 0; i < count; ++i)
        out.push_back(PageString(ctx, first + static_cast<std::uint32_t>(i)));
    return out;
}

}  // namespace kx20
