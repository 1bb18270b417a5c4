// CFDescription.h: putting together what objects look like to people.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>

namespace cf {

// The text "<Class 0x…>{…}" of an object, in the making.
class Description {
public:
    // Begins with the object's head and the opening brace.
    explicit Description(CFTypeRef object);

    void append(CFStringRef format, ...);
    // A value of a collection, by the collection's callback; without one its address. Collections
    // that hold each other, or themselves, are cut off at some depth.
    void appendValue(const void* value, CFStringRef (*copyDescription)(const void* value));

    // Closes the brace and hands the text to the caller; NULL when there was no memory for it.
    CFStringRef finish();

private:
    Ref<CFMutableStringRef> text_;
};

} // namespace cf
