// CFStringAllocationTest.cpp: every allocation of every operation on strings fails in turn.

#include <Host/Host.h>

#include "StringTexts.h"
#include "Support/FailingAllocator.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

using test::String;

// Made before the sweeps: the standard library throws where it gets no memory.
const std::u16string kLong(600, u'\u4E16');
const std::u16string kLongNarrow(600, u'n');

void create() {
    const String wide = test::string(kLong);
    const String narrow = test::string(kLongNarrow);
    const auto bytes = cf::adopt(CFStringCreateWithCString(nullptr,
                                                           "gr\xC3\xBC\xC3\x9F"
                                                           "e \xE4\xB8\x96",
                                                           kCFStringEncodingUTF8));
    const auto part =
        cf::adopt(CFStringCreateWithSubstring(nullptr, wide.get(), CFRangeMake(0, 3)));
    const auto borrowed = cf::adopt(CFStringCreateWithCharactersNoCopy(
        nullptr, test::units(kLong), CFIndex(kLong.size()), kCFAllocatorNull));
    const auto copy = cf::adopt(CFStringCreateCopy(nullptr, borrowed.get()));
    const auto data = cf::adopt(
        CFStringCreateExternalRepresentation(nullptr, wide.get(), kCFStringEncodingUTF16, 0));
    const auto back = cf::adopt(
        CFStringCreateFromExternalRepresentation(nullptr, data.get(), kCFStringEncodingUTF16));
}

void format() {
    const auto made = cf::adopt(CFStringCreateWithFormat(
        nullptr, nullptr,
        CFSTR("%1$@ %2$700d %3$s %1$@ %1$@ %1$@ %1$@ %1$@ %1$@ %1$@ %1$@ %1$@ "
              "%1$@ %1$@ %1$@ %1$@ %1$@ %1$@ %1$@ %1$@"),
        CFSTR("object"), 42, "bytes"));
    const auto appended = cf::adopt(CFStringCreateMutable(nullptr, 0));
    CFStringAppendFormat(appended.get(), nullptr, CFSTR("%900d"), 1);
}

void split() {
    const auto parts = cf::adopt(CFStringCreateArrayBySeparatingStrings(
        nullptr, CFSTR("one,two,three,four,five,six,seven,eight,nine,ten"), CFSTR(",")));
    const auto joined =
        cf::adopt(CFStringCreateByCombiningStrings(nullptr, parts.get(), CFSTR(", ")));
    const auto found = cf::adopt(CFStringCreateArrayWithFindResults(
        nullptr, CFSTR("a-b-c-d"), CFSTR("-"), CFRangeMake(0, 7), 0));
}

void change() {
    const auto changed = cf::adopt(CFStringCreateMutable(nullptr, 0));
    for (int i = 0; i < 40; ++i)
        CFStringAppend(changed.get(), CFSTR("abcdefgh"));
    CFStringAppend(changed.get(), changed.get());
    CFStringInsert(changed.get(), 3, changed.get());
    const CFRange all = CFRangeMake(0, CFStringGetLength(changed.get()));
    CFStringFindAndReplace(changed.get(), CFSTR("A"), CFSTR("12345"), all,
                           kCFCompareCaseInsensitive);
    CFStringFold(changed.get(), kCFCompareCaseInsensitive, nullptr);
    CFStringPad(changed.get(), CFSTR("-"), 20000, 0);
}

void localize() {
    const auto locale = cf::adopt(CFLocaleCreate(nullptr, CFSTR("de_AT")));
    const auto tag =
        cf::adopt(CFLocaleCreateCanonicalLanguageIdentifierFromString(nullptr, CFSTR("de_AT")));
    const auto languages = cf::adopt(CFLocaleCopyPreferredLanguages());
}

TEST(CFStringAllocation, FailuresLeakNothingAndCrashNothing) {
    const struct {
        const char* what;
        void (*operation)();
        size_t atLeast; // Allocations there must be, lest the sweep looks at nothing.
    } cases[] = {
        {"create", create, 8}, {"format", format, 3},     {"split", split, 12},
        {"change", change, 5}, {"localize", localize, 4},
    };
    for (const auto& [what, operation, atLeast] : cases) {
        HostLogSetThreshold(kHostLogFault); // What is refused for want of memory is logged.
        const auto sweep = test::failEachAllocation(operation);
        HostLogSetThreshold(kHostLogError);
        EXPECT_EQ(sweep.leakedBytes, 0) << what;
        if (test::allAllocationsCanFail()) {
            EXPECT_GE(sweep.failures, atLeast) << what;
        }
    }
}

// Memory from malloc until it is told to refuse.
struct MoodyMemory {
    bool refuses = false;
    int blocks = 0;

    cf::Ref<CFAllocatorRef> allocator() {
        CFAllocatorContext context = {};
        context.info = this;
        context.allocate = [](CFIndex size, CFOptionFlags, void* info) -> void* {
            auto* const self = static_cast<MoodyMemory*>(info);
            self->blocks += self->refuses ? 0 : 1;
            return self->refuses ? nullptr : std::malloc(size_t(size));
        };
        context.reallocate = [](void* memory, CFIndex size, CFOptionFlags, void* info) -> void* {
            return static_cast<MoodyMemory*>(info)->refuses ? nullptr
                                                            : std::realloc(memory, size_t(size));
        };
        context.deallocate = [](void* memory, void* info) {
            --static_cast<MoodyMemory*>(info)->blocks;
            std::free(memory);
        };
        return cf::adopt(CFAllocatorCreate(nullptr, &context));
    }
};

TEST(CFStringAllocation, MutableStringStaysAsItWasWithoutMemory) {
    MoodyMemory memory;
    const auto allocator = memory.allocator();
    {
        const auto changed =
            cf::adopt(CFStringCreateMutableCopy(allocator.get(), 0, CFSTR("before")));
        const String more = test::string(kLong);
        EXPECT_EQ(memory.blocks, 2) << "the object and its contents";
        memory.refuses = true;
        CFStringAppend(changed.get(), more.get());
        EXPECT_EQ(CFStringCreateCopy(allocator.get(), changed.get()), nullptr);
        EXPECT_EQ(CFStringCreateMutableCopy(allocator.get(), 0, more.get()), nullptr);
        EXPECT_EQ(test::text(changed.get()), u"before");
        memory.refuses = false;
        CFStringAppend(changed.get(), more.get());
        EXPECT_EQ(CFStringGetLength(changed.get()), 606);
    }
    EXPECT_EQ(memory.blocks, 0);
}

} // namespace
