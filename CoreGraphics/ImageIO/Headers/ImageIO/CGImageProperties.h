/* CGImageProperties.h: the keys by which image sources tell, and image destinations are told, about
 * an image.
 *
 * Each is a CFString. Values are CFNumbers unless it is said otherwise; text is a CFString. EXIF
 * and TIFF tags have the names and units that the EXIF standard gives them: rationals are
 * floating-point numbers, ISOSpeedRatings and ExifVersion arrays of numbers. */
#pragma once

#include <CoreFoundation/CFString.h>

#include <ImageIO/ImageIOBase.h>

CG_BEGIN_DECLS

/* ---- What the image is. */

/** CFNumber: bytes of the file; a property of the file. */
CG_EXPORT const CFStringRef kCGImagePropertyFileSize;
/** CFNumber: pixels in a row. */
CG_EXPORT const CFStringRef kCGImagePropertyPixelWidth;
/** CFNumber: rows. */
CG_EXPORT const CFStringRef kCGImagePropertyPixelHeight;
/** CFNumber: pixels an inch, where the file says so. */
CG_EXPORT const CFStringRef kCGImagePropertyDPIWidth;
CG_EXPORT const CFStringRef kCGImagePropertyDPIHeight;
/** CFNumber: bits of a component. */
CG_EXPORT const CFStringRef kCGImagePropertyDepth;
/** CFNumber, 1 to 8: where the first row and column lie, as EXIF counts. */
CG_EXPORT const CFStringRef kCGImagePropertyOrientation;
/** CFBoolean: components are floating-point numbers. */
CG_EXPORT const CFStringRef kCGImagePropertyIsFloat;
/** CFBoolean: pixels are places in a colour table. */
CG_EXPORT const CFStringRef kCGImagePropertyIsIndexed;
/** CFBoolean: pixels have an opacity. */
CG_EXPORT const CFStringRef kCGImagePropertyHasAlpha;
/** CFString: one of the models below. */
CG_EXPORT const CFStringRef kCGImagePropertyColorModel;
CG_EXPORT const CFStringRef kCGImagePropertyColorModelRGB;
CG_EXPORT const CFStringRef kCGImagePropertyColorModelGray;
CG_EXPORT const CFStringRef kCGImagePropertyColorModelCMYK;
CG_EXPORT const CFStringRef kCGImagePropertyColorModelLab;
/** CFString: how the colour profile describes itself, where the colour space has one. */
CG_EXPORT const CFStringRef kCGImagePropertyProfileName;
/** CFString: the name of the colour space, where it has one. */
CG_EXPORT const CFStringRef kCGImagePropertyNamedColorSpace;

/* ---- Dictionaries within the dictionary, one for each kind of metadata. */

CG_EXPORT const CFStringRef kCGImagePropertyTIFFDictionary;
CG_EXPORT const CFStringRef kCGImagePropertyJFIFDictionary;
CG_EXPORT const CFStringRef kCGImagePropertyExifDictionary;
CG_EXPORT const CFStringRef kCGImagePropertyPNGDictionary;
CG_EXPORT const CFStringRef kCGImagePropertyGIFDictionary;

/* ---- JFIF. */

/** CFArray of two CFNumbers. */
CG_EXPORT const CFStringRef kCGImagePropertyJFIFVersion;
CG_EXPORT const CFStringRef kCGImagePropertyJFIFXDensity;
CG_EXPORT const CFStringRef kCGImagePropertyJFIFYDensity;
/** CFNumber: 0 for a mere ratio, 1 per inch, 2 per centimetre. */
CG_EXPORT const CFStringRef kCGImagePropertyJFIFDensityUnit;
/** CFBoolean. */
CG_EXPORT const CFStringRef kCGImagePropertyJFIFIsProgressive;

/* ---- PNG. */

/** CFNumber: the exponent that pixels were encoded with. */
CG_EXPORT const CFStringRef kCGImagePropertyPNGGamma;
/** CFNumber: 0 for none, 1 for Adam7. */
CG_EXPORT const CFStringRef kCGImagePropertyPNGInterlaceType;
CG_EXPORT const CFStringRef kCGImagePropertyPNGXPixelsPerMeter;
CG_EXPORT const CFStringRef kCGImagePropertyPNGYPixelsPerMeter;
/** CFNumber: the rendering intent, 0 to 3, of a file that is sRGB. */
CG_EXPORT const CFStringRef kCGImagePropertyPNGsRGBIntent;
/** CFArray of eight CFNumbers: x and y of white, red, green and blue. */
CG_EXPORT const CFStringRef kCGImagePropertyPNGChromaticities;
CG_EXPORT const CFStringRef kCGImagePropertyPNGTitle;
CG_EXPORT const CFStringRef kCGImagePropertyPNGAuthor;
CG_EXPORT const CFStringRef kCGImagePropertyPNGDescription;
CG_EXPORT const CFStringRef kCGImagePropertyPNGCopyright;
CG_EXPORT const CFStringRef kCGImagePropertyPNGSoftware;
CG_EXPORT const CFStringRef kCGImagePropertyPNGCreationTime;
CG_EXPORT const CFStringRef kCGImagePropertyPNGComment;

/* ---- TIFF tags, which EXIF data begins with. */

CG_EXPORT const CFStringRef kCGImagePropertyTIFFDocumentName;
CG_EXPORT const CFStringRef kCGImagePropertyTIFFImageDescription;
CG_EXPORT const CFStringRef kCGImagePropertyTIFFMake;
CG_EXPORT const CFStringRef kCGImagePropertyTIFFModel;
CG_EXPORT const CFStringRef kCGImagePropertyTIFFOrientation;
CG_EXPORT const CFStringRef kCGImagePropertyTIFFXResolution;
CG_EXPORT const CFStringRef kCGImagePropertyTIFFYResolution;
CG_EXPORT const CFStringRef kCGImagePropertyTIFFResolutionUnit;
CG_EXPORT const CFStringRef kCGImagePropertyTIFFSoftware;
CG_EXPORT const CFStringRef kCGImagePropertyTIFFDateTime;
CG_EXPORT const CFStringRef kCGImagePropertyTIFFArtist;
CG_EXPORT const CFStringRef kCGImagePropertyTIFFHostComputer;
CG_EXPORT const CFStringRef kCGImagePropertyTIFFCopyright;

/* ---- EXIF tags. */

CG_EXPORT const CFStringRef kCGImagePropertyExifExposureTime;
CG_EXPORT const CFStringRef kCGImagePropertyExifFNumber;
CG_EXPORT const CFStringRef kCGImagePropertyExifExposureProgram;
CG_EXPORT const CFStringRef kCGImagePropertyExifISOSpeedRatings;
CG_EXPORT const CFStringRef kCGImagePropertyExifExifVersion;
CG_EXPORT const CFStringRef kCGImagePropertyExifDateTimeOriginal;
CG_EXPORT const CFStringRef kCGImagePropertyExifDateTimeDigitized;
CG_EXPORT const CFStringRef kCGImagePropertyExifShutterSpeedValue;
CG_EXPORT const CFStringRef kCGImagePropertyExifApertureValue;
CG_EXPORT const CFStringRef kCGImagePropertyExifBrightnessValue;
CG_EXPORT const CFStringRef kCGImagePropertyExifExposureBiasValue;
CG_EXPORT const CFStringRef kCGImagePropertyExifMaxApertureValue;
CG_EXPORT const CFStringRef kCGImagePropertyExifSubjectDistance;
CG_EXPORT const CFStringRef kCGImagePropertyExifMeteringMode;
CG_EXPORT const CFStringRef kCGImagePropertyExifLightSource;
CG_EXPORT const CFStringRef kCGImagePropertyExifFlash;
CG_EXPORT const CFStringRef kCGImagePropertyExifFocalLength;
CG_EXPORT const CFStringRef kCGImagePropertyExifColorSpace;
CG_EXPORT const CFStringRef kCGImagePropertyExifPixelXDimension;
CG_EXPORT const CFStringRef kCGImagePropertyExifPixelYDimension;
CG_EXPORT const CFStringRef kCGImagePropertyExifExposureMode;
CG_EXPORT const CFStringRef kCGImagePropertyExifWhiteBalance;
CG_EXPORT const CFStringRef kCGImagePropertyExifDigitalZoomRatio;
CG_EXPORT const CFStringRef kCGImagePropertyExifFocalLenIn35mmFilm;
CG_EXPORT const CFStringRef kCGImagePropertyExifSceneCaptureType;
CG_EXPORT const CFStringRef kCGImagePropertyExifLensMake;
CG_EXPORT const CFStringRef kCGImagePropertyExifLensModel;

/** Where an image's first row and first column lie: upright it has its first row at the top and its
 *  first column on the left. Values as in EXIF and TIFF. */
CG_ENUM(uint32_t, CGImagePropertyOrientation){kCGImagePropertyOrientationUp = 1,
                                              kCGImagePropertyOrientationUpMirrored = 2,
                                              kCGImagePropertyOrientationDown = 3,
                                              kCGImagePropertyOrientationDownMirrored = 4,
                                              kCGImagePropertyOrientationLeftMirrored = 5,
                                              kCGImagePropertyOrientationRight = 6,
                                              kCGImagePropertyOrientationRightMirrored = 7,
                                              kCGImagePropertyOrientationLeft = 8};

CG_END_DECLS
