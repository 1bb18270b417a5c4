// CFStringCharacters.cpp: where characters, lines and paragraphs begin and end.

#include "CFStringICU.h"
#include "CFStringInternal.h"

#include <unicode/ubrk.h>

namespace {

using cf::Text;
using BreakIterator = std::unique_ptr<UBreakIterator, cf::CloseBy<ubrk_close>>;

// Below the first combining mark every unit is a character of its own.
bool standsAlone(const Text& text, CFIndex index) {
    constexpr UniChar kFirstMark = 0x0300;
    return text[index] < kFirstMark && (index + 1 == text.length() || text[index + 1] < kFirstMark);
}

CFRange clusterAt(const Text& text, CFIndex index) {
    const CFRange single = CFRangeMake(index, 1);
    const cf::WideText units(text);
    UErrorCode status = U_ZERO_ERROR;
    if (!units || units.length() > INT32_MAX)
        return single;
    const BreakIterator iterator(ubrk_open(UBRK_CHARACTER, "", units.utf16(),
                                           static_cast<int32_t>(units.length()), &status));
    if (U_FAILURE(status))
        return single;
    const int32_t end = ubrk_following(iterator.get(), static_cast<int32_t>(index));
    const int32_t start = ubrk_previous(iterator.get());
    return CFRangeMake(start, end - start);
}

enum class Breaks { Lines, Paragraphs };

bool isBreak(UniChar unit, Breaks breaks) {
    switch (unit) {
    case '\n':
    case '\r':
    case 0x2029:
        return true;
    case 0x0085:
    case 0x2028:
        return breaks == Breaks::Lines;
    default:
        return false;
    }
}

// Whether a carriage return and a line feed meet at `index`: together they are one line end.
bool isInsideCRLF(const Text& text, CFIndex index) {
    return index > 0 && index < text.length() && text[index - 1] == '\r' && text[index] == '\n';
}

void findBounds(const Text& text, CFRange range, Breaks breaks, CFIndex* begin, CFIndex* end,
                CFIndex* contentsEnd) {
    CFIndex first = range.location;
    while (first > 0 && (!isBreak(text[first - 1], breaks) || isInsideCRLF(text, first)))
        --first;
    // An empty range lies in the line it stands before; any other one ends with its last unit's.
    CFIndex last = range.location + (range.length > 0 ? range.length - 1 : 0);
    if (isInsideCRLF(text, last))
        --last;
    while (last < text.length() && !isBreak(text[last], breaks))
        ++last;
    const CFIndex afterBreak = last == text.length()          ? last
                               : isInsideCRLF(text, last + 1) ? last + 2
                                                              : last + 1;
    if (begin)
        *begin = first;
    if (contentsEnd)
        *contentsEnd = last;
    if (end)
        *end = afterBreak;
}

} // namespace

CFRange CFStringGetRangeOfComposedCharactersAtIndex(CFStringRef string, CFIndex index) {
    if (!cf::isString(string) || !CF_RANGE_IS_WITHIN(CFRangeMake(index, 1), string->length))
        return CFRangeMake(kCFNotFound, 0);
    const Text text(string);
    return standsAlone(text, index) ? CFRangeMake(index, 1) : clusterAt(text, index);
}

void CFStringGetLineBounds(CFStringRef string, CFRange range, CFIndex* lineBeginIndex,
                           CFIndex* lineEndIndex, CFIndex* contentsEndIndex) {
    if (cf::isString(string) && CF_RANGE_IS_WITHIN(range, string->length))
        findBounds(Text(string), range, Breaks::Lines, lineBeginIndex, lineEndIndex,
                   contentsEndIndex);
}

void CFStringGetParagraphBounds(CFStringRef string, CFRange range, CFIndex* parBeginIndex,
                                CFIndex* parEndIndex, CFIndex* contentsEndIndex) {
    if (cf::isString(string) && CF_RANGE_IS_WITHIN(range, string->length))
        findBounds(Text(string), range, Breaks::Paragraphs, parBeginIndex, parEndIndex,
                   contentsEndIndex);
}

void CFStringInitInlineBuffer(CFStringRef string, CFStringInlineBuffer* buffer, CFRange range) {
    if (!buffer)
        return;
    *buffer = CFStringInlineBuffer{};
    if (!cf::isString(string) || !CF_RANGE_IS_WITHIN(range, string->length))
        return;
    const Text text(string);
    buffer->theString = string;
    buffer->directUniCharBuffer = text.wide();
    buffer->directCStringBuffer = reinterpret_cast<const char*>(text.narrow());
    buffer->rangeToBuffer = range;
}
