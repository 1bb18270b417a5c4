// Substitutions.cpp: families that stand in for others.

#include "Library/Substitutions.h"

#include <CoreFoundation/CFArray.h>

#include "Core/Object/Diagnostics.h"
#include "Library/NameInference.h"

namespace fm {
namespace {

// Chains that are longer are taken for loops.
constexpr int kMaxSteps = 5;

CFStringRef asString(CFTypeRef object) {
    return object && CFGetTypeID(object) == CFStringGetTypeID() ? static_cast<CFStringRef>(object)
                                                                : nullptr;
}

CFStringRef firstName(CFTypeRef names) {
    if (!names || CFGetTypeID(names) != CFArrayGetTypeID())
        return nullptr;
    const auto array = static_cast<CFArrayRef>(names);
    return CFArrayGetCount(array) > 0 ? asString(CFArrayGetValueAtIndex(array, 0)) : nullptr;
}

} // namespace

Substitutions::Substitutions(CFDictionaryRef dictionary) : dictionary_(cf::retain(dictionary)) {
    if (!dictionary)
        return;
    const auto add = [](const void* key, const void* value, void* context) {
        const CFStringRef name = asString(key);
        const CFStringRef substitute = firstName(value);
        auto& substitutes = *static_cast<decltype(substitutes_)*>(context);
        if (name && substitute)
            substitutes.try_emplace(inferName(name).family, inferName(substitute).family);
    };
    CFDictionaryApplyFunction(dictionary, add, &substitutes_);
}

std::u16string Substitutions::resolve(std::u16string family) const {
    for (int step = 0; step < kMaxSteps; ++step) {
        const auto substitute = substitutes_.find(family);
        if (substitute == substitutes_.end())
            return family;
        family = substitute->second;
    }
    CG_LOG_WARNING("Reached %d recursive substitution. Stopping.", kMaxSteps);
    return family;
}

} // namespace fm
