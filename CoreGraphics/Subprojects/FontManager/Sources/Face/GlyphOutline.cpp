// GlyphOutline.cpp: reading outlines from a face.

#include "Face/GlyphOutline.h"

#include FT_OUTLINE_H

namespace fm {

namespace {

CGPoint point(const FT_Vector& vector) {
    return {static_cast<CGFloat>(vector.x) * kUnitsPerStep,
            static_cast<CGFloat>(vector.y) * kUnitsPerStep};
}

// FreeType ends each contour with a line back to its start. Closing draws that line, so that it is
// held back until something else follows it.
class PathBuilder {
public:
    explicit PathBuilder(CGMutablePathRef path) : path_(path) {}

    void moveTo(const FT_Vector& to) {
        close();
        start_ = point(to);
        isOpen_ = true;
        CGPathMoveToPoint(path_, nullptr, start_.x, start_.y);
    }
    void lineTo(const FT_Vector& to) {
        addPendingLine();
        pendingLine_ = point(to);
        hasPendingLine_ = true;
    }
    void quadTo(const FT_Vector& control, const FT_Vector& to) {
        addPendingLine();
        const CGPoint c = point(control), end = point(to);
        CGPathAddQuadCurveToPoint(path_, nullptr, c.x, c.y, end.x, end.y);
    }
    void cubicTo(const FT_Vector& control1, const FT_Vector& control2, const FT_Vector& to) {
        addPendingLine();
        const CGPoint c1 = point(control1), c2 = point(control2), end = point(to);
        CGPathAddCurveToPoint(path_, nullptr, c1.x, c1.y, c2.x, c2.y, end.x, end.y);
    }
    void close() {
        if (!isOpen_)
            return;
        if (hasPendingLine_ && (pendingLine_.x != start_.x || pendingLine_.y != start_.y))
            addPendingLine();
        hasPendingLine_ = false;
        CGPathCloseSubpath(path_);
        isOpen_ = false;
    }

private:
    void addPendingLine() {
        if (hasPendingLine_)
            CGPathAddLineToPoint(path_, nullptr, pendingLine_.x, pendingLine_.y);
        hasPendingLine_ = false;
    }

    CGMutablePathRef path_;
    CGPoint start_ = {};
    CGPoint pendingLine_ = {};
    bool hasPendingLine_ = false;
    bool isOpen_ = false;
};

constexpr FT_Outline_Funcs kPathFunctions = {
    .move_to =
        [](const FT_Vector* to, void* builder) {
            static_cast<PathBuilder*>(builder)->moveTo(*to);
            return 0;
        },
    .line_to =
        [](const FT_Vector* to, void* builder) {
            static_cast<PathBuilder*>(builder)->lineTo(*to);
            return 0;
        },
    .conic_to =
        [](const FT_Vector* control, const FT_Vector* to, void* builder) {
            static_cast<PathBuilder*>(builder)->quadTo(*control, *to);
            return 0;
        },
    .cubic_to =
        [](const FT_Vector* control1, const FT_Vector* control2, const FT_Vector* to,
           void* builder) {
            static_cast<PathBuilder*>(builder)->cubicTo(*control1, *control2, *to);
            return 0;
        },
    .shift = kFractionBits,
    .delta = 0,
};

} // namespace

const FT_Outline* loadOutline(FT_Face face, CGGlyph glyph) {
    constexpr FT_Int32 kFlags = FT_LOAD_NO_SCALE | FT_LOAD_IGNORE_TRANSFORM;
    if (!FT_IS_SCALABLE(face) || !hasGlyph(face, glyph) || FT_Load_Glyph(face, glyph, kFlags))
        return nullptr;
    return face->glyph->format == FT_GLYPH_FORMAT_OUTLINE ? &face->glyph->outline : nullptr;
}

cf::Ref<CGPathRef> copyOutline(FT_Face face, CGGlyph glyph) {
    const FT_Outline* const outline = loadOutline(face, glyph);
    const auto path = outline ? CGPathCreateMutable() : nullptr;
    if (!path)
        return nullptr;
    auto owned = cf::adopt<CGPathRef>(path);
    PathBuilder builder(path);
    FT_Outline copy = *outline;
    if (FT_Outline_Decompose(&copy, &kPathFunctions, &builder))
        return nullptr;
    builder.close();
    return owned;
}

} // namespace fm
