// FontList.h: the files and families that are installed, kept between runs.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// What fontconfig answers once it has read its dozens of configuration files and the caches of all
// folders; that takes longer than all that a program needs it for, and the answer hardly ever
// changes. So it is left in the application's caches together with all that it depends on: the
// environment, and the times of the configuration files and of the folders, in which a font cannot
// come or go without a trace. Files themselves are for the caller to look at.
struct FontList {
    struct Source {
        std::string path;
        std::int64_t time; // In microseconds since 1970; kAbsent for what is not there.
    };
    static constexpr std::int64_t kAbsent = -1;

    std::string environment;
    std::vector<Source> sources;
    std::vector<std::string> files; // Each once, ascending.
    std::vector<std::string> families;

    bool isCurrent() const;
    bool hasFamily(const char* family) const; // In any case.
};

// The list of now; NULL when the host cannot list its fonts. `mayBeOlder` spares looking at the
// sources again where the process has a list already.
enum class Freshness { Now, MayBeOlder };
std::shared_ptr<const FontList> fontList(Freshness freshness);

// As text, and back: an empty pointer for anything but the whole of such a text.
std::string serialized(const FontList& list);
std::shared_ptr<const FontList> parsedFontList(std::string_view text);

} // namespace host
