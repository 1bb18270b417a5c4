// ContourGroups.cpp: a sweep over boxes from left to right.

#include "ContourGroups.h"

#include <algorithm>
#include <map>
#include <numeric>

namespace {

class DisjointSets {
public:
    explicit DisjointSets(std::size_t count) : parents_(count) {
        std::iota(parents_.begin(), parents_.end(), std::size_t{0});
    }
    // The smallest member stands for its set.
    std::size_t find(std::size_t member) {
        while (parents_[member] != member)
            member = parents_[member] = parents_[parents_[member]];
        return member;
    }
    void join(std::size_t a, std::size_t b) {
        const std::size_t first = find(a), second = find(b);
        parents_[std::max(first, second)] = std::min(first, second);
    }

private:
    std::vector<std::size_t> parents_;
};

// What the sweep line still meets: stretches of y, disjoint, by their lower ends. Where boxes of
// one stretch end earlier than others it does not shrink; that makes groups larger, never wrong.
class Front {
public:
    explicit Front(DisjointSets& sets) : sets_(sets) {}

    // Boxes come with their left sides in ascending order.
    void add(std::size_t number, const SkRect& box) {
        float low = box.fTop;
        Stretch stretch = {.high = box.fBottom, .right = box.fRight, .member = number};
        auto at = stretches_.upper_bound(low);
        if (at != stretches_.begin() && std::prev(at)->second.high >= low)
            --at;
        while (at != stretches_.end() && at->first <= box.fBottom) {
            const Stretch& met = at->second;
            if (met.right >= box.fLeft) {
                sets_.join(met.member, number);
                low = std::min(low, at->first);
                stretch.high = std::max(stretch.high, met.high);
                stretch.right = std::max(stretch.right, met.right);
            }
            at = stretches_.erase(at);
        }
        stretches_.emplace_hint(at, low, stretch);
    }

private:
    struct Stretch {
        float high;
        float right; // Where its last box ends.
        std::size_t member;
    };

    DisjointSets& sets_;
    std::map<float, Stretch> stretches_;
};

// Members of one set side by side, sets and members in ascending order.
cg::ContourGroups listSets(DisjointSets& sets, std::size_t count) {
    std::vector<std::size_t> places(count + 1);
    for (std::size_t number = 0; number < count; ++number)
        ++places[sets.find(number) + 1];
    std::partial_sum(places.begin(), places.end(), places.begin());
    cg::ContourGroups groups;
    for (std::size_t number = 0; number < count; ++number)
        if (places[number + 1] > places[number])
            groups.ends.push_back(places[number + 1]);
    groups.members.resize(count);
    for (std::size_t number = 0; number < count; ++number)
        groups.members[places[sets.find(number)]++] = number;
    return groups;
}

} // namespace

cg::ContourGroups cg::groupBoxes(std::span<const SkRect> boxes) {
    if (boxes.size() == 1)
        return {.members = {0}, .ends = {1}};
    std::vector<std::size_t> order(boxes.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::sort(order, {}, [&](std::size_t number) { return boxes[number].fLeft; });
    DisjointSets sets(boxes.size());
    Front front(sets);
    for (const std::size_t number : order)
        front.add(number, boxes[number]);
    return listSets(sets, boxes.size());
}
