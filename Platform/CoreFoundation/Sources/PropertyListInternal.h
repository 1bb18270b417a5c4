// PropertyListInternal.h: what the readers and writers of the formats have in common.
#pragma once

#include <CoreFoundation/CFDate.h>
#include <CoreFoundation/CFPropertyList.h>
#include <CoreFoundation/CFRef.h>

#include "GrowableArray.h"

#include <cstdarg>
#include <string_view>

namespace cf::plist {

// Deeper lists are refused, so that recursion is bounded.
inline constexpr int kMaximumDepth = 512;

// Shared parts that unfold to more values than this are refused: few bytes could otherwise stand
// for a tree that nobody can walk.
inline constexpr uint32_t kMaximumUnfoldedCount = 1u << 24;

using Value = Ref<CFTypeRef>;

// Why reading or writing failed; the first reason counts.
class Problem {
public:
    void set(CFIndex code, const char* format, ...) __attribute__((format(printf, 3, 4)));
    void setWithArguments(CFIndex code, const char* format, va_list arguments)
        __attribute__((format(printf, 3, 0)));
    CFIndex code() const { return code_; }
    const char* text() const { return text_; }

private:
    CFIndex code_ = 0;
    char text_[200] = "";
};

// Makes the values of a list, as mutable as the caller wants them.
class Maker {
public:
    Maker(CFAllocatorRef allocator, CFOptionFlags mutability)
        : allocator_(allocator), mutability_(mutability) {}

    CFAllocatorRef allocator() const { return allocator_; }
    bool makesMutableContainers() const { return mutability_ != kCFPropertyListImmutable; }

    Value string(const Ref<CFStringRef>& text) const;
    Value data(const uint8_t* bytes, size_t count) const;
    Value integer(int64_t value) const;
    Value real(double value) const;
    Value date(CFAbsoluteTime time) const;

private:
    bool makesMutableLeaves() const {
        return mutability_ == kCFPropertyListMutableContainersAndLeaves;
    }

    CFAllocatorRef allocator_;
    CFOptionFlags mutability_;
};

// Gathers the values of an array.
class ArrayMaker {
public:
    explicit ArrayMaker(const Maker& maker);
    void add(const Value& value);
    // Empty when memory ran out on the way.
    Value finish() const;

private:
    const Maker& maker_;
    Ref<CFMutableArrayRef> array_;
    CFIndex count_ = 0;
};

// Gathers the entries of a dictionary; of equal keys the last one counts.
class DictionaryMaker {
public:
    explicit DictionaryMaker(const Maker& maker);
    void add(const Value& key, const Value& value);
    Value finish() const;

private:
    const Maker& maker_;
    Ref<CFMutableDictionaryRef> dictionary_;
    bool isComplete_ = true;
};

// A dictionary's entries, ordered by their keys.
struct Entry {
    CFStringRef key;
    CFTypeRef value;
};
bool sortEntries(CFDictionaryRef dictionary, GrowableArray<Entry>& entries);

// ---- Formats

// Each gives an empty value and states the problem when the bytes are not well-formed.
Value readXML(std::string_view utf8, const Maker& maker, Problem& problem);
Value readBinary(const uint8_t* bytes, size_t size, const Maker& maker, Problem& problem);
Value readText(CFStringRef text, const Maker& maker, Problem& problem);

// Each appends to `result`, or states the problem and answers false.
bool writeXML(CFPropertyListRef list, TextBuffer& result, Problem& problem);
bool writeBinary(CFPropertyListRef list, TextBuffer& result, Problem& problem);

// ---- Dates in XML: "2001-01-01T00:00:00Z"

bool parseDate(std::string_view text, CFAbsoluteTime& time);
// False for instants that have no such form.
bool appendDate(CFAbsoluteTime time, TextBuffer& result);

} // namespace cf::plist
