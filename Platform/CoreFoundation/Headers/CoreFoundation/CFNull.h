/* CFNull.h: the one object that stands for "nothing" inside a collection. */
#pragma once

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

/** The only instance; it ignores retain and release. */
CF_EXPORT const CFNullRef kCFNull;

CF_EXPORT CFTypeID CFNullGetTypeID(void);

CF_EXTERN_C_END
