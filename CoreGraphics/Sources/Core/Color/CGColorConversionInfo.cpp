// CGColorConversionInfo.cpp: conversions between colour spaces, made ahead of their use.

#include <CoreGraphics/CGColorConversionInfo.h>

#include "Core/Color/RowTransform.h"
#include "Core/Object/Diagnostics.h"
#include "Core/Object/RuntimeObject.h"

#include <array>
#include <cstdarg>

namespace {

constexpr std::size_t kMostSpaces = 8;

} // namespace

struct CGColorConversionInfo {
    CFRuntimeBase base;
    std::array<cf::Ref<CGColorSpaceRef>, kMostSpaces> spaces;
    std::array<cg::RowTransformRef, kMostSpaces - 1> steps; // Of floats, each into the next space.
    std::size_t count = 0;                                  // Of spaces.
};

namespace {

constexpr CFRuntimeClass kConversionInfoClass = {
    .className = "CGColorConversionInfo",
    .copy = cg::copyByRetaining,
    .finalize = cg::finalize<CGColorConversionInfo>,
};

bool append(CGColorConversionInfo& info, CGColorSpaceRef space, CGColorRenderingIntent intent) {
    constexpr cg::RowFormat kFormat = {cg::ComponentType::Float, false};
    if (info.count == kMostSpaces)
        return false;
    if (info.count > 0) {
        auto& step = info.steps[info.count - 1];
        step = cg::RowTransform::between(info.spaces[info.count - 1].get(), kFormat, space, kFormat,
                                         intent);
        if (!step)
            return false;
    }
    info.spaces[info.count++] = cf::retain(space);
    return true;
}

bool hasItsPlace(const CGColorConversionInfo& info, CGColorConversionInfoTransformType type) {
    const bool isSource = type == kCGColorConversionTransformFromSpace;
    return type <= kCGColorConversionTransformApplySpace && isSource == (info.count == 0);
}

} // namespace

CFTypeID CGColorConversionInfoGetTypeID(void) {
    static const CFTypeID id = _CFRuntimeRegisterClass(&kConversionInfoClass);
    return id;
}

CGColorConversionInfoRef CGColorConversionInfoCreate(CGColorSpaceRef source,
                                                     CGColorSpaceRef destination) {
    return CGColorConversionInfoCreateFromList(
        nullptr, source, kCGColorConversionTransformFromSpace, kCGRenderingIntentDefault,
        destination, kCGColorConversionTransformToSpace, kCGRenderingIntentDefault, nullptr);
}

CGColorConversionInfoRef
CGColorConversionInfoCreateFromList(CFDictionaryRef options, CGColorSpaceRef space,
                                    CGColorConversionInfoTransformType type,
                                    CGColorRenderingIntent intent, ...) {
    va_list arguments;
// An enumeration of 32 bits is passed as the integer it is promoted to, wherever this runs.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wvarargs"
    va_start(arguments, intent);
#pragma GCC diagnostic pop
    const auto info =
        CGColorConversionInfoCreateFromListWithArguments(options, space, type, intent, arguments);
    va_end(arguments);
    return info;
}

CGColorConversionInfoRef
CGColorConversionInfoCreateFromListWithArguments(CFDictionaryRef, CGColorSpaceRef space,
                                                 CGColorConversionInfoTransformType type,
                                                 CGColorRenderingIntent intent, va_list arguments) {
    if (!space)
        return nullptr; // Before anything is read: there may be nothing behind it.
    auto* const info = cg::create<CGColorConversionInfo>(CGColorConversionInfoGetTypeID());
    auto result = cf::adopt<CGColorConversionInfoRef>(info);
    if (!info)
        return nullptr;
    while (space) {
        if (!hasItsPlace(*info, type) || !append(*info, space, intent))
            return nullptr;
        space = va_arg(arguments, CGColorSpaceRef);
        if (!space)
            break;
        type = static_cast<CGColorConversionInfoTransformType>(va_arg(arguments, unsigned));
        intent = static_cast<CGColorRenderingIntent>(va_arg(arguments, int));
    }
    return info->count > 1 ? result.release() : nullptr;
}
