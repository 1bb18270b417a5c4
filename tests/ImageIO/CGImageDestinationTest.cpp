// CGImageDestinationTest.cpp: sinks, counts and failures of image destinations.

#include "Images.h"
#include "Support/CollectedLog.h"
#include "Support/FailingAllocator.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

using namespace test;

namespace {

Image noisyImage() {
    const Space rgb = cf::adopt(CGColorSpaceCreateDeviceRGB());
    const Layout layout = {8, 32, kCGImageAlphaPremultipliedFirst | kCGBitmapByteOrder32Little};
    return makeImage(layout, randomBytes(rowBytes(layout) * kHeight), rgb.get());
}

// An image whose provider has fewer bytes than its rows need.
Image shortImage() {
    const Space rgb = cf::adopt(CGColorSpaceCreateDeviceRGB());
    return makeImage({8, 32, kCGImageAlphaPremultipliedLast}, randomBytes(100), rgb.get());
}

cf::Ref<CFURLRef> urlOf(const std::string& path) {
    return cf::adopt(CFURLCreateFromFileSystemRepresentation(
        nullptr, reinterpret_cast<const UInt8*>(path.data()), CFIndex(path.size()), false));
}

TEST(ImageDestination, IsMadeForKnownFormatsAndOneImage) {
    const Data data = emptyData();
    const struct {
        const char* what;
        CFStringRef type;
        std::size_t count;
        bool isMade;
    } cases[] = {
        {"PNG", kUTTypePNG, 1, true},
        {"JPEG", kUTTypeJPEG, 1, true},
        {"no images", kUTTypePNG, 0, false},
        {"two images", kUTTypeJPEG, 2, false},
        {"no type", nullptr, 1, false},
        {"a type that is only read", kUTTypeJPEG2000, 1, false},
    };
    const CollectedLog log;
    for (const auto& [what, type, count, isMade] : cases) {
        const auto file =
            cf::adopt(CGImageDestinationCreateWithData(data.get(), type, count, nullptr));
        EXPECT_EQ(bool(file), isMade) << what;
    }
    const auto types = cf::adopt(CGImageDestinationCopyTypeIdentifiers());
    EXPECT_EQ(CFArrayGetCount(types.get()), 2);
}

TEST(ImageDestination, FailsUnlessJustTheImagesItWasMadeForAreThere) {
    const Image image = noisyImage();
    for (const int added : {0, 1, 2}) {
        const CollectedLog log;
        const Data data = emptyData();
        const auto file =
            cf::adopt(CGImageDestinationCreateWithData(data.get(), kUTTypePNG, 1, nullptr));
        for (int i = 0; i < added; ++i)
            CGImageDestinationAddImage(file.get(), image.get(), nullptr);
        EXPECT_EQ(CGImageDestinationFinalize(file.get()), added == 1) << added;
        EXPECT_EQ(CFDataGetLength(data.get()) > 0, added == 1);
        EXPECT_FALSE(CGImageDestinationFinalize(file.get()));
        EXPECT_FALSE(log.lines().empty());
    }
}

TEST(ImageDestination, FailsWhenItsConsumerDoes) {
    struct Reluctant {
        std::size_t left;
    };
    const CGDataConsumerCallbacks callbacks = {
        [](void* info, const void*, std::size_t count) {
            auto& left = static_cast<Reluctant*>(info)->left;
            const std::size_t taken = std::min(left, count);
            left -= taken;
            return taken;
        },
        nullptr,
    };
    const Image image = noisyImage();
    for (CFStringRef type : {kUTTypePNG, kUTTypeJPEG}) {
        const std::size_t whole = written(image.get(), type).size();
        for (const std::size_t room : {std::size_t{0}, std::size_t{1}, whole - 1, whole}) {
            const CollectedLog log;
            Reluctant sink = {room};
            const auto consumer = cf::adopt(CGDataConsumerCreate(&sink, &callbacks));
            const auto file = cf::adopt(
                CGImageDestinationCreateWithDataConsumer(consumer.get(), type, 1, nullptr));
            CGImageDestinationAddImage(file.get(), image.get(), nullptr);
            EXPECT_EQ(CGImageDestinationFinalize(file.get()), room == whole) << room;
            EXPECT_EQ(log.lines().empty(), room == whole);
        }
    }
}

TEST(ImageDestination, LeavesFilesAndDataAsTheyWereOnFailure) {
    const TemporaryFolder folder;
    const std::string path = folder.write("picture.png", "before");
    const CollectedLog log;
    for (const Image& image : {shortImage(), noisyImage()}) {
        const auto file =
            cf::adopt(CGImageDestinationCreateWithURL(urlOf(path).get(), kUTTypePNG, 1, nullptr));
        CGImageDestinationAddImage(file.get(), image.get(), nullptr);
        const bool isWritten = CGImageDestinationFinalize(file.get());
        EXPECT_EQ(folder.read("picture.png") == "before", !isWritten);
    }
    EXPECT_EQ(folder.read("picture.png").substr(1, 3), "PNG");

    const auto nowhere = cf::adopt(CGImageDestinationCreateWithURL(
        urlOf(folder.path("missing/picture.png")).get(), kUTTypePNG, 1, nullptr));
    CGImageDestinationAddImage(nowhere.get(), noisyImage().get(), nullptr);
    EXPECT_FALSE(CGImageDestinationFinalize(nowhere.get()));

    const Data data = emptyData();
    CFDataAppendBytes(data.get(), reinterpret_cast<const UInt8*>("abc"), 3);
    const auto file =
        cf::adopt(CGImageDestinationCreateWithData(data.get(), kUTTypeJPEG, 1, nullptr));
    CGImageDestinationAddImage(file.get(), shortImage().get(), nullptr);
    EXPECT_FALSE(CGImageDestinationFinalize(file.get()));
    EXPECT_EQ(CFDataGetLength(data.get()), 3);
}

double numberOf(CGImageSourceRef source, CFStringRef key) {
    const auto found = cf::adopt(CGImageSourceCopyPropertiesAtIndex(source, 0, nullptr));
    double value = -1;
    if (const void* const stored = CFDictionaryGetValue(found.get(), key))
        CFNumberGetValue(static_cast<CFNumberRef>(stored), kCFNumberDoubleType, &value);
    return value;
}

cf::Ref<CGImageSourceRef> sourceOf(const Bytes& file) {
    return cf::adopt(CGImageSourceCreateWithDataProvider(providerOf(file).get(), nullptr));
}

// From one format into the other with what the file says beside its pixels.
TEST(ImageDestination, TakesAnImageOfASourceWithItsProperties) {
    const auto told = properties();
    CFDictionarySetValue(told.get(), kCGImagePropertyOrientation,
                         number(kCFNumberIntType, 6).get());
    CFDictionarySetValue(told.get(), kCGImagePropertyDPIWidth, number(kCFNumberIntType, 300).get());
    CFDictionarySetValue(told.get(), kCGImagePropertyDPIHeight,
                         number(kCFNumberIntType, 300).get());
    const auto source = sourceOf(written(noisyImage().get(), kUTTypePNG, told.get()));
    const auto turned = properties();
    CFDictionarySetValue(turned.get(), kCGImagePropertyOrientation,
                         number(kCFNumberIntType, 3).get());
    const struct {
        const char* what;
        CFStringRef type;
        CFDictionaryRef properties;
        int orientation;
    } cases[] = {
        {"as PNG", kUTTypePNG, nullptr, 6},
        {"as JPEG", kUTTypeJPEG, nullptr, 6},
        {"turned by the caller", kUTTypeJPEG, turned.get(), 3},
    };
    for (const auto& [what, type, own, orientation] : cases) {
        const Data data = emptyData();
        const auto file = cf::adopt(CGImageDestinationCreateWithData(data.get(), type, 1, nullptr));
        CGImageDestinationAddImageFromSource(file.get(), source.get(), 0, own);
        ASSERT_TRUE(CGImageDestinationFinalize(file.get())) << what;
        const UInt8* const bytes = CFDataGetBytePtr(data.get());
        const auto copy = sourceOf(Bytes(bytes, bytes + CFDataGetLength(data.get())));
        EXPECT_EQ(numberOf(copy.get(), kCGImagePropertyOrientation), orientation) << what;
        EXPECT_NEAR(numberOf(copy.get(), kCGImagePropertyDPIWidth), 300, 0.01) << what;
        EXPECT_EQ(numberOf(copy.get(), kCGImagePropertyPixelWidth), kWidth) << what;
        if (CFEqual(type, kUTTypePNG)) {
            const Image before =
                cf::adopt(CGImageSourceCreateImageAtIndex(source.get(), 0, nullptr));
            const Image after = cf::adopt(CGImageSourceCreateImageAtIndex(copy.get(), 0, nullptr));
            const auto pixelsOf = [](const Image& image) {
                return cf::adopt(CGDataProviderCopyData(CGImageGetDataProvider(image.get())));
            };
            EXPECT_TRUE(CFEqual(pixelsOf(before).get(), pixelsOf(after).get())) << what;
        }
    }
    const CollectedLog log;
    const auto empty =
        cf::adopt(CGImageDestinationCreateWithData(emptyData().get(), kUTTypePNG, 1, nullptr));
    CGImageDestinationAddImageFromSource(empty.get(), source.get(), 1, nullptr);
    EXPECT_FALSE(CGImageDestinationFinalize(empty.get())) << "there is no second image";
}

TEST(ImageDestination, SurvivesEveryFailedAllocation) {
    const Image image = noisyImage();
    const CollectedLog log;
    for (CFStringRef type : {kUTTypePNG, kUTTypeJPEG}) {
        const std::size_t whole = written(image.get(), type).size();
        bool onlyWhole = true;
        HostLogSetThreshold(kHostLogFault);
        const FailureSweep sweep = failEachAllocation([&] {
            const Data data = emptyData();
            const auto file =
                cf::adopt(CGImageDestinationCreateWithData(data.get(), type, 1, nullptr));
            CGImageDestinationAddImage(file.get(), image.get(), nullptr);
            if (CGImageDestinationFinalize(file.get()))
                onlyWhole = onlyWhole && std::size_t(CFDataGetLength(data.get())) == whole;
        });
        EXPECT_TRUE(onlyWhole);
        EXPECT_GT(sweep.failures, 3u);
        EXPECT_EQ(sweep.leakedBytes, 0);
    }
}

} // namespace
