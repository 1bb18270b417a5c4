// RecentColors.h: the colours that a context made last, for making the next of them.
//
// Drawings change colours before every few marks, mostly among a few. A colour that comes again is
// the same object, which also spares destinations its conversion, and one that nobody else holds
// any longer becomes the next, so that nothing is allocated.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CGColor.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace cg {

class RecentColors {
public:
    // A colour of `space` with a copy of its components, lent; NULL when memory runs out.
    CGColorRef get(CGColorSpaceRef space, const CGFloat* components);

private:
    struct Entry {
        cf::Ref<CGColorRef> color;
        std::uint64_t key = 0; // Of its space and components: different ones mostly differ.
    };
    // As many as are in use at once, by a state, those saved, and a destination, and some more.
    std::array<Entry, 8> entries_;
    std::size_t oldest_ = 0;

    Entry& replaceable(std::size_t componentCount);
};

} // namespace cg
