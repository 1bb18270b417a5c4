// AllocationFailureTest.cpp: queries whose memory is refused, one allocation after another.

#include "QueriedFont.h"
#include "Support/FailingAllocator.h"

#include <gtest/gtest.h>

using namespace test;

namespace {

// Not a variable font: FreeType 2.12 reads a null pointer when it closes one whose axes it had no
// memory to read.
constexpr const char* kFont = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";

CGGlyph glyphOfA(FMFontRef font) {
    CGGlyph glyph = 0;
    const UTF32Char codePoint = 'A';
    FMFontGetGlyphsForCodePoints(font, &codePoint, &glyph, 1);
    return glyph;
}

// What a query says, as a number; 0 is what it says when it has nothing. Outlines are missing: for
// want of memory, Skia's paths end the process.
const struct {
    const char* what;
    long (*ask)(FMFontRef);
} kQueries[] = {
    {"glyph", [](FMFontRef font) -> long { return glyphOfA(font); }},
    {"advance",
     [](FMFontRef font) -> long {
         const CGGlyph glyph = 5;
         CGSize size = {};
         FMFontGetAdvancesForGlyphs(font, &glyph, &size, 1);
         return static_cast<long>(size.width);
     }},
    {"box",
     [](FMFontRef font) -> long {
         const CGGlyph glyph = 5;
         CGRect rect = {};
         FMFontGetBoundingRectsForGlyphs(font, &glyph, &rect, 1);
         return static_cast<long>(rect.size.width);
     }},
    {"tables",
     [](FMFontRef font) -> long {
         const auto tags = cf::adopt(FMFontCopyAvailableTables(font));
         return tags ? CFArrayGetCount(tags.get()) : 0;
     }},
    {"table",
     [](FMFontRef font) -> long {
         const auto table = cf::adopt(FMFontCopyTable(font, 0x68656164));
         return table ? CFDataGetLength(table.get()) : 0;
     }},
    {"features", [](FMFontRef font) -> long { return FMFontGetAATFeaturesCount(font); }},
    {"carets",
     [](FMFontRef font) -> long { return FMFontGetLigatureCaretPositions(font, 5, nullptr, 0); }},
    {"character set",
     [](FMFontRef font) -> long {
         const auto set = cf::adopt(FMFontCopyCharacterSet(font));
         return set && CFCharacterSetIsCharacterMember(set.get(), 'A');
     }},
};

} // namespace

TEST(QueriesWithoutMemory, HaveNothingToSayOrTheWholeTruth) {
    for (const auto& [what, ask] : kQueries) {
        const auto font = openFont(kFont);
        ASSERT_TRUE(font);
        const long truth = ask(font.get());
        int refused = 0;
        for (size_t number = 1; number <= 60; ++number) {
            FMFontPurge(font.get());
            FMFontGetFTFaceUnsafe(font.get(), true);
            long answer = 0;
            size_t allocations = 0;
            {
                const AllocationMeter meter;
                const AllocationFailure failure(number);
                answer = ask(font.get());
                allocations = meter.allocations();
            }
            EXPECT_TRUE(answer == truth || answer == 0) << what << " without " << number;
            refused += answer != truth;
            if (allocations + 1 < number)
                break;
        }
        std::printf("%-13s %ld, refused %d times\n", what, truth, refused);
    }
}
