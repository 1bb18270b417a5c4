// JpegRows.cpp: flattening and inverting rows for JPEG files.

#include "JpegRows.h"

#include "XGColor.h"

#include "Core/Object/Diagnostics.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace imageio {
namespace {

// The colour in the space of the file's pixels; white without one.
std::array<std::uint8_t, 4> backgroundOf(const ImageToWrite& image, const WrittenLayout& layout,
                                         CGColorSpaceModel model) {
    std::array<std::uint8_t, 4> result = {};
    result.fill(model == kCGColorSpaceModelCMYK ? 0 : 255);
    if (!image.background)
        return result;
    CGColorSpaceRef space = layout.space ? layout.space : CGImageGetColorSpace(image.image);
    if (CGColorSpaceGetModel(space) == kCGColorSpaceModelIndexed)
        space = CGColorSpaceGetBaseColorSpace(space);
    const auto color = cf::adopt(
        XGColorCreateWithColor(space, image.background, CGImageGetRenderingIntent(image.image)));
    const CGFloat* components = CGColorGetComponents(color.get());
    if (!components || CGColorGetNumberOfComponents(color.get()) <= layout.colorCount) {
        CG_LOG_WARNING("the background has no colour in the image's space: white instead");
        return result;
    }
    for (std::size_t i = 0; i < layout.colorCount; ++i)
        result[i] = static_cast<std::uint8_t>(
            std::lround(std::clamp(components[i], CGFloat{0}, CGFloat{1}) * 255));
    return result;
}

WrittenLayout layoutOf(const ImageToWrite& image, const FileColors& colors) {
    return {
        .space = colors.space,
        .colorCount = colors.componentCount(),
        .hasAlpha = hasOpacity(image.image),
        .isPremultiplied = true,
    };
}

} // namespace

JpegRows::JpegRows(const ImageToWrite& image, const FileColors& colors)
    : JpegRows(image, layoutOf(image, colors), colors.model) {}

JpegRows::JpegRows(const ImageToWrite& image, const WrittenLayout& layout, CGColorSpaceModel model)
    : layout_(layout), isInverted_(model == kCGColorSpaceModelCMYK),
      width_(CGImageGetWidth(image.image)), rows_(image.image, layout) {
    if (layout.hasAlpha)
        background_ = backgroundOf(image, layout, model);
    if (layout.hasAlpha || isInverted_)
        finished_.reset(new (std::nothrow) std::uint8_t[width_ * layout.colorCount]);
}

void JpegRows::flatten(const std::uint8_t* from) {
    std::uint8_t* to = finished_.get();
    for (std::size_t x = 0; x < width_; ++x, from += layout_.colorCount + 1) {
        const unsigned through = 255u - from[layout_.colorCount];
        for (std::size_t i = 0; i < layout_.colorCount; ++i)
            *to++ = static_cast<std::uint8_t>(
                std::min(255u, from[i] + (background_[i] * through + 127) / 255));
    }
}

void JpegRows::invert(const std::uint8_t* from) {
    const std::size_t count = width_ * layout_.colorCount;
    std::transform(from, from + count, finished_.get(),
                   [](std::uint8_t ink) { return static_cast<std::uint8_t>(255 - ink); });
}

const std::uint8_t* JpegRows::row(std::size_t y) {
    const std::uint8_t* from = rows_.row(y);
    if (!from || !(layout_.hasAlpha || isInverted_))
        return from;
    if (!finished_) {
        CG_LOG_ERROR("no memory for a row of %zu pixels", width_);
        return nullptr;
    }
    if (layout_.hasAlpha)
        flatten(from);
    if (isInverted_)
        invert(layout_.hasAlpha ? finished_.get() : from);
    return finished_.get();
}

} // namespace imageio
