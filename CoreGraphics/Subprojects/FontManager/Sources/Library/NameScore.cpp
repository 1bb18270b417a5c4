// NameScore.cpp: scores the fonts of a family against the style and weight that a name asks for.

#include "Library/NameScore.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace fm {
namespace {

constexpr std::uint32_t kComparedTraits =
    0x1 | 0x2 | 0x20 | 0x40 | 0x400 | 0x800 | 0x1000 | 0x2000 | 0x4000;
constexpr int kFamilyClassShift = 28;
constexpr float kTolerance = std::numeric_limits<float>::epsilon();
constexpr float kWeightFactor = 15.0f;

bool isOnRequestedSide(std::int32_t requested, std::int32_t candidate) {
    if (requested == 0)
        return candidate == 0;
    return requested < 0 ? candidate <= requested : candidate >= requested;
}

} // namespace

// Deliberate: points of weight are multiplied, these are not, though a factor of ten was laid out
// for them. It would let a single bit of style outdo any weight.
float traitScore(std::uint32_t requested, std::uint32_t candidate) {
    const std::uint32_t differing = requested ^ candidate;
    const int agreeing = std::popcount(~differing & kComparedTraits);
    return static_cast<float>(agreeing + (differing >> kFamilyClassShift == 0 ? 1 : 0));
}

float weightScore(std::int32_t requested, std::int32_t candidate) {
    const float base = isOnRequestedSide(requested, candidate) ? 0.5f : 0.0f;
    const auto distance =
        static_cast<float>(std::abs(std::int64_t{candidate} - std::int64_t{requested}));
    const float closeness = distance < 1 ? 0.5f : 0.5f / distance;
    return std::min(base + closeness, 1.0f) * kWeightFactor;
}

bool isBetterScore(float score, float best) {
    if (!(score > kTolerance))
        return false;
    const float rounding = kTolerance * std::max(std::abs(score), std::abs(best));
    return score > best && score - best > rounding;
}

} // namespace fm
