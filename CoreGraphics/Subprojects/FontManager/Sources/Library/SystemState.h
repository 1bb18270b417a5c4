// SystemState.h: what a stored database depends on besides the fonts' files.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>
#include <CoreFoundation/CFURL.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace fm {

// Changes whenever the system's resources do; the same text otherwise.
cf::Ref<CFStringRef> systemResourcesToken();

// The application's information file, and when it was last written, in seconds since 1970: nothing
// for a program without one.
cf::Ref<CFStringRef> applicationInfoPath();
std::optional<std::int64_t> modificationTime(CFStringRef path);

// The fonts that the application brings along.
std::vector<cf::Ref<CFStringRef>> applicationFontPaths();

// File-system paths of URLs; NULL for what is no file.
cf::Ref<CFStringRef> pathOf(CFURLRef url);

} // namespace fm
