// CharacterCoverageTest.cpp: which fonts map which code points, beside sets of the standard
// library.

#include "Fallback/CharacterCoverage.h"

#include "Fallback/FontSets.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>
#include <vector>

namespace {

TEST(CharacterCoverage, AgreesWithSetsOfCodePoints) {
    std::mt19937 random(7);
    fm::CharacterCoverage coverage;
    std::map<FMFontId, std::set<uint32_t>> model;
    const std::vector<FMFontId> ids = {12, 3, 7, 3000, 5, 3}; // One of them in two parts.
    for (const FMFontId id : ids) {
        std::vector<uint32_t> codePoints = {0, 255, 256, 0x10FFFF, 0x110000, 0xFFFFFFFF};
        for (int run = 0; run < 50; ++run)
            for (auto c = static_cast<uint32_t>(random() % 0x30000),
                      end = c + static_cast<uint32_t>(random() % 300);
                 c < end; ++c)
                codePoints.push_back(c); // In no order, and some of them twice.
        coverage.add(id, codePoints);
        model[id].insert(codePoints.begin(), codePoints.end());
        model[id].erase(0x110000);
        model[id].erase(0xFFFFFFFF);
    }
    for (uint32_t codePoint = 0; codePoint < 0x110100; ++codePoint) {
        std::vector<FMFontId> expected;
        for (const auto& [id, codePoints] : model)
            if (codePoints.contains(codePoint))
                expected.push_back(id);
        ASSERT_EQ(coverage.fontsCovering(codePoint), expected) << codePoint;
    }
    EXPECT_EQ(coverage.fonts(), (std::vector<FMFontId>{3, 5, 7, 12, 3000}));
    for (const auto& [id, codePoints] : model)
        EXPECT_EQ(coverage.codePointsOf(id),
                  std::vector<uint32_t>(codePoints.begin(), codePoints.end()));
    EXPECT_TRUE(coverage.codePointsOf(99).empty());
    EXPECT_TRUE(coverage.fontsCovering(0xFFFFFFFF).empty());
}

TEST(FontSets, NumbersEachSetOnce) {
    fm::FontSets sets;
    EXPECT_EQ(sets.numberOf({1, 2}), 0u);
    EXPECT_EQ(sets.numberOf({1}), 1u);
    EXPECT_EQ(sets.numberOf({1, 2, 3}), 2u);
    EXPECT_EQ(sets.numberOf({1, 2}), 0u);
    ASSERT_EQ(sets.count(), 3u);
    EXPECT_EQ(std::vector<FMFontId>(sets[2].begin(), sets[2].end()),
              (std::vector<FMFontId>{1, 2, 3}));
}

} // namespace
