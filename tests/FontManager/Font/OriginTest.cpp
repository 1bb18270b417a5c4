// OriginTest.cpp: fonts from files, memory and providers, and their faces opened again.

#include "EditedFont.h"
#include "FontManager/Queries/QueriedFont.h"
#include "Support/CollectedLog.h"
#include "Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

using namespace test;
using testing::ElementsAre;
using testing::EndsWith;
using testing::StartsWith;

namespace {

struct Stream {
    std::string bytes = fileBytes(kSans);
    size_t position = 0;

    static size_t read(void* info, void* buffer, size_t count) {
        auto& self = *static_cast<Stream*>(info);
        count = self.bytes.copy(static_cast<char*>(buffer), count, self.position);
        self.position += count;
        return count;
    }
    static off_t skip(void* info, off_t count) {
        auto& self = *static_cast<Stream*>(info);
        const size_t rest = self.bytes.size() - self.position;
        const size_t skipped = std::min(static_cast<size_t>(count), rest);
        self.position += skipped;
        return static_cast<off_t>(skipped);
    }
    static void rewind(void* info) { static_cast<Stream*>(info)->position = 0; }
    static size_t readAt(void* info, void* buffer, off_t position, size_t count) {
        return static_cast<Stream*>(info)->bytes.copy(static_cast<char*>(buffer), count,
                                                      static_cast<size_t>(position));
    }
};

using Provider = cf::Ref<CGDataProviderRef>;

// Advances and names read after a purge show that the face is there again, from the same bytes.
void expectWorkingFont(const fm::FontRef& font, const char* what) {
    ASSERT_TRUE(font) << what;
    for (int time = 0; time < 2; ++time) {
        EXPECT_EQ(text(cf::adopt(FMFontCopyFullName(font.get(), true)).get()), "DejaVu Sans")
            << what;
        const CGGlyph glyph = FMFontGetGlyphWithName(font.get(), "A");
        CGSize advance{};
        EXPECT_TRUE(FMFontGetAdvancesForGlyphs(font.get(), &glyph, &advance, 1)) << what;
        EXPECT_EQ(advance.width, 1401) << what;
        time == 0 ? FMFontPurge(font.get()) : FMFontClearFaceData(font.get());
        EXPECT_FALSE(FMFontIsActive(font.get())) << what;
    }
}

} // namespace

TEST(FontOrigin, GivesTheSameFontFromEverySource) {
    Stream stream;
    const CGDataProviderSequentialCallbacks sequential = {0, Stream::read, Stream::skip,
                                                          Stream::rewind, nullptr};
    const CGDataProviderDirectCallbacks direct = {0, nullptr, nullptr, Stream::readAt, nullptr};
    CGDataProviderSequentialCallbacks unmeasured = sequential;
    unmeasured.skipForward = nullptr;
    const struct {
        const char* what;
        Provider provider;
        bool opens;
    } providers[] = {
        {"a file", cf::adopt(CGDataProviderCreateWithFilename(kSans.c_str())), true},
        {"a stream", cf::adopt(CGDataProviderCreateSequential(&stream, &sequential)), true},
        {"positions alone",
         cf::adopt(
             CGDataProviderCreateDirect(&stream, static_cast<off_t>(stream.bytes.size()), &direct)),
         true},
        {"a stream without end", cf::adopt(CGDataProviderCreateSequential(&stream, &unmeasured)),
         false},
    };
    for (const auto& [what, provider, opens] : providers) {
        const CollectedLog log;
        const auto font =
            fm::FontRef::adopt(FMFontCreateWithDataProvider(provider.get(), 0, false));
        ASSERT_EQ(static_cast<bool>(font), opens) << what;
        if (!opens)
            continue;
        expectWorkingFont(font, what);
        EXPECT_TRUE(FMFontIsStandalone(font.get())) << what;
        EXPECT_FALSE(cf::adopt(FMFontCopyLocationURL(font.get()))) << what;
    }
    std::string bytes = fileBytes(kSans);
    const auto copied =
        fm::FontRef::adopt(FMFontCreateFromMemory(bytes.data(), bytes.size(), 0, false));
    bytes.assign(bytes.size(), '\0');
    expectWorkingFont(copied, "memory that is gone");

    const fm::FontRef file = openFont(kSans);
    expectWorkingFont(file, "a path");
    const auto location = cf::adopt(FMFontCopyLocationURL(file.get()));
    EXPECT_EQ(text(CFURLGetString(location.get())), "file://" + kSans);
}

TEST(FontOrigin, IsRefusedWithoutAFace) {
    const TemporaryFolder folder;
    const std::string noFont = folder.write("no font.ttf", "This is no font.");
    EXPECT_FALSE(openFont(noFont));
    EXPECT_FALSE(openFont(folder.path("missing.ttf")));
    EXPECT_FALSE(openFont(folder.path()));
    EXPECT_FALSE(openFont(""));
    for (const int64_t index : {int64_t{-1}, int64_t{1}, int64_t{1} << 31, INT64_MIN, INT64_MAX})
        EXPECT_FALSE(openFont(kSans, index)) << index;
    EXPECT_FALSE(FMFontCreateFromMemory("x", 0, 0, true));
    EXPECT_FALSE(FMFontCreateFromMemory("x", 1, 0, true));
    EXPECT_FALSE(FMFontCreateFromMemory(nullptr, SIZE_MAX, 0, true));
}

TEST(FontOrigin, OpensEachFaceOfACollection) {
    const std::string path = "/usr/share/fonts/opentype/noto/NotoSansCJK-Regular.ttc";
    const struct {
        int64_t index;
        const char* name;
    } cases[] = {{0, "NotoSansCJKjp-Regular"}, {1, "NotoSansCJKkr-Regular"}};
    for (const auto& [index, name] : cases) {
        const fm::FontRef font = openFont(path, index);
        ASSERT_TRUE(font);
        EXPECT_EQ(FMFontGetFaceIndex(font.get()), index);
        EXPECT_EQ(text(cf::adopt(FMFontCopyPostScriptName(font.get(), false)).get()), name);
    }
}

TEST(FontOrigin, IsMissedWithALineInTheLog) {
    const TemporaryFolder folder;
    const std::string path = folder.write("font.ttf", fileBytes(kSans));
    const fm::FontRef font = openFont(path);
    ASSERT_TRUE(font);
    const FMFontMetrics* const metrics = FMFontGetMetrics(font.get());
    FMFontClearFaceData(font.get());
    std::filesystem::remove(path);

    const CollectedLog log;
    EXPECT_FALSE(FMFontGetFTFaceUnsafe(font.get(), false));
    EXPECT_THAT(log.lines(), ElementsAre());
    EXPECT_FALSE(FMFontGetFTFaceUnsafe(font.get(), true));
    EXPECT_THAT(log.lines(), ElementsAre(EndsWith("(url=file://" + path + ", index=0).")));
    EXPECT_THAT(log.lines(), ElementsAre(StartsWith("3 openFace: Failed to activate font 0x")));
    EXPECT_FALSE(cf::adopt(FMFontCopyDesigner(font.get(), false)));
    EXPECT_EQ(FMFontGetNumberOfGlyphs(font.get()), 0);
    EXPECT_EQ(metrics, FMFontGetMetrics(font.get()));
    EXPECT_EQ(metrics->unitsPerEm, 2048u);

    folder.write("font.ttf", fileBytes(kSans));
    expectWorkingFont(font, "a file that came back");
    EXPECT_EQ(FMFontGetNumberOfGlyphs(font.get()), 6253);
}

TEST(FontOrigin, TellsOfCharacterMapsThatAreNotUnicode) {
    EditedFont edited;
    std::string& cmap = edited.tables["cmap"];
    const uint32_t count = bigEndian(cmap, 2, 2);
    for (uint32_t i = 0; i < count; ++i)
        putBigEndian(cmap, 4 + 8 * i, 0x00030002, 4); // Shift-JIS, for want of Unicode.
    // From glyph names FreeType would make a map of its own.
    putBigEndian(edited.tables["post"], 0, 0x00030000, 4);
    const auto linesOfOpening = [&] {
        const std::string bytes = edited.bytes();
        const CollectedLog log;
        EXPECT_TRUE(
            fm::FontRef::adopt(FMFontCreateFromMemory(bytes.data(), bytes.size(), 0, true)));
        return log.lines();
    };
    EXPECT_THAT(linesOfOpening(),
                ElementsAre(EndsWith("Cannot select Unicode font charmap, selecting default.")));
    cmap = bigEndian(0, 4);
    EXPECT_THAT(linesOfOpening(), ElementsAre(EndsWith("Font has no support for Unicode charmap")));
}
