// Substitutes.cpp: choosing among candidates by what the host has installed.

#include "Config/Substitutes.h"

#include <FontManager/FMLibrary.h>
#include <Host/Fonts.h>

namespace fm {

namespace {

using Text = char[256];

// A name as the host takes it; no name is longer.
bool getText(CFStringRef string, Text& text) {
    return string && CFStringGetCString(string, text, sizeof text, kCFStringEncodingUTF8);
}

bool isInstalled(CFStringRef family) {
    Text text;
    return getText(family, text) && HostFontHasFamily(text);
}

} // namespace

cf::Ref<CFStringRef> familyKey(CFStringRef name) {
    CFStringRef key = nullptr;
    FMLibraryInferFromName(name, &key, nullptr, nullptr);
    auto owned = cf::adopt(key);
    return owned && CFStringGetLength(key) > 0 ? owned : nullptr;
}

Substitutes::Substitutes(cf::Ref<CFStringRef> key)
    : key_(std::move(key)),
      families_(cf::adopt(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks))) {}

// Whether the first installed one has been found is known from then on: the host is not asked about
// those behind it.
void Substitutes::add(CFStringRef family) {
    const auto candidate = familyKey(family);
    if (!candidate || !families_)
        return;
    if (!hasInstalled_ && isInstalled(family)) {
        hasInstalled_ = true;
        CFArrayInsertValueAtIndex(families_.get(), 0, candidate.get());
    } else {
        CFArrayAppendValue(families_.get(), candidate.get());
    }
}

void Substitutes::addHostDefault(CFStringRef generic, CFStringRef language) {
    Text genericText;
    Text languageText;
    Text family;
    if (hasInstalled_ || !getText(generic, genericText) ||
        !HostFontGetDefaultFamily(genericText, getText(language, languageText) ? languageText : "",
                                  family, sizeof family))
        return;
    if (const auto name =
            cf::adopt(CFStringCreateWithCString(nullptr, family, kCFStringEncodingUTF8)))
        add(name.get());
}

cf::Ref<CFArrayRef> Substitutes::finish() const {
    if (!key_ || !families_ || CFArrayGetCount(families_.get()) == 0 ||
        CFEqual(CFArrayGetValueAtIndex(families_.get(), 0), key_.get()))
        return nullptr;
    return cf::retain<CFArrayRef>(families_.get());
}

} // namespace fm
