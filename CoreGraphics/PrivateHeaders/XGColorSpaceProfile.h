/* XGColorSpaceProfile: an ICC profile, or one made of a few numbers.
 *
 * White points are handed to the colour engine as they are given, three numbers. Profiles are
 * immutable. Two are equal when their black points are: the source of a profile does not count. */
#pragma once

#include <CoreFoundation/CFData.h>
#include <CoreGraphics/CGColorSpace.h>
#include <CoreGraphics/CGDataProvider.h>

CG_BEGIN_DECLS

typedef struct XGColorSpaceProfile* XGColorSpaceProfileRef;

/** A profile over bytes that the caller keeps alive. NULL for none and for what is no profile. */
CG_EXPORT XGColorSpaceProfileRef XGColorSpaceProfileCreate(const void* bytes, size_t length);
/** A profile over data, which it keeps. */
CG_EXPORT XGColorSpaceProfileRef XGColorSpaceProfileCreateFromCFData(CFDataRef data);
/** A profile over what a provider has, which it keeps. A provider that can be locked stays locked;
 *  of another the bytes are read. NULL for an empty provider, and when the bytes cannot be had. */
CG_EXPORT XGColorSpaceProfileRef XGColorSpaceProfileCreateWithProvider(CGDataProviderRef provider);
/** The profile in a file; its path is UTF-8. */
CG_EXPORT XGColorSpaceProfileRef XGColorSpaceProfileCreateFromFile(const char* path);
/** Gray of one exponent. NULL without both points, or for an exponent that is negative or not
 *  finite. */
CG_EXPORT XGColorSpaceProfileRef XGColorSpaceProfileCreateCalibratedGray(
    const CGFloat whitePoint[3], const CGFloat blackPoint[3], CGFloat gamma);
/** RGB of an exponent for each component, with the primaries of a wide gamut (xy 0.7355 0.2645,
 *  0.2658 0.7243, 0.1669 0.0085). NULL when an argument is missing. */
CG_EXPORT XGColorSpaceProfileRef XGColorSpaceProfileCreateCalibratedRGB(const CGFloat whitePoint[3],
                                                                        const CGFloat blackPoint[3],
                                                                        const CGFloat gamma[3]);
/** CIE L*a*b*. */
CG_EXPORT XGColorSpaceProfileRef XGColorSpaceProfileCreateLab(const CGFloat whitePoint[3]);
/** CIE L*a*b* with the white point 1, 1, 1. */
CG_EXPORT XGColorSpaceProfileRef XGColorSpaceProfileCreateUncalibratedLab(void);
/** The library's CMYK profile: offset printing by the SWOP conditions. NULL, with an error in the
 *  log, when its file cannot be found. */
CG_EXPORT XGColorSpaceProfileRef XGColorSpaceProfileCreateUncalibratedCMYK(void);
CG_EXPORT XGColorSpaceProfileRef XGColorSpaceProfileRetain(XGColorSpaceProfileRef profile);
CG_EXPORT void XGColorSpaceProfileRelease(XGColorSpaceProfileRef profile);

/** What the profile's device components are: monochrome, RGB, CMYK (of three inks as well) or Lab;
 *  otherwise kCGColorSpaceModelUnknown. */
CG_EXPORT CGColorSpaceModel XGColorSpaceProfileGetModel(XGColorSpaceProfileRef profile);
/** The colour engine's handle (cmsHPROFILE); it lives as long as `profile`. */
CG_EXPORT void* XGColorSpaceProfileGetNativeObject(XGColorSpaceProfileRef profile);

/** The profile of a space, made of its calibration the first time. NULL for indexed and pattern
 *  spaces, and when it cannot be made. Lent. */
CG_EXPORT XGColorSpaceProfileRef XGColorSpaceGetProfile(CGColorSpaceRef space);

CG_END_DECLS
