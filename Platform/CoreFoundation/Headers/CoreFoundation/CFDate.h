/* CFDate.h: instants, counted in seconds from the first moment of 2001, Greenwich. */
#pragma once

#include <CoreFoundation/CFAllocator.h>

CF_EXTERN_C_BEGIN

typedef double CFTimeInterval;
/** Seconds since 2001-01-01 00:00:00 UTC; negative before. */
typedef CFTimeInterval CFAbsoluteTime;
typedef const struct __CFDate* CFDateRef;

/** From 1970-01-01 to 2001-01-01, both 00:00:00 UTC: 978307200 seconds. */
CF_EXPORT const CFTimeInterval kCFAbsoluteTimeIntervalSince1970;
/** From 1904-01-01 to 2001-01-01: 3061152000 seconds. */
CF_EXPORT const CFTimeInterval kCFAbsoluteTimeIntervalSince1904;

/** The host's clock, which may be set back. */
CF_EXPORT CFAbsoluteTime CFAbsoluteTimeGetCurrent(void);

CF_EXPORT CFTypeID CFDateGetTypeID(void);
CF_EXPORT CFDateRef CFDateCreate(CFAllocatorRef allocator, CFAbsoluteTime time);
CF_EXPORT CFAbsoluteTime CFDateGetAbsoluteTime(CFDateRef date);
/** Seconds from `other` to `date`; 0 when either is NULL. */
CF_EXPORT CFTimeInterval CFDateGetTimeIntervalSinceDate(CFDateRef date, CFDateRef other);
/** Earlier instants come first, and NULL before all. The context is ignored. */
CF_EXPORT CFComparisonResult CFDateCompare(CFDateRef date, CFDateRef other, void* context);

CF_EXTERN_C_END
