// GlyphCacheTest.cpp: how many bytes of glyphs are kept, and by how many threads at once.

#include "Glyph/GlyphCache.h"

#include "Descriptions.h"
#include "Support/FontFiles.h"
#include "Support/Threads.h"

#include <gtest/gtest.h>

#include <random>

using fm::GlyphCache;
using fm::GlyphKey;
using fm::GlyphPointer;

namespace {

GlyphKey keyOf(unsigned number) {
    return {.font = 1 + number / 60000, .size = 640, .glyph = static_cast<CGGlyph>(number % 60000)};
}

// As many rows as the key says, each of four bytes.
GlyphPointer make(const GlyphKey& key, uint32_t rows) {
    return fm::makeGlyphRecord(key, kFMGlyphFormatGreyMask, 4, rows);
}

} // namespace

TEST(GlyphCache, FindsWhatWasAddedUntilItsRoomIsNeeded) {
    const int32_t limit = 64 << 10;
    GlyphCache cache(limit);
    for (unsigned i = 0; i < 5000; ++i) {
        cache.add(*make(keyOf(i), 64));
        EXPECT_LE(cache.bytes(), size_t{64} << 10);
        // Used all the time, so that it is never dropped.
        if (i > 0)
            EXPECT_TRUE(cache.find(keyOf(0))) << i;
    }
    EXPECT_GT(cache.bytes(), size_t{60} << 10);
    EXPECT_TRUE(cache.find(keyOf(4999)));
    EXPECT_FALSE(cache.find(keyOf(1)));
    cache.clear();
    EXPECT_EQ(cache.bytes(), 0u);
    EXPECT_FALSE(cache.find(keyOf(4999)));
}

TEST(GlyphCache, RecordsInUseOutliveTheirPlace) {
    const int32_t limit = 1 << 20;
    GlyphCache cache(limit);
    std::vector<GlyphPointer> users;
    cache.add(*make(keyOf(7), 1));
    // More than pins have room for: they become counted references on the way.
    for (int i = 0; i < 1000; ++i)
        users.push_back(cache.find(keyOf(7)));
    cache.clear();
    EXPECT_EQ(users[0]->count, 1000);
    for (const GlyphPointer& user : users)
        EXPECT_EQ(user->key, keyOf(7));
    users.resize(1);
    EXPECT_EQ(users[0]->count, 1);
}

TEST(GlyphCache, TooLargeARecordAndALimitOfNothingAreNotKept) {
    int32_t limit = 16 << 10;
    GlyphCache cache(limit);
    cache.add(*make(keyOf(1), 1000));
    EXPECT_FALSE(cache.find(keyOf(1)));
    limit = -1;
    cache.add(*make(keyOf(2), 1));
    EXPECT_EQ(cache.bytes(), 0u);
}

TEST(GlyphCache, ThreadsShareRecordsThatComeAndGo) {
    const int32_t limit = 32 << 10;
    GlyphCache cache(limit);
    test::onThreads([&](size_t thread) {
        std::minstd_rand random(static_cast<unsigned>(thread) + 1);
        std::vector<GlyphPointer> kept;
        for (int i = 0; i < 20000; ++i) {
            const GlyphKey key = keyOf(static_cast<unsigned>(random() % 500));
            GlyphPointer record = cache.find(key);
            if (!record) {
                record = make(key, 8 + key.glyph % 32);
                record->info = key.glyph;
                cache.add(*record);
            }
            ASSERT_EQ(record->key, key);
            ASSERT_EQ(record->info, key.glyph);
            kept.push_back(std::move(record));
            if (kept.size() > 100)
                kept.clear();
        }
    });
    EXPECT_LE(cache.bytes(), size_t{32} << 10);
}

TEST(GlyphCache, ThreadsDrawWithOneFont) {
    const test::Font font = test::openFont(test::kTrueTypeFont);
    std::vector<std::vector<FMGlyphRef>> seen(test::kThreads);
    test::onThreads([&](size_t thread) {
        for (int round = 0; round < 3; ++round)
            for (CGGlyph glyph = 36; glyph < 90; ++glyph) {
                const auto description = test::upright(11.f + static_cast<CGFloat>(round));
                const test::Glyph record = test::copyGlyph(font.get(), glyph, description);
                ASSERT_TRUE(record);
                FMFontLock(font.get());
                EXPECT_EQ(FMFontGetGlyphUnsafe(font.get(), glyph, &description)->width,
                          record->width);
                FMFontUnlock(font.get());
            }
        static_cast<void>(thread);
    });
}

TEST(GlyphCache, StaysWithinItsBytesWhileTenThousandCharactersAreDrawn) {
    const test::Font font = test::openFont(test::kChinese);
    const test::BareFace bare(test::kChinese);
    GlyphCache& cache = GlyphCache::shared();
    size_t most = 0;
    int drawn = 0;
    for (FT_ULong character = 0x4E00; drawn < 10000 && character < 0x9FFF; ++character) {
        const CGGlyph glyph = bare.glyph(character);
        if (glyph == 0)
            continue;
        const test::Glyph record = test::copyGlyph(font.get(), glyph, test::upright(40));
        ASSERT_TRUE(record && record->width > 0);
        most = std::max(most, cache.bytes());
        ++drawn;
    }
    EXPECT_EQ(drawn, 10000);
    EXPECT_LE(most, size_t{8} << 20);
    EXPECT_GT(most, size_t{7} << 20);
}
