// PreferredLanguages.h: the user's languages, as fonts are chosen by them.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>

namespace fm {

// The first of the user's languages: "zh-Hans", "zh-Hant", or a language without what follows it.
cf::Ref<CFStringRef> preferredFontLanguage();

// All of them, comma-joined: databases hold names in these languages.
cf::Ref<CFStringRef> serializedPreferredLanguages();

} // namespace fm
