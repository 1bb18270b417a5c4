// Style.h: the properties that decide how an element is painted, worked out for one element.
#pragma once

#include "Color.h"
#include "Document.h"
#include "Length.h"

#include <optional>
#include <string>
#include <vector>

namespace svg {

enum class FillRule { NonZero, EvenOdd };
enum class LineCap { Butt, Round, Square };
enum class LineJoin { Miter, Round, Bevel };
enum class PaintOrder { FillFirst, StrokeFirst };
enum class TextAnchor { Start, Middle, End };
// Lines along text; several may be or-ed.
enum TextLines : unsigned { kNoLines = 0, kUnderline = 1, kOverline = 2, kLineThrough = 4 };

// A colour that may refer to the color property of the element where it is used.
struct ColorValue {
    bool isCurrentColor = false;
    Color color;
};

// What fill and stroke hold.
struct Paint {
    enum class Kind { None, Color, Server };
    Kind kind = Kind::None;
    ColorValue color;         // Of Color, and the fallback of Server.
    bool hasFallback = false; // "none" after a server is a fallback too: color is then clear.
    std::string serverId;
};

// Properties that children take over unless they say otherwise. Lengths that depend on the font
// are in pixels already.
struct InheritedStyle {
    Color color;
    Paint fill = {.kind = Paint::Kind::Color};
    double fillOpacity = 1;
    FillRule fillRule = FillRule::NonZero;
    FillRule clipRule = FillRule::NonZero;
    Paint stroke;
    double strokeOpacity = 1;
    Length strokeWidth = {1, Unit::None};
    LineCap lineCap = LineCap::Butt;
    LineJoin lineJoin = LineJoin::Miter;
    double miterLimit = 4;
    std::vector<Length> dashes; // Empty for a solid line.
    Length dashOffset;
    PaintOrder paintOrder = PaintOrder::FillFirst;
    Length fontSize = {16, Unit::Pixel};
    std::string fontFamily; // A list, as it was written.
    int fontWeight = 400;   // 100 to 900.
    bool isItalic = false;
    TextAnchor textAnchor = TextAnchor::Start;
    Length letterSpacing;
    unsigned textLines = kNoLines; // Reach into what is inside, unless that says otherwise.
    bool isVisible = true;
    bool isSmoothed = true;    // Of images that are scaled.
    std::string markerStartId; // These three are empty for "none".
    std::string markerMidId;
    std::string markerEndId;
};

// Properties of one element alone.
struct OwnStyle {
    double opacity = 1;
    bool isDisplayed = true;
    bool clipsOverflow = true; // Of elements that have a viewport.
    bool isIsolated = false;
    bool hasFixedStrokeWidth = false; // vector-effect: non-scaling-stroke.
    std::string clipPathId;           // These four are empty for "none".
    std::string maskId;
    std::string filterId;
    std::string blendMode;
    bool masksByLuminance = true;
    ColorValue stopColor;
    double stopOpacity = 1;
    ColorValue floodColor; // Of filter primitives.
    double floodOpacity = 1;
};

struct Style : InheritedStyle, OwnStyle {
    // As a number of user units; fontSize is resolved when the style is made.
    double emSize() const { return fontSize.value; }
    Color resolve(const ColorValue& value) const {
        return value.isCurrentColor ? color : value.color;
    }
};

// The style of an element inside one with the style `parent`: from weak to strong its presentation
// attributes, the style sheets, its style attribute, and what is marked important.
Style computeStyle(const Document& document, Element element, const Style& parent);

} // namespace svg
