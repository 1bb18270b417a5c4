// CFStringFold.h: texts rid of the differences that a comparison ignores.
#pragma once

#include "CFStringInternal.h"

namespace cf {

// The comparison flags that change the text before it is compared unit by unit.
inline constexpr CFStringCompareFlags kFoldingFlags =
    kCFCompareCaseInsensitive | kCFCompareNonliteral | kCFCompareDiacriticInsensitive |
    kCFCompareWidthInsensitive;

// A folded text that knows where each of its units comes from. The source is folded piece by piece
// (a character, or one with its marks where marks matter), and each piece alone, so that a place
// between two pieces is a place between characters in the source.
class FoldedText {
public:
    // Folds `source` by the flags; `language` decides how "I" is lower-cased.
    FoldedText(const Text& source, CFStringCompareFlags flags, const char* language);

    // True when memory ran out.
    bool failed() const { return units_.failed() || failed_; }
    Text text() const { return units_.text(); }
    CFIndex length() const { return units_.length(); }
    // Whether the folded position lies between two pieces.
    bool isBoundary(CFIndex position) const;
    // The source's position for a folded one that is a boundary.
    CFIndex sourcePosition(CFIndex position) const;

private:
    void addPiece(const Text& piece, CFIndex location);

    CFStringCompareFlags flags_;
    uint32_t caseOptions_;
    TextBuilder units_;
    Scratch<CFIndex, 64> locations_; // For each folded unit, where its piece begins.
    CFIndex sourceLength_ = 0;
    bool failed_ = false;
};

// The language code of `locale`, of the current one under kCFCompareLocalized, else "".
const char* foldingLanguage(CFLocaleRef locale, CFStringCompareFlags flags);

} // namespace cf
