// PreferencesStore.h: the domains of settings that this process has looked at, and their files.
#pragma once

#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>

#include <climits>

namespace cf::preferences {

// A domain is known by the path of its file; an empty path is a domain that holds nothing.
struct Domain {
    char path[PATH_MAX] = "";

    bool isKnown() const { return path[0] != '\0'; }
};

// The domain of these names, which may be the constants of CFPreferences.h.
Domain findDomain(CFStringRef application, CFStringRef user, CFStringRef host);

// What it holds now, changes included. All four may be called from any thread.
Ref<CFTypeRef> copyValue(const Domain& domain, CFStringRef key);
Ref<CFDictionaryRef> copyValues(const Domain& domain);

// Sets the values of `changes`; kCFNull removes one.
void change(const Domain& domain, CFDictionaryRef changes);

// Writes what was changed into the file as it is now, and forgets what was read.
bool synchronize(const Domain& domain);

} // namespace cf::preferences
