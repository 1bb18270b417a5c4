// Fonts.cpp: installed fonts, as fontconfig lists them.

#include <Host/Fonts.h>

#include "FileTimes.h"
#include "FontList.h"

#include <fontconfig/fontconfig.h>

#include <cmath>
#include <cstring>
#include <memory>
#include <string>

namespace {

// The process's configuration, which lists the fonts of all folders when it is first asked for.
class Configuration {
public:
    Configuration() : config_(FcConfigReference(nullptr)) {}
    ~Configuration() {
        if (config_)
            FcConfigDestroy(config_);
    }
    Configuration(const Configuration&) = delete;
    Configuration& operator=(const Configuration&) = delete;

    // A pattern for each face, as long as the configuration is held; NULL for none.
    const FcFontSet* fonts() const {
        return config_ ? FcConfigGetFonts(config_, FcSetSystem) : nullptr;
    }

private:
    FcConfig* config_;
};

const char* textIn(const FcPattern* pattern, const char* object, int index) {
    FcChar8* text = nullptr;
    return FcPatternGetString(pattern, object, index, &text) == FcResultMatch
               ? reinterpret_cast<const char*>(text)
               : nullptr;
}

bool isNamed(const FcPattern* pattern, const char* object, const char* name) {
    const auto* const wanted = reinterpret_cast<const FcChar8*>(name);
    for (int index = 0; const char* const text = textIn(pattern, object, index); ++index)
        if (FcStrCmpIgnoreCase(reinterpret_cast<const FcChar8*>(text), wanted) == 0)
            return true;
    return false;
}

const FcPattern* find(const FcFontSet& fonts, const char* name) {
    for (const char* const object : {FC_POSTSCRIPT_NAME, FC_FULLNAME})
        for (int i = 0; i < fonts.nfont; ++i)
            if (isNamed(fonts.fonts[i], object, name))
                return fonts.fonts[i];
    return nullptr;
}

// The lower half names the face; the upper one an instance of a variable font.
int64_t faceIndexOf(const FcPattern* pattern) {
    int index = 0;
    FcPatternGetInteger(pattern, FC_INDEX, 0, &index);
    return index & 0xffff;
}

using Pattern = std::unique_ptr<FcPattern, decltype(&FcPatternDestroy)>;

// The face that fontconfig's rules prefer for a family.
Pattern match(const char* family, const char* language) {
    const auto text = [](const char* string) { return reinterpret_cast<const FcChar8*>(string); };
    const Pattern wanted(FcPatternCreate(), FcPatternDestroy);
    if (!wanted || !FcPatternAddString(wanted.get(), FC_FAMILY, text(family)))
        return {nullptr, FcPatternDestroy};
    if (language && *language)
        FcPatternAddString(wanted.get(), FC_LANG, text(language));
    FcConfigSubstitute(nullptr, wanted.get(), FcMatchPattern);
    FcDefaultSubstitute(wanted.get());
    FcResult result = FcResultNoMatch;
    return {FcFontMatch(nullptr, wanted.get(), &result), FcPatternDestroy};
}

} // namespace

bool HostFontEnumerate(HostFontFunction function, void* context) {
    const auto list = function ? host::fontList(host::Freshness::Now) : nullptr;
    if (!list)
        return false;
    host::FileTimes times;
    for (const std::string& path : list->files) {
        double seconds = 0;
        if (!times.get(path, seconds))
            continue;
        const HostFont font = {path.c_str(), nullptr, static_cast<int64_t>(std::floor(seconds))};
        function(&font, context);
    }
    return true;
}

bool HostFontMapByName(const char* name, HostMapping* mapping, int64_t* faceIndex) {
    if (!mapping)
        return false;
    *mapping = {nullptr, 0};
    const Configuration configuration;
    const FcFontSet* const fonts = configuration.fonts();
    const FcPattern* const pattern = name && fonts ? find(*fonts, name) : nullptr;
    const char* const path = pattern ? textIn(pattern, FC_FILE, 0) : nullptr;
    const host::Descriptor file(HostFileOpenForReading(path));
    if (!file || !HostFileMap(file.get(), mapping))
        return false;
    if (faceIndex)
        *faceIndex = faceIndexOf(pattern);
    return true;
}

bool HostFontHasFamily(const char* family) {
    const auto list = family ? host::fontList(host::Freshness::MayBeOlder) : nullptr;
    return list && list->hasFamily(family);
}

bool HostFontGetDefaultFamily(const char* generic, const char* language, char* buffer,
                              size_t capacity) {
    if (!buffer || capacity == 0)
        return false;
    buffer[0] = '\0';
    const Configuration configuration;
    if (!generic || !configuration.fonts())
        return false;
    const Pattern found = match(generic, language);
    const char* const family = found ? textIn(found.get(), FC_FAMILY, 0) : nullptr;
    if (!family || std::strlen(family) >= capacity)
        return false;
    std::strcpy(buffer, family);
    return true;
}
