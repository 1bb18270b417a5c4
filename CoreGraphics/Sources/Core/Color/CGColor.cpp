// CGColor.cpp: the colour object: creation, queries, comparison.

#include "XGColor.h"
#include "XGColorSpace.h"
#include "XGPattern.h"
#include <CoreFoundation/CFConstantString.h>
#include <CoreFoundation/CFString.h>
#include <CoreGraphics/CGColor.h>

#include "Core/Color/CGColorRecord.h"
#include "Core/Color/CGColorSpaceRecord.h"
#include "Core/Color/StaticInstance.h"
#include "Core/Object/Diagnostics.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

CF_CONST_STRING_DECL(kCGColorWhite, "kCGColorWhite");
CF_CONST_STRING_DECL(kCGColorBlack, "kCGColorBlack");
CF_CONST_STRING_DECL(kCGColorClear, "kCGColorClear");

namespace {

// Over the bytes of the components, so that bitwise equal colours share it.
CFHashCode hash(CGColorRef color) {
    uint32_t sum = 903869;
    for (const std::byte byte : std::as_bytes(color->components()))
        sum = (sum + std::to_integer<uint32_t>(byte)) * 257;
    return sum;
}

CFStringRef copyDescription(CGColorRef color) {
    const auto text = cf::adopt(CFStringCreateMutable(nullptr, 0));
    const auto name = cf::adopt(CGColorSpaceCopyName(color->space.get()));
    CFStringAppendFormat(text.get(), nullptr, CFSTR("<CGColor %@ {"),
                         static_cast<CFTypeRef>(name ? name.get() : CFSTR("unnamed")));
    const char* separator = "";
    for (const CGFloat component : color->components()) {
        CFStringAppendFormat(text.get(), nullptr, CFSTR("%s%.2f"), separator,
                             static_cast<double>(component));
        separator = ", ";
    }
    CFStringAppendFormat(text.get(), nullptr, CFSTR("}>"));
    return cf::retain(static_cast<CFStringRef>(text.get())).release();
}

constexpr CFRuntimeClass kColorClass = {
    .className = "CGColor",
    .copy = cg::copyByRetaining,
    .finalize = cg::finalize<CGColor>,
    .equal = cg::equalBy<CGColorEqualToColor>,
    .hash = cg::hashBy<hash>,
    .copyFormattingDescription = cg::formattingDescriptionBy<copyDescription>,
    .copyDebugDescription = cg::debugDescriptionBy<copyDescription>,
};

void fill(CGColor& color, CGColorSpaceRef space, const CGFloat* components,
          CGPatternRef pattern = nullptr, std::optional<CGFloat> alpha = std::nullopt) {
    if (color.space.get() != space)
        color.space = cf::retain(space);
    color.pattern = cf::retain(pattern);
    color.count = space->componentCount + 1;
    const auto own = color.components();
    for (CGFloat& component : own)
        component = *components++;
    if (alpha)
        own.back() = *alpha;
    XGColorSpaceClampComponents(space, own.data(), own.data());
}

} // namespace

CFTypeID CGColorGetTypeID(void) {
    static const CFTypeID id = _CFRuntimeRegisterClass(&kColorClass);
    return id;
}

// ---- Creation

cf::Ref<CGColorRef> cg::makeColor(CGColorSpaceRef space, const CGFloat* components,
                                  CGPatternRef pattern, std::optional<CGFloat> alpha) {
    const std::size_t count = space->componentCount + 1;
    const auto color = cg::create<CGColor>(CGColorGetTypeID(), count * sizeof(CGFloat));
    if (color)
        fill(*color, space, components, pattern, alpha);
    return cf::adopt(color);
}

void cg::refill(CGColor& color, CGColorSpaceRef space, const CGFloat* components) {
    fill(color, space, components);
}

CGColorRef CGColorCreate(CGColorSpaceRef space, const CGFloat* components) {
    return space && components ? cg::makeColor(space, components).release() : nullptr;
}

namespace {

template <std::size_t count>
CGColorRef createInNamedSpace(CFStringRef name, const std::array<CGFloat, count>& components) {
    const auto space = cf::adopt(CGColorSpaceCreateWithName(name));
    return CGColorCreate(space.get(), components.data());
}

} // namespace

namespace {

// The space that a colour of the pattern has when a caller names `space`.
cf::Ref<CGColorSpaceRef> spaceForPattern(CGColorSpaceRef space, CGPatternRef pattern) {
    const bool hasComponents = CGColorSpaceGetNumberOfComponents(space) > 0;
    const bool isColored = XGPatternIsColored(pattern);
    if (hasComponents != isColored)
        return cf::retain(space);
    return cf::adopt(CGColorSpaceCreatePattern(isColored ? nullptr : XGColorSpaceGetDeviceGray()));
}

} // namespace

CGColorRef CGColorCreateWithPattern(CGColorSpaceRef space, CGPatternRef pattern,
                                    const CGFloat* components) {
    if (!space || !pattern || !components)
        return nullptr;
    const auto chosen = spaceForPattern(space, pattern);
    return chosen ? cg::makeColor(chosen.get(), components, pattern).release() : nullptr;
}

CGColorRef CGColorCreateGenericGray(CGFloat gray, CGFloat alpha) {
    return createInNamedSpace(kCGColorSpaceGenericGray, std::array{gray, alpha});
}

CGColorRef CGColorCreateGenericRGB(CGFloat red, CGFloat green, CGFloat blue, CGFloat alpha) {
    return createInNamedSpace(kCGColorSpaceGenericRGB, std::array{red, green, blue, alpha});
}

CGColorRef CGColorCreateGenericCMYK(CGFloat cyan, CGFloat magenta, CGFloat yellow, CGFloat black,
                                    CGFloat alpha) {
    return createInNamedSpace(kCGColorSpaceGenericCMYK,
                              std::array{cyan, magenta, yellow, black, alpha});
}

CGColorRef CGColorCreateCopy(CGColorRef color) {
    return cg::retain(cg::nativeColor(color));
}

CGColorRef CGColorCreateCopyWithAlpha(CGColorRef color, CGFloat alpha) {
    const CGColorRef native = cg::nativeColor(color);
    if (!native)
        return nullptr;
    const auto replacement = alpha >= 0 ? std::optional(alpha) : std::nullopt;
    return cg::makeColor(native->space.get(), native->components().data(), native->pattern.get(),
                         replacement)
        .release();
}

CGColorRef CGColorCreateCopyByMatchingToColorSpace(CGColorSpaceRef, CGColorRenderingIntent,
                                                   CGColorRef, CFDictionaryRef) {
    CG_NOT_YET_IMPLEMENTED();
}

namespace {

template <const std::array<CGFloat, 2>& grayAndAlpha>
CGColorRef constantGray() {
    static const CGColorRef color = [] {
        static cg::StaticInstance<CGColor, sizeof grayAndAlpha> storage;
        CGColor* const made = storage.make(CGColorGetTypeID());
        const auto space = cf::adopt(CGColorSpaceCreateWithName(kCGColorSpaceGenericGray));
        fill(*made, space.get(), grayAndAlpha.data());
        return made;
    }();
    return color;
}

struct ConstantColor {
    const CFStringRef* name;
    CGColorRef (*get)();
};

constexpr std::array<CGFloat, 2> kWhite = {1, 1};
constexpr std::array<CGFloat, 2> kBlack = {0, 1};
constexpr std::array<CGFloat, 2> kClear = {0, 0};
constexpr std::array<CGFloat, 2> kShadow = {0, 0.33333334f};

constexpr std::array kConstantColors = {
    ConstantColor{&kCGColorWhite, constantGray<kWhite>},
    ConstantColor{&kCGColorBlack, constantGray<kBlack>},
    ConstantColor{&kCGColorClear, constantGray<kClear>},
};

} // namespace

CGColorRef CGColorGetConstantColor(CFStringRef name) {
    if (!name)
        return nullptr;
    const auto found = std::ranges::find_if(kConstantColors, [name](const ConstantColor& constant) {
        return CFEqual(*constant.name, name);
    });
    return found == kConstantColors.end() ? nullptr : found->get();
}

CGColorRef cg::defaultShadowColor() {
    return constantGray<kShadow>();
}

CGColorRef CGColorRetain(CGColorRef color) {
    return cg::retain(color);
}
void CGColorRelease(CGColorRef color) {
    cg::release(color);
}

// ---- Accessors

CGFloat CGColorGetAlpha(CGColorRef color) {
    const CGColorRef native = cg::nativeColor(color);
    return native ? native->alpha() : 0;
}

CGColorSpaceRef CGColorGetColorSpace(CGColorRef color) {
    const CGColorRef native = cg::nativeColor(color);
    return native ? native->space.get() : nullptr;
}

CGPatternRef CGColorGetPattern(CGColorRef color) {
    const CGColorRef native = cg::nativeColor(color);
    return native ? native->pattern.get() : nullptr;
}

size_t CGColorGetNumberOfComponents(CGColorRef color) {
    const CGColorRef native = cg::nativeColor(color);
    return native ? native->count : 0;
}

const CGFloat* CGColorGetComponents(CGColorRef color) {
    const CGColorRef native = cg::nativeColor(color);
    return native ? native->components().data() : nullptr;
}

// ---- Comparison

namespace {

// Bit for bit: 0 and -0 differ, and a NaN equals itself. They are too few for the C library's
// comparison to pay.
bool hasComponents(CGColor& color, const CGFloat* components) {
    return std::ranges::all_of(color.components(), [&components](CGFloat component) {
        return std::bit_cast<std::uint32_t>(component) ==
               std::bit_cast<std::uint32_t>(*components++);
    });
}

bool samePattern(CGPatternRef a, CGPatternRef b) {
    return a == b || XGPatternEqualToPattern(a, b);
}

} // namespace

bool cg::isColorOf(CGColor& color, CGColorSpaceRef space, const CGFloat* components) {
    return color.space.get() == space && !color.pattern && hasComponents(color, components);
}

bool CGColorEqualToColor(CGColorRef a, CGColorRef b) {
    const CGColorRef left = cg::nativeColor(a);
    const CGColorRef right = cg::nativeColor(b);
    if (left == right)
        return true;
    return left && right && left->count == right->count &&
           hasComponents(*left, right->components().data()) &&
           samePattern(left->pattern.get(), right->pattern.get()) &&
           (left->space == right->space ||
            XGColorSpaceEqualToColorSpace(left->space.get(), right->space.get()));
}

bool XGColorEqualToColorComponents(CGColorRef color, CGColorSpaceRef space,
                                   const CGFloat* components, CGPatternRef pattern) {
    const CGColorRef native = cg::nativeColor(color);
    if (!native || !space || !components)
        return false;
    return XGColorSpaceEqualToColorSpace(native->space.get(), space) &&
           hasComponents(*native, components) &&
           (!pattern || XGPatternEqualToPattern(native->pattern.get(), pattern));
}

bool _CGColorIsOpaque(CGColorRef color) {
    constexpr double kAlmostOpaque = 0.999;
    if (const CGPatternRef pattern = CGColorGetPattern(color))
        return XGPatternIsOpaque(pattern);
    return static_cast<double>(CGColorGetAlpha(color)) > kAlmostOpaque;
}
