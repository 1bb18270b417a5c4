// TextLayout.cpp: characters, their positions from attributes, anchors and advances.

#include "TextLayout.h"

#include "Geometry.h"
#include "Scanner.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

namespace svg {

namespace {

// One character and what the attributes of the elements around it say of it.
struct Character {
    UTF32Char code = 0;
    std::size_t span = 0;
    std::optional<double> x, y, rotation;
    double dx = 0, dy = 0;
};

// A number for each character of an element, as far as the list goes.
std::vector<double> numbersOf(const Occurrence& span, const char* attribute, Axis axis) {
    std::vector<double> numbers;
    const std::string text = span.element.attribute(attribute).value_or(std::string());
    Scanner scanner(text);
    scanner.skipSpace();
    while (const auto length = scanLength(scanner)) {
        numbers.push_back(length->resolve(axis, span.viewport, span.style.emSize()));
        scanner.skipSeparator();
    }
    return numbers;
}

// Splits UTF-8, which libxml2 has checked.
UTF32Char nextCodePoint(std::string_view& text) {
    const auto lead = static_cast<unsigned char>(text.front());
    const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    UTF32Char code = length == 1 ? lead : lead & (0x7Fu >> length);
    for (std::size_t i = 1; i < length && i < text.size(); ++i)
        code = code << 6 | (static_cast<unsigned char>(text[i]) & 0x3F);
    text.remove_prefix(std::min(length, text.size()));
    return code;
}

// Gathers the characters of an element and those inside it, in document order.
class Gatherer {
public:
    Gatherer(Scene& scene, TextLayout& layout) : scene_(scene), layout_(layout) {}

    std::vector<Character> gather(const Occurrence& text) {
        add(text);
        // White space at the end goes like that at the start.
        if (!characters_.empty() && characters_.back().code == ' ' && !keepsSpace_)
            characters_.pop_back();
        return std::move(characters_);
    }

private:
    void add(const Occurrence& occurrence) {
        layout_.spans.push_back(occurrence);
        const std::size_t span = layout_.spans.size() - 1, first = characters_.size();
        const bool outerSpace = keepsSpace_;
        keepsSpace_ = occurrence.element.keepsSpace().value_or(outerSpace);
        for (const xmlNode* node = occurrence.element.node()->children; node; node = node->next) {
            if (node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE)
                addText(reinterpret_cast<const char*>(node->content), span);
            else if (node->type == XML_ELEMENT_NODE)
                addChild(layout_.spans[span], Element(node));
        }
        keepsSpace_ = outerSpace;
        applyAttributes(layout_.spans[span], first);
    }

    void addChild(const Occurrence& parent, Element child) {
        if (child.is("tspan") || child.is("a")) {
            constexpr std::size_t kDeepest = 100;
            Occurrence inside = occurIn(scene_, parent, child, parent.viewport);
            if (inside.style.isDisplayed && inside.depth < kDeepest && spend(scene_, 1))
                add(inside);
        } else if (child.is("textPath") || child.is("tref")) {
            scene_.report.cannotDraw(child.name());
        }
    }

    void addText(std::string_view text, std::size_t span) {
        while (!text.empty() && spend(scene_, 1)) {
            UTF32Char code = nextCodePoint(text);
            if (code == '\n' || code == '\r' || code == '\t')
                code = ' ';
            const bool followsSpace = characters_.empty() || characters_.back().code == ' ';
            if (code != ' ' || keepsSpace_ || !followsSpace)
                characters_.push_back({.code = code, .span = span});
        }
    }

    // What an element inside says of a character holds against the one outside, which comes later.
    void applyAttributes(const Occurrence& span, std::size_t first) {
        const auto each = [&](const char* name, Axis axis, auto set) {
            const std::vector<double> numbers = numbersOf(span, name, axis);
            for (std::size_t i = 0; i < numbers.size() && first + i < characters_.size(); ++i)
                set(characters_[first + i], numbers[i]);
            return numbers;
        };
        const auto unlessSet = [](std::optional<double>& value, double number) {
            value = value.value_or(number);
        };
        each("x", Axis::X, [&](Character& c, double number) { unlessSet(c.x, number); });
        each("y", Axis::Y, [&](Character& c, double number) { unlessSet(c.y, number); });
        each("dx", Axis::X, [](Character& c, double number) { c.dx += number; });
        each("dy", Axis::Y, [](Character& c, double number) { c.dy += number; });
        const auto turns = each(
            "rotate", Axis::X, [&](Character& c, double number) { unlessSet(c.rotation, number); });
        // The last one holds for all that follow.
        for (std::size_t i = turns.size(); !turns.empty() && first + i < characters_.size(); ++i)
            unlessSet(characters_[first + i].rotation, turns.back());
    }

    Scene& scene_;
    TextLayout& layout_;
    std::vector<Character> characters_;
    bool keepsSpace_ = false;
};

CGGlyph glyphOf(CGFontRef font, UTF32Char code) {
    const bool isPair = code >= 0x10000;
    const UniChar units[] = {UniChar(isPair ? 0xD7C0 + (code >> 10) : code),
                             UniChar(0xDC00 + (code & 0x3FF))};
    CGGlyph glyphs[2] = {};
    CGFontGetGlyphsForUnichars(font, units, glyphs, isPair ? 2 : 1);
    return glyphs[0];
}

double advanceOf(CGFontRef font, CGGlyph glyph, double size) {
    int advance = 0;
    if (!CGFontGetGlyphAdvances(font, &glyph, 1, &advance))
        return 0;
    return advance * size / std::max(CGFontGetUnitsPerEm(font), 1);
}

// How far back a chunk of a width starts for its anchor.
double anchorShift(TextAnchor anchor, double width) {
    return anchor == TextAnchor::Middle ? width / 2 : anchor == TextAnchor::End ? width : 0;
}

// Sets glyphs one after the other; a chunk, from one absolute position to the next, is moved as a
// whole by its anchor.
class Setter {
public:
    explicit Setter(TextLayout& layout) : layout_(layout) {}

    void set(const std::vector<Character>& characters) {
        bool isFirst = true;
        for (const Character& character : characters) {
            if (std::exchange(isFirst, false) || character.x || character.y)
                endChunk(character);
            startRun(character);
            if (layout_.runs.back().font)
                setGlyph(character);
        }
        endChunk({});
    }

private:
    const Style& styleOf(const Character& character) const {
        return layout_.spans[character.span].style;
    }

    void endChunk(const Character& next) {
        const double shift = anchorShift(anchor_, x_ - chunkStart_);
        for (TextGlyph* const glyph : chunk())
            glyph->x -= shift;
        x_ = next.x.value_or(x_ - shift);
        y_ = next.y.value_or(y_);
        chunkStart_ = x_;
        anchor_ = layout_.spans.empty() ? TextAnchor::Start : styleOf(next).textAnchor;
        firstRun_ = layout_.runs.size();
        startsRun_ = true;
    }

    // The glyphs of the chunk that ends.
    std::vector<TextGlyph*> chunk() {
        std::vector<TextGlyph*> glyphs;
        for (std::size_t run = firstRun_; run < layout_.runs.size(); ++run)
            for (TextGlyph& glyph : layout_.runs[run].glyphs)
                glyphs.push_back(&glyph);
        return glyphs;
    }

    void startRun(const Character& character) {
        const Occurrence* const span = &layout_.spans[character.span];
        if (!startsRun_ && layout_.runs.back().span == span)
            return;
        startsRun_ = false;
        layout_.fonts.push_back(fontOf(span->style));
        layout_.runs.push_back({span, layout_.fonts.back().get(), {}});
    }

    void setGlyph(const Character& character) {
        TextRun& run = layout_.runs.back();
        const Style& style = run.span->style;
        const CGGlyph glyph = glyphOf(run.font, character.code);
        x_ += character.dx;
        y_ += character.dy;
        const double advance = advanceOf(run.font, glyph, style.emSize());
        run.glyphs.push_back({glyph, x_, y_, character.rotation.value_or(0), advance});
        x_ += advance + style.letterSpacing.resolve(Axis::X, run.span->viewport, style.emSize());
    }

    TextLayout& layout_;
    double x_ = 0, y_ = 0, chunkStart_ = 0;
    TextAnchor anchor_ = TextAnchor::Start;
    std::size_t firstRun_ = 0;
    bool startsRun_ = true;
};

} // namespace

TextLayout layOut(Scene& scene, const Occurrence& text) {
    TextLayout layout;
    const std::vector<Character> characters = Gatherer(scene, layout).gather(text);
    Setter(layout).set(characters);
    return layout;
}

CGRect TextLayout::bounds() const {
    CGRect bounds = CGRectNull;
    for (const TextRun& run : runs) {
        if (!run.font)
            continue;
        const double em = run.span->style.emSize() / std::max(CGFontGetUnitsPerEm(run.font), 1);
        const double ascent = CGFontGetAscent(run.font) * em;
        const double descent = -CGFontGetDescent(run.font) * em;
        for (const TextGlyph& glyph : run.glyphs)
            bounds = CGRectUnion(
                bounds, toRect(glyph.x, glyph.y - ascent, glyph.advance, ascent + descent));
    }
    return bounds;
}

} // namespace svg
