// The help a page offers: a topic for the page and, per control, the topic of its popup help.
// Every page states its control topics as one table of this form.
#pragma once

#include <cstdint>
#include <span>

namespace kx20 {

struct ControlTopic {
    int control;
    std::uint32_t topic;
};

// The popup topic of `control` in `table`; 0 (no help) for a control the table leaves out.
inline std::uint32_t TopicOf(std::span<const ControlTopic> table, int control) {
    for (const ControlTopic& entry : table)
        if (entry.control == control)
            return entry.topic;
    return 0;
}

}  // namespace kx20
