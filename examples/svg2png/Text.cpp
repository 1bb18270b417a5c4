// Text.cpp: glyphs filled, stroked and clipped to, and the lines under, over and through them.

#include "Text.h"

#include "Geometry.h"
#include "Paint.h"
#include "TextLayout.h"

#include <algorithm>
#include <numbers>
#include <vector>

namespace svg {

namespace {

// The glyphs of a run as the context's text drawing mode says. The space has y down, glyphs have it
// up: the text matrix turns them.
void showRun(CGContextRef context, const TextRun& run) {
    CGContextSetFont(context, run.font);
    CGContextSetFontSize(context, toCoordinate(run.span->style.emSize()));
    for (const TextGlyph& glyph : run.glyphs) {
        const auto angle = toCoordinate(glyph.rotation * std::numbers::pi / 180);
        CGContextSetTextMatrix(context,
                               CGAffineTransformRotate(CGAffineTransformMakeScale(1, -1), -angle));
        CGContextShowGlyphsAtPoint(context, toCoordinate(glyph.x), toCoordinate(glyph.y),
                                   &glyph.glyph, 1);
    }
}

// Upright runs are shown as a whole.
void showUprightRun(CGContextRef context, const TextRun& run) {
    std::vector<CGGlyph> glyphs;
    std::vector<CGPoint> positions;
    for (const TextGlyph& glyph : run.glyphs) {
        glyphs.push_back(glyph.glyph);
        positions.push_back(toPoint(glyph.x, -glyph.y));
    }
    CGContextSetFont(context, run.font);
    CGContextSetFontSize(context, toCoordinate(run.span->style.emSize()));
    CGContextSetTextMatrix(context, CGAffineTransformMakeScale(1, -1));
    CGContextShowGlyphsAtPositions(context, glyphs.data(), positions.data(), glyphs.size());
}

void show(CGContextRef context, const TextRun& run) {
    const bool isUpright =
        std::ranges::all_of(run.glyphs, [](const TextGlyph& glyph) { return glyph.rotation == 0; });
    if (isUpright)
        showUprightRun(context, run);
    else
        showRun(context, run);
}

// Where a line lies, in parts of the em above the baseline.
struct LineRow {
    TextLines line;
    double above;
};
constexpr LineRow kLines[] = {{kUnderline, -0.15}, {kOverline, 0.8}, {kLineThrough, 0.26}};
constexpr double kLineThickness = 0.06;

// The lines of a run as one outline.
Path linesOf(const TextRun& run) {
    Path path(CGPathCreateMutable());
    const double em = run.span->style.emSize();
    for (const LineRow& row : kLines) {
        if (!(run.span->style.textLines & row.line))
            continue;
        for (const TextGlyph& glyph : run.glyphs)
            CGPathAddRect(path.get(), nullptr,
                          toRect(glyph.x, glyph.y - (row.above + kLineThickness) * em,
                                 glyph.advance, kLineThickness * em));
    }
    return path;
}

} // namespace

// Gradients and patterns belong to the box around the whole element.
void drawText(Scene& scene, CGContextRef context, const Occurrence& text) {
    const TextLayout layout = layOut(scene, text);
    const Path box(CGPathCreateMutable());
    CGPathAddRect(box.get(), nullptr, layout.bounds());
    for (const TextRun& run : layout.runs) {
        if (!run.font || run.glyphs.empty() || !run.span->style.isVisible)
            continue;
        const Path lines = linesOf(run);
        if (!CGPathIsEmpty(lines.get()))
            paintShape(scene, context, *run.span, lines.get(), 1);
        paintGlyphs(scene, context, *run.span, box.get(), [&] { show(context, run); });
    }
}

void drawTextSilhouette(Scene& scene, CGContextRef context, const Occurrence& text) {
    const TextLayout layout = layOut(scene, text);
    CGContextSetTextDrawingMode(context, kCGTextFill);
    for (const TextRun& run : layout.runs)
        if (run.font && !run.glyphs.empty())
            show(context, run);
}

CGRect textBounds(Scene& scene, const Occurrence& text) {
    return layOut(scene, text).bounds();
}

} // namespace svg
