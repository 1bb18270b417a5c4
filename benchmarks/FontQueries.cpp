// FontQueries.cpp: glyphs, advances, boxes, outlines and coverage beside FreeType and HarfBuzz.

#include <CoreFoundation/CFRef.h>
#include <FontManager/FontManager.h>

#include "include/core/SkPath.h"

#include <ft2build.h>
#include <hb-ot.h>
#include FT_ADVANCES_H
#include FT_BBOX_H
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include <benchmark/benchmark.h>

#include <vector>

namespace {

constexpr const char* kPaths[] = {
    "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf",
    "/usr/share/fonts/opentype/urw-base35/NimbusSans-Regular.otf",
    "/usr/share/fonts/opentype/noto/NotoSansCJK-Regular.ttc",
};
constexpr const char* kLabels[] = {"TrueType", "CFF", "CJK"};
constexpr int64_t kChinese = 2;

// A text's characters: some letters come often. Chinese ones lie far apart.
std::vector<UTF32Char> text(int64_t font) {
    std::vector<UTF32Char> characters;
    for (uint32_t i = 0; i < 1024; ++i)
        characters.push_back(font == kChinese ? 0x4E00 + i * i * 7 % 2500 : 0x20 + i * i % 90);
    return characters;
}

struct Ours {
    explicit Ours(int64_t font) : text(::text(font)), glyphs(text.size()) {
        const auto path =
            cf::adopt(CFStringCreateWithCString(nullptr, kPaths[font], kCFStringEncodingUTF8));
        this->font = FMFontCreateWithPath(path.get(), 0, true);
        FMFontGetGlyphsForCodePoints(this->font, text.data(), glyphs.data(), text.size());
    }
    ~Ours() { FMFontRelease(font); }

    FMFontRef font;
    std::vector<UTF32Char> text;
    std::vector<CGGlyph> glyphs;
};

struct Bare {
    explicit Bare(int64_t font) : text(::text(font)) {
        FT_Init_FreeType(&library);
        FT_New_Face(library, kPaths[font], 0, &face);
        for (const UTF32Char codePoint : text)
            glyphs.push_back(FT_Get_Char_Index(face, codePoint));
    }
    ~Bare() { FT_Done_FreeType(library); }

    FT_Library library;
    FT_Face face;
    std::vector<UTF32Char> text;
    std::vector<FT_UInt> glyphs;
};

// HarfBuzz, as it reads tables by itself.
struct Shaper {
    explicit Shaper(int64_t font) : bare(font) {
        hb_blob_t* const blob = hb_blob_create_from_file(kPaths[font]);
        hb_face_t* const face = hb_face_create(blob, 0);
        this->font = hb_font_create(face);
        hb_face_destroy(face);
        hb_blob_destroy(blob);
    }
    ~Shaper() { hb_font_destroy(font); }

    Bare bare;
    hb_font_t* font;
};

void report(benchmark::State& state, size_t items) {
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(items));
    state.SetLabel(kLabels[state.range(0)]);
}

// ---- Characters to glyphs

void map(benchmark::State& state) {
    Ours ours(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(FMFontGetGlyphsForCodePoints(
            ours.font, ours.text.data(), ours.glyphs.data(), ours.text.size()));
    report(state, ours.text.size());
}
void mapBare(benchmark::State& state) {
    Bare bare(state.range(0));
    for (auto _ : state)
        for (size_t i = 0; i < bare.text.size(); ++i)
            benchmark::DoNotOptimize(bare.glyphs[i] = FT_Get_Char_Index(bare.face, bare.text[i]));
    report(state, bare.text.size());
}
void mapHarfBuzz(benchmark::State& state) {
    Shaper shaper(state.range(0));
    for (auto _ : state)
        for (const UTF32Char codePoint : shaper.bare.text) {
            hb_codepoint_t glyph;
            benchmark::DoNotOptimize(hb_font_get_nominal_glyph(shaper.font, codePoint, &glyph));
        }
    report(state, shaper.bare.text.size());
}
// One character at a time pays for the font's lock each time.
void mapSingly(benchmark::State& state) {
    Ours ours(state.range(0));
    for (auto _ : state)
        for (size_t i = 0; i < ours.text.size(); ++i)
            benchmark::DoNotOptimize(
                FMFontGetGlyphsForCodePoints(ours.font, &ours.text[i], &ours.glyphs[i], 1));
    report(state, ours.text.size());
}

// ---- Measures

void advances(benchmark::State& state) {
    Ours ours(state.range(0));
    std::vector<CGSize> sizes(ours.glyphs.size());
    for (auto _ : state)
        benchmark::DoNotOptimize(
            FMFontGetAdvancesForGlyphs(ours.font, ours.glyphs.data(), sizes.data(), sizes.size()));
    report(state, sizes.size());
}
void advancesBare(benchmark::State& state) {
    Bare bare(state.range(0));
    for (auto _ : state)
        for (const FT_UInt glyph : bare.glyphs) {
            FT_Fixed advance;
            benchmark::DoNotOptimize(FT_Get_Advance(bare.face, glyph, FT_LOAD_NO_SCALE, &advance));
        }
    report(state, bare.glyphs.size());
}
void advancesHarfBuzz(benchmark::State& state) {
    Shaper shaper(state.range(0));
    for (auto _ : state)
        for (const FT_UInt glyph : shaper.bare.glyphs)
            benchmark::DoNotOptimize(hb_font_get_glyph_h_advance(shaper.font, glyph));
    report(state, shaper.bare.glyphs.size());
}

void boxes(benchmark::State& state) {
    Ours ours(state.range(0));
    std::vector<CGRect> rects(ours.glyphs.size());
    for (auto _ : state)
        benchmark::DoNotOptimize(FMFontGetBoundingRectsForGlyphs(ours.font, ours.glyphs.data(),
                                                                 rects.data(), rects.size()));
    report(state, rects.size());
}
void boxesBare(benchmark::State& state) {
    Bare bare(state.range(0));
    for (auto _ : state)
        for (const FT_UInt glyph : bare.glyphs) {
            FT_BBox box;
            FT_Load_Glyph(bare.face, glyph, FT_LOAD_NO_SCALE);
            benchmark::DoNotOptimize(FT_Outline_Get_BBox(&bare.face->glyph->outline, &box));
        }
    report(state, bare.glyphs.size());
}

// ---- Outlines

void outlines(benchmark::State& state) {
    Ours ours(state.range(0));
    for (auto _ : state)
        for (const CGGlyph glyph : ours.glyphs)
            CGPathRelease(FMFontCopyPathForGlyph(ours.font, glyph));
    report(state, ours.glyphs.size());
}

SkPoint point(const FT_Vector* vector) {
    return {static_cast<float>(vector->x), static_cast<float>(vector->y)};
}

constexpr FT_Outline_Funcs kSkiaFunctions = {
    .move_to =
        [](const FT_Vector* to, void* path) {
            static_cast<SkPath*>(path)->moveTo(point(to));
            return 0;
        },
    .line_to =
        [](const FT_Vector* to, void* path) {
            static_cast<SkPath*>(path)->lineTo(point(to));
            return 0;
        },
    .conic_to =
        [](const FT_Vector* control, const FT_Vector* to, void* path) {
            static_cast<SkPath*>(path)->quadTo(point(control), point(to));
            return 0;
        },
    .cubic_to =
        [](const FT_Vector* control1, const FT_Vector* control2, const FT_Vector* to, void* path) {
            static_cast<SkPath*>(path)->cubicTo(point(control1), point(control2), point(to));
            return 0;
        },
    .shift = 0,
    .delta = 0,
};

void outlinesBare(benchmark::State& state) {
    Bare bare(state.range(0));
    for (auto _ : state)
        for (const FT_UInt glyph : bare.glyphs) {
            FT_Load_Glyph(bare.face, glyph, FT_LOAD_NO_SCALE);
            SkPath path;
            FT_Outline_Decompose(&bare.face->glyph->outline, &kSkiaFunctions, &path);
            path.close();
            benchmark::DoNotOptimize(path.countPoints());
        }
    report(state, bare.glyphs.size());
}

// ---- Coverage

// From a closed face, as the bare walk is.
void characterSet(benchmark::State& state) {
    Ours ours(state.range(0));
    for (auto _ : state) {
        FMFontPurge(ours.font);
        CFRelease(FMFontCopyCharacterSet(ours.font));
    }
    report(state, 1);
}
void characterSetAgain(benchmark::State& state) {
    Ours ours(state.range(0));
    for (auto _ : state)
        CFRelease(FMFontCopyCharacterSet(ours.font));
    report(state, 1);
}
void characterSetBare(benchmark::State& state) {
    Bare bare(state.range(0));
    for (auto _ : state) {
        FT_Face face;
        FT_New_Face(bare.library, kPaths[state.range(0)], 0, &face);
        FT_UInt glyph = 0;
        size_t count = 0;
        for (FT_ULong code = FT_Get_First_Char(face, &glyph); glyph != 0;
             code = FT_Get_Next_Char(face, code, &glyph))
            ++count;
        benchmark::DoNotOptimize(count);
        FT_Done_Face(face);
    }
    report(state, 1);
}

void languages(benchmark::State& state) {
    Ours ours(state.range(0));
    for (auto _ : state)
        CFRelease(FMFontCopySupportedLanguages(ours.font));
    report(state, 1);
}

} // namespace

BENCHMARK(map)->DenseRange(0, 2);
BENCHMARK(mapBare)->DenseRange(0, 2);
BENCHMARK(mapHarfBuzz)->DenseRange(0, 2);
BENCHMARK(mapSingly)->DenseRange(0, 2);
BENCHMARK(advances)->DenseRange(0, 2);
BENCHMARK(advancesBare)->DenseRange(0, 2);
BENCHMARK(advancesHarfBuzz)->DenseRange(0, 2);
BENCHMARK(boxes)->DenseRange(0, 2);
BENCHMARK(boxesBare)->DenseRange(0, 2);
BENCHMARK(outlines)->DenseRange(0, 2);
BENCHMARK(outlinesBare)->DenseRange(0, 2);
BENCHMARK(characterSet)->DenseRange(0, 2);
BENCHMARK(characterSetAgain)->DenseRange(0, 2);
BENCHMARK(characterSetBare)->DenseRange(0, 2);
BENCHMARK(languages)->DenseRange(0, 2);
