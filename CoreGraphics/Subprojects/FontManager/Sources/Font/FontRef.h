// FontRef.h: a handle that owns one reference to a font.
#pragma once

#include <FontManager/FMFont.h>

#include <utility>

namespace fm {

class FontRef {
public:
    FontRef() = default;
    FontRef(const FontRef& other) : font_(FMFontRetain(other.font_)) {}
    FontRef(FontRef&& other) noexcept : font_(std::exchange(other.font_, nullptr)) {}
    ~FontRef() { FMFontRelease(font_); }
    FontRef& operator=(FontRef other) noexcept {
        std::swap(font_, other.font_);
        return *this;
    }

    // Takes over the reference that a Create or Copy function gave.
    [[nodiscard]] static FontRef adopt(FMFontRef font) {
        FontRef ref;
        ref.font_ = font;
        return ref;
    }
    // Adds a reference to a font that is lent.
    [[nodiscard]] static FontRef retain(FMFontRef font) { return adopt(FMFontRetain(font)); }

    FMFontRef get() const { return font_; }
    explicit operator bool() const { return font_ != nullptr; }
    // Gives the reference away.
    [[nodiscard]] FMFontRef release() { return std::exchange(font_, nullptr); }

private:
    FMFontRef font_ = nullptr;
};

} // namespace fm
