/* CGColorConversionInfo.h: conversions between colour spaces, made ahead of their use. */
#pragma once

#include <CoreFoundation/CFDictionary.h>
#include <CoreGraphics/CGColorSpace.h>

#include <stdarg.h>

CG_BEGIN_DECLS

/** Immutable: any number of threads use one at the same time. Retained and released as every
 *  CFTypeRef is. */
typedef const struct CGColorConversionInfo* CGColorConversionInfoRef;

/** Which way a step of a conversion goes. */
CG_ENUM(uint32_t, CGColorConversionInfoTransformType){
    kCGColorConversionTransformFromSpace = 0, kCGColorConversionTransformToSpace = 1,
    kCGColorConversionTransformApplySpace = 2 /**< Through the space, as on a proof. */
};

CG_EXPORT CFTypeID CGColorConversionInfoGetTypeID(void);

/** The conversion from `source` to `destination` with the default intent. NULL when one is missing,
 *  or there is no way between them. */
CG_EXPORT CGColorConversionInfoRef CGColorConversionInfoCreate(CGColorSpaceRef source,
                                                               CGColorSpaceRef destination);

/** A conversion through a list of spaces, each followed by its CGColorConversionInfoTransformType
 *  and CGColorRenderingIntent, with NULL in place of a further space. The first is a FromSpace; the
 *  intent of each later one rules the step into it. There are no `options` yet: NULL. NULL when
 *  there are fewer than two spaces or more than eight, the first is not a FromSpace or a later one
 *  is, or there is no way from one to the next. */
CG_EXPORT CGColorConversionInfoRef CGColorConversionInfoCreateFromList(
    CFDictionaryRef options, CGColorSpaceRef space, CGColorConversionInfoTransformType type,
    CGColorRenderingIntent intent, ...);
CG_EXPORT CGColorConversionInfoRef CGColorConversionInfoCreateFromListWithArguments(
    CFDictionaryRef options, CGColorSpaceRef space, CGColorConversionInfoTransformType type,
    CGColorRenderingIntent intent, va_list arguments);

CG_END_DECLS
