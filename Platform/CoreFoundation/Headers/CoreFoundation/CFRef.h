/* CFRef.h: cf::Ref, the handle that owns one reference. C++ only; empty for C. */
#pragma once

#include <CoreFoundation/CFBase.h>

#if defined(__cplusplus)

#include <cstddef>
#include <utility>

namespace cf {

/** Owns one reference to a CF object, or nothing.
 *
 *      const auto name = cf::adopt(CGColorSpaceCopyName(space)); // what Create or Copy gave
 *      image_ = cf::retain(image);                               // what Get lent
 *
 *  `.release()` hands the reference to a caller and stands only in the return of a Create or Copy.
 *  Constness of the pointed-to struct is the Ref type's own: `cf::Ref<CFStringRef>`. */
template <typename T>
class Ref {
public:
    Ref() = default;
    Ref(std::nullptr_t) {}
    Ref(const Ref& other) : object_(other.object_) { retainOwn(); }
    Ref(Ref&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    ~Ref() {
        if (object_)
            CFRelease(object_);
    }

    Ref& operator=(const Ref& other) {
        if (object_ != other.object_)
            Ref(other).swap(*this);
        return *this;
    }
    Ref& operator=(Ref&& other) noexcept {
        Ref(std::move(other)).swap(*this);
        return *this;
    }

    T get() const { return object_; }
    explicit operator bool() const { return object_ != nullptr; }
    /** Gives the reference away. */
    [[nodiscard]] T release() { return std::exchange(object_, nullptr); }
    void swap(Ref& other) noexcept { std::swap(object_, other.object_); }

    friend bool operator==(const Ref& a, const Ref& b) { return a.object_ == b.object_; }
    friend bool operator==(const Ref& a, std::nullptr_t) { return !a.object_; }

    static Ref adopting(T object) {
        Ref ref;
        ref.object_ = object;
        return ref;
    }

private:
    void retainOwn() {
        if (object_)
            CFRetain(object_);
    }

    T object_ = nullptr;
};

/** Takes over the reference that a Create or Copy function gave. */
template <typename T>
[[nodiscard]] Ref<T> adopt(T object) {
    return Ref<T>::adopting(object);
}

/** Adds a reference to an object that a Get function lent. */
template <typename T>
[[nodiscard]] Ref<T> retain(T object) {
    if (object)
        CFRetain(object);
    return Ref<T>::adopting(object);
}

/** CFEqual that accepts two absent objects as equal. */
template <typename T>
bool equalOrBothAbsent(T a, T b) {
    return a == b || (a && b && CFEqual(a, b));
}

} // namespace cf

#endif
