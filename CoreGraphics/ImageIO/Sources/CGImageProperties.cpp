// CGImageProperties.cpp: the texts behind the property keys.

#include <CoreFoundation/CFConstantString.h>

#include <ImageIO/CGImageProperties.h>

// ---- What the image is.

CF_CONST_STRING_DECL(kCGImagePropertyFileSize, "FileSize");
CF_CONST_STRING_DECL(kCGImagePropertyPixelWidth, "PixelWidth");
CF_CONST_STRING_DECL(kCGImagePropertyPixelHeight, "PixelHeight");
CF_CONST_STRING_DECL(kCGImagePropertyDPIWidth, "DPIWidth");
CF_CONST_STRING_DECL(kCGImagePropertyDPIHeight, "DPIHeight");
CF_CONST_STRING_DECL(kCGImagePropertyDepth, "Depth");
CF_CONST_STRING_DECL(kCGImagePropertyOrientation, "Orientation");
CF_CONST_STRING_DECL(kCGImagePropertyIsFloat, "IsFloat");
CF_CONST_STRING_DECL(kCGImagePropertyIsIndexed, "IsIndexed");
CF_CONST_STRING_DECL(kCGImagePropertyHasAlpha, "HasAlpha");
CF_CONST_STRING_DECL(kCGImagePropertyColorModel, "ColorModel");
CF_CONST_STRING_DECL(kCGImagePropertyColorModelRGB, "RGB");
CF_CONST_STRING_DECL(kCGImagePropertyColorModelGray, "Gray");
CF_CONST_STRING_DECL(kCGImagePropertyColorModelCMYK, "CMYK");
CF_CONST_STRING_DECL(kCGImagePropertyColorModelLab, "Lab");
CF_CONST_STRING_DECL(kCGImagePropertyProfileName, "ProfileName");
CF_CONST_STRING_DECL(kCGImagePropertyNamedColorSpace, "NamedColorSpace");

// ---- Dictionaries within the dictionary, one for each kind of metadata.

CF_CONST_STRING_DECL(kCGImagePropertyTIFFDictionary, "{TIFF}");
CF_CONST_STRING_DECL(kCGImagePropertyJFIFDictionary, "{JFIF}");
CF_CONST_STRING_DECL(kCGImagePropertyExifDictionary, "{Exif}");
CF_CONST_STRING_DECL(kCGImagePropertyPNGDictionary, "{PNG}");
CF_CONST_STRING_DECL(kCGImagePropertyGIFDictionary, "{GIF}");

// ---- JFIF.

CF_CONST_STRING_DECL(kCGImagePropertyJFIFVersion, "JFIFVersion");
CF_CONST_STRING_DECL(kCGImagePropertyJFIFXDensity, "XDensity");
CF_CONST_STRING_DECL(kCGImagePropertyJFIFYDensity, "YDensity");
CF_CONST_STRING_DECL(kCGImagePropertyJFIFDensityUnit, "DensityUnit");
CF_CONST_STRING_DECL(kCGImagePropertyJFIFIsProgressive, "IsProgressive");

// ---- PNG.

CF_CONST_STRING_DECL(kCGImagePropertyPNGGamma, "Gamma");
CF_CONST_STRING_DECL(kCGImagePropertyPNGInterlaceType, "InterlaceType");
CF_CONST_STRING_DECL(kCGImagePropertyPNGXPixelsPerMeter, "XPixelsPerMeter");
CF_CONST_STRING_DECL(kCGImagePropertyPNGYPixelsPerMeter, "YPixelsPerMeter");
CF_CONST_STRING_DECL(kCGImagePropertyPNGsRGBIntent, "sRGBIntent");
CF_CONST_STRING_DECL(kCGImagePropertyPNGChromaticities, "Chromaticities");
CF_CONST_STRING_DECL(kCGImagePropertyPNGTitle, "Title");
CF_CONST_STRING_DECL(kCGImagePropertyPNGAuthor, "Author");
CF_CONST_STRING_DECL(kCGImagePropertyPNGDescription, "Description");
CF_CONST_STRING_DECL(kCGImagePropertyPNGCopyright, "Copyright");
CF_CONST_STRING_DECL(kCGImagePropertyPNGSoftware, "Software");
CF_CONST_STRING_DECL(kCGImagePropertyPNGCreationTime, "Creation Time");
CF_CONST_STRING_DECL(kCGImagePropertyPNGComment, "Comment");

// ---- TIFF tags, which EXIF data begins with.

CF_CONST_STRING_DECL(kCGImagePropertyTIFFDocumentName, "DocumentName");
CF_CONST_STRING_DECL(kCGImagePropertyTIFFImageDescription, "ImageDescription");
CF_CONST_STRING_DECL(kCGImagePropertyTIFFMake, "Make");
CF_CONST_STRING_DECL(kCGImagePropertyTIFFModel, "Model");
CF_CONST_STRING_DECL(kCGImagePropertyTIFFOrientation, "Orientation");
CF_CONST_STRING_DECL(kCGImagePropertyTIFFXResolution, "XResolution");
CF_CONST_STRING_DECL(kCGImagePropertyTIFFYResolution, "YResolution");
CF_CONST_STRING_DECL(kCGImagePropertyTIFFResolutionUnit, "ResolutionUnit");
CF_CONST_STRING_DECL(kCGImagePropertyTIFFSoftware, "Software");
CF_CONST_STRING_DECL(kCGImagePropertyTIFFDateTime, "DateTime");
CF_CONST_STRING_DECL(kCGImagePropertyTIFFArtist, "Artist");
CF_CONST_STRING_DECL(kCGImagePropertyTIFFHostComputer, "HostComputer");
CF_CONST_STRING_DECL(kCGImagePropertyTIFFCopyright, "Copyright");

// ---- EXIF tags.

CF_CONST_STRING_DECL(kCGImagePropertyExifExposureTime, "ExposureTime");
CF_CONST_STRING_DECL(kCGImagePropertyExifFNumber, "FNumber");
CF_CONST_STRING_DECL(kCGImagePropertyExifExposureProgram, "ExposureProgram");
CF_CONST_STRING_DECL(kCGImagePropertyExifISOSpeedRatings, "ISOSpeedRatings");
CF_CONST_STRING_DECL(kCGImagePropertyExifExifVersion, "ExifVersion");
CF_CONST_STRING_DECL(kCGImagePropertyExifDateTimeOriginal, "DateTimeOriginal");
CF_CONST_STRING_DECL(kCGImagePropertyExifDateTimeDigitized, "DateTimeDigitized");
CF_CONST_STRING_DECL(kCGImagePropertyExifShutterSpeedValue, "ShutterSpeedValue");
CF_CONST_STRING_DECL(kCGImagePropertyExifApertureValue, "ApertureValue");
CF_CONST_STRING_DECL(kCGImagePropertyExifBrightnessValue, "BrightnessValue");
CF_CONST_STRING_DECL(kCGImagePropertyExifExposureBiasValue, "ExposureBiasValue");
CF_CONST_STRING_DECL(kCGImagePropertyExifMaxApertureValue, "MaxApertureValue");
CF_CONST_STRING_DECL(kCGImagePropertyExifSubjectDistance, "SubjectDistance");
CF_CONST_STRING_DECL(kCGImagePropertyExifMeteringMode, "MeteringMode");
CF_CONST_STRING_DECL(kCGImagePropertyExifLightSource, "LightSource");
CF_CONST_STRING_DECL(kCGImagePropertyExifFlash, "Flash");
CF_CONST_STRING_DECL(kCGImagePropertyExifFocalLength, "FocalLength");
CF_CONST_STRING_DECL(kCGImagePropertyExifColorSpace, "ColorSpace");
CF_CONST_STRING_DECL(kCGImagePropertyExifPixelXDimension, "PixelXDimension");
CF_CONST_STRING_DECL(kCGImagePropertyExifPixelYDimension, "PixelYDimension");
CF_CONST_STRING_DECL(kCGImagePropertyExifExposureMode, "ExposureMode");
CF_CONST_STRING_DECL(kCGImagePropertyExifWhiteBalance, "WhiteBalance");
CF_CONST_STRING_DECL(kCGImagePropertyExifDigitalZoomRatio, "DigitalZoomRatio");
CF_CONST_STRING_DECL(kCGImagePropertyExifFocalLenIn35mmFilm, "FocalLenIn35mmFilm");
CF_CONST_STRING_DECL(kCGImagePropertyExifSceneCaptureType, "SceneCaptureType");
CF_CONST_STRING_DECL(kCGImagePropertyExifLensMake, "LensMake");
CF_CONST_STRING_DECL(kCGImagePropertyExifLensModel, "LensModel");
