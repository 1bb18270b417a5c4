// CFURLAccessTest.cpp: loading what URLs name.

#include <CoreFoundation/CFNumber.h>
#include <CoreFoundation/CFURLAccess.h>

#include "Support/TemporaryFolder.h"
#include "Text.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace {

struct Loaded {
    std::optional<std::string> bytes;
    SInt32 error = 1;
    cf::Ref<CFDictionaryRef> properties;
};

Loaded load(CFURLRef url, CFArrayRef wanted = nullptr) {
    Loaded result;
    CFDataRef stored = nullptr;
    CFDictionaryRef properties = nullptr;
    const bool isLoaded = CFURLCreateDataAndPropertiesFromResource(
        nullptr, url, &stored, &properties, wanted, &result.error);
    const auto data = cf::adopt(stored);
    result.properties = cf::adopt(properties);
    EXPECT_EQ(isLoaded, bool(data));
    EXPECT_EQ(isLoaded, bool(result.properties));
    if (data)
        result.bytes = std::string(reinterpret_cast<const char*>(CFDataGetBytePtr(data.get())),
                                   std::size_t(CFDataGetLength(data.get())));
    return result;
}

Loaded load(const std::string& text) {
    return load(
        cf::adopt(CFURLCreateWithString(nullptr, test::makeText(text).get(), nullptr)).get());
}

TEST(CFURLAccess, ReadsTheBytesInADataURL) {
    const struct {
        const char* what;
        const char* url;
        std::optional<std::string> bytes;
    } cases[] = {
        {"plain text", "data:,a%20b", "a b"},
        {"with a media type", "data:text/plain;charset=utf-8,%C3%A9", "\xC3\xA9"},
        {"a question mark is a letter", "DATA:,a?b", "a?b"},
        {"a fragment is not", "data:,ab#c", "ab"},
        {"nothing", "data:,", ""},
        {"base 64", "data:image/png;base64,iVBORw==", "\x89PNG"},
        {"its padding left out, its mark in capitals", "data:;BASE64,iVBORw", "\x89PNG"},
        {"its letters escaped", "data:;base64,%2F%2b%2F%2B", "\xFF\xEF\xFE"},
        {"no comma", "data:text/plain", std::nullopt},
        {"a comma in the fragment alone", "data:a#,b", std::nullopt},
        {"not base 64", "data:;base64,a*b=", std::nullopt},
    };
    for (const auto& [what, url, bytes] : cases) {
        const Loaded loaded = load(url);
        EXPECT_EQ(loaded.bytes, bytes) << what;
        EXPECT_EQ(loaded.error, bytes ? 0 : kCFURLImproperArgumentsError) << what;
    }
}

TEST(CFURLAccess, ReadsFilesAndTellsWhyItCannot) {
    const test::TemporaryFolder folder;
    const std::string path = folder.write("a b", "12345");
    const auto url = [](const std::string& name) {
        return cf::adopt(CFURLCreateWithFileSystemPath(nullptr, test::makeText(name).get(),
                                                       kCFURLPOSIXPathStyle, false));
    };
    const Loaded file = load(url(path).get());
    EXPECT_EQ(file.bytes, "12345");
    EXPECT_EQ(file.error, 0);
    EXPECT_EQ(CFDictionaryGetCount(file.properties.get()), 3);
    int length = 0;
    CFNumberGetValue(
        static_cast<CFNumberRef>(CFDictionaryGetValue(file.properties.get(), kCFURLFileLength)),
        kCFNumberIntType, &length);
    EXPECT_EQ(length, 5);

    const void* keys[] = {kCFURLFileExists, CFSTR("unknown")};
    const auto wanted = cf::adopt(CFArrayCreate(nullptr, keys, 2, &kCFTypeArrayCallBacks));
    const Loaded asked = load(url(path).get(), wanted.get());
    EXPECT_EQ(CFDictionaryGetCount(asked.properties.get()), 1);
    EXPECT_EQ(CFDictionaryGetValue(asked.properties.get(), kCFURLFileExists), kCFBooleanTrue);

    EXPECT_EQ(load(url(folder.path("missing")).get()).error, kCFURLResourceNotFoundError);
    EXPECT_EQ(load(url(folder.path()).get()).error, kCFURLResourceAccessViolationError);
    EXPECT_EQ(load("http://host/a").error, kCFURLUnknownSchemeError);
    EXPECT_EQ(load(CFURLRef(nullptr)).error, kCFURLImproperArgumentsError);
    EXPECT_TRUE(CFURLCreateDataAndPropertiesFromResource(nullptr, url(path).get(), nullptr, nullptr,
                                                         nullptr, nullptr));
}

} // namespace
