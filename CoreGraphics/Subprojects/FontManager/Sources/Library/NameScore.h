// NameScore.h: how well a font of the right family fits a name's style and weight.
#pragma once

#include <FontManager/FMBase.h>

#include <cstdint>

namespace fm {

// A point for each style bit, and one for the family class, on which both agree: 0 to 10.
float traitScore(std::uint32_t requested, std::uint32_t candidate);

// How near the weights lie, and whether the candidate lies on the requested side: 0 to 15.
float weightScore(std::int32_t requested, std::int32_t candidate);

// Whether a candidate's score displaces the best one so far. The first best is kNoScore; of
// candidates that score the same, up to rounding, the first one stays.
inline constexpr float kNoScore = -1.0f;
bool isBetterScore(float score, float best);

} // namespace fm
