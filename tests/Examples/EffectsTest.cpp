// EffectsTest.cpp: masks, markers, images and filters, pixels that follow from the SVG standard.

#include "ExpectPixels.h"

namespace {

using namespace test;

TEST(Render, MasksByBrightnessAndOpacity) {
    const std::string whole = "<rect width='40' height='40' fill='red' mask='url(#m)'/>";
    expectAll({
        {"white shows, black and nothing hide",
         "<mask id='m'><rect width='20' height='40' fill='white'/>"
         "<rect x='20' width='10' height='40'/></mask>" +
             whole,
         {{10, 20, kRed}, {25, 20, kClear}, {35, 20, kClear}}},
        {"half as bright, half as opaque",
         "<mask id='m'><rect width='20' height='40' fill='#808080'/>"
         "<rect x='20' width='20' height='40' fill='white' fill-opacity='.5'/></mask>" +
             whole,
         {{10, 20, 0x80800000}, {30, 20, 0x80800000}}},
        {"green is brighter than blue",
         "<mask id='m'><rect width='20' height='40' fill='lime'/>"
         "<rect x='20' width='20' height='40' fill='blue'/></mask>" +
             whole,
         {{10, 20, 0xB6B60000}, {30, 20, 0x12120000}}},
        {"by opacity alone",
         "<mask id='m' mask-type='alpha'><rect width='20' height='40' fill-opacity='.5'/></mask>" +
             whole,
         {{10, 20, 0x80800000}, {30, 20, kClear}}},
        {"in parts of the box, content and region",
         "<mask id='m' maskContentUnits='objectBoundingBox' x='.5' width='.5' y='0' height='1'>"
         "<rect width='.75' height='1' fill='white'/></mask>" +
             whole,
         {{10, 20, kClear}, {25, 20, kRed}, {35, 20, kClear}}},
        {"a group counts as one picture",
         "<mask id='m' maskUnits='userSpaceOnUse'><rect width='40' height='40' fill='#808080'/>"
         "</mask><g mask='url(#m)'><rect width='40' height='40' fill='red'/>"
         "<rect width='40' height='40' fill='red'/></g>",
         {{20, 20, 0x80800000}}},
        {"masked itself",
         "<mask id='n'><rect width='40' height='20' fill='white'/></mask>"
         "<mask id='m'><rect width='20' height='40' fill='white' mask='url(#n)'/></mask>" +
             whole,
         {{10, 10, kRed}, {10, 30, kClear}, {30, 10, kClear}}},
        {"one that needs itself",
         "<mask id='m'><rect width='20' height='40' fill='white' mask='url(#m)'/></mask>" + whole,
         {{10, 20, kRed}, {30, 20, kClear}}},
        {"one that is not there",
         "<rect width='40' height='40' fill='red' mask='url(#m)'/>",
         {{20, 20, kRed}}},
    });
}

// A marker that points along x: 4 wide, 2 high, its back at the vertex.
std::string marked(const std::string& attributes, const std::string& path,
                   const std::string& which = "marker-end='url(#m)'") {
    return "<marker id='m' markerWidth='4' markerHeight='4' refY='2' " + attributes +
           "><rect y='1' width='4' height='2' fill='red'/></marker><path fill='none' d='" + path +
           "' " + which + "/>";
}

TEST(Render, PutsMarkersAtVertices) {
    expectAll({
        {"upright at the end",
         marked("", "M10 10V20"),
         {{12, 20, kRed}, {10, 12, kClear}, {10, 22, kClear}}},
        {"turned along the line",
         marked("orient='auto'", "M10 10V20"),
         {{10, 22, kRed}, {12, 20, kClear}}},
        {"half way between both directions",
         marked("orient='auto' overflow='visible'", "M0 20H20V40", "marker-mid='url(#m)'"),
         {{21, 21, kRed}, {22, 18, kClear}, {18, 22, kClear}}},
        {"back to front at the start",
         marked("orient='auto-start-reverse'", "M20 20H30", "marker-start='url(#m)'"),
         {{18, 20, kRed}, {22, 20, kClear}}},
        {"by an angle", marked("orient='90'", "M10 20H20"), {{20, 22, kRed}, {22, 20, kClear}}},
        {"as wide as the line is",
         marked("", "M10 20H20", "stroke-width='3' marker-end='url(#m)'"),
         {{30, 20, kRed}, {25, 22, kRed}, {34, 20, kClear}}},
        {"in user space",
         marked("markerUnits='userSpaceOnUse'", "M10 20H20",
                "stroke-width='3' marker-end='url(#m)'"),
         {{22, 20, kRed}, {26, 20, kClear}}},
        {"a view box",
         "<marker id='m' viewBox='0 0 10 10' markerWidth='20' markerHeight='20' refX='5' refY='5'>"
         "<rect width='10' height='10' fill='red'/></marker>"
         "<path d='M0 0L20 20' marker-end='url(#m)'/>",
         {{11, 11, kRed}, {29, 29, kRed}, {31, 20, kClear}}},
        {"the inside of an arc is no vertex",
         marked("", "M10 20A10 10 0 0 1 30 20", "marker-mid='url(#m)'"),
         {{22, 10, kClear}, {32, 20, kClear}}},
        {"all of a polygon by the short hand",
         "<marker id='m' markerWidth='4' markerHeight='4' refX='2' refY='2'>"
         "<rect width='4' height='4' fill='red'/></marker>"
         "<polygon points='5,5 35,5 35,35' fill='none' marker='url(#m)'/>",
         {{5, 5, kRed}, {35, 5, kRed}, {35, 35, kRed}, {20, 20, kClear}}},
        {"rectangles have none",
         "<marker id='m' markerWidth='4' markerHeight='4'><rect width='4' height='4'/></marker>"
         "<rect x='9' y='9' width='9' height='9' fill='none' marker='url(#m)'/>",
         {{10, 10, kClear}}},
        {"one that is marked with itself",
         "<marker id='m' markerWidth='9' markerHeight='9'><path d='M0 0H9V9' fill='red' "
         "marker-end='url(#m)'/></marker><path d='M0 0L20 20' marker-end='url(#m)'/>",
         {{27, 22, kRed}}},
    });
}

TEST(Render, ShowsImageFiles) {
    // 2 × 2 pixels: red, lime over blue, black.
    const std::string image =
        "href='data:image/"
        "png;base64,iVBORw0KGgoAAAANSUhEUgAAAAIAAAACCAIAAAD91JpzAAAAEElEQVR4nGP4z8DAAMJgAg"
        "AZ9AL+q0FWvAAAAABJRU5ErkJggg=='";
    const auto draw = [&](const char* what, const std::string& attributes,
                          const std::vector<Probe>& probes) {
        expectPixels(what, "<image image-rendering='pixelated' " + attributes + "/>", probes);
    };
    draw("upright and stretched", image + " width='40' height='40'",
         {{5, 5, kRed}, {35, 5, kLime}, {5, 35, kBlue}, {35, 35, kBlack}});
    draw("in the middle", image + " width='40' height='20'",
         {{5, 10, kClear}, {12, 5, kRed}, {28, 15, kBlack}, {35, 10, kClear}});
    draw("cut off", image + " width='40' height='20' preserveAspectRatio='xMinYMin slice'",
         {{5, 5, kRed}, {35, 15, kLime}, {5, 25, kClear}});
    draw("out of proportion", image + " width='40' height='20' preserveAspectRatio='none'",
         {{5, 5, kRed}, {35, 5, kLime}, {5, 15, kBlue}});
    draw("its own size", image + " x='10'", {{10, 0, kRed}, {11, 1, kBlack}, {12, 0, kClear}});
    draw("a file that is not there", "href='missing.png' width='40' height='40'",
         {{20, 20, kClear}});
}

// Blurred edges are half as opaque in their middle.
TEST(Render, DrawsFiltersThatComeToShadows) {
    const std::string square = "<rect x='10' y='10' width='10' height='10' fill='red' "
                               "filter='url(#f)'/>";
    const auto filter = [&](const std::string& primitives) {
        return "<filter id='f' filterUnits='userSpaceOnUse' x='0' y='0' width='40' height='40'>" +
               primitives + "</filter>" + square;
    };
    expectAll({
        {"a drop shadow",
         filter("<feDropShadow dx='12' dy='12' stdDeviation='0' flood-color='blue'/>"),
         {{12, 12, kRed}, {27, 27, kBlue}, {27, 12, kClear}}},
        {"the same in steps",
         filter("<feOffset in='SourceAlpha' dx='12' dy='12'/><feMerge><feMergeNode/>"
                "<feMergeNode in='SourceGraphic'/></feMerge>"),
         {{12, 12, kRed}, {27, 27, kBlack}, {27, 12, kClear}}},
        {"in a colour",
         filter("<feOffset in='SourceAlpha' dx='12' result='o'/><feFlood flood-color='lime' "
                "flood-opacity='.5'/><feComposite in2='o' operator='in'/><feMerge><feMergeNode/>"
                "<feMergeNode in='SourceGraphic'/></feMerge>"),
         {{12, 12, kRed}, {27, 12, 0x80008000}}},
        {"a matrix that dims",
         filter("<feColorMatrix in='SourceAlpha' values='0 0 0 0 0 0 0 0 0 0 0 0 0 0 1 0 0 0 .5 "
                "0'/><feOffset dx='12'/><feBlend in='SourceGraphic' mode='normal' in2='f'/>"),
         {{12, 12, kRed}}},
        {"the shadow alone",
         filter("<feOffset in='SourceAlpha' dx='12' dy='12'/>"),
         {{12, 12, kClear}, {27, 27, kBlack}}},
        {"one colour blurred: its edge",
         "<filter id='f' filterUnits='userSpaceOnUse' x='0' y='0' width='40' height='40'>"
         "<feGaussianBlur stdDeviation='2'/></filter>"
         "<path d='M20 -20H60V60H20z' fill='red' filter='url(#f)'/>",
         {{5, 20, kClear}, {35, 20, kRed}}},
        {"nothing beyond the region",
         "<filter id='f' x='0' y='0' width='1' height='1'><feDropShadow dx='5' dy='0' "
         "stdDeviation='0' flood-color='blue'/></filter>" +
             square,
         {{12, 12, kRed}, {22, 12, kClear}}},
        {"a shadow that is moved by a transform",
         "<filter id='f' filterUnits='userSpaceOnUse' x='0' y='0' width='40' height='40'>"
         "<feDropShadow dx='5' dy='0' stdDeviation='0' flood-color='blue'/></filter>"
         "<g transform='scale(2) rotate(90 10 10)'><rect x='5' y='5' width='4' height='4' "
         "fill='red' filter='url(#f)'/></g>",
         {{26, 14, kRed}, {26, 24, kBlue}, {36, 14, kClear}}},
        {"what cannot be drawn leaves the element as it is",
         filter("<feTurbulence/>"),
         {{12, 12, kRed}, {30, 30, kClear}}},
    });
}

} // namespace
