// Collections.h: what all collections do alike: values that are CF objects, refusals, hints.
#pragma once

#include "CFRuntimeInternal.h"

namespace cf {

// A capacity given to a Create function reserves memory for up to so many values at once: it is a
// hint, and a caller may give the largest number to say "many".
inline constexpr CFIndex kMostTakenFromHint = 4096;

// Callbacks for values that are CF objects, and for strings that are kept as immutable copies.
const void* retainObject(CFAllocatorRef allocator, const void* object);
void releaseObject(CFAllocatorRef allocator, const void* object);
const void* copyStringValue(CFAllocatorRef allocator, const void* string);

// "mutable" or "immutable", for descriptions.
const char* mutabilityName(CFTypeRef object);

// Whether `object`, which may be NULL, may be changed; logs a refusal in the name of `function`.
bool mayChange(CFTypeRef object, const CFRuntimeClass& record, const char* function);

// Logs that `function` left its object as it was for want of memory, unless it was `done`.
void logUnlessDone(bool done, const char* function);

} // namespace cf
