// CFStringSearch.h: the occurrences of one text in another, one after the other.
#pragma once

#include "CFStringFold.h"

#include <optional>

namespace cf {

// Finds occurrences that do not overlap, from the start or the end as the flags say. The texts must
// outlive it. An anchored search goes on as long as occurrences touch.
class Searcher {
public:
    Searcher(const Text& text, const Text& sought, CFStringCompareFlags flags,
             const char* language);

    // The next occurrence in the text, or nothing; also when memory has run out.
    std::optional<CFRange> next();

private:
    bool isAt(CFIndex position) const;
    CFIndex firstCandidate(CFIndex begin, CFIndex last) const;
    std::optional<CFIndex> findForwards() const;
    std::optional<CFIndex> findBackwards() const;

    CFStringCompareFlags flags_;
    std::optional<FoldedText> foldedText_;
    std::optional<FoldedText> foldedSought_;
    Text text_; // What is searched: folded where the flags ask for it.
    Text sought_;
    CFIndex begin_ = 0; // What is left to search.
    CFIndex end_ = 0;
};

} // namespace cf
