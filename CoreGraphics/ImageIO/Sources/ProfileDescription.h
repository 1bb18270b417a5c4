// ProfileDescription.h: what a colour profile calls itself.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>

#include "ImageHeader.h"

namespace imageio {

// The description of an ICC profile, in English where it has several; NULL when there is none.
cf::Ref<CFStringRef> profileDescription(Bytes profile);

} // namespace imageio
