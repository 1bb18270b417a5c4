// CFAutoreleaseTest.cpp: when references given to the thread's scopes are given up.

#include <CoreFoundation/CFNumber.h>
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFRuntime.h>

#include <gtest/gtest.h>

#include <thread>

namespace {

// An object whose references the test counts; released by the test once more at the end.
cf::Ref<CFNumberRef> makeObject() {
    const int value = 5;
    return cf::adopt(CFNumberCreate(nullptr, kCFNumberIntType, &value));
}

CFTypeRef autoreleased(const cf::Ref<CFNumberRef>& object) {
    return CFAutorelease(CFRetain(object.get()));
}

TEST(CFAutorelease, InnermostScopeGivesUpItsReferences) {
    const auto object = makeObject();
    void* const outer = _CFAutoreleasePoolPush();
    EXPECT_EQ(autoreleased(object), object.get());
    void* const inner = _CFAutoreleasePoolPush();
    autoreleased(object);
    autoreleased(object);
    EXPECT_EQ(CFGetRetainCount(object.get()), 4);
    _CFAutoreleasePoolPop(inner);
    EXPECT_EQ(CFGetRetainCount(object.get()), 2);
    _CFAutoreleasePoolPop(outer);
    EXPECT_EQ(CFGetRetainCount(object.get()), 1);
}

TEST(CFAutorelease, ClosingAnOuterScopeClosesThoseWithin) {
    const auto object = makeObject();
    void* const outer = _CFAutoreleasePoolPush();
    _CFAutoreleasePoolPush();
    autoreleased(object);
    _CFAutoreleasePoolPop(outer);
    EXPECT_EQ(CFGetRetainCount(object.get()), 1);
}

TEST(CFAutorelease, ThreadsEndGivesUpTheRest) {
    const auto object = makeObject();
    std::thread([&] {
        autoreleased(object);
        EXPECT_EQ(CFGetRetainCount(object.get()), 2);
    }).join();
    EXPECT_EQ(CFGetRetainCount(object.get()), 1);
}

TEST(CFAutorelease, TakesNull) {
    EXPECT_EQ(CFAutorelease(nullptr), nullptr);
    _CFAutoreleasePoolPop(nullptr);
}

} // namespace
