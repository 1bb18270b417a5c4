// TinyFont.cpp: the tables that a TrueType font needs at least.

#include "TinyFont.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace test {

namespace {

// Numbers of two and four bytes, the highest first.
class Table {
public:
    explicit Table(std::string bytes = {}) : bytes_(std::move(bytes)) {}

    Table& u8(unsigned value) {
        bytes_ += static_cast<char>(value);
        return *this;
    }
    Table& u16(int value) {
        const auto word = static_cast<unsigned>(value);
        return u8(word >> 8 & 0xff).u8(word & 0xff);
    }
    Table& u32(std::size_t value) {
        return u16(static_cast<int>(value >> 16 & 0xffff)).u16(static_cast<int>(value & 0xffff));
    }
    Table& text(const std::string& value) {
        bytes_ += value;
        return *this;
    }
    Table& pad(std::size_t to) {
        bytes_.resize((bytes_.size() + to - 1) / to * to);
        return *this;
    }
    const std::string& bytes() const { return bytes_; }

private:
    std::string bytes_;
};

struct Box {
    int16_t left = 0, bottom = 0, right = 0, top = 0;
};

Box boxOf(const TinyGlyph& glyph) {
    if (glyph.points.empty())
        return {};
    const auto [left, right] = std::ranges::minmax(glyph.points, {}, &TinyPoint::x);
    const auto [bottom, top] = std::ranges::minmax(glyph.points, {}, &TinyPoint::y);
    return {left.x, bottom.y, right.x, top.y};
}

std::string contour(const TinyGlyph& glyph) {
    if (glyph.points.empty())
        return {};
    const Box box = boxOf(glyph);
    Table table;
    table.u16(1).u16(box.left).u16(box.bottom).u16(box.right).u16(box.top);
    table.u16(static_cast<int>(glyph.points.size()) - 1).u16(0);
    for (const TinyPoint& point : glyph.points)
        table.u8(point.isOnCurve ? 1 : 0);
    for (TinyPoint last{0, 0}; const TinyPoint& point : glyph.points)
        table.u16(point.x - std::exchange(last.x, point.x));
    for (TinyPoint last{0, 0}; const TinyPoint& point : glyph.points)
        table.u16(point.y - std::exchange(last.y, point.y));
    return table.pad(4).bytes();
}

// The place in the bounding box is fixed, so that expected texts may name it.
std::string headTable(const TinyFont& font) {
    Table table;
    table.u32(0x10000).u32(0x10000).u32(0).u32(0x5F0F3CF5).u16(0).u16(font.unitsPerEm);
    table.u32(0).u32(0).u32(0).u32(0);
    table.u16(-20).u16(-200).u16(700).u16(900);
    return table.u16(0).u16(8).u16(2).u16(1).u16(0).bytes();
}

std::string horizontalHeader(const TinyFont& font) {
    Table table;
    table.u32(0x10000).u16(800).u16(-200).u16(0).u16(1000);
    for (int i = 0; i < 11; ++i)
        table.u16(0);
    return table.u16(static_cast<int>(font.glyphs.size())).bytes();
}

std::string windowsMetrics(const TinyFont& font) {
    Table table;
    table.u16(0).u16(500).u16(400).u16(5).u16(font.permissions);
    for (int i = 0; i < 10; ++i)
        table.u16(0);
    table.u16(font.familyClass << 8);
    return Table(table.bytes() + std::string(78 - table.bytes().size(), '\0')).bytes();
}

std::string glyphNames(const TinyFont& font) {
    constexpr int kOwnNames = 258; // Below are those of a standard set.
    Table table;
    table.u32(0x20000);
    for (int i = 0; i < 7; ++i)
        table.u32(0);
    table.u16(static_cast<int>(font.glyphs.size()));
    for (std::size_t i = 0; i < font.glyphs.size(); ++i)
        table.u16(kOwnNames + static_cast<int>(i));
    for (const TinyGlyph& glyph : font.glyphs)
        table.u8(static_cast<unsigned>(glyph.name.size())).text(glyph.name);
    return table.bytes();
}

} // namespace

std::string TinyFont::bytes() const {
    Table places, outlines, advances;
    for (const TinyGlyph& glyph : glyphs) {
        places.u32(outlines.bytes().size());
        outlines.text(contour(glyph));
        advances.u16(glyph.advance).u16(boxOf(glyph).left);
    }
    places.u32(outlines.bytes().size());
    Table maximum;
    maximum.u32(0x10000).u16(static_cast<int>(glyphs.size())).u16(16).u16(4);
    const struct {
        const char* tag;
        std::string bytes;
    } tables[] = {{"OS/2", windowsMetrics(*this)},
                  {"glyf", outlines.bytes()},
                  {"head", headTable(*this)},
                  {"hhea", horizontalHeader(*this)},
                  {"hmtx", advances.bytes()},
                  {"loca", places.bytes()},
                  {"maxp", maximum.bytes() + std::string(22, '\0')},
                  {"post", glyphNames(*this)}};
    Table directory, contents;
    directory.u32(0x10000).u16(static_cast<int>(std::size(tables))).u16(0).u16(0).u16(0);
    const std::size_t start = 12 + 16 * std::size(tables);
    for (const auto& [tag, bytes] : tables) {
        directory.text(tag).u32(0).u32(start + contents.bytes().size()).u32(bytes.size());
        contents.text(bytes).pad(4);
    }
    return directory.bytes() + contents.bytes();
}

} // namespace test
