// FontThreadsTest.cpp: fonts that many threads open, purge and ask at once.

#include "EditedFont.h"
#include "EveryCall.h"
#include "Font/FontRef.h"
#include "Support/Threads.h"

#include <ft2build.h>
#include FT_FREETYPE_H

#include <gtest/gtest.h>

using namespace test;

TEST(FontThreads, OpenPurgeAndAskOneFontAtOnce) {
    const auto path =
        cf::adopt(CFStringCreateWithCString(nullptr, kSans.c_str(), kCFStringEncodingUTF8));
    const auto font = fm::FontRef::adopt(FMFontCreateWithPath(path.get(), 0, true));
    ASSERT_TRUE(font);
    std::atomic<int> wrong = 0;
    onThreads([&](size_t number) {
        for (int round = 0; round < 60; ++round) {
            if (number == 0) {
                round % 2 ? FMFontPurge(font.get()) : FMFontClearFaceData(font.get());
                FMFontSetLastModtime(font.get(), round);
                FMFontSetPermFlags(font.get(), 0);
                continue;
            }
            const auto name = cf::adopt(FMFontCopyPostScriptName(font.get(), round % 3 == 0));
            wrong += !name || !CFEqual(name.get(), CFSTR("DejaVuSans"));
            FMFontLock(font.get());
            const FT_Face face = FMFontGetFTFaceUnsafe(font.get(), true);
            wrong += !face || face->num_glyphs != 6253 ||
                     FMFontGetFTFaceUnsafe(font.get(), false) != face;
            FMFontUnlock(font.get());
            wrong += FMFontGetMetrics(font.get())->unitsPerEm != 2048;
            wrong += FMFontGetFormat(font.get()) != kFMFontFormatOpenType;
            wrong += FMFontGetNumberOfGlyphs(font.get()) != 6253;
            FMFontIsActive(font.get());
            FMFontGetLastModtime(font.get());
        }
    });
    EXPECT_EQ(wrong, 0);
}

TEST(FontThreads, MakeAndEndFontsAtOnce) {
    const std::string bytes = fileBytes("/usr/share/fonts/opentype/urw-base35/D050000L.otf");
    std::atomic<int> opened = 0;
    onThreads([&](size_t) {
        for (int round = 0; round < 10; ++round) {
            const auto font =
                fm::FontRef::adopt(FMFontCreateFromMemory(bytes.data(), bytes.size(), 0, true));
            const fm::FontRef shared = font;
            askEverything(shared.get());
            const fm::FontRef lastResort = fm::FontRef::adopt(FMFontCreateLastResortFont());
            askEverything(lastResort.get());
            opened += font && lastResort;
        }
    });
    EXPECT_EQ(opened, 40);
}
