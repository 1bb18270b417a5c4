// CGColorTest.cpp: colours as values.

#include "XGColor.h"
#include "XGColorSpace.h"
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

namespace {

using Color = cf::Ref<CGColorRef>;

constexpr CGFloat kNaN = std::numeric_limits<CGFloat>::quiet_NaN();

Color gray(CGFloat value, CGFloat alpha = 1) {
    return cf::adopt(CGColorCreateGenericGray(value, alpha));
}
Color rgb(CGFloat red, CGFloat green, CGFloat blue, CGFloat alpha = 1) {
    return cf::adopt(CGColorCreateGenericRGB(red, green, blue, alpha));
}

std::vector<CGFloat> componentsOf(const Color& color) {
    const CGFloat* const components = CGColorGetComponents(color.get());
    return {components, components + CGColorGetNumberOfComponents(color.get())};
}

TEST(Color, CopiesAreTheSameObjectUnlessTheOpacityChanges) {
    const Color color = rgb(0.1f, 0.2f, 0.3f, 0.4f);
    EXPECT_EQ(cf::adopt(CGColorCreateCopy(color.get())).get(), color.get());
    const Color half = cf::adopt(CGColorCreateCopyWithAlpha(color.get(), 0.5f));
    EXPECT_EQ(componentsOf(half), (std::vector<CGFloat>{0.1f, 0.2f, 0.3f, 0.5f}));
    const Color same = cf::adopt(CGColorCreateCopyWithAlpha(color.get(), -0.5f));
    EXPECT_TRUE(CFEqual(same.get(), color.get())) << "a negative opacity keeps the old";
    EXPECT_FALSE(CGColorCreateCopy(nullptr));
    EXPECT_FALSE(CGColorCreateCopyWithAlpha(nullptr, 1));
}

TEST(Color, EqualsBitForBit) {
    const auto device = cf::adopt(CGColorSpaceCreateDeviceRGB());
    const CGFloat white[] = {1, 1, 1};
    const auto calibrated =
        cf::adopt(CGColorSpaceCreateCalibratedRGB(white, nullptr, nullptr, nullptr));
    const auto make = [](CGColorSpaceRef space, CGFloat first, CGFloat alpha) {
        const CGFloat components[] = {first, 0, 0, alpha};
        return cf::adopt(CGColorCreate(space, components));
    };
    const struct {
        const char* what;
        Color a, b;
        bool equal;
    } cases[] = {
        {"same values", rgb(0.5f, 0, 0), rgb(0.5f, 0, 0), true},
        {"one bit off", rgb(0.5f, 0, 0), rgb(std::nextafter(0.5f, 1.f), 0, 0), false},
        {"zeroes of two signs", rgb(0, 0, 0), rgb(-0.f, 0, 0), false},
        {"the same NaN", make(device.get(), 0, kNaN), make(device.get(), 0, kNaN), true},
        {"equal spaces", make(device.get(), 1, 1), make(calibrated.get(), 1, 1), true},
        {"gray and RGB", gray(0), rgb(0, 0, 0), false},
        {"none and one", nullptr, gray(0), false},
        {"none and none", nullptr, nullptr, true},
    };
    for (const auto& [what, a, b, equal] : cases) {
        EXPECT_EQ(CGColorEqualToColor(a.get(), b.get()), equal) << what;
        EXPECT_EQ(CGColorEqualToColor(b.get(), a.get()), equal) << what;
        if (a && b && equal) {
            EXPECT_EQ(CFHash(a.get()), CFHash(b.get())) << what;
        }
    }
}

TEST(Color, HashesTheBytesOfItsComponents) {
    const Color color = gray(0.5f, 1);
    const CGFloat components[] = {0.5f, 1};
    unsigned char bytes[sizeof components];
    std::memcpy(bytes, components, sizeof bytes);
    uint32_t expected = 903869;
    for (const unsigned char byte : bytes)
        expected = (expected + byte) * 257;
    EXPECT_EQ(CFHash(color.get()), expected);
}

TEST(Color, ComparesWithComponentsThatAreNoColorYet) {
    const Color color = rgb(0.1f, 0.2f, 0.3f, 0.4f);
    const CGFloat same[] = {0.1f, 0.2f, 0.3f, 0.4f}, other[] = {0.1f, 0.2f, 0.3f, 0.5f};
    const auto equals = [&](CGColorSpaceRef space, const CGFloat* components) {
        return XGColorEqualToColorComponents(color.get(), space, components, nullptr);
    };
    EXPECT_TRUE(equals(XGColorSpaceGetDeviceRGB(), same));
    EXPECT_FALSE(equals(XGColorSpaceGetDeviceRGB(), other));
    EXPECT_FALSE(equals(XGColorSpaceGetDeviceGray(), same));
    EXPECT_FALSE(equals(XGColorSpaceGetDeviceRGB(), nullptr));
}

TEST(Color, ConstantsAreTheSameObjectsEachTime) {
    const struct {
        CFStringRef name;
        std::vector<CGFloat> expected;
    } cases[] = {
        {kCGColorWhite, {1, 1}},
        {kCGColorBlack, {0, 1}},
        {kCGColorClear, {0, 0}},
        {CFSTR("kCGColorClear"), {0, 0}},
    };
    for (const auto& [name, expected] : cases) {
        const CGColorRef color = CGColorGetConstantColor(name);
        EXPECT_EQ(componentsOf(cf::retain(color)), expected);
        CGColorRelease(color); // Immortal.
        EXPECT_EQ(CGColorGetConstantColor(name), color);
    }
    EXPECT_FALSE(CGColorGetConstantColor(nullptr));
    EXPECT_FALSE(CGColorGetConstantColor(CFSTR("kCGColorMauve")));
}

TEST(Color, IsOpaqueAboveAThousandthLess) {
    const struct {
        CGFloat alpha;
        bool opaque;
    } cases[] = {{1, true}, {0.9995f, true}, {0.999f, true}, {0.998f, false}, {0, false}};
    for (const auto& [alpha, opaque] : cases)
        EXPECT_EQ(_CGColorIsOpaque(rgb(0, 0, 0, alpha).get()), opaque) << alpha;
    EXPECT_FALSE(_CGColorIsOpaque(nullptr));
}

TEST(Color, DescribesItsComponents) {
    const auto text = cf::adopt(CFCopyDescription(rgb(1, 0.5f, 0.25f, 1).get()));
    char actual[128] = "";
    CFStringGetCString(text.get(), actual, sizeof actual, kCFStringEncodingUTF8);
    EXPECT_STREQ(actual, "<CGColor kCGColorSpaceGenericRGB {1.00, 0.50, 0.25, 1.00}>");
}

} // namespace

// ---- A foreign runtime in this program, which the library finds by name: its one class answers
// "CGColor" with the colour behind the object.

namespace {

struct ForeignColor {
    alignas(16) const void* isa;
    CGColorRef color;
};

const char* lastSelector = nullptr;

} // namespace

extern "C" {
__attribute__((visibility("default"))) const void* sel_registerName(const char* name) {
    lastSelector = name;
    return name;
}
__attribute__((visibility("default"))) CGColorRef objc_msgSend(const void* receiver, const void*) {
    return static_cast<const ForeignColor*>(receiver)->color;
}
}

namespace {

TEST(Color, ForeignObjectsStandForTheColorTheyAnswerWith) {
    const Color color = rgb(0.1f, 0.2f, 0.3f, 0.4f);
    alignas(16) static const char isa[16] = {};
    ForeignColor foreign = {isa, color.get()};
    const auto object = reinterpret_cast<CGColorRef>(&foreign);
    EXPECT_EQ(CGColorGetAlpha(object), 0.4f);
    EXPECT_STREQ(lastSelector, "CGColor");
    EXPECT_TRUE(CGColorEqualToColor(object, color.get()));
    EXPECT_EQ(cf::adopt(CGColorCreateCopy(object)).get(), color.get());

    foreign.color = nullptr;
    EXPECT_EQ(CGColorGetAlpha(object), 0);
    EXPECT_TRUE(CGColorEqualToColor(object, nullptr)) << "an answer of none is no colour";
}

} // namespace
