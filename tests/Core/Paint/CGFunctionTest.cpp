// CGFunctionTest.cpp: limits around a caller's function, and its lifetime.

#include "XGFunction.h"
#include <CoreFoundation/CFRef.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using Function = cf::Ref<CGFunctionRef>;

constexpr CGFloat kNaN = std::numeric_limits<CGFloat>::quiet_NaN();
constexpr CGFloat kInfinity = std::numeric_limits<CGFloat>::infinity();
constexpr CGFloat kUnit[] = {0, 1};

// Hands its input on.
constexpr CGFunctionCallbacks kIdentity = {
    .evaluate = [](void*, const CGFloat* in, CGFloat* out) { *out = *in; }};

TEST(Function, LimitsInputsAndOutputs) {
    const auto inDomain = cf::adopt(CGFunctionCreate(nullptr, 1, kUnit, 1, nullptr, &kIdentity));
    const auto inRange = cf::adopt(CGFunctionCreate(nullptr, 1, nullptr, 1, kUnit, &kIdentity));
    const struct {
        const char* what;
        CGFloat in, throughDomain, throughRange;
    } cases[] = {
        {"inside", 0.25f, 0.25f, 0.25f},
        {"below", -5, 0, 0},
        {"above", 5, 1, 1},
        {"not a number", kNaN, 0, 0},
        {"minus infinity", -kInfinity, 0, 0},
        {"infinity: a failed output", kInfinity, 1, 0},
    };
    for (const auto& [what, in, throughDomain, throughRange] : cases) {
        CGFloat out = 9;
        XGFunctionEvaluate(inDomain.get(), &in, &out);
        EXPECT_EQ(out, throughDomain) << what;
        XGFunctionEvaluate(inRange.get(), &in, &out);
        EXPECT_EQ(out, throughRange) << what;
    }
}

TEST(Function, LimitsEveryOneOfManyInputs) {
    const CGFunctionCallbacks sum = {.evaluate = [](void*, const CGFloat* in, CGFloat* out) {
        *out = in[0] + in[1] + in[2] + in[3] + in[4] + in[5];
    }};
    const CGFloat domain[] = {0, 1, 0, 2, 0, 3, 0, 4, 0, 5, 0, 6};
    const auto function = cf::adopt(CGFunctionCreate(nullptr, 6, domain, 1, nullptr, &sum));
    const CGFloat in[] = {9, 9, 9, 9, 9, 9};
    CGFloat out = 0;
    XGFunctionEvaluate(function.get(), in, &out);
    EXPECT_EQ(out, 21);
}

TEST(Function, IsNotMadeOfUnusableArguments) {
    CGFunctionCallbacks laterVersion = kIdentity;
    laterVersion.version = 1;
    const CGFunctionCallbacks nothingToEvaluate = {};
    constexpr std::size_t kHuge = std::numeric_limits<std::size_t>::max() / 4;
    EXPECT_FALSE(CGFunctionCreate(nullptr, 1, kUnit, 1, kUnit, nullptr));
    EXPECT_FALSE(CGFunctionCreate(nullptr, 1, kUnit, 1, kUnit, &laterVersion));
    EXPECT_FALSE(CGFunctionCreate(nullptr, 1, kUnit, 1, kUnit, &nothingToEvaluate));
    EXPECT_FALSE(CGFunctionCreate(nullptr, kHuge, nullptr, 1, kUnit, &kIdentity));
}

TEST(Function, ReleasesItsInfoOnceAtItsEnd) {
    int releases = 0;
    const CGFunctionCallbacks callbacks = {
        .evaluate = kIdentity.evaluate,
        .releaseInfo = [](void* info) { ++*static_cast<int*>(info); }};
    Function function = cf::adopt(CGFunctionCreate(&releases, 1, kUnit, 1, kUnit, &callbacks));
    Function other = function;
    function = nullptr;
    EXPECT_EQ(releases, 0);
    other = nullptr;
    EXPECT_EQ(releases, 1);
}

TEST(Function, EqualsOneOfTheSameParts) {
    int info = 0;
    const CGFloat wider[] = {0, 2};
    const auto make = [](void* of, const CGFloat* domain, const CGFloat* range) {
        return cf::adopt(CGFunctionCreate(of, 1, domain, 1, range, &kIdentity));
    };
    const Function function = make(&info, kUnit, kUnit);
    const struct {
        const char* what;
        Function other;
        bool equal;
    } cases[] = {
        {"the same parts", make(&info, kUnit, kUnit), true},
        {"other info", make(nullptr, kUnit, kUnit), false},
        {"other domain", make(&info, wider, kUnit), false},
        {"no range", make(&info, kUnit, nullptr), false},
        {"no function", nullptr, false},
    };
    for (const auto& [what, other, equal] : cases) {
        EXPECT_EQ(XGFunctionEqualToFunction(function.get(), other.get()), equal) << what;
        if (equal)
            EXPECT_EQ(CFHash(function.get()), CFHash(other.get())) << what;
    }
}

} // namespace
