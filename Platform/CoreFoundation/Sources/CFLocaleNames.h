// CFLocaleNames.h: the names of locales and languages in their canonical forms.
#pragma once

#include <CoreFoundation/CFLocale.h>

#include <unicode/uloc.h>

namespace cf {

// `name` has room for ULOC_FULLNAME_CAPACITY bytes.

// Writes the name of the locale that the environment asks for.
void readCurrentLocale(char* name);
// Writes the canonical form of any spelling; false when it is too long or not ASCII.
bool canonicalizeLocale(CFStringRef identifier, char* name);

} // namespace cf
