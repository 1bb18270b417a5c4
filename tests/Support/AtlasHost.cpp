// AtlasHost.cpp: packing, uploading and playing glyphs with plain code.

#include "Support/AtlasHost.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace test {

namespace {

// One pixel is free between glyphs, as filters of textures want it.
constexpr uint32_t kGap = 1;

uint8_t rounded(float value) {
    return static_cast<uint8_t>(std::clamp(value, 0.f, 255.f) + 0.5f);
}

} // namespace

struct AtlasHost::Target {
    std::vector<uint8_t>& pixels;
    int32_t width, height;

    // Source over, the source's components being premultiplied, in 0 to 255.
    void blend(int32_t x, int32_t y, const float* source) {
        if (x < 0 || y < 0 || x >= width || y >= height)
            return;
        uint8_t* const pixel = &pixels[(size_t(y) * size_t(width) + size_t(x)) * 4];
        for (int i = 0; i < 4; ++i)
            pixel[i] = rounded(source[i] + static_cast<float>(pixel[i]) * (1 - source[3] / 255));
    }

    // Of whole pixels.
    void fill(CGRect rect, const CGFloat* color) {
        const float alpha = color[3] * 255;
        const float source[] = {color[2] * alpha, color[1] * alpha, color[0] * alpha, alpha};
        const auto left = static_cast<int32_t>(rect.origin.x);
        const auto bottom = height - static_cast<int32_t>(rect.origin.y);
        for (int32_t y = 1; y <= static_cast<int32_t>(rect.size.height); ++y)
            for (int32_t x = 0; x < static_cast<int32_t>(rect.size.width); ++x)
                blend(left + x, bottom - y, source);
    }
};

AtlasHost::AtlasHost(uint32_t size) : size_(size), texture_(size_t{size} * size * 4) {
    glyphs_ = {.version = 0,
               .info = this,
               .addSprite =
                   [](void* host, const FMGlyph* glyph) {
                       return static_cast<AtlasHost*>(host)->add(*glyph);
                   },
               .removeSprite = [](void* host,
                                  void* sprite) { static_cast<AtlasHost*>(host)->remove(sprite); }};
    queues_ = {.version = 0,
               .retainGlyph = [](void* glyph) { FMGlyphRetain(static_cast<FMGlyphRef>(glyph)); },
               .releaseGlyph = [](void* glyph) { FMGlyphRelease(static_cast<FMGlyphRef>(glyph)); }};
    FMFontSetTextureAtlasCallbacks(&glyphs_);
    XGCommandQueueSetTextureAtlasCallbacks(&queues_);
}

AtlasHost::~AtlasHost() {
    FMFontSetTextureAtlasCallbacks(nullptr);
    XGCommandQueueSetTextureAtlasCallbacks(nullptr);
}

// ---- Packing

bool AtlasHost::place(Sprite& sprite) {
    const uint32_t width = sprite.width + kGap, height = sprite.height + kGap;
    for (Shelf& shelf : shelves_)
        if (height <= shelf.height && shelf.height <= height * 5 / 4 &&
            shelf.used + width <= size_) {
            sprite.x = shelf.used;
            sprite.y = shelf.y;
            shelf.used += width;
            return true;
        }
    const uint32_t y = shelves_.empty() ? 0 : shelves_.back().y + shelves_.back().height;
    if (width > size_ || height > size_ - y)
        return false;
    shelves_.push_back({y, height, width});
    sprite.x = 0;
    sprite.y = y;
    return true;
}

void AtlasHost::upload(const Sprite& sprite, const FMGlyph& glyph) {
    for (uint32_t row = 0; row < sprite.height; ++row) {
        const uint8_t* const source = glyph.pixels + size_t{row} * glyph.bytesPerRow;
        uint8_t* const texels = &texture_[(size_t{sprite.y + row} * size_ + sprite.x) * 4];
        if (sprite.isColor)
            std::memcpy(texels, source, size_t{sprite.width} * 4);
        else
            for (uint32_t x = 0; x < sprite.width; ++x)
                std::memset(texels + size_t{x} * 4, source[x], 4);
    }
}

void* AtlasHost::add(const FMGlyph& glyph) {
    if (glyph.format == kFMGlyphFormatSubpixelMask)
        return nullptr;
    Sprite sprite = {0, 0, glyph.width, glyph.height, glyph.format == kFMGlyphFormatColor};
    if (!place(sprite))
        return nullptr;
    upload(sprite, glyph);
    ++uploads_;
    return &sprites_.emplace_back(sprite);
}

// Its texels are not used again before all are free: shelves only grow.
void AtlasHost::remove(void* sprite) {
    sprites_.remove_if([sprite](const Sprite& each) { return &each == sprite; });
    if (sprites_.empty())
        shelves_.clear();
}

// ---- Playing

namespace {

double linear(double value) {
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

// What a shader would look up: how coverage shows in text of a colour. It is mixed in linear light
// with a background as light as the text is dark, and dark text is half as strong again in the
// middle; lightness has eight levels.
std::array<uint8_t, 256> contrastOf(const CGFloat* color) {
    const double light = color[0] * 54 + color[1] * 183 + color[2] * 19; // Of 256.
    const double text = static_cast<int>(light * 255 / 256) / 32 / 7.0;
    const double strength = 0.5 * linear(1 - text);
    std::array<uint8_t, 256> table;
    for (int i = 0; i < 256; ++i) {
        const double raw = i / 255.0, coverage = raw + (1 - raw) * raw * strength;
        const double mixed = linear(text) * coverage + linear(1 - text) * (1 - coverage);
        const double shown =
            mixed <= 0.0031308 ? mixed * 12.92 : 1.055 * std::pow(mixed, 1 / 2.4) - 0.055;
        table[size_t(i)] = rounded(float(255 * (shown - (1 - text)) / (text - (1 - text))));
    }
    return table;
}

} // namespace

void AtlasHost::drawSprite(Target& target, const XGSprite& item, const CGFloat* color,
                           const uint8_t* contrast) const {
    const FMGlyph& glyph = *static_cast<const FMGlyph*>(item.glyph);
    const auto* const sprite = static_cast<const Sprite*>(glyph.sprite);
    if (!sprite)
        return;
    const auto left = static_cast<int32_t>(item.origin.x) + glyph.left;
    const auto top = target.height - static_cast<int32_t>(item.origin.y) - glyph.top;
    for (uint32_t y = 0; y < sprite->height; ++y)
        for (uint32_t x = 0; x < sprite->width; ++x) {
            const uint8_t* const texel =
                &texture_[(size_t{sprite->y + y} * size_ + sprite->x + x) * 4];
            float source[4];
            for (int i = 0; i < 4; ++i) // A glyph in colours keeps them, but for the opacity.
                source[i] = sprite->isColor ? static_cast<float>(texel[i]) * color[3]
                                            : static_cast<float>(contrast[texel[i]]) * color[3] *
                                                  (i < 3 ? color[2 - i] : 1);
            target.blend(left + static_cast<int32_t>(x), top + static_cast<int32_t>(y), source);
        }
}

bool AtlasHost::play(XGCommandQueueRef queue, std::vector<uint8_t>& pixels) const {
    const CGSize size = XGCommandQueueGetSize(queue);
    Target target = {pixels, static_cast<int32_t>(size.width), static_cast<int32_t>(size.height)};
    for (CFIndex i = 0; i < XGCommandQueueGetCommandCount(queue); ++i) {
        const XGCommand& command = *XGCommandQueueGetCommandAtIndex(queue, i);
        const CGFloat* const color = CGColorGetComponents(command.color);
        if (command.blendMode != kCGBlendModeNormal ||
            CGColorGetNumberOfComponents(command.color) != 4)
            return false;
        if (command.kind == kXGCommandDrawSprites) {
            const auto contrast = contrastOf(color);
            for (uint32_t item = 0; item < command.itemCount; ++item)
                drawSprite(target, XGCommandGetSprites(&command)[item], color, contrast.data());
        } else if (command.kind == kXGCommandFillRects) {
            for (uint32_t item = 0; item < command.itemCount; ++item)
                target.fill(XGCommandGetRects(&command)[item], color);
        } else {
            return false;
        }
    }
    return true;
}

} // namespace test
