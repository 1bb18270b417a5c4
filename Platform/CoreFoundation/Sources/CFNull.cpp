// CFNull.cpp: the null object.

#include "CFNull.h"

#include "CFRuntimeInternal.h"

struct __CFNull {
    CFRuntimeBase base;
};

namespace cf {

const CFRuntimeClass kNullClass = {.className = "CFNull"};

} // namespace cf

namespace {

__CFNull theNull = {CF_STATIC_BASE(cf::kNullClass, cf::kTypeNull)};

} // namespace

const CFNullRef kCFNull = &theNull;

CFTypeID CFNullGetTypeID(void) {
    return cf::kTypeNull;
}
