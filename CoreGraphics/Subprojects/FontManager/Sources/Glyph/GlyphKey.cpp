// GlyphKey.cpp: descriptions rounded to what is kept apart.

#include "Glyph/GlyphKey.h"

#include "Core/Object/Saturate.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace fm {

namespace {

// Above it a mask would be of no use, and FreeType's numbers would come near their ends.
constexpr float kMostPixelsPerEm = 2048;
constexpr int kPlacesKept = 0x30; // Of 64 places, each sixteenth.

bool isFinite(const FMGlyphDescription& description) {
    const CGAffineTransform& m = description.transform;
    const CGFloat numbers[] = {description.size,      m.a, m.b, m.c, m.d, description.position.x,
                               description.position.y};
    return std::ranges::all_of(numbers, [](CGFloat number) { return std::isfinite(number); });
}

std::uint8_t placeInPixel(CGFloat position, FMGlyphOptions options) {
    if (!(options & kFMGlyphSubpixelPosition))
        return 0;
    const int place = static_cast<int>((position - std::floor(position)) * 64) & 63;
    return static_cast<std::uint8_t>(options & kFMGlyphSubpixelQuantize ? place & kPlacesKept
                                                                        : place);
}

// What of a transform belongs to the size, so that outlines are rounded to fractions of the pixels
// that they are drawn in. Turns and slants have none; where one axis is drawn out it is that one's.
double scaleOf(const CGAffineTransform& m) {
    const double a = m.a, b = m.b, c = m.c, d = m.d;
    if (b == 0 && c == 0 && a == d)
        return std::abs(a);
    const double longest = std::sqrt(std::max(a * a + b * b, c * c + d * d));
    const double mean = std::sqrt(std::abs(a * d - b * c));
    return longest <= 2 * mean ? mean : longest;
}

GlyphKind kindOf(FMGlyphOptions options) {
    if (!(options & kFMGlyphAntialias))
        return GlyphKind::Mono;
    return options & kFMGlyphSmooth ? GlyphKind::Smooth : GlyphKind::Grey;
}

std::int32_t fixed(double value, double one) {
    return cg::saturate<std::int32_t>(std::floor(value * one + 0.5));
}

// Finaliser of a published generator (SplitMix64, Steele, Lea and Flood, 2014).
std::uint64_t mix(std::uint64_t value) {
    value = (value ^ (value >> 30)) * 0xbf58476d1ce4e5b9u;
    value = (value ^ (value >> 27)) * 0x94d049bb133111ebu;
    return value ^ (value >> 31);
}

std::uint64_t pair(std::int32_t high, std::int32_t low) {
    return std::uint64_t{static_cast<std::uint32_t>(high)} << 32 | static_cast<std::uint32_t>(low);
}

} // namespace

// The multipliers are odd and otherwise arbitrary: equal words in other places differ.
std::uint64_t GlyphKey::hash() const {
    const std::uint64_t place = std::uint64_t{glyph} << 24 | std::uint64_t{x} << 16 |
                                std::uint64_t{y} << 8 | static_cast<std::uint64_t>(kind);
    return mix(font * 0x9e3779b97f4a7c15u + pair(matrix[0], matrix[1]) * 0xd6e8feb86659fd93u +
               pair(matrix[2], matrix[3]) * 0xa0761d6478bd642fu +
               static_cast<std::uint32_t>(size) * 0xe7037ed1a0b428dbu +
               place * 0x8ebc6af09c88c6e3u);
}

GlyphKey makeOutlineKey(std::uint64_t font, CGGlyph glyph, const FMGlyphDescription& description) {
    const CGAffineTransform& m = description.transform;
    const CGFloat size = description.size;
    const auto bits = [size](CGFloat scale) { return std::bit_cast<std::int32_t>(size * scale); };
    return {.font = font,
            .matrix = {bits(m.a), bits(m.b), bits(m.c), bits(m.d)},
            .glyph = glyph,
            .x = placeInPixel(description.position.x, description.options),
            .y = placeInPixel(description.position.y, description.options),
            .kind = GlyphKind::Outline};
}

std::optional<GlyphKey> makeGlyphKey(std::uint64_t font, CGGlyph glyph,
                                     const FMGlyphDescription* description) {
    if (!description)
        return GlyphKey{.font = font, .glyph = glyph};
    if (!isFinite(*description) || !(description->size > 0))
        return std::nullopt;
    const CGAffineTransform& m = description->transform;
    const double scale = scaleOf(m);
    const double size = description->size * scale;
    const std::int32_t size64ths = fixed(size, 64);
    if (size64ths <= 0)
        return std::nullopt;
    if (size > kMostPixelsPerEm || (description->options & kFMGlyphAsOutline))
        return makeOutlineKey(font, glyph, *description);
    return GlyphKey{.font = font,
                    .matrix = {fixed(m.a / scale, 65536), fixed(m.b / scale, 65536),
                               fixed(m.c / scale, 65536), fixed(m.d / scale, 65536)},
                    .size = size64ths,
                    .glyph = glyph,
                    .x = placeInPixel(description->position.x, description->options),
                    .y = placeInPixel(description->position.y, description->options),
                    .kind = kindOf(description->options)};
}

CGAffineTransform outlineMatrix(const GlyphKey& key, std::uint32_t unitsPerEm) {
    const auto entry = [&](std::size_t index) {
        return std::bit_cast<CGFloat>(key.matrix[index]) / static_cast<CGFloat>(unitsPerEm);
    };
    return {entry(0),
            entry(1),
            entry(2),
            entry(3),
            static_cast<CGFloat>(key.x) / 64,
            static_cast<CGFloat>(key.y) / 64};
}

} // namespace fm
