// CGImageDecodingHooksTest.cpp: pictures made through the slots of an image file library.

#include "XGDataProvider.h"
#include <CoreFoundation/CFConstantString.h>
#include <CoreFoundation/CFString.h>

#include "Images.h"
#include "Support/CollectedLog.h"

#include <gmock/gmock.h>

#include <string>

namespace {

using namespace test;

// What the library in the slots is asked, and what it answers.
struct Library {
    std::vector<std::string> calls;
    CFStringRef type = nullptr;
    Image image;
} library;

std::string textOf(CFTypeRef string) {
    char text[64] = "none";
    CFStringGetCString(static_cast<CFStringRef>(string), text, sizeof text, kCFStringEncodingUTF8);
    return text;
}

CGImageSource* createSource(CGDataProviderRef, CFDictionaryRef options) {
    library.calls.push_back("create " + textOf(CFDictionaryGetValue(options, CFSTR("hint"))));
    return reinterpret_cast<CGImageSource*>(&library);
}
CFStringRef getType(CGImageSource*) {
    return library.type;
}
CGImageRef createImage(CGImageSource*, size_t index, CFDictionaryRef options) {
    library.calls.push_back("image " + std::to_string(index) + (options ? " with options" : ""));
    return CGImageRetain(library.image.get());
}
void releaseSource(CGImageSource*) {
    library.calls.push_back("release");
}

class ImageDecodingHooks : public testing::Test {
protected:
    ImageDecodingHooks() {
        _ImageIOCGImageSourceCreateWithDataProvider = createSource;
        _ImageIOCGImageSourceGetType = getType;
        _ImageIOCGImageSourceCreateImageAtIndex = createImage;
        _ImageIOXGImageSourceRelease = releaseSource;
        _ImageIOkCGImageSourceTypeIdentifierHint = CFSTR("hint");
        library = {.image = cf::adopt(CGImageCreate(2, 2, 8, 8, 2, gray().get(), 0, provider.get(),
                                                    nullptr, false, kCGRenderingIntentDefault))};
    }
    ~ImageDecodingHooks() override {
        _ImageIOCGImageSourceCreateWithDataProvider = nullptr;
        _ImageIOCGImageSourceGetType = nullptr;
        _ImageIOCGImageSourceCreateImageAtIndex = nullptr;
        _ImageIOXGImageSourceRelease = nullptr;
        library = {};
    }

    Image fromPNG() {
        const CGFloat decode[] = {1, 0};
        return cf::adopt(CGImageCreateWithPNGDataProvider(provider.get(), decode, true,
                                                          kCGRenderingIntentSaturation));
    }
    Image fromJPEG() {
        return cf::adopt(CGImageCreateWithJPEGDataProvider(provider.get(), nullptr, false,
                                                           kCGRenderingIntentPerceptual));
    }

    Provider provider = providerOf(patternBytes(16));
};

TEST_F(ImageDecodingHooks, PictureHasWhatTheCallerAskedFor) {
    library.type = CFSTR("public.png");
    const Image image = fromPNG();
    ASSERT_TRUE(image);
    EXPECT_TRUE(CGImageGetShouldInterpolate(image.get()));
    EXPECT_EQ(CGImageGetRenderingIntent(image.get()), kCGRenderingIntentSaturation);
    EXPECT_EQ(CGImageGetDecode(image.get())[0], 1);
    EXPECT_EQ(textOf(CGImageGetUTType(image.get())), "public.png");
    EXPECT_THAT(library.calls, testing::ElementsAre("create public.png", "image 0", "release"));
}

TEST_F(ImageDecodingHooks, FilesOfOtherTypesGiveNothing) {
    const struct {
        CFStringRef type;
        bool isPNG, isJPEG;
    } cases[] = {{CFSTR("public.png"), true, false},
                 {CFSTR("public.jpeg"), false, true},
                 {CFSTR("public.jpeg-2000"), false, true},
                 {CFSTR("public.tiff"), false, false},
                 {nullptr, false, false}};
    for (const auto& [type, isPNG, isJPEG] : cases) {
        library.type = type;
        EXPECT_EQ(bool(fromPNG()), isPNG);
        EXPECT_EQ(bool(fromJPEG()), isJPEG);
    }
    EXPECT_EQ(std::ranges::count(library.calls, "release"), 10);
}

TEST_F(ImageDecodingHooks, PicturesThatCannotBeDecodedGiveNothing) {
    library.type = CFSTR("public.png");
    library.image = nullptr;
    EXPECT_FALSE(fromPNG());
    provider = nullptr;
    EXPECT_FALSE(fromPNG());
    EXPECT_THAT(library.calls, testing::ElementsAre("create public.png", "image 0", "release"));
}

TEST_F(ImageDecodingHooks, NeedTheLibraryToBeLoaded) {
    library.type = CFSTR("public.png");
    _ImageIOXGImageSourceRelease = nullptr;
    const CollectedLog log;
    EXPECT_FALSE(fromPNG());
    EXPECT_FALSE(fromJPEG());
    EXPECT_THAT(library.calls, testing::IsEmpty());
    EXPECT_THAT(log.lines(),
                testing::ElementsAre("3 CGImageCreateWithPNGDataProvider: WARNING: "
                                     "CGImageCreateWithPNGDataProvider needs CGImageSource. Load "
                                     "ImageIO framework.",
                                     "3 CGImageCreateWithJPEGDataProvider: "
                                     "CGImageSourceCreateWithDataProvider symbol not found. Load "
                                     "ImageIO framework."));
}

// ---- Forced decoding

// A provider of the variants that are there, which notes what is locked.
struct Variants {
    std::vector<std::string> calls;
    const std::uint8_t *planar = nullptr, *premultiplied = nullptr, *plain = nullptr;

    template <const std::uint8_t* Variants::*variant>
    static const void* get(void* info) {
        return static_cast<Variants*>(info)->*variant;
    }
    template <int number>
    static void release(void* info, const void*) {
        static_cast<Variants*>(info)->calls.push_back(std::to_string(number));
    }
};

TEST(ImageForceDecode, MakesTheFirstVariantThatThereIs) {
    std::uint8_t data[20] = {};
    data[16] = 3;
    const XGDataProviderDirectCallbacks callbacks = {
        .getBytePointer = Variants::get<&Variants::plain>,
        .getPlanarBytePointer = Variants::get<&Variants::planar>,
        .getPremultipliedBytePointer = Variants::get<&Variants::premultiplied>,
        .releaseBytePointer = Variants::release<3>,
        .releasePlanarBytePointer = Variants::release<1>,
        .releasePremultipliedBytePointer = Variants::release<2>,
    };
    const struct {
        const char* what;
        const std::uint8_t *planar, *premultiplied, *plain;
        std::vector<std::string> calls;
    } cases[] = {{"all", data, data, data, {"1"}},
                 {"no planar", nullptr, data, data, {"2"}},
                 {"plain", nullptr, nullptr, data, {"3"}},
                 {"none", nullptr, nullptr, nullptr, {}}};
    for (const auto& [what, planar, premultiplied, plain, calls] : cases) {
        Variants variants = {{}, planar, premultiplied, plain};
        const Provider provider =
            cf::adopt(XGDataProviderCreateDirect(&variants, sizeof data, &callbacks));
        const Image image =
            cf::adopt(XGImageCreateDeferred(2, 2, 8, 8, 2, gray().get(), 0, provider.get(), nullptr,
                                            false, kCGRenderingIntentDefault));
        EXPECT_EQ(variants.calls, std::vector<std::string>{}) << what;
        EXPECT_EQ(CGImageForceDecode(image.get()), !calls.empty()) << what;
        EXPECT_EQ(variants.calls, calls) << what;
        uint32_t planes = 0;
        EXPECT_EQ(XGImageIsPlanar(image.get(), &planes), planar != nullptr) << what;
        EXPECT_EQ(planes, planar ? 3u : 0u) << what;
    }
}

} // namespace
