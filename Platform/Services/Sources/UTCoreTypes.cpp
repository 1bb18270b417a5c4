// UTCoreTypes.cpp: the constants that name kinds of data.

#include <CoreFoundation/CFConstantString.h>

#include <MobileCoreServices/UTCoreTypes.h>

CF_CONST_STRING_DECL(kUTTypeData, "public.data");
CF_CONST_STRING_DECL(kUTTypeImage, "public.image");

CF_CONST_STRING_DECL(kUTTypePNG, "public.png");
CF_CONST_STRING_DECL(kUTTypeJPEG, "public.jpeg");
CF_CONST_STRING_DECL(kUTTypeJPEG2000, "public.jpeg-2000");
CF_CONST_STRING_DECL(kUTTypeGIF, "com.compuserve.gif");
CF_CONST_STRING_DECL(kUTTypeTIFF, "public.tiff");
CF_CONST_STRING_DECL(kUTTypeBMP, "com.microsoft.bmp");
CF_CONST_STRING_DECL(kUTTypeICO, "com.microsoft.ico");
CF_CONST_STRING_DECL(kUTTypeScalableVectorGraphics, "public.svg-image");

CF_CONST_STRING_DECL(kUTTypePDF, "com.adobe.pdf");
CF_CONST_STRING_DECL(kUTTypePlainText, "public.plain-text");
CF_CONST_STRING_DECL(kUTTypeXML, "public.xml");
