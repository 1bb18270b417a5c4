// FontList.cpp: the files and families that are installed, as fontconfig lists them.

#include "FontList.h"

#include <Host/Host.h>

#include "FileTimes.h"

#include <fontconfig/fontconfig.h>
#include <limits.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <mutex>
#include <string_view>
#include <utility>

namespace host {
namespace {

constexpr const char* kFileName = "HostFonts.list";
constexpr const char* kVariables[] = {
    "FONTCONFIG_FILE", "FONTCONFIG_PATH", "FONTCONFIG_SYSROOT", "HOME",
    "XDG_CONFIG_HOME", "XDG_DATA_HOME",   "XDG_DATA_DIRS",      "LANG",
};
// A folder that has just changed may change again without its time telling.
constexpr std::int64_t kSettlingTime = 2'000'000;

std::int64_t timeOf(FileTimes& times, const std::string& path) {
    double seconds = 0;
    return times.get(path, seconds) ? std::llround(seconds * 1e6) : FontList::kAbsent;
}

std::string environmentVariable(const char* name) {
    const char* const value = std::getenv(name);
    return value ? value : "";
}

std::string presentEnvironment() {
    std::string text;
    for (const char* const name : kVariables)
        text += environmentVariable(name) + ';';
    return text;
}

void sortAndUnite(std::vector<std::string>& texts) {
    std::sort(texts.begin(), texts.end());
    texts.erase(std::unique(texts.begin(), texts.end()), texts.end());
}

void append(std::vector<std::string>& texts, FcStrList* list) {
    if (!list)
        return;
    while (const FcChar8* const text = FcStrListNext(list))
        texts.emplace_back(reinterpret_cast<const char*>(text));
    FcStrListDone(list);
}

// Where users put configurations and fonts, whether or not there are any yet.
void appendUserPaths(std::vector<std::string>& paths) {
    const std::string home = environmentVariable("HOME");
    const std::string config = environmentVariable("XDG_CONFIG_HOME");
    const std::string folder = (config.empty() ? home + "/.config" : config) + "/fontconfig";
    for (const char* const name : {"", "/fonts.conf", "/conf.d"})
        paths.push_back(folder + name);
    for (const char* const name : {"/.fonts.conf", "/.fonts.conf.d", "/.fonts"})
        paths.push_back(home + name);
}

std::vector<std::string> sourcePathsOf(FcConfig* config) {
    std::vector<std::string> paths;
    append(paths, FcConfigGetConfigFiles(config));
    // A new configuration file shows in the time of its folder.
    for (std::size_t index = 0, count = paths.size(); index < count; ++index)
        paths.push_back(paths[index].substr(0, paths[index].rfind('/')));
    append(paths, FcConfigGetConfigDirs(config));
    append(paths, FcConfigGetFontDirs(config));
    appendUserPaths(paths);
    sortAndUnite(paths);
    return paths;
}

void appendTexts(std::vector<std::string>& texts, const FcPattern* pattern, const char* object) {
    FcChar8* text = nullptr;
    for (int index = 0; FcPatternGetString(pattern, object, index, &text) == FcResultMatch; ++index)
        texts.emplace_back(reinterpret_cast<const char*>(text));
}

std::shared_ptr<const FontList> askFontconfig() {
    const auto list = std::make_shared<FontList>();
    FcConfig* const config = FcConfigReference(nullptr);
    const FcFontSet* const fonts = config ? FcConfigGetFonts(config, FcSetSystem) : nullptr;
    if (fonts) {
        list->environment = presentEnvironment();
        FileTimes times;
        for (std::string& path : sourcePathsOf(config)) {
            const std::int64_t time = timeOf(times, path);
            list->sources.push_back({std::move(path), time});
        }
        for (int i = 0; i < fonts->nfont; ++i) {
            appendTexts(list->files, fonts->fonts[i], FC_FILE);
            appendTexts(list->families, fonts->fonts[i], FC_FAMILY);
        }
        sortAndUnite(list->files);
        sortAndUnite(list->families);
    }
    if (config)
        FcConfigDestroy(config);
    return fonts ? list : nullptr;
}

bool getCachePath(char* path, std::size_t capacity) {
    char folder[PATH_MAX];
    return HostPathGetCachesDirectory(folder, sizeof folder) &&
           HostPathConcatenate(folder, kFileName, path, capacity);
}

std::shared_ptr<const FontList> readCached() {
    char path[PATH_MAX];
    HostMapping mapping{};
    const bool isThere = getCachePath(path, sizeof path);
    const Descriptor file(isThere ? HostFileOpenForReading(path) : -1);
    if (!file || !HostFileMap(file.get(), &mapping))
        return nullptr;
    const auto list = parsedFontList({static_cast<const char*>(mapping.bytes), mapping.size});
    HostFileUnmap(&mapping);
    return list && list->isCurrent() ? list : nullptr;
}

// Each text is to be a line.
bool fitsLines(const FontList& list) {
    const auto isLine = [](const std::string& text) { return text.find('\n') == text.npos; };
    return isLine(list.environment) && std::all_of(list.files.begin(), list.files.end(), isLine) &&
           std::all_of(list.families.begin(), list.families.end(), isLine) &&
           std::all_of(list.sources.begin(), list.sources.end(),
                       [&](const auto& source) { return isLine(source.path); });
}

bool hasSettled(const FontList& list) {
    const auto now = std::chrono::duration_cast<std::chrono::microseconds>(
                         std::chrono::system_clock::now().time_since_epoch())
                         .count();
    return std::all_of(list.sources.begin(), list.sources.end(),
                       [now](const auto& source) { return source.time < now - kSettlingTime; });
}

void writeCached(const FontList& list) {
    char path[PATH_MAX];
    if (!fitsLines(list) || !hasSettled(list) || !getCachePath(path, sizeof path))
        return;
    const std::string text = serialized(list);
    HostFileReplace(path, text.data(), text.size());
}

// Takes a line off the front of the text; nothing where none is whole.
bool takeLine(std::string_view& text, std::string_view& line) {
    const std::size_t end = text.find('\n');
    if (end == std::string_view::npos)
        return false;
    line = text.substr(0, end);
    text.remove_prefix(end + 1);
    return true;
}

constexpr std::string_view kFirstLine = "installed fonts 1";
constexpr std::string_view kLastLine = "end";

bool takeEntry(FontList& list, std::string_view line) {
    if (line.size() < 2 || line[1] != ' ')
        return false;
    std::string rest(line.substr(2));
    switch (line[0]) {
    case 'e':
        list.environment = std::move(rest);
        return true;
    case 'f':
        list.files.push_back(std::move(rest));
        return true;
    case 'n':
        list.families.push_back(std::move(rest));
        return true;
    case 's': {
        char* end = nullptr;
        const long long time = std::strtoll(rest.c_str(), &end, 10);
        if (*end != ' ')
            return false;
        list.sources.push_back({end + 1, time});
        return true;
    }
    default:
        return false;
    }
}

// Whether texts that start so can be equal but for case. What is not ASCII may be in another case.
bool mayBeEqual(char a, char b) {
    const auto lower = [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c;
    };
    return lower(a) == lower(b) || ((a | b) & 0x80) != 0;
}

} // namespace

bool FontList::isCurrent() const {
    FileTimes times;
    return environment == presentEnvironment() &&
           std::all_of(sources.begin(), sources.end(), [&](const Source& source) {
               return timeOf(times, source.path) == source.time;
           });
}

bool FontList::hasFamily(const char* family) const {
    const auto* const wanted = reinterpret_cast<const FcChar8*>(family);
    return std::any_of(families.begin(), families.end(), [=](const std::string& name) {
        return mayBeEqual(name[0], family[0]) &&
               FcStrCmpIgnoreCase(reinterpret_cast<const FcChar8*>(name.c_str()), wanted) == 0;
    });
}

std::string serialized(const FontList& list) {
    std::string text(kFirstLine);
    text += "\ne " + list.environment + '\n';
    for (const FontList::Source& source : list.sources)
        text += "s " + std::to_string(source.time) + ' ' + source.path + '\n';
    for (const std::string& file : list.files)
        text += "f " + file + '\n';
    for (const std::string& family : list.families)
        text += "n " + family + '\n';
    return text.append(kLastLine) + '\n';
}

std::shared_ptr<const FontList> parsedFontList(std::string_view text) {
    const auto list = std::make_shared<FontList>();
    std::string_view line;
    if (!takeLine(text, line) || line != kFirstLine)
        return nullptr;
    while (takeLine(text, line)) {
        if (line == kLastLine)
            return text.empty() && !list->sources.empty() ? list : nullptr;
        if (!takeEntry(*list, line))
            return nullptr;
    }
    return nullptr;
}

std::shared_ptr<const FontList> fontList(Freshness freshness) {
    static auto& mutex = *new Mutex;
    static auto& known = *new std::shared_ptr<const FontList>;
    const std::lock_guard hold(mutex);
    if (known && (freshness == Freshness::MayBeOlder || known->isCurrent()))
        return known;
    if (auto cached = readCached()) {
        known = std::move(cached);
        return known;
    }
    // What fontconfig knows is as old as the list that has just been found to be so.
    if (known)
        FcInitReinitialize();
    known = askFontconfig();
    if (known)
        writeCached(*known);
    return known;
}

} // namespace host
