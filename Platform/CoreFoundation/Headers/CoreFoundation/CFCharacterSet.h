/* CFCharacterSet.h: sets of Unicode characters, immutable and mutable.
 *
 * Characters are code points from 0 to 0x10FFFF; what a range holds beyond is left out. An
 * immutable set is not changed by the functions that change sets: they log an error. */
#pragma once

#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFData.h>

CF_EXTERN_C_BEGIN

typedef const struct __CFCharacterSet* CFCharacterSetRef;
typedef struct __CFCharacterSet* CFMutableCharacterSetRef;

/* The sets that Unicode's general categories define. */
CF_ENUM(CFIndex, CFCharacterSetPredefinedSet){
    kCFCharacterSetControl = 1,              /**< Cc and Cf. */
    kCFCharacterSetWhitespace = 2,           /**< Zs and the tab. */
    kCFCharacterSetWhitespaceAndNewline = 3, /**< Z, U+0009 to U+000D and U+0085. */
    kCFCharacterSetDecimalDigit = 4,         /**< Nd. */
    kCFCharacterSetLetter = 5,               /**< L and M. */
    kCFCharacterSetLowercaseLetter = 6,      /**< Ll. */
    kCFCharacterSetUppercaseLetter = 7,      /**< Lu and Lt. */
    kCFCharacterSetNonBase = 8,              /**< M. */
    kCFCharacterSetDecomposable = 9,         /**< What has a canonical decomposition. */
    kCFCharacterSetAlphaNumeric = 10,        /**< L, M and N. */
    kCFCharacterSetPunctuation = 11,         /**< P. */
    kCFCharacterSetIllegal = 12,             /**< Cn: not assigned. */
    kCFCharacterSetCapitalizedLetter = 13,   /**< Lt. */
    kCFCharacterSetSymbol = 14,              /**< S. */
    kCFCharacterSetNewline = 15              /**< U+000A to U+000D, U+0085, U+2028, U+2029. */
};

CF_EXPORT CFTypeID CFCharacterSetGetTypeID(void);

/** One of the sets above, or NULL; lent for ever. */
CF_EXPORT CFCharacterSetRef CFCharacterSetGetPredefined(CFCharacterSetPredefinedSet identifier);

/* Creation gives NULL for NULL arguments, negative ranges, and when memory runs out. */

CF_EXPORT CFCharacterSetRef CFCharacterSetCreateWithCharactersInRange(CFAllocatorRef allocator,
                                                                      CFRange range);
CF_EXPORT CFCharacterSetRef CFCharacterSetCreateWithCharactersInString(CFAllocatorRef allocator,
                                                                       CFStringRef string);
/** From 8192 bytes, a bit for each character of the basic plane, the lowest bit first; then, for
 * each further plane with members, a byte with its number and 8192 bytes more. Fewer bytes count as
 * 0. */
CF_EXPORT CFCharacterSetRef CFCharacterSetCreateWithBitmapRepresentation(CFAllocatorRef allocator,
                                                                         CFDataRef bitmap);
CF_EXPORT CFCharacterSetRef CFCharacterSetCreateInvertedSet(CFAllocatorRef allocator,
                                                            CFCharacterSetRef set);
/** An immutable set of the same members: the set itself, retained, where it is immutable. */
CF_EXPORT CFCharacterSetRef CFCharacterSetCreateCopy(CFAllocatorRef allocator,
                                                     CFCharacterSetRef set);
/** An empty set. */
CF_EXPORT CFMutableCharacterSetRef CFCharacterSetCreateMutable(CFAllocatorRef allocator);
CF_EXPORT CFMutableCharacterSetRef CFCharacterSetCreateMutableCopy(CFAllocatorRef allocator,
                                                                   CFCharacterSetRef set);
/** The bytes that CFCharacterSetCreateWithBitmapRepresentation reads. */
CF_EXPORT CFDataRef CFCharacterSetCreateBitmapRepresentation(CFAllocatorRef allocator,
                                                             CFCharacterSetRef set);

CF_EXPORT Boolean CFCharacterSetIsCharacterMember(CFCharacterSetRef set, UniChar character);
CF_EXPORT Boolean CFCharacterSetIsLongCharacterMember(CFCharacterSetRef set, UTF32Char character);
/** Whether all of `subset` is in `set`. */
CF_EXPORT Boolean CFCharacterSetIsSupersetOfSet(CFCharacterSetRef set, CFCharacterSetRef subset);
/** Whether there are members from plane 0 to 16. */
CF_EXPORT Boolean CFCharacterSetHasMemberInPlane(CFCharacterSetRef set, CFIndex plane);

CF_EXPORT void CFCharacterSetAddCharactersInRange(CFMutableCharacterSetRef set, CFRange range);
CF_EXPORT void CFCharacterSetRemoveCharactersInRange(CFMutableCharacterSetRef set, CFRange range);
CF_EXPORT void CFCharacterSetAddCharactersInString(CFMutableCharacterSetRef set,
                                                   CFStringRef string);
CF_EXPORT void CFCharacterSetRemoveCharactersInString(CFMutableCharacterSetRef set,
                                                      CFStringRef string);
CF_EXPORT void CFCharacterSetUnion(CFMutableCharacterSetRef set, CFCharacterSetRef other);
CF_EXPORT void CFCharacterSetIntersect(CFMutableCharacterSetRef set, CFCharacterSetRef other);
CF_EXPORT void CFCharacterSetInvert(CFMutableCharacterSetRef set);

CF_EXTERN_C_END
