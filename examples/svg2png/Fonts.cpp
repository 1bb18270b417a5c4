// Fonts.cpp: font families, weights and slants as names of fonts.

#include "Fonts.h"

#include "Scanner.h"

#include <string>

namespace svg {

namespace {

// What the generic names of CSS stand for on a free system; each is tried in turn.
struct GenericRow {
    std::string_view name;
    std::string_view families[3];
};

constexpr GenericRow kGenericFamilies[] = {
    {"serif", {"Noto Serif", "DejaVu Serif", "Liberation Serif"}},
    {"sans-serif", {"Noto Sans", "DejaVu Sans", "Liberation Sans"}},
    {"sans", {"Noto Sans", "DejaVu Sans", "Liberation Sans"}},
    {"monospace", {"DejaVu Sans Mono", "Noto Sans Mono", "Liberation Mono"}},
    {"bitstream vera sans", {"DejaVu Sans", "Noto Sans", "Liberation Sans"}},
    {"bitstream vera serif", {"DejaVu Serif", "Noto Serif", "Liberation Serif"}},
    {"bitstream vera sans mono", {"DejaVu Sans Mono", "Noto Sans Mono", "Liberation Mono"}},
    {"helvetica", {"Nimbus Sans", "Liberation Sans", "DejaVu Sans"}},
    {"arial", {"Liberation Sans", "Nimbus Sans", "DejaVu Sans"}},
    {"times", {"Nimbus Roman", "Liberation Serif", "DejaVu Serif"}},
    {"times new roman", {"Liberation Serif", "Nimbus Roman", "DejaVu Serif"}},
    {"courier", {"Nimbus Mono PS", "Liberation Mono", "DejaVu Sans Mono"}},
    {"courier new", {"Liberation Mono", "Nimbus Mono PS", "DejaVu Sans Mono"}},
};

std::string_view wordForWeight(int weight) {
    constexpr std::string_view words[] = {"Thin",     "ExtraLight", "Light",     "",     "Medium",
                                          "SemiBold", "Bold",       "ExtraBold", "Black"};
    return words[static_cast<std::size_t>(weight - 50) / 100];
}

FontRef fontNamed(std::string_view family, const Style& style) {
    std::string name(family);
    for (const std::string_view word :
         {wordForWeight(style.fontWeight), std::string_view(style.isItalic ? "Italic" : "")})
        if (!word.empty())
            name.append(" ").append(word);
    const CFStringRef text =
        CFStringCreateWithCString(nullptr, name.c_str(), kCFStringEncodingUTF8);
    FontRef font(text ? CGFontCreateWithFontName(text) : nullptr);
    if (text)
        CFRelease(text);
    return font;
}

FontRef fontOfFamily(std::string_view family, const Style& style) {
    if (FontRef font = fontNamed(family, style))
        return font;
    for (const GenericRow& row : kGenericFamilies)
        if (equalsIgnoringCase(row.name, family))
            for (const std::string_view member : row.families)
                if (FontRef font = fontNamed(member, style))
                    return font;
    return nullptr;
}

// A name without the quotes around it.
std::string_view unquoted(std::string_view name) {
    name = trimmed(name);
    const bool isQuoted = name.size() >= 2 && (name.front() == '"' || name.front() == '\'') &&
                          name.back() == name.front();
    return isQuoted ? name.substr(1, name.size() - 2) : name;
}

} // namespace

FontRef fontOf(const Style& style) {
    std::string_view families = style.fontFamily;
    while (!families.empty()) {
        const auto end = std::min(families.find(','), families.size());
        if (FontRef font = fontOfFamily(unquoted(families.substr(0, end)), style))
            return font;
        families.remove_prefix(std::min(end + 1, families.size()));
    }
    return fontOfFamily("sans-serif", style);
}

} // namespace svg
