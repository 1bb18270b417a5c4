// DrawingOperations.h: one drawing through the interface and with bare Skia, kind by kind.
#pragma once

#include <CoreGraphics/CGContext.h>

#include "include/core/SkBlendMode.h"
#include "include/core/SkCanvas.h"
#include "include/core/SkPaint.h"

#include <span>

namespace test {

// The size of the bitmap that the operations fit into.
inline constexpr int kTableWidth = 48, kTableHeight = 40;

// The state that every operation starts from: fill and stroke colour, both half transparent, and
// the state's own alpha.
inline constexpr SkColor kTableColor = SkColorSetARGB(128, 51, 102, 204);
inline constexpr float kTableAlpha = 0.67f;

struct DrawingOperation {
    const char* what;
    void (*ours)(CGContextRef context);
    // With the paint of that state: its colour with both alphas, antialiased, in the blend mode.
    void (*bare)(SkCanvas& canvas, SkPaint paint);
    // How many times pixels are drawn over.
    int marks = 1;
};

std::span<const DrawingOperation> drawingOperations();

// What the modes of the interface are to be in Skia, by their numbers.
std::span<const SkBlendMode> tableBlendModes();

void drawOurs(const DrawingOperation& operation, CGContextRef context, std::size_t mode);
// `isGray`: the pixels stand for a bitmap of gray, whose images are gray as well.
void drawBare(const DrawingOperation& operation, const SkBitmap& bitmap, std::size_t mode,
              bool isGray);

} // namespace test
