// XGColorSpaceProfileTest.cpp: profiles, spaces made of them, and colours converted through them.

#include "XGColorSpaceProfile.h"

#include "XGColor.h"
#include "XGColorSpace.h"
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>

#include "Support/CollectedLog.h"

#include <gtest/gtest.h>
#include <lcms2.h>

#include <cmath>
#include <fstream>
#include <iterator>
#include <limits>
#include <vector>

namespace {

using Color = cf::Ref<CGColorRef>;
using Data = cf::Ref<CFDataRef>;
using Profile = cf::Ref<XGColorSpaceProfileRef>;
using Space = cf::Ref<CGColorSpaceRef>;

constexpr CGFloat kWhite[] = {0.95f, 1, 1.09f};
constexpr CGFloat kBlack[] = {0, 0, 0};
constexpr CGFloat kGrayish[] = {0.1f, 0.1f, 0.1f};
constexpr CGFloat kGamma[] = {2, 2, 2};

Space sRGB() {
    return cf::adopt(CGColorSpaceCreateWithName(kCGColorSpaceSRGB));
}

// A profile of Little CMS as the bytes of a file.
Data bytesOf(cmsHPROFILE profile) {
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(profile, nullptr, &size);
    std::vector<UInt8> bytes(size);
    cmsSaveProfileToMem(profile, bytes.data(), &size);
    cmsCloseProfile(profile);
    return cf::adopt(CFDataCreate(nullptr, bytes.data(), CFIndex(size)));
}

Color make(const Space& space, std::vector<CGFloat> components) {
    return cf::adopt(CGColorCreate(space.get(), components.data()));
}

TEST(ColorSpaceProfile, RefusesWhatIsNone) {
    const unsigned char junk[] = "not a profile";
    const auto infinity = std::numeric_limits<CGFloat>::infinity();
    const struct {
        const char* what;
        XGColorSpaceProfileRef made;
    } cases[] = {
        {"no bytes", XGColorSpaceProfileCreate(nullptr, 10)},
        {"no length", XGColorSpaceProfileCreate(junk, 0)},
        {"junk", XGColorSpaceProfileCreate(junk, sizeof junk)},
        {"no data", XGColorSpaceProfileCreateFromCFData(nullptr)},
        {"empty data",
         XGColorSpaceProfileCreateFromCFData(cf::adopt(CFDataCreate(nullptr, junk, 0)).get())},
        {"no path", XGColorSpaceProfileCreateFromFile(nullptr)},
        {"an empty path", XGColorSpaceProfileCreateFromFile("")},
        {"no such file", XGColorSpaceProfileCreateFromFile("/nowhere/at.all")},
        {"gray without white", XGColorSpaceProfileCreateCalibratedGray(nullptr, kBlack, 1)},
        {"gray of a negative exponent",
         XGColorSpaceProfileCreateCalibratedGray(kWhite, kBlack, -1)},
        {"gray of an infinite exponent",
         XGColorSpaceProfileCreateCalibratedGray(kWhite, kBlack, infinity)},
        {"RGB without exponents", XGColorSpaceProfileCreateCalibratedRGB(kWhite, kBlack, nullptr)},
        {"Lab without white", XGColorSpaceProfileCreateLab(nullptr)},
    };
    for (const auto& [what, made] : cases)
        EXPECT_EQ(made, nullptr) << what;
    EXPECT_EQ(XGColorSpaceProfileGetNativeObject(nullptr), nullptr);
    EXPECT_EQ(XGColorSpaceProfileGetModel(nullptr), kCGColorSpaceModelUnknown);
}

TEST(ColorSpaceProfile, TellsWhatItsComponentsAre) {
    const auto read = [](cmsHPROFILE native) {
        return cf::adopt(XGColorSpaceProfileCreateFromCFData(bytesOf(native).get()));
    };
    const struct {
        const char* what;
        Profile profile;
        CGColorSpaceModel model;
    } cases[] = {
        {"gray", cf::adopt(XGColorSpaceProfileCreateCalibratedGray(kWhite, kBlack, 2)),
         kCGColorSpaceModelMonochrome},
        {"RGB", read(cmsCreate_sRGBProfile()), kCGColorSpaceModelRGB},
        {"CMYK", cf::adopt(XGColorSpaceProfileCreateUncalibratedCMYK()), kCGColorSpaceModelCMYK},
        {"Lab", cf::adopt(XGColorSpaceProfileCreateUncalibratedLab()), kCGColorSpaceModelLab},
        {"XYZ", read(cmsCreateXYZProfile()), kCGColorSpaceModelUnknown},
    };
    for (const auto& [what, profile, model] : cases) {
        ASSERT_TRUE(profile) << what;
        EXPECT_EQ(XGColorSpaceProfileGetModel(profile.get()), model) << what;
        EXPECT_NE(XGColorSpaceProfileGetNativeObject(profile.get()), nullptr) << what;
    }
}

// Deliberate: what a profile was read from does not count.
TEST(ColorSpaceProfile, ReadsProvidersInPlaceOrByCopying) {
    const Data data = bytesOf(cmsCreate_sRGBProfile());
    const struct {
        const char* what;
        CGDataProviderGetBytePointerCallback lend;
        CGDataProviderGetBytesAtPositionCallback copy;
        bool made;
    } cases[] = {
        {"lent",
         [](void* info) -> const void* { return CFDataGetBytePtr(static_cast<CFDataRef>(info)); },
         nullptr, true},
        {"copied", nullptr,
         [](void* info, void* buffer, off_t position, size_t count) {
             CFDataGetBytes(static_cast<CFDataRef>(info), CFRangeMake(position, CFIndex(count)),
                            static_cast<UInt8*>(buffer));
             return count;
         },
         true},
        {"copied in part", nullptr, [](void*, void*, off_t, size_t count) { return count - 1; },
         false},
        {"neither", nullptr, nullptr, false},
    };
    for (const auto& [what, lend, copy, made] : cases) {
        const CGDataProviderDirectCallbacks callbacks = {0, lend, nullptr, copy, nullptr};
        const auto provider = cf::adopt(
            CGDataProviderCreateDirect(const_cast<void*>(static_cast<const void*>(data.get())),
                                       CFDataGetLength(data.get()), &callbacks));
        const Profile profile = cf::adopt(XGColorSpaceProfileCreateWithProvider(provider.get()));
        EXPECT_EQ(profile != nullptr, made) << what;
        EXPECT_EQ(XGColorSpaceProfileGetModel(profile.get()),
                  made ? kCGColorSpaceModelRGB : kCGColorSpaceModelUnknown)
            << what;
    }
}

TEST(ColorSpaceProfile, EqualsByItsBlackPointAlone) {
    const auto gray = [](const CGFloat* black) {
        return cf::adopt(XGColorSpaceProfileCreateCalibratedGray(kWhite, black, 2));
    };
    const auto lab = cf::adopt(XGColorSpaceProfileCreateUncalibratedLab());
    EXPECT_TRUE(CFEqual(gray(kBlack).get(), lab.get()));
    EXPECT_FALSE(CFEqual(gray(kBlack).get(), gray(kGrayish).get()));
}

TEST(ColorSpaceProfile, IsMadeOnceForASpace) {
    const Space space =
        cf::adopt(CGColorSpaceCreateCalibratedRGB(kWhite, nullptr, kGamma, nullptr));
    const XGColorSpaceProfileRef profile = XGColorSpaceGetProfile(space.get());
    ASSERT_NE(profile, nullptr);
    EXPECT_EQ(XGColorSpaceGetProfile(space.get()), profile);
    EXPECT_EQ(XGColorSpaceGetProfile(cf::adopt(CGColorSpaceCreatePattern(nullptr)).get()), nullptr);
    EXPECT_EQ(XGColorSpaceGetProfile(nullptr), nullptr);
    EXPECT_NE(XGColorSpaceGetProfile(XGColorSpaceGetDeviceRGB()), nullptr);
    EXPECT_EQ(CGColorSpaceCopyICCData(XGColorSpaceGetDeviceRGB()), nullptr)
        << "a profile of numbers has no data";
}

TEST(ColorSpaceProfile, MakesASpaceThatGivesItsDataBack) {
    const Data data = bytesOf(cmsCreate_sRGBProfile());
    const Space space = cf::adopt(CGColorSpaceCreateWithICCProfile(data.get()));
    ASSERT_TRUE(space);
    EXPECT_EQ(CGColorSpaceGetModel(space.get()), kCGColorSpaceModelRGB);
    EXPECT_EQ(CGColorSpaceGetNumberOfComponents(space.get()), 3u);
    EXPECT_EQ(cf::adopt(CGColorSpaceCopyICCData(space.get())).get(), data.get());
    EXPECT_EQ(cf::adopt(CGColorSpaceCopyICCProfile(space.get())).get(), data.get());
    EXPECT_FALSE(XGColorSpaceIsSRGB(space.get())) << "only the name makes it that";
    EXPECT_EQ(cf::adopt(CGColorSpaceCreateICCBased(3, nullptr, nullptr, space.get())).get(),
              space.get());
    EXPECT_FALSE(CGColorSpaceCreateICCBased(3, nullptr, nullptr, nullptr));
}

TEST(ColorSpaceProfile, MakesASpaceOfDataProvidersAndLists) {
    const Data data = bytesOf(cmsCreate_sRGBProfile());
    const auto provider = cf::adopt(CGDataProviderCreateWithCFData(data.get()));
    const struct {
        const char* what;
        Space space;
        bool isMade;
    } cases[] = {
        {"data", cf::adopt(CGColorSpaceCreateWithICCData(data.get())), true},
        {"a provider", cf::adopt(CGColorSpaceCreateWithICCData(provider.get())), true},
        {"a profile", cf::adopt(CGColorSpaceCreateWithColorSyncProfile(data.get(), nullptr)), true},
        {"a list of data", cf::adopt(CGColorSpaceCreateWithPropertyList(data.get())), true},
        {"text", cf::adopt(CGColorSpaceCreateWithICCData(CFSTR("profile"))), false},
        {"a list of another kind", cf::adopt(CGColorSpaceCreateWithPropertyList(kCFBooleanTrue)),
         false},
        {"an unknown name", cf::adopt(CGColorSpaceCreateWithPropertyList(CFSTR("mine"))), false},
    };
    for (const auto& [what, space, isMade] : cases) {
        ASSERT_EQ(bool(space), isMade) << what;
        const Data back = cf::adopt(CGColorSpaceCopyICCData(space.get()));
        EXPECT_EQ(isMade, back && CFEqual(back.get(), data.get())) << what;
    }
}

TEST(ColorSpaceProfile, ListsBringSpacesBack) {
    const Data data = bytesOf(cmsCreate_sRGBProfile());
    const Space spaces[] = {cf::adopt(CGColorSpaceCreateWithICCProfile(data.get())), sRGB(),
                            cf::adopt(CGColorSpaceCreateDeviceGray()),
                            cf::adopt(CGColorSpaceCreateDeviceRGB()),
                            cf::adopt(CGColorSpaceCreateDeviceCMYK())};
    for (const Space& space : spaces) {
        const auto list = cf::adopt<CFTypeRef>(CGColorSpaceCopyPropertyList(space.get()));
        ASSERT_TRUE(CFPropertyListIsValid(list.get(), kCFPropertyListBinaryFormat_v1_0));
        const Space back = cf::adopt(CGColorSpaceCreateWithPropertyList(list.get()));
        ASSERT_TRUE(back);
        EXPECT_TRUE(CFEqual(back.get(), space.get()));
        EXPECT_EQ(XGColorSpaceIsSRGB(back.get()), XGColorSpaceIsSRGB(space.get()));
        const Data profile = cf::adopt(CGColorSpaceCopyICCData(space.get()));
        const Data again = cf::adopt(CGColorSpaceCopyICCData(back.get()));
        EXPECT_EQ(bool(profile), bool(again));
        if (profile)
            EXPECT_TRUE(CFEqual(profile.get(), again.get()));
    }
    const Space lab = cf::adopt(CGColorSpaceCreateLab(kWhite, nullptr, nullptr));
    EXPECT_FALSE(CGColorSpaceCopyPropertyList(lab.get()));
}

TEST(ColorSpaceProfile, WarnsOfComponentsThatColorsCannotHave) {
    const Data xyz = bytesOf(cmsCreateXYZProfile());
    CollectedLog log;
    EXPECT_FALSE(CGColorSpaceCreateWithICCProfile(xyz.get()));
    EXPECT_FALSE(CGColorSpaceCreateWithICCProfile(nullptr));
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(log.lines()[0], "4 CGColorSpaceCreateWithICCProfile: Colorspace model 4294967295 is "
                              "not handled or supported");
}

TEST(SRGB, IsTheSpaceOfTheLibrarysProfile) {
    const Space space = sRGB();
    ASSERT_TRUE(space);
    EXPECT_TRUE(XGColorSpaceIsSRGB(space.get()));
    EXPECT_TRUE(XGColorSpaceIsSRGB(XGColorSpaceGetSRGB()));
    EXPECT_EQ(XGColorSpaceGetSRGB(), XGColorSpaceGetSRGB());
    EXPECT_TRUE(XGColorSpaceEqualToColorSpace(space.get(), XGColorSpaceGetDeviceRGB()));
    const Data data = cf::adopt(CGColorSpaceCopyICCData(space.get()));
    std::ifstream file("/usr/share/color/icc/sRGB.icc", std::ios::binary);
    const std::vector<char> expected(std::istreambuf_iterator<char>(file), {});
    EXPECT_EQ(CFDataGetLength(data.get()), CFIndex(expected.size()));
}

// ---- Conversions, against Little CMS as it is

TEST(ProfileConversion, InksGoThroughTheLibrarysProfile) {
    const Profile swop = cf::adopt(XGColorSpaceProfileCreateUncalibratedCMYK());
    const cmsHPROFILE rgb = cmsCreate_sRGBProfile();
    const cmsHTRANSFORM oracle =
        cmsCreateTransform(XGColorSpaceProfileGetNativeObject(swop.get()), TYPE_CMYK_DBL, rgb,
                           TYPE_RGB_DBL, INTENT_PERCEPTUAL, 0);
    const CGFloat inks[][4] = {{0, 0, 0, 0}, {1, 0, 0, 0}, {0, 1, 0, 0},
                               {0, 0, 1, 0}, {0, 0, 0, 1}, {0.5f, 0.25f, 0.75f, 0.125f}};
    for (const auto& ink : inks) {
        const Color color =
            cf::adopt(CGColorCreateGenericCMYK(ink[0], ink[1], ink[2], ink[3], 0.5f));
        CGFloat ours[4];
        _CGColorGetRGBA(color.get(), &ours[0], &ours[1], &ours[2], &ours[3]);
        const double percent[] = {ink[0] * 100., ink[1] * 100., ink[2] * 100., ink[3] * 100.};
        double expected[3];
        cmsDoTransform(oracle, percent, expected, 1);
        for (int index = 0; index < 3; ++index)
            EXPECT_NEAR(ours[index], std::min(std::max(expected[index], 0.), 1.), 1 / 255.)
                << "of " << ink[0] << ink[1] << ink[2] << ink[3] << ", component " << index;
        EXPECT_EQ(ours[3], 0.5f);
    }
    cmsDeleteTransform(oracle);
    cmsCloseProfile(rgb);
}

TEST(ProfileConversion, LightnessAloneIsGray) {
    const Space lab = cf::adopt(CGColorSpaceCreateLab(kWhite, nullptr, nullptr));
    const Space rgb = cf::adopt(CGColorSpaceCreateDeviceRGB());
    for (const CGFloat lightness : {0.f, 0.25f, 0.5f, 1.f}) {
        const Color color = make(lab, {lightness, 0, 0, 1});
        const Color converted =
            cf::adopt(XGColorCreateWithColor(rgb.get(), color.get(), kCGRenderingIntentDefault));
        ASSERT_TRUE(converted);
        // CIE 1976 lightness to luminance, then the tone curve of IEC 61966-2-1.
        const double fraction = (lightness * 100 + 16) / 116;
        const double luminance =
            lightness * 100 > 8 ? fraction * fraction * fraction : lightness * 100 * 27 / 24389;
        const double expected = luminance <= 0.0031308
                                    ? 12.92 * luminance
                                    : 1.055 * std::pow(luminance, 1 / 2.4) - 0.055;
        for (int index = 0; index < 3; ++index)
            EXPECT_NEAR(CGColorGetComponents(converted.get())[index], expected, 2 / 255.)
                << lightness;
    }
}

} // namespace
