// CharacterRangesTest.cpp: how code points of one set of fonts join to ranges.

#include "Fallback/CharacterRanges.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <numeric>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace {

constexpr uint32_t kLimit = 0x10FFF;

std::string textOf(const fm::CharacterRanges& ranges) {
    std::string text;
    for (const auto& [end, range] : ranges.byEnd())
        text += std::to_string(range.start) + "-" + std::to_string(range.end) + ":" +
                std::to_string(range.set) + " ";
    return text;
}

// Which code points are joined to the next one: all there is to know of a partition.
class Model {
public:
    void insert(uint32_t codePoint, uint32_t set) {
        sets_[codePoint] = set;
        if (const auto below = sets_.find(codePoint - 1); codePoint > 0 && below != sets_.end())
            joined_[codePoint - 1] = below->second == set;
        if (const auto above = sets_.find(codePoint + 1); above != sets_.end())
            joined_[codePoint] = above->second == set && codePoint < kLimit;
    }

    std::string text() const {
        std::string text;
        for (auto entry = sets_.begin(); entry != sets_.end(); ++entry) {
            const uint32_t start = entry->first;
            while (joined_.contains(entry->first) && joined_.at(entry->first))
                ++entry;
            text += std::to_string(start) + "-" + std::to_string(entry->first + 1) + ":" +
                    std::to_string(entry->second) + " ";
        }
        return text;
    }

private:
    std::map<uint32_t, uint32_t> sets_;
    std::map<uint32_t, bool> joined_;
};

TEST(CharacterRanges, JoinsNeighboursOfOneSet) {
    const struct {
        const char* what;
        std::vector<std::pair<uint32_t, uint32_t>> inserted; // Code points and sets.
        const char* ranges;
    } cases[] = {
        {"one", {{7, 1}}, "7-8:1 "},
        {"two in order", {{7, 1}, {8, 1}}, "7-9:1 "},
        {"two backwards", {{8, 1}, {7, 1}}, "7-9:1 "},
        {"a gap that closes", {{7, 1}, {9, 1}, {8, 1}}, "7-10:1 "},
        {"a gap of another set", {{7, 1}, {9, 1}, {8, 2}}, "7-8:1 8-9:2 9-10:1 "},
        {"the first code point", {{1, 3}, {0, 3}}, "0-2:3 "},
        {"below the limit", {{kLimit, 1}, {kLimit - 1, 1}}, "69630-69632:1 "},
        {"at the limit, not upwards",
         {{kLimit + 1, 1}, {kLimit, 1}},
         "69631-69632:1 69632-69633:1 "},
        {"at the limit, from below", {{kLimit, 1}, {kLimit + 1, 1}}, "69631-69633:1 "},
    };
    for (const auto& c : cases) {
        fm::CharacterRanges ranges;
        for (const auto& [codePoint, set] : c.inserted)
            ranges.insert(codePoint, set);
        EXPECT_EQ(textOf(ranges), c.ranges) << c.what;
    }
}

TEST(CharacterRanges, AgreesWithAModelInAnyOrder) {
    std::mt19937 random(1);
    for (const uint32_t first : {0u, kLimit - 100, 0x10FFFFu - 200}) {
        // Runs of a few sets, so that both joining and parting happen.
        std::map<uint32_t, uint32_t> sets;
        for (uint32_t codePoint = first, set = 0; codePoint < first + 200; ++codePoint)
            sets[codePoint] = set = random() % 5 == 0 ? static_cast<uint32_t>(random() % 3) : set;
        std::set<std::string> outcomes;
        for (int order = 0; order < 20; ++order) {
            std::vector<uint32_t> codePoints(200);
            std::iota(codePoints.begin(), codePoints.end(), first);
            std::shuffle(codePoints.begin(), codePoints.end(), random);
            fm::CharacterRanges ranges;
            Model model;
            for (const uint32_t codePoint : codePoints) {
                ASSERT_EQ(ranges.find(codePoint), nullptr);
                const FMFallbackRange* const range = ranges.insert(codePoint, sets[codePoint]);
                model.insert(codePoint, sets[codePoint]);
                ASSERT_EQ(ranges.find(codePoint), range);
                ASSERT_EQ(range->set, sets[codePoint]);
            }
            ASSERT_EQ(textOf(ranges), model.text());
            outcomes.insert(textOf(ranges));
        }
        if (first == 0) // Below the limit the order makes no difference in the end.
            EXPECT_EQ(outcomes.size(), 1u);
    }
}

TEST(CharacterRanges, KeepsTheAddressOfARangeThatGrows) {
    fm::CharacterRanges ranges;
    const FMFallbackRange* const range = ranges.insert(65, 0);
    for (uint32_t codePoint = 66; codePoint < 90; ++codePoint)
        ranges.insert(codePoint, 0);
    EXPECT_EQ(ranges.find(80), range);
    EXPECT_EQ(range->end, 90u);
}

} // namespace
