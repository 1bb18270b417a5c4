/* CGImageDestination.h: writing images into files.
 *
 *     CGImageDestinationRef file = CGImageDestinationCreateWithURL(url, kUTTypePNG, 1, NULL);
 *     CGImageDestinationAddImage(file, image, NULL);
 *     bool written = CGImageDestinationFinalize(file);
 *     CFRelease(file);
 *
 * A destination has a format and room for a number of images, which the formats that can be written
 * limit to one. Nothing is written before it is finalised. */
#pragma once

#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFString.h>
#include <CoreFoundation/CFURL.h>
#include <CoreGraphics/CGDataConsumer.h>
#include <CoreGraphics/CGImage.h>

#include <ImageIO/CGImageSource.h>
#include <ImageIO/ImageIOBase.h>

CG_BEGIN_DECLS

typedef struct CGImageDestination* CGImageDestinationRef;

/* Properties of an image, or of all images of a destination. Out of CGImageProperties.h
 * kCGImagePropertyOrientation, kCGImagePropertyDPIWidth and kCGImagePropertyDPIHeight (both or
 * none) are written as well. What is not a number within the limits counts as not given. */

/** CFNumber from 0, the smallest file, to 1, the most faithful; 0.75 if not given. From 0.9 on
 *  colours are kept as sharp as brightness. For lossy formats. */
CG_EXPORT const CFStringRef kCGImageDestinationLossyCompressionQuality;
/** CGColor that shows through where the format knows no opacity; white if not given. */
CG_EXPORT const CFStringRef kCGImageDestinationBackgroundColor;

CG_EXPORT CFTypeID CGImageDestinationGetTypeID(void);
/** The type identifiers of the formats that can be written. */
CG_EXPORT CFArrayRef CGImageDestinationCopyTypeIdentifiers(void);

/* `type` names the format (kUTTypePNG), `count` the images that will be added; there are no
 * `options`. NULL, with a line in the log, for a format that cannot be written and a count that it
 * does not hold; and NULL without a sink. */

/** Into a consumer, which is retained; on failure it may have got a part of the file. */
CG_EXPORT CGImageDestinationRef CGImageDestinationCreateWithDataConsumer(CGDataConsumerRef consumer,
                                                                         CFStringRef type,
                                                                         size_t count,
                                                                         CFDictionaryRef options);
/** Onto the end of data, which is retained; failure leaves it as it was. */
CG_EXPORT CGImageDestinationRef CGImageDestinationCreateWithData(CFMutableDataRef data,
                                                                 CFStringRef type, size_t count,
                                                                 CFDictionaryRef options);
/** Into a file, which is replaced as a whole when all is done; failure leaves it as it was. NULL
 * for a URL that names no file. */
CG_EXPORT CGImageDestinationRef CGImageDestinationCreateWithURL(CFURLRef url, CFStringRef type,
                                                                size_t count,
                                                                CFDictionaryRef options);

/** Properties for all images; those of an image come first. NULL takes them back. */
CG_EXPORT void CGImageDestinationSetProperties(CGImageDestinationRef destination,
                                               CFDictionaryRef properties);
/** Adds an image, which is retained until the destination is finalised, with properties of its own
 *  (may be NULL). An image too many makes finalising fail. */
CG_EXPORT void CGImageDestinationAddImage(CGImageDestinationRef destination, CGImageRef image,
                                          CFDictionaryRef properties);
/** Adds an image of a source with the properties that it has there, for which `properties` may give
 *  others. */
CG_EXPORT void CGImageDestinationAddImageFromSource(CGImageDestinationRef destination,
                                                    CGImageSourceRef source, size_t index,
                                                    CFDictionaryRef properties);
/** Writes the file. False, with a line in the log, when fewer or more images were added than the
 *  count, when their bytes are missing, when the sink refuses bytes, and the second time. */
CG_EXPORT bool CGImageDestinationFinalize(CGImageDestinationRef destination);

CG_END_DECLS
