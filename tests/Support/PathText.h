// PathText.h: paths as text, so that expectations can be read.
#pragma once

#include <CoreGraphics/CGPath.h>

#include <cstddef>
#include <cstdio>
#include <string>

namespace test {

// A path's elements as CGPathApply reports them: "M 0 0 L 1 0 Q … C … Z", numbers to six digits.
inline std::string pathText(CGPathRef path) {
    static constexpr struct {
        char letter;
        std::size_t points;
    } kinds[] = {{'M', 1}, {'L', 1}, {'Q', 2}, {'C', 3}, {'Z', 0}};

    const auto append = [](void* info, const CGPathElement* element) {
        std::string& text = *static_cast<std::string*>(info);
        const auto& kind = kinds[element->type];
        if (!text.empty())
            text += ' ';
        text += kind.letter;
        for (std::size_t i = 0; i < kind.points; ++i) {
            char pair[64];
            // Adding 0 makes -0 print like 0.
            std::snprintf(pair, sizeof pair, " %g %g", double{element->points[i].x + 0.0f},
                          double{element->points[i].y + 0.0f});
            text += pair;
        }
    };
    std::string text;
    CGPathApply(path, &text, append);
    return text;
}

// The letters alone: "MLQCZ".
inline std::string pathKinds(CGPathRef path) {
    std::string kinds;
    for (const char c : pathText(path))
        if (c >= 'A' && c <= 'Z')
            kinds += c;
    return kinds;
}

} // namespace test
