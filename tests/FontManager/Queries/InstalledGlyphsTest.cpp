// InstalledGlyphsTest.cpp: outlines, boxes and kerning of the machine's fonts, beside HarfBuzz's
// drawing, Skia's bounds, and the fonts' own tables.

#include "QueriedFont.h"

#include <gtest/gtest.h>
#include <hb-ot.h>

#include <cmath>

using namespace test;

namespace {

// A drawing's signed area, which does not depend on where contours start or how curves are cut.
struct Area {
    double twice = 0;
    int curves[4] = {}; // By degree.
    CGPoint start = {};
    CGPoint current = {};

    void lineTo(CGPoint to) {
        twice += double{current.x} * to.y - double{to.x} * current.y;
        current = to;
    }
    // Curves as lines fine enough: the share that is lost goes with the square of their number.
    void curveTo(std::initializer_list<CGPoint> points) {
        constexpr int kSteps = 64;
        const CGPoint from = current;
        ++curves[points.size()];
        for (int step = 1; step <= kSteps; ++step) {
            CGPoint p[4] = {from};
            std::copy(points.begin(), points.end(), p + 1);
            const float t = static_cast<float>(step) / kSteps;
            for (size_t degree = points.size(); degree > 0; --degree)
                for (size_t i = 0; i < degree; ++i)
                    p[i] = {p[i].x + (p[i + 1].x - p[i].x) * t, p[i].y + (p[i + 1].y - p[i].y) * t};
            lineTo(p[0]);
        }
    }
    void moveTo(CGPoint to) { start = current = to; }
    void close() { lineTo(start); }
};

Area areaOfPath(CGPathRef path) {
    Area area;
    CGPathApply(path, &area, [](void* info, const CGPathElement* element) {
        Area& area = *static_cast<Area*>(info);
        const CGPoint* const p = element->points;
        switch (element->type) {
        case kCGPathElementMoveToPoint:
            return area.moveTo(p[0]);
        case kCGPathElementAddLineToPoint:
            return area.lineTo(p[0]);
        case kCGPathElementAddQuadCurveToPoint:
            return area.curveTo({p[0], p[1]});
        case kCGPathElementAddCurveToPoint:
            return area.curveTo({p[0], p[1], p[2]});
        case kCGPathElementCloseSubpath:
            return area.close();
        }
    });
    return area;
}

// FreeType rounds a composite's scaled parts to whole units, which moves edges by half a unit; all
// else is exact but for the arithmetic.
double allowance(FT_Face face, CGGlyph glyph, CGPathRef path) {
    const CGRect box = CGPathGetBoundingBox(path);
    if (CGPathIsEmpty(path))
        return 0;
    FT_Load_Glyph(face, glyph, FT_LOAD_NO_SCALE | FT_LOAD_NO_RECURSE);
    if (face->glyph->format == FT_GLYPH_FORMAT_COMPOSITE)
        return 2 * double{box.size.width + box.size.height};
    const double reach = std::max(std::abs(CGRectGetMinX(box)) + box.size.width,
                                  std::abs(CGRectGetMinY(box)) + box.size.height);
    return 1e-5 * reach * reach;
}

hb_draw_funcs_t* makeAreaFunctions() {
    hb_draw_funcs_t* const functions = hb_draw_funcs_create();
    hb_draw_funcs_set_move_to_func(
        functions,
        [](hb_draw_funcs_t*, void* area, hb_draw_state_t*, float x, float y, void*) {
            static_cast<Area*>(area)->moveTo({x, y});
        },
        nullptr, nullptr);
    hb_draw_funcs_set_line_to_func(
        functions,
        [](hb_draw_funcs_t*, void* area, hb_draw_state_t*, float x, float y, void*) {
            static_cast<Area*>(area)->lineTo({x, y});
        },
        nullptr, nullptr);
    hb_draw_funcs_set_quadratic_to_func(
        functions,
        [](hb_draw_funcs_t*, void* area, hb_draw_state_t*, float cx, float cy, float x, float y,
           void*) {
            static_cast<Area*>(area)->curveTo({{cx, cy}, {x, y}});
        },
        nullptr, nullptr);
    hb_draw_funcs_set_cubic_to_func(
        functions,
        [](hb_draw_funcs_t*, void* area, hb_draw_state_t*, float c1x, float c1y, float c2x,
           float c2y, float x, float y, void*) {
            static_cast<Area*>(area)->curveTo({{c1x, c1y}, {c2x, c2y}, {x, y}});
        },
        nullptr, nullptr);
    hb_draw_funcs_set_close_path_func(
        functions,
        [](hb_draw_funcs_t*, void* area, hb_draw_state_t*, void*) {
            static_cast<Area*>(area)->close();
        },
        nullptr, nullptr);
    return functions;
}

} // namespace

TEST(InstalledGlyphs, EncloseTheAreaThatHarfBuzzDraws) {
    std::printf("at most 150 glyphs of a face, evenly spread\n");
    hb_draw_funcs_t* const functions = makeAreaFunctions();
    long compared = 0;
    for (const InstalledFace& face : installedFaces()) {
        const auto font = openFont(face);
        const auto native = face.openFreeType();
        const auto harfBuzz = face.openHarfBuzz();
        if (FMFontGetAvailableTablesCount(font.get()) == 0)
            continue; // Not what HarfBuzz reads.
        hb_font_t* const scaled = hb_font_create(harfBuzz.get());
        for (const CGGlyph glyph : sampledGlyphs(FMFontGetNumberOfGlyphs(font.get()), 150)) {
            const auto path = cf::adopt(FMFontCopyPathForGlyph(font.get(), glyph));
            if (!path)
                continue; // A bitmap: see BitmapFonts.
            Area expected;
            hb_font_get_glyph_shape(scaled, glyph, functions, &expected);
            const Area area = areaOfPath(path.get());
            ASSERT_NEAR(area.twice, expected.twice, allowance(native.get(), glyph, path.get()))
                << face.what() << " " << glyph;
            EXPECT_EQ(area.curves[2], expected.curves[2]) << face.what() << " " << glyph;
            EXPECT_EQ(area.curves[3], expected.curves[3]) << face.what() << " " << glyph;
            ++compared;
        }
        hb_font_destroy(scaled);
    }
    hb_draw_funcs_destroy(functions);
    EXPECT_GT(compared, 10000);
}

TEST(InstalledGlyphs, HaveTheBoundsOfTheirOutlines) {
    std::printf("at most 150 glyphs of a face, evenly spread\n");
    for (const InstalledFace& face : installedFaces()) {
        const auto font = openFont(face);
        const auto glyphs = sampledGlyphs(FMFontGetNumberOfGlyphs(font.get()), 150);
        std::vector<CGRect> rects(glyphs.size());
        ASSERT_TRUE(FMFontGetBoundingRectsForGlyphs(font.get(), glyphs.data(), rects.data(),
                                                    glyphs.size()));
        for (size_t i = 0; i < glyphs.size(); ++i) {
            const auto path = cf::adopt(FMFontCopyPathForGlyph(font.get(), glyphs[i]));
            if (!path)
                continue;
            const CGRect expected =
                CGPathIsEmpty(path.get()) ? CGRectZero : CGPathGetPathBoundingBox(path.get());
            const CGRect& rect = rects[i];
            constexpr float kSlack = 1.0f / 16;
            const bool isNear = std::abs(CGRectGetMinX(rect) - CGRectGetMinX(expected)) <= kSlack &&
                                std::abs(CGRectGetMinY(rect) - CGRectGetMinY(expected)) <= kSlack &&
                                std::abs(CGRectGetMaxX(rect) - CGRectGetMaxX(expected)) <= kSlack &&
                                std::abs(CGRectGetMaxY(rect) - CGRectGetMaxY(expected)) <= kSlack;
            ASSERT_TRUE(isNear) << face.what() << " " << glyphs[i] << ": " << rect.origin.x << " "
                                << rect.origin.y << " " << rect.size.width << " "
                                << rect.size.height << " for " << expected.origin.x << " "
                                << expected.origin.y << " " << expected.size.width << " "
                                << expected.size.height;
        }
    }
}

// Pairs straight from the first subtable, where it is the usual sorted list.
TEST(InstalledGlyphs, KernAsTheirTableSays) {
    int kerned = 0;
    for (const InstalledFace& face : installedFaces()) {
        const auto font = openFont(face);
        const auto table = cf::adopt(FMFontCopyTable(font.get(), HB_TAG('k', 'e', 'r', 'n')));
        if (!table)
            continue;
        const UInt8* const bytes = CFDataGetBytePtr(table.get());
        const auto word = [&](CFIndex at) {
            return static_cast<uint16_t>(bytes[at] << 8 | bytes[at + 1]);
        };
        const bool isPlain = word(0) == 0 && word(2) == 1 && word(8) == 0x0001;
        const CFIndex pairs = word(10);
        if (!isPlain || CFDataGetLength(table.get()) < 18 + pairs * 6)
            continue;
        for (CFIndex i = 0; i < pairs; i += 1 + pairs / 1000) {
            const CFIndex at = 18 + i * 6;
            ASSERT_EQ(FMFontGetKerningForGlyph(font.get(), word(at), word(at + 2)),
                      static_cast<int16_t>(word(at + 4)))
                << face.what() << " " << i;
        }
        kerned += pairs > 0;
    }
    std::printf("%d faces with kerning\n", kerned);
    EXPECT_GT(kerned, 5);
}

// Unifont's characters are 8 or 16 pixels wide in an em of 16; emoji have metrics in font units
// but pictures in pixels.
TEST(BitmapFonts, AreMeasuredInTheirOwnUnits) {
    const char* const unifont = "/usr/share/fonts/X11/misc/unifont.pcf.gz";
    const char* const emoji = "/usr/share/fonts/truetype/noto/NotoColorEmoji.ttf";
    const struct {
        const char* what;
        const char* path;
        UTF32Char codePoint;
        CGFloat advance;
        CGRect atLeast; // In units: what the picture covers, and what it stays within.
        CGRect atMost;
    } cases[] = {
        {"half width", unifont, 'M', 8, {{1, 0}, {6, 10}}, {{0, -2}, {8, 16}}},
        {"full width", unifont, 0x4E00, 16, {{2, 5}, {12, 1}}, {{0, -2}, {16, 16}}},
        {"space", unifont, ' ', 8, CGRectZero, {{0, -2}, {8, 16}}},
        {"emoji", emoji, 0x1F600, 2550, {{200, 0}, {2000, 1700}}, {{0, -600}, {2560, 2560}}},
    };
    for (const auto& [what, path, codePoint, advance, atLeast, atMost] : cases) {
        const auto font = openFont(path);
        CGGlyph glyph = 0;
        ASSERT_TRUE(FMFontGetGlyphsForCodePoints(font.get(), &codePoint, &glyph, 1)) << what;
        CGSize size;
        CGRect rect;
        ASSERT_TRUE(FMFontGetAdvancesForGlyphs(font.get(), &glyph, &size, 1)) << what;
        ASSERT_TRUE(FMFontGetBoundingRectsForGlyphs(font.get(), &glyph, &rect, 1)) << what;
        EXPECT_EQ(size.width, advance) << what;
        EXPECT_TRUE(CGRectContainsRect(rect, atLeast) || CGRectIsEmpty(atLeast))
            << what << ": " << rect.origin.x << " " << rect.origin.y << " " << rect.size.width
            << " " << rect.size.height;
        EXPECT_TRUE(CGRectContainsRect(atMost, rect))
            << what << ": " << rect.origin.x << " " << rect.origin.y << " " << rect.size.width
            << " " << rect.size.height;
        EXPECT_EQ(FMFontCopyPathForGlyph(font.get(), glyph), nullptr) << what;
    }
}
