#include "devmode/roll_papers.h"

#include <array>

namespace kx20 {

namespace {

constexpr std::array<RollPaper, kRollPaperCount> kPapers{{
    {1, 257, 343, 1754, 580, 2970, 2000},
    {2, 258, 343, 19346, 580, 32760, 2001},
    {4, 259, 472, 1754, 800, 2970, 2002},
    {8, 260, 472, 19346, 800, 32760, 2003},
    {16, 261, 283, 1618, 480, 2740, 2004},
    {32, 262, 506, 1618, 857, 2740, 2005},
}};

}  // namespace

std::span<const RollPaper, kRollPaperCount> RollPapers() {
    return kPapers;
}

int RollPaperRow(std::int16_t paperId) {
    for (std::size_t row = 0; row < kPapers.size(); ++row)
        if (kPapers[row].paperId == paperId)
            return static_cast<int>(row);
    return -1;
}

}  // namespace kx20
