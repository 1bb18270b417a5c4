// FontIterator.h: what an iterator over the host's fonts has come to.
#pragma once

#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>
#include <FontManager/FMFontIterator.h>

#include <cstdint>

namespace fm {

// The path of a file; NULL for a font in memory.
cf::Ref<CFStringRef> currentPath(FMFontIteratorRef iterator);
// The name by which the host knows a font in memory; NULL for a file.
cf::Ref<CFStringRef> currentWindowsIdentifier(FMFontIteratorRef iterator);
// The bytes of a font in memory, and which of their faces it is; NULL for a file.
cf::Ref<CFDataRef> currentData(FMFontIteratorRef iterator, std::int64_t* faceIndex);
// The same of any font that the host knows by that name; NULL when there is none.
cf::Ref<CFDataRef> hostFontData(CFStringRef name, std::int64_t* faceIndex);
// When it was changed, in seconds since 1970; 0 for no font.
std::int64_t currentModificationTime(FMFontIteratorRef iterator);

} // namespace fm
