// User prompts and refresh broadcasts: the message boxes that pages show, the wait cursor
// around long printer work, and the registered refresh messages sent to every window after a
// catalogue changes. The Win32 adapter uses MessageBoxW and EnumChildWindows + SendMessageW;
// the in-memory adapter answers from a script and records what it was asked.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kx20 {

class ResourceStrings;

// Message box styles and answers, numbered as the system numbers them.
namespace box {
inline constexpr std::uint32_t kOk = 0x00;
inline constexpr std::uint32_t kOkCancel = 0x01;
inline constexpr std::uint32_t kYesNoCancel = 0x03;
inline constexpr std::uint32_t kYesNo = 0x04;
inline constexpr std::uint32_t kIconError = 0x10;
inline constexpr std::uint32_t kIconQuestion = 0x20;
inline constexpr std::uint32_t kIconWarning = 0x30;
inline constexpr std::uint32_t kIconInformation = 0x40;
inline constexpr int kIdOk = 1;
inline constexpr int kIdCancel = 2;
inline constexpr int kIdYes = 6;
inline constexpr int kIdNo = 7;
}  // namespace box

enum class RefreshMessage { Logos, Messages, Fonts };

// "MSG_REFRESH_LOGOS_KX20", "MSG_REFRESH_MESSAGES_KX20", "MSG_REFRESH_FONTS_KX20".
std::u16string_view RefreshMessageName(RefreshMessage which);

// Window handles travel through the core as opaque numbers.
using WindowId = std::uintptr_t;

class UserPrompts {
  public:
    virtual ~UserPrompts() = default;
    // A modal message box owned by `owner`; answers one of the box::kId* values.
    virtual int Show(WindowId owner, std::u16string_view text, std::u16string_view title,
                     std::uint32_t style) = 0;
    // Sends the refresh message to every window under the desktop; wParam 0, lParam `sender`.
    virtual void Broadcast(RefreshMessage which, WindowId sender) = 0;
    virtual void BeginWait() = 0;  // wait cursor on
    virtual void EndWait() = 0;    // previous cursor back
};

// Shows a box whose text and title are strings of the resource module (an id missing from the
// module shows as an empty text).
int ShowStringBox(UserPrompts& prompts, ResourceStrings& strings, WindowId owner,
                  std::uint32_t textId, std::uint32_t titleId, std::uint32_t style);

// The wait cursor for the length of a scope.
class WaitCursor {
  public:
    explicit WaitCursor(UserPrompts& prompts) : prompts_(prompts) { prompts_.BeginWait(); }
    ~WaitCursor() { prompts_.EndWait(); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;

  private:
    UserPrompts& prompts_;
};

}  // namespace kx20
