// TextContrast.h: how coverage by a glyph shows, in a colour.
#pragma once

#include <CoreGraphics/CGColor.h>

#include <array>
#include <cstdint>

namespace cg {

// What the raster backend makes of masks of text, so that text from masks looks alike: coverage is
// mixed in linear light, against a background as light as the text is dark, and dark text is made
// somewhat stronger. Eight levels of lightness are told apart.
class TextContrast {
public:
    explicit TextContrast(CGColorRef color);

    std::uint8_t operator()(std::uint8_t coverage) const { return shown_[coverage]; }

private:
    std::array<std::uint8_t, 256> shown_;
};

} // namespace cg
