// NameScoreTest.cpp: how candidates fare against the style and weight that a name asks for.

#include "Library/NameScore.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

namespace {

TEST(NameScore, GivesAPointForEachTraitThatAgrees) {
    const struct {
        const char* what;
        uint32_t requested;
        uint32_t candidate;
        float points;
    } cases[] = {
        {"all agree", 0, 0, 10},
        {"both bold", 2, 2, 10},
        {"italic asked for", 1, 0, 9},
        {"bold and italic not asked for", 0, 3, 8},
        {"another family class", 0, 0x80000000, 9},
        {"every compared bit", 0, 0x7C63, 1},
        {"nothing agrees", 0, 0xF0007C63, 0},
        {"bits that are not compared", 0, 0x0FFF839C, 10},
    };
    for (const auto& c : cases)
        EXPECT_EQ(fm::traitScore(c.requested, c.candidate), c.points) << c.what;
}

TEST(NameScore, WeighsWeightsBySideAndDistance) {
    const struct {
        const char* what;
        int32_t requested;
        int32_t candidate;
        float score;
    } cases[] = {
        {"regular for regular", 0, 0, 15},
        {"bold for bold", 400, 400, 15},
        {"black for bold", 400, 620, 7.5f + 7.5f / 220},
        {"regular for bold", 400, 0, 7.5f / 400},
        {"light for light", -400, -400, 15},
        {"thin for light", -400, -600, 7.5f + 7.5f / 200},
        {"regular for light", -400, 0, 7.5f / 400},
        {"one off is as near as none, on the right side", 1, 2, 15},
        {"one off on the wrong side", 2, 1, 7.5f},
        {"the ends of the scale", INT32_MIN, INT32_MAX, 7.5f / 4294967295.0f},
    };
    for (const auto& c : cases)
        EXPECT_FLOAT_EQ(fm::weightScore(c.requested, c.candidate), c.score) << c.what;
}

TEST(NameScore, KeepsTheEarlierOfEqualCandidates) {
    const float next = std::nextafter(20.0f, 21.0f);
    const struct {
        const char* what;
        float score;
        float best;
        bool isBetter;
    } cases[] = {
        {"the first", 1, fm::kNoScore, true},
        {"nothing agrees", 0, fm::kNoScore, false},
        {"hardly more than nothing", 1e-7f, fm::kNoScore, false},
        {"not a number", std::numeric_limits<float>::quiet_NaN(), fm::kNoScore, false},
        {"better", 21, 20, true},
        {"worse", 20, 21, false},
        {"equal", 20, 20, false},
        {"equal but for rounding", next, 20, false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(fm::isBetterScore(c.score, c.best), c.isBetter) << c.what;
}

} // namespace
