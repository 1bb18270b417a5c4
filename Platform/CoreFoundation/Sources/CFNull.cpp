// CFNull.cpp: the null object.

#include "CFNull.h"

#include <CoreFoundation/CFString.h>

#include "CFRuntimeInternal.h"

struct __CFNull {
    CFRuntimeBase base;
};

namespace cf {

const CFRuntimeClass kNullClass = {
    .className = "CFNull",
    .copyFormattingDescription = [](CFTypeRef, CFTypeRef) { return CFSTR("<null>"); },
};

} // namespace cf

namespace {

__CFNull theNull = {CF_STATIC_BASE(cf::kNullClass, cf::kTypeNull)};

} // namespace

const CFNullRef kCFNull = &theNull;

CFTypeID CFNullGetTypeID(void) {
    return cf::kTypeNull;
}
