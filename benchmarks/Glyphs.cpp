// Glyphs.cpp: rendered glyphs and shaping, beside FreeType and HarfBuzz alone.

#include <FontManager/FMFont.h>
#include <FontManager/FMGlyph.h>

#include <benchmark/benchmark.h>
#include <ft2build.h>
#include <hb-ft.h>
#include <hb-ot.h>
#include FT_FREETYPE_H

#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr char kSans[] = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
constexpr char kChinese[] = "/usr/share/fonts/opentype/noto/NotoSansCJK-Regular.ttc";
constexpr char kArabic[] = "/usr/share/fonts/truetype/noto/NotoSansArabic-Regular.ttf";
constexpr char kDevanagari[] = "/usr/share/fonts/truetype/noto/NotoSansDevanagari-Regular.ttf";

FMFontRef openFont(const char* path) {
    const CFStringRef name = CFStringCreateWithCString(nullptr, path, kCFStringEncodingUTF8);
    const FMFontRef font = FMFontCreateWithPath(name, 0, true);
    CFRelease(name);
    return font;
}

FT_Face openFace(const char* path) {
    static FT_Library library = [] {
        FT_Library made = nullptr;
        FT_Init_FreeType(&made);
        return made;
    }();
    FT_Face face = nullptr;
    FT_New_Face(library, path, 0, &face);
    return face;
}

// ---- Rendering

constexpr CGGlyph kFirst = 100, kGlyphs = 500;

FMGlyphDescription at(CGFloat size) {
    return {size, CGAffineTransformIdentity, {0, 0}, kFMGlyphAntialias};
}

// Sizes that no round before had: nothing is in the cache.
void FirstUseOurs(benchmark::State& state, const char* path) {
    const FMFontRef font = openFont(path);
    double size = static_cast<double>(state.range(0));
    for (auto _ : state) {
        size += 1.0 / 64;
        const FMGlyphDescription description = at(static_cast<CGFloat>(size));
        for (CGGlyph glyph = kFirst; glyph < kFirst + kGlyphs; ++glyph) {
            const FMGlyphRef record = FMFontCopyGlyph(font, glyph, &description);
            benchmark::DoNotOptimize(record->width);
            FMGlyphRelease(record);
        }
    }
    state.SetItemsProcessed(state.iterations() * kGlyphs);
    FMFontRelease(font);
}

// The masks are kept until the next round, as any user would: copied out of the slot.
void FirstUseFreeType(benchmark::State& state, const char* path) {
    const FT_Face face = openFace(path);
    double size = static_cast<double>(state.range(0));
    std::vector<std::unique_ptr<unsigned char[]>> masks;
    for (auto _ : state) {
        masks.clear();
        size += 1.0 / 64;
        FT_Set_Char_Size(face, 0, static_cast<FT_F26Dot6>(size * 64), 0, 0);
        for (FT_UInt glyph = kFirst; glyph < kFirst + kGlyphs; ++glyph) {
            FT_Load_Glyph(face, glyph, FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP);
            FT_Render_Glyph(face->glyph, FT_RENDER_MODE_NORMAL);
            const FT_Bitmap& bitmap = face->glyph->bitmap;
            const std::size_t bytes = bitmap.rows * static_cast<std::size_t>(bitmap.pitch);
            masks.emplace_back(new unsigned char[bytes + 1]);
            std::memcpy(masks.back().get(), bitmap.buffer, bytes);
        }
    }
    state.SetItemsProcessed(state.iterations() * kGlyphs);
    FT_Done_Face(face);
}

// A text's glyphs, all of them in the cache, on any number of threads.
void Cached(benchmark::State& state) {
    static const FMFontRef font = openFont(kSans);
    const FMGlyphDescription description = at(14);
    for (auto _ : state)
        for (CGGlyph glyph = 36; glyph < 136; ++glyph) {
            const FMGlyphRef record = FMFontCopyGlyph(font, glyph, &description);
            benchmark::DoNotOptimize(record->width);
            FMGlyphRelease(record);
        }
    state.SetItemsProcessed(state.iterations() * 100);
}

// ---- Shaping

const struct Text {
    const char* path;
    std::string text;
} kTexts[] = {
    {kSans, "The quick brown fox jumps over the lazy dog, 1234567890 times. AVATAR To office."},
    {kArabic, "السلام عليكم ورحمة الله وبركاته، كيف حالك اليوم؟"},
    {kDevanagari, "सभी मनुष्यों को गौरव और अधिकारों के मामले में "
     "जन्मजात स्वतन्त्रता और समानता प्राप्त है।"},
    {kChinese,
     "人人生而自由，在尊严和权利上一律平等。すべての人間は、生まれながらにして自由であり"},
};

std::string longer(const std::string& text) {
    std::string result;
    for (int i = 0; i < 20; ++i)
        result += text + " ";
    return result;
}

void shape(benchmark::State& state, hb_font_t* font, const std::string& text) {
    hb_buffer_t* const buffer = hb_buffer_create();
    for (auto _ : state) {
        hb_buffer_clear_contents(buffer);
        hb_buffer_add_utf8(buffer, text.data(), static_cast<int>(text.size()), 0, -1);
        hb_buffer_guess_segment_properties(buffer);
        hb_shape(font, buffer, nullptr, 0);
    }
    state.SetItemsProcessed(state.iterations() * hb_buffer_get_length(buffer));
    hb_buffer_destroy(buffer);
}

void ShapeOurs(benchmark::State& state) {
    const Text& text = kTexts[state.range(0)];
    const FMFontRef font = openFont(text.path);
    shape(state, FMFontGetHarfBuzzFont(font), longer(text.text));
    FMFontRelease(font);
}

void ShapeFreeType(benchmark::State& state) {
    const Text& text = kTexts[state.range(0)];
    const FT_Face face = openFace(text.path);
    FT_Set_Char_Size(face, 0, face->units_per_EM * 64, 0, 0);
    hb_font_t* const font = hb_ft_font_create_referenced(face);
    hb_ft_font_set_load_flags(font, FT_LOAD_NO_HINTING);
    shape(state, font, longer(text.text));
    hb_font_destroy(font);
    FT_Done_Face(face);
}

} // namespace

BENCHMARK_CAPTURE(FirstUseOurs, TrueType, kSans)->Arg(14)->Arg(48);
BENCHMARK_CAPTURE(FirstUseFreeType, TrueType, kSans)->Arg(14)->Arg(48);
BENCHMARK_CAPTURE(FirstUseOurs, Chinese, kChinese)->Arg(14)->Arg(48);
BENCHMARK_CAPTURE(FirstUseFreeType, Chinese, kChinese)->Arg(14)->Arg(48);
BENCHMARK(Cached)->ThreadRange(1, 2);
BENCHMARK(ShapeOurs)->DenseRange(0, 3);
BENCHMARK(ShapeFreeType)->DenseRange(0, 3);
