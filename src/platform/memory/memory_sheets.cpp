#include "platform/memory/memory_sheets.h"

namespace kx20 {

std::intptr_t CollectingSheet::AddPage(const PageDescription& page) {
    added.push_back({false, page, 0});
    return static_cast<std::intptr_t>(added.size());
}

std::intptr_t CollectingSheet::AddPageHandle(PageHandle page) {
    added.push_back({true, {}, page});
    return static_cast<std::intptr_t>(added.size());
}

void CollectingSheet::Notify(WindowId window, std::uint32_t message) {
    messages.push_back({window, message});
}

}  // namespace kx20
