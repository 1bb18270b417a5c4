// CGColorConversionInfo.cpp: conversions between colour spaces, made ahead of their use.

#include "Core/Color/CGColorConversionInfoRecord.h"
#include "Core/Color/RowTransform.h"
#include "Core/Object/Diagnostics.h"
#include "Core/Object/RuntimeObject.h"

#include <cstdarg>

namespace {

constexpr CFRuntimeClass kConversionInfoClass = {
    .className = "CGColorConversionInfo",
    .copy = cg::copyByRetaining,
    .finalize = cg::finalize<CGColorConversionInfo>,
};

bool append(CGColorConversionInfo& info, CGColorSpaceRef space, CGColorRenderingIntent intent) {
    constexpr cg::RowFormat kFormat = {cg::ComponentType::Float, false};
    if (info.count == info.spaces.size())
        return false;
    if (info.count > 0 && !cg::RowTransform::between(info.spaces[info.count - 1].get(), kFormat,
                                                     space, kFormat, intent))
        return false;
    info.intents[info.count] = intent;
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
