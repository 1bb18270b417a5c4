// CFForeignObjectTest.cpp: objects of another runtime, here a small one of the test's own.

#include <CoreFoundation/CFNull.h>
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFRuntime.h>
#include <CoreFoundation/CFString.h>

#include <gtest/gtest.h>

#include <string_view>

namespace {

// As in such runtimes, an object begins with the aligned address of its class.
struct Foreign {
    const void* isa;
    int references;
    int value;
};

constexpr double kClass = 0;

bool isEqual(const Foreign& object, const void* argument) {
    const auto& other = *static_cast<const Foreign*>(argument);
    return other.isa == &kClass && other.value == object.value;
}

} // namespace

// The two functions of the runtime. The library finds them by name, as it would the real ones.
extern "C" __attribute__((visibility("default"), used)) const void*
sel_registerName(const char* name) {
    return name;
}

extern "C" __attribute__((visibility("default"), used)) uintptr_t
objc_msgSend(const void* receiver, const void* selector, const void* argument) {
    auto& object = *static_cast<Foreign*>(const_cast<void*>(receiver));
    const std::string_view name = static_cast<const char*>(selector);
    if (name == "retain")
        ++object.references;
    else if (name == "release")
        --object.references;
    else if (name == "hash")
        return static_cast<uintptr_t>(object.value);
    else if (name == "description")
        return reinterpret_cast<uintptr_t>(CFSTR("a foreign object"));
    else if (name == "isEqual:")
        return 0xff00 | (isEqual(object, argument) ? 1 : 0); // Only the low byte counts.
    return reinterpret_cast<uintptr_t>(receiver);
}

namespace {

TEST(ForeignObject, IsSentTheMessagesOfItsRuntime) {
    Foreign object = {&kClass, 1, 5}, same = {&kClass, 1, 5}, other = {&kClass, 1, 6};
    EXPECT_FALSE(_CFRuntimeIsNative(&object));
    EXPECT_EQ(CFRetain(&object), &object);
    EXPECT_EQ(object.references, 2);
    CFRelease(&object);
    EXPECT_EQ(object.references, 1);
    EXPECT_TRUE(CFEqual(&object, &same));
    EXPECT_FALSE(CFEqual(&object, &other));
    EXPECT_FALSE(CFEqual(&object, kCFNull));
    EXPECT_FALSE(CFEqual(kCFNull, &object));
    EXPECT_EQ(CFHash(&object), 5u);
    const auto text = cf::adopt(CFCopyDescription(&object));
    EXPECT_TRUE(CFEqual(text.get(), CFSTR("a foreign object")));
}

TEST(ForeignObject, HasNoTypeNorCountOfOurs) {
    const Foreign object = {&kClass, 1, 5};
    EXPECT_EQ(CFGetTypeID(&object), 0u);
    EXPECT_EQ(CFGetRetainCount(&object), 0);
    EXPECT_EQ(CFStringGetLength(reinterpret_cast<CFStringRef>(&object)), 0);
}

} // namespace
