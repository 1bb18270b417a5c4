// CGShadingTest.cpp: the parts of shadings, and what shadings keep alive.

#include "XGFunction.h"
#include "XGGradient.h"
#include "XGShading.h"
#include <CoreFoundation/CFRef.h>

#include <gtest/gtest.h>

namespace {

using Shading = cf::Ref<CGShadingRef>;

class ShadingTest : public testing::Test {
protected:
    Shading radial(CGFloat endRadius, int extendStart = 1, int extendEnd = 0) const {
        return cf::adopt(CGShadingCreateRadial(gray_.get(), {1, 2}, 3, {4, 5}, endRadius,
                                               function_.get(), extendStart, extendEnd));
    }

    const cf::Ref<CGColorSpaceRef> gray_ = cf::adopt(CGColorSpaceCreateDeviceGray());
    const CGFunctionCallbacks callbacks_ = {.evaluate = [](void*, const CGFloat*, CGFloat*) {}};
    const cf::Ref<CGFunctionRef> function_ =
        cf::adopt(CGFunctionCreate(nullptr, 1, nullptr, 2, nullptr, &callbacks_));
};

TEST_F(ShadingTest, ExtendsByOneAloneAndNeedsSpaceAndFunction) {
    const auto axial = [](CGColorSpaceRef space, CGFunctionRef function) {
        return cf::adopt(CGShadingCreateAxial(space, {1, 2}, {4, 5}, function, 2, 1));
    };
    const Shading shading = axial(gray_.get(), function_.get());
    EXPECT_FALSE(XGShadingIsRadial(shading.get()));
    EXPECT_FALSE(XGShadingExtendsStart(shading.get())) << "2 is not 1";
    EXPECT_TRUE(XGShadingExtendsEnd(shading.get()));
    EXPECT_FALSE(axial(gray_.get(), nullptr));
    EXPECT_FALSE(axial(nullptr, function_.get()));
}

TEST_F(ShadingTest, EqualsOneOfTheSameParts) {
    const Shading shading = radial(6);
    EXPECT_TRUE(CFEqual(shading.get(), radial(6).get()));
    EXPECT_EQ(CFHash(shading.get()), CFHash(radial(6).get()));
    EXPECT_FALSE(CFEqual(shading.get(), radial(7).get()));
    EXPECT_FALSE(CFEqual(shading.get(), radial(6, 0).get()));
    EXPECT_FALSE(CFEqual(shading.get(), radial(6, 1, 1).get()));
}

TEST_F(ShadingTest, KeepsTheGradientOfItsFunction) {
    const CGFloat components[] = {0.25f, 1, 0.75f, 1};
    auto gradient =
        cf::adopt(CGGradientCreateWithColorComponents(gray_.get(), components, nullptr, 2));
    const Shading shading = cf::adopt(CGShadingCreateAxial(
        gray_.get(), {0, 0}, {1, 0}, XGGradientGetFunction(gradient.get()), 0, 0));
    gradient = nullptr;
    const CGFloat half = 0.5f;
    CGFloat out[2] = {};
    XGFunctionEvaluate(XGShadingGetFunction(shading.get()), &half, out);
    EXPECT_EQ(out[0], 0.5f);
}

} // namespace
