// RuntimeObjectTest.cpp: C++ records as runtime objects.

#include "Core/Object/RuntimeObject.h"

#include <CoreFoundation/CFString.h>

#include "Support/FailingAllocator.h"

#include <gtest/gtest.h>

namespace {

int livingParts = 0;

struct Part {
    Part() { ++livingParts; }
    ~Part() { --livingParts; }
    int value = 7;
};

struct Widget {
    CFRuntimeBase base;
    Part part;
    int size = 3;
};
using WidgetRef = Widget*;

bool sameSize(WidgetRef a, WidgetRef b) {
    return a->size == b->size;
}
CFHashCode sizeOf(const Widget* widget) {
    return CFHashCode(widget->size);
}
WidgetRef copyOf(WidgetRef widget);
CFStringRef describe(WidgetRef) {
    return CFSTR("a widget");
}

constexpr CFRuntimeClass kWidgetClass = {
    .className = "Widget",
    .copy = cg::copyBy<copyOf>,
    .finalize = cg::finalize<Widget>,
    .equal = cg::equalBy<sameSize>,
    .hash = cg::hashBy<sizeOf>,
    .copyDebugDescription = cg::debugDescriptionBy<describe>,
};

WidgetRef copyOf(WidgetRef widget) {
    const WidgetRef copy = cg::create<Widget>(kWidgetClass);
    copy->size = widget->size;
    return copy;
}

using Handle = cf::Ref<WidgetRef>;

TEST(RuntimeObject, MembersLiveAsLongAsTheObject) {
    {
        const Handle widget = cf::adopt(cg::create<Widget>(kWidgetClass));
        EXPECT_EQ(livingParts, 1);
        EXPECT_EQ(widget.get()->part.value, 7);
        EXPECT_EQ(CFGetRetainCount(widget.get()), 1);
        const Handle second = widget;
        EXPECT_EQ(CFGetRetainCount(widget.get()), 2);
        EXPECT_EQ(livingParts, 1);
    }
    EXPECT_EQ(livingParts, 0);
}

TEST(RuntimeObject, TypedFunctionsAnswerForTheClass) {
    const Handle a = cf::adopt(cg::create<Widget>(kWidgetClass));
    const Handle b = cf::adopt(cg::create<Widget>(kWidgetClass));
    EXPECT_TRUE(CFEqual(a.get(), b.get()));
    EXPECT_EQ(CFHash(a.get()), 3u);
    b.get()->size = 4;
    EXPECT_FALSE(CFEqual(a.get(), b.get()));
    const Handle copy = cf::adopt(cg::as<WidgetRef>(kWidgetClass.copy(nullptr, b.get())));
    EXPECT_NE(copy.get(), b.get());
    EXPECT_TRUE(CFEqual(copy.get(), b.get()));
    const auto text = cf::adopt(CFCopyDescription(a.get()));
    EXPECT_TRUE(CFEqual(text.get(), CFSTR("a widget")));
}

TEST(RuntimeObject, RegisteredClassesHaveATypeIdentifier) {
    static const CFTypeID type = _CFRuntimeRegisterClass(&kWidgetClass);
    const Handle widget = cf::adopt(cg::create<Widget>(type));
    EXPECT_NE(type, CFTypeID(_kCFRuntimeNotATypeID));
    EXPECT_EQ(CFGetTypeID(widget.get()), type);
    EXPECT_EQ(widget.get()->size, 3);
}

TEST(RuntimeObject, TrailingMemoryIsZeroedAndBehindTheRecord) {
    const Handle widget = cf::adopt(cg::create<Widget>(kWidgetClass, 4 * sizeof(int)));
    const int* const items = cg::trailing<int>(widget.get());
    EXPECT_EQ(static_cast<const void*>(items), widget.get() + 1);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(items[i], 0);
}

TEST(RuntimeObject, SizesThatOverflowGiveNoObject) {
    for (const std::size_t bytes : {std::size_t{0} - 1, std::size_t{0} - sizeof(Widget),
                                    std::size_t{1} << (8 * sizeof(CFIndex) - 1)})
        EXPECT_EQ(cg::create<Widget>(kWidgetClass, bytes), nullptr) << bytes;
    EXPECT_EQ(livingParts, 0);
}

TEST(RuntimeObject, WithoutMemoryNothingIsConstructed) {
    bool isNeutral = true;
    const auto sweep = test::failEachAllocation([&isNeutral] {
        const Handle widget = cf::adopt(cg::create<Widget>(kWidgetClass));
        isNeutral = isNeutral && livingParts == (widget ? 1 : 0);
    });
    EXPECT_EQ(sweep.failures, 1u);
    EXPECT_EQ(sweep.leakedBytes, 0);
    EXPECT_TRUE(isNeutral);
}

} // namespace
