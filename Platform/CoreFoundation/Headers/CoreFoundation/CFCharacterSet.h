/* CFCharacterSet.h: sets of Unicode characters. */
#pragma once

#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFData.h>

CF_EXTERN_C_BEGIN

typedef const struct __CFCharacterSet* CFCharacterSetRef;
typedef struct __CFCharacterSet* CFMutableCharacterSetRef;

CF_EXTERN_C_END
