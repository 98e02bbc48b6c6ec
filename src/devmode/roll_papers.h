// The six roll papers the KX20 takes, in the order the driver lists them everywhere (the
// capability answers, the device settings page). Widths and lengths in dots at 150 dots per
// inch and in tenths of a millimetre; each paper's name is a string of the resource module.
#pragma once

#include <cstdint>
#include <span>

namespace kx20 {

struct RollPaper {
    std::uint32_t bit;  // the enumeration bit: 1, 2, 4, ... 32 in row order
    std::int16_t paperId;
    std::uint32_t widthDots;
    std::uint32_t lengthDots;
    std::uint32_t widthTenthMm;
    std::uint32_t lengthTenthMm;
    std::uint32_t nameString;
};

inline constexpr std::size_t kRollPaperCount = 6;
// Row of paper 259, the default paper of every record.
inline constexpr int kDefaultRollPaperRow = 2;

std::span<const RollPaper, kRollPaperCount> RollPapers();
// The row of a paper id, or -1 when the id is none of the six.
int RollPaperRow(std::int16_t paperId);

}  // namespace kx20
