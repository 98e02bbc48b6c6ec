// A collecting sheet service: records every page added, in order, and every message sent to
// the sheet window, as a host that shows the pages itself would receive them.
#pragma once

#include <vector>

#include "platform/sheets.h"

namespace kx20 {

class CollectingSheet : public SheetService {
  public:
    struct Added {
        bool asHandle = false;
        PageDescription page;   // descriptions
        PageHandle handle = 0;  // pages already made
    };
    struct Message {
        WindowId window;
        std::uint32_t message;
    };

    std::intptr_t AddPage(const PageDescription& page) override;
    std::intptr_t AddPageHandle(PageHandle page) override;
    void Notify(WindowId window, std::uint32_t message) override;

    std::vector<Added> added;
    std::vector<Message> messages;
};

}  // namespace kx20
