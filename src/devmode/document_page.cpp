#include "devmode/document_page.h"

#include "platform/trace.h"

namespace kx20 {

MutableByteSpan PagePrivatePart(PageContext& ctx) {
    if (ctx.docDevMode.empty())
        return {};
    MutableByteSpan record = ctx.docDevMode;
    std::size_t at = ReadU16(record, kOffDmSize);
    if (!FitsIn(record.size(), at, kDevModePrivateSize)) {
        DrvTrace(u"Document page: dmSize %d leaves no room for the private part, using 220\n",
                 static_cast<int>(at));
        at = kDevModePublicSize;
    }
    return record.subspan(at, kDevModePrivateSize);
}

int IndexOf(const std::vector<std::u16string>& entries, std::u16string_view text) {
    for (std::size_t i = 0; i < entries.size(); ++i)
        if (entries[i] == text)
            return static_cast<int>(i);
    return -1;
}

}  // namespace kx20
