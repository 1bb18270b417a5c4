// CGColorSpaceDerived.cpp: spaces that rest on a base: colour tables and patterns.

#include <CoreGraphics/CGColorSpace.h>

#include "Core/Color/CGColorSpaceRecord.h"
#include "Core/Object/RuntimeObject.h"

#include <algorithm>

// Deliberate: a last index of 0, a palette of one colour, is refused.
CGColorSpaceRef CGColorSpaceCreateIndexed(CGColorSpaceRef baseSpace, size_t lastIndex,
                                          const unsigned char* colorTable) {
    if (!baseSpace || !colorTable || lastIndex < 1 || lastIndex >= kCGColorSpaceIndexedMaximumCount)
        return nullptr;
    if (baseSpace->model == kCGColorSpaceModelIndexed ||
        baseSpace->model == kCGColorSpaceModelPattern)
        return nullptr;
    const std::size_t count = lastIndex + 1;
    const std::size_t size = count * baseSpace->componentCount;
    const auto space = cg::createColorSpace(kCGColorSpaceModelIndexed, 1, size);
    if (!space)
        return nullptr;

    auto* const bytes = cg::trailing<std::uint8_t>(space);
    std::copy_n(colorTable, size, bytes);
    space->baseSpace = cf::retain(baseSpace);
    space->calibration = cg::ColorTable{.count = count, .bytes = {bytes, size}};
    return space;
}

CGColorSpaceRef CGColorSpaceCreatePattern(CGColorSpaceRef baseSpace) {
    if (baseSpace && baseSpace->model == kCGColorSpaceModelPattern)
        return nullptr;
    const auto space = cg::createColorSpace(kCGColorSpaceModelPattern,
                                            CGColorSpaceGetNumberOfComponents(baseSpace));
    if (space)
        space->baseSpace = cf::retain(baseSpace);
    return space;
}
