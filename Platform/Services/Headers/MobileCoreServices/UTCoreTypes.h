/* UTCoreTypes.h: the names of kinds of data, as uniform type identifiers.
 *
 * An identifier is a string in reverse domain order, compared without regard to case. The constants
 * are immortal and may be used before main. */
#pragma once

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

/** Any data at all, and any picture: what kinds of pictures belong to. */
CF_EXPORT const CFStringRef kUTTypeData;  /**< "public.data" */
CF_EXPORT const CFStringRef kUTTypeImage; /**< "public.image" */

/** Formats of picture files. */
CF_EXPORT const CFStringRef kUTTypePNG;                    /**< "public.png" */
CF_EXPORT const CFStringRef kUTTypeJPEG;                   /**< "public.jpeg" */
CF_EXPORT const CFStringRef kUTTypeJPEG2000;               /**< "public.jpeg-2000" */
CF_EXPORT const CFStringRef kUTTypeGIF;                    /**< "com.compuserve.gif" */
CF_EXPORT const CFStringRef kUTTypeTIFF;                   /**< "public.tiff" */
CF_EXPORT const CFStringRef kUTTypeBMP;                    /**< "com.microsoft.bmp" */
CF_EXPORT const CFStringRef kUTTypeICO;                    /**< "com.microsoft.ico" */
CF_EXPORT const CFStringRef kUTTypeScalableVectorGraphics; /**< "public.svg-image" */

/** Formats of documents. */
CF_EXPORT const CFStringRef kUTTypePDF;       /**< "com.adobe.pdf" */
CF_EXPORT const CFStringRef kUTTypePlainText; /**< "public.plain-text" */
CF_EXPORT const CFStringRef kUTTypeXML;       /**< "public.xml" */

CF_EXTERN_C_END
