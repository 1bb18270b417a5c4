/* CGColorSpace.h: what the components of a colour mean. */
#pragma once

#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFPropertyList.h>
#include <CoreFoundation/CFString.h>
#include <CoreGraphics/CGBase.h>
#include <CoreGraphics/CGDataProvider.h>

CG_BEGIN_DECLS

typedef struct CGColorSpace* CGColorSpaceRef;

/** How colours outside the destination's range are mapped into it (ICC.1, rendering intents). */
CG_ENUM(int32_t, CGColorRenderingIntent){
    kCGRenderingIntentDefault = 0, kCGRenderingIntentAbsoluteColorimetric = 1,
    kCGRenderingIntentRelativeColorimetric = 2, kCGRenderingIntentPerceptual = 3,
    kCGRenderingIntentSaturation = 4};

/** What kind of components a colour space has. */
CG_ENUM(int32_t, CGColorSpaceModel){
    kCGColorSpaceModelUnknown = -1, kCGColorSpaceModelMonochrome = 0, kCGColorSpaceModelRGB = 1,
    kCGColorSpaceModelCMYK = 2,     kCGColorSpaceModelLab = 3,        kCGColorSpaceModelDeviceN = 4,
    kCGColorSpaceModelIndexed = 5,  kCGColorSpaceModelPattern = 6,    kCGColorSpaceModelXYZ = 7};

/** The largest number of colours in an indexed space. */
#define kCGColorSpaceIndexedMaximumCount 256

/* ---- Names --------------------------------------------------------------------------------- */

/* The text of each is its identifier. CGColorSpaceCreateWithName says which can be made. */
CG_EXPORT const CFStringRef kCGColorSpaceGenericGray;
CG_EXPORT const CFStringRef kCGColorSpaceGenericRGB;
CG_EXPORT const CFStringRef kCGColorSpaceGenericCMYK;
CG_EXPORT const CFStringRef kCGColorSpaceSRGB;
CG_EXPORT const CFStringRef kCGColorSpaceGenericRGBLinear;
CG_EXPORT const CFStringRef kCGColorSpaceAdobeRGB1998;
CG_EXPORT const CFStringRef kCGColorSpaceGenericGrayGamma2_2;
CG_EXPORT const CFStringRef kCGColorSpaceACESCGLinear;
CG_EXPORT const CFStringRef kCGColorSpaceDCIP3;
CG_EXPORT const CFStringRef kCGColorSpaceDisplayP3;
CG_EXPORT const CFStringRef kCGColorSpaceExtendedGray;
CG_EXPORT const CFStringRef kCGColorSpaceExtendedLinearGray;
CG_EXPORT const CFStringRef kCGColorSpaceExtendedLinearSRGB;
CG_EXPORT const CFStringRef kCGColorSpaceExtendedSRGB;
CG_EXPORT const CFStringRef kCGColorSpaceGenericXYZ;
CG_EXPORT const CFStringRef kCGColorSpaceITUR_2020;
CG_EXPORT const CFStringRef kCGColorSpaceITUR_2100_HLG;
CG_EXPORT const CFStringRef kCGColorSpaceITUR_2100_PQ;
CG_EXPORT const CFStringRef kCGColorSpaceITUR_709;
CG_EXPORT const CFStringRef kCGColorSpaceLinearGray;
CG_EXPORT const CFStringRef kCGColorSpaceLinearSRGB;
CG_EXPORT const CFStringRef kCGColorSpaceROMMRGB;

/* ---- Creation ------------------------------------------------------------------------------ */

/** The spaces of the device itself, one object each for the whole process. They are immortal:
 *  releasing them does no harm. */
CG_EXPORT CGColorSpaceRef CGColorSpaceCreateDeviceGray(void);
CG_EXPORT CGColorSpaceRef CGColorSpaceCreateDeviceRGB(void);
CG_EXPORT CGColorSpaceRef CGColorSpaceCreateDeviceCMYK(void);

/** A gray space of 1 component between a black point (NULL: 0, 0, 0) and a white point, both CIE
 *  XYZ, of exponent `gamma`. NULL without a white point or for a negative gamma. */
CG_EXPORT CGColorSpaceRef CGColorSpaceCreateCalibratedGray(const CGFloat whitePoint[3],
                                                           const CGFloat blackPoint[3],
                                                           CGFloat gamma);
/** An RGB space by white and black point (as above), an exponent for each component (NULL: 1) and
 *  the matrix from linear components to XYZ, a column of three for each (NULL: the identity). NULL
 *  without a white point. */
CG_EXPORT CGColorSpaceRef CGColorSpaceCreateCalibratedRGB(const CGFloat whitePoint[3],
                                                          const CGFloat blackPoint[3],
                                                          const CGFloat gamma[3],
                                                          const CGFloat matrix[9]);
/** A CIE L*a*b* space; `range` holds the least and the greatest a*, then the same of b* (NULL: -100
 *  to 100). NULL without a white point. */
CG_EXPORT CGColorSpaceRef CGColorSpaceCreateLab(const CGFloat whitePoint[3],
                                                const CGFloat blackPoint[3],
                                                const CGFloat range[4]);
/** A space whose one component is an index from 0 to `lastIndex` (1 to 255) into `colorTable`,
 * which is copied: a byte for each component of `baseSpace` a colour. NULL when something is
 * missing, the last index is out of range, or the base is itself indexed or a pattern space. */
CG_EXPORT CGColorSpaceRef CGColorSpaceCreateIndexed(CGColorSpaceRef baseSpace, size_t lastIndex,
                                                    const unsigned char* colorTable);
/** The space of patterns: uncoloured ones take their colour's components from `baseSpace`, coloured
 *  ones need none (NULL). NULL when the base is a pattern space. */
CG_EXPORT CGColorSpaceRef CGColorSpaceCreatePattern(CGColorSpaceRef baseSpace);
/** The space of an ICC profile with gray, RGB, CMYK or Lab components, which is kept. NULL when
 *  `data` is none or, with a warning, when its components are others. */
CG_EXPORT CGColorSpaceRef CGColorSpaceCreateWithICCProfile(CFDataRef data);
/** The same of a CFData or of a CGDataProvider, which is read. NULL, with a warning, for an object
 *  of another type. */
CG_EXPORT CGColorSpaceRef CGColorSpaceCreateWithICCData(CFTypeRef data);
/** The same: here a profile is the data that it was read from. There are no `options` yet: NULL. */
CG_EXPORT CGColorSpaceRef CGColorSpaceCreateWithColorSyncProfile(CFTypeRef profile,
                                                                 CFDictionaryRef options);
/** The space that CGColorSpaceCopyPropertyList described: of a name, or of an ICC profile. NULL for
 *  anything else. */
CG_EXPORT CGColorSpaceRef CGColorSpaceCreateWithPropertyList(CFPropertyListRef list);
/** `alternate` itself, retained: the profile is not read. NULL when it is missing or a pattern
 *  space. */
CG_EXPORT CGColorSpaceRef CGColorSpaceCreateICCBased(size_t componentCount, const CGFloat* range,
                                                     CGDataProviderRef profile,
                                                     CGColorSpaceRef alternate);
/** The space of a name: the generic gray, RGB and CMYK names give the device's spaces, which are
 *  known by that name from then on. NULL for every other name, and for kCGColorSpaceSRGB when the
 *  library's sRGB profile cannot be had, which is logged as an error. */
CG_EXPORT CGColorSpaceRef CGColorSpaceCreateWithName(CFStringRef name);
/** Not implemented: logs a fault and aborts. */
CG_EXPORT CGColorSpaceRef CGColorSpaceCreateWithPlatformColorSpace(const void* platformSpace);

CG_EXPORT CFTypeID CGColorSpaceGetTypeID(void);
CG_EXPORT CGColorSpaceRef CGColorSpaceRetain(CGColorSpaceRef space);
CG_EXPORT void CGColorSpaceRelease(CGColorSpaceRef space);

/* ---- Queries ------------------------------------------------------------------------------- */

/** kCGColorSpaceModelUnknown for NULL. */
CG_EXPORT CGColorSpaceModel CGColorSpaceGetModel(CGColorSpaceRef space);
/** How many components a colour has beside its opacity. */
CG_EXPORT size_t CGColorSpaceGetNumberOfComponents(CGColorSpaceRef space);
/** The base of an indexed or pattern space, else NULL. Lent. */
CG_EXPORT CGColorSpaceRef CGColorSpaceGetBaseColorSpace(CGColorSpaceRef space);
/** How many colours an indexed space has; 0 for other spaces. */
CG_EXPORT size_t CGColorSpaceGetColorTableCount(CGColorSpaceRef space);
/** Copies the colours of an indexed space into `table`, which has room for the count times the
 *  base's number of components. Leaves it alone for other spaces. */
CG_EXPORT void CGColorSpaceGetColorTable(CGColorSpaceRef space, uint8_t* table);
/** The name by which the space was asked for, or NULL. */
CG_EXPORT CFStringRef CGColorSpaceCopyName(CGColorSpaceRef space);
/** The ICC profile that the space was made of, or NULL; both functions are the same. */
CG_EXPORT CFDataRef CGColorSpaceCopyICCData(CGColorSpaceRef space);
CG_EXPORT CFDataRef CGColorSpaceCopyICCProfile(CGColorSpaceRef space);
/** What CGColorSpaceCreateWithPropertyList makes an equal space of: a name (the device's spaces
 *  have their generic ones), or the data of an ICC profile. NULL for other spaces. */
CG_EXPORT CFPropertyListRef CGColorSpaceCopyPropertyList(CGColorSpaceRef space);
/** Always false: no wide-gamut space can be made. */
CG_EXPORT bool CGColorSpaceIsWideGamutRGB(CGColorSpaceRef space);
/** Always true. */
CG_EXPORT bool CGColorSpaceSupportsOutput(CGColorSpaceRef space);

CG_END_DECLS
