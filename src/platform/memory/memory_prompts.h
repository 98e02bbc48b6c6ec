// In-memory prompts: message boxes answered from a script, broadcasts and wait-cursor scopes
// recorded, so page flows are tested with no window.
#pragma once

#include <deque>
#include <vector>

#include "platform/prompts.h"

namespace kx20 {

class ScriptedPrompts : public UserPrompts {
  public:
    struct Box {
        WindowId owner = 0;
        std::u16string text;
        std::u16string title;
        std::uint32_t style = 0;
    };
    struct Sent {
        RefreshMessage which;
        WindowId sender;
    };

    int Show(WindowId owner, std::u16string_view text, std::u16string_view title,
             std::uint32_t style) override;
    void Broadcast(RefreshMessage which, WindowId sender) override;
    void BeginWait() override;
    void EndWait() override;

    std::deque<int> answers;           // taken in order by the boxes shown
    int defaultAnswer = box::kIdOk;    // once the script is used up
    std::vector<Box> boxes;            // every box shown, in order
    std::vector<Sent> broadcasts;      // every broadcast, in order
    int waitDepth = 0;                 // open wait-cursor scopes
    int waits = 0;                     // wait-cursor scopes opened in all
};

}  // namespace kx20
