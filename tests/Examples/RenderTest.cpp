// RenderTest.cpp: drawings whose pixels follow from the SVG standard, looked at one by one.

#include "ExpectPixels.h"

namespace {

using namespace test;

TEST(Render, PutsTheFirstRowOnTop) {
    expectAll({
        {"y runs down",
         "<rect width='40' height='10' fill='red'/>",
         {{5, 5, kRed}, {5, 15, kClear}}},
        {"later over earlier",
         "<rect width='20' height='20' fill='red'/><rect width='20' height='20' fill='lime'/>",
         {{10, 10, kLime}}},
        {"fill before stroke",
         "<rect x='10' y='10' width='20' height='20' fill='red' stroke='lime' stroke-width='8'/>",
         {{12, 20, kLime}, {20, 20, kRed}, {7, 20, kLime}}},
        {"stroke before fill",
         "<rect x='10' y='10' width='20' height='20' fill='red' stroke='lime' stroke-width='8' "
         "paint-order='stroke'/>",
         {{12, 20, kRed}, {7, 20, kLime}}},
    });
}

TEST(Render, GroupOpacityCountsOnce) {
    expectAll({
        {"overlap in a group",
         "<g opacity='.5'><rect width='20' height='20'/><rect x='10' width='20' height='20'/></g>",
         {{5, 5, 0x80000000}, {15, 5, 0x80000000}, {25, 5, 0x80000000}}},
        {"overlap of two",
         "<rect width='20' height='20' opacity='.5'/><rect width='20' height='20' opacity='.5'/>",
         {{5, 5, 0xC0000000}}},
        {"fill and stroke of one shape",
         "<rect x='10' y='10' width='20' height='20' stroke='black' stroke-width='8' "
         "opacity='.5'/>",
         {{12, 20, 0x80000000}, {20, 20, 0x80000000}}},
        {"groups in groups",
         "<g opacity='.5'><g opacity='.5'><rect width='40' height='40'/></g></g>",
         {{20, 20, 0x40000000}}},
        {"none at all", "<g opacity='0'><rect width='40' height='40'/></g>", {{20, 20, kClear}}},
    });
}

TEST(Render, BlendsGroupsAsCssNamesIt) {
    expectAll({
        {"multiply",
         "<rect width='40' height='40' fill='yellow'/>"
         "<rect width='40' height='40' fill='aqua' style='mix-blend-mode:multiply'/>",
         {{20, 20, kLime}}},
        {"difference",
         "<rect width='40' height='40' fill='yellow'/>"
         "<g style='mix-blend-mode:difference'><rect width='40' height='40' fill='lime'/></g>",
         {{20, 20, kRed}}},
        {"an isolated group does not blend with what lies under it",
         "<rect width='40' height='40' fill='yellow'/><g style='isolation:isolate'>"
         "<rect width='40' height='40' fill='blue' style='mix-blend-mode:multiply'/></g>",
         {{20, 20, kBlue}}},
    });
}

TEST(Render, ClipsToTheUnionOfAClipPathsShapes) {
    expectAll({
        {"one shape",
         "<clipPath id='c'><rect width='20' height='40'/></clipPath>"
         "<rect width='40' height='40' fill='red' clip-path='url(#c)'/>",
         {{10, 20, kRed}, {30, 20, kClear}}},
        {"two that overlap, wound against each other",
         "<clipPath id='c'><path d='M0 0h30v20h-30z'/><path d='M10 10v30h30v-30z'/></clipPath>"
         "<rect width='40' height='40' fill='red' clip-path='url(#c)'/>",
         {{5, 5, kRed}, {20, 15, kRed}, {35, 35, kRed}, {5, 35, kClear}, {35, 5, kClear}}},
        {"a hole by the even-odd rule",
         "<clipPath id='c'><path d='M0 0h40v40h-40zM10 10h20v20h-20z' clip-rule='evenodd'/>"
         "</clipPath><rect width='40' height='40' fill='red' clip-path='url(#c)'/>",
         {{5, 5, kRed}, {20, 20, kClear}}},
        {"in parts of the bounding box, which strokes do not widen",
         "<clipPath id='c' clipPathUnits='objectBoundingBox'><rect width='.5' height='1'/>"
         "</clipPath><g clip-path='url(#c)'><rect x='10' y='10' width='20' height='20' fill='red' "
         "stroke='lime' stroke-width='4'/></g>",
         {{15, 20, kRed}, {25, 20, kClear}, {9, 20, kClear}}},
        {"clipped itself",
         "<clipPath id='c' clip-path='url(#d)'><rect width='20' height='40'/></clipPath>"
         "<clipPath id='d'><rect width='40' height='20'/></clipPath>"
         "<rect width='40' height='40' fill='red' clip-path='url(#c)'/>",
         {{10, 10, kRed}, {30, 10, kClear}, {10, 30, kClear}}},
        {"with a child that is clipped",
         "<clipPath id='c'><rect width='20' height='40' clip-path='url(#d)'/></clipPath>"
         "<clipPath id='d'><rect width='40' height='20'/></clipPath>"
         "<rect width='40' height='40' fill='red' clip-path='url(#c)'/>",
         {{10, 10, kRed}, {30, 10, kClear}, {10, 30, kClear}}},
        {"on a group inside a group that the same one clips",
         "<clipPath id='c'><rect width='20' height='40'/><rect width='40' height='5'/></clipPath>"
         "<g clip-path='url(#c)'><g clip-path='url(#c)'><rect width='40' height='40' fill='red'/>"
         "</g></g>",
         {{10, 20, kRed}, {30, 2, kRed}, {30, 20, kClear}}},
        {"without shapes: nothing is left",
         "<clipPath id='c'/><rect width='40' height='40' clip-path='url(#c)'/>",
         {{20, 20, kClear}}},
        {"a hidden shape does not count",
         "<clipPath id='c'><rect width='40' height='40' visibility='hidden'/></clipPath>"
         "<rect width='40' height='40' clip-path='url(#c)'/>",
         {{20, 20, kClear}}},
        {"one that does not exist: everything is left",
         "<rect width='40' height='40' fill='red' clip-path='url(#no)'/>",
         {{20, 20, kRed}}},
        {"one that needs itself is left out",
         "<clipPath id='c'><rect width='20' height='40' clip-path='url(#c)'/></clipPath>"
         "<rect width='40' height='40' fill='red' clip-path='url(#c)'/>",
         {{10, 20, kRed}, {30, 20, kClear}}},
        {"a mask does not reach beyond its group",
         "<clipPath id='c'><rect width='9' height='9'/><rect x='31' width='9' "
         "height='9'/></clipPath>"
         "<rect width='40' height='40' fill='lime'/>"
         "<rect width='40' height='40' fill='red' clip-path='url(#c)'/>",
         {{4, 4, kRed}, {35, 4, kRed}, {20, 20, kLime}}},
    });
}

TEST(Render, StrokesWhatTheStandardSays) {
    expectAll({
        {"a point with square caps",
         "<path d='M20 20h0' stroke='red' stroke-width='20' stroke-linecap='square'/>",
         {{12, 12, kRed}, {20, 20, kRed}, {5, 20, kClear}}},
        {"a point with butt caps",
         "<path d='M20 20h0' stroke='red' stroke-width='20'/>",
         {{20, 20, kClear}}},
        {"a width that no transform changes",
         "<g transform='scale(4 1)'><path d='M5 0v40' stroke='red' stroke-width='4' "
         "vector-effect='non-scaling-stroke'/></g>",
         {{20, 20, kRed}, {17, 20, kClear}, {23, 20, kClear}}},
        {"a width that follows the transform",
         "<g transform='scale(4 1)'><path d='M5 0v40' stroke='red' stroke-width='4'/></g>",
         {{13, 20, kRed}, {26, 20, kRed}, {10, 20, kClear}}},
        {"a width in parts of the viewport",
         "<path d='M0 20h40' stroke='red' stroke-width='50%'/>",
         {{20, 11, kRed}, {20, 28, kRed}, {20, 8, kClear}}},
        {"an odd list of dashes is repeated",
         "<path d='M0 20h40' stroke='red' stroke-width='10' stroke-dasharray='10 5 5'/>",
         {{5, 20, kRed},
          {12, 20, kClear},
          {17, 20, kRed},
          {25, 20, kClear},
          {32, 20, kRed},
          {37, 20, kClear}}},
        {"a negative dash makes the line solid",
         "<path d='M0 20h40' stroke='red' stroke-width='10' stroke-dasharray='10 -5'/>",
         {{12, 20, kRed}}},
    });
}

TEST(Render, ResolvesUses) {
    expectAll({
        {"moved, with the style of the use",
         "<defs><rect id='r' width='10' height='10'/></defs><use href='#r' x='20' y='10' "
         "fill='red'/>",
         {{25, 15, kRed}, {5, 5, kClear}}},
        {"a symbol is drawn by uses alone, and clipped",
         "<symbol id='s' viewBox='0 0 10 10'><rect x='-9' width='19' height='10' fill='red'/>"
         "</symbol><use href='#s' x='20' y='20' width='10' height='10'/>",
         {{5, 5, kClear}, {25, 25, kRed}, {15, 25, kClear}}},
        {"one that contains itself is left out",
         "<g id='g'><rect width='10' height='10' fill='red'/><use href='#g' x='20'/></g>",
         {{5, 5, kRed}, {25, 5, kClear}}},
        {"two that contain each other",
         "<g id='a'><rect width='9' height='9'/><use href='#b' x='10'/></g>"
         "<g id='b'><rect width='9' height='9' fill='red'/><use href='#a' y='20'/></g>",
         {{5, 5, kRed}, {15, 5, kRed}, {5, 25, kBlack}}},
        {"nothing at the end of the link",
         "<use href='#none'/><use href='http://x/y#z'/><use/>",
         {{20, 20, kClear}}},
    });
}

TEST(Render, PaintsGradients) {
    const std::string edges = "<stop offset='.5' stop-color='red'/><stop offset='.5' "
                              "stop-color='lime'/>";
    const std::string gradient = "<linearGradient id='g'>" + edges + "</linearGradient>";
    const auto draw = [&](const char* what, const std::string& rest,
                          std::initializer_list<std::pair<std::size_t, std::uint32_t>> columns) {
        for (const auto& [x, pixel] : columns)
            expectPixels(what, gradient + rest, {{x, 20, pixel}});
    };
    const std::string whole = "<rect width='40' height='40' ";
    draw("across the box", whole + "fill='url(#g)'/>", {{10, kRed}, {30, kLime}});
    draw("in user space",
         "<linearGradient id='u' href='#g' gradientUnits='userSpaceOnUse' x2='20'/>" + whole +
             "fill='url(#u)'/>",
         {{5, kRed}, {15, kLime}, {30, kLime}});
    draw("turned around",
         "<linearGradient id='t' href='#g' gradientTransform='translate(1) scale(-1 1)'/>" + whole +
             "fill='url(#t)'/>",
         {{10, kLime}, {30, kRed}});
    draw("repeated",
         "<linearGradient id='r' href='#g' x2='.5' spreadMethod='repeat'/>" + whole +
             "fill='url(#r)'/>",
         {{5, kRed}, {15, kLime}, {25, kRed}, {35, kLime}});
    draw("reflected",
         "<linearGradient id='f' href='#g' x2='.5' spreadMethod='reflect'/>" + whole +
             "fill='url(#f)'/>",
         {{5, kRed}, {15, kLime}, {25, kLime}, {35, kRed}});
    draw("radial", "<radialGradient id='c' href='#g'/>" + whole + "fill='url(#c)'/>",
         {{2, kLime}, {15, kRed}, {25, kRed}, {38, kLime}});
    draw("stroked", "<path d='M0 10V30M40 10V30' stroke-width='20' stroke='url(#g)'/>",
         {{5, kRed}, {20, kClear}, {35, kLime}});
    draw("no length: the last stop",
         "<linearGradient id='n' href='#g' x2='0'/>" + whole + "fill='url(#n)'/>", {{5, kLime}});
    draw("one stop is a plain colour",
         "<linearGradient id='o'><stop stop-color='lime'/></linearGradient>" + whole +
             "fill='url(#o)'/>",
         {{20, kLime}});
    draw("a ring of links",
         "<linearGradient id='p' href='#q'/><linearGradient id='q' href='#p'/>" + whole +
             "fill='url(#p)'/>",
         {{20, kClear}});
    draw("after a group's gradient",
         "<g opacity='.999'><rect width='40' height='9' fill='url(#g)'/>" + whole +
             "fill='url(#g)'/></g>" + whole + "fill='red'/>",
         {{30, kRed}});
}

// A tile of 10 × 10 that is red at its top left, and lime at its bottom right.
TEST(Render, PaintsPatterns) {
    const std::string content = "<rect width='5' height='5' fill='red'/>"
                                "<rect x='5' y='5' width='5' height='5' fill='lime'/>";
    const std::string whole = "<rect width='40' height='40' fill='url(#p)'/>";
    const auto pattern = [&](const std::string& attributes) {
        return "<pattern id='p' " + attributes + ">" + content + "</pattern>";
    };
    const std::string plain = pattern("patternUnits='userSpaceOnUse' width='10' height='10'");
    expectAll({
        {"side by side, without gaps",
         plain + whole,
         {{2, 2, kRed}, {7, 2, kClear}, {7, 7, kLime}, {32, 22, kRed}, {39, 39, kLime}}},
        {"from where it lies",
         pattern("patternUnits='userSpaceOnUse' x='5' width='10' height='10'") + whole,
         {{2, 2, kClear}, {2, 7, kLime}, {7, 2, kRed}, {12, 2, kClear}, {12, 7, kLime}}},
        {"in parts of the box, its view box stretched",
         pattern("width='.5' height='50%' viewBox='0 0 10 10'") + whole,
         {{5, 5, kRed}, {15, 15, kLime}, {25, 5, kRed}, {35, 5, kClear}}},
        {"its content in parts of the box",
         "<pattern id='p' width='.5' height='.5' patternContentUnits='objectBoundingBox'>"
         "<rect width='.25' height='.25' fill='red'/></pattern>" +
             whole,
         {{5, 5, kRed}, {15, 5, kClear}, {25, 25, kRed}}},
        {"transformed",
         pattern("patternUnits='userSpaceOnUse' width='10' height='10' "
                 "patternTransform='translate(5) scale(2)'") +
             whole,
         {{7, 2, kRed}, {17, 2, kClear}, {20, 15, kLime}, {27, 22, kRed}}},
        {"by the attributes and the content of the one that it is linked to",
         plain + "<pattern id='q' href='#p' x='5'/><rect width='40' height='40' fill='url(#q)'/>",
         {{2, 2, kClear}, {7, 2, kRed}}},
        {"in the user space of the shape",
         plain + "<g transform='translate(5 0)'><rect width='20' height='20' fill='url(#p)'/></g>",
         {{7, 2, kRed}, {12, 2, kClear}, {2, 2, kClear}}},
        {"half transparent",
         plain + "<rect width='40' height='40' fill='url(#p)' opacity='.5'/>",
         {{2, 2, 0x80800000}, {7, 2, kClear}}},
        {"stroked",
         plain + "<path d='M0 20H40' stroke='url(#p)' stroke-width='20'/>",
         {{2, 12, kRed}, {17, 27, kLime}, {2, 2, kClear}}},
        {"a pattern of patterns",
         plain + "<pattern id='q' patternUnits='userSpaceOnUse' width='20' height='20'>"
                 "<rect width='10' height='10' fill='url(#p)'/></pattern>"
                 "<rect width='40' height='40' fill='url(#q)'/>",
         {{2, 2, kRed}, {7, 7, kLime}, {12, 2, kClear}, {22, 22, kRed}}},
        {"a scaled pattern of patterns",
         plain + "<pattern id='q' patternUnits='userSpaceOnUse' width='10' height='20' "
                 "patternTransform='scale(2)'><rect width='10' height='10' fill='url(#p)'/>"
                 "</pattern><rect width='40' height='40' fill='url(#q)'/>",
         {{5, 5, kRed}, {15, 15, kLime}, {25, 5, kRed}, {5, 25, kClear}}},
        {"painted with itself",
         "<pattern id='p' patternUnits='userSpaceOnUse' width='10' height='10'>"
         "<rect width='5' height='10' fill='red'/><rect x='5' width='5' height='10' "
         "fill='url(#p) lime'/></pattern>" +
             whole,
         {{2, 2, kRed}, {7, 2, kLime}}},
        {"of no size: the fallback",
         "<pattern id='p'/><rect width='40' height='40' fill='url(#p) lime'/>",
         {{20, 20, kLime}}},
        {"of no size, without a fallback", "<pattern id='p'/>" + whole, {{20, 20, kClear}}},
        {"not there", whole, {{20, 20, kClear}}},
    });
}

// In this font a full block is 12 pixels wide at this size, and reaches from 15 above the baseline
// to 4 below at least.
TEST(Render, SetsText) {
    const std::string text = "<text y='25' font-family='DejaVu Sans Mono' font-size='20' ",
                      font = text + "fill='red' ";
    expectAll({
        {"in a font that is said at once",
         "<text x='10' y='25' fill='red' style='font:20px \"DejaVu Sans Mono\"'>\u2588</text>",
         {{12, 20, kRed}, {5, 20, kClear}}},
        {"from a position on", font + "x='10'>\u2588</text>", {{12, 20, kRed}, {5, 20, kClear}}},
        {"to its end",
         font + "x='30' text-anchor='end'>\u2588</text>",
         {{20, 20, kRed}, {14, 20, kClear}, {33, 20, kClear}}},
        {"in spans",
         font + "x='2'>\u2588<tspan fill='lime' dy='-5'>\u2588</tspan></text>",
         {{6, 20, kRed}, {20, 20, kLime}, {20, 27, kClear}}},
        {"with its letters at places of their own",
         font + "x='2 28'>\u2588\u2588</text>",
         {{6, 20, kRed}, {20, 20, kClear}, {32, 20, kRed}}},
        {"with white space as one space",
         font + "x='2'>\n \u2588  \u2588 </text>",
         {{6, 20, kRed}, {20, 20, kClear}, {32, 20, kRed}}},
        {"clipping",
         "<clipPath id='c'>" + font +
             "x='10'>\u2588</text></clipPath>"
             "<rect width='40' height='40' fill='lime' clip-path='url(#c)'/>",
         {{14, 20, kLime}, {30, 20, kClear}}},
        {"in a gradient over its box",
         "<linearGradient id='g'><stop offset='.5' stop-color='red'/>"
         "<stop offset='.5' stop-color='lime'/></linearGradient>" +
             text + "x='4' fill='url(#g)'>\u2588\u2588</text>",
         {{8, 20, kRed}, {24, 20, kLime}}},
    });
}

TEST(Render, EndsWhateverADocumentAsksFor) {
    // Ten levels of ten uses each ask for ten thousand million rectangles.
    std::string content = "<defs><rect id='l0' width='40' height='40' fill='red'/>";
    for (int level = 1; level <= 10; ++level) {
        content += "<g id='l" + std::to_string(level) + "'>";
        for (int i = 0; i < 10; ++i)
            content += "<use href='#l" + std::to_string(level - 1) + "'/>";
        content += "</g>";
    }
    expectPixels("nested uses", content + "</defs><use href='#l10'/>", {{20, 20, kRed}});
    // Eight levels of masks that need eight each.
    content = "<rect id='r' width='40' height='40' fill='white'/>";
    for (int level = 0; level < 8; ++level) {
        content += "<mask id='m" + std::to_string(level) + "'>";
        for (int i = 0; i < 8; ++i)
            content += "<use href='#r' mask='url(#m" + std::to_string(level + 1) + ")'/>";
        content += "</mask>";
    }
    expectPixels("nested masks",
                 content + "<rect y='20' width='40' height='20' fill='red' mask='url(#m0)'/>"
                           "<rect width='40' height='20' fill='red'/>",
                 {{20, 10, kRed}});
    expectPixels("huge numbers",
                 "<rect width='1e30' height='1e38' x='-1e29' stroke='red' stroke-width='1e38'/>"
                 "<circle r='1e300'/><path d='M1e38 1e38L-1e38 0z' transform='scale(1e38)'/>",
                 {});
}

TEST(Document, SizeFollowsFromWhatIsGiven) {
    const struct {
        const char* attributes;
        double width;
        double height;
    } cases[] = {
        {"width='30' height='20'", 30, 20},
        {"width='1in' height='72pt'", 96, 96},
        {"viewBox='0 0 30 20'", 30, 20},
        {"viewBox='0 0 30 20' width='60'", 60, 40},
        {"viewBox='0 0 30 20' height='10'", 15, 10},
        {"viewBox='0 0 30 20' width='50%' height='100%'", 15, 20},
        {"", 300, 150},
        {"width='0' height='5'", 0, 5},
    };
    for (const auto& [attributes, width, height] : cases) {
        const auto document =
            parse(std::string("<svg xmlns='http://www.w3.org/2000/svg' ") + attributes + "/>");
        ASSERT_TRUE(document);
        EXPECT_EQ(svg::sizeOf(*document).width, width) << attributes;
        EXPECT_EQ(svg::sizeOf(*document).height, height) << attributes;
    }
}

} // namespace
