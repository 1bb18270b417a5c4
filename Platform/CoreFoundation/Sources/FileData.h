// FileData.h: whole files as data and property lists.
#pragma once

#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFRef.h>

namespace cf {

enum class FileState {
    Read,
    Missing,
    Unreadable, // The host refuses it, or memory is short.
    Corrupt,    // Its bytes are not what was asked for.
};

// The file's bytes, and how that went.
Ref<CFDataRef> readFile(const char* path, FileState& state);

// The dictionary in a property list file of any format.
Ref<CFDictionaryRef> readDictionary(const char* path, FileState& state);

} // namespace cf
