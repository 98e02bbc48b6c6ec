#include "platform/prompts.h"

#include "platform/resources.h"

namespace kx20 {

std::u16string_view RefreshMessageName(RefreshMessage which) {
    switch (which) {
        case RefreshMessage::Logos:
            return u"MSG_REFRESH_LOGOS_KX20";
        case RefreshMessage::Messages:
            return u"MSG_REFRESH_MESSAGES_KX20";
        case RefreshMessage::Fonts:
            return u"MSG_REFRESH_FONTS_KX20";
    }
    return u"";
}

int ShowStringBox(UserPrompts& prompts, ResourceStrings& strings, WindowId owner,
                  std::uint32_t textId, std::uint32_t titleId, std::uint32_t style) {
    std::u16string text = strings.Load(textId).value_or(u"");
    std::u16string title = strings.Load(titleId).value_or(u"");
    return prompts.Show(owner, text, title, style);
}

}  // namespace kx20
