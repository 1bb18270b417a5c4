// Text.cpp: runs of glyphs beside bare Skia and Cairo, and their first use beside FreeType.

#include <CoreGraphics/CoreGraphics.h>

#include "Support/Bitmaps.h"
#include "Support/Fonts.h"
#include "include/core/SkBitmap.h"
#include "include/core/SkCanvas.h"
#include "include/core/SkFont.h"
#include "include/core/SkFontMgr.h"
#include "include/core/SkGraphics.h"
#include "include/core/SkTypeface.h"
#include "include/ports/SkFontMgr_empty.h"

#include <benchmark/benchmark.h>
#include <ft2build.h>
#include FT_FREETYPE_H

#if NIMBRA_HAS_CAIRO
#include <cairo-ft.h>
#endif

#include <optional>
#include <vector>

namespace {

constexpr int kSize = 512;
constexpr std::size_t kPerRow = 50;

// Letters in rows over the whole bitmap, at fractions of pixels, y up.
struct Run {
    std::vector<CGGlyph> glyphs;
    std::vector<CGPoint> positions;

    Run(CGFontRef font, std::size_t count) {
        const std::vector<CGGlyph> letters =
            test::glyphsOf(font, u"The quick brown fox jumps over the lazy dog, 0123456789.");
        for (std::size_t index = 0; index < count; ++index) {
            glyphs.push_back(letters[index % letters.size()]);
            positions.push_back({4 + 10.1f * static_cast<CGFloat>(index % kPerRow),
                                 4 + 12.7f * static_cast<CGFloat>(index / kPerRow % (kSize / 13))});
        }
    }
    // As many different glyphs of the font as there are.
    static Run ofDifferent(CGFontRef font, std::size_t count) {
        Run run(font, count);
        for (std::size_t index = 0; index < count; ++index)
            run.glyphs[index] = static_cast<CGGlyph>(36 + index);
        return run;
    }
};

class Ours {
public:
    explicit Ours(CGFloat size) : context_(test::makeContext(kSize, kSize)) {
        CGContextSetRGBFillColor(context_.get(), 0.2f, 0.4f, 0.8f, 1);
        CGContextSetFontSize(context_.get(), size);
    }
    void setFont(const char* path) { CGContextSetFont(context_.get(), test::makeFont(path).get()); }
    void draw(const Run& run, std::size_t first, std::size_t count) {
        CGContextShowGlyphsAtPositions(context_.get(), run.glyphs.data() + first,
                                       run.positions.data() + first, count);
    }

private:
    test::Context context_;
};

class Bare {
public:
    explicit Bare(CGFloat size) {
        SkGraphics::Init();
        bitmap_.allocN32Pixels(kSize, kSize);
        bitmap_.eraseColor(0);
        canvas_.emplace(bitmap_);
        paint_.setColor4f({0.2f, 0.4f, 0.8f, 1});
        font_.setSize(size);
        font_.setHinting(SkFontHinting::kNone);
        font_.setLinearMetrics(true);
        font_.setSubpixel(true);
    }
    void setFont(const char* path) {
        static SkFontMgr* const manager = SkFontMgr_New_Custom_Empty().release();
        font_.setTypeface(manager->makeFromFile(path));
    }
    void draw(const Run& run, std::size_t first, std::size_t count) {
        static_assert(sizeof(SkPoint) == sizeof(CGPoint));
        canvas_->drawGlyphs({run.glyphs.data() + first, count},
                            {reinterpret_cast<const SkPoint*>(run.positions.data()) + first, count},
                            {0, 0}, font_, paint_);
    }

private:
    SkBitmap bitmap_;
    std::optional<SkCanvas> canvas_;
    SkPaint paint_;
    SkFont font_;
};

#if NIMBRA_HAS_CAIRO

class Cairo {
public:
    explicit Cairo(CGFloat size)
        : surface_(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, kSize, kSize)),
          cairo_(cairo_create(surface_)) {
        FT_Init_FreeType(&library_);
        cairo_set_source_rgba(cairo_, 0.2, 0.4, 0.8, 1);
        cairo_set_font_size(cairo_, double{size});
        cairo_font_options_t* const options = cairo_font_options_create();
        cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
        cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
        cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
        cairo_set_font_options(cairo_, options);
        cairo_font_options_destroy(options);
    }
    ~Cairo() {
        cairo_destroy(cairo_);
        cairo_surface_destroy(surface_);
    }
    Cairo(const Cairo&) = delete;
    Cairo& operator=(const Cairo&) = delete;

    // The face stays open: Cairo may keep it beyond the context.
    void setFont(const char* path) {
        FT_Face face = nullptr;
        FT_New_Face(library_, path, 0, &face);
        cairo_font_face_t* const font = cairo_ft_font_face_create_for_ft_face(face, 0);
        cairo_set_font_face(cairo_, font);
        cairo_font_face_destroy(font);
    }
    void draw(const Run& run, std::size_t first, std::size_t count) {
        glyphs_.resize(count);
        for (std::size_t index = 0; index < count; ++index)
            glyphs_[index] = {run.glyphs[first + index], double{run.positions[first + index].x},
                              double{run.positions[first + index].y}};
        cairo_show_glyphs(cairo_, glyphs_.data(), static_cast<int>(count));
    }

private:
    FT_Library library_ = nullptr;
    cairo_surface_t* surface_;
    cairo_t* cairo_;
    std::vector<cairo_glyph_t> glyphs_;
};

#define NIMBRA_TEXT_OF_CAIRO(scene, ...) BENCHMARK(scene<Cairo>)->Name(#scene "Cairo") __VA_ARGS__

#else

#define NIMBRA_TEXT_OF_CAIRO(scene, ...) static_assert(true)

#endif

#define NIMBRA_TEXT(scene, ...)                                                                    \
    BENCHMARK(scene<Ours>)->Name(#scene) __VA_ARGS__;                                              \
    BENCHMARK(scene<Bare>)->Name(#scene "Bare") __VA_ARGS__;                                       \
    NIMBRA_TEXT_OF_CAIRO(scene, __VA_ARGS__)

// One run of 2,000 glyphs that are cached.
template <typename Engine>
void textRun(benchmark::State& state) {
    Engine engine(static_cast<CGFloat>(state.range(0)));
    engine.setFont(test::kTrueTypeFont);
    const Run run(test::makeFont(test::kTrueTypeFont).get(), 2000);
    for (auto _ : state)
        engine.draw(run, 0, run.glyphs.size());
}
NIMBRA_TEXT(textRun, ->Arg(14)->Arg(48)->Arg(300));

// The same as words of five.
template <typename Engine>
void textWords(benchmark::State& state) {
    Engine engine(static_cast<CGFloat>(state.range(0)));
    engine.setFont(test::kTrueTypeFont);
    const Run run(test::makeFont(test::kTrueTypeFont).get(), 2000);
    for (auto _ : state)
        for (std::size_t first = 0; first < run.glyphs.size(); first += 5)
            engine.draw(run, first, 5);
}
NIMBRA_TEXT(textWords, ->Arg(14));

// 500 glyphs of a font that is opened for them.
template <typename Engine>
void textFirstUse(benchmark::State& state) {
    const Run run = Run::ofDifferent(test::makeFont(test::kTrueTypeFont).get(), 500);
    Engine engine(20);
    for (auto _ : state) {
        engine.setFont(test::kTrueTypeFont);
        engine.draw(run, 0, run.glyphs.size());
    }
}
BENCHMARK(textFirstUse<Ours>)->Name("textFirstUse");
BENCHMARK(textFirstUse<Bare>)->Name("textFirstUseBare");

// What of that is FreeType's own: opening the font, and a mask of each glyph.
void textFirstUseFreeType(benchmark::State& state) {
    const Run run = Run::ofDifferent(test::makeFont(test::kTrueTypeFont).get(), 500);
    FT_Library library = nullptr;
    FT_Init_FreeType(&library);
    for (auto _ : state) {
        FT_Face face = nullptr;
        FT_New_Face(library, test::kTrueTypeFont, 0, &face);
        FT_Set_Char_Size(face, 20 * 64, 0, 72, 72);
        for (const CGGlyph glyph : run.glyphs)
            FT_Load_Glyph(face, glyph, FT_LOAD_RENDER | FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP);
        FT_Done_Face(face);
    }
    FT_Done_FreeType(library);
}
BENCHMARK(textFirstUseFreeType);

} // namespace
