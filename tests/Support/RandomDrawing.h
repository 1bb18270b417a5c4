// RandomDrawing.h: drawing programs of all kinds of calls, the same for the same seed.
#pragma once

#include <CoreGraphics/CGContext.h>

#include <cstdint>

namespace test {

struct RandomDrawing {
    std::uint32_t seed = 0;
    int steps = 0;
    // Of 0 … 100: how often a step is one that commands can say, rather than any at all.
    int simple = 50;
};

// Draws into a bitmap of about 64 by 48 pixels. What a step does hangs on the program alone, never
// on the context's answers.
void drawAtRandom(CGContextRef context, const RandomDrawing& program);

} // namespace test
