// GlyphKey.h: what tells one rendered glyph from another.
#pragma once

#include <FontManager/FMGlyph.h>

#include <array>
#include <cstdint>
#include <optional>

namespace fm {

// How a glyph is to be made.
enum class GlyphKind : std::uint8_t {
    Unscaled, // For measuring, in font units.
    Outline,  // A path in pixels; `matrix` holds floats, from em to pixels.
    Mono,     // Masks and colours: `size` contains the transform's scale, `matrix` the rest.
    Grey,
    Smooth,
};

struct GlyphKey {
    std::uint64_t font = 0; // Its serial number, never another font's.
    // a, b, c, d in 1/65536; the bits of floats for outlines.
    std::array<std::int32_t, 4> matrix = {};
    std::int32_t size = 0; // Pixels per em in 1/64.
    CGGlyph glyph = 0;
    std::uint8_t x = 0; // Of the origin in its pixel, in 1/64.
    std::uint8_t y = 0;
    GlyphKind kind = GlyphKind::Unscaled;

    bool operator==(const GlyphKey&) const = default;
    // Its bits are equally good throughout.
    std::uint64_t hash() const;
    bool isUpright() const { return matrix == std::array{0x10000, 0, 0, 0x10000}; }
};

// Without a description, the key of the unscaled glyph. Empty for sizes and transforms that
// nothing can be drawn with.
std::optional<GlyphKey> makeGlyphKey(std::uint64_t font, CGGlyph glyph,
                                     const FMGlyphDescription* description);
// The same, as an outline.
GlyphKey makeOutlineKey(std::uint64_t font, CGGlyph glyph, const FMGlyphDescription& description);

// From the font's units to pixels, for an outline's key.
CGAffineTransform outlineMatrix(const GlyphKey& key, std::uint32_t unitsPerEm);

} // namespace fm
