// RowTransform.cpp: rows of pixels from one colour space to another, over Little CMS.

#include "Core/Color/RowTransform.h"

#include "Core/Color/CGColorSpaceRecord.h"
#include "Core/Color/DirectRows.h"
#include "Core/Color/EngineMemory.h"
#include "Core/Color/InkRows.h"
#include "Core/Color/NativeProfile.h"
#include "Core/Color/TransformCache.h"
#include "Core/Object/RuntimeObject.h"

#include <lcms2.h>

#include <algorithm>
#include <array>
#include <optional>

namespace cg {

namespace {

constexpr CFRuntimeClass kRowTransformClass = {
    .className = "CGRowTransform",
    .copy = copyByRetaining,
    .finalize = finalize<RowTransform>,
};

std::optional<cmsUInt32Number> nativeModel(CGColorSpaceModel model) {
    switch (model) {
    case kCGColorSpaceModelMonochrome:
        return PT_GRAY;
    case kCGColorSpaceModelRGB:
        return PT_RGB;
    case kCGColorSpaceModelCMYK:
        return PT_CMYK;
    case kCGColorSpaceModelLab:
        return PT_Lab;
    default:
        return std::nullopt;
    }
}

// Profiles of three inks belong to spaces of four.
bool hasThreeInks(void* profile) {
    return cmsGetColorSpace(profile) == cmsSigCmyData;
}

cmsUInt32Number nativeFormat(CGColorSpaceRef space, void* profile, RowFormat format) {
    const bool isFloat = format.type == ComponentType::Float;
    const bool threeInks = hasThreeInks(profile);
    const auto channels = static_cast<cmsUInt32Number>(space->componentCount) - threeInks;
    return FLOAT_SH(isFloat ? 1u : 0u) |
           COLORSPACE_SH(threeInks ? PT_CMY : *nativeModel(space->model)) |
           EXTRA_SH(format.hasAlpha ? 1u : 0u) | CHANNELS_SH(channels) |
           BYTES_SH(static_cast<cmsUInt32Number>(byteSize(format.type)));
}

cmsUInt32Number nativeIntent(CGColorRenderingIntent intent) {
    switch (intent) {
    case kCGRenderingIntentAbsoluteColorimetric:
        return INTENT_ABSOLUTE_COLORIMETRIC;
    case kCGRenderingIntentRelativeColorimetric:
        return INTENT_RELATIVE_COLORIMETRIC;
    case kCGRenderingIntentSaturation:
        return INTENT_SATURATION;
    default:
        return INTENT_PERCEPTUAL;
    }
}

bool goesDirectly(CGColorSpaceRef from, CGColorSpaceRef to) {
    if (isDeviceLike(from) && isDeviceLike(to))
        return true;
    // The types of Lab differ in more than their scale.
    return from->model != kCGColorSpaceModelLab && !needsConversion(from, to);
}

void* createNative(CGColorSpaceRef from, RowFormat fromFormat, CGColorSpaceRef to,
                   RowFormat toFormat, cmsUInt32Number intent) {
    void* const source = nativeProfileOf(from);
    void* const destination = nativeProfileOf(to);
    if (!source || !destination)
        return nullptr;
    const bool copiesAlpha = fromFormat.hasAlpha && toFormat.hasAlpha;
    const cmsUInt32Number flags = cmsFLAGS_NOCACHE | (copiesAlpha ? cmsFLAGS_COPY_ALPHA : 0u);
    return createEngineTransform(source, nativeFormat(from, source, fromFormat), destination,
                                 nativeFormat(to, destination, toFormat), intent, flags)
        .native;
}

} // namespace

class RowTransformMaker {
public:
    static RowTransformRef make(CGColorSpaceRef from, RowFormat fromFormat, CGColorSpaceRef to,
                                RowFormat toFormat, cmsUInt32Number intent) {
        auto* const transform = create<RowTransform>(kRowTransformClass);
        RowTransformRef result = cf::adopt<const RowTransform*>(transform);
        if (!transform)
            return nullptr;
        transform->from_ = side(from, fromFormat);
        transform->to_ = side(to, toFormat);
        if (goesDirectly(from, to))
            return result;
        transform->native_ = createNative(from, fromFormat, to, toFormat, intent);
        if (!transform->native_)
            return nullptr;
        transform->from_.isThreeInks = hasThreeInks(nativeProfileOf(from));
        transform->to_.isThreeInks = hasThreeInks(nativeProfileOf(to));
        return result;
    }

private:
    static RowTransform::Side side(CGColorSpaceRef space, RowFormat format) {
        return {format, space->componentCount,
                space->model == kCGColorSpaceModelCMYK && format.type == ComponentType::Float};
    }
};

RowTransform::~RowTransform() {
    if (native_)
        cmsDeleteTransform(native_);
}

RowTransformRef RowTransform::between(CGColorSpaceRef from, RowFormat fromFormat,
                                      CGColorSpaceRef to, RowFormat toFormat,
                                      CGColorRenderingIntent intent) {
    if (!from || !to || !nativeModel(from->model) || !nativeModel(to->model))
        return nullptr;
    const cmsUInt32Number native = nativeIntent(intent);
    const TransformKey key = {from->serial, to->serial, fromFormat, toFormat,
                              static_cast<std::uint8_t>(native)};
    if (RowTransformRef known = findTransform(key))
        return known;
    RowTransformRef made = RowTransformMaker::make(from, fromFormat, to, toFormat, native);
    return made ? rememberTransform(key, std::move(made)) : nullptr;
}

// ---- Applying

std::size_t RowTransform::Side::bytesPerPixel() const {
    return (colorCount + format.hasAlpha) * byteSize(format.type);
}

namespace {

template <typename T>
void scaleColors(T* row, std::size_t step, std::size_t colorCount, std::size_t pixelCount,
                 float factor) {
    for (; pixelCount > 0; --pixelCount, row += step) {
        for (std::size_t index = 0; index < colorCount; ++index)
            row[index] *= factor;
    }
}

template <typename T>
void fillAlphaOf(std::byte* out, std::size_t colorCount, std::size_t pixelCount, T opaque) {
    T* pixel = reinterpret_cast<T*>(out) + colorCount;
    for (; pixelCount > 0; --pixelCount, pixel += colorCount + 1)
        *pixel = opaque;
}

void fillAlpha(std::byte* out, ComponentType type, std::size_t colorCount, std::size_t pixelCount) {
    switch (type) {
    case ComponentType::Unsigned8:
        return fillAlphaOf<std::uint8_t>(out, colorCount, pixelCount, 0xFF);
    case ComponentType::Unsigned16:
        return fillAlphaOf<std::uint16_t>(out, colorCount, pixelCount, 0xFFFF);
    case ComponentType::Float:
        return fillAlphaOf<float>(out, colorCount, pixelCount, 1);
    }
}

} // namespace

void RowTransform::applyNative(const void* in, void* out, std::size_t pixelCount) const {
    cmsDoTransform(native_, in, out, static_cast<cmsUInt32Number>(pixelCount));
    const std::size_t colors = to_.nativeColorCount();
    if (to_.isInPercent)
        scaleColors(static_cast<float*>(out), colors + to_.format.hasAlpha, colors, pixelCount,
                    0.01f);
    if (to_.format.hasAlpha && !from_.format.hasAlpha)
        fillAlpha(static_cast<std::byte*>(out), to_.format.type, colors, pixelCount);
}

// The pixels as the engine counts them: in `scratch`, or where they are.
const void* RowTransform::prepared(const std::byte* in, std::byte* scratch,
                                   std::size_t pixelCount) const {
    if (from_.isThreeInks)
        foldBlack(from_.format, in, scratch, pixelCount);
    else if (from_.isInPercent)
        std::copy_n(in, pixelCount * from_.bytesPerPixel(), scratch);
    else
        return in;
    const std::size_t colors = from_.nativeColorCount();
    if (from_.isInPercent)
        scaleColors(reinterpret_cast<float*>(scratch), colors + from_.format.hasAlpha, colors,
                    pixelCount, 100);
    return scratch;
}

void RowTransform::applyInSteps(const std::byte* in, std::byte* out, std::size_t pixelCount) const {
    constexpr std::size_t kPixelsAtATime = 128;
    constexpr std::size_t kMostComponents = 5;
    struct alignas(float) Scratch {
        std::byte bytes[kPixelsAtATime * kMostComponents * sizeof(float)];
    };
    Scratch source, result;
    while (pixelCount > 0) {
        const std::size_t count = std::min(pixelCount, kPixelsAtATime);
        const void* const pixels = prepared(in, source.bytes, count);
        applyNative(pixels, to_.isThreeInks ? result.bytes : out, count);
        if (to_.isThreeInks)
            addNoBlack(to_.format, result.bytes, out, count);
        in += count * from_.bytesPerPixel();
        out += count * to_.bytesPerPixel();
        pixelCount -= count;
    }
}

void RowTransform::apply(const void* in, void* out, std::size_t pixelCount) const {
    if (!native_)
        return convertRowDirectly(in, {from_.format, from_.colorCount}, out,
                                  {to_.format, to_.colorCount}, pixelCount);
    const auto* source = static_cast<const std::byte*>(in);
    auto* destination = static_cast<std::byte*>(out);
    if (from_.isInPercent || from_.isThreeInks || to_.isThreeInks)
        return applyInSteps(source, destination, pixelCount);
    // Little CMS counts pixels in 32 bits.
    constexpr std::size_t kPixelsAtATime = std::size_t{1} << 24;
    while (pixelCount > 0) {
        const std::size_t count = std::min(pixelCount, kPixelsAtATime);
        applyNative(source, destination, count);
        source += count * from_.bytesPerPixel();
        destination += count * to_.bytesPerPixel();
        pixelCount -= count;
    }
}

void RowTransform::applyToColor(const float* in, float* out) const {
    if (!native_ || !from_.isInPercent || from_.isThreeInks || to_.isThreeInks)
        return apply(in, out, 1);
    const std::array percent = {100 * in[0], 100 * in[1], 100 * in[2], 100 * in[3]};
    applyNative(percent.data(), out, 1);
}

} // namespace cg
