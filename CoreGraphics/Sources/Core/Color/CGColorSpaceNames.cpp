// CGColorSpaceNames.cpp: spaces by name.

#include <CoreFoundation/CFConstantString.h>
#include <CoreGraphics/CGColorSpace.h>

#include "Core/Color/CGColorSpaceRecord.h"

#include <algorithm>
#include <array>

#define DEFINE_NAME(name) CF_CONST_STRING_DECL(name, #name)

DEFINE_NAME(kCGColorSpaceGenericGray);
DEFINE_NAME(kCGColorSpaceGenericRGB);
DEFINE_NAME(kCGColorSpaceGenericCMYK);
DEFINE_NAME(kCGColorSpaceSRGB);
DEFINE_NAME(kCGColorSpaceGenericRGBLinear);
DEFINE_NAME(kCGColorSpaceAdobeRGB1998);
DEFINE_NAME(kCGColorSpaceGenericGrayGamma2_2);
DEFINE_NAME(kCGColorSpaceACESCGLinear);
DEFINE_NAME(kCGColorSpaceDCIP3);
DEFINE_NAME(kCGColorSpaceDisplayP3);
DEFINE_NAME(kCGColorSpaceExtendedGray);
DEFINE_NAME(kCGColorSpaceExtendedLinearGray);
DEFINE_NAME(kCGColorSpaceExtendedLinearSRGB);
DEFINE_NAME(kCGColorSpaceExtendedSRGB);
DEFINE_NAME(kCGColorSpaceGenericXYZ);
DEFINE_NAME(kCGColorSpaceITUR_2020);
DEFINE_NAME(kCGColorSpaceITUR_2100_HLG);
DEFINE_NAME(kCGColorSpaceITUR_2100_PQ);
DEFINE_NAME(kCGColorSpaceITUR_709);
DEFINE_NAME(kCGColorSpaceLinearGray);
DEFINE_NAME(kCGColorSpaceLinearSRGB);
DEFINE_NAME(kCGColorSpaceROMMRGB);

namespace {

struct NamedSpace {
    const CFStringRef* name;
    CGColorSpaceRef (*create)();
};

// Names that are not here, among them all the constants left out, cannot be made.
constexpr std::array kNamedSpaces = {
    NamedSpace{&kCGColorSpaceGenericGray, CGColorSpaceCreateDeviceGray},
    NamedSpace{&kCGColorSpaceGenericRGB, CGColorSpaceCreateDeviceRGB},
    NamedSpace{&kCGColorSpaceGenericCMYK, CGColorSpaceCreateDeviceCMYK},
    NamedSpace{&kCGColorSpaceSRGB, cg::createSRGB},
};

} // namespace

CGColorSpaceRef CGColorSpaceCreateWithName(CFStringRef name) {
    if (!name)
        return nullptr;
    const auto found = std::ranges::find_if(
        kNamedSpaces, [name](const NamedSpace& known) { return CFEqual(*known.name, name); });
    if (found == kNamedSpaces.end())
        return nullptr;
    const CGColorSpaceRef space = found->create();
    if (space)
        space->name.store(*found->name, std::memory_order_relaxed);
    return space;
}
