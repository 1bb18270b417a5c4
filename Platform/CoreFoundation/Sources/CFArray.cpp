// CFArray.cpp: making and reading arrays.

#include "CFArray.h"

#include "CFArrayInternal.h"
#include "CFDescription.h"

#include <algorithm>

namespace {

using Array = cf::Ref<CFMutableArrayRef>;

CFArrayRef arrayOf(CFTypeRef object) {
    return static_cast<CFArrayRef>(object);
}

bool isArray(CFArrayRef array) {
    return cf::isA(array, cf::kArrayClass);
}

Boolean equalArrays(CFTypeRef first, CFTypeRef second) {
    const CFArrayRef a = arrayOf(first);
    const CFArrayRef b = arrayOf(second);
    return a->callBacks.equal == b->callBacks.equal &&
           std::equal(a->values.begin(), a->values.end(), b->values.begin(), b->values.end(),
                      [a](const void* x, const void* y) { return a->areEqual(x, y); });
}

CFHashCode hashArray(CFTypeRef object) {
    return static_cast<CFHashCode>(arrayOf(object)->values.size());
}

CFStringRef describeArray(CFTypeRef object) {
    const CFArrayRef array = arrayOf(object);
    cf::Description text(array);
    text.append(CFSTR("type = %s, count = %ld, values = ("), cf::mutabilityName(array),
                array->values.size());
    for (CFIndex i = 0; i < array->values.size(); ++i) {
        text.append(CFSTR("\n\t%ld : "), i);
        text.appendValue(array->values[i], array->callBacks.copyDescription);
    }
    text.append(CFSTR("\n)"));
    return text.finish();
}

Array createEmpty(CFAllocatorRef allocator, CFIndex capacity, const CFArrayCallBacks* callBacks) {
    if (capacity < 0)
        return nullptr;
    auto array = cf::create<__CFArray>(allocator, CFArrayGetTypeID(), callBacks);
    return array && array.get()->values.reserveExactly(capacity) ? array : nullptr;
}

Array createFilled(CFAllocatorRef allocator, const void* const* values, CFIndex count,
                   const CFArrayCallBacks* callBacks) {
    if (!values && count > 0)
        return nullptr;
    Array array = createEmpty(allocator, count, callBacks);
    for (CFIndex i = 0; array && i < count; ++i)
        array.get()->values.append(array.get()->retained(values[i]));
    return array;
}

Array createCopy(CFAllocatorRef allocator, CFArrayRef source) {
    return createFilled(allocator, source->values.data(), source->values.size(),
                        &source->callBacks);
}

} // namespace

namespace cf {

const CFRuntimeClass kArrayClass = {
    .className = "CFArray",
    .finalize = cf::finalize<__CFArray>,
    .equal = equalArrays,
    .hash = hashArray,
    .copyDebugDescription = describeArray,
};

bool hasRange(CFArrayRef array, CFRange range, const char* function) {
    const CFIndex count = array->values.size();
    const bool inside = range.location >= 0 && range.length >= 0 && range.location <= count &&
                        range.length <= count - range.location;
    if (!inside)
        HostLog(kHostLogError, kLogCategory, function, "range {%ld, %ld} of an array of %ld values",
                range.location, range.length, count);
    return inside;
}

} // namespace cf

const CFArrayCallBacks kCFTypeArrayCallBacks = {0, cf::retainObject, cf::releaseObject,
                                                CFCopyDescription, CFEqual};

CFTypeID CFArrayGetTypeID(void) {
    static const CFTypeID type = _CFRuntimeRegisterClass(&cf::kArrayClass);
    return type;
}

CFArrayRef CFArrayCreate(CFAllocatorRef allocator, const void** values, CFIndex count,
                         const CFArrayCallBacks* callBacks) {
    return createFilled(allocator, values, count, callBacks).release();
}

CFArrayRef CFArrayCreateCopy(CFAllocatorRef allocator, CFArrayRef array) {
    return isArray(array) ? createCopy(allocator, array).release() : nullptr;
}

CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                       const CFArrayCallBacks* callBacks) {
    const CFIndex hint = std::min(capacity, cf::kMostTakenFromHint);
    return cf::makeMutable(createEmpty(allocator, hint, callBacks)).release();
}

CFMutableArrayRef CFArrayCreateMutableCopy(CFAllocatorRef allocator, CFIndex capacity,
                                           CFArrayRef array) {
    if (!isArray(array) || capacity < 0)
        return nullptr;
    return cf::makeMutable(createCopy(allocator, array)).release();
}

CFIndex CFArrayGetCount(CFArrayRef array) {
    return isArray(array) ? array->values.size() : 0;
}

const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index) {
    if (!isArray(array))
        return nullptr;
    if (index < 0 || index >= array->values.size()) [[unlikely]] {
        CF_LOG_ERROR("index %ld of an array of %ld values", index, array->values.size());
        return nullptr;
    }
    return array->values[index];
}

void CFArrayGetValues(CFArrayRef array, CFRange range, const void** values) {
    if (isArray(array) && values && cf::hasRange(array, range, __func__))
        std::copy_n(array->values.begin() + range.location, range.length, values);
}

CFIndex CFArrayGetCountOfValue(CFArrayRef array, CFRange range, const void* value) {
    if (!isArray(array) || !cf::hasRange(array, range, __func__))
        return 0;
    const auto first = array->values.begin() + range.location;
    return std::count_if(first, first + range.length,
                         [=](const void* each) { return array->areEqual(each, value); });
}

Boolean CFArrayContainsValue(CFArrayRef array, CFRange range, const void* value) {
    return CFArrayGetFirstIndexOfValue(array, range, value) != kCFNotFound;
}

CFIndex CFArrayGetFirstIndexOfValue(CFArrayRef array, CFRange range, const void* value) {
    if (!isArray(array) || !cf::hasRange(array, range, __func__))
        return kCFNotFound;
    for (CFIndex i = range.location; i < range.location + range.length; ++i) {
        if (array->areEqual(array->values[i], value))
            return i;
    }
    return kCFNotFound;
}

CFIndex CFArrayGetLastIndexOfValue(CFArrayRef array, CFRange range, const void* value) {
    if (!isArray(array) || !cf::hasRange(array, range, __func__))
        return kCFNotFound;
    for (CFIndex i = range.location + range.length - 1; i >= range.location; --i) {
        if (array->areEqual(array->values[i], value))
            return i;
    }
    return kCFNotFound;
}

void CFArrayApplyFunction(CFArrayRef array, CFRange range, CFArrayApplierFunction applier,
                          void* context) {
    if (!isArray(array) || !applier || !cf::hasRange(array, range, __func__))
        return;
    const CFIndex end = range.location + range.length;
    for (CFIndex i = range.location; i < end && i < array->values.size(); ++i)
        applier(array->values[i], context);
}

CFIndex CFArrayBSearchValues(CFArrayRef array, CFRange range, const void* value,
                             CFComparatorFunction comparator, void* context) {
    if (!isArray(array) || !comparator || !cf::hasRange(array, range, __func__))
        return kCFNotFound;
    const auto first = array->values.begin() + range.location;
    const auto found =
        std::lower_bound(first, first + range.length, value, [=](const void* a, const void* b) {
            return comparator(a, b, context) == kCFCompareLessThan;
        });
    return static_cast<CFIndex>(found - array->values.begin());
}
