// FMFontPostScript.cpp: fonts as PostScript programs.

#include <CoreGraphics/CGPath.h>
#include <FontManager/FMFont.h>
#include <FontManager/FMFontGlyphs.h>
#include <FontManager/FMGlyph.h>
#include <FontManager/FMPostScript.h>

#include "Core/Object/Saturate.h"
#include "Font/FaceUse.h"
#include "Glyph/GlyphRecord.h"
#include "PostScript/PostScriptText.h"
#include "PostScript/Type1Outline.h"

#include <span>
#include <utility>

namespace {

using fm::Digits;
using fm::PostScriptText;

constexpr std::size_t kCodes = 256;
// Of restrictions: restricted licence, and no subsetting.
constexpr std::uint8_t kForbidsSubsets = 1 | 2;

struct Program {
    FMFontRef font;
    CFStringRef name;
    std::span<const CGGlyph> glyphs;
    const CGGlyph* encoding;
    const FMFontMetrics& metrics;
};

cf::Ref<CFStringRef> nameOf(FMFontRef font, CGGlyph glyph) {
    cf::Ref<CFStringRef> name = cf::adopt(FMFontCopyGlyphName(font, glyph));
    return name && CFStringGetLength(name.get()) > 0 ? std::move(name) : nullptr;
}

std::int64_t whole(CGFloat value) {
    return cg::saturate<std::int64_t>(value);
}

void appendEncoding(PostScriptText& text, FMFontRef font, const CGGlyph* encoding) {
    text << "256 array 0 1 255 { 1 index exch /.notdef put } for\n";
    for (std::size_t code = 0; code < kCodes; ++code) {
        if (encoding[code] == 0)
            continue;
        if (const auto name = nameOf(font, encoding[code]))
            text << "dup " << static_cast<std::int64_t>(code) << " /" << name.get() << " put\n";
    }
}

// Deliberate: what is written as the embedding permissions is the family class, which the top four
// bits of the traits hold as a signed number, printed as an unsigned one.
void appendFontInfo(PostScriptText& text, const FMFontMetrics& metrics) {
    const auto familyClass =
        static_cast<std::uint32_t>(static_cast<std::int32_t>(metrics.traits) >> 28);
    if (familyClass != 0)
        text << "/FontInfo 1 dict dup begin /FSType " << std::int64_t{familyClass}
             << " def end readonly def\n";
}

// ---- Type 1

constexpr std::string_view kPrivateHead =
    "dup /Private 13 dict dup begin\n"
    "/RD { string currentfile exch readstring pop } executeonly def\n"
    "/ND { noaccess def } executeonly def\n"
    "/NP { noaccess put } executeonly def\n"
    "/BlueValues [] def\n"
    "/MinFeature { 16 16 } def\n"
    "/OtherSubrs [{}{}{}{}{}{}{}{}{}{}{}{}{}{}{}{}{}{}{}{}{ 16384 div 4 1 roll 16384 div 4 1 roll "
    "16384 div 4 1 roll 16384 div 4 1 roll 0 0 matrix astore matrix currentmatrix exch concat } "
    "executeonly { setmatrix } executeonly] noaccess def\n";

constexpr std::string_view kPrivateTail = "end end readonly put noaccess put\n"
                                          "dup /FontName get exch definefont pop\n"
                                          "mark currentfile closefile\n";

constexpr std::string_view kZeroes =
    "0000000000000000000000000000000000000000000000000000000000000000\n";
static_assert(kZeroes.size() == 65);

// Deliberate: the width is the bounding box's, for every glyph, instead of its advance, and the
// length before the program is that of all that was written.
bool appendGlyph(PostScriptText& text, const Program& program, CGGlyph glyph) {
    const auto name = nameOf(program.font, glyph);
    const auto path = cf::adopt(FMFontCopyPathForGlyph(program.font, glyph));
    const fm::GlyphPointer record(fm::recordOf(FMFontCopyGlyph(program.font, glyph, nullptr)));
    if (!name || !path || !record)
        return false;
    PostScriptText commands;
    commands << std::int64_t{record->info} << " " << whole(program.metrics.bbox.size.width)
             << " hsbw\n";
    fm::appendType1Outline(commands, path.get());
    const std::int64_t length = text.length();
    text << "/" << name.get() << " " << length << " RD\n" << commands << "ND\n";
    return true;
}

// A glyph that cannot be written ends it, without its tail.
PostScriptText privatePart(const Program& program) {
    PostScriptText text;
    text << kPrivateHead << "2 index /CharStrings "
         << static_cast<std::int64_t>(program.glyphs.size()) << " dict dup begin\n";
    for (const CGGlyph glyph : program.glyphs)
        if (!appendGlyph(text, program, glyph))
            return text;
    text << kPrivateTail;
    return text;
}

CFDataRef createType1(const Program& program) {
    const FMFontMetrics& metrics = program.metrics;
    const CGRect box = metrics.bbox;
    const Digits scale{1.0 / metrics.unitsPerEm, 20};
    PostScriptText text;
    text << "%!FontType1-1.0: " << program.name << " 1.000.1.000\n";
    appendFontInfo(text, metrics);
    text << "14 dict begin /FontName /" << program.name << " def\n"
         << "/PaintType 0 def\n/FontType 1 def\n/Encoding ";
    appendEncoding(text, program.font, program.encoding);
    text << "readonly def\n"
         << "/FontMatrix [ " << scale << " 0 0 " << scale << " 0 0 ]\n"
         << "/FontBBox { " << whole(CGRectGetMinX(box)) << " " << whole(CGRectGetMinY(box)) << " "
         << whole(CGRectGetMaxX(box)) << " " << whole(CGRectGetMaxY(box)) << " } def\n"
         << "currentdict currentfile eexec\n"
         << privatePart(program);
    for (int line = 0; line < 8; ++line)
        text << kZeroes;
    text << "cleartomark end\n";
    return std::move(text).create();
}

// ---- Type 42

void appendGlyphIndices(PostScriptText& text, const Program& program) {
    text << static_cast<std::int64_t>(program.glyphs.size()) << " dict dup begin\n";
    for (std::size_t i = 0; i < program.glyphs.size(); ++i)
        if (const auto name = nameOf(program.font, program.glyphs[i]))
            text << "/" << name.get() << " " << static_cast<std::int64_t>(i) << " def\n";
    text << "end ";
}

// Deliberate: the font's tables are not written.
CFDataRef createType42(const Program& program) {
    const FMFontMetrics& metrics = program.metrics;
    const CGRect box = metrics.bbox;
    PostScriptText text;
    text << "%!PS-TrueTypeFont-1.000-1.000-1\n";
    appendFontInfo(text, metrics);
    text << "14 dict begin /FontName /" << program.name << " def\n"
         << "/PaintType 0 def\n/Encoding ";
    appendEncoding(text, program.font, program.encoding);
    text << "readonly def\n/FontType 42 def\n/FontMatrix matrix def\n"
         << "/FontBBox [ " << Digits{static_cast<double>(metrics.unitsPerEm)} << " "
         << Digits{CGRectGetMinX(box)} << " 1 index div " << Digits{CGRectGetMinY(box)}
         << " 2 index div " << Digits{CGRectGetMaxX(box)} << " 3 index div "
         << Digits{CGRectGetMaxY(box)} << " 5 -1 roll div ] cvx def\n"
         << "/sfnts [<\n>] def\n/CharStrings ";
    appendGlyphIndices(text, program);
    text << "readonly def\n"
         << "currentdict dup\n/FontName get exch definefont pop end\n";
    return std::move(text).create();
}

} // namespace

CFDataRef FMFontCreatePostScriptEncoding(FMFontRef font, const CGGlyph* encoding) {
    if (!font || !encoding)
        return nullptr;
    const std::lock_guard hold(font->mutex);
    PostScriptText text;
    appendEncoding(text, font, encoding);
    return std::move(text).create();
}

CFDataRef FMFontCreatePostScriptSubset(FMFontRef font, CFStringRef name,
                                       CGFontPostScriptFormat format, const CGGlyph* glyphs,
                                       size_t count, const CGGlyph* encoding) {
    if (!font || !name || !encoding || (!glyphs && count > 0) ||
        (FMFontGetRestrictions(font) & kForbidsSubsets))
        return nullptr;
    const fm::FaceUse use(font);
    const FMFontMetrics* const metrics = FMFontGetMetrics(font);
    if (!use || !metrics || !FT_IS_SCALABLE(use.face()))
        return nullptr;
    const Program program{font, name, {glyphs, count}, encoding, *metrics};
    switch (format) {
    case kCGFontPostScriptFormatType1:
        return createType1(program);
    case kCGFontPostScriptFormatType42:
        return createType42(program);
    default:
        return nullptr;
    }
}
