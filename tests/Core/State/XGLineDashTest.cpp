// XGLineDashTest.cpp: dashes as values.

#include "XGLineDash.h"

#include <CoreFoundation/CFRef.h>

#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>
#include <iterator>

namespace {

using Dash = cf::Ref<XGLineDashRef>;

Dash makeDash(std::initializer_list<CGFloat> lengths, CGFloat phase) {
    return cf::adopt(XGLineDashCreate(std::data(lengths), uint32_t(lengths.size()), phase));
}

TEST(LineDash, EqualsOnlyExactlyTheSamePattern) {
    const Dash dash = makeDash({3, 1}, 0.5f);
    const struct {
        const char* what;
        Dash other;
        bool equal;
    } cases[] = {
        {"same pattern", makeDash({3, 1}, 0.5f), true},
        {"other phase", makeDash({3, 1}, 0), false},
        {"a length one bit off", makeDash({std::nextafter(3.f, 4.f), 1}, 0.5f), false},
        {"one length more", makeDash({3, 1, 2}, 0.5f), false},
        {"no dash", nullptr, false},
    };
    for (const auto& [what, other, equal] : cases)
        EXPECT_EQ(XGLineDashEqualToLineDash(dash.get(), other.get()), equal) << what;
    EXPECT_TRUE(XGLineDashEqualToLineDash(makeDash({}, 1).get(), makeDash({}, 1).get()));
    EXPECT_FALSE(XGLineDashEqualToLineDash(nullptr, nullptr));
}

TEST(LineDash, CopyIsEqualButKeepsItsOwnPhase) {
    const Dash dash = makeDash({3, 1}, 0.5f);
    const Dash copy = cf::adopt(XGLineDashCreateCopy(dash.get()));
    EXPECT_TRUE(CFEqual(dash.get(), copy.get()));
    XGLineDashSetPhase(copy.get(), 2);
    EXPECT_EQ(XGLineDashGetPhase(dash.get()), 0.5f);
    EXPECT_EQ(XGLineDashGetPhase(copy.get()), 2);
}

TEST(LineDash, KeepsLengthsOfItsOwn) {
    CGFloat lengths[] = {3, 1};
    const Dash dash = cf::adopt(XGLineDashCreate(lengths, 2, 0));
    lengths[0] = 7;
    ASSERT_EQ(XGLineDashGetCount(dash.get()), 2u);
    EXPECT_EQ(XGLineDashGetLengths(dash.get())[0], 3);
    EXPECT_EQ(XGLineDashGetLengths(dash.get())[1], 1);
}

TEST(LineDash, RefusesMissingLengths) {
    EXPECT_FALSE(XGLineDashCreate(nullptr, 2, 0));
}

} // namespace
