// PixelReader.cpp: the way of an image's pixels, span by span.

#include "PixelReader.h"

#include "XGColorSpace.h"

#include "Core/Color/CGColorSpaceRecord.h"
#include "Core/Image/CGImageRecord.h"
#include "Core/Object/Diagnostics.h"
#include "PixelDecode.h"
#include "PixelRows.h"
#include "PixelSamples.h"
#include "PixelStages.h"
#include "PixelSwizzle.h"

#include <algorithm>
#include <new>

namespace cg {

namespace {

// Pixels that go through all stages together, their scratch memory in the nearest cache. A multiple
// of eight, so that spans begin on whole bytes.
constexpr std::size_t kSpan = 256;
constexpr std::size_t kMostColors = 4;

bool isIndexed(CGImageRef image) {
    return CGColorSpaceGetModel(image->space.get()) == kCGColorSpaceModelIndexed;
}

// Everything about an image and what is wanted of it, in components of one type. The scratch
// memory is a member: readers live on the heap.
template <typename Component>
class TypedPixelReader final : public PixelReader {
public:
    TypedPixelReader(CGImageRef image, const PixelLayout& layout, const PixelTarget& target)
        : image_(image), layout_(layout), rows_(image, layout), decoder_(image, layout) {
        target_ = target;
    }

    // False, with the reason in the log, when the colours cannot become those wanted.
    bool prepare();
    bool readRows(std::size_t firstRow, std::size_t rowCount, std::byte* out,
                  std::size_t outBytesPerRow) override;
    bool readPixels(std::size_t row, std::size_t first, std::size_t count, std::byte* out) override;

private:
    bool prepareMask();
    void preparePalette(CGColorSpaceRef from);
    void findShortcut();
    bool readSpan(std::size_t row, std::size_t first, std::size_t count);
    void load(const std::byte* bytes, std::size_t count);
    void prepareTables();
    void decode(std::size_t count);
    void decodeByTables(std::size_t count);
    void lookUp(std::uint32_t sample, Component* color) const;
    void hideMaskedColors(std::size_t count);
    bool applyMask(Component* pixels, std::size_t row, std::size_t first, std::size_t count,
                   bool isPremultiplied);
    bool convertSpan(std::size_t row, std::size_t first, std::size_t count, std::byte* out);
    void store(const Component* pixels, std::size_t count, std::byte* out) const;

    CGImageRef image_;
    PixelLayout layout_;
    PixelRows rows_;
    SampleDecoder decoder_;
    RowTransformRef transform_;
    std::optional<PixelSwizzle> swizzle_; // In place of all stages.
    std::unique_ptr<TypedPixelReader> mask_;
    bool maskIsInverted_ = false;
    bool isIndexed_ = false;
    std::size_t lastIndex_ = 0;
    std::size_t loadedColors_ = 0; // Of pixels as decoded.
    std::size_t wantedColors_ = 0;
    bool hasAlpha_ = false; // Of pixels on their way.
    bool isPremultiplied_ = false;

    // What each sample of a narrow field is decoded to, where tables pay.
    static constexpr unsigned kWidestTable = 8;
    bool hasTables_ = false;
    std::array<std::array<Component, 1 << kWidestTable>, PixelLayout::kMostFields> tables_;

    std::array<Component, 256 * kMostColors> palette_; // In the colours wanted.
    std::array<Component, 256 * kMostColors> paletteBeforeConversion_;
    std::uint32_t samples_[kSpan * PixelLayout::kMostFields];
    Component pixels_[kSpan * PixelLayout::kMostFields];
    Component converted_[kSpan * PixelLayout::kMostFields];
};

// ---- What can be settled before the first pixel

template <typename Component>
bool TypedPixelReader<Component>::prepare() {
    const CGColorSpaceRef from = pixelSpace(image_);
    CGColorSpaceRef to = target_.space ? target_.space : from;
    // Storing in these orders spreads grays by itself.
    if (target_.order != ComponentOrder::OfSpace && isReplicated(from, to))
        to = from;
    loadedColors_ = CGColorSpaceGetNumberOfComponents(from);
    wantedColors_ = CGColorSpaceGetNumberOfComponents(to);
    const bool wantsAlpha = target_.alpha != AlphaUse::None;
    const bool isAlphaOnly = layout_.colorCount() == 0;
    hasAlpha_ = wantsAlpha ? canBeTransparent(image_) : layout_.hasAlpha() && !isAlphaOnly;
    isIndexed_ = !isAlphaOnly && isIndexed(image_);
    isPremultiplied_ = layout_.isPremultiplied() && !isIndexed_;
    componentsPerPixel_ =
        target_.order != ComponentOrder::OfSpace ? 4 : wantedColors_ + (wantsAlpha ? 1 : 0);

    if (needsConversion(from, to)) {
        const RowFormat format = {kComponentTypeOf<Component>, hasAlpha_ && !isIndexed_};
        transform_ = RowTransform::between(from, format, to, format, target_.intent);
    }
    if (!transform_ && loadedColors_ != wantedColors_) {
        CG_LOG_ERROR("There is no way from an image's colour space to the one wanted");
        return false;
    }
    if (!rows_.isCountable()) {
        CG_LOG_ERROR("An image of %zu rows of %zu bytes is too large to be read", image_->height,
                     image_->bytesPerRow);
        return false;
    }
    if (isIndexed_)
        preparePalette(from);
    prepareTables();
    findShortcut();
    return !(wantsAlpha && image_->mask) || prepareMask();
}

// Decoding divides: a table of all samples costs less, unless the image is smaller than it.
template <typename Component>
void TypedPixelReader<Component>::prepareTables() {
    const std::size_t fields = layout_.fieldCount();
    std::size_t samples = 0;
    for (std::size_t i = 0; i < fields; ++i) {
        if (layout_.field(i).bits > kWidestTable)
            return;
        samples += std::size_t{1} << layout_.field(i).bits;
    }
    hasTables_ = !isIndexed_ && layout_.colorCount() == loadedColors_ &&
                 layout_.hasAlpha() == hasAlpha_ && samples / image_->width < image_->height;
    for (std::size_t i = 0; hasTables_ && i < fields; ++i)
        for (std::uint32_t sample = 0; sample < 1u << layout_.field(i).bits; ++sample)
            tables_[i][sample] = decoder_.component<Component>(i, sample);
}

// Straight opacity that is wanted straight is the one thing that no shortcut gives.
template <typename Component>
void TypedPixelReader<Component>::findShortcut() {
    const bool isPlain = layout_.isMadeOfWhole(8 * sizeof(Component)) && decoder_.isPlain() &&
                         !isIndexed_ && !isMasked(image_) && !transform_;
    if (isPlain && target_.order == ComponentOrder::BGRX &&
        target_.type == ComponentType::Unsigned8 && target_.alpha != AlphaUse::Straight)
        swizzle_ = PixelSwizzle::of(layout_, target_.alpha == AlphaUse::Premultiplied);
}

// Colours of a table are converted once, not for each pixel.
template <typename Component>
void TypedPixelReader<Component>::preparePalette(CGColorSpaceRef from) {
    const auto& table = std::get<ColorTable>(image_->space.get()->calibration);
    const std::size_t values = table.count * loadedColors_;
    lastIndex_ = table.count - 1;
    auto& loaded = transform_ ? paletteBeforeConversion_ : palette_;
    for (std::size_t i = 0; i < values; ++i) {
        const DecodeRange range = defaultDecodeRange(from, i % loadedColors_, 255);
        loaded[i] = encodedComponent<Component>(
            range, range.minimum + (range.maximum - range.minimum) * table.bytes[i] / 255);
    }
    if (transform_)
        transform_.get()->apply(loaded.data(), palette_.data(), table.count);
    transform_ = nullptr;
    loadedColors_ = wantedColors_;
}

template <typename Component>
bool TypedPixelReader<Component>::prepareMask() {
    const CGImageRef mask = image_->mask.get();
    const auto layout = PixelLayout::of(*mask);
    const PixelTarget target = {.type = kComponentTypeOf<Component>};
    if (layout && CGColorSpaceGetNumberOfComponents(pixelSpace(mask)) == 1 &&
        mask->width == image_->width && mask->height == image_->height)
        mask_.reset(new (std::nothrow) TypedPixelReader(mask, *layout, target));
    // An image mask's samples say where paint does not go, a gray image's where it does.
    maskIsInverted_ = (mask->flags & kImageCreatedAsMask) != 0;
    if (mask_ && mask_->prepare())
        return true;
    if (HostLogIsEnabled(kHostLogError))
        logMessage(kHostLogError, "filterMask", "Failed to allocate image mask in mask filter!");
    return false;
}

// ---- A span of pixels

template <typename Component>
void TypedPixelReader<Component>::load(const std::byte* bytes, std::size_t count) {
    const std::size_t loadedFields = loadedColors_ + (hasAlpha_ ? 1 : 0);
    const bool isDirect = decoder_.isPlain() && !isIndexed_ &&
                          !(image_->flags & kImageHasMaskingColors) &&
                          loadedFields == layout_.fieldCount();
    if constexpr (std::is_same_v<Component, std::uint8_t>)
        if (isDirect && layout_.isMadeOfWhole(8))
            return unpackBytes(layout_, bytes, count, pixels_);
    if constexpr (std::is_same_v<Component, std::uint16_t>)
        if (isDirect && layout_.isMadeOfWhole(16))
            return unpackWords(layout_, bytes, count, pixels_);
    unpackSamples(layout_, bytes, count, samples_);
    if (hasTables_)
        decodeByTables(count);
    else
        decode(count);
    if (hasAlpha_ && (image_->flags & kImageHasMaskingColors))
        hideMaskedColors(count);
}

template <typename Component>
void TypedPixelReader<Component>::decode(std::size_t count) {
    const std::size_t colorFields = layout_.colorCount();
    const std::uint32_t* sample = samples_;
    Component* pixel = pixels_;
    for (std::size_t x = 0; x < count; ++x, sample += layout_.fieldCount()) {
        if (isIndexed_)
            lookUp(sample[0], pixel);
        else if (colorFields > 0)
            for (std::size_t i = 0; i < colorFields; ++i)
                pixel[i] = decoder_.component<Component>(i, sample[i]);
        else
            pixel[0] = hasAlpha_ ? Component{0} : decoder_.component<Component>(0, sample[0]);
        pixel += loadedColors_;
        if (hasAlpha_)
            *pixel++ = layout_.hasAlpha()
                           ? decoder_.component<Component>(colorFields, sample[colorFields])
                           : kOne<Component>;
    }
}

template <typename Component>
void TypedPixelReader<Component>::decodeByTables(std::size_t count) {
    const std::size_t fields = layout_.fieldCount();
    const std::uint32_t* sample = samples_;
    Component* component = pixels_;
    for (std::size_t x = 0; x < count; ++x)
        for (std::size_t i = 0; i < fields; ++i)
            *component++ = tables_[i][*sample++];
}

template <typename Component>
void TypedPixelReader<Component>::lookUp(std::uint32_t sample, Component* color) const {
    const auto index = std::min(saturate<std::size_t>(decoder_.value(0, sample) + 0.5), lastIndex_);
    std::copy_n(&palette_[index * loadedColors_], loadedColors_, color);
}

// Samples inside all ranges are transparent. Ranges speak of samples before any decoding.
template <typename Component>
void TypedPixelReader<Component>::hideMaskedColors(std::size_t count) {
    const auto& ranges = image_->maskingColors;
    const std::uint32_t* sample = samples_;
    Component* pixel = pixels_;
    for (std::size_t x = 0; x < count; ++x) {
        bool isInside = true;
        for (std::size_t i = 0; i < layout_.colorCount(); ++i) {
            const double value = decoder_.raw(sample[i]);
            isInside = isInside && value >= static_cast<double>(ranges[2 * i]) &&
                       value <= static_cast<double>(ranges[2 * i + 1]);
        }
        if (isInside)
            std::fill_n(pixel + (isPremultiplied_ ? 0 : loadedColors_),
                        isPremultiplied_ ? loadedColors_ + 1 : 1, Component{0});
        sample += layout_.fieldCount();
        pixel += loadedColors_ + 1;
    }
}

template <typename Component>
bool TypedPixelReader<Component>::readSpan(std::size_t row, std::size_t first, std::size_t count) {
    const std::size_t firstBit = first * layout_.bitsPerPixel();
    const std::byte* const bytes =
        rows_.bytes(row, firstBit / 8, (count * layout_.bitsPerPixel() + 7) / 8);
    if (bytes)
        load(bytes, count);
    return bytes;
}

template <typename Component>
bool TypedPixelReader<Component>::applyMask(Component* pixels, std::size_t row, std::size_t first,
                                            std::size_t count, bool isPremultiplied) {
    if (!mask_)
        return true;
    if (!mask_->readSpan(row, first, count)) {
        if (HostLogIsEnabled(kHostLogError))
            logMessage(kHostLogError, "filterMask",
                       "Failed to copy image mask to the final image!");
        return false;
    }
    Component* const coverage = mask_->pixels_;
    // A mask's own opacity, if it has one, is no part of it.
    const std::size_t step = mask_->hasAlpha_ ? 2 : 1;
    for (std::size_t x = 0; x < count; ++x)
        coverage[x] = maskIsInverted_ ? static_cast<Component>(kOne<Component> - coverage[x * step])
                                      : coverage[x * step];
    applyCoverage(pixels, count, wantedColors_, isPremultiplied, coverage);
    return true;
}

template <typename Component>
bool TypedPixelReader<Component>::convertSpan(std::size_t row, std::size_t first, std::size_t count,
                                              std::byte* out) {
    if (!readSpan(row, first, count))
        return false;
    const bool wantsPremultiplied = target_.alpha == AlphaUse::Premultiplied;
    bool isPremultiplied = hasAlpha_ && isPremultiplied_;
    if (isPremultiplied && (transform_ || !wantsPremultiplied)) {
        divideByAlpha(pixels_, count, loadedColors_);
        isPremultiplied = false;
    }
    Component* pixels = pixels_;
    if (transform_) {
        const std::size_t alpha = hasAlpha_ ? 1 : 0;
        if (loadedColors_ == kMostColors)
            convertRuns<kSpan>(*transform_.get(), pixels_, loadedColors_ + alpha, converted_,
                               wantedColors_ + alpha, count);
        else
            transform_.get()->apply(pixels_, converted_, count);
        pixels = converted_;
    }
    if (!applyMask(pixels, row, first, count, isPremultiplied))
        return false;
    if (hasAlpha_ && wantsPremultiplied && !isPremultiplied)
        multiplyByAlpha(pixels, count, wantedColors_);
    store(pixels, count, out);
    return true;
}

template <typename Component>
void TypedPixelReader<Component>::store(const Component* pixels, std::size_t count,
                                        std::byte* out) const {
    const PixelStore store = {.colors = wantedColors_,
                              .hasAlpha = hasAlpha_,
                              .keepsAlpha = target_.alpha != AlphaUse::None,
                              .isSpread = target_.order != ComponentOrder::OfSpace,
                              .startsWithBlue = target_.order == ComponentOrder::BGRX};
    switch (target_.type) {
    case ComponentType::Unsigned8:
        return storePixels(pixels, count, store, reinterpret_cast<std::uint8_t*>(out));
    case ComponentType::Unsigned16:
        return storePixels(pixels, count, store, reinterpret_cast<std::uint16_t*>(out));
    case ComponentType::Float:
        return storePixels(pixels, count, store, reinterpret_cast<float*>(out));
    }
}

template <typename Component>
bool TypedPixelReader<Component>::readPixels(std::size_t row, std::size_t first, std::size_t count,
                                             std::byte* out) {
    if (swizzle_) {
        const std::size_t pixelBytes = layout_.bitsPerPixel() / 8;
        const std::byte* const pixels = rows_.bytes(row, first * pixelBytes, count * pixelBytes);
        if (pixels)
            swizzle_->apply(pixels, count, out);
        return pixels;
    }
    for (; count > 0; first += kSpan, out += kSpan * bytesPerPixel()) {
        const std::size_t span = std::min(kSpan, count);
        if (!convertSpan(row, first, span, out))
            return false;
        count -= span;
    }
    return true;
}

template <typename Component>
bool TypedPixelReader<Component>::readRows(std::size_t firstRow, std::size_t rowCount,
                                           std::byte* out, std::size_t outBytesPerRow) {
    for (std::size_t row = firstRow; row < firstRow + rowCount; ++row, out += outBytesPerRow)
        if (!readPixels(row, 0, image_->width, out))
            return false;
    return true;
}

template <typename Component>
std::unique_ptr<PixelReader> makeReader(CGImageRef image, const PixelLayout& layout,
                                        const PixelTarget& target) {
    std::unique_ptr<TypedPixelReader<Component>> reader(
        new (std::nothrow) TypedPixelReader<Component>(image, layout, target));
    if (!reader || !reader->prepare())
        return nullptr;
    return reader;
}

// Whether components of the type hold the image's samples well enough: no bits are lost and, where
// colours are to be divided by their opacity, which would magnify it, nothing is rounded.
template <typename Component>
bool holdsSamples(const PixelLayout& layout) {
    bool holds = !layout.isFloat();
    for (std::size_t i = 0; i < layout.fieldCount(); ++i) {
        const std::uint64_t largest = (std::uint64_t{1} << layout.field(i).bits) - 1;
        holds = holds && largest <= kOne<Component> &&
                (!layout.isPremultiplied() || kOne<Component> % largest == 0);
    }
    return holds;
}

} // namespace

CGColorSpaceRef pixelSpace(CGImageRef image) {
    const CGBitmapInfo info = image->bitmapInfo.load(std::memory_order_relaxed);
    const CGColorSpaceRef space = image->space.get();
    if (!space || (info & kCGBitmapAlphaInfoMask) == kCGImageAlphaOnly)
        return XGColorSpaceGetDeviceGray();
    switch (CGColorSpaceGetModel(space)) {
    case kCGColorSpaceModelPattern:
        return nullptr;
    case kCGColorSpaceModelIndexed:
        return CGColorSpaceGetBaseColorSpace(space);
    default:
        return space;
    }
}

bool isMasked(CGImageRef image) {
    return image->mask || (image->flags & kImageHasMaskingColors);
}

bool isReplicated(CGColorSpaceRef gray, CGColorSpaceRef destination) {
    return gray == XGColorSpaceGetDeviceGray() &&
           (destination == XGColorSpaceGetDeviceRGB() || XGColorSpaceIsSRGB(destination));
}

bool canBeTransparent(CGImageRef image) {
    return isMasked(image) || !XGImageAlphaInfoIsOpaque(CGImageGetAlphaInfo(image));
}

std::size_t PixelReader::bytesPerPixel() const {
    return componentsPerPixel_ * byteSize(target_.type);
}

std::unique_ptr<PixelReader> PixelReader::of(CGImageRef image, const PixelTarget& target) {
    const auto layout = PixelLayout::of(*image);
    if (!layout || !pixelSpace(image)) {
        CG_LOG_ERROR("Unknown color type: bitmapInfo: 0x%0X, bitsPerPixel: %zd, "
                     "bitsPerComponent: %zd",
                     CGImageGetBitmapInfo(image), image->bitsPerPixel, image->bitsPerComponent);
        return nullptr;
    }
    // Lab is in other units in floats, and seldom fills what eight bits encode. Little CMS goes
    // from integers of it through a table that is too coarse for dark colours.
    const bool isLab = CGColorSpaceGetModel(pixelSpace(image)) == kCGColorSpaceModelLab;
    const bool leavesLab =
        isLab && target.space && CGColorSpaceGetModel(target.space) != kCGColorSpaceModelLab;
    if (target.type == ComponentType::Float || leavesLab)
        return makeReader<float>(image, *layout, target);
    if (!isLab && target.type == ComponentType::Unsigned8 && holdsSamples<std::uint8_t>(*layout))
        return makeReader<std::uint8_t>(image, *layout, target);
    if (!isLab && layout->isPremultiplied() && !holdsSamples<std::uint16_t>(*layout))
        return makeReader<float>(image, *layout, target);
    return makeReader<std::uint16_t>(image, *layout, target);
}

} // namespace cg
