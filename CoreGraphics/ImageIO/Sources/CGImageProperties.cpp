// CGImageProperties.cpp: the keys of an image's properties.

#include <CoreFoundation/CFConstantString.h>

#include <ImageIO/CGImageProperties.h>

CF_CONST_STRING_DECL(kCGImagePropertyPixelWidth, "PixelWidth");
CF_CONST_STRING_DECL(kCGImagePropertyPixelHeight, "PixelHeight");
CF_CONST_STRING_DECL(kCGImagePropertyDPIWidth, "DPIWidth");
CF_CONST_STRING_DECL(kCGImagePropertyDPIHeight, "DPIHeight");
CF_CONST_STRING_DECL(kCGImagePropertyOrientation, "Orientation");

CF_CONST_STRING_DECL(kCGImagePropertyDepth, "Depth");
CF_CONST_STRING_DECL(kCGImagePropertyIsFloat, "IsFloat");
CF_CONST_STRING_DECL(kCGImagePropertyIsIndexed, "IsIndexed");
CF_CONST_STRING_DECL(kCGImagePropertyHasAlpha, "HasAlpha");

CF_CONST_STRING_DECL(kCGImagePropertyColorModel, "ColorModel");
CF_CONST_STRING_DECL(kCGImagePropertyProfileName, "ProfileName");
CF_CONST_STRING_DECL(kCGImagePropertyColorModelRGB, "RGB");
CF_CONST_STRING_DECL(kCGImagePropertyColorModelGray, "Gray");
CF_CONST_STRING_DECL(kCGImagePropertyColorModelCMYK, "CMYK");
CF_CONST_STRING_DECL(kCGImagePropertyColorModelLab, "Lab");

CF_CONST_STRING_DECL(kCGImagePropertyFileSize, "FileSize");
