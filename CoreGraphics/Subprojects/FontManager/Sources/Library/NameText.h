// NameText.h: names of fonts as UTF-16 text, for looking them up without regard to case.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>

#include <functional>
#include <string>
#include <string_view>

namespace fm {

std::u16string unitsOf(CFStringRef string);
cf::Ref<CFStringRef> stringOf(std::u16string_view units);

std::u16string lowerCased(std::u16string_view text);
// Empty for NULL.
std::u16string lowerCased(CFStringRef string);

// The key of a family's name in lower case: the name without spaces and hyphens.
std::u16string sanitizedFamily(std::u16string lowerCasedName);

// Lets tables of names be asked with a view.
struct NameHash {
    using is_transparent = void;
    std::size_t operator()(std::u16string_view name) const {
        return std::hash<std::u16string_view>{}(name);
    }
};

} // namespace fm
