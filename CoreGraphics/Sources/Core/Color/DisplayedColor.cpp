// DisplayedColor.cpp: the red, green and blue that a colour is painted with.

#include "Core/Color/DisplayedColor.h"

#include "XGColor.h"
#include "XGColorSpace.h"

#include "Core/Color/CGColorRecord.h"
#include "Core/Color/CGColorSpaceRecord.h"
#include "Core/Color/ColorTransform.h"
#include "Core/Color/NativeProfile.h"
#include "Core/Color/RowTransform.h"

#include <algorithm>

namespace cg {

namespace {

bool isGrayOrRGB(CGColorSpaceModel model) {
    return model == kCGColorSpaceModelMonochrome || model == kCGColorSpaceModelRGB;
}

// Where a colour's numbers go. Marks in gray bitmaps are painted in RGB, too: only their own gray
// can be theirs.
CGColorSpaceRef destinationOf(CGColorSpaceModel model, const ColorTarget& target) {
    const CGColorSpaceModel targetModel = CGColorSpaceGetModel(target.space);
    const bool isReachable = targetModel == kCGColorSpaceModelRGB ||
                             (targetModel == kCGColorSpaceModelMonochrome && model == targetModel);
    return isReachable ? target.space : XGColorSpaceGetDeviceRGB();
}

} // namespace

bool isPaintedAsItStands(CGColorSpaceRef space, const ColorTarget& target) {
    if (!space || !isGrayOrRGB(space->model))
        return false;
    const CGColorSpaceRef to = destinationOf(space->model, target);
    return to->model == space->model ? !needsConversion(space, to) : !hasOtherColors(space);
}

std::array<CGFloat, 4> displayedColor(CGColorRef color, const ColorTarget& target) {
    std::array<CGFloat, 4> rgba = {};
    const CGColorRef native = nativeColor(color);
    const CGColorSpaceRef space = native ? native->space.get() : nullptr;
    ColorComponents components = {}, converted = {};
    const auto asItStands = [&] {
        _CGColorGetRGBA(native, &rgba[0], &rgba[1], &rgba[2], &rgba[3]);
        return rgba;
    };
    if (!space || space->model == kCGColorSpaceModelPattern || isPaintedAsItStands(space, target))
        return asItStands();

    std::ranges::copy(native->components(), components.begin());
    const CGColorSpaceRef to = destinationOf(space->model, target);
    const bool isConverted =
        isGrayOrRGB(space->model)
            ? convertByProfiles(space, components, to, target.intent, converted)
            : convertColor(space, components, to, target.intent, converted);
    if (!isConverted)
        return asItStands();
    if (to->model == kCGColorSpaceModelMonochrome)
        return {converted[0], converted[0], converted[0], converted[1]};
    std::copy_n(converted.begin(), rgba.size(), rgba.begin());
    return rgba;
}

} // namespace cg
