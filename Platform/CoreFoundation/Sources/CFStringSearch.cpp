// CFStringSearch.cpp: finding, replacing and splitting at occurrences.

#include "CFStringSearch.h"

#include <CoreFoundation/CFRef.h>

#include <algorithm>

namespace cf {

Searcher::Searcher(const Text& text, const Text& sought, CFStringCompareFlags flags,
                   const char* language)
    : flags_(flags), text_(text), sought_(sought) {
    if (const CFStringCompareFlags folding = flags & kFoldingFlags) {
        foldedText_.emplace(text, folding, language);
        foldedSought_.emplace(sought, folding, language);
        const bool failed = foldedText_->failed() || foldedSought_->failed();
        text_ = failed ? Text() : foldedText_->text();
        sought_ = failed ? Text() : foldedSought_->text();
    }
    end_ = text_.length();
}

bool Searcher::isAt(CFIndex position) const {
    if (text_[position] != sought_[0] || !equal(text_.part(position, sought_.length()), sought_))
        return false;
    return !foldedText_ || (foldedText_->isBoundary(position) &&
                            foldedText_->isBoundary(position + sought_.length()));
}

// The first place from `begin` to `last` where the sought text may begin, past `last` when there is
// none: narrow text is looked through by the C library.
CFIndex Searcher::firstCandidate(CFIndex begin, CFIndex last) const {
    if (!text_.narrow())
        return begin;
    if (sought_[0] > 0xFF)
        return last + 1;
    const void* const found =
        std::memchr(text_.narrow() + begin, sought_[0], static_cast<size_t>(last - begin + 1));
    return found ? static_cast<const uint8_t*>(found) - text_.narrow() : last + 1;
}

std::optional<CFIndex> Searcher::findForwards() const {
    const CFIndex last = flags_ & kCFCompareAnchored ? begin_ : end_ - sought_.length();
    for (CFIndex i = begin_; i <= last; ++i) {
        i = firstCandidate(i, last);
        if (i <= last && isAt(i))
            return i;
    }
    return {};
}

std::optional<CFIndex> Searcher::findBackwards() const {
    const CFIndex last = end_ - sought_.length();
    const CFIndex first = flags_ & kCFCompareAnchored ? last : begin_;
    for (CFIndex i = last; i >= first; --i)
        if (isAt(i))
            return i;
    return {};
}

std::optional<CFRange> Searcher::next() {
    const CFIndex length = sought_.length();
    if (length == 0 || end_ - begin_ < length)
        return {};
    const bool isBackwards = (flags_ & kCFCompareBackwards) != 0;
    const auto found = isBackwards ? findBackwards() : findForwards();
    if (!found) {
        begin_ = end_;
        return {};
    }
    if (isBackwards)
        end_ = *found;
    else
        begin_ = *found + length;
    if (!foldedText_)
        return CFRangeMake(*found, length);
    const CFIndex start = foldedText_->sourcePosition(*found);
    return CFRangeMake(start, foldedText_->sourcePosition(*found + length) - start);
}

} // namespace cf

namespace {

using cf::Text;

// A search of `range`; its results are relative to it.
cf::Searcher search(CFStringRef string, CFStringRef sought, CFRange range,
                    CFStringCompareFlags options, CFLocaleRef locale) {
    return {Text(string).part(range.location, range.length), Text(sought), options,
            cf::foldingLanguage(locale, options)};
}

bool canSearch(CFStringRef string, CFStringRef sought) {
    return cf::isString(string) && cf::isString(sought);
}

using Ranges = cf::Scratch<CFRange, 32>;

// Collects all occurrences in the order of the text: how many, or -1 without memory.
CFIndex findAll(cf::Searcher searcher, bool isBackwards, Ranges& ranges) {
    size_t count = 0;
    while (const auto found = searcher.next()) {
        if (count == ranges.capacity() && !ranges.reserve(count * 2, count))
            return -1;
        ranges.data()[count++] = *found;
    }
    if (isBackwards)
        std::reverse(ranges.data(), ranges.data() + count);
    return static_cast<CFIndex>(count);
}

const void* retainRange(CFAllocatorRef allocator, const void* value) {
    void* const copy = CFAllocatorAllocate(allocator, sizeof(CFRange), 0);
    if (copy)
        std::memcpy(copy, value, sizeof(CFRange));
    return copy;
}

void releaseRange(CFAllocatorRef allocator, const void* value) {
    CFAllocatorDeallocate(allocator, const_cast<void*>(value));
}

Boolean equalRanges(const void* a, const void* b) {
    const auto* const first = static_cast<const CFRange*>(a);
    const auto* const second = static_cast<const CFRange*>(b);
    return first && second && first->location == second->location &&
           first->length == second->length;
}

constexpr CFArrayCallBacks kRangeCallBacks = {
    .retain = retainRange,
    .release = releaseRange,
    .equal = equalRanges,
};

bool appendPart(CFMutableArrayRef array, CFAllocatorRef allocator, const Text& part) {
    const auto string = cf::adopt(cf::createString(allocator, part));
    const CFIndex before = CFArrayGetCount(array);
    if (string)
        CFArrayAppendValue(array, string.get());
    return CFArrayGetCount(array) == before + 1;
}

// The character that the unit at `index` belongs to: a surrogate pair or the unit alone.
CFRange characterAt(const Text& text, CFIndex index) {
    const auto isPairAt = [&](CFIndex i) {
        return i >= 0 && i + 1 < text.length() && CFStringIsSurrogateHighCharacter(text[i]) &&
               CFStringIsSurrogateLowCharacter(text[i + 1]);
    };
    if (isPairAt(index))
        return CFRangeMake(index, 2);
    return isPairAt(index - 1) ? CFRangeMake(index - 1, 2) : CFRangeMake(index, 1);
}

UTF32Char longCharacter(const Text& text, CFRange character) {
    const UniChar first = text[character.location];
    return character.length == 1
               ? first
               : CFStringGetLongCharacterForSurrogatePair(first, text[character.location + 1]);
}

} // namespace

CFRange CFStringFind(CFStringRef string, CFStringRef sought, CFStringCompareFlags options) {
    CFRange result = CFRangeMake(kCFNotFound, 0);
    CFStringFindWithOptions(string, sought, CFRangeMake(0, CFStringGetLength(string)), options,
                            &result);
    return result;
}

Boolean CFStringFindWithOptions(CFStringRef string, CFStringRef sought, CFRange range,
                                CFStringCompareFlags options, CFRange* result) {
    return CFStringFindWithOptionsAndLocale(string, sought, range, options, nullptr, result);
}

Boolean CFStringFindWithOptionsAndLocale(CFStringRef string, CFStringRef sought, CFRange range,
                                         CFStringCompareFlags options, CFLocaleRef locale,
                                         CFRange* result) {
    if (!canSearch(string, sought) || !CF_RANGE_IS_WITHIN(range, string->length))
        return false;
    auto searcher = search(string, sought, range, options, locale);
    const auto found = searcher.next();
    if (found && result)
        *result = CFRangeMake(range.location + found->location, found->length);
    return found.has_value();
}

CFArrayRef CFStringCreateArrayWithFindResults(CFAllocatorRef allocator, CFStringRef string,
                                              CFStringRef sought, CFRange range,
                                              CFStringCompareFlags options) {
    if (!canSearch(string, sought) || !CF_RANGE_IS_WITHIN(range, string->length))
        return nullptr;
    auto array = cf::adopt(CFArrayCreateMutable(allocator, 0, &kRangeCallBacks));
    auto searcher = search(string, sought, range, options, nullptr);
    CFIndex count = 0;
    while (const auto found = searcher.next()) {
        const CFRange absolute = CFRangeMake(range.location + found->location, found->length);
        CFArrayAppendValue(array.get(), &absolute);
        if (CFArrayGetCount(array.get()) != ++count ||
            !CFArrayGetValueAtIndex(array.get(), count - 1))
            return nullptr;
    }
    return count > 0 ? array.release() : nullptr;
}

CFIndex CFStringFindAndReplace(CFMutableStringRef string, CFStringRef sought,
                               CFStringRef replacement, CFRange range,
                               CFStringCompareFlags options) {
    if (!CF_STRING_IS_MUTABLE(string) || !canSearch(replacement, sought) ||
        !CF_RANGE_IS_WITHIN(range, string->length))
        return 0;
    Ranges ranges;
    const CFIndex count = findAll(search(string, sought, range, options, nullptr),
                                  (options & kCFCompareBackwards) != 0, ranges);
    const Text text = Text(string).part(range.location, range.length);
    cf::TextBuilder result;
    CFIndex copied = 0;
    for (CFIndex i = 0; i < count; ++i) {
        const CFRange found = ranges.data()[i];
        result.append(text.part(copied, found.location - copied));
        result.append(Text(replacement));
        copied = found.location + found.length;
    }
    result.append(text.part(copied, text.length() - copied));
    if (count <= 0 || result.failed() || !cf::replace(string, range, result.text()))
        return 0;
    return count;
}

Boolean CFStringFindCharacterFromSet(CFStringRef string, CFCharacterSetRef set, CFRange range,
                                     CFStringCompareFlags options, CFRange* result) {
    if (!cf::isString(string) || !CF_RANGE_IS_WITHIN(range, string->length))
        return false;
    const Text text = Text(string).part(range.location, range.length);
    const bool isBackwards = (options & kCFCompareBackwards) != 0;
    CFIndex looked = 0;
    while (looked < text.length()) {
        const CFRange found = characterAt(text, isBackwards ? text.length() - 1 - looked : looked);
        if (CFCharacterSetIsLongCharacterMember(set, longCharacter(text, found))) {
            if (result)
                *result = CFRangeMake(range.location + found.location, found.length);
            return true;
        }
        if (options & kCFCompareAnchored)
            return false;
        looked += found.length;
    }
    return false;
}

CFArrayRef CFStringCreateArrayBySeparatingStrings(CFAllocatorRef allocator, CFStringRef string,
                                                  CFStringRef separator) {
    if (!canSearch(string, separator))
        return nullptr;
    auto array = cf::adopt(CFArrayCreateMutable(allocator, 0, &kCFTypeArrayCallBacks));
    if (!array)
        return nullptr;
    const Text text(string);
    cf::Searcher searcher(text, Text(separator), 0, "");
    CFIndex start = 0;
    while (const auto found = searcher.next()) {
        if (!appendPart(array.get(), allocator, text.part(start, found->location - start)))
            return nullptr;
        start = found->location + found->length;
    }
    if (!appendPart(array.get(), allocator, text.part(start, text.length() - start)))
        return nullptr;
    return array.release();
}

CFStringRef CFStringCreateByCombiningStrings(CFAllocatorRef allocator, CFArrayRef array,
                                             CFStringRef separator) {
    if (!array)
        return nullptr;
    const Text between(cf::isString(separator) ? separator : nullptr);
    cf::TextBuilder result;
    const CFIndex count = CFArrayGetCount(array);
    for (CFIndex i = 0; i < count; ++i) {
        const auto item = static_cast<CFStringRef>(CFArrayGetValueAtIndex(array, i));
        if (!cf::isString(item))
            return nullptr;
        if (i > 0)
            result.append(between);
        result.append(Text(item));
    }
    return cf::createString(allocator, result);
}
