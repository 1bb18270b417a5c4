// LibraryRecord.h: what a font library holds.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFRuntime.h>
#include <FontManager/FMDatabase.h>
#include <FontManager/FMLibrary.h>

struct FMLibrary {
    CFRuntimeBase base;
    cf::Ref<FMDatabaseRef> database; // Never another one; it has its own lock.
};

namespace fm {

// Lent; NULL when there is none.
inline FMDatabaseRef databaseOf(FMLibraryRef library) {
    return library ? library->database.get() : nullptr;
}

} // namespace fm
