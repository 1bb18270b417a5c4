/* CGImageProperties.h: the keys of an image's properties, as read from a file or given for one. */
#pragma once

#include <ImageIO/ImageIOBase.h>

CG_BEGIN_DECLS

/** Geometry: numbers of pixels; pixels per inch; which of the eight ways the image is to be turned
 *  when it is shown, a number from 1, as stored, to 8. */
CG_EXTERN const CFStringRef kCGImagePropertyPixelWidth;
CG_EXTERN const CFStringRef kCGImagePropertyPixelHeight;
CG_EXTERN const CFStringRef kCGImagePropertyDPIWidth;
CG_EXTERN const CFStringRef kCGImagePropertyDPIHeight;
CG_EXTERN const CFStringRef kCGImagePropertyOrientation;

/** Pixels: bits per component, and booleans. */
CG_EXTERN const CFStringRef kCGImagePropertyDepth;
CG_EXTERN const CFStringRef kCGImagePropertyIsFloat;
CG_EXTERN const CFStringRef kCGImagePropertyIsIndexed;
CG_EXTERN const CFStringRef kCGImagePropertyHasAlpha;

/** Colour: the model, one of the four values below, and the name of the profile. */
CG_EXTERN const CFStringRef kCGImagePropertyColorModel;
CG_EXTERN const CFStringRef kCGImagePropertyProfileName;
CG_EXTERN const CFStringRef kCGImagePropertyColorModelRGB;
CG_EXTERN const CFStringRef kCGImagePropertyColorModelGray;
CG_EXTERN const CFStringRef kCGImagePropertyColorModelCMYK;
CG_EXTERN const CFStringRef kCGImagePropertyColorModelLab;

/** The file's size in bytes. */
CG_EXTERN const CFStringRef kCGImagePropertyFileSize;

CG_END_DECLS
