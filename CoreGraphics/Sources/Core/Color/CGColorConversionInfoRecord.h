// CGColorConversionInfoRecord.h: what a conversion between colour spaces is made of.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFRuntime.h>
#include <CoreGraphics/CGColorConversionInfo.h>

#include <array>
#include <cstddef>

struct CGColorConversionInfo {
    static constexpr std::size_t kMostSpaces = 8;

    CFRuntimeBase base;
    // At least two, with a way from each into the next.
    std::array<cf::Ref<CGColorSpaceRef>, kMostSpaces> spaces;
    std::array<CGColorRenderingIntent, kMostSpaces> intents = {}; // Of the steps into each.
    std::size_t count = 0;
};
