// Thumbnail.cpp: small copies of images.

#include "Thumbnail.h"

#include "XGImage.h"
#include "XGImagePixels.h"
#include <CoreGraphics/CGDataProvider.h>

#include "Core/Object/CheckedSize.h"
#include "ImageHeader.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>

namespace imageio {
namespace {

constexpr std::size_t kComponents = 4;

struct Size {
    std::size_t width = 0, height = 0;
};

Size fittingSize(Size from, std::size_t most) {
    const std::size_t longer = std::max(from.width, from.height);
    if (most >= longer)
        return from;
    const double scale = double(most) / double(longer);
    const auto scaled = [scale](std::size_t length) {
        return std::max<std::size_t>(1,
                                     static_cast<std::size_t>(std::lround(double(length) * scale)));
    };
    return {scaled(from.width), scaled(from.height)};
}

// The source lines under a line of the copy, the first and the last of them in part.
struct Cover {
    std::size_t first, end;
    double start, stop;

    static Cover of(std::size_t line, std::size_t lines, std::size_t sourceLines) {
        const double scale = double(sourceLines) / double(lines);
        const double start = double(line) * scale;
        const double stop = std::min(double(line + 1) * scale, double(sourceLines));
        const auto end = static_cast<std::size_t>(std::ceil(stop));
        return {static_cast<std::size_t>(start), std::min(end, sourceLines), start, stop};
    }
    float weight(std::size_t line) const {
        return static_cast<float>(std::min(stop, double(line + 1)) - std::max(start, double(line)));
    }
};

// Scales an image down, a row of it at a time, in premultiplied components.
class Scaler {
public:
    Scaler(CGImageRef image, CGColorSpaceRef space, Size to)
        : image_(image), request_{space, 8, true, true}, from_{CGImageGetWidth(image),
                                                               CGImageGetHeight(image)},
          to_(to), row_(new (std::nothrow) std::uint8_t[from_.width * kComponents]),
          narrow_(new (std::nothrow) float[to.width * kComponents]),
          sums_(new (std::nothrow) float[to.width * kComponents]) {}

    bool isReady() const { return row_ && narrow_ && sums_; }

    // Row `y` of the copy; false when the image's rows cannot be read.
    bool makeRow(std::size_t y, std::uint8_t* out) {
        const Cover cover = Cover::of(y, to_.height, from_.height);
        std::fill_n(sums_.get(), to_.width * kComponents, 0.0f);
        for (std::size_t line = cover.first; line < cover.end; ++line) {
            if (!readNarrow(line))
                return false;
            const float weight = cover.weight(line);
            for (std::size_t i = 0; i < to_.width * kComponents; ++i)
                sums_[i] += narrow_[i] * weight;
        }
        const auto whole = static_cast<float>(cover.stop - cover.start);
        for (std::size_t i = 0; i < to_.width * kComponents; ++i)
            out[i] = static_cast<std::uint8_t>(std::clamp(sums_[i] / whole + 0.5f, 0.0f, 255.0f));
        return true;
    }

private:
    // A line of the image at the copy's width. A line on the border of two rows is read once.
    bool readNarrow(std::size_t line) {
        if (line == lastLine_)
            return true;
        if (!XGImageReadPixels(image_, &request_, line, 1, row_.get(), from_.width * kComponents))
            return false;
        lastLine_ = line;
        for (std::size_t x = 0; x < to_.width; ++x)
            averageColumns(x);
        return true;
    }

    void averageColumns(std::size_t x) {
        const Cover cover = Cover::of(x, to_.width, from_.width);
        float sums[kComponents] = {};
        for (std::size_t column = cover.first; column < cover.end; ++column) {
            const float weight = cover.weight(column);
            for (std::size_t c = 0; c < kComponents; ++c)
                sums[c] += row_[column * kComponents + c] * weight;
        }
        for (std::size_t c = 0; c < kComponents; ++c)
            narrow_[x * kComponents + c] = sums[c] / static_cast<float>(cover.stop - cover.start);
    }

    const CGImageRef image_;
    const XGPixelRequest request_;
    const Size from_, to_;
    std::size_t lastLine_ = static_cast<std::size_t>(-1);
    const std::unique_ptr<std::uint8_t[]> row_;
    const std::unique_ptr<float[]> narrow_, sums_;
};

// Orientations from 5 on lie on their side.
bool isTurned(std::uint32_t orientation) {
    return orientation >= 5;
}

// Where the pixel (x, y) of a picture of that size as stored belongs when it is upright.
std::size_t uprightIndex(std::uint32_t orientation, Size size, std::size_t x, std::size_t y) {
    const bool fromRight =
        orientation == 2 || orientation == 3 || orientation == 7 || orientation == 8;
    const bool fromBelow =
        orientation == 3 || orientation == 4 || orientation == 6 || orientation == 7;
    const std::size_t column = fromRight ? size.width - 1 - x : x;
    const std::size_t row = fromBelow ? size.height - 1 - y : y;
    return isTurned(orientation) ? column * size.height + row : row * size.width + column;
}

void freePixels(void* pixels, const void*, std::size_t) {
    std::free(pixels);
}

cf::Ref<CGImageRef> imageOver(std::uint8_t* pixels, Size size, CGColorSpaceRef space,
                              bool isOpaque) {
    const std::size_t bytesPerRow = size.width * kComponents;
    const auto provider = cf::adopt(
        CGDataProviderCreateWithData(pixels, pixels, bytesPerRow * size.height, freePixels));
    if (!provider) {
        std::free(pixels);
        return nullptr;
    }
    const CGBitmapInfo alpha =
        isOpaque ? kCGImageAlphaNoneSkipLast : kCGImageAlphaPremultipliedLast;
    return cf::adopt(CGImageCreate(size.width, size.height, 8, 8 * kComponents, bytesPerRow, space,
                                   alpha, provider.get(), nullptr, true,
                                   kCGRenderingIntentDefault));
}

bool scaleInto(std::uint8_t* pixels, Scaler& scaler, Size size, std::uint32_t orientation) {
    const std::unique_ptr<std::uint8_t[]> row(new (std::nothrow)
                                                  std::uint8_t[size.width * kComponents]);
    if (!row || !scaler.isReady())
        return false;
    for (std::size_t y = 0; y < size.height; ++y) {
        if (!scaler.makeRow(y, row.get()))
            return false;
        for (std::size_t x = 0; x < size.width; ++x)
            std::copy_n(&row[x * kComponents], kComponents,
                        pixels + uprightIndex(orientation, size, x, y) * kComponents);
    }
    return true;
}

} // namespace

cf::Ref<CGImageRef> makeThumbnail(CGImageRef image, std::size_t mostPixels,
                                  std::uint32_t orientation) {
    const Size size = fittingSize({CGImageGetWidth(image), CGImageGetHeight(image)}, mostPixels);
    const CGColorSpaceRef own = CGImageGetColorSpace(image);
    const auto space =
        CGColorSpaceGetModel(own) == kCGColorSpaceModelRGB ? cf::retain(own) : deviceSpace(3);
    Scaler scaler(image, space.get(), size);
    auto* const pixels =
        static_cast<std::uint8_t*>(std::calloc(size.height, size.width * kComponents));
    if (!pixels || !scaleInto(pixels, scaler, size, orientation)) {
        std::free(pixels);
        return nullptr;
    }
    const CGImageAlphaInfo alpha = CGImageGetAlphaInfo(image);
    const Size upright = isTurned(orientation) ? Size{size.height, size.width} : size;
    return imageOver(pixels, upright, space.get(), XGImageAlphaInfoIsOpaque(alpha));
}

} // namespace imageio
