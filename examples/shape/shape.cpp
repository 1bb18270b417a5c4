// shape.cpp: text in several scripts, with fonts for each found by themselves, as a picture.
//
//     shape OUTPUT.png [FONT [LINE…]]
//
// Each line is cut into runs of one font and one script. FONT, "DejaVu Sans" if none is named, has
// all that it can show; the rest falls to the fonts that cover it. Runs stand side by side in the
// line's direction, that of its first letter: numbers inside Arabic words, and whatever else needs
// the whole of the bidirectional algorithm, are not put in order. Ends with 1 where a character is
// in no font.

#include "XGFont.h"
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>
#include <FontManager/FontManager.h>

#include <ImageIO/ImageIO.h>
#include <hb.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr CGFloat kSize = 36, kMargin = 24, kLineHeight = 64;
constexpr size_t kWidth = 900;

constexpr const char* kSample[] = {
    "Affinity & fjörd — Čeština, Ελληνικά, Русский",
    "السلام عليكم ورحمة الله",
    "नमस्ते दुनिया, क्षत्रिय",
    "你好，世界。こんにちは 안녕하세요",
    "Emoji: 😀🎉👩‍🚀🇩🇪 in a line of Latin",
    "Mixed: Latin, عربي, हिन्दी and 漢字",
};

struct Release {
    void operator()(FMFontRef font) const { FMFontRelease(font); }
    void operator()(hb_buffer_t* buffer) const { hb_buffer_destroy(buffer); }
};
using Font = std::unique_ptr<FMFont, Release>;
using Buffer = std::unique_ptr<hb_buffer_t, Release>;

// ---- Characters

// Malformed bytes become U+FFFD, one each.
std::u32string decode(std::string_view utf8) {
    const Buffer buffer(hb_buffer_create());
    hb_buffer_add_utf8(buffer.get(), utf8.data(), static_cast<int>(utf8.size()), 0, -1);
    unsigned count = 0;
    const hb_glyph_info_t* const info = hb_buffer_get_glyph_infos(buffer.get(), &count);
    std::u32string text;
    for (unsigned i = 0; i < count; ++i)
        text += static_cast<char32_t>(info[i].codepoint);
    return text;
}

hb_script_t scriptOf(char32_t character) {
    return hb_unicode_script(hb_unicode_funcs_get_default(), character);
}

bool isNeutral(hb_script_t script) {
    return script == HB_SCRIPT_COMMON || script == HB_SCRIPT_INHERITED ||
           script == HB_SCRIPT_UNKNOWN;
}

hb_direction_t directionOf(hb_script_t script) {
    return hb_script_get_horizontal_direction(script);
}

// Belongs to what comes before it: marks, joiners and what they join, variation selectors, skin
// tones.
bool continues(const std::u32string& text, size_t index) {
    const char32_t character = text[index];
    return index > 0 &&
           (scriptOf(character) == HB_SCRIPT_INHERITED || character == 0x200D ||
            text[index - 1] == 0x200D || (character >= 0x1F3FB && character <= 0x1F3FF));
}

// The script of the next letter, from a place on; common where there is none.
hb_script_t nextScript(const std::u32string& text, size_t index) {
    for (; index < text.size(); ++index)
        if (const hb_script_t script = scriptOf(text[index]); !isNeutral(script))
            return script;
    return HB_SCRIPT_COMMON;
}

bool isPicture(char32_t character) {
    return character >= 0x1F000 && character < 0x20000;
}

// ---- Fonts

class Fonts {
public:
    explicit Fonts(const char* name) : library_(FMLibraryGetShared()) {
        const auto string =
            cf::adopt(CFStringCreateWithCString(nullptr, name, kCFStringEncodingUTF8));
        first_ = Font(FMLibraryCopyFontWithName(library_, string.get(), 0));
        if (!first_)
            first_ = Font(FMLibraryCopyDefaultFont(library_));
    }

    explicit operator bool() const { return first_ != nullptr; }

    // The font for a character; the first one shows what none has.
    FMFontRef fontFor(char32_t character) const {
        if (!isPicture(character) && has(first_.get(), character))
            return first_.get();
        uint32_t start = 0, end = 0, set = 0;
        FMLibraryQueryFallback(library_, character, &start, &end, &set);
        const FMFontRef *font = nullptr, *last = nullptr;
        FMLibraryGetFallbackFontSet(library_, set, &font, &last);
        FMFontRef found = nullptr;
        for (; font != last; ++font)
            if (has(*font, character) && (!found || isBetter(*font, found, character)))
                found = *font;
        return found ? found : first_.get();
    }

    static bool has(FMFontRef font, char32_t character) {
        const UTF32Char codePoint = character;
        CGGlyph glyph = 0;
        return FMFontGetGlyphsForCodePoints(font, &codePoint, &glyph, 1);
    }

private:
    // Pictures in colours, letters upright, regular and as outlines.
    static bool isBetter(FMFontRef font, FMFontRef other, char32_t character) {
        return rank(font, character) > rank(other, character);
    }
    static int rank(FMFontRef font, char32_t character) {
        if (isPicture(character))
            return FMFontHasColorBitmap(font);
        const FMFontMetrics* const metrics = FMFontGetMetrics(font);
        const FMFontFormat format = FMFontGetFormat(font);
        const bool isOutline = format == kFMFontFormatOpenType || format == kFMFontFormatTrueType;
        const bool isPlain = metrics && metrics->weight == 0 &&
                             !(metrics->traits & (kFMFontTraitItalic | kFMFontTraitCondensed));
        // Fonts of all scripts at once draw each of them in squares.
        const bool isProportional = metrics && !(metrics->traits & kFMFontTraitFixedPitch);
        return (isOutline ? 4 : 0) + (isPlain ? 2 : 0) + (isProportional ? 1 : 0);
    }

    FMLibraryRef library_;
    Font first_;
};

// ---- Runs

struct Run {
    FMFontRef font;
    hb_script_t script;
    size_t start, length;
};

// What stands between two scripts goes with the one that runs in the line's direction.
hb_script_t between(hb_script_t before, hb_script_t after, hb_direction_t line) {
    if (before == after || directionOf(before) == line)
        return before;
    return directionOf(after) == line ? after : HB_SCRIPT_COMMON;
}

std::vector<Run> cut(const std::u32string& text, const Fonts& fonts, hb_direction_t line) {
    std::vector<Run> runs;
    for (size_t i = 0; i < text.size(); ++i) {
        Run* const last = runs.empty() ? nullptr : &runs.back();
        if (last && continues(text, i)) {
            ++last->length;
            continue;
        }
        hb_script_t script = scriptOf(text[i]);
        const bool isNeutralHere = isNeutral(script);
        if (isNeutralHere)
            script = between(last ? last->script : HB_SCRIPT_COMMON, nextScript(text, i), line);
        const bool staysInFont = isNeutralHere && last && !isPicture(text[last->start]) &&
                                 !isPicture(text[i]) && Fonts::has(last->font, text[i]);
        const FMFontRef font = staysInFont ? last->font : fonts.fontFor(text[i]);
        if (last && last->font == font && last->script == script)
            ++last->length;
        else
            runs.push_back({font, script, i, 1});
    }
    return runs;
}

// ---- Drawing

// Draws a run with its left end at `at`, and gives its width. Says which characters no font has,
// and adds them up.
CGFloat draw(CGContextRef context, const std::u32string& text, const Run& run, CGPoint at,
             int& missing) {
    const Buffer buffer(hb_buffer_create());
    hb_buffer_add_utf32(buffer.get(), reinterpret_cast<const uint32_t*>(text.data()),
                        static_cast<int>(text.size()), static_cast<unsigned>(run.start),
                        static_cast<int>(run.length));
    hb_buffer_set_script(buffer.get(), run.script);
    hb_buffer_guess_segment_properties(buffer.get());
    hb_shape(FMFontGetHarfBuzzFont(run.font), buffer.get(), nullptr, 0);
    unsigned count = 0;
    const hb_glyph_info_t* const info = hb_buffer_get_glyph_infos(buffer.get(), &count);
    const hb_glyph_position_t* const positions =
        hb_buffer_get_glyph_positions(buffer.get(), nullptr);

    const auto font = cf::adopt(XGFontCreateWithFMFont(run.font));
    const CGFloat scale = kSize / static_cast<CGFloat>(CGFontGetUnitsPerEm(font.get()));
    std::vector<CGGlyph> glyphs(count);
    std::vector<CGPoint> places(count);
    CGFloat pen = 0;
    for (unsigned i = 0; i < count; ++i) {
        glyphs[i] = static_cast<CGGlyph>(info[i].codepoint);
        if (glyphs[i] == 0) {
            std::fprintf(stderr, "shape: no font has U+%04X\n", unsigned{text[info[i].cluster]});
            ++missing;
        }
        places[i] = {pen + static_cast<CGFloat>(positions[i].x_offset) * scale,
                     static_cast<CGFloat>(positions[i].y_offset) * scale};
        pen += static_cast<CGFloat>(positions[i].x_advance) * scale;
    }
    CGContextSetFont(context, font.get());
    CGContextSetFontSize(context, kSize);
    CGContextSetTextPosition(context, at.x, at.y);
    CGContextShowGlyphsAtPositions(context, glyphs.data(), places.data(), count);
    return pen;
}

int drawLine(CGContextRef context, std::string_view utf8, const Fonts& fonts, CGFloat baseline) {
    const std::u32string text = decode(utf8);
    const hb_direction_t direction = directionOf(nextScript(text, 0));
    std::vector<Run> runs = cut(text, fonts, direction);
    if (direction == HB_DIRECTION_RTL)
        std::ranges::reverse(runs);
    CGPoint at = {kMargin, baseline};
    int missing = 0;
    for (const Run& run : runs)
        at.x += draw(context, text, run, at, missing);
    return missing;
}

bool write(CGContextRef context, const char* path) {
    const auto name = cf::adopt(CFStringCreateWithCString(nullptr, path, kCFStringEncodingUTF8));
    const auto url =
        cf::adopt(CFURLCreateWithFileSystemPath(nullptr, name.get(), kCFURLPOSIXPathStyle, false));
    const auto image = cf::adopt(CGBitmapContextCreateImage(context));
    const auto file =
        cf::adopt(CGImageDestinationCreateWithURL(url.get(), CFSTR("public.png"), 1, nullptr));
    CGImageDestinationAddImage(file.get(), image.get(), nullptr);
    return CGImageDestinationFinalize(file.get());
}

} // namespace

int main(int count, char** arguments) {
    if (count < 2) {
        std::fprintf(stderr, "usage: shape OUTPUT.png [FONT [LINE…]]\n");
        return 2;
    }
    const Fonts fonts(count > 2 ? arguments[2] : "DejaVu Sans");
    if (!fonts) {
        std::fprintf(stderr, "shape: there are no fonts\n");
        return 1;
    }
    std::vector<std::string_view> lines(std::begin(kSample), std::end(kSample));
    if (count > 3)
        lines.assign(arguments + 3, arguments + count);

    const size_t height =
        static_cast<size_t>(2 * kMargin + kLineHeight * static_cast<CGFloat>(lines.size()));
    const auto space = cf::adopt(CGColorSpaceCreateDeviceRGB());
    const auto context = cf::adopt(CGBitmapContextCreate(nullptr, kWidth, height, 8, 0, space.get(),
                                                         kCGImageAlphaNoneSkipLast));
    CGContextSetGrayFillColor(context.get(), 1, 1);
    CGContextFillRect(context.get(),
                      CGRectMake(0, 0, CGFloat{kWidth}, static_cast<CGFloat>(height)));
    CGContextSetGrayFillColor(context.get(), 0.1f, 1);
    CGFloat baseline = static_cast<CGFloat>(height) - kMargin - kLineHeight * 0.7f;
    int missing = 0;
    for (const std::string_view line : lines) {
        missing += drawLine(context.get(), line, fonts, baseline);
        baseline -= kLineHeight;
    }
    if (write(context.get(), arguments[1]))
        return missing > 0;
    std::fprintf(stderr, "shape: %s cannot be written\n", arguments[1]);
    return 1;
}
