// StyleTest.cpp: colours, transforms, and which declaration of a property wins.

#include "Style.h"

#include "Geometry.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace {

constexpr svg::Color rgb(double red, double green, double blue, double alpha = 1) {
    return {red / 255, green / 255, blue / 255, alpha};
}

TEST(Color, ReadsEveryNotation) {
    const struct {
        const char* text;
        std::optional<svg::Color> color;
    } cases[] = {
        {"#0f8", rgb(0, 255, 136)},
        {"#0F8C", rgb(0, 255, 136, 0.8)},
        {"#102030", rgb(16, 32, 48)},
        {"#10203000", rgb(16, 32, 48, 0)},
        {" SlateGrey ", rgb(112, 128, 144)},
        {"rebeccapurple", rgb(102, 51, 153)},
        {"yellowgreen", rgb(154, 205, 50)},
        {"transparent", rgb(0, 0, 0, 0)},
        {"rgb(1, 2,3)", rgb(1, 2, 3)},
        {"rgb(100%,0%,20%)", rgb(255, 0, 51)},
        {"rgb(300, -5, 0)", rgb(255, 0, 0)},
        {"rgba(0, 0, 255, .25)", rgb(0, 0, 255, 0.25)},
        {"rgb(0 0 255 / 25%)", rgb(0, 0, 255, 0.25)},
        {"hsl(120, 100%, 50%)", rgb(0, 255, 0)},
        {"hsl(-120deg, 100%, 50%)", rgb(0, 0, 255)},
        {"hsla(0, 0%, 40%, 0.5)", rgb(102, 102, 102, 0.5)},
        {"#cd853f icc-color(acme, 0.1)", rgb(205, 133, 63)},
        {"#12345", std::nullopt},
        {"#ggg", std::nullopt},
        {"rgb(1,2)", std::nullopt},
        {"rgb(1,2,3", std::nullopt},
        {"reddish", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& [text, expected] : cases) {
        const auto color = svg::parseColor(text);
        ASSERT_EQ(color.has_value(), expected.has_value()) << text;
        if (!color)
            continue;
        EXPECT_NEAR(color->red, expected->red, 1e-9) << text;
        EXPECT_NEAR(color->green, expected->green, 1e-9) << text;
        EXPECT_NEAR(color->blue, expected->blue, 1e-9) << text;
        EXPECT_NEAR(color->alpha, expected->alpha, 1e-9) << text;
    }
}

TEST(Transform, AppliesTheRightmostFirst) {
    const struct {
        const char* text;
        CGPoint image; // Of (2, 1).
    } cases[] = {
        {"translate(10 20)", {12, 21}},
        {"translate(10)", {12, 1}},
        {"scale(3)", {6, 3}},
        {"scale(3,-1)", {6, -1}},
        {"rotate(90)", {-1, 2}},
        {"rotate(90 2 0)", {1, 0}},
        {"skewX(45)", {3, 1}},
        {"skewY(45)", {2, 3}},
        {"matrix(1 2 3 4 5 6)", {10, 14}},
        {"translate(10 20) scale(2)", {14, 22}},
        {"scale(2),translate(10 20)", {24, 42}},
        {"  ", {2, 1}},
    };
    for (const auto& [text, image] : cases) {
        const auto transform = svg::parseTransform(text);
        ASSERT_TRUE(transform) << text;
        const CGPoint point = CGPointApplyAffineTransform(CGPointMake(2, 1), *transform);
        EXPECT_NEAR(point.x, image.x, 1e-4) << text;
        EXPECT_NEAR(point.y, image.y, 1e-4) << text;
    }
    for (const char* text : {"scale()", "scale(1", "spin(4)", "matrix(1 2 3)", "scale(1) x"})
        EXPECT_FALSE(svg::parseTransform(text)) << text;
}

TEST(ViewBox, FitsAsTheAspectRatioSays) {
    const struct {
        const char* ratio;
        CGRect image; // Of the view box (10, 10, 20, 10) in a viewport of 100 × 100.
    } cases[] = {
        {"", {{0, 25}, {100, 50}}},
        {"xMinYMin meet", {{0, 0}, {100, 50}}},
        {"xMaxYMax", {{0, 50}, {100, 50}}},
        {"none", {{0, 0}, {100, 100}}},
        {"xMidYMid slice", {{-50, 0}, {200, 100}}},
        {"xMaxYMin slice", {{-100, 0}, {200, 100}}},
        {"nonsense", {{0, 25}, {100, 50}}},
    };
    for (const auto& [ratio, image] : cases) {
        const auto transform =
            svg::fitViewBox({10, 10, 20, 10}, svg::parseAspectRatio(ratio), 100, 100);
        const CGRect fitted = CGRectApplyAffineTransform(CGRectMake(10, 10, 20, 10), transform);
        EXPECT_TRUE(CGRectEqualToRect(fitted, image)) << ratio;
    }
}

// The fill of the element with the id "x", computed down from the root.
svg::Color fillOfX(const std::string& content) {
    std::string error;
    const auto document = svg::Document::parse(
        "<svg xmlns='http://www.w3.org/2000/svg' fill='#010101'>" + content + "</svg>", error);
    EXPECT_TRUE(document) << error << content;
    if (!document)
        return {};
    std::vector<svg::Element> chain;
    for (auto above = document->find("x"); above; above = above.parent())
        chain.insert(chain.begin(), above);
    svg::Style style;
    for (const auto element : chain)
        style = svg::computeStyle(*document, element, style);
    return style.resolve(style.fill.color);
}

TEST(Style, StrongerDeclarationsWin) {
    const svg::Color red = rgb(255, 0, 0), inherited = rgb(1, 1, 1);
    const struct {
        const char* what;
        const char* content;
        svg::Color fill;
    } cases[] = {
        {"nothing: inherited", "<g id='x'/>", inherited},
        {"attribute", "<g id='x' fill='red'/>", red},
        {"an attribute that cannot be read", "<g id='x' fill='rouge'/>", inherited},
        {"sheet over attribute", "<style>g{fill:red}</style><g id='x' fill='blue'/>", red},
        {"style over sheet", "<style>#x{fill:blue}</style><g id='x' style='fill:red'/>", red},
        {"important sheet over style",
         "<style>g{fill:red!important}</style><g id='x' style='fill:blue'/>", red},
        {"important style over important sheet",
         "<style>#x{fill:blue !important}</style><g id='x' style='fill:red ! important'/>", red},
        {"class over type", "<style>.c{fill:red} g{fill:blue}</style><g id='x' class='b c'/>", red},
        {"id over classes",
         "<style>#x{fill:red} .a.b.c{fill:blue}</style><g id='x' class='a b c'/>", red},
        {"later over earlier", "<style>g{fill:blue} g{fill:red}</style><g id='x'/>", red},
        {"more of the same", "<style>g g{fill:red} g{fill:blue}</style><g><g id='x'/></g>", red},
        {"child", "<style>svg>g{fill:blue} a>g{fill:red}</style><a><g id='x'/></a>", red},
        {"child is not descendant", "<style>svg > g{fill:blue}</style><a><g id='x'/></a>",
         inherited},
        {"mixed combinators", "<style>svg a>g g{fill:red}</style><a><g><a><g id='x'/></a></g></a>",
         red},
        {"universal", "<style>*{fill:red}</style><g id='x'/>", red},
        {"a list", "<style>a, .c ,#x{fill:red}</style><g id='x'/>", red},
        {"a list with an unknown selector", "<style>g,a:hover{fill:blue}</style><g id='x'/>",
         inherited},
        {"at-rules are passed over",
         "<style>@import 'a;b.css'; @media x{g{fill:blue}} g{fill:red}</style><g id='x'/>", red},
        {"a broken declaration", "<style>g{fill blue; fill:red;;:}</style><g id='x'/>", red},
        {"a comment", "<style>/*g{fill:blue}*/g{/**/fill:red}</style><g id='x'/>", red},
        {"another language", "<style type='text/x'>g{fill:blue}</style><g id='x' fill='red'/>",
         red},
        {"inherit",
         "<style>g{fill:blue}</style><g style='fill:red'><g id='x' "
         "style='fill:inherit'/></g>",
         red},
        {"the current colour is that of the element",
         "<g fill='currentColor' color='blue'><g id='x' color='red'/></g>", red},
    };
    for (const auto& [what, content, fill] : cases)
        EXPECT_EQ(fillOfX(content), fill) << what;
}

} // namespace
