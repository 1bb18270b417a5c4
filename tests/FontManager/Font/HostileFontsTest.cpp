// HostileFontsTest.cpp: broken fonts of every container, asked everything.

#include "EditedFont.h"
#include "EveryCall.h"
#include "Font/FontRef.h"
#include "Support/CollectedLog.h"
#include "Support/FailingAllocator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

using namespace test;

namespace {

// Small fonts, one of each container.
std::vector<std::string> samples() {
    return {
        EditedFont().bytes(),
        fileBytes("/usr/share/fonts/opentype/urw-base35/D050000L.otf"),
        fileBytes("/usr/share/fonts/type1/urw-base35/D050000L.t1"),
        fileBytes("/usr/share/fonts/X11/misc/unifont_csur.pcf.gz"),
        bitmapFont("My Font", "Bold"),
    };
}

// Whether it opened; what it answers is not to be relied on.
bool survive(const std::string& bytes) {
    const auto font =
        fm::FontRef::adopt(FMFontCreateFromMemory(bytes.data(), bytes.size(), 0, true));
    askEverything(font.get());
    FMFontPurge(font.get());
    askEverything(font.get());
    return static_cast<bool>(font);
}

} // namespace

TEST(HostileFonts, AreSurvivedWhenCutOff) {
    const CollectedLog quiet;
    for (const std::string& whole : samples()) {
        ASSERT_TRUE(survive(whole));
        const size_t steps = std::min<size_t>(whole.size(), 60);
        for (size_t i = 0; i < steps; ++i)
            survive(whole.substr(0, whole.size() * i / steps));
        for (size_t length = 0; length < std::min<size_t>(whole.size(), 64); ++length)
            survive(whole.substr(0, length));
    }
}

TEST(HostileFonts, AreSurvivedWithBitsFlipped) {
    const CollectedLog quiet;
    std::mt19937 random(20260711);
    size_t opened = 0;
    for (const std::string& whole : samples()) {
        for (int round = 0; round < 60; ++round) {
            std::string broken = whole;
            // Every other time near the head, where the tables' places are told.
            const size_t reach = round % 2 ? broken.size() : std::min<size_t>(broken.size(), 600);
            for (int flips = 0; flips < 1 + round / 8; ++flips)
                broken[random() % reach] ^= static_cast<char>(1 << random() % 8);
            opened += survive(broken);
        }
    }
    EXPECT_GT(opened, 50u) << "too few got past the door to say anything";
}

TEST(HostileFonts, AreSurvivedWithWildTables) {
    const CollectedLog quiet;
    std::mt19937 random(4711);
    const EditedFont whole;
    for (const char* const tag : {"name", "OS/2", "post", "hhea", "head", "cmap", "maxp"}) {
        for (int round = 0; round < 30; ++round) {
            EditedFont broken = whole;
            std::string& table = broken.tables[tag];
            for (int changes = 0; changes < 4; ++changes)
                putBigEndian(table, 2 * (random() % (std::min<size_t>(table.size(), 200) / 2)),
                             round % 3 ? static_cast<uint32_t>(random()) : 0xFFFF, 2);
            survive(broken.bytes());
        }
        EditedFont without = whole;
        without.tables.erase(tag);
        survive(without.bytes());
    }
}

// In an SFNT wrapper: FreeType's reader of bitmap fonts falls over by itself.
TEST(HostileFonts, AreNoMatterWithoutMemory) {
    const std::string bytes = EditedFont().bytes();
    const CollectedLog quiet;
    HostLogSetThreshold(kHostLogFault);
    const FailureSweep sweep = failEachAllocation([&] {
        const auto font =
            fm::FontRef::adopt(FMFontCreateFromMemory(bytes.data(), bytes.size(), 0, true));
        for (const CopyName copy : {FMFontCopyFullName, FMFontCopyPostScriptName,
                                    FMFontCopyDesigner, FMFontCopyStyleName, FMFontCopyDisplayName})
            const auto name = cf::adopt(copy(font.get(), false));
        FMFontPurge(font.get());
        FMFontGetFTFaceUnsafe(font.get(), true);
    });
    EXPECT_GT(sweep.failures, 10u);
    EXPECT_EQ(sweep.leakedBytes, 0);
}
