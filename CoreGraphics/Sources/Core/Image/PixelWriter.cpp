// PixelWriter.cpp: the stages of drawn pixels on their way into a bitmap, span by span.

#include "PixelWriter.h"

#include "XGColorSpace.h"

#include "Core/Color/RowTransform.h"
#include "PaletteSearch.h"
#include "PixelArithmetic.h"
#include "PixelSamples.h"
#include "PixelStages.h"
#include "PixelSwizzle.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>

namespace cg {

namespace {

// As in PixelReader: what goes through all stages together.
constexpr std::size_t kSpan = 256;
constexpr std::size_t kInks = 4;

template <typename Component>
constexpr ComponentType kTypeOf = sizeof(Component) == 1 ? ComponentType::Unsigned8
                                                         : ComponentType::Unsigned16;

// The components are bytes of BGRA pixels or words of RGBA ones.
template <typename Component>
class TypedPixelWriter final : public PixelWriter {
public:
    explicit TypedPixelWriter(const PixelLayout& layout) : layout_(layout) {}

    bool prepare(CGColorSpaceRef space);
    void keepColor(const std::byte* drawn, const CGFloat* components) override;
    void write(const std::byte* drawn, std::size_t count, std::byte* pixels) override;

private:
    void writeSpan(const Component* drawn, std::size_t count, std::byte* pixels);
    void takeComponents(const Component* drawn, std::size_t count, Component* out) const;
    void convert(std::size_t count);
    void findIndices(const Component* colors, std::size_t count);
    void pack(const Component* components, std::size_t count, std::byte* pixels);

    PixelLayout layout_;
    RowTransformRef transform_;            // From RGB; empty where RGB is written.
    std::optional<PaletteSearch> palette_; // Of indexed pixels.
    std::optional<PixelSwizzle> swizzle_;  // In place of all stages.
    bool hasKeptColor_ = false;
    std::array<Component, 3> keptDrawn_ = {};
    std::array<Component, kInks> keptInks_ = {};
    Component components_[kSpan * 4];
    Component converted_[kSpan * PixelLayout::kMostFields];
    std::uint32_t samples_[kSpan * PixelLayout::kMostFields];
};

template <typename Component>
bool TypedPixelWriter<Component>::prepare(CGColorSpaceRef space) {
    const RowFormat format = {kTypeOf<Component>, layout_.hasAlpha()};
    const CGColorSpaceModel model = CGColorSpaceGetModel(space);
    switch (model) {
    case kCGColorSpaceModelRGB:
        if constexpr (sizeof(Component) == 1)
            swizzle_ = PixelSwizzle::ofDrawn(layout_);
        return true;
    case kCGColorSpaceModelIndexed:
        palette_ = PaletteSearch::of(space);
        return palette_.has_value();
    case kCGColorSpaceModelMonochrome:
        // Gray that was drawn as three equal components is itself again, whatever gray it is.
        space = XGColorSpaceGetDeviceGray();
        [[fallthrough]];
    case kCGColorSpaceModelCMYK:
        transform_ = RowTransform::between(XGColorSpaceGetDeviceRGB(), format, space, format,
                                           kCGRenderingIntentDefault);
        return static_cast<bool>(transform_);
    default:
        return false;
    }
}

template <typename Component>
void TypedPixelWriter<Component>::keepColor(const std::byte* drawn, const CGFloat* components) {
    if (!transform_ || layout_.colorCount() != kInks || layout_.hasAlpha())
        return;
    takeComponents(reinterpret_cast<const Component*>(drawn), 1, keptDrawn_.data());
    for (std::size_t i = 0; i < kInks; ++i)
        keptInks_[i] = widthChanged<Component>(components[i]);
    hasKeptColor_ = true;
}

template <typename Component>
void TypedPixelWriter<Component>::convert(std::size_t count) {
    if (layout_.colorCount() != kInks || layout_.hasAlpha())
        return transform_.get()->apply(components_, converted_, count);
    std::array<bool, kSpan> isKept;
    for (std::size_t x = 0; x < count; ++x)
        isKept[x] =
            hasKeptColor_ && std::equal(keptDrawn_.begin(), keptDrawn_.end(), &components_[3 * x]);
    convertRuns<kSpan>(*transform_.get(), components_, 3, converted_, kInks, count);
    for (std::size_t x = 0; x < count; ++x)
        if (isKept[x])
            std::copy(keptInks_.begin(), keptInks_.end(), &converted_[kInks * x]);
}

// Red, green and blue, and opacity where it is kept.
template <typename Component>
void TypedPixelWriter<Component>::takeComponents(const Component* drawn, std::size_t count,
                                                 Component* out) const {
    constexpr bool kStartsWithBlue = sizeof(Component) == 1;
    constexpr std::size_t kRed = kStartsWithBlue ? 2 : 0;
    for (std::size_t x = 0; x < count; ++x, drawn += 4) {
        *out++ = drawn[kRed];
        *out++ = drawn[1];
        *out++ = drawn[2 - kRed];
        if (layout_.hasAlpha())
            *out++ = drawn[3];
    }
}

template <typename Component>
void TypedPixelWriter<Component>::findIndices(const Component* colors, std::size_t count) {
    const auto byteOf = [](Component value) { return widthChanged<std::uint8_t>(value); };
    for (std::size_t x = 0; x < count; ++x, colors += 3)
        samples_[x] = palette_->nearest(byteOf(colors[0]), byteOf(colors[1]), byteOf(colors[2]));
}

template <typename Component>
void TypedPixelWriter<Component>::pack(const Component* components, std::size_t count,
                                       std::byte* pixels) {
    if (layout_.isMadeOfWhole(8 * sizeof(Component))) {
        if constexpr (sizeof(Component) == 1)
            return packBytes(layout_, components, count, pixels);
        else
            return packWords(layout_, components, count, pixels);
    }
    const std::size_t fields = layout_.fieldCount();
    std::array<std::uint32_t, PixelLayout::kMostFields> largest;
    for (std::size_t i = 0; i < fields; ++i)
        largest[i] = (1u << layout_.field(i).bits) - 1;
    for (std::size_t x = 0; x < count; ++x)
        for (std::size_t i = 0; i < fields; ++i)
            samples_[x * fields + i] =
                (components[x * fields + i] * largest[i] + kOne<Component> / 2) / kOne<Component>;
    packSamples(layout_, samples_, count, pixels);
}

template <typename Component>
void TypedPixelWriter<Component>::writeSpan(const Component* drawn, std::size_t count,
                                            std::byte* pixels) {
    takeComponents(drawn, count, components_);
    if (palette_) {
        findIndices(components_, count);
        packSamples(layout_, samples_, count, pixels);
    } else if (transform_) {
        convert(count);
        pack(converted_, count, pixels);
    } else {
        pack(components_, count, pixels);
    }
}

template <typename Component>
void TypedPixelWriter<Component>::write(const std::byte* drawn, std::size_t count,
                                        std::byte* pixels) {
    if (swizzle_)
        return swizzle_->apply(drawn, count, pixels);
    for (; count > 0; drawn += kSpan * 4 * sizeof(Component)) {
        const std::size_t span = std::min(kSpan, count);
        writeSpan(reinterpret_cast<const Component*>(drawn), span, pixels);
        pixels += span * (layout_.bitsPerPixel() / 8);
        count -= span;
    }
}

template <typename Component>
std::unique_ptr<PixelWriter> makeWriter(const PixelLayout& layout, CGColorSpaceRef space) {
    std::unique_ptr<TypedPixelWriter<Component>> writer(new (std::nothrow)
                                                            TypedPixelWriter<Component>(layout));
    if (!writer || !writer->prepare(space))
        return nullptr;
    return writer;
}

} // namespace

CGColorSpaceRef drawnSpace(CGColorSpaceRef bitmapSpace) {
    const CGColorSpaceModel model = CGColorSpaceGetModel(bitmapSpace);
    const bool isDrawnAsItIs =
        model == kCGColorSpaceModelRGB || model == kCGColorSpaceModelMonochrome;
    return isDrawnAsItIs ? bitmapSpace : XGColorSpaceGetDeviceRGB();
}

std::unique_ptr<PixelWriter> PixelWriter::of(const PixelLayout& layout, CGColorSpaceRef space,
                                             DrawnFormat drawn) {
    const std::size_t bits = layout.bitsPerPixel();
    if (bits == 0 || bits > 64 || bits % 8 != 0)
        return nullptr;
    for (std::size_t i = 0; i < layout.fieldCount(); ++i)
        if (layout.field(i).bits > 16)
            return nullptr;
    if (drawn == DrawnFormat::RGBA16)
        return makeWriter<std::uint16_t>(layout, space);
    return makeWriter<std::uint8_t>(layout, space);
}

} // namespace cg
