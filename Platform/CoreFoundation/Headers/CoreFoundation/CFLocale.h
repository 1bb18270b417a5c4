/* CFLocale.h: languages, regions and their conventions. */
#pragma once

#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFDictionary.h>

CF_EXTERN_C_BEGIN

typedef const struct __CFLocale* CFLocaleRef;

CF_EXTERN_C_END
