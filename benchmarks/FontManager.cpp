// FontManager.cpp: fonts made, named and measured, beside FreeType doing what is beneath that.

#include <CoreFoundation/CFRef.h>
#include <FontManager/FontManager.h>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_SFNT_NAMES_H
#include FT_TRUETYPE_TABLES_H

#include <benchmark/benchmark.h>

#include <array>
#include <cstring>
#include <memory>
#include <type_traits>

namespace {

constexpr std::array kFonts = {
    "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf",
    "/usr/share/fonts/opentype/urw-base35/C059-Roman.otf",
    "/usr/share/fonts/type1/urw-base35/C059-Roman.t1",
    "/usr/share/fonts/opentype/noto/NotoSansCJK-Regular.ttc",
};

struct ReleaseFont {
    void operator()(FMFontRef font) const { FMFontRelease(font); }
};
using Font = std::unique_ptr<std::remove_pointer_t<FMFontRef>, ReleaseFont>;

cf::Ref<CFStringRef> text(const char* utf8) {
    return cf::adopt(CFStringCreateWithCString(nullptr, utf8, kCFStringEncodingUTF8));
}

Font openFont(const char* path) {
    return Font(FMFontCreateWithPath(text(path).get(), 0, true));
}

FT_Library library() {
    static const FT_Library shared = [] {
        FT_Library made = nullptr;
        FT_Init_FreeType(&made);
        return made;
    }();
    return shared;
}

struct CloseFace {
    void operator()(FT_Face face) const { FT_Done_Face(face); }
};
using Face = std::unique_ptr<std::remove_pointer_t<FT_Face>, CloseFace>;

Face openFace(const char* path) {
    FT_Face face = nullptr;
    FT_New_Face(library(), path, 0, &face);
    return Face(face);
}

void label(benchmark::State& state, const char* path) {
    state.SetLabel(std::strrchr(path, '/') + 1);
}

// ---- A font made of a file, its measures taken, and given up.

void makeFont(benchmark::State& state) {
    const char* const path = kFonts[static_cast<size_t>(state.range(0))];
    label(state, path);
    for (auto _ : state) {
        const Font font = openFont(path);
        benchmark::DoNotOptimize(FMFontGetMetrics(font.get()));
    }
}

void openFaceOnly(benchmark::State& state) {
    const char* const path = kFonts[static_cast<size_t>(state.range(0))];
    label(state, path);
    for (auto _ : state)
        benchmark::DoNotOptimize(openFace(path).get());
}

// ---- A face closed and opened again, as when fonts are purged.

void reopenFace(benchmark::State& state) {
    const Font font = openFont(kFonts[0]);
    for (auto _ : state) {
        FMFontClearFaceData(font.get());
        benchmark::DoNotOptimize(FMFontGetFTFaceUnsafe(font.get(), true));
    }
}

// ---- Four names read from the table.

constexpr std::array<FT_UShort, 4> kNames = {1, 2, 4, 6};

void readNames(benchmark::State& state) {
    const Font font = openFont(kFonts[static_cast<size_t>(state.range(0))]);
    for (auto _ : state) {
        for (const auto copy : {FMFontCopyFamilyName, FMFontCopySubFamilyName, FMFontCopyFullName,
                                FMFontCopyPostScriptName})
            benchmark::DoNotOptimize(cf::adopt(copy(font.get(), true)).get());
    }
}

// The English text of a name as a string, and no question of languages.
cf::Ref<CFStringRef> readName(FT_Face face, FT_UShort name) {
    FT_SfntName record;
    for (FT_UInt i = 0; i < FT_Get_Sfnt_Name_Count(face); ++i) {
        if (FT_Get_Sfnt_Name(face, i, &record) == 0 && record.name_id == name &&
            record.platform_id == 3 && record.language_id == 0x409) {
            return cf::adopt(CFStringCreateWithBytes(nullptr, record.string,
                                                     static_cast<CFIndex>(record.string_len),
                                                     kCFStringEncodingUTF16BE, false));
        }
    }
    return nullptr;
}

void readNamesBarely(benchmark::State& state) {
    const Face face = openFace(kFonts[static_cast<size_t>(state.range(0))]);
    for (auto _ : state) {
        for (const FT_UShort name : kNames)
            benchmark::DoNotOptimize(readName(face.get(), name).get());
    }
}

// ---- What is known already.

void knownName(benchmark::State& state) {
    const Font font = openFont(kFonts[0]);
    for (auto _ : state)
        benchmark::DoNotOptimize(cf::adopt(FMFontCopyPostScriptName(font.get(), false)).get());
}

void knownAbsence(benchmark::State& state) {
    const Font font = openFont(kFonts[0]);
    for (auto _ : state)
        benchmark::DoNotOptimize(FMFontCopySampleText(font.get(), false));
}

void metrics(benchmark::State& state) {
    const Font font = openFont(kFonts[0]);
    for (auto _ : state)
        benchmark::DoNotOptimize(FMFontGetMetrics(font.get())->ascent);
}

void lockAndFace(benchmark::State& state) {
    const Font font = openFont(kFonts[0]);
    for (auto _ : state) {
        FMFontLock(font.get());
        benchmark::DoNotOptimize(FMFontGetFTFaceUnsafe(font.get(), true));
        FMFontUnlock(font.get());
    }
}

} // namespace

BENCHMARK(makeFont)->DenseRange(0, 3);
BENCHMARK(openFaceOnly)->DenseRange(0, 3);
BENCHMARK(reopenFace);
BENCHMARK(readNames)->Arg(0)->Arg(3);
BENCHMARK(readNamesBarely)->Arg(0)->Arg(3);
BENCHMARK(knownName);
BENCHMARK(knownAbsence);
BENCHMARK(metrics);
BENCHMARK(lockAndFace);
