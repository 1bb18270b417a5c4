/* CGImageSource.h: how far the decoding of an image has come. */
#pragma once

#include <ImageIO/ImageIOBase.h>

/** The state of an image, or of a file of images, while its bytes arrive. */
CG_ENUM(int32_t,
        CGImageSourceStatus){kCGImageStatusUnexpectedEOF = -5, kCGImageStatusInvalidData = -4,
                             kCGImageStatusUnknownType = -3,   kCGImageStatusReadingHeader = -2,
                             kCGImageStatusIncomplete = -1,    kCGImageStatusComplete = 0};
