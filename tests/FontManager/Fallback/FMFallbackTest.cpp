// FMFallbackTest.cpp: which fonts of a library can draw which code points.

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>
#include <FontManager/FontManager.h>

#include "Font/FontRef.h"
#include "Support/InstalledFonts.h"
#include "Support/Threads.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

constexpr uint32_t kCodePoints = 0x110000;

using Ids = std::vector<FMFontId>;

struct ReleaseLibrary {
    void operator()(FMLibraryRef library) const { FMLibraryRelease(library); }
};

// A library over some of the installed fonts, and what HarfBuzz says that they map.
class Fonts {
public:
    Fonts() : database_(cf::adopt(FMDatabaseCreateInMemory())) {
        const auto& faces = test::installedFaces();
        for (std::size_t index = 0; index < faces.size(); index += 19)
            add(faces[index]);
        library_.reset(FMLibraryCreate(nullptr, database_.get()));
    }

    FMLibraryRef library() const { return library_.get(); }
    const Ids& covering(uint32_t codePoint) const { return covering_[codePoint]; }
    const std::vector<fm::FontRef>& fonts() const { return fonts_; }

private:
    void add(const test::InstalledFace& face) {
        const auto path =
            cf::adopt(CFStringCreateWithCString(nullptr, face.path.c_str(), kCFStringEncodingUTF8));
        auto font = fm::FontRef::adopt(FMFontCreateWithPath(path.get(), face.index, false));
        const test::HarfBuzzFace oracle = face.openHarfBuzz();
        hb_set_t* const mapped = hb_set_create();
        if (oracle)
            hb_face_collect_unicodes(oracle.get(), mapped);
        // What is no SFNT means nothing to HarfBuzz, and some fonts have no PostScript name.
        const auto name = cf::adopt(FMFontCopyPostScriptName(font.get(), false));
        if (hb_set_get_population(mapped) > 0 && name &&
            FMDatabaseStoreFont(database_.get(), font.get())) {
            hb_codepoint_t codePoint = HB_SET_VALUE_INVALID;
            while (hb_set_next(mapped, &codePoint))
                if (codePoint < kCodePoints)
                    covering_[codePoint].push_back(FMFontGetFontId(font.get()));
            fonts_.push_back(std::move(font));
        }
        hb_set_destroy(mapped);
    }

    std::vector<Ids> covering_{kCodePoints};
    std::vector<fm::FontRef> fonts_;
    cf::Ref<FMDatabaseRef> database_;
    std::unique_ptr<std::remove_pointer_t<FMLibraryRef>, ReleaseLibrary> library_;
};

Ids idsOfSet(FMLibraryRef library, uint32_t set) {
    const FMFontRef* first = nullptr;
    const FMFontRef* end = nullptr;
    FMLibraryGetFallbackFontSet(library, set, &first, &end);
    Ids ids;
    for (; first != end; ++first)
        ids.push_back(FMFontGetFontId(*first));
    return ids;
}

FMFallback::FontList noFonts(uint32_t, FMFallback*) {
    return {};
}

TEST(FMFallback, KnowsTheFontsOfEveryCodePoint) {
    const Fonts fonts;
    ASSERT_GT(fonts.fonts().size(), 10u);
    std::map<uint32_t, Ids> sets;
    for (uint32_t codePoint = 0; codePoint < kCodePoints; ++codePoint) {
        uint32_t start = 1, end = 1, set = 1;
        FMLibraryQueryFallback(fonts.library(), codePoint, &start, &end, &set);
        const Ids& expected = fonts.covering(codePoint);
        if (expected.empty()) {
            ASSERT_EQ(start + end + set, 0u) << codePoint;
            continue;
        }
        ASSERT_TRUE(start <= codePoint && codePoint < end) << codePoint;
        const auto [known, isNew] = sets.try_emplace(set);
        if (isNew)
            known->second = idsOfSet(fonts.library(), set);
        ASSERT_EQ(known->second, expected) << codePoint;
    }
    std::set<Ids> distinct;
    for (const auto& [set, ids] : sets)
        EXPECT_TRUE(distinct.insert(ids).second) << "two sets of the same fonts";

    // All has been asked in order: ranges of one set below the limit do not touch.
    uint32_t start = 0, end = 0, set = 0;
    for (uint32_t codePoint = 0; codePoint < 0x10FFF; codePoint = std::max(end, codePoint + 1)) {
        const uint32_t lastEnd = end, lastSet = set;
        FMLibraryQueryFallback(fonts.library(), codePoint, &start, &end, &set);
        if (start > 0 && start == lastEnd)
            EXPECT_NE(set, lastSet) << codePoint;
    }
    EXPECT_TRUE(idsOfSet(fonts.library(), 0xFFFFFFFF).empty());
}

TEST(FMFallback, AnswersAlikeFromCharacterMaps) {
    const Fonts fonts;
    FMFallback asked(fonts.library(), noFonts);
    FMFallback added(nullptr, noFonts);
    FMFallback storing(fonts.library(), noFonts);
    // The order in which fonts come makes no difference.
    for (auto font = fonts.fonts().rbegin(); font != fonts.fonts().rend(); ++font) {
        added.addFontToCharmaps(font->get());
        storing.addFontToCharmaps(font->get());
    }
    storing.storeCharmaps(nullptr);
    FMFallback stored(fonts.library(), noFonts);
    stored.initWithCharMaps();
    for (uint32_t codePoint = 0; codePoint < kCodePoints; codePoint += 1 + codePoint % 3) {
        const FMFallbackRange* const expected = asked.query(codePoint);
        for (FMFallback* const other : {&added, &stored}) {
            const FMFallbackRange* const range = other->query(codePoint);
            ASSERT_EQ(range != nullptr, expected != nullptr) << codePoint;
            if (range)
                ASSERT_TRUE(range->start == expected->start && range->end == expected->end &&
                            range->set == expected->set)
                    << codePoint;
        }
        ASSERT_EQ(asked._queryCodepoint(codePoint), expected);
    }
}

TEST(FMFallback, StoresTheCodePointsThatAreWanted) {
    const Fonts fonts;
    FMFallback storing(fonts.library(), noFonts);
    storing.addFontToCharmaps(fonts.fonts()[0].get());
    const auto digits =
        cf::adopt(CFCharacterSetCreateWithCharactersInRange(nullptr, CFRangeMake('0', 10)));
    storing.storeCharmaps(digits.get());
    FMFallback stored(fonts.library(), noFonts);
    stored.initWithCharMaps();
    for (uint32_t codePoint = 0; codePoint < 0x300; ++codePoint)
        EXPECT_EQ(stored.query(codePoint) != nullptr, codePoint >= '0' && codePoint <= '9' &&
                                                          !fonts.covering(codePoint).empty() &&
                                                          fonts.covering(codePoint)[0] == 1)
            << codePoint;
}

TEST(FMFallback, GivesAllThreadsTheSameSets) {
    const Fonts fonts;
    test::onThreads([&](std::size_t thread) {
        for (uint32_t step = 0; step < 20000; ++step) {
            const uint32_t codePoint = (step * 37 + static_cast<uint32_t>(thread) * 11) % 0x3000;
            uint32_t start = 0, end = 0, set = 0;
            FMLibraryQueryFallback(fonts.library(), codePoint, &start, &end, &set);
            const Ids& expected = fonts.covering(codePoint);
            ASSERT_EQ(end != 0, !expected.empty());
            if (end != 0)
                ASSERT_EQ(idsOfSet(fonts.library(), set), expected);
        }
    });
}

TEST(FMFallbackDeathTest, EndsTheProcessWithoutACallbackToAsk) {
    FMFallback fallback(nullptr, nullptr);
    EXPECT_EQ(fallback.query('A'), nullptr);
    EXPECT_TRUE(fallback.getFontSet(0).empty()) << "there is no set to ask for";
    const auto path = cf::adopt(CFStringCreateWithCString(
        nullptr, test::installedFaces().front().path.c_str(), kCFStringEncodingUTF8));
    fallback.addFontToCharmaps(fm::FontRef::adopt(FMFontCreateWithPath(path.get(), 0, true)).get());
    ASSERT_NE(fallback.query(' '), nullptr);
    EXPECT_DEATH(fallback.getFontSet(0), "");
}

} // namespace
