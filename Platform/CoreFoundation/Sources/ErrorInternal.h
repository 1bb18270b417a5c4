// ErrorInternal.h: handing errors to callers who want them.
#pragma once

#include <CoreFoundation/CFError.h>

namespace cf {

// Stores a new error with a developer's text at `result`, unless that is NULL.
void storeError(CFErrorRef* result, CFErrorDomain domain, CFIndex code, const char* description);

} // namespace cf
