// FontOverrides.h: the overrides of a configuration, by family.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>
#include <FontManager/FMConfig.h>

#include "Config/MetricsOverride.h"

namespace fm {

cf::Ref<FMFontOverridesRef> makeFontOverrides();
// Adds one to those of a family, whose key it is. False without memory.
bool addOverride(FMFontOverridesRef overrides, CFStringRef familyKey,
                 const MetricsOverride& metrics);
// Applies all overrides of a family, in the order in which they were added, to the metrics of one
// of its fonts; whether there were any. The family is the nimbra family name of the font.
bool applyOverrides(FMFontOverridesRef overrides, CFStringRef family, FMFontMetrics& metrics);

} // namespace fm
