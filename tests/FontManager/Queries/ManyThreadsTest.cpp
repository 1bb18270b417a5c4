// ManyThreadsTest.cpp: one font asked by many threads while its face comes and goes.

#include "QueriedFont.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using namespace test;

TEST(QueriedFonts, AnswerManyThreadsWhileTheyArePurged) {
    const auto font = openFont("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf");
    ASSERT_TRUE(font);
    const UTF32Char codePoint = 'g';
    CGGlyph expectedGlyph = 0;
    CGSize expectedAdvance = {};
    ASSERT_TRUE(FMFontGetGlyphsForCodePoints(font.get(), &codePoint, &expectedGlyph, 1));
    ASSERT_TRUE(FMFontGetAdvancesForGlyphs(font.get(), &expectedGlyph, &expectedAdvance, 1));

    constexpr int kRounds = 200;
    std::atomic<int> wrong = 0;
    const auto ask = [&](int thread) {
        for (int round = 0; round < kRounds; ++round) {
            CGGlyph glyph = 0;
            CGSize advance = {};
            FMFontGetGlyphsForCodePoints(font.get(), &codePoint, &glyph, 1);
            FMFontGetAdvancesForGlyphs(font.get(), &glyph, &advance, 1);
            wrong += glyph != expectedGlyph || !CGSizeEqualToSize(advance, expectedAdvance);
            const auto path = cf::adopt(FMFontCopyPathForGlyph(font.get(), glyph));
            wrong += CGPathIsEmpty(path.get());
            const auto set = cf::adopt(FMFontCopyCharacterSet(font.get()));
            wrong += !CFCharacterSetIsCharacterMember(set.get(), 'g');
            wrong += FMFontGetLigatureCaretPositions(font.get(), glyph, nullptr, 0) != 0;
            if (round % 8 == thread)
                FMFontPurge(font.get());
            if (round % 8 == thread + 4)
                FMFontClearFaceData(font.get());
        }
    };
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back(ask, thread);
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
}
