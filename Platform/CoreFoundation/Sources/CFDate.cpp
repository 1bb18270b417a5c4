// CFDate.cpp: instants.

#include "CFDate.h"

#include "CFRuntimeInternal.h"

#include <bit>
#include <ctime>

struct __CFDate {
    CFRuntimeBase base;
    CFAbsoluteTime time;

    __CFDate(CFAllocatorRef, CFAbsoluteTime given) : time(given) {}
};

namespace {

CFAbsoluteTime timeOf(CFTypeRef object) {
    return static_cast<CFDateRef>(object)->time;
}

constexpr CFRuntimeClass kDateClass = {
    .className = "CFDate",
    .equal = [](CFTypeRef a, CFTypeRef b) -> Boolean { return timeOf(a) == timeOf(b); },
    // Zero of either sign is one instant.
    .hash =
        [](CFTypeRef object) {
            return static_cast<CFHashCode>(std::bit_cast<uint64_t>(timeOf(object) + 0.0));
        },
};

bool isDate(CFDateRef date) {
    return cf::isA(date, kDateClass);
}

} // namespace

const CFTimeInterval kCFAbsoluteTimeIntervalSince1970 = 978307200.0;
const CFTimeInterval kCFAbsoluteTimeIntervalSince1904 = 3061152000.0;

CFAbsoluteTime CFAbsoluteTimeGetCurrent(void) {
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    return static_cast<double>(now.tv_sec) - kCFAbsoluteTimeIntervalSince1970 +
           static_cast<double>(now.tv_nsec) / 1e9;
}

CFTypeID CFDateGetTypeID(void) {
    static const CFTypeID type = _CFRuntimeRegisterClass(&kDateClass);
    return type;
}

CFDateRef CFDateCreate(CFAllocatorRef allocator, CFAbsoluteTime time) {
    return cf::create<__CFDate>(allocator, CFDateGetTypeID(), time).release();
}

CFAbsoluteTime CFDateGetAbsoluteTime(CFDateRef date) {
    return isDate(date) ? date->time : 0;
}

CFTimeInterval CFDateGetTimeIntervalSinceDate(CFDateRef date, CFDateRef other) {
    return isDate(date) && isDate(other) ? date->time - other->time : 0;
}

CFComparisonResult CFDateCompare(CFDateRef date, CFDateRef other, void*) {
    const auto compare = [](auto a, auto b) {
        return a < b ? kCFCompareLessThan : a > b ? kCFCompareGreaterThan : kCFCompareEqualTo;
    };
    if (!isDate(date) || !isDate(other))
        return compare(isDate(date), isDate(other));
    return compare(date->time, other->time);
}
