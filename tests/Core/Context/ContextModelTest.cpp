// ContextModelTest.cpp: long random programs of context calls, beside a model of what they set.

#include "Core/Context/ContextModel.h"

#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>

#include "Support/Bitmaps.h"
#include "Support/CollectedLog.h"
#include "Support/RecordingBackend.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace model;

class Program {
public:
    Program(CGContextRef context, std::optional<Box> bounds, uint32_t seed)
        : c_(context), bounds_(bounds), random_(seed) {
        for (std::size_t index = 0; index < std::size(kSettings); ++index)
            now_.numbers[index] = kSettings[index].initial;
        now_.clip = bounds;
        if (bounds) // An RGB bitmap.
            now_.fill = now_.stroke = {kCGColorSpaceModelRGB, {0, 0, 0, 1}};
    }

    void step() {
        using Call = void (Program::*)();
        static constexpr Call kCalls[] = {
            &Program::set,       &Program::set,          &Program::set,     &Program::setColor,
            &Program::setColor,  &Program::setShadow,    &Program::setDash, &Program::transform,
            &Program::transform, &Program::moveText,     &Program::save,    &Program::restore,
            &Program::build,     &Program::build,        &Program::build,   &Program::build,
            &Program::paint,     &Program::paintOneself, &Program::clip,    &Program::layer};
        (this->*kCalls[upTo(std::size(kCalls))])();
        ++calls_;
    }
    void compare() const;
    std::size_t calls() const { return calls_; }
    std::vector<std::string> takeExpected() { return std::exchange(expected_, {}); }

private:
    // ---- Random values
    std::size_t upTo(std::size_t count) { return random_() % count; }
    CGFloat quarter(int most) {
        return static_cast<CGFloat>(static_cast<int>(upTo(static_cast<std::size_t>(8 * most + 1))) -
                                    4 * most) /
               4;
    }
    CGPoint point() { return {quarter(32), quarter(32)}; }
    CGRect rect() { return {point(), {quarter(32), quarter(32)}}; }
    CGFloat component() { return static_cast<CGFloat>(upTo(9)) / 8; }
    CGFloat anyNumber() {
        constexpr CGFloat kOdd[] = {kNaN, kInfinity, -kInfinity, -1, 0, 1e30f, -0.f};
        return upTo(4) == 0 ? kOdd[upTo(std::size(kOdd))] : static_cast<CGFloat>(upTo(64)) / 4;
    }

    // ---- Calls
    void set();
    void setColor();
    void setShadow();
    void setDash();
    void transform();
    void moveText();
    void save();
    void restore();
    void build();
    void paint();
    void paintOneself();
    void clip();
    void layer();

    void addPoint(CGPoint point) { path_.push_back(now_.ctm.map(point.x, point.y)); }
    void addRect(CGRect rect);
    void clipTo(const Box& box);
    void dropPath() {
        path_.clear();
        lastIsMove_ = false;
    }
    void expectPath(bool fills, bool strokes);

    CGContextRef c_;
    std::optional<Box> bounds_;
    std::mt19937 random_;
    std::size_t calls_ = 0;
    State now_;
    std::vector<State> saved_;
    std::vector<CGPoint> path_; // In device space.
    bool lastIsMove_ = false;
    Matrix text_;
    std::vector<std::string> expected_; // The destination's calls.
};

void Program::set() {
    const std::size_t index = upTo(std::size(kSettings));
    const CGFloat given = anyNumber();
    kSettings[index].set(c_, given);
    now_.numbers[index] = kSettings[index].kept(now_.numbers[index], given);
}

void Program::setColor() {
    const bool isFill = upTo(2) == 0;
    Color& color = isFill ? now_.fill : now_.stroke;
    const CGFloat v[] = {component(), component(), component(), component(), component()};
    switch (upTo(6)) {
    case 0:
        (isFill ? CGContextSetGrayFillColor : CGContextSetGrayStrokeColor)(c_, v[0], v[1]);
        color = {kCGColorSpaceModelMonochrome, {v[0], v[1]}};
        break;
    case 1:
        (isFill ? CGContextSetRGBFillColor : CGContextSetRGBStrokeColor)(c_, v[0], v[1], v[2],
                                                                         v[3]);
        color = {kCGColorSpaceModelRGB, {v[0], v[1], v[2], v[3]}};
        break;
    case 2:
        (isFill ? CGContextSetCMYKFillColor : CGContextSetCMYKStrokeColor)(c_, v[0], v[1], v[2],
                                                                           v[3], v[4]);
        color = {kCGColorSpaceModelCMYK, {std::begin(v), std::end(v)}};
        break;
    case 3: {
        const auto space = cf::adopt(CGColorSpaceCreateDeviceRGB());
        (isFill ? CGContextSetFillColorSpace : CGContextSetStrokeColorSpace)(c_, space.get());
        if (color.model != kCGColorSpaceModelRGB)
            color = {kCGColorSpaceModelRGB, {0, 0, 0, 1}};
        break;
    }
    case 4: // In the space of the current colour; gray without one.
        (isFill ? CGContextSetFillColor : CGContextSetStrokeColor)(c_, v);
        if (color.components.empty())
            color = {kCGColorSpaceModelMonochrome, {0, 1}};
        std::copy_n(v, color.components.size(), color.components.begin());
        break;
    default:
        (isFill ? CGContextSetFillColorWithColor : CGContextSetStrokeColorWithColor)(c_, nullptr);
        color = {};
    }
}

void Program::setShadow() {
    now_.shadowOffset = {quarter(4), quarter(4)};
    now_.shadowBlur = component();
    now_.hasShadow = upTo(3) == 0;
    if (now_.hasShadow)
        CGContextSetShadow(c_, now_.shadowOffset, static_cast<CGFloat>(now_.shadowBlur));
    else
        CGContextSetShadowWithColor(c_, now_.shadowOffset, static_cast<CGFloat>(now_.shadowBlur),
                                    nullptr);
    now_.phase = {quarter(4), quarter(4)};
    CGContextSetPatternPhase(c_, now_.phase);
}

void Program::setDash() {
    now_.dash.assign(upTo(4), 2);
    CGContextSetLineDash(c_, quarter(4), now_.dash.data(), now_.dash.size());
}

// Transforms that would make numbers inexact start over from a translation.
void Program::transform() {
    constexpr CGFloat kFactors[] = {0.5f, 1, 2, -1, -2};
    constexpr CGAffineTransform kTurns[] = {
        {0, 1, -1, 0, 0, 0}, {1, 0, 1, 1, 0, 0}, {1, -1, 0, 1, 0, 0}, {0, -2, 1, 0, 3, 4}};
    const CGFloat sx = kFactors[upTo(5)], sy = kFactors[upTo(5)];
    const CGPoint by = point();
    const CGAffineTransform turn = kTurns[upTo(std::size(kTurns))];
    const std::size_t which = upTo(5);
    const Matrix made[] = {{sx, 0, 0, sy, 0, 0}, {1, 0, 0, 1, by.x, by.y}, Matrix::of(turn), {}};
    const Matrix next = which < 4 ? made[which].then(now_.ctm) : Matrix{};
    if (which == 4 || !next.isExact()) {
        CGContextSetCTM(c_, {1, 0, 0, 1, by.x, by.y});
        now_.ctm = {1, 0, 0, 1, by.x, by.y};
        return;
    }
    now_.ctm = next;
    if (which == 0)
        CGContextScaleCTM(c_, sx, sy);
    else if (which == 1)
        CGContextTranslateCTM(c_, by.x, by.y);
    else if (which == 2)
        CGContextConcatCTM(c_, turn);
    else
        CGContextRotateCTM(c_, 0);
}

void Program::moveText() {
    const CGPoint to = point();
    if (upTo(2) == 0) {
        text_ = {2, to.x, 1, 3, to.y, 5};
        CGContextSetTextMatrix(c_, {2, to.x, 1, 3, to.y, 5});
    } else {
        text_.tx = to.x;
        text_.ty = to.y;
        CGContextSetTextPosition(c_, to.x, to.y);
    }
}

void Program::save() {
    if (saved_.size() > 20)
        return;
    CGContextSaveGState(c_);
    saved_.push_back(now_);
    now_.isLayers = false;
}

void Program::restore() {
    if (now_.isLayers)
        return;
    CGContextRestoreGState(c_);
    if (saved_.empty())
        return;
    now_ = saved_.back();
    saved_.pop_back();
}

void Program::layer() {
    if (!now_.isLayers && saved_.size() < 20) {
        expected_.insert(expected_.end(), {"prepare", "begin"});
        CGContextBeginTransparencyLayer(c_, nullptr);
        saved_.push_back(now_);
        now_.isLayers = true;
        now_.hasShadow = false;
        now_.shadowOffset = {0, 0};
        now_.shadowBlur = 0;
        now_.numbers[kAlpha] = 1;
        now_.numbers[kBlendMode] = 0;
    } else if (now_.isLayers) {
        CGContextEndTransparencyLayer(c_);
        now_ = saved_.back();
        saved_.pop_back();
        expected_.insert(expected_.end(), {"prepare", "end"});
    }
}

// ---- Paths

// Around its standard corners, from the least.
void Program::addRect(CGRect rect) {
    const Box box = Box::of(rect);
    const auto x = static_cast<CGFloat>(box.minX), y = static_cast<CGFloat>(box.minY);
    const auto right = static_cast<CGFloat>(box.maxX), top = static_cast<CGFloat>(box.maxY);
    if (lastIsMove_)
        path_.pop_back();
    for (const CGPoint corner : {CGPoint{x, y}, {right, y}, {right, top}, {x, top}})
        addPoint(corner);
    lastIsMove_ = false;
}

void Program::build() {
    const CGPoint p[] = {point(), point(), point()};
    const CGRect shape = rect();
    switch (const std::size_t which = upTo(7)) {
    case 0:
        CGContextMoveToPoint(c_, p[0].x, p[0].y);
        if (lastIsMove_)
            path_.pop_back();
        addPoint(p[0]);
        lastIsMove_ = true;
        break;
    case 1:
    case 2:
    case 3:
        if (which == 1)
            CGContextAddLineToPoint(c_, p[0].x, p[0].y);
        else if (which == 2)
            CGContextAddQuadCurveToPoint(c_, p[0].x, p[0].y, p[1].x, p[1].y);
        else
            CGContextAddCurveToPoint(c_, p[0].x, p[0].y, p[1].x, p[1].y, p[2].x, p[2].y);
        if (!path_.empty()) {
            for (std::size_t index = 0; index < which; ++index)
                addPoint(p[index]);
            lastIsMove_ = false;
        }
        break;
    case 4:
        CGContextAddRect(c_, shape);
        addRect(shape);
        break;
    case 5:
        CGContextAddLines(c_, p, 3);
        if (lastIsMove_)
            path_.pop_back();
        for (const CGPoint each : p)
            addPoint(each);
        lastIsMove_ = false;
        break;
    default:
        CGContextBeginPath(c_);
        dropPath();
    }
}

// ---- Painting and clipping

void Program::expectPath(bool fills, bool strokes) {
    if (path_.empty())
        return;
    const bool isOutlined = strokes && !now_.ctm.keepsShapes() && now_.numbers[kLineWidth] != 0;
    expected_.push_back("prepare");
    for (int pass = now_.hasShadow ? 0 : 1; pass < 2; ++pass) {
        const std::string shadow = pass == 0 ? "shadow " : "";
        if (fills)
            expected_.push_back(shadow + (strokes && !isOutlined ? "fill, stroke" : "fill"));
        else if (!isOutlined)
            expected_.push_back(shadow + "stroke");
        if (isOutlined)
            expected_.push_back(shadow + "fill");
    }
    dropPath();
}

void Program::paint() {
    const std::size_t mode = upTo(5);
    CGContextDrawPath(c_, static_cast<CGPathDrawingMode>(mode));
    expectPath(mode != kCGPathStroke, mode >= kCGPathStroke);
}

// Painting shapes of the call's own, which replace the current path.
void Program::paintOneself() {
    const CGRect shape = rect();
    const bool isEmpty = Box::of(shape).isEmpty();
    switch (upTo(4)) {
    case 0:
        CGContextFillRect(c_, shape);
        if (isEmpty)
            break;
        dropPath();
        if (now_.hasShadow) {
            addRect(shape);
            expectPath(true, false);
        } else {
            expected_.push_back("rects");
        }
        break;
    case 1:
        CGContextClearRect(c_, shape);
        if (isEmpty)
            break;
        dropPath();
        expected_.push_back("rects");
        break;
    case 2:
        CGContextStrokeRect(c_, shape);
        dropPath();
        addRect(shape);
        expectPath(false, true);
        break;
    default: {
        const CGPoint ends[] = {point(), point()};
        CGContextStrokeLineSegments(c_, ends, 2);
        dropPath();
        path_.assign(2, {0, 0});
        expectPath(false, true);
    }
    }
}

void Program::clipTo(const Box& box) {
    now_.clip = now_.clip ? now_.clip->with(box) : box;
}

// Once nothing is left of the clip it is mostly taken back.
void Program::clip() {
    if (now_.clip && (now_.clip->isEmpty() || upTo(3) == 0)) {
        CGContextResetClip(c_);
        now_.clip = bounds_;
        return;
    }
    CGRect rects[] = {rect(), rect()};
    const std::size_t which = upTo(4);
    if (which < 2) {
        (which == 0 ? CGContextClip : CGContextEOClip)(c_);
        if (!path_.empty())
            clipTo(Box::of(path_));
        dropPath();
        return;
    }
    dropPath();
    if (which == 2) {
        rects[0] = CGRectInset(CGRectStandardize(rects[0]), -32, -32);
        CGContextClipToRect(c_, rects[0]);
        clipTo(Box::of(rects[0], now_.ctm));
        return;
    }
    CGContextClipToRects(c_, rects, 2);
    for (const CGRect& each : rects) {
        if (Box::of(each).isEmpty())
            continue;
        addRect(each);
    }
    clipTo(path_.empty() ? Box::of(CGRectZero) : Box::of(path_));
    dropPath();
}

// ---- Comparing

void Program::compare() const {
    SCOPED_TRACE("after call " + std::to_string(calls_));
    for (std::size_t index = 0; index < std::size(kSettings); ++index) {
        const double value = kSettings[index].get(c_), expected = now_.numbers[index];
        EXPECT_TRUE(value == expected || (std::isnan(value) && std::isnan(expected)))
            << kSettings[index].what << ' ' << value << " not " << expected;
    }
    const XGGStateRef state = c_->state.get();
    EXPECT_TRUE(Color::of(XGGStateGetFillColor(state)) == now_.fill) << "fill colour";
    EXPECT_TRUE(Color::of(XGGStateGetStrokeColor(state)) == now_.stroke) << "stroke colour";
    EXPECT_EQ(XGGStateHasShadow(state), now_.hasShadow);
    EXPECT_TRUE(CGSizeEqualToSize(XGGStateGetShadowOffset(state), now_.shadowOffset));
    EXPECT_EQ(XGGStateGetShadowBlur(state), now_.shadowBlur);
    EXPECT_TRUE(CGSizeEqualToSize(XGGStateGetPatternPhase(state), now_.phase));
    EXPECT_EQ(CGContextGetLineDashCount(c_), now_.dash.size());

    const auto equal = [](CGAffineTransform m, const Matrix& n) {
        return m.a == n.a && m.b == n.b && m.c == n.c && m.d == n.d && m.tx == n.tx && m.ty == n.ty;
    };
    EXPECT_TRUE(equal(CGContextGetCTM(c_), now_.ctm)) << "CTM";
    EXPECT_TRUE(equal(CGContextGetTextMatrix(c_), text_)) << "text matrix";

    const Matrix inverse = now_.ctm.inverse();
    const CGRect clip = CGContextGetClipBoundingBox(c_);
    const CGRect expectedClip = now_.clip ? Box::of(now_.clip->rect(), inverse).rect() : CGRectZero;
    if (now_.clip && now_.clip->isEmpty())
        EXPECT_TRUE(CGRectIsEmpty(clip)) << "clip";
    else
        EXPECT_TRUE(CGRectEqualToRect(clip, expectedClip)) << "clip";

    ASSERT_EQ(CGContextIsPathEmpty(c_), path_.empty());
    const CGRect box = CGContextGetPathBoundingBox(c_);
    const CGPoint current = CGContextGetPathCurrentPoint(c_);
    if (path_.empty()) {
        EXPECT_TRUE(CGRectIsNull(box) && std::isinf(current.x));
    } else {
        EXPECT_TRUE(CGRectEqualToRect(box, Box::of(path_, inverse).rect())) << "path";
        EXPECT_TRUE(CGPointEqualToPoint(current, inverse.map(path_.back().x, path_.back().y)))
            << "current point";
    }
}

// "shadow fill, stroke" of the recorded call.
std::string kindOf(const std::string& text) {
    const bool isShadow = text.starts_with("shadow ");
    const std::string rest = isShadow ? text.substr(7) : text;
    const bool isBoth = rest.find(", stroke ") != std::string::npos;
    return (isShadow ? "shadow " : "") + rest.substr(0, rest.find(' ')) +
           (isBoth ? ", stroke" : "");
}

TEST(ContextModel, AgreesWithEveryCallOfALongProgram) {
    constexpr std::size_t kCalls = 120000;
    const CollectedLog log; // Restores without saves and lines without a start.
    test::RecordingBackend backend;
    Program program(backend.context(), std::nullopt, 4711);
    while (program.calls() < kCalls && !HasFailure()) {
        program.step();
        program.compare();
        std::vector<std::string> kinds;
        for (const std::string& call : backend.takeCalls())
            kinds.push_back(kindOf(call));
        ASSERT_EQ(kinds, program.takeExpected()) << "after call " << program.calls();
    }
}

TEST(ContextModel, AgreesOnABitmap) {
    constexpr std::size_t kCalls = 20000;
    const CollectedLog log;
    const test::Context context = test::makeContext(48, 32);
    Program program(context.get(), Box{0, 0, 48, 32}, 815);
    while (program.calls() < kCalls && !HasFailure()) {
        program.step();
        program.compare();
    }
}

} // namespace
