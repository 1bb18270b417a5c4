// ContourGroups.h: telling contours apart that cannot meet.
#pragma once

#include <include/core/SkRect.h>

#include <cstddef>
#include <span>
#include <vector>

namespace cg {

// Numbers of boxes, group after group; `ends` says where in `members` each group ends.
struct ContourGroups {
    std::vector<std::size_t> members;
    std::vector<std::size_t> ends;

    std::span<const std::size_t> group(std::size_t index) const {
        const std::size_t first = index > 0 ? ends[index - 1] : 0;
        return {&members[first], ends[index] - first};
    }
};

// Boxes that touch or overlap fall into one group, where they keep their order. That groups are
// the smallest possible is not promised. O(n log n).
ContourGroups groupBoxes(std::span<const SkRect> boxes);

} // namespace cg
