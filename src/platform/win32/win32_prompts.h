// Message boxes, the wait cursor and the refresh broadcast through the window manager.
#pragma once

#include "platform/win32/windows_clean.h"

#include <vector>

#include "platform/prompts.h"

namespace kx20 {

class Win32Prompts : public UserPrompts {
  public:
    int Show(WindowId owner, std::u16string_view text, std::u16string_view title,
             std::uint32_t style) override;
    // EnumChildWindows of the desktop visits every top-level window and its descendants;
    // SendMessageW is synchronous, so every receiver has reloaded when this returns.
    void Broadcast(RefreshMessage which, WindowId sender) override;
    void BeginWait() override;
    void EndWait() override;

  private:
    std::vector<HCURSOR> saved_;
};

}  // namespace kx20
