// CFURLPathTest.cpp: editing paths, file system paths and percent escapes.

#include <CoreFoundation/CFDate.h>
#include <CoreFoundation/CFNumber.h>
#include <CoreFoundation/CFURL.h>

#include "Text.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>

namespace {

using test::kNone;
using test::makeText;
using test::takeText;
using test::textOf;
using URL = cf::Ref<CFURLRef>;

URL makeURL(const std::string& text) {
    return cf::adopt(CFURLCreateWithString(nullptr, makeText(text).get(), nullptr));
}

std::string takeURL(CFURLRef url) {
    return textOf(CFURLGetString(cf::adopt(url).get()));
}

TEST(CFURLPath, HasALastPartAndAnExtension) {
    const struct {
        const char* text;
        const char* last;
        const char* extension;
        const char* withoutLast;
        const char* withoutExtension;
        bool isDirectory;
    } cases[] = {
        {"http://h/a/b.c?q#f", "b.c", "c", "http://h/a/?q#f", "http://h/a/b?q#f", false},
        {"http://h/a/b.c/", "b.c", "c", "http://h/a/", "http://h/a/b/", true},
        {"http://h/a%2Fb.%63", "a/b.c", "c", "http://h/", "http://h/a%2Fb", false},
        {"http://h/", "/", kNone, "http://h/", "http://h/", true},
        {"http://h", "", kNone, "http://h", "http://h", false},
        {"http://h/.profile", ".profile", kNone, "http://h/", "http://h/.profile", false},
        {"http://h/a.", "a.", kNone, "http://h/", "http://h/a.", false},
        {"a.b.c", "a.b.c", "c", "./", "a.b", false},
        {"a/..", "..", kNone, "a/../../", "a/..", true},
        {".", ".", kNone, "../", ".", true},
        {"", "", kNone, "../", "", false},
        {"mailto:a.b", kNone, kNone, kNone, kNone, false},
    };
    for (const auto& row : cases) {
        const URL url = makeURL(row.text);
        EXPECT_EQ(takeText(CFURLCopyLastPathComponent(url.get())), row.last) << row.text;
        EXPECT_EQ(takeText(CFURLCopyPathExtension(url.get())), row.extension) << row.text;
        EXPECT_EQ(takeURL(CFURLCreateCopyDeletingLastPathComponent(nullptr, url.get())),
                  row.withoutLast)
            << row.text;
        EXPECT_EQ(takeURL(CFURLCreateCopyDeletingPathExtension(nullptr, url.get())),
                  row.withoutExtension)
            << row.text;
        EXPECT_EQ(bool(CFURLHasDirectoryPath(url.get())), row.isDirectory) << row.text;
    }
}

TEST(CFURLPath, AppendsParts) {
    const struct {
        const char* text;
        const char* part;
        bool isDirectory;
        const char* result;
    } cases[] = {
        {"http://h/a?q", "b", false, "http://h/a/b?q"},
        {"http://h/a/", "b", true, "http://h/a/b/"},
        {"http://h", "b", false, "http://h/b"},
        {"http://h/a", "/b/c", false, "http://h/a/b/c"},
        {"http://h/a;p", "b", false, "http://h/a/b;p"},
        {"http://h/", "caf\xC3\xA9 %;?#", false, "http://h/caf%C3%A9%20%25%3B%3F%23"},
        {"", "a:b", false, "a%3Ab"},
        {"a", "b:c", false, "a/b:c"},
        {"mailto:a", "b", false, kNone},
    };
    for (const auto& [text, part, isDirectory, result] : cases)
        EXPECT_EQ(takeURL(CFURLCreateCopyAppendingPathComponent(nullptr, makeURL(text).get(),
                                                                makeText(part).get(), isDirectory)),
                  result)
            << text;
}

TEST(CFURLPath, AppendsExtensions) {
    const struct {
        const char* text;
        const char* extension;
        const char* result;
    } cases[] = {
        {"http://h/a", "txt", "http://h/a.txt"},
        {"http://h/a/?q", "t xt", "http://h/a.t%20xt/?q"},
        {"http://h/", "txt", kNone},
        {"http://h/a", "a/b", kNone},
        {"http://h/a", "", kNone},
        {"mailto:a", "txt", kNone},
    };
    for (const auto& [text, extension, result] : cases)
        EXPECT_EQ(takeURL(CFURLCreateCopyAppendingPathExtension(nullptr, makeURL(text).get(),
                                                                makeText(extension).get())),
                  result)
            << text;
}

TEST(CFURLPath, FilePathsInEachStyleMakeURLsAndBack) {
    const URL base = makeURL("file:///base/");
    const struct {
        const char* path;
        CFURLPathStyle style;
        bool isDirectory;
        const char* string;
        bool isRelative;
        const char* back;
    } cases[] = {
        {"/a b/c", kCFURLPOSIXPathStyle, false, "file:///a%20b/c", false, "/a b/c"},
        {"/a", kCFURLPOSIXPathStyle, true, "file:///a/", false, "/a"},
        {"/a/", kCFURLPOSIXPathStyle, false, "file:///a/", false, "/a"},
        {"/", kCFURLPOSIXPathStyle, true, "file:///", false, "/"},
        {"//a", kCFURLPOSIXPathStyle, false, "file:////a", false, "//a"},
        {"/a;b?c#d%20", kCFURLPOSIXPathStyle, false, "file:///a%3Bb%3Fc%23d%2520", false,
         "/a;b?c#d%20"},
        {"a:b/c:d", kCFURLPOSIXPathStyle, false, "a%3Ab/c:d", true, "a:b/c:d"},
        {"volume:folder:a/b", kCFURLHFSPathStyle, false, "file:///volume/folder/a:b", false,
         "volume:folder:a/b"},
        {":folder:file", kCFURLHFSPathStyle, false, "folder/file", true, ":folder:file"},
        {"::file", kCFURLHFSPathStyle, false, "../file", true, ":..:file"},
        {"C:\\a b\\c", kCFURLWindowsPathStyle, false, "file:///C:/a%20b/c", false, "C:\\a b\\c"},
        {"\\\\host\\share\\f", kCFURLWindowsPathStyle, false, "file://host/share/f", false,
         "\\\\host\\share\\f"},
        {"a\\b", kCFURLWindowsPathStyle, true, "a/b/", true, "a\\b"},
    };
    for (const auto& row : cases) {
        const URL url = cf::adopt(CFURLCreateWithFileSystemPathRelativeToBase(
            nullptr, makeText(row.path).get(), row.style, row.isDirectory, base.get()));
        EXPECT_EQ(textOf(CFURLGetString(url.get())), row.string) << row.path;
        EXPECT_EQ(CFURLGetBaseURL(url.get()) == base.get(), row.isRelative) << row.path;
        EXPECT_EQ(takeText(CFURLCopyFileSystemPath(url.get(), row.style)), row.back) << row.path;
    }
    EXPECT_EQ(CFURLCreateWithFileSystemPath(nullptr, CFSTR(""), kCFURLPOSIXPathStyle, 0), nullptr);
    EXPECT_EQ(CFURLCreateWithFileSystemPath(nullptr, nullptr, kCFURLPOSIXPathStyle, 0), nullptr);
    EXPECT_EQ(CFURLCreateWithFileSystemPath(nullptr, CFSTR("a"), CFURLPathStyle(7), 0), nullptr);
}

TEST(CFURLPath, RelativePathsAreRelativeToTheWorkingDirectory) {
    const URL url = cf::adopt(
        CFURLCreateWithFileSystemPath(nullptr, CFSTR("x/y"), kCFURLPOSIXPathStyle, false));
    UInt8 path[4096];
    ASSERT_TRUE(CFURLGetFileSystemRepresentation(url.get(), true, path, sizeof path));
    EXPECT_EQ(reinterpret_cast<char*>(path), std::filesystem::current_path().string() + "/x/y");
    ASSERT_TRUE(CFURLGetFileSystemRepresentation(url.get(), false, path, sizeof path));
    EXPECT_STREQ(reinterpret_cast<char*>(path), "x/y");
}

TEST(CFURLPath, RepresentationStaysInItsBuffer) {
    const char path[] = "/a\xFF";
    const URL url = cf::adopt(CFURLCreateFromFileSystemRepresentation(
        nullptr, reinterpret_cast<const UInt8*>(path), 3, false));
    UInt8 buffer[4] = {9, 9, 9, 9};
    EXPECT_FALSE(CFURLGetFileSystemRepresentation(url.get(), true, buffer, 3));
    EXPECT_TRUE(CFURLGetFileSystemRepresentation(url.get(), true, buffer, 4));
    EXPECT_EQ(std::memcmp(buffer, path, 4), 0) << "names need not be UTF-8";
    EXPECT_EQ(CFURLCopyFileSystemPath(url.get(), kCFURLPOSIXPathStyle), nullptr)
        << "but no string can say them";
    EXPECT_FALSE(CFURLGetFileSystemRepresentation(makeURL("file:///a%00b").get(), true, buffer, 4));
    EXPECT_FALSE(CFURLGetFileSystemRepresentation(nullptr, true, buffer, 4));
}

TEST(CFURLEscapes, AreReplacedButForThoseToKeep) {
    const struct {
        const char* text;
        const char* kept;
        const char* result;
    } cases[] = {
        {"a%20b%2Fc", "", "a b/c"},
        {"a%20b%2fc", "/", "a b%2fc"},
        {"%C3%A9%2F%C3%A9", "\xC3\xA9", "%C3%A9/%C3%A9"},
        {"%F0%9F%98%80x", "", "\xF0\x9F\x98\x80x"},
        {"%F0%9F%98%80x", "\xF0\x9F\x98\x80", "%F0%9F%98%80x"},
        {"plain", "", "plain"},
        {"%C3", "", kNone},
        {"%G0", "", kNone},
        {"%4", "", kNone},
        {"\xC3\xA9%41", "",
         "\xC3\xA9"
         "A"},
    };
    for (const auto& [text, kept, result] : cases)
        EXPECT_EQ(takeText(CFURLCreateStringByReplacingPercentEscapes(nullptr, makeText(text).get(),
                                                                      makeText(kept).get())),
                  result)
            << text;
    EXPECT_EQ(takeText(CFURLCreateStringByReplacingPercentEscapes(nullptr, CFSTR("%20"), nullptr)),
              "%20")
        << "no set leaves all";
    EXPECT_EQ(takeText(CFURLCreateStringByReplacingPercentEscapesUsingEncoding(
                  nullptr, CFSTR("%E9"), CFSTR(""), kCFStringEncodingISOLatin1)),
              "\xC3\xA9");
}

TEST(CFURLEscapes, AreAddedToWhatMayNotStandInURLs) {
    const struct {
        const char* text;
        const char* unescaped;
        const char* escaped;
        const char* result;
    } cases[] = {
        {"a b%c", nullptr, nullptr, "a%20b%25c"},
        {"a b%c", "% ", nullptr, "a b%c"},
        {"a/b?c=d", nullptr, "/?=", "a%2Fb%3Fc%3Dd"},
        {"a/b", "/", "/", "a/b"},
        {"`#^{}\"[]|\\<>", nullptr, nullptr, "%60%23%5E%7B%7D%22%5B%5D%7C%5C%3C%3E"},
        {"\xC3\xA9\xF0\x9F\x98\x80", nullptr, nullptr, "%C3%A9%F0%9F%98%80"},
    };
    for (const auto& [text, unescaped, escaped, result] : cases) {
        const auto kept = unescaped ? makeText(unescaped) : nullptr;
        const auto more = escaped ? makeText(escaped) : nullptr;
        EXPECT_EQ(takeText(CFURLCreateStringByAddingPercentEscapes(nullptr, makeText(text).get(),
                                                                   kept.get(), more.get(),
                                                                   kCFStringEncodingUTF8)),
                  result)
            << text;
    }
    EXPECT_EQ(CFURLCreateStringByAddingPercentEscapes(nullptr, makeText("\xE2\x82\xAC").get(),
                                                      nullptr, nullptr, kCFStringEncodingASCII),
              nullptr)
        << "an encoding without the character";
}

TEST(CFURLFile, IsAskedForItsProperties) {
    const auto folder =
        std::filesystem::temp_directory_path() / ("nimbra-url-" + std::to_string(getpid()));
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "a b.txt") << "12345";
    const URL base = cf::adopt(CFURLCreateWithFileSystemPath(
        nullptr, makeText(folder.string()).get(), kCFURLPOSIXPathStyle, true));
    const URL url =
        cf::adopt(CFURLCreateCopyAppendingPathComponent(nullptr, base.get(), CFSTR("a b.txt"), 0));
    const auto ask = [](const URL& whom, CFStringRef key) {
        CFTypeRef value = nullptr;
        EXPECT_TRUE(CFURLCopyResourcePropertyForKey(whom.get(), key, &value, nullptr));
        return cf::adopt(value);
    };

    EXPECT_TRUE(CFURLResourceIsReachable(url.get(), nullptr));
    int64_t size = 0;
    CFNumberGetValue(static_cast<CFNumberRef>(ask(url, kCFURLFileSizeKey).get()),
                     kCFNumberSInt64Type, &size);
    EXPECT_EQ(size, 5);
    EXPECT_EQ(ask(url, kCFURLIsDirectoryKey).get(), kCFBooleanFalse);
    EXPECT_EQ(ask(base, kCFURLIsDirectoryKey).get(), kCFBooleanTrue);
    EXPECT_EQ(ask(url, kCFURLIsRegularFileKey).get(), kCFBooleanTrue);
    EXPECT_EQ(ask(base, kCFURLFileSizeKey).get(), nullptr) << "a folder has no size";
    EXPECT_EQ(ask(url, CFSTR("unknown")).get(), nullptr);
    EXPECT_EQ(textOf(static_cast<CFStringRef>(ask(url, kCFURLNameKey).get())), "a b.txt");
    const auto date = ask(url, kCFURLContentModificationDateKey);
    EXPECT_NEAR(CFDateGetAbsoluteTime(static_cast<CFDateRef>(date.get())),
                CFAbsoluteTimeGetCurrent(), 60);

    std::filesystem::remove_all(folder);
    CFErrorRef stored = nullptr;
    EXPECT_FALSE(CFURLResourceIsReachable(url.get(), &stored));
    const auto error = cf::adopt(stored);
    EXPECT_EQ(CFErrorGetCode(error.get()), 260);
    const auto info = cf::adopt(CFErrorCopyUserInfo(error.get()));
    EXPECT_EQ(CFDictionaryGetValue(info.get(), kCFErrorURLKey), url.get());
    EXPECT_FALSE(CFURLResourceIsReachable(makeURL("http://h/").get(), &stored));
    EXPECT_EQ(CFErrorGetCode(cf::adopt(stored).get()), 262);
    EXPECT_FALSE(CFURLResourceIsReachable(nullptr, nullptr));
}

} // namespace
