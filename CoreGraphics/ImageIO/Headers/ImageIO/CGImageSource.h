/* CGImageSource.h: reading images, their thumbnails and what is said of them out of files.
 *
 * A source understands PNG, JPEG and JPEG 2000 (JP2 files and bare codestreams), each a file of one
 * image. It recognises a file by its first bytes. Reading is lazy: a source looks at the file's
 * header when it is first asked about it, and an image that it makes decodes its pixels when its
 * data provider is first locked; from then on they are kept until the provider is purged. All
 * images of one source share them.
 *
 * A header whose picture is out of all proportion to the file is refused, as no memory shall be
 * spent on it: more than 2^30 bytes of pixels, or more than 2^22 pixels of which there are more
 * than the format can pack into each byte of the file (8300 for PNG, 4096 for JPEG, 16384 for JPEG
 * 2000). A file that breaks off or is damaged further on yields a picture with what could be
 * decoded, the rest of it zeroes; where that is nothing at all, the image's bytes cannot be locked.
 *
 * Sources may be shared between threads. Options and the dictionaries given back are those of
 * CGImageProperties.h and of the keys below; options may be NULL everywhere, and unknown ones are
 * ignored. Ownership and NULL are as CGBase.h says for every object. */
#pragma once

#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFString.h>
#include <CoreFoundation/CFURL.h>
#include <CoreGraphics/CGDataProvider.h>
#include <CoreGraphics/CGImage.h>

#include <ImageIO/ImageIOBase.h>

CG_BEGIN_DECLS

typedef struct CGImageSource* CGImageSourceRef;

/** The state of an image, or of a file of images, while its bytes arrive. */
CG_ENUM(int32_t,
        CGImageSourceStatus){kCGImageStatusUnexpectedEOF = -5, kCGImageStatusInvalidData = -4,
                             kCGImageStatusUnknownType = -3,   kCGImageStatusReadingHeader = -2,
                             kCGImageStatusIncomplete = -1,    kCGImageStatusComplete = 0};

/** Option for creating a source, a CFString: the type identifier that the file is thought to have.
 *  What the bytes say goes first; the hint answers while there are too few to tell. */
CG_EXPORT const CFStringRef kCGImageSourceTypeIdentifierHint;
/** Option, a CFBoolean, true unless said otherwise: whether decoded pixels are kept once nobody
 *  looks at them. */
CG_EXPORT const CFStringRef kCGImageSourceShouldCache;
/** Option, a CFBoolean, false unless said otherwise: decode when the image is made. */
CG_EXPORT const CFStringRef kCGImageSourceShouldCacheImmediately;
/** Option, a CFBoolean, accepted without effect: no format read here has floating-point pixels. */
CG_EXPORT const CFStringRef kCGImageSourceShouldAllowFloat;
/** Option for thumbnails, a CFBoolean: make one from the image when the file holds none. */
CG_EXPORT const CFStringRef kCGImageSourceCreateThumbnailFromImageIfAbsent;
/** Option for thumbnails, a CFBoolean: make one from the image whatever the file holds. */
CG_EXPORT const CFStringRef kCGImageSourceCreateThumbnailFromImageAlways;
/** Option for thumbnails, a CFNumber: the most pixels that its longer side may have. */
CG_EXPORT const CFStringRef kCGImageSourceThumbnailMaxPixelSize;
/** Option for thumbnails, a CFBoolean: turn and mirror it upright by the image's orientation. */
CG_EXPORT const CFStringRef kCGImageSourceCreateThumbnailWithTransform;

/** The type identifiers of the files that a source understands; the caller owns the array. */
CG_EXPORT CFArrayRef CGImageSourceCopyTypeIdentifiers(void);

/** A source over the bytes of `provider`, which it retains and locks only while it reads; of a
 *  stream the bytes are gathered when they are first needed. NULL for NULL. */
CG_EXPORT CGImageSourceRef CGImageSourceCreateWithDataProvider(CGDataProviderRef provider,
                                                               CFDictionaryRef options);
/** A source over `data`, which is not copied unless it can still be changed. NULL for NULL. */
CG_EXPORT CGImageSourceRef CGImageSourceCreateWithData(CFDataRef data, CFDictionaryRef options);
/** A source over the file at `url`; NULL for NULL and when it cannot be opened. */
CG_EXPORT CGImageSourceRef CGImageSourceCreateWithURL(CFURLRef url, CFDictionaryRef options);
/** A source without bytes, for a file that arrives in pieces through the updates below. */
CG_EXPORT CGImageSourceRef CGImageSourceCreateIncremental(CFDictionaryRef options);

/** Gives an incremental source all bytes that have arrived so far, those of the earlier updates
 *  included; `final` says that no more will come. Images made before keep what they had. Without
 *  effect, after a log line, on other sources and after the final update. */
CG_EXPORT void CGImageSourceUpdateData(CGImageSourceRef source, CFDataRef data, bool final);
CG_EXPORT void CGImageSourceUpdateDataProvider(CGImageSourceRef source, CGDataProviderRef provider,
                                               bool final);

CG_EXPORT CFTypeID CGImageSourceGetTypeID(void);

/** The type identifier of the file ("public.png"), lent by the source; NULL when it is unknown. */
CG_EXPORT CFStringRef CGImageSourceGetType(CGImageSourceRef source);
/** How many images there are: 1 once the header has been read, 0 before and for unknown files. */
CG_EXPORT size_t CGImageSourceGetCount(CGImageSourceRef source);
/** The main image's index, 0. */
CG_EXPORT size_t CGImageSourceGetPrimaryImageIndex(CGImageSourceRef source);

/** How far reading has come. For a source that gets no more bytes: complete, unexpected end (the
 *  file breaks off), invalid data or unknown type. While bytes arrive: reading header, incomplete,
 *  complete, invalid data or unknown type. Invalid data for NULL. Looks at the file's structure
 *  without decoding pixels. */
CG_EXPORT CGImageSourceStatus CGImageSourceGetStatus(CGImageSourceRef source);
/** The same of one image; invalid data for an index that is not there. */
CG_EXPORT CGImageSourceStatus CGImageSourceGetStatusAtIndex(CGImageSourceRef source, size_t index);

/** What is known of the file as a whole: its size in bytes. NULL when its type is unknown. */
CG_EXPORT CFDictionaryRef CGImageSourceCopyProperties(CGImageSourceRef source,
                                                      CFDictionaryRef options);
/** What is known of one image, by the keys of CGImageProperties.h; NULL for an index that is not
 *  there. */
CG_EXPORT CFDictionaryRef CGImageSourceCopyPropertiesAtIndex(CGImageSourceRef source, size_t index,
                                                             CFDictionaryRef options);

/** The image at `index`, its pixels still to be decoded. NULL for an index that is not there, a
 *  header that cannot be read or is refused. */
CG_EXPORT CGImageRef CGImageSourceCreateImageAtIndex(CGImageSourceRef source, size_t index,
                                                     CFDictionaryRef options);
/** The thumbnail of the image at `index`: the one in the file's EXIF data, or one made of the image
 *  where an option asks for that: each pixel the mean of those that it covers, never larger than
 *  the image. NULL when neither is to be had. */
CG_EXPORT CGImageRef CGImageSourceCreateThumbnailAtIndex(CGImageSourceRef source, size_t index,
                                                         CFDictionaryRef options);

CG_END_DECLS
