// PathElements.h: a path's elements just as they are stored.
#pragma once

#include <include/core/SkPath.h>
#include <src/core/SkPathPriv.h>

#include <cstddef>
#include <span>

namespace cg {

// Views into a path's storage, good until the path changes. Skia's own iterators stop at once when
// a point is not finite, and its counting functions are calls.
inline std::span<const uint8_t> verbsOf(const SkPath& path) {
    SkPathPriv::Verbs verbs(path);
    return {verbs.begin().fVerb, verbs.end().fVerb};
}

inline std::span<const SkPoint> pointsOf(const SkPath& path) {
    return {SkPathPriv::PointData(path), static_cast<std::size_t>(path.countPoints())};
}

inline bool hasElements(const SkPath& path) {
    return !verbsOf(path).empty();
}

inline bool endsWith(const SkPath& path, SkPath::Verb verb) {
    const auto verbs = verbsOf(path);
    return !verbs.empty() && verbs.back() == verb;
}

constexpr std::size_t pointCount(uint8_t verb) {
    switch (verb) {
    case SkPath::kMove_Verb:
    case SkPath::kLine_Verb:
        return 1;
    case SkPath::kQuad_Verb:
    case SkPath::kConic_Verb:
        return 2;
    case SkPath::kCubic_Verb:
        return 3;
    default:
        return 0;
    }
}

} // namespace cg
