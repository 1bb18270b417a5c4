// CFRuntimeTest.cpp: classes, instances and reference counts.

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFRuntime.h>

#include <gtest/gtest.h>

#include <limits>

namespace {

// A class whose instances carry a number, equal by value, and count their finalisations.
struct Box {
    CFRuntimeBase base;
    long number;
};

int finalized = 0;

const Box& box(CFTypeRef object) {
    return *static_cast<const Box*>(object);
}

const CFRuntimeClass kBoxClass = {
    .className = "Box",
    .finalize = [](CFTypeRef) { ++finalized; },
    .equal = [](CFTypeRef a, CFTypeRef b) -> Boolean { return box(a).number == box(b).number; },
    .hash = [](CFTypeRef object) { return static_cast<CFHashCode>(box(object).number); },
};
const CFRuntimeClass kPlainClass = {.className = "Plain"};

constexpr CFIndex kBoxExtra = sizeof(Box) - sizeof(CFRuntimeBase);

CFTypeID boxType() {
    static const CFTypeID type = _CFRuntimeRegisterClass(&kBoxClass);
    return type;
}

cf::Ref<CFTypeRef> makeBox(long number) {
    const CFTypeRef created = _CFRuntimeCreateInstance(nullptr, boxType(), kBoxExtra, nullptr);
    static_cast<Box*>(const_cast<void*>(created))->number = number;
    return cf::adopt(created);
}

TEST(CFRuntime, InstancesStartZeroedWithOneReference) {
    const auto object = cf::adopt(_CFRuntimeCreateInstance(nullptr, boxType(), kBoxExtra, nullptr));
    ASSERT_TRUE(object);
    EXPECT_EQ(box(object.get()).number, 0);
    EXPECT_EQ(CFGetRetainCount(object.get()), 1);
    EXPECT_EQ(CFGetTypeID(object.get()), boxType());
    EXPECT_EQ(_CFRuntimeGetClassWithTypeID(boxType()), &kBoxClass);
    EXPECT_EQ(CFGetAllocator(object.get()), kCFAllocatorSystemDefault);
}

TEST(CFRuntime, FirstWordHasTheTwoLowBitsOfAClassWord) {
    const auto object = makeBox(1);
    EXPECT_EQ(*static_cast<const uintptr_t*>(object.get()) & 3, 2u);
    EXPECT_EQ(*reinterpret_cast<const uintptr_t*>(kCFNull) & 3, 2u);
}

TEST(CFRuntime, LastReleaseFinalizesOnce) {
    finalized = 0;
    const CFTypeRef object = makeBox(1).release();
    EXPECT_EQ(CFRetain(object), object);
    CFRelease(object);
    EXPECT_EQ(finalized, 0);
    CFRelease(object);
    EXPECT_EQ(finalized, 1);
}

TEST(CFRuntime, UntypedInstancesWorkWithoutATypeIdentifier) {
    finalized = 0;
    {
        const auto a = cf::adopt(_CFRuntimeCreateUntypedInstance(nullptr, &kBoxClass, kBoxExtra));
        const auto b = cf::adopt(_CFRuntimeCreateUntypedInstance(nullptr, &kBoxClass, kBoxExtra));
        EXPECT_EQ(CFGetTypeID(a.get()), 0u);
        EXPECT_TRUE(CFEqual(a.get(), b.get()));
    }
    EXPECT_EQ(finalized, 2);
}

TEST(CFRuntime, RefusesImpossibleInstances) {
    constexpr CFIndex most = std::numeric_limits<CFIndex>::max();
    EXPECT_EQ(_CFRuntimeCreateInstance(nullptr, 0, 0, nullptr), nullptr);
    EXPECT_EQ(_CFRuntimeCreateInstance(nullptr, 4000, 0, nullptr), nullptr);
    EXPECT_EQ(_CFRuntimeCreateInstance(nullptr, boxType(), -1, nullptr), nullptr);
    EXPECT_EQ(_CFRuntimeCreateInstance(nullptr, boxType(), most, nullptr), nullptr);
    EXPECT_EQ(_CFRuntimeCreateUntypedInstance(nullptr, nullptr, 0), nullptr);
    EXPECT_EQ(_CFRuntimeCreateUntypedInstance(kCFAllocatorNull, &kPlainClass, 0), nullptr);
    EXPECT_EQ(_CFRuntimeRegisterClass(nullptr), 0u);
}

TEST(CFRuntime, ImmortalObjectsIgnoreRetainAndRelease) {
    static Box immortal = {};
    _CFRuntimeInitStaticInstance(&immortal, boxType());
    EXPECT_TRUE(_CFRuntimeIsImmortal(&immortal));
    for (int i = 0; i < 3; ++i)
        CFRelease(&immortal);
    CFRetain(&immortal);
    EXPECT_EQ(CFGetRetainCount(&immortal), std::numeric_limits<CFIndex>::max());
    EXPECT_EQ(CFGetTypeID(&immortal), boxType());

    EXPECT_FALSE(_CFRuntimeIsImmortal(makeBox(1).get()));
    EXPECT_TRUE(_CFRuntimeIsImmortal(kCFNull));
}

TEST(CFRuntime, EqualityAndHashAreTheClassesOwn) {
    const auto a = makeBox(7), same = makeBox(7), other = makeBox(8);
    const auto plain = cf::adopt(_CFRuntimeCreateUntypedInstance(nullptr, &kPlainClass, 8));
    const auto plain2 = cf::adopt(_CFRuntimeCreateUntypedInstance(nullptr, &kPlainClass, 8));
    const struct {
        const char* what;
        CFTypeRef a;
        CFTypeRef b;
        bool equal;
    } cases[] = {
        {"itself", a.get(), a.get(), true},
        {"of equal value", a.get(), same.get(), true},
        {"of another value", a.get(), other.get(), false},
        {"of another class", a.get(), plain.get(), false},
        {"without a rule, itself", plain.get(), plain.get(), true},
        {"without a rule, another", plain.get(), plain2.get(), false},
        {"nothing", a.get(), nullptr, false},
    };
    for (const auto& [what, first, second, equal] : cases) {
        EXPECT_EQ(CFEqual(first, second), equal) << what;
        EXPECT_EQ(CFEqual(second, first), equal) << what;
    }
    EXPECT_EQ(CFHash(a.get()), CFHash(same.get()));
    EXPECT_EQ(CFHash(plain.get()), reinterpret_cast<CFHashCode>(plain.get()));
}

} // namespace
