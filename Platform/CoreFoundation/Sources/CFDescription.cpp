// CFDescription.cpp: what objects and types look like to people.

#include "CFDescription.h"

#include "CFForeignObject.h"
#include "CFRuntimeInternal.h"
#include "StringBytes.h"

#include <cstdarg>
#include <cstdio>

namespace {

constexpr int kDeepest = 32;

constinit thread_local int depth = 0;

const char* nameOf(CFTypeRef object) {
    const char* const name = _CFRuntimeGetClass(object)->className;
    return name ? name : "";
}

} // namespace

namespace cf {

Description::Description(CFTypeRef object) : text_(adopt(CFStringCreateMutable(nullptr, 0))) {
    append(CFSTR("<%s %p>{"), nameOf(object), object);
}

void Description::append(CFStringRef format, ...) {
    va_list arguments;
    va_start(arguments, format);
    CFStringAppendFormatAndArguments(text_.get(), nullptr, format, arguments);
    va_end(arguments);
}

void Description::appendValue(const void* value, CFStringRef (*copyDescription)(const void*)) {
    if (!copyDescription || !value)
        return append(CFSTR("<%p>"), value);
    if (depth == kDeepest)
        return append(CFSTR("…"));
    ++depth;
    const auto text = adopt(copyDescription(value));
    --depth;
    append(CFSTR("%@"), text.get());
}

CFStringRef Description::finish() {
    append(CFSTR("}"));
    return text_.release();
}

} // namespace cf

CFStringRef CFCopyDescription(CFTypeRef object) {
    if (!object)
        return nullptr;
    if (!_CFRuntimeIsNative(object)) {
        const CFStringRef text = cf::foreign::description(object);
        return text ? static_cast<CFStringRef>(CFRetain(text))
                    : CFStringCreateWithFormat(nullptr, nullptr, CFSTR("<%p>"), object);
    }
    const CFRuntimeClass* const record = _CFRuntimeGetClass(object);
    if (record->copyDebugDescription)
        return record->copyDebugDescription(object);
    return CFStringCreateWithFormat(nullptr, nullptr, CFSTR("<%s %p>"), nameOf(object), object);
}

CFStringRef CFCopyTypeIDDescription(CFTypeID type) {
    const CFRuntimeClass* const record = _CFRuntimeGetClassWithTypeID(type);
    if (!record || !record->className)
        return nullptr;
    return CFStringCreateWithCString(nullptr, record->className, kCFStringEncodingUTF8);
}

void CFShow(CFTypeRef object) {
    const auto text = cf::adopt(CFCopyDescription(object));
    const cf::CString bytes(text.get());
    std::fprintf(stderr, "%s\n", bytes ? bytes.get() : "(null)");
}
