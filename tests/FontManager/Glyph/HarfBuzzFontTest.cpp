// HarfBuzzFontTest.cpp: shaping through our fonts beside HarfBuzz's own reading of the files.

#include <FontManager/FMFontGlyphs.h>
#include <FontManager/FMGlyph.h>

#include "Support/FontFiles.h"
#include "Support/InstalledFonts.h"

#include <gtest/gtest.h>
#include <hb-ot.h>
#include <hb.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

using test::Font;

namespace {

struct DestroyBuffer {
    void operator()(hb_buffer_t* buffer) const { hb_buffer_destroy(buffer); }
    void operator()(hb_font_t* font) const { hb_font_destroy(font); }
};
using Buffer = std::unique_ptr<hb_buffer_t, DestroyBuffer>;
using BareFont = std::unique_ptr<hb_font_t, DestroyBuffer>;

const struct {
    const char* what;
    const char8_t* text;
} kTexts[] = {
    {"Latin with ligatures, kerning and marks",
     u8"office fly AVATAR To. r\u0301e\u0323a\u0308 1/2"},
    {"Arabic", u8"السلام عليكم، لا إله ١٢٣ بِسْمِ"},
    {"Devanagari", u8"नमस्ते क्षत्रिय हिन्दी र्क कृपया"},
    {"Chinese, Japanese and Korean", u8"日本語、中文「한국어」ガ カ\u3099"},
    {"emoji", u8"😀👨\u200D👩\u200D👧🇩🇪❤\uFE0F1\uFE0F\u20E3"},
};

// Glyphs, clusters, advances and offsets, a line for each glyph.
std::string shape(hb_font_t* font, const char8_t* text, hb_direction_t direction) {
    const Buffer buffer(hb_buffer_create());
    hb_buffer_add_utf8(buffer.get(), reinterpret_cast<const char*>(text), -1, 0, -1);
    hb_buffer_guess_segment_properties(buffer.get());
    if (direction != HB_DIRECTION_INVALID)
        hb_buffer_set_direction(buffer.get(), direction);
    hb_shape(font, buffer.get(), nullptr, 0);
    std::vector<char> line(1 << 16);
    std::string lines;
    unsigned written = 0;
    for (unsigned at = 0; at < hb_buffer_get_length(buffer.get());) {
        const unsigned count = hb_buffer_serialize_glyphs(
            buffer.get(), at, hb_buffer_get_length(buffer.get()), line.data(),
            static_cast<unsigned>(line.size()), &written, font, HB_BUFFER_SERIALIZE_FORMAT_TEXT,
            HB_BUFFER_SERIALIZE_FLAG_NO_GLYPH_NAMES);
        if (count == 0)
            break;
        lines.append(line.data(), written);
        at += count;
    }
    return lines;
}

// Whether the file is one that HarfBuzz can read by itself.
bool isSfnt(hb_face_t* face) {
    return hb_face_get_table_tags(face, 0, nullptr, nullptr) > 0;
}

// Whether HarfBuzz knows the glyphs' boxes, by which it places marks in fonts that do not: it
// reads none of bitmaps without colours.
bool knowsBoxes(const test::InstalledFace& installed) {
    const auto face = installed.openFreeType();
    return FT_IS_SCALABLE(face.get()) || FT_HAS_COLOR(face.get());
}

} // namespace

TEST(HarfBuzzFont, ShapesAsTheFileAloneDoesWithAllInstalledFonts) {
    int count = 0;
    for (const test::InstalledFace& installed : test::installedFaces()) {
        const auto face = installed.openHarfBuzz();
        if (!isSfnt(face.get()) || !knowsBoxes(installed))
            continue;
        const Font font = test::openFont(installed.path.c_str(), installed.index);
        hb_font_t* const ours = FMFontGetHarfBuzzFont(font.get());
        ASSERT_TRUE(ours) << installed.what();
        EXPECT_EQ(FMFontGetHarfBuzzFont(font.get()), ours);
        const BareFont bare(hb_font_create(face.get()));
        for (const auto& [what, text] : kTexts)
            EXPECT_EQ(shape(ours, text, HB_DIRECTION_INVALID),
                      shape(bare.get(), text, HB_DIRECTION_INVALID))
                << installed.what() << ": " << what;
        ++count;
    }
    EXPECT_GT(count, 100);
}

TEST(HarfBuzzFont, ShapesDownwardsAsTheFileAloneDoes) {
    const Font font = test::openFont(test::kChinese);
    hb_blob_t* const blob = hb_blob_create_from_file(test::kChinese);
    hb_face_t* const face = hb_face_create(blob, 0);
    const BareFont bare(hb_font_create(face));
    for (const auto& [what, text] : kTexts)
        EXPECT_EQ(shape(FMFontGetHarfBuzzFont(font.get()), text, HB_DIRECTION_TTB),
                  shape(bare.get(), text, HB_DIRECTION_TTB))
            << what;
    hb_face_destroy(face);
    hb_blob_destroy(blob);
}

TEST(HarfBuzzFont, AdvancesAreThoseOfTheFileForEveryGlyph) {
    for (const test::InstalledFace& installed : test::installedFaces()) {
        const auto face = installed.openHarfBuzz();
        if (!isSfnt(face.get()))
            continue;
        const BareFont bare(hb_font_create(face.get()));
        const Font font = test::openFont(installed.path.c_str(), installed.index);
        const long count = hb_face_get_glyph_count(face.get());
        std::vector<hb_codepoint_t> glyphs;
        for (const CGGlyph glyph : test::sampledGlyphs(count, count > 20000 ? 500 : count))
            glyphs.push_back(glyph);
        std::vector<hb_position_t> ours(glyphs.size()), expected(glyphs.size());
        const auto number = static_cast<unsigned>(glyphs.size());
        hb_font_get_glyph_h_advances(FMFontGetHarfBuzzFont(font.get()), number, glyphs.data(), 4,
                                     ours.data(), 4);
        hb_font_get_glyph_h_advances(bare.get(), number, glyphs.data(), 4, expected.data(), 4);
        EXPECT_EQ(ours, expected) << installed.what();
    }
}

TEST(HarfBuzzFont, IsMadeForFontsThatHarfBuzzCannotRead) {
    for (const char* path : {test::kType1, test::kBitmapFont}) {
        const Font font = test::openFont(path);
        hb_font_t* const shaped = FMFontGetHarfBuzzFont(font.get());
        ASSERT_TRUE(shaped) << path;
        hb_codepoint_t glyph = 0;
        ASSERT_TRUE(hb_font_get_nominal_glyph(shaped, 'A', &glyph)) << path;
        const auto id = static_cast<CGGlyph>(glyph);
        CGSize advance = CGSizeZero;
        FMFontGetAdvancesForGlyphs(font.get(), &id, &advance, 1);
        EXPECT_EQ(hb_font_get_glyph_h_advance(shaped, glyph), std::lround(advance.width)) << path;
        hb_glyph_extents_t extents;
        EXPECT_TRUE(hb_font_get_glyph_extents(shaped, glyph, &extents)) << path;
        EXPECT_GT(extents.width, 0) << path;
        EXPECT_LT(extents.height, 0) << path;
    }
}

// Tables come through the data provider, a copy each.
TEST(HarfBuzzFont, ShapesTheSameFromMemoryAsFromTheFile) {
    std::string bytes;
    {
        std::unique_ptr<hb_blob_t, void (*)(hb_blob_t*)> blob(
            hb_blob_create_from_file(test::kArabic), hb_blob_destroy);
        unsigned length = 0;
        const char* const data = hb_blob_get_data(blob.get(), &length);
        bytes.assign(data, length);
    }
    const Font fromMemory(FMFontCreateFromMemory(bytes.data(), bytes.size(), 0, true));
    const Font fromFile = test::openFont(test::kArabic);
    const std::string shaped =
        shape(FMFontGetHarfBuzzFont(fromMemory.get()), kTexts[1].text, HB_DIRECTION_INVALID);
    EXPECT_EQ(shaped,
              shape(FMFontGetHarfBuzzFont(fromFile.get()), kTexts[1].text, HB_DIRECTION_INVALID));
    // Not made of missing glyphs.
    EXPECT_EQ(shaped.find("[0="), std::string::npos) << shaped;
    FMFontPurge(fromMemory.get());
    EXPECT_EQ(shape(FMFontGetHarfBuzzFont(fromMemory.get()), kTexts[1].text, HB_DIRECTION_INVALID),
              shaped);
}
