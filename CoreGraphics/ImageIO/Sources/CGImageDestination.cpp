// CGImageDestination.cpp: the object that images are written through.

#include <CoreFoundation/CFConstantString.h>

#include <ImageIO/CGImageDestination.h>

CF_CONST_STRING_DECL(kCGImageDestinationLossyCompressionQuality,
                     "kCGImageDestinationLossyCompressionQuality");
CF_CONST_STRING_DECL(kCGImageDestinationBackgroundColor, "kCGImageDestinationBackgroundColor");
