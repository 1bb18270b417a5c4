// RowTransform.h: rows of pixels from one colour space to another.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFRuntime.h>
#include <CoreGraphics/CGColorSpace.h>

#include <cstddef>
#include <cstdint>

namespace cg {

// Whether pixels of `from` change on their way into `to`. They do not between equal objects,
// between spaces that show as sRGB does within a step of 8 bits, between profiles of the same
// bytes, and from the device's space into any other of its model: they are that space's numbers
// already. Into the device's space they do where a profile of gray or RGB shows otherwise than
// sRGB. Narrower than the equality of colour spaces, by which colours are compared: all RGB spaces
// are equal there. NULL changes nothing.
bool needsConversion(CGColorSpaceRef from, CGColorSpaceRef to);

// Integers are in host order, all of their range for 0…1. Floats are 0…1; of Lab, lightness is
// 0…100 and a* and b* are themselves, while 8 and 16 bits hold Lab as Little CMS encodes it.
enum class ComponentType : std::uint8_t { Unsigned8, Unsigned16, Float };

constexpr std::size_t byteSize(ComponentType type) {
    switch (type) {
    case ComponentType::Unsigned8:
        return 1;
    case ComponentType::Unsigned16:
        return 2;
    case ComponentType::Float:
        return sizeof(float);
    }
    return 0;
}

template <typename Component>
inline constexpr ComponentType kComponentTypeOf = ComponentType::Float;
template <>
inline constexpr ComponentType kComponentTypeOf<std::uint8_t> = ComponentType::Unsigned8;
template <>
inline constexpr ComponentType kComponentTypeOf<std::uint16_t> = ComponentType::Unsigned16;

// The components of a colour of the space, interleaved, and the opacity behind them.
struct RowFormat {
    ComponentType type = ComponentType::Unsigned8;
    bool hasAlpha = false;

    friend bool operator==(const RowFormat&, const RowFormat&) = default;
};

struct RowTransform;
using RowTransformRef = cf::Ref<const RowTransform*>;

// A way between two spaces for rows of two formats. Immutable: any number of threads apply one at
// the same time, for which reason Little CMS keeps no last pixel in it (cmsFLAGS_NOCACHE).
struct RowTransform {
    CFRuntimeBase base;

    RowTransform() = default;
    RowTransform(const RowTransform&) = delete;
    RowTransform& operator=(const RowTransform&) = delete;
    ~RowTransform();

    // Empty when either space is NULL, indexed or a pattern, has no profile, or memory runs out.
    // The gray, RGB and sRGB of the device go into each other directly, by replication and luma;
    // spaces that need no conversion change their format alone. Everything else is what Little CMS
    // makes of the two profiles. Kept in a cache; see TransformCache.h.
    static RowTransformRef between(CGColorSpaceRef from, RowFormat fromFormat, CGColorSpaceRef to,
                                   RowFormat toFormat, CGColorRenderingIntent intent);

    // Opacity passes through unchanged but for its type; it is full where `in` has none. `in` and
    // `out` are aligned to their type and do not overlap.
    void apply(const void* in, void* out, std::size_t pixelCount) const;
    // The same for a single colour, between two formats of floats without opacity.
    void applyToColor(const float* in, float* out) const;

private:
    friend class RowTransformMaker;

    struct Side {
        RowFormat format;
        std::size_t colorCount = 0;
        bool isInPercent = false; // Little CMS counts ink in floats from 0 to 100.
        bool isThreeInks = false; // To the profile, which has no black; rows have four.

        std::size_t nativeColorCount() const { return colorCount - isThreeInks; }
        std::size_t bytesPerPixel() const;
    };

    void applyNative(const void* in, void* out, std::size_t pixelCount) const;
    const void* prepared(const std::byte* in, std::byte* scratch, std::size_t pixelCount) const;
    void applyInSteps(const std::byte* in, std::byte* out, std::size_t pixelCount) const;

    Side from_;
    Side to_;
    void* native_ = nullptr; // Of Little CMS, owned; NULL where rows go directly.
};

} // namespace cg
