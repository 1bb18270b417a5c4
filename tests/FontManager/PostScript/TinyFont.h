// TinyFont.h: TrueType fonts of a few points, put together table by table.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace test {

struct TinyPoint {
    int16_t x, y;
    bool isOnCurve = true;
};

struct TinyGlyph {
    std::string name; // Without one, the font has none for it.
    std::vector<TinyPoint> points;
    uint16_t advance;
};

struct TinyFont {
    std::vector<TinyGlyph> glyphs;
    uint16_t unitsPerEm = 1000;
    uint16_t permissions = 0; // The fsType word of the OS/2 table.
    uint8_t familyClass = 0;

    // The font file.
    std::string bytes() const;
};

} // namespace test
