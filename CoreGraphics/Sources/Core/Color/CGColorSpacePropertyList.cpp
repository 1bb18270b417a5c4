// CGColorSpacePropertyList.cpp: spaces of data whose type is not known, and as property lists.

#include "XGColorSpace.h"
#include <CoreFoundation/CFString.h>
#include <CoreGraphics/CGColorSpace.h>
#include <CoreGraphics/CGDataProvider.h>

#include "Core/Color/CGColorSpaceRecord.h"
#include "Core/Object/Diagnostics.h"

CGColorSpaceRef CGColorSpaceCreateWithICCData(CFTypeRef data) {
    if (!data)
        return nullptr;
    const CFTypeID type = CFGetTypeID(data);
    if (type == CFDataGetTypeID())
        return CGColorSpaceCreateWithICCProfile(cg::as<CFDataRef>(data));
    if (type != CGDataProviderGetTypeID()) {
        CG_LOG_WARNING("a profile is data or a data provider, not %@", data);
        return nullptr;
    }
    const auto copy = cf::adopt(CGDataProviderCopyData(cg::as<CGDataProviderRef>(data)));
    return CGColorSpaceCreateWithICCProfile(copy.get());
}

CGColorSpaceRef CGColorSpaceCreateWithColorSyncProfile(CFTypeRef profile, CFDictionaryRef) {
    return CGColorSpaceCreateWithICCData(profile);
}

CGColorSpaceRef CGColorSpaceCreateWithPropertyList(CFPropertyListRef list) {
    if (!list)
        return nullptr;
    const CFTypeID type = CFGetTypeID(list);
    if (type == CFStringGetTypeID())
        return CGColorSpaceCreateWithName(cg::as<CFStringRef>(list));
    return type == CFDataGetTypeID() ? CGColorSpaceCreateWithICCProfile(cg::as<CFDataRef>(list))
                                     : nullptr;
}

CFPropertyListRef CGColorSpaceCopyPropertyList(CGColorSpaceRef space) {
    if (!space)
        return nullptr;
    if (const CFStringRef name = CGColorSpaceCopyName(space))
        return name;
    if (!space->isDevice)
        return CGColorSpaceCopyICCData(space);
    switch (space->model) {
    case kCGColorSpaceModelMonochrome:
        return cg::retain(kCGColorSpaceGenericGray);
    case kCGColorSpaceModelRGB:
        return cg::retain(kCGColorSpaceGenericRGB);
    default:
        return cg::retain(kCGColorSpaceGenericCMYK);
    }
}
