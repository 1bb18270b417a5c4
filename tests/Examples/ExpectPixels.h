// ExpectPixels.h: small drawings and what pixels they must have.
#pragma once

#include "Renderer.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace test {

// A premultiplied pixel as 0xAARRGGBB, which is how 32-bit BGRA reads on a little-endian machine.
inline constexpr std::uint32_t kClear = 0, kBlack = 0xFF000000, kRed = 0xFFFF0000,
                               kLime = 0xFF00FF00, kBlue = 0xFF0000FF;

struct Probe {
    std::size_t x;
    std::size_t y;
    std::uint32_t pixel;
};

inline std::optional<svg::Document> parse(const std::string& text) {
    std::string error;
    auto document = svg::Document::parse(text, error);
    EXPECT_TRUE(document) << error << "\n" << text;
    return document;
}

// Expects these pixels of a 40 × 40 drawing, to one level of each component.
inline void expectPixels(const char* what, const std::string& content,
                         const std::vector<Probe>& probes) {
    const auto document = parse("<svg xmlns='http://www.w3.org/2000/svg' width='40' height='40'>" +
                                content + "</svg>");
    ASSERT_TRUE(document);
    svg::Report report("drawing");
    const svg::Context context = svg::render(*document, 40, 40, report);
    const auto* data = static_cast<const std::uint8_t*>(CGBitmapContextGetData(context.get()));
    ASSERT_TRUE(data);
    for (const auto& [x, y, expected] : probes) {
        std::uint32_t pixel = 0;
        std::memcpy(&pixel, data + y * CGBitmapContextGetBytesPerRow(context.get()) + x * 4, 4);
        for (int shift = 0; shift < 32; shift += 8)
            EXPECT_NEAR(double(pixel >> shift & 0xFF), double(expected >> shift & 0xFF), 1)
                << what << " at " << x << ", " << y << ": " << std::hex << pixel;
    }
}

struct Case {
    const char* what;
    std::string content;
    std::vector<Probe> probes;
};

inline void expectAll(const std::vector<Case>& cases) {
    for (const auto& [what, content, probes] : cases)
        expectPixels(what, content, probes);
}

} // namespace test
