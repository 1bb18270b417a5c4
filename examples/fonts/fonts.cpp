// fonts.cpp: lists the machine's fonts, tells what a name comes to and why, and which fonts have
// the characters of a text.

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>
#include <FontManager/FontManager.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

struct ReleaseFont {
    void operator()(FMFontRef font) const { FMFontRelease(font); }
};
using Font = std::unique_ptr<std::remove_pointer_t<FMFontRef>, ReleaseFont>;
using String = cf::Ref<CFStringRef>;

String stringOf(std::string_view text) {
    return cf::adopt(CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>(text.data()),
                                             static_cast<CFIndex>(text.size()),
                                             kCFStringEncodingUTF8, false));
}

std::string textOf(const String& string) {
    if (!string)
        return "-";
    const CFIndex units = CFStringGetLength(string.get());
    std::string text(
        static_cast<std::size_t>(CFStringGetMaximumSizeForEncoding(units, kCFStringEncodingUTF8)) +
            1,
        '\0');
    if (!CFStringGetCString(string.get(), text.data(), static_cast<CFIndex>(text.size()),
                            kCFStringEncodingUTF8))
        return "-";
    return text.substr(0, text.find('\0'));
}

String fullNameOf(FMFontRef font) {
    return cf::adopt(FMFontCopyFullName(font, false));
}

std::string locationOf(FMFontRef font) {
    const auto url = cf::adopt(FMFontCopyLocationURL(font));
    const auto path =
        cf::adopt(url ? CFURLCopyFileSystemPath(url.get(), kCFURLPOSIXPathStyle) : nullptr);
    return textOf(path) + "#" + std::to_string(FMFontGetFaceIndex(font));
}

std::string traitsText(std::uint32_t traits) {
    const struct {
        std::uint32_t bit;
        const char* word;
    } words[] = {
        {kFMFontTraitItalic, "italic"},          {kFMFontTraitBold, "bold"},
        {kFMFontTraitExpanded, "expanded"},      {kFMFontTraitCondensed, "condensed"},
        {kFMFontTraitFixedPitch, "fixed pitch"},
    };
    std::string text;
    for (const auto& [bit, word] : words)
        if (traits & bit)
            text += (text.empty() ? "" : ", ") + std::string(word);
    return text.empty() ? "none" : text;
}

// ---- list ---------------------------------------------------------------------------------------

int list(FMLibraryRef library) {
    const auto names = cf::adopt(FMLibraryCopyDBFontNames(library));
    for (CFIndex index = 0; names && index < CFArrayGetCount(names.get()); ++index) {
        const auto name = static_cast<CFStringRef>(CFArrayGetValueAtIndex(names.get(), index));
        const Font font(FMLibraryCopyFontWithName(library, name, 0));
        if (!font)
            continue;
        const FMFontMetrics* const metrics = FMFontGetMetrics(font.get());
        const auto family = cf::adopt(FMFontCopyNimbraFamilyName(font.get(), false));
        std::printf("%-40s %-24s %-10s %-22s %s\n", textOf(cf::retain(name)).c_str(),
                    textOf(family).c_str(),
                    textOf(cf::retain(FMFontGetWeightString(metrics->weight))).c_str(),
                    traitsText(metrics->traits).c_str(), locationOf(font.get()).c_str());
    }
    return EXIT_SUCCESS;
}

// ---- find ---------------------------------------------------------------------------------------

// What stands for the family by configuration; "a to b" chains end as the library ends them.
String substituteOf(FMLibraryRef library, String family) {
    const CFDictionaryRef substitutions = FMLibraryGetSubstitutions(library);
    for (int step = 0; substitutions && step < 5; ++step) {
        const auto names =
            static_cast<CFArrayRef>(CFDictionaryGetValue(substitutions, family.get()));
        if (!names || CFArrayGetCount(names) == 0)
            break;
        family = cf::retain(static_cast<CFStringRef>(CFArrayGetValueAtIndex(names, 0)));
    }
    return family;
}

// How the library rates a font of the right family, 10 points for style and 15 for weight.
struct Score {
    float traits;
    float weight;
    float sum() const { return traits + weight; }
};

Score scoreOf(const FMFontMetrics& font, std::uint32_t traits, std::int32_t weight) {
    constexpr std::uint32_t compared = 0x7C63;
    const std::uint32_t differing = font.traits ^ traits;
    const int agreeing = std::popcount(~differing & compared) + (differing >> 28 == 0 ? 1 : 0);
    const bool isOnThatSide = weight == 0  ? font.weight == 0
                              : weight < 0 ? font.weight <= weight
                                           : font.weight >= weight;
    const double distance = std::abs(double(font.weight) - double(weight));
    const double nearness = (isOnThatSide ? 0.5 : 0) + (distance < 1 ? 0.5 : 0.5 / distance);
    return {static_cast<float>(agreeing), static_cast<float>(std::min(nearness, 1.0) * 15)};
}

void printCandidates(FMLibraryRef library, CFStringRef family, std::uint32_t traits,
                     std::int32_t weight) {
    const auto names = cf::adopt(FMLibraryCopyFontPSNamesForFamily(library, family));
    if (!names || CFArrayGetCount(names.get()) == 0) {
        std::printf("candidates  no font of that family\n");
        return;
    }
    std::printf("candidates  score = traits + weight\n");
    for (CFIndex index = 0; index < CFArrayGetCount(names.get()); ++index) {
        const auto name = static_cast<CFStringRef>(CFArrayGetValueAtIndex(names.get(), index));
        const Font font(FMLibraryCopyFontWithName(library, name, 0));
        if (!font)
            continue;
        const FMFontMetrics& metrics = *FMFontGetMetrics(font.get());
        const Score score = scoreOf(metrics, traits, weight);
        std::printf("            %5.2f = %5.2f + %5.2f  %-32s weight %d, %s\n",
                    static_cast<double>(score.sum()), static_cast<double>(score.traits),
                    static_cast<double>(score.weight), textOf(cf::retain(name)).c_str(),
                    static_cast<int>(metrics.weight), traitsText(metrics.traits).c_str());
    }
}

bool isNameOf(CFStringRef name, FMFontRef font) {
    for (const auto copy : {FMFontCopyFullName, FMFontCopyDisplayName, FMFontCopyPostScriptName}) {
        const auto own = cf::adopt(copy(font, false));
        if (own && CFStringCompare(own.get(), name, kCFCompareCaseInsensitive) == 0)
            return true;
    }
    return false;
}

int find(FMLibraryRef library, const char* text) {
    const String name = stringOf(text);
    if (!name) {
        std::fprintf(stderr, "fonts: the name is not UTF-8\n");
        return EXIT_FAILURE;
    }
    CFStringRef familyKey = nullptr;
    std::uint32_t traits = 0;
    std::int32_t weight = 0;
    FMLibraryInferFromName(name.get(), &familyKey, &traits, &weight);
    const String inferred = cf::adopt(familyKey);
    const String family = substituteOf(library, inferred);
    std::printf("name        %s\nfamily      %s", text, textOf(inferred).c_str());
    if (!CFEqual(inferred.get(), family.get()))
        std::printf(", for which %s stands", textOf(family).c_str());
    std::printf("\ntraits      %s\nweight      %d\n", traitsText(traits).c_str(),
                static_cast<int>(weight));
    printCandidates(library, family.get(), traits, weight);

    const Font font(FMLibraryCopyFontWithName(library, name.get(), 0));
    if (!font) {
        std::printf("found       nothing\n");
        return EXIT_FAILURE;
    }
    std::printf("found       %s, %s\nfile        %s\n", textOf(fullNameOf(font.get())).c_str(),
                isNameOf(name.get(), font.get()) ? "which has that name" : "the best candidate",
                locationOf(font.get()).c_str());
    return EXIT_SUCCESS;
}

// ---- cover --------------------------------------------------------------------------------------

void printFontSet(FMLibraryRef library, std::uint32_t set) {
    constexpr std::ptrdiff_t shown = 4;
    const FMFontRef* first = nullptr;
    const FMFontRef* end = nullptr;
    FMLibraryGetFallbackFontSet(library, set, &first, &end);
    std::printf("set %u, %td fonts:", set, end - first);
    for (const FMFontRef* font = first; font < first + std::min(shown, end - first); ++font)
        std::printf("%s %s", font == first ? "" : ",", textOf(fullNameOf(*font)).c_str());
    std::printf("%s\n", end - first > shown ? ", …" : "");
}

int cover(FMLibraryRef library, const char* text) {
    const String string = stringOf(text);
    if (!string) {
        std::fprintf(stderr, "fonts: the text is not UTF-8\n");
        return EXIT_FAILURE;
    }
    std::vector<UTF32Char> codePoints(static_cast<std::size_t>(CFStringGetLength(string.get())));
    CFIndex used = 0;
    CFStringGetBytes(string.get(), CFRangeMake(0, CFStringGetLength(string.get())),
                     kCFStringEncodingUTF32LE, 0, false,
                     reinterpret_cast<UInt8*>(codePoints.data()),
                     static_cast<CFIndex>(codePoints.size() * sizeof(UTF32Char)), &used);
    codePoints.resize(static_cast<std::size_t>(used) / sizeof(UTF32Char));

    // Asked for once before anything is printed, ranges have grown as far as the text lets them.
    std::uint32_t start = 0, end = 0, set = 0;
    for (const UTF32Char codePoint : codePoints)
        FMLibraryQueryFallback(library, codePoint, &start, &end, &set);
    std::sort(codePoints.begin(), codePoints.end());
    std::uint32_t next = 0;
    bool coversAll = true;
    for (const UTF32Char codePoint : codePoints) {
        if (codePoint < next)
            continue;
        FMLibraryQueryFallback(library, codePoint, &start, &end, &set);
        next = std::max<std::uint32_t>(end, codePoint + 1);
        if (end == 0) {
            std::printf("U+%04X          no font\n", static_cast<unsigned>(codePoint));
            coversAll = false;
            continue;
        }
        std::printf("U+%04X..U+%04X  ", start, end - 1);
        printFontSet(library, set);
    }
    return coversAll ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

int main(int count, char** arguments) {
    const std::string_view command = count > 1 ? arguments[1] : "";
    if (!(command == "list" && count == 2) &&
        !((command == "find" || command == "cover") && count == 3)) {
        std::fprintf(stderr, "usage: fonts list | fonts find NAME | fonts cover TEXT\n");
        return 2;
    }
    const FMLibraryRef library = FMLibraryGetShared();
    if (command == "list")
        return list(library);
    return command == "find" ? find(library, arguments[2]) : cover(library, arguments[2]);
}
