/* CGPDFContext.h: contexts that write PDF files, and the keys of what such files say of themselves.
 */
#pragma once

#include <CoreGraphics/CGContext.h>
#include <CoreGraphics/CGDataConsumer.h>
#include <CoreGraphics/CGPDFDocument.h>

CG_BEGIN_DECLS

/* The text of each key is its identifier. */

/** Of a page: its boxes (ISO 32000-1, 14.11.2), each a CFData that holds a CGRect. */
CG_EXPORT const CFStringRef kCGPDFContextMediaBox;
CG_EXPORT const CFStringRef kCGPDFContextCropBox;
CG_EXPORT const CFStringRef kCGPDFContextBleedBox;
CG_EXPORT const CFStringRef kCGPDFContextTrimBox;
CG_EXPORT const CFStringRef kCGPDFContextArtBox;

/** Of a document: what it says of itself and what its readers may do with it. Texts are CFString;
 *  the key's length is a CFNumber of bits, a permission a CFBoolean. */
CG_EXPORT const CFStringRef kCGPDFContextTitle;
CG_EXPORT const CFStringRef kCGPDFContextAuthor;
CG_EXPORT const CFStringRef kCGPDFContextSubject;
CG_EXPORT const CFStringRef kCGPDFContextKeywords;
CG_EXPORT const CFStringRef kCGPDFContextCreator;
CG_EXPORT const CFStringRef kCGPDFContextOwnerPassword;
CG_EXPORT const CFStringRef kCGPDFContextUserPassword;
CG_EXPORT const CFStringRef kCGPDFContextEncryptionKeyLength;
CG_EXPORT const CFStringRef kCGPDFContextAllowsPrinting;
CG_EXPORT const CFStringRef kCGPDFContextAllowsCopying;
CG_EXPORT const CFStringRef kCGPDFContextOutputIntent;
CG_EXPORT const CFStringRef kCGPDFContextOutputIntents;

/** Of an output intent: the conditions that a document was made to be printed under (ISO 15930). */
CG_EXPORT const CFStringRef kCGPDFXOutputIntentSubtype;
CG_EXPORT const CFStringRef kCGPDFXOutputConditionIdentifier;
CG_EXPORT const CFStringRef kCGPDFXOutputCondition;
CG_EXPORT const CFStringRef kCGPDFXRegistryName;
CG_EXPORT const CFStringRef kCGPDFXInfo;
CG_EXPORT const CFStringRef kCGPDFXDestinationOutputProfile;

CG_END_DECLS
