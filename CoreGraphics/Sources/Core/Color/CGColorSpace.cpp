// CGColorSpace.cpp: the colour space object and its queries.

#include "XGColorSpace.h"
#include <CoreFoundation/CFString.h>
#include <CoreGraphics/CGColorSpace.h>

#include "Core/Color/CGColorSpaceRecord.h"
#include "Core/Object/Diagnostics.h"
#include "Core/Object/RuntimeObject.h"

#include <algorithm>

namespace {

CFStringRef copyDescription(CGColorSpaceRef space) {
    return CFStringCreateWithFormat(
        nullptr, nullptr, CFSTR("<CGColorSpace %p { name=%@, model=%d, components=%zu }>"),
        static_cast<const void*>(space), static_cast<CFTypeRef>(space->name.load()),
        static_cast<int>(space->model), space->componentCount);
}

constexpr CFRuntimeClass kColorSpaceClass = {
    .className = "CGColorSpace",
    .copy = cg::copyByRetaining,
    .finalize = cg::finalize<CGColorSpace>,
    .equal = cg::equalBy<XGColorSpaceEqualToColorSpace>,
    .copyFormattingDescription = cg::formattingDescriptionBy<copyDescription>,
    .copyDebugDescription = cg::debugDescriptionBy<copyDescription>,
};

} // namespace

CFTypeID CGColorSpaceGetTypeID(void) {
    static const CFTypeID id = _CFRuntimeRegisterClass(&kColorSpaceClass);
    return id;
}

std::uint64_t cg::nextColorSpaceSerial() {
    static constinit std::atomic<std::uint64_t> last = 0;
    return last.fetch_add(1, std::memory_order_relaxed) + 1;
}

CGColorSpace* cg::createColorSpace(CGColorSpaceModel model, std::size_t componentCount,
                                   std::size_t trailingBytes) {
    const auto space = cg::create<CGColorSpace>(CGColorSpaceGetTypeID(), trailingBytes);
    if (space) {
        space->model = model;
        space->componentCount = componentCount;
    }
    return space;
}

CGColorSpaceRef CGColorSpaceRetain(CGColorSpaceRef space) {
    return cg::retain(space);
}
void CGColorSpaceRelease(CGColorSpaceRef space) {
    cg::release(space);
}

CGColorSpaceModel CGColorSpaceGetModel(CGColorSpaceRef space) {
    return space ? space->model : kCGColorSpaceModelUnknown;
}

size_t CGColorSpaceGetNumberOfComponents(CGColorSpaceRef space) {
    return space ? space->componentCount : 0;
}

CGColorSpaceRef CGColorSpaceGetBaseColorSpace(CGColorSpaceRef space) {
    return space ? space->baseSpace.get() : nullptr;
}

size_t CGColorSpaceGetColorTableCount(CGColorSpaceRef space) {
    const auto* const table = space ? std::get_if<cg::ColorTable>(&space->calibration) : nullptr;
    return table ? table->count : 0;
}

void CGColorSpaceGetColorTable(CGColorSpaceRef space, uint8_t* out) {
    const auto* const table = space ? std::get_if<cg::ColorTable>(&space->calibration) : nullptr;
    if (table && out)
        std::ranges::copy(table->bytes, out);
}

CFStringRef CGColorSpaceCopyName(CGColorSpaceRef space) {
    return space ? cg::retain(space->name.load()) : nullptr;
}

bool CGColorSpaceIsWideGamutRGB(CGColorSpaceRef) {
    return false;
}
bool CGColorSpaceSupportsOutput(CGColorSpaceRef) {
    return true;
}

CGColorSpaceRef CGColorSpaceCreateWithPlatformColorSpace(const void*) {
    CG_NOT_YET_IMPLEMENTED();
}

bool XGColorSpaceIsSRGB(CGColorSpaceRef space) {
    const CFStringRef name = space ? space->name.load() : nullptr;
    return name && CFEqual(name, kCGColorSpaceSRGB);
}

// Deliberate: calibration, tables and names do not count, so that colours of all RGB spaces pass
// into each other untouched.
bool XGColorSpaceEqualToColorSpace(CGColorSpaceRef a, CGColorSpaceRef b) {
    if (!a || !b)
        return false;
    if (a == b)
        return true;
    if (a->model != b->model || a->componentCount != b->componentCount)
        return false;
    return (!a->baseSpace && !b->baseSpace) ||
           XGColorSpaceEqualToColorSpace(a->baseSpace.get(), b->baseSpace.get());
}
