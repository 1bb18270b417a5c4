// TestObjects.h: values and callbacks that keep account of what collections do with them.
#pragma once

#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFSet.h>

#include <cstdint>
#include <map>

namespace test {

inline const void* pointer(intptr_t value) {
    return reinterpret_cast<const void*>(value);
}
inline intptr_t integer(const void* value) {
    return reinterpret_cast<intptr_t>(value);
}

// How many references to each value are out; a value that nobody holds is not listed.
inline std::map<const void*, int> held;

inline const void* hold(CFAllocatorRef, const void* value) {
    ++held[value];
    return value;
}
inline void drop(CFAllocatorRef, const void* value) {
    if (--held[value] == 0)
        held.erase(value);
}

// Integers that are equal, and hash alike, in steps of 1000: 7 and 1007 are two forms of one value.
inline Boolean equalForms(const void* a, const void* b) {
    return integer(a) % 1000 == integer(b) % 1000;
}
inline CFHashCode hashForm(const void* value) {
    return CFHashCode(integer(value) % 1000);
}

inline constexpr CFArrayCallBacks kCountedArray = {0, hold, drop, nullptr, equalForms};
inline constexpr CFSetCallBacks kCountedSet = {0, hold, drop, nullptr, equalForms, hashForm};
inline constexpr CFDictionaryKeyCallBacks kCountedKeys = {0,       hold,       drop,
                                                          nullptr, equalForms, hashForm};
inline constexpr CFDictionaryValueCallBacks kCountedValues = {0, hold, drop, nullptr, equalForms};

} // namespace test
