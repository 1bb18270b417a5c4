// CFDate.cpp: instants.

#include "CFDate.h"

#include "CFDescription.h"
#include "CFRuntimeInternal.h"

#include <array>
#include <bit>
#include <cmath>
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

CFStringRef copyDateText(CFTypeRef object, CFTypeRef) {
    const double since1970 = timeOf(object) + kCFAbsoluteTimeIntervalSince1970;
    // The years that the calendar below can tell.
    if (!(since1970 >= -62135596800.0 && since1970 < 253402300800.0))
        return CFStringCreateWithFormat(nullptr, nullptr, CFSTR("%g s"), timeOf(object));
    const auto seconds = static_cast<std::time_t>(std::floor(since1970));
    std::tm calendar = {};
    gmtime_r(&seconds, &calendar);
    std::array<char, 40> text = {};
    std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S +0000", &calendar);
    return CFStringCreateWithCString(nullptr, text.data(), kCFStringEncodingUTF8);
}

CFStringRef describeDate(CFTypeRef object) {
    cf::Description text(object);
    text.append(CFSTR("time = %@"), object);
    return text.finish();
}

constexpr CFRuntimeClass kDateClass = {
    .className = "CFDate",
    .equal = [](CFTypeRef a, CFTypeRef b) -> Boolean { return timeOf(a) == timeOf(b); },
    // Zero of either sign is one instant.
    .hash =
        [](CFTypeRef object) {
            return static_cast<CFHashCode>(std::bit_cast<uint64_t>(timeOf(object) + 0.0));
        },
    .copyFormattingDescription = copyDateText,
    .copyDebugDescription = describeDate,
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
