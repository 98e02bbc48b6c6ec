#include "devmode/document_page.h"

#include "log/trace.h"

namespace kx20 {

MutableByteSpan PagePrivatePart(PageContext& ctx) {
    if (!ctx.docDevMode)
        return {};
    MutableByteSpan record(*ctx.docDevMode);
    std::size_t at = ReadU16(record, kOffDmSize);
    if (!FitsIn(record.size(), at, kDevModePrivateSize)) {
        DrvTrace(u"Document page: dmSize %d leaves no room for the private part, using 220\n",
                 static_cast<int>(at));
        at = kDevModePublicSize;
    }
    return record.subspan(at, kDevModePrivateSize);
}

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

int IndexOf(const std::vector<std::u16string>& entries, std::u16string_view text) {
    for (std::size_t i = 0; i < entries.size(); ++i)
        if (entries[i] == text)
            return static_cast<int>(i);
    return -1;
}

}  // namespace kx20
