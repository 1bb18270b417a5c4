// FMFontIteratorTest.cpp: the walk over the host's fonts.

#include <CoreFoundation/CFRef.h>
#include <FontManager/FontManager.h>
#include <Host/Fonts.h>

#include <gtest/gtest.h>

namespace {

TEST(FMFontIterator, ComesToEachFontOfTheHostOnce) {
    int expected = 0;
    const auto count = [](const HostFont*, void* context) { ++*static_cast<int*>(context); };
    if (!HostFontEnumerate(count, &expected))
        GTEST_SKIP() << "this host cannot list its fonts";
    const auto iterator = cf::adopt(FMFontIteratorCreate());
    EXPECT_EQ(FMFontIteratorGetType(iterator.get()), kFMFontIteratorTypeNone);
    int met = 0;
    for (; FMFontIteratorNext(iterator.get()); ++met)
        EXPECT_EQ(FMFontIteratorGetType(iterator.get()), kFMFontIteratorTypeFile);
    EXPECT_EQ(met, expected);
    // It stays at its end.
    EXPECT_FALSE(FMFontIteratorNext(iterator.get()));
    EXPECT_EQ(FMFontIteratorGetType(iterator.get()), kFMFontIteratorTypeNone);
}

} // namespace
