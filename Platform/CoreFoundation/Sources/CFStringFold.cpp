// CFStringFold.cpp: folding for comparisons, and CFStringFold itself.

#include "CFStringFold.h"

#include "CFLocaleInternal.h"
#include "CFStringICU.h"

#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include <algorithm>

namespace cf {

namespace {

UChar32 codePointAt(const Text& text, CFIndex index) {
    const UniChar first = text[index];
    if (U16_IS_LEAD(first) && index + 1 < text.length() && U16_IS_TRAIL(text[index + 1]))
        return U16_GET_SUPPLEMENTARY(first, text[index + 1]);
    return first;
}

// The accents of alphabets that have upper and lower case: above, below, attached or through their
// letter. The vowel signs and points of other scripts, which have lower classes, tell words apart.
bool isDiacritic(UChar32 character) {
    const uint8_t combiningClass = u_getCombiningClass(character);
    return combiningClass >= 200 || combiningClass == 1;
}

bool isWidthVariant(UChar32 character) {
    const int32_t type = u_getIntPropertyValue(character, UCHAR_DECOMPOSITION_TYPE);
    return type == U_DT_WIDE || type == U_DT_NARROW;
}

// A piece under work: a character and its marks, as a rule a few units.
class Piece {
public:
    explicit Piece(const Text& text) {
        if (units_.reserve(static_cast<size_t>(text.length()))) {
            text.copyTo(units_.data());
            length_ = text.length();
        }
    }

    // Has an ICU function write the piece anew; it stays as it was when that fails.
    template <typename Function>
    void rewrite(Function function) {
        Scratch<UniChar, 32> result;
        for (int attempt = 0; attempt < 2; ++attempt) {
            UErrorCode status = U_ZERO_ERROR;
            const auto capacity = static_cast<int32_t>(result.capacity());
            const int32_t length = function(reinterpret_cast<char16_t*>(result.data()), capacity,
                                            reinterpret_cast<const char16_t*>(units_.data()),
                                            static_cast<int32_t>(length_), &status);
            if (status == U_BUFFER_OVERFLOW_ERROR && result.reserve(static_cast<size_t>(length)))
                continue;
            if (U_SUCCESS(status) && units_.reserve(static_cast<size_t>(length))) {
                std::copy_n(result.data(), length, units_.data());
                length_ = length;
            }
            return;
        }
    }

    void decompose() { normalize(unorm2_getNFDInstance); }
    void compose() { normalize(unorm2_getNFCInstance); }

    void foldWidth() {
        if (length_ == 0 || !isWidthVariant(codePointAt(text(), 0)))
            return;
        UErrorCode status = U_ZERO_ERROR;
        const UNormalizer2* const normalizer = unorm2_getNFKCInstance(&status);
        rewrite([normalizer](char16_t* result, int32_t capacity, const char16_t* source,
                             int32_t length, UErrorCode* error) {
            return unorm2_normalize(normalizer, source, length, result, capacity, error);
        });
    }

    void foldCase(uint32_t options) {
        rewrite([options](char16_t* result, int32_t capacity, const char16_t* source,
                          int32_t length, UErrorCode* error) {
            return u_strFoldCase(result, capacity, source, length, options, error);
        });
    }

    void dropDiacritics() {
        CFIndex kept = 0;
        for (CFIndex i = 0; i < length_;) {
            const UChar32 character = codePointAt(text(), i);
            const CFIndex units = U16_LENGTH(character);
            if (!isDiacritic(character)) {
                std::copy_n(units_.data() + i, units, units_.data() + kept);
                kept += units;
            }
            i += units;
        }
        length_ = kept;
    }

    Text text() const { return {units_.data(), length_}; }

private:
    void normalize(const UNormalizer2* (*instance)(UErrorCode*)) {
        UErrorCode status = U_ZERO_ERROR;
        const UNormalizer2* const normalizer = instance(&status);
        if (U_SUCCESS(status))
            rewrite([normalizer](char16_t* result, int32_t capacity, const char16_t* source,
                                 int32_t length, UErrorCode* error) {
                return unorm2_normalize(normalizer, source, length, result, capacity, error);
            });
    }

    Scratch<UniChar, 32> units_;
    CFIndex length_ = 0;
};

// Where the piece that begins at `start` ends.
CFIndex endOfPiece(const Text& source, CFIndex start, bool withMarks) {
    CFIndex end = start + U16_LENGTH(codePointAt(source, start));
    while (withMarks && end < source.length()) {
        const UChar32 next = codePointAt(source, end);
        if (u_getCombiningClass(next) == 0)
            break;
        end += U16_LENGTH(next);
    }
    return end;
}

} // namespace

FoldedText::FoldedText(const Text& source, CFStringCompareFlags flags, const char* language)
    : flags_(flags),
      caseOptions_(std::strcmp(language, "tr") == 0 || std::strcmp(language, "az") == 0
                       ? U_FOLD_CASE_EXCLUDE_SPECIAL_I
                       : U_FOLD_CASE_DEFAULT),
      sourceLength_(source.length()) {
    const bool withMarks = (flags & (kCFCompareNonliteral | kCFCompareDiacriticInsensitive)) != 0;
    for (CFIndex start = 0; start < source.length() && !failed();) {
        const CFIndex end = endOfPiece(source, start, withMarks);
        addPiece(source.part(start, end - start), start);
        start = end;
    }
}

void FoldedText::addPiece(const Text& source, CFIndex location) {
    const CFIndex before = units_.length();
    const bool isPlainASCII = source.length() == 1 && source[0] < 0x80;
    if (isPlainASCII && (caseOptions_ == U_FOLD_CASE_DEFAULT || source[0] != 'I')) {
        const UniChar unit = source[0];
        const bool isLowered = (flags_ & kCFCompareCaseInsensitive) && unit >= 'A' && unit <= 'Z';
        units_.append(static_cast<UniChar>(unit + (isLowered ? 'a' - 'A' : 0)));
    } else {
        Piece piece(source);
        if (flags_ & kCFCompareWidthInsensitive)
            piece.foldWidth();
        if (flags_ & (kCFCompareNonliteral | kCFCompareDiacriticInsensitive))
            piece.decompose();
        if (flags_ & kCFCompareDiacriticInsensitive)
            piece.dropDiacritics();
        if (flags_ & kCFCompareCaseInsensitive)
            piece.foldCase(caseOptions_);
        if ((flags_ & kCFCompareDiacriticInsensitive) && !(flags_ & kCFCompareNonliteral))
            piece.compose();
        units_.append(piece.text());
    }
    if (!locations_.reserve(
            std::max(static_cast<size_t>(units_.length()), static_cast<size_t>(before) * 2),
            static_cast<size_t>(before)))
        failed_ = true;
    else if (!units_.failed())
        std::fill(locations_.data() + before, locations_.data() + units_.length(), location);
}

bool FoldedText::isBoundary(CFIndex position) const {
    const CFIndex* const locations = locations_.data();
    return position == 0 || position == length() || locations[position] != locations[position - 1];
}

CFIndex FoldedText::sourcePosition(CFIndex position) const {
    return position == length() ? sourceLength_ : locations_.data()[position];
}

const char* foldingLanguage(CFLocaleRef locale, CFStringCompareFlags flags) {
    return locale || (flags & kCFCompareLocalized) ? localeLanguage(locale) : "";
}

} // namespace cf

void CFStringFold(CFMutableStringRef string, CFStringCompareFlags flags, CFLocaleRef locale) {
    if (!CF_STRING_IS_MUTABLE(string))
        return;
    const cf::FoldedText folded(
        cf::Text(string), flags & cf::kFoldingFlags & ~CFStringCompareFlags{kCFCompareNonliteral},
        cf::foldingLanguage(locale, flags));
    if (!folded.failed())
        cf::replace(string, CFRangeMake(0, string->length), folded.text());
}
