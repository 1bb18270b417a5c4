// CGContextText.cpp: showing glyphs and text.

#include "XGFont.h"
#include <CoreFoundation/CFString.h>
#include <CoreGraphics/CGContext.h>
#include <FontManager/FMFont.h>
#include <FontManager/FMFontGlyphs.h>

#include "Core/Context/CGContextRecord.h"
#include "Core/Context/TextBytes.h"
#include "Core/Context/TextMarks.h"

#include <algorithm>
#include <array>
#include <cmath>

using cg::stateOf;

namespace {

// Advances are asked for in portions that need no memory.
constexpr size_t kPortion = 128;

// Calls `each(index, before)` with the sum of the advances before each glyph, in font units, and
// gives the sum of all. A font that cannot tell advances by nothing.
template <typename Each>
CGSize sumAdvances(CGFontRef font, const CGGlyph* glyphs, size_t count, Each each) {
    const FMFontRef native = XGFontGetFMFont(font);
    std::array<CGSize, kPortion> portion;
    CGSize sum = CGSizeZero;
    for (size_t first = 0; first < count; first += kPortion) {
        const size_t many = std::min(kPortion, count - first);
        if (!FMFontGetAdvancesForGlyphs(native, glyphs + first, portion.data(), many))
            portion.fill(CGSizeZero);
        for (size_t index = 0; index < many; ++index) {
            each(first + index, sum);
            sum.width += portion[index].width;
            sum.height += portion[index].height;
        }
    }
    return sum;
}

// Text space starts at the text position, before the text matrix.
class TextSpace {
public:
    explicit TextSpace(XGGStateRef state)
        : unitsPerEm_(static_cast<CGFloat>(CGFontGetUnitsPerEm(XGGStateGetFont(state)))),
          size_(XGGStateGetFontSize(state)), spacing_(XGGStateGetCharacterSpacing(state)) {}

    // A sum of advances in font units at the font's size.
    CGSize sized(CGSize units) const {
        if (!(unitsPerEm_ > 0))
            return CGSizeZero;
        return {units.width / unitsPerEm_ * size_, units.height / unitsPerEm_ * size_};
    }
    // The same with the spacing behind as many glyphs.
    CGSize spaced(CGSize units, size_t glyphs) const {
        CGSize size = sized(units);
        size.width += spacing_ * static_cast<CGFloat>(glyphs);
        return size;
    }

private:
    CGFloat unitsPerEm_, size_, spacing_;
};

void movePosition(CGContext& context, CGSize inUserSpace) {
    context.textMatrix.tx += inUserSpace.width;
    context.textMatrix.ty += inUserSpace.height;
}

// Deliberate: spacing is for glyphs that are seen; invisible ones move on by their advances alone.
void skipGlyphs(CGContext& context, const CGGlyph* glyphs, size_t count) {
    const XGGStateRef state = context.state.get();
    const CGSize sum = sumAdvances(XGGStateGetFont(state), glyphs, count, [](size_t, CGSize) {});
    movePosition(context,
                 CGSizeApplyAffineTransform(TextSpace(state).sized(sum), context.textMatrix));
}

void advanceAndShow(CGContext& context, const CGGlyph* glyphs, size_t count) {
    const XGGStateRef state = context.state.get();
    if (XGGStateGetTextDrawingMode(state) == kCGTextInvisible) {
        skipGlyphs(context, glyphs, count);
        return;
    }
    cg::RunBuffer<CGPoint> positions(count);
    if (!positions)
        return;
    const TextSpace space(state);
    const CGSize sum =
        sumAdvances(XGGStateGetFont(state), glyphs, count, [&](size_t index, CGSize before) {
            const CGSize at = space.spaced(before, index);
            positions[index] =
                CGPointApplyAffineTransform({at.width, at.height}, context.textMatrix);
        });
    const CGSize moved = CGSizeApplyAffineTransform(space.spaced(sum, count), context.textMatrix);
    cg::showGlyphs(context, {glyphs, positions.data(), count});
    movePosition(context, moved);
}

} // namespace

void CGContextShowGlyphs(CGContextRef context, const CGGlyph* glyphs, size_t count) {
    if (context && glyphs && count > 0)
        advanceAndShow(*context, glyphs, count);
}

void CGContextShowGlyphsAtPoint(CGContextRef context, CGFloat x, CGFloat y, const CGGlyph* glyphs,
                                size_t count) {
    CGContextSetTextPosition(context, x, y);
    CGContextShowGlyphs(context, glyphs, count);
}

// Deliberate: the text position stays, since every position is from it: a caller that shows a line
// in several calls places all of them from the same origin.
void CGContextShowGlyphsAtPositions(CGContextRef context, const CGGlyph* glyphs,
                                    const CGPoint* positions, size_t count) {
    if (!context || !glyphs || !positions || count == 0)
        return;
    cg::RunBuffer<CGPoint> inUserSpace(count);
    if (!inUserSpace)
        return;
    std::transform(positions, positions + count, inUserSpace.data(), [&](CGPoint position) {
        return CGPointApplyAffineTransform(position, context->textMatrix);
    });
    cg::showGlyphs(*context, {glyphs, inUserSpace.data(), count});
}

void CGContextShowGlyphsWithAdvances(CGContextRef context, const CGGlyph* glyphs,
                                     const CGSize* advances, size_t count) {
    if (!context || !glyphs || !advances || count == 0)
        return;
    cg::RunBuffer<CGPoint> positions(count);
    if (!positions)
        return;
    CGSize sum = CGSizeZero;
    for (size_t index = 0; index < count; ++index) {
        positions[index] = {context->textMatrix.tx + sum.width,
                            context->textMatrix.ty + sum.height};
        sum.width += advances[index].width;
        sum.height += advances[index].height;
    }
    cg::showGlyphs(*context, {glyphs, positions.data(), count});
    movePosition(*context, sum);
}

// ---- Text

void CGContextSelectFont(CGContextRef context, const char* name, CGFloat size,
                         CGTextEncoding encoding) {
    if (!context || !name || !*name)
        return;
    CGContextSetFontSize(context, size);
    const auto text = cf::adopt(CFStringCreateWithCString(nullptr, name, kCFStringEncodingUTF8));
    const auto font = cf::adopt(text ? CGFontCreateWithFontName(text.get()) : nullptr);
    if (!font)
        return;
    CGContextSetFont(context, font.get());
    context->state.get()->values.textEncoding = encoding;
}

void CGContextShowText(CGContextRef context, const char* string, size_t length) {
    const XGGStateRef state = stateOf(context);
    if (!string || length == 0 || !XGGStateGetFont(state))
        return;
    cg::RunBuffer<CGGlyph> glyphs(length);
    if (!glyphs)
        return;
    const size_t count = cg::glyphsOfBytes(XGGStateGetFont(state), state->values.textEncoding,
                                           {string, length}, glyphs.data());
    CGContextShowGlyphs(context, glyphs.data(), count);
}

void CGContextShowTextAtPoint(CGContextRef context, CGFloat x, CGFloat y, const char* string,
                              size_t length) {
    CGContextSetTextPosition(context, x, y);
    CGContextShowText(context, string, length);
}
