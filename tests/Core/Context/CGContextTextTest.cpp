// CGContextTextTest.cpp: where glyphs go, what they put down, and how the text position moves.

#include "XGContext.h"
#include <CoreGraphics/CoreGraphics.h>

#include "Support/Fonts.h"
#include "Support/RecordingBackend.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

using test::RecordingBackend;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

// In the font of these tests a monospaced glyph advances by 1229 of 2048 units: 6 at this size.
constexpr CGFloat kSize = 6 * 2048.f / 1229;
constexpr CGGlyph kGlyphs[] = {36, 37, 38};

void setUp(CGContextRef context) {
    static const test::Font font = test::makeFont(test::kMonospacedFont);
    CGContextSetFont(context, font.get());
    CGContextSetFontSize(context, kSize);
    CGContextSetTextPosition(context, 10, 20);
}

std::string shown(CGContextRef context) {
    const CGPoint at = CGContextGetTextPosition(context);
    return std::to_string(static_cast<int>(std::lround(at.x * 100))) + " " +
           std::to_string(static_cast<int>(std::lround(at.y * 100)));
}

} // namespace

TEST(ContextText, PlacesGlyphsAndMovesThePosition) {
    const struct {
        const char* what;
        void (*show)(CGContextRef context);
        const char* call;     // Its beginning.
        const char* position; // In hundredths.
    } cases[] = {
        {"by advances", [](CGContextRef c) { CGContextShowGlyphs(c, kGlyphs, 3); },
         "text 36 at 10 20, 37 at 16 20, 38 at 22 20 size ", "2800 2000"},
        {"with spacing",
         [](CGContextRef c) {
             CGContextSetCharacterSpacing(c, 1.5f);
             CGContextShowGlyphs(c, kGlyphs, 3);
         },
         "text 36 at 10 20, 37 at 17.5 20, 38 at 25 20 size ", "3250 2000"},
        {"under a text matrix",
         [](CGContextRef c) {
             CGContextSetTextMatrix(c, {0, 2, -2, 0, 1, 2});
             CGContextShowGlyphs(c, kGlyphs, 3);
         },
         "text 36 at 1 2, 37 at 1 14, 38 at 1 26 size ", "100 3800"},
        {"at a point", [](CGContextRef c) { CGContextShowGlyphsAtPoint(c, 3, 4, kGlyphs, 2); },
         "text 36 at 3 4, 37 at 9 4 size ", "1500 400"},
        {"at positions, which the text matrix maps",
         [](CGContextRef c) {
             constexpr CGPoint kAt[] = {{0, 0}, {5, 7}};
             CGContextSetTextMatrix(c, {1, 0, 0, -1, 10, 20});
             CGContextShowGlyphsAtPositions(c, kGlyphs, kAt, 2);
         },
         "text 36 at 10 20, 37 at 15 13 size ", "1000 2000"},
        {"with advances in user space, whatever the text matrix",
         [](CGContextRef c) {
             constexpr CGSize kBy[] = {{4, 1}, {5, -3}};
             CGContextSetTextMatrix(c, {3, 0, 0, 3, 10, 20});
             CGContextShowGlyphsWithAdvances(c, kGlyphs, kBy, 2);
         },
         "text 36 at 10 20, 37 at 14 21 size ", "1900 1800"},
        {"text in Mac Roman", [](CGContextRef c) { CGContextShowText(c, "AB", 2); },
         "text 36 at 10 20, 37 at 16 20 size ", "2200 2000"},
        {"text at a point", [](CGContextRef c) { CGContextShowTextAtPoint(c, 1, 1, "C", 1); },
         "text 38 at 1 1 size ", "700 100"},
    };
    for (const auto& [what, show, call, position] : cases) {
        RecordingBackend backend;
        setUp(backend.context());
        show(backend.context());
        EXPECT_THAT(backend.takeCalls(), ElementsAre("prepare", StartsWith(call))) << what;
        EXPECT_EQ(shown(backend.context()), position) << what;
    }
}

TEST(ContextText, ThatIsInvisibleMovesByAdvancesAlone) {
    RecordingBackend backend;
    setUp(backend.context());
    CGContextSetTextDrawingMode(backend.context(), kCGTextInvisible);
    CGContextSetTextMatrix(backend.context(), {2, 0, 0, 2, 10, 20});
    CGContextSetCharacterSpacing(backend.context(), 5);
    CGContextShowGlyphs(backend.context(), kGlyphs, 3);
    EXPECT_THAT(backend.takeCalls(), IsEmpty());
    EXPECT_EQ(shown(backend.context()), "4600 2000");
}

TEST(ContextText, OutlivesSavesAndRestores) {
    RecordingBackend backend;
    setUp(backend.context());
    CGContextSaveGState(backend.context());
    CGContextShowGlyphs(backend.context(), kGlyphs, 1);
    CGContextRestoreGState(backend.context());
    EXPECT_EQ(shown(backend.context()), "1600 2000");
}

TEST(ContextText, FillsStrokesAndCastsOneShadow) {
    const struct {
        CGTextDrawingMode mode;
        std::vector<std::string> marks;
    } cases[] = {
        {kCGTextFill, {"text "}},
        {kCGTextStroke, {"stroke "}},
        {kCGTextFillStroke, {"text ", "stroke "}},
        {kCGTextFillClip, {"text "}},
        {kCGTextStrokeClip, {"stroke "}},
        {kCGTextFillStrokeClip, {"text ", "stroke "}},
        {kCGTextClip, {}},
    };
    for (const auto& [mode, marks] : cases) {
        SCOPED_TRACE(mode);
        RecordingBackend backend;
        setUp(backend.context());
        CGContextSetShadow(backend.context(), {1, 1}, 2);
        CGContextSetTextDrawingMode(backend.context(), mode);
        CGContextShowGlyphs(backend.context(), kGlyphs, 3);
        std::vector<testing::Matcher<std::string>> expected;
        if (!marks.empty())
            expected.push_back(StartsWith("prepare"));
        for (const std::string& mark : marks)
            expected.push_back(StartsWith("shadow " + mark));
        for (const std::string& mark : marks)
            expected.push_back(StartsWith(mark));
        EXPECT_THAT(backend.takeCalls(), testing::ElementsAreArray(expected));
        const bool clips = mode >= kCGTextFillClip;
        EXPECT_EQ(XGGStateGetClipping(backend.state()) != nullptr, clips);
        EXPECT_EQ(shown(backend.context()), "2800 2000");
    }
}

TEST(ContextText, ClipsToAllRunsUntilSomethingElseIsDrawn) {
    const struct {
        const char* what;
        void (*between)(CGContextRef context);
        CGFloat left, right; // Of the clip's bounds, to a few units.
    } cases[] = {
        {"nothing", [](CGContextRef) {}, 10, 28},
        {"a moved position", [](CGContextRef c) { CGContextSetTextPosition(c, 40, 20); }, 10, 46},
        {"a mark", [](CGContextRef c) { CGContextFillRect(c, CGRectMake(0, 0, 1, 1)); }, 0, 0},
        {"another clip", [](CGContextRef c) { CGContextClipToRect(c, CGRectMake(0, 0, 15, 99)); },
         0, 0},
    };
    for (const auto& [what, between, left, right] : cases) {
        RecordingBackend backend;
        setUp(backend.context());
        CGContextSetTextDrawingMode(backend.context(), kCGTextClip);
        CGContextShowGlyphs(backend.context(), kGlyphs, 2);
        between(backend.context());
        CGContextShowGlyphs(backend.context(), kGlyphs + 2, 1);
        const CGRect clip = CGContextGetClipBoundingBox(backend.context());
        EXPECT_NEAR(CGRectGetMinX(clip), left, 1) << what;
        EXPECT_NEAR(CGRectGetMaxX(clip), right, 1) << what;
    }
}

TEST(ContextText, WithoutInkClipsAllAway) {
    RecordingBackend backend;
    setUp(backend.context());
    CGContextSetTextDrawingMode(backend.context(), kCGTextClip);
    CGContextShowText(backend.context(), "  ", 2);
    EXPECT_TRUE(XGClippingIsEmpty(XGGStateGetClipping(backend.state())));
    CGContextShowText(backend.context(), "A", 1); // One more of the same clip.
    EXPECT_FALSE(XGClippingIsEmpty(XGGStateGetClipping(backend.state())));
}

TEST(ContextText, OfNothingDrawsNothing) {
    constexpr CGFloat kNaN = std::numeric_limits<CGFloat>::quiet_NaN();
    const struct {
        const char* what;
        void (*show)(CGContextRef context);
    } cases[] = {
        {"no glyphs", [](CGContextRef c) { CGContextShowGlyphs(c, kGlyphs, 0); }},
        {"no array", [](CGContextRef c) { CGContextShowGlyphs(c, nullptr, 3); }},
        {"no positions",
         [](CGContextRef c) { CGContextShowGlyphsAtPositions(c, kGlyphs, nullptr, 3); }},
        {"no bytes", [](CGContextRef c) { CGContextShowText(c, nullptr, 3); }},
        {"no font",
         [](CGContextRef c) {
             CGContextSetFont(c, nullptr);
             CGContextShowGlyphs(c, kGlyphs, 3);
         }},
        {"a negative size",
         [](CGContextRef c) {
             CGContextSetFontSize(c, -4);
             CGContextShowGlyphs(c, kGlyphs, 3);
         }},
        {"no such mode",
         [](CGContextRef c) {
             CGContextSetTextDrawingMode(c, CGTextDrawingMode(99));
             CGContextShowGlyphs(c, kGlyphs, 3);
         }},
        {"strokes without a place",
         [](CGContextRef c) {
             CGContextSetTextDrawingMode(c, kCGTextStroke);
             CGContextShowGlyphsAtPoint(c, kNaN, 0, kGlyphs, 3);
         }},
    };
    for (const auto& [what, show] : cases) {
        RecordingBackend backend;
        setUp(backend.context());
        show(backend.context());
        EXPECT_THAT(backend.takeCalls(), testing::Each("prepare")) << what;
    }
}

TEST(ContextText, SelectsFontsByName) {
    RecordingBackend backend;
    const CGContextRef context = backend.context();
    CGContextSelectFont(context, "DejaVu Sans", 12, kCGEncodingMacRoman);
    const CGFontRef font = CGContextGetFont(context);
    ASSERT_TRUE(font);
    CGContextSelectFont(context, "No such family at all", -3, kCGEncodingMacRoman);
    EXPECT_EQ(CGContextGetFont(context), font);
    EXPECT_EQ(XGGStateGetFontSize(backend.state()), 0);
    CGContextSetFontSize(context, 9);
    CGContextSelectFont(context, "", 5, kCGEncodingMacRoman);
    EXPECT_EQ(XGGStateGetFontSize(backend.state()), 9);

    // A with diaeresis, in Mac Roman and in Latin 1, the bytes of a Unicode font.
    const std::vector<CGGlyph> glyphs = test::glyphsOf(font, u"\u00C4");
    const std::string wanted = "text " + std::to_string(glyphs[0]) + " at";
    CGContextShowText(context, "\x80", 1);
    EXPECT_THAT(backend.takeCalls(), testing::Contains(StartsWith(wanted)));
    CGContextSelectFont(context, "DejaVu Sans", 12, kCGEncodingFontSpecific);
    CGContextShowText(context, "\xC4", 1);
    EXPECT_THAT(backend.takeCalls(), testing::Contains(StartsWith(wanted)));
}
