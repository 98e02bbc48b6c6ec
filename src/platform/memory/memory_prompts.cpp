#include "platform/memory/memory_prompts.h"

namespace kx20 {

int ScriptedPrompts::Show(WindowId owner, std::u16string_view text, std::u16string_view title,
                          std::uint32_t style) {
    boxes.push_back({owner, std::u16string(text), std::u16string(title), style});
    if (answers.empty())
        return defaultAnswer;
    int answer = answers.front();
    answers.pop_front();
    return answer;
}

void ScriptedPrompts::Broadcast(RefreshMessage which, WindowId sender) {
    broadcasts.push_back({which, sender});
}

void ScriptedPrompts::BeginWait() {
    ++waitDepth;
    ++waits;
}

void ScriptedPrompts::EndWait() {
    --waitDepth;
}

}  // namespace kx20
