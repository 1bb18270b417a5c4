// TextMarks.h: what a run of glyphs puts down: fills, strokes and clips.
#pragma once

#include "XGClipping.h"
#include "XGGState.h"
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CGContext.h>
#include <CoreGraphics/CGFont.h>
#include <CoreGraphics/CGPath.h>

#include <cstddef>
#include <memory>
#include <new>

namespace cg {

constexpr bool fillsText(CGTextDrawingMode mode) {
    return mode == kCGTextFill || mode == kCGTextFillStroke || mode == kCGTextFillClip ||
           mode == kCGTextFillStrokeClip;
}
constexpr bool strokesText(CGTextDrawingMode mode) {
    return mode == kCGTextStroke || mode == kCGTextFillStroke || mode == kCGTextStrokeClip ||
           mode == kCGTextFillStrokeClip;
}
constexpr bool clipsText(CGTextDrawingMode mode) {
    return mode >= kCGTextFillClip && mode <= kCGTextClip;
}

// Glyphs of a context's font at its size, under its text matrix.
struct ShownGlyphs {
    const CGGlyph* glyphs = nullptr;
    const CGPoint* positions = nullptr; // In user space.
    size_t count = 0;
};

// Draws a run as the state's text drawing mode says. The text position stays.
void showGlyphs(CGContext& context, const ShownGlyphs& shown);

// Glyphs that clip, one run after the other, clip together: to all of them. A mark between them
// ends that, and so does whatever else changes the clip.
class TextClip {
public:
    // Whether the state's clip is what the last run left.
    bool continues(XGGStateRef state) const;
    // Starts from the state's clip as it is.
    void begin(XGGStateRef state);
    void end() {
        if (outlines_)
            *this = TextClip();
    }
    // Gives the state the clip from before the runs, for one more to be drawn under.
    void lift(XGGStateRef state) const;
    // Adds outlines in device space and clips to all that were added.
    void add(XGGStateRef state, CGPathRef outlines);

private:
    cf::Ref<XGClippingRef> before_; // Absent when nothing was clipped.
    cf::Ref<XGClippingRef> after_;
    cf::Ref<CGMutablePathRef> outlines_; // Absent when no runs are collected.
};

// Items of a run, in place for runs of common length.
template <typename Item>
class RunBuffer {
public:
    // Empty when memory runs out.
    explicit RunBuffer(size_t count)
        : more_(count > kInPlace ? new (std::nothrow) Item[count] : nullptr),
          items_(count > kInPlace ? more_.get() : inPlace_) {}
    RunBuffer(const RunBuffer&) = delete;
    RunBuffer& operator=(const RunBuffer&) = delete;

    explicit operator bool() const { return items_ != nullptr; }
    Item* data() { return items_; }
    Item& operator[](size_t index) { return items_[index]; }

private:
    static constexpr size_t kInPlace = 256;
    std::unique_ptr<Item[]> more_;
    Item inPlace_[kInPlace];
    Item* items_;
};

} // namespace cg
