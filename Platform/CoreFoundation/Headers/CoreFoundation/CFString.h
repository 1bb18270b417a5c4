/* CFString.h: Unicode strings, immutable and mutable.
 *
 * A string is a sequence of UTF-16 units; lengths, indices and ranges count units, and a surrogate
 * that has no partner is kept as it is. Ranges that reach outside a string are refused with an
 * error in the log and the neutral answer. A failed allocation leaves a mutable string as it was.
 * What a function writes into a caller's buffer stays within the size given. */
#pragma once

#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFCharacterSet.h>
#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFLocale.h>

CF_EXTERN_C_BEGIN

/** A way of writing Unicode as bytes: the values below and those of CFStringEncodingExt.h. */
typedef UInt32 CFStringEncoding;

#define kCFStringEncodingInvalidId (0xffffffffU)

CF_ENUM(CFStringEncoding, CFStringBuiltInEncodings){
    kCFStringEncodingMacRoman = 0,
    kCFStringEncodingWindowsLatin1 = 0x0500,
    kCFStringEncodingISOLatin1 = 0x0201,
    kCFStringEncodingNextStepLatin = 0x0B01,
    kCFStringEncodingASCII = 0x0600,
    kCFStringEncodingUnicode = 0x0100,
    kCFStringEncodingUTF8 = 0x08000100,
    kCFStringEncodingNonLossyASCII = 0x0BFF, /**< Backslash escapes for all that is not ASCII. */
    kCFStringEncodingUTF16 = 0x0100,         /**< Byte order by mark, else the host's. */
    kCFStringEncodingUTF16BE = 0x10000100,
    kCFStringEncodingUTF16LE = 0x14000100,
    kCFStringEncodingUTF32 = 0x0c000100, /**< Byte order by mark, else the host's. */
    kCFStringEncodingUTF32BE = 0x18000100,
    kCFStringEncodingUTF32LE = 0x1c000100};

/* How strings are compared and searched. */
CF_OPTIONS(CFOptionFlags, CFStringCompareFlags){
    kCFCompareCaseInsensitive = 1,
    kCFCompareBackwards = 4,    /**< Find: the last occurrence first. */
    kCFCompareAnchored = 8,     /**< Find: only at the range's start (backwards: at its end). */
    kCFCompareNonliteral = 16,  /**< Canonically equivalent sequences are equal. */
    kCFCompareLocalized = 32,   /**< In the order of the locale's collation. */
    kCFCompareNumerically = 64, /**< Runs of digits by their value. */
    kCFCompareDiacriticInsensitive = 128,
    kCFCompareWidthInsensitive = 256, /**< Full-width and half-width forms are equal. */
    kCFCompareForcedOrdering = 512    /**< Strings found equal but not identical are told apart. */
};

CF_ENUM(CFIndex, CFStringNormalizationForm){
    kCFStringNormalizationFormD = 0, kCFStringNormalizationFormKD = 1,
    kCFStringNormalizationFormC = 2, kCFStringNormalizationFormKC = 3};

CF_EXPORT CFTypeID CFStringGetTypeID(void);

/* ---- Constant strings ---------------------------------------------------------------------- */

/** The immortal string of a UTF-8 literal; equal literals give the same object. Lent, to be neither
 *  released nor freed. From any thread; a repeated call costs about a comparison of the text. */
#define CFSTR(literal) __CFStringMakeConstantString("" literal "")
CF_EXPORT CFStringRef __CFStringMakeConstantString(const char* text);

/* ---- Creation ------------------------------------------------------------------------------ */

/* All give NULL when memory runs out, for NULL contents with a length other than 0, for a negative
 * length and for bytes that are malformed in their encoding or whose encoding is not available. */

CF_EXPORT CFStringRef CFStringCreateWithCharacters(CFAllocatorRef allocator,
                                                   const UniChar* characters, CFIndex count);
/** From bytes that end with a NUL. */
CF_EXPORT CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text,
                                                CFStringEncoding encoding);
/** From `count` bytes. A byte order mark is taken as one (and left out) when
 *  `isExternalRepresentation`. */
CF_EXPORT CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const UInt8* bytes,
                                              CFIndex count, CFStringEncoding encoding,
                                              Boolean isExternalRepresentation);
/** From a byte that counts and the bytes that follow it. */
CF_EXPORT CFStringRef CFStringCreateWithPascalString(CFAllocatorRef allocator,
                                                     ConstStr255Param text,
                                                     CFStringEncoding encoding);

/* The NoCopy family uses the caller's buffer where its form allows, else copies it; in both cases
 * the string frees it by `contentsDeallocator` (NULL: the default allocator; kCFAllocatorNull:
 * never) when it is done with it, at the latest when finalised. When the result is NULL the buffer
 * is still the caller's. The buffer must not change while the string lives. */

CF_EXPORT CFStringRef CFStringCreateWithCharactersNoCopy(CFAllocatorRef allocator,
                                                         const UniChar* characters, CFIndex count,
                                                         CFAllocatorRef contentsDeallocator);
CF_EXPORT CFStringRef CFStringCreateWithCStringNoCopy(CFAllocatorRef allocator, const char* text,
                                                      CFStringEncoding encoding,
                                                      CFAllocatorRef contentsDeallocator);
CF_EXPORT CFStringRef CFStringCreateWithBytesNoCopy(CFAllocatorRef allocator, const UInt8* bytes,
                                                    CFIndex count, CFStringEncoding encoding,
                                                    Boolean isExternalRepresentation,
                                                    CFAllocatorRef contentsDeallocator);
CF_EXPORT CFStringRef CFStringCreateWithPascalStringNoCopy(CFAllocatorRef allocator,
                                                           ConstStr255Param text,
                                                           CFStringEncoding encoding,
                                                           CFAllocatorRef contentsDeallocator);

CF_EXPORT CFStringRef CFStringCreateWithSubstring(CFAllocatorRef allocator, CFStringRef string,
                                                  CFRange range);
/** An immutable string of the same text: `string` itself, retained, where it is immutable. */
CF_EXPORT CFStringRef CFStringCreateCopy(CFAllocatorRef allocator, CFStringRef string);

/** An empty mutable string. `maximumLength` is a hint of how long it will grow at most; 0 for no
 *  idea. It does not limit the string. */
CF_EXPORT CFMutableStringRef CFStringCreateMutable(CFAllocatorRef allocator, CFIndex maximumLength);
CF_EXPORT CFMutableStringRef CFStringCreateMutableCopy(CFAllocatorRef allocator,
                                                       CFIndex maximumLength, CFStringRef string);
/** A mutable string that works in the caller's buffer of `capacity` units, `count` of them filled.
 *  When that is too small it is moved by `externalCharactersAllocator` (NULL: the default
 *  allocator), which also frees it; with kCFAllocatorNull it is neither freed nor outgrown: changes
 *  that do not fit are refused. */
CF_EXPORT CFMutableStringRef CFStringCreateMutableWithExternalCharactersNoCopy(
    CFAllocatorRef allocator, UniChar* characters, CFIndex count, CFIndex capacity,
    CFAllocatorRef externalCharactersAllocator);

/* ---- Formats ------------------------------------------------------------------------------- */

/* A format has the conversions of printf, with flags, width, precision and the length modifiers
 * h hh l ll q j z t L, and positions as in "%2$d", and besides
 *   %@  an object, by its class's formatting description, else its description; NULL: "(null)"
 *   %C  a UniChar; %S  UTF-16 units that end with 0; %s  bytes that end with 0, in UTF-8
 * For text the width counts UTF-16 units, and the precision what is read: bytes of %s, else units,
 * so that no more are looked at. Numbers do not depend on the C locale. Conversions that are not
 * known are copied; %n is not known. `formatOptions` is handed on to the descriptions. */

CF_EXPORT CFStringRef CFStringCreateWithFormat(CFAllocatorRef allocator,
                                               CFDictionaryRef formatOptions, CFStringRef format,
                                               ...);
CF_EXPORT CFStringRef CFStringCreateWithFormatAndArguments(CFAllocatorRef allocator,
                                                           CFDictionaryRef formatOptions,
                                                           CFStringRef format, va_list arguments);
CF_EXPORT void CFStringAppendFormat(CFMutableStringRef string, CFDictionaryRef formatOptions,
                                    CFStringRef format, ...);
CF_EXPORT void CFStringAppendFormatAndArguments(CFMutableStringRef string,
                                                CFDictionaryRef formatOptions, CFStringRef format,
                                                va_list arguments);

/* ---- Characters ---------------------------------------------------------------------------- */

CF_EXPORT CFIndex CFStringGetLength(CFStringRef string);
/** The unit at `index`; 0 outside the string. */
CF_EXPORT UniChar CFStringGetCharacterAtIndex(CFStringRef string, CFIndex index);
/** Copies the units of `range`; nothing when it reaches outside. */
CF_EXPORT void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* buffer);
/** The string's own units where it stores UTF-16, else NULL; lent until the string is changed. */
CF_EXPORT const UniChar* CFStringGetCharactersPtr(CFStringRef string);
/** The string's own bytes, NUL-terminated, where they are in `encoding`, else NULL; lent until the
 *  string is changed. */
CF_EXPORT const char* CFStringGetCStringPtr(CFStringRef string, CFStringEncoding encoding);
CF_EXPORT ConstStringPtr CFStringGetPascalStringPtr(CFStringRef string, CFStringEncoding encoding);
/** The sequence around `index` that people see as one character: surrogate pairs, base and marks,
 *  conjoining letters. {kCFNotFound, 0} outside the string. */
CF_EXPORT CFRange CFStringGetRangeOfComposedCharactersAtIndex(CFStringRef string, CFIndex index);
/** Where the lines that `range` touches begin and end, and where the last one's text ends before
 * its line end. Any of the results may be NULL. */
CF_EXPORT void CFStringGetLineBounds(CFStringRef string, CFRange range, CFIndex* lineBeginIndex,
                                     CFIndex* lineEndIndex, CFIndex* contentsEndIndex);
/** The same for paragraphs, which a line separator does not end. */
CF_EXPORT void CFStringGetParagraphBounds(CFStringRef string, CFRange range, CFIndex* parBeginIndex,
                                          CFIndex* parEndIndex, CFIndex* contentsEndIndex);

CF_INLINE Boolean CFStringIsSurrogateHighCharacter(UniChar character) {
    return character >= 0xD800 && character <= 0xDBFF;
}
CF_INLINE Boolean CFStringIsSurrogateLowCharacter(UniChar character) {
    return character >= 0xDC00 && character <= 0xDFFF;
}
CF_INLINE UTF32Char CFStringGetLongCharacterForSurrogatePair(UniChar high, UniChar low) {
    return ((UTF32Char)(high - 0xD800U) << 10) + (UTF32Char)(low - 0xDC00U) + 0x10000U;
}
/** Writes one or two units for `character`; true when it took a pair. */
CF_INLINE Boolean CFStringGetSurrogatePairForLongCharacter(UTF32Char character,
                                                           UniChar* surrogates) {
    if (character < 0x10000U) {
        surrogates[0] = (UniChar)character;
        return FALSE;
    }
    surrogates[0] = (UniChar)(0xD7C0U + (character >> 10));
    surrogates[1] = (UniChar)(0xDC00U + (character & 0x3FFU));
    return TRUE;
}

/** A view for reading many characters in turn. Its fields belong to the functions below. */
typedef struct CFStringInlineBuffer {
    CFStringRef theString;
    const UniChar* directUniCharBuffer;
    const char* directCStringBuffer; /**< Latin-1, where there are no units. */
    CFRange rangeToBuffer;
} CFStringInlineBuffer;

/** Prepares `buffer` to read `range` of `string`, which must live and stay unchanged meanwhile. A
 *  range that reaches outside reads as empty. */
CF_EXPORT void CFStringInitInlineBuffer(CFStringRef string, CFStringInlineBuffer* buffer,
                                        CFRange range);

/** The unit at `index` of the buffer's range; 0 outside it. */
CF_INLINE UniChar CFStringGetCharacterFromInlineBuffer(CFStringInlineBuffer* buffer,
                                                       CFIndex index) {
    if (index < 0 || index >= buffer->rangeToBuffer.length)
        return 0;
    if (buffer->directUniCharBuffer)
        return buffer->directUniCharBuffer[index + buffer->rangeToBuffer.location];
    return (UniChar)(UInt8)buffer->directCStringBuffer[index + buffer->rangeToBuffer.location];
}

/* ---- Bytes --------------------------------------------------------------------------------- */

/** Writes the whole string in `encoding` and a NUL. False, with nothing kept, when the buffer is
 * too small or the string cannot be written in that encoding. */
CF_EXPORT Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex bufferSize,
                                     CFStringEncoding encoding);
/** The same with a leading byte that counts, for up to 255 bytes. */
CF_EXPORT Boolean CFStringGetPascalString(CFStringRef string, StringPtr buffer, CFIndex bufferSize,
                                          CFStringEncoding encoding);
/** Writes as much of `range` as fits into `maxBufferSize` bytes and as `encoding` can express,
 * where `lossByte` (0: none) stands for what it cannot. Returns how many units were converted,
 * never half of a surrogate pair, and in `usedBufferSize` (may be NULL) the bytes that they took. A
 * NULL `buffer` counts only. `isExternalRepresentation` puts a byte order mark before UTF-16 and
 * UTF-32 of no stated order. */
CF_EXPORT CFIndex CFStringGetBytes(CFStringRef string, CFRange range, CFStringEncoding encoding,
                                   UInt8 lossByte, Boolean isExternalRepresentation, UInt8* buffer,
                                   CFIndex maxBufferSize, CFIndex* usedBufferSize);
/** The string in `encoding`, with a byte order mark for UTF-16 and UTF-32 of no stated order. NULL
 *  when it cannot be expressed and `lossByte` is 0. */
CF_EXPORT CFDataRef CFStringCreateExternalRepresentation(CFAllocatorRef allocator,
                                                         CFStringRef string,
                                                         CFStringEncoding encoding, UInt8 lossByte);
CF_EXPORT CFStringRef CFStringCreateFromExternalRepresentation(CFAllocatorRef allocator,
                                                               CFDataRef data,
                                                               CFStringEncoding encoding);
/** The most bytes that `length` units can take in `encoding`, without a NUL; kCFNotFound when that
 *  does not fit a CFIndex or `length` is negative. */
CF_EXPORT CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);

/* File names are UTF-8 here, kept as they are. */

/** Writes the string as a file name and a NUL; false when it does not fit or holds a NUL. */
CF_EXPORT Boolean CFStringGetFileSystemRepresentation(CFStringRef string, char* buffer,
                                                      CFIndex maxBufferSize);
/** The most bytes that the string takes as a file name, with its NUL. */
CF_EXPORT CFIndex CFStringGetMaximumSizeOfFileSystemRepresentation(CFStringRef string);
CF_EXPORT CFStringRef CFStringCreateWithFileSystemRepresentation(CFAllocatorRef allocator,
                                                                 const char* name);

/* ---- Encodings ----------------------------------------------------------------------------- */

/** What %s and file contents without a stated encoding are in: UTF-8. */
CF_EXPORT CFStringEncoding CFStringGetSystemEncoding(void);
CF_EXPORT CFStringEncoding CFStringGetFileSystemEncoding(void);
/** The encoding from which the string's characters can be had at once. */
CF_EXPORT CFStringEncoding CFStringGetFastestEncoding(CFStringRef string);
/** The smallest encoding that can express the string. */
CF_EXPORT CFStringEncoding CFStringGetSmallestEncoding(CFStringRef string);
CF_EXPORT Boolean CFStringIsEncodingAvailable(CFStringEncoding encoding);
/** The encodings that are available, ended by kCFStringEncodingInvalidId; lent. */
CF_EXPORT const CFStringEncoding* CFStringGetListOfAvailableEncodings(void);
/** An English name of the encoding, or NULL; lent. */
CF_EXPORT CFStringRef CFStringGetNameOfEncoding(CFStringEncoding encoding);
/** The registered character set name, or NULL; lent. */
CF_EXPORT CFStringRef CFStringConvertEncodingToIANACharSetName(CFStringEncoding encoding);
/** By name or alias, in any case; kCFStringEncodingInvalidId when unknown. */
CF_EXPORT CFStringEncoding CFStringConvertIANACharSetNameToEncoding(CFStringRef name);
/** The code page's number, or kCFStringEncodingInvalidId. */
CF_EXPORT UInt32 CFStringConvertEncodingToWindowsCodepage(CFStringEncoding encoding);
CF_EXPORT CFStringEncoding CFStringConvertWindowsCodepageToEncoding(UInt32 codepage);
/** Numbers of the object-oriented string class; others than its own small set are 0x80000000 with
 *  the CFStringEncoding in the low bits. */
CF_EXPORT unsigned long CFStringConvertEncodingToNSStringEncoding(CFStringEncoding encoding);
CF_EXPORT CFStringEncoding CFStringConvertNSStringEncodingToEncoding(unsigned long encoding);
/** The Mac encoding of the same script; kCFStringEncodingInvalidId when unknown. */
CF_EXPORT CFStringEncoding CFStringGetMostCompatibleMacStringEncoding(CFStringEncoding encoding);

/* ---- Comparing and searching --------------------------------------------------------------- */

/* NULL compares as less than every string. Without options units are compared by value. */

CF_EXPORT CFComparisonResult CFStringCompare(CFStringRef a, CFStringRef b,
                                             CFStringCompareFlags options);
/** Compares `range` of `a` with all of `b`. */
CF_EXPORT CFComparisonResult CFStringCompareWithOptions(CFStringRef a, CFStringRef b, CFRange range,
                                                        CFStringCompareFlags options);
/** With a locale (NULL: the current one under kCFCompareLocalized, else none). */
CF_EXPORT CFComparisonResult CFStringCompareWithOptionsAndLocale(CFStringRef a, CFStringRef b,
                                                                 CFRange range,
                                                                 CFStringCompareFlags options,
                                                                 CFLocaleRef locale);
/** Whether the string begins (ends) with exactly these units; everything does with "". */
CF_EXPORT Boolean CFStringHasPrefix(CFStringRef string, CFStringRef prefix);
CF_EXPORT Boolean CFStringHasSuffix(CFStringRef string, CFStringRef suffix);

/** The first (or last) occurrence, else {kCFNotFound, 0}; "" is never found. */
CF_EXPORT CFRange CFStringFind(CFStringRef string, CFStringRef sought,
                               CFStringCompareFlags options);
/** Whether there is an occurrence within `range`; `result` (may be NULL) is set when there is. What
 *  is found neither begins nor ends within a composed character under kCFCompareNonliteral. */
CF_EXPORT Boolean CFStringFindWithOptions(CFStringRef string, CFStringRef sought, CFRange range,
                                          CFStringCompareFlags options, CFRange* result);
CF_EXPORT Boolean CFStringFindWithOptionsAndLocale(CFStringRef string, CFStringRef sought,
                                                   CFRange range, CFStringCompareFlags options,
                                                   CFLocaleRef locale, CFRange* result);
/** Finds a character of `set` (kCFCompareBackwards, kCFCompareAnchored). */
CF_EXPORT Boolean CFStringFindCharacterFromSet(CFStringRef string, CFCharacterSetRef set,
                                               CFRange range, CFStringCompareFlags options,
                                               CFRange* result);
/** The ranges of all occurrences as an array of pointers to CFRange that the array owns; NULL when
 *  there is none. */
CF_EXPORT CFArrayRef CFStringCreateArrayWithFindResults(CFAllocatorRef allocator,
                                                        CFStringRef string, CFStringRef sought,
                                                        CFRange range,
                                                        CFStringCompareFlags options);

/* ---- Splitting and joining ----------------------------------------------------------------- */

/** The parts between occurrences of `separator`, "" where two follow each other; the whole string
 *  where there is none. */
CF_EXPORT CFArrayRef CFStringCreateArrayBySeparatingStrings(CFAllocatorRef allocator,
                                                            CFStringRef string,
                                                            CFStringRef separator);
/** The array's strings with `separator` between them; "" for an empty array. NULL when an item is
 *  not a string. */
CF_EXPORT CFStringRef CFStringCreateByCombiningStrings(CFAllocatorRef allocator, CFArrayRef array,
                                                       CFStringRef separator);

/* ---- Numbers ------------------------------------------------------------------------------- */

/** The decimal number at the start, after white space; 0 without one, INT32_MAX and INT32_MIN
 *  beyond these. */
CF_EXPORT SInt32 CFStringGetIntValue(CFStringRef string);
/** The decimal number at the start, with "." and exponent whatever the locale; 0 without one. */
CF_EXPORT double CFStringGetDoubleValue(CFStringRef string);

/* ---- Changing ------------------------------------------------------------------------------ */

/* An immutable string is refused with an error in the log. A source may be the string itself. */

CF_EXPORT void CFStringAppend(CFMutableStringRef string, CFStringRef appended);
CF_EXPORT void CFStringAppendCharacters(CFMutableStringRef string, const UniChar* characters,
                                        CFIndex count);
CF_EXPORT void CFStringAppendCString(CFMutableStringRef string, const char* text,
                                     CFStringEncoding encoding);
CF_EXPORT void CFStringAppendPascalString(CFMutableStringRef string, ConstStr255Param text,
                                          CFStringEncoding encoding);
CF_EXPORT void CFStringInsert(CFMutableStringRef string, CFIndex index, CFStringRef inserted);
CF_EXPORT void CFStringDelete(CFMutableStringRef string, CFRange range);
CF_EXPORT void CFStringReplace(CFMutableStringRef string, CFRange range, CFStringRef replacement);
CF_EXPORT void CFStringReplaceAll(CFMutableStringRef string, CFStringRef replacement);
/** Replaces every occurrence within `range`; returns how many there were. */
CF_EXPORT CFIndex CFStringFindAndReplace(CFMutableStringRef string, CFStringRef sought,
                                         CFStringRef replacement, CFRange range,
                                         CFStringCompareFlags options);
/** Puts another buffer beneath a string that was made with external characters; the old one is the
 *  caller's again. */
CF_EXPORT void CFStringSetExternalCharactersNoCopy(CFMutableStringRef string, UniChar* characters,
                                                   CFIndex count, CFIndex capacity);
/** Cuts to `length`, or fills up to it with repetitions of `pad` starting at its `indexIntoPad`. */
CF_EXPORT void CFStringPad(CFMutableStringRef string, CFStringRef pad, CFIndex length,
                           CFIndex indexIntoPad);
/** Takes away all repetitions of `trimmed` at both ends. */
CF_EXPORT void CFStringTrim(CFMutableStringRef string, CFStringRef trimmed);
CF_EXPORT void CFStringTrimWhitespace(CFMutableStringRef string);
/** By the locale's rules; NULL stands for none in particular. */
CF_EXPORT void CFStringLowercase(CFMutableStringRef string, CFLocaleRef locale);
CF_EXPORT void CFStringUppercase(CFMutableStringRef string, CFLocaleRef locale);
CF_EXPORT void CFStringCapitalize(CFMutableStringRef string, CFLocaleRef locale);
CF_EXPORT void CFStringNormalize(CFMutableStringRef string, CFStringNormalizationForm form);
/** Takes away the differences that kCFCompareCaseInsensitive, …Diacritic… and …WidthInsensitive in
 *  `flags` ignore. */
CF_EXPORT void CFStringFold(CFMutableStringRef string, CFStringCompareFlags flags,
                            CFLocaleRef locale);
/** Transliterates `range` (NULL: all), which then spans the result. `transform` is a constant below
 *  or any identifier that ICU knows; false when it is unknown or cannot be reversed. */
CF_EXPORT Boolean CFStringTransform(CFMutableStringRef string, CFRange* range,
                                    CFStringRef transform, Boolean reverse);

CF_EXPORT const CFStringRef kCFStringTransformStripCombiningMarks;
CF_EXPORT const CFStringRef kCFStringTransformToLatin;
CF_EXPORT const CFStringRef kCFStringTransformFullwidthHalfwidth;
CF_EXPORT const CFStringRef kCFStringTransformLatinKatakana;
CF_EXPORT const CFStringRef kCFStringTransformLatinHiragana;
CF_EXPORT const CFStringRef kCFStringTransformHiraganaKatakana;
CF_EXPORT const CFStringRef kCFStringTransformMandarinLatin;
CF_EXPORT const CFStringRef kCFStringTransformLatinHangul;
CF_EXPORT const CFStringRef kCFStringTransformLatinArabic;
CF_EXPORT const CFStringRef kCFStringTransformLatinHebrew;
CF_EXPORT const CFStringRef kCFStringTransformLatinThai;
CF_EXPORT const CFStringRef kCFStringTransformLatinCyrillic;
CF_EXPORT const CFStringRef kCFStringTransformLatinGreek;
CF_EXPORT const CFStringRef kCFStringTransformToXMLHex;
CF_EXPORT const CFStringRef kCFStringTransformToUnicodeName;
CF_EXPORT const CFStringRef kCFStringTransformStripDiacritics;

CF_EXTERN_C_END
