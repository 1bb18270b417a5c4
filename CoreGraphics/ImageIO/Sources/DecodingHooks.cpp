// DecodingHooks.cpp: hands the image sources to the drawing library when this one is loaded.

#include "XGImage.h"

#include "Core/Object/RuntimeObject.h"

#include <ImageIO/CGImageSource.h>

// The one thing that happens at load time: a program that merely links this library can have the
// drawing library make images of PNG and JPEG data.
__attribute__((constructor)) static void fillDecodingHooks() {
    _ImageIOkCGImageSourceTypeIdentifierHint = kCGImageSourceTypeIdentifierHint;
    _ImageIOXGImageSourceRelease = cg::release<CGImageSourceRef>;
    _ImageIOCGImageSourceCreateImageAtIndex = CGImageSourceCreateImageAtIndex;
    _ImageIOCGImageSourceGetType = CGImageSourceGetType;
    _ImageIOCGImageSourceCreateWithDataProvider = CGImageSourceCreateWithDataProvider;
}
