// NativeProfile.h: which profile of Little CMS stands for a space, and how the profile shows.
#pragma once

#include <CoreGraphics/CGColorSpace.h>

namespace cg {

// The gray or RGB of the device, or the space named sRGB.
bool isDeviceLike(CGColorSpaceRef space);

// The same, or a profile that shows gray or RGB as sRGB does within a step of 8 bits; found out the
// first time it is asked for.
bool showsAsSRGB(CGColorSpaceRef space);

// Whether the gray or RGB of a profile shows otherwise than the device's does. Spaces that numbers
// calibrate are taken for the device's own.
bool hasOtherColors(CGColorSpaceRef space);

// A cmsHPROFILE that lives as long as the space; NULL when there is none.
void* nativeProfileOf(CGColorSpaceRef space);

} // namespace cg
