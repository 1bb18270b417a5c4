// Picture.h: small bitmaps as text, so that expectations can be drawn.
#pragma once

#include <CoreGraphics/CGBitmapContext.h>

#include <cstdint>
#include <initializer_list>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace test {

// Rows from the top, a character a pixel: '#' where the alpha is full, '.' where it is 0, '+'
// between.
struct Picture {
    std::vector<std::string> rows;

    Picture(std::initializer_list<const char*> lines) : rows(lines.begin(), lines.end()) {}

    // Of a 32-bit BGRA bitmap context.
    explicit Picture(CGContextRef context) {
        const auto* const bytes = static_cast<const std::uint8_t*>(CGBitmapContextGetData(context));
        for (std::size_t y = 0; y < CGBitmapContextGetHeight(context); ++y) {
            std::string row;
            for (std::size_t x = 0; x < CGBitmapContextGetWidth(context); ++x) {
                const auto alpha = bytes[y * CGBitmapContextGetBytesPerRow(context) + 4 * x + 3];
                row += alpha == 0 ? '.' : alpha == 255 ? '#' : '+';
            }
            rows.push_back(row);
        }
    }

    friend bool operator==(const Picture& a, const Picture& b) { return a.rows == b.rows; }
    friend std::ostream& operator<<(std::ostream& out, const Picture& picture) {
        for (const std::string& row : picture.rows)
            out << '\n' << row;
        return out;
    }
};

} // namespace test
