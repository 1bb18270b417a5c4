// FMConfigRecord.h: what a font configuration says, and where one comes from.
#pragma once

#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFRuntime.h>
#include <CoreFoundation/CFURL.h>
#include <FontManager/FMConfig.h>

#include <string_view>

struct FMConfig {
    CFRuntimeBase base;
    int32_t type = kFMConfigTypeCachedDatabase;
    cf::Ref<CFMutableArrayRef> assets;
    cf::Ref<CFMutableDictionaryRef> substitutions; // From a family key to an array of such.
    cf::Ref<FMFontOverridesRef> overrides;         // NULL when they have been handed over.
};

namespace fm {

// An empty configuration; NULL without memory.
cf::Ref<FMConfigRef> makeConfig();
// What an XML document says, in which relative paths start from `base`. NULL, after an error in the
// log that begins with `name`, when it is malformed.
cf::Ref<FMConfigRef> readConfig(std::string_view document, CFURLRef base, const char* name);
// The same of a file.
cf::Ref<FMConfigRef> readConfigFile(CFURLRef file);
// The document that the library was built with.
std::string_view builtInConfig();

} // namespace fm
