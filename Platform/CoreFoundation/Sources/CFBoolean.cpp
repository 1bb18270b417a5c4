// CFBoolean.cpp: the two truth values.

#include "CFDescription.h"
#include "CFNumber.h"
#include "CFRuntimeInternal.h"

struct __CFBoolean {
    CFRuntimeBase base;
};

namespace {

CFHashCode hashBoolean(CFTypeRef object) {
    return object == kCFBooleanTrue ? 1 : 0;
}

CFStringRef copyBooleanText(CFTypeRef object, CFTypeRef) {
    return object == kCFBooleanTrue ? CFSTR("true") : CFSTR("false");
}

CFStringRef describeBoolean(CFTypeRef object) {
    cf::Description text(object);
    text.append(CFSTR("value = %@"), object);
    return text.finish();
}

} // namespace

namespace cf {

const CFRuntimeClass kBooleanClass = {
    .className = "CFBoolean",
    .hash = hashBoolean,
    .copyFormattingDescription = copyBooleanText,
    .copyDebugDescription = describeBoolean,
};

} // namespace cf

namespace {

__CFBoolean theTrue = {CF_STATIC_BASE(cf::kBooleanClass, cf::kTypeBoolean)};
__CFBoolean theFalse = {CF_STATIC_BASE(cf::kBooleanClass, cf::kTypeBoolean)};

} // namespace

const CFBooleanRef kCFBooleanTrue = &theTrue;
const CFBooleanRef kCFBooleanFalse = &theFalse;

CFTypeID CFBooleanGetTypeID(void) {
    return cf::kTypeBoolean;
}

Boolean CFBooleanGetValue(CFBooleanRef boolean) {
    return boolean == kCFBooleanTrue;
}
