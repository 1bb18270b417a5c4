// TransformCache.h: transforms that were made lately.
#pragma once

#include "Core/Color/RowTransform.h"

#include <cstdint>

namespace cg {

// Spaces are known by their serial numbers, which are never used twice: an entry keeps no space
// alive and cannot be taken for one of a later space at the same address.
struct TransformKey {
    std::uint64_t from = 0; // 0 is no space.
    std::uint64_t to = 0;
    RowFormat fromFormat;
    RowFormat toFormat;
    std::uint8_t intent = 0;

    friend bool operator==(const TransformKey&, const TransformKey&) = default;
};

// Every thread remembers the few transforms that it used last, without a lock; behind that is a
// larger list for all threads, under one lock that nothing else is taken under. Both forget what
// was not used for longest.

// Empty when it is in neither place.
RowTransformRef findTransform(const TransformKey& key);

// Keeps it for later; what comes back is the one to use: another thread may have been faster.
RowTransformRef rememberTransform(const TransformKey& key, RowTransformRef transform);

} // namespace cg
