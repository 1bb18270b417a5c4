// ResourceAllocationFailureTest.cpp: every allocation of URLs, errors, streams, property lists,
// bundles and settings fails in turn.

#include <CoreFoundation/CFBundle.h>
#include <CoreFoundation/CFPreferences.h>
#include <CoreFoundation/CFPropertyList.h>
#include <CoreFoundation/CFURL.h>
#include <Host/Host.h>

#include "PropertyListFixtures.h"
#include "Support/FailingAllocator.h"
#include "Support/TemporaryFolder.h"
#include "Text.h"

#include <gtest/gtest.h>

namespace {

// Names that are made once, so that they do not count as leaks of a failing run.
const CFStringRef kBase = CFSTR("http://user@host/a/b;c?d");
const CFStringRef kReference = CFSTR("../e%20f.g?h#i");
const CFStringRef kPath = CFSTR("relative/path");
const CFStringRef kAll = CFSTR("");

// What is logged is not of interest here, and keeping it would count as a leak.
class Silence {
public:
    Silence() {
        const auto ignore = [](HostLogLevel, const char*, const char*, const char*, void*) {};
        HostLogSetSink(ignore, nullptr);
    }
    ~Silence() { HostLogSetSink(nullptr, nullptr); }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;
};

template <typename T>
void drop(T object) {
    const auto dropped = cf::adopt(object);
}

void useURLs() {
    const auto base = cf::adopt(CFURLCreateWithString(nullptr, kBase, nullptr));
    const auto url = cf::adopt(CFURLCreateWithString(nullptr, kReference, base.get()));
    const auto absolute = cf::adopt(CFURLCopyAbsoluteURL(url.get()));
    drop(CFURLCopyHostName(url.get()));
    drop(CFURLCopyQueryString(url.get(), kAll));
    drop(CFURLCopyLastPathComponent(absolute.get()));
    drop(CFURLCreateCopyAppendingPathComponent(nullptr, absolute.get(), kPath, true));
    drop(CFURLCreateCopyDeletingPathExtension(nullptr, absolute.get()));
    drop(CFURLCreateWithFileSystemPath(nullptr, kPath, kCFURLPOSIXPathStyle, false));
    drop(CFURLCopyFileSystemPath(absolute.get(), kCFURLHFSPathStyle));
    drop(CFURLCreateStringByAddingPercentEscapes(nullptr, kReference, nullptr, kPath,
                                                 kCFStringEncodingUTF8));
    drop(CFURLCreateData(nullptr, url.get(), kCFStringEncodingUTF8, false));
}

// Describes each kind of error, so that one run makes the constant strings of all.
void useErrors() {
    const void* const key = kCFErrorDescriptionKey;
    const void* const value = kPath;
    for (const CFErrorDomain domain : {kCFErrorDomainPOSIX, kCFErrorDomainCocoa}) {
        const auto error =
            cf::adopt(CFErrorCreateWithUserInfoKeysAndValues(nullptr, domain, 2, &key, &value, 1));
        const auto plain = cf::adopt(CFErrorCreate(nullptr, domain, 2, nullptr));
        drop(CFErrorCopyDescription(error.get()));
        drop(CFErrorCopyDescription(plain.get()));
        drop(CFErrorCopyUserInfo(error.get()));
    }
}

void useStreams() {
    const auto out = cf::adopt(CFWriteStreamCreateWithAllocatedBuffers(nullptr, nullptr));
    CFWriteStreamOpen(out.get());
    CFWriteStreamWrite(out.get(), reinterpret_cast<const UInt8*>("abc"), 3);
    drop(CFWriteStreamCopyError(out.get()));
    drop(CFWriteStreamCopyProperty(out.get(), kCFStreamPropertyDataWritten));
    const auto in = cf::adopt(CFReadStreamCreateWithBytesNoCopy(
        nullptr, reinterpret_cast<const UInt8*>("abc"), 3, kCFAllocatorNull));
    CFReadStreamOpen(in.get());
    drop(CFPropertyListCreateWithStream(nullptr, in.get(), 0, 0, nullptr, nullptr));
}

// Reads a list, copies it and writes it again; a list that comes of it must be a whole one.
class ListUser {
public:
    explicit ListUser(const std::string& bytes) : bytes_(test::makeData(bytes)) { whole_ = read(); }

    void operator()() {
        const auto list = read();
        if (list && !CFEqual(list.get(), whole_.get()))
            ++incomplete_;
        const auto copy = cf::adopt<CFTypeRef>(CFPropertyListCreateDeepCopy(
            nullptr, list.get(), kCFPropertyListMutableContainersAndLeaves));
        if (copy && !CFEqual(copy.get(), whole_.get()))
            ++incomplete_;
        for (const auto format : {kCFPropertyListXMLFormat_v1_0, kCFPropertyListBinaryFormat_v1_0})
            drop(CFPropertyListCreateData(nullptr, list.get(), format, 0, nullptr));
    }
    int incomplete() const { return incomplete_; }

private:
    cf::Ref<CFTypeRef> read() const {
        CFErrorRef error = nullptr;
        auto list = cf::adopt<CFTypeRef>(CFPropertyListCreateWithData(
            nullptr, bytes_.get(), kCFPropertyListMutableContainers, nullptr, &error));
        drop(error);
        return list;
    }

    cf::Ref<CFDataRef> bytes_;
    cf::Ref<CFTypeRef> whole_;
    int incomplete_ = 0;
};

TEST(ResourceAllocationFailure, LeavesNothingBehind) {
    const Silence silence;
    const struct {
        const char* what;
        void (*operation)();
    } cases[] = {{"URLs", useURLs}, {"errors", useErrors}, {"streams", useStreams}};
    for (const auto& [what, operation] : cases) {
        const test::FailureSweep sweep = test::failEachAllocation(operation);
        EXPECT_GT(sweep.failures, 2u) << what;
        EXPECT_EQ(sweep.leakedBytes, 0) << what;
    }
}

TEST(ResourceAllocationFailure, GivesWholeListsOrNone) {
    const Silence silence;
    const struct {
        const char* what;
        std::string bytes;
    } cases[] = {
        {"binary", test::binarySample()}, {"XML", test::xmlSample()}, {"text", test::textSample()}};
    for (const auto& [what, bytes] : cases) {
        ListUser user(bytes);
        const test::FailureSweep sweep = test::failEachAllocation([&] { user(); });
        EXPECT_GT(sweep.failures, 20u) << what;
        EXPECT_EQ(sweep.leakedBytes, 0) << what;
        EXPECT_EQ(user.incomplete(), 0) << what;
    }
}

TEST(ResourceAllocationFailure, LeavesBundlesWhole) {
    const Silence silence;
    const test::TemporaryFolder folder;
    folder.write("b/Info.plist", "{ CFBundleDevelopmentRegion = xx; CFBundleExecutable = e; }");
    folder.write("b/xx.lproj/a.txt", "");
    folder.write("b/xx.lproj/Localizable.strings", "k = v;");
    const auto url = cf::adopt(CFURLCreateWithFileSystemPath(
        nullptr, test::makeText(folder.path("b")).get(), kCFURLPOSIXPathStyle, true));
    const CFStringRef name = CFSTR("a");
    const CFStringRef key = CFSTR("k");
    const auto search = [&] {
        drop(CFBundleCopyResourceURLInDirectory(url.get(), name, nullptr, nullptr));
        drop(CFBundleCopyInfoDictionaryInDirectory(url.get()));
    };
    // Bundles keep what they were asked for, so that only what they answer is looked at.
    const auto use = [&] {
        const auto bundle = cf::adopt(CFBundleCreate(nullptr, url.get()));
        drop(CFBundleCopyResourceURL(bundle.get(), nullptr, CFSTR("txt"), nullptr));
        drop(CFBundleCopyResourceURLsOfType(bundle.get(), CFSTR("txt"), nullptr));
        drop(CFBundleCopyBundleLocalizations(bundle.get()));
        drop(CFBundleCopyExecutableURL(bundle.get()));
        drop(CFBundleCopyLocalizedString(bundle.get(), key, nullptr, nullptr));
    };
    const test::FailureSweep searching = test::failEachAllocation(search);
    EXPECT_GT(searching.failures, 20u);
    EXPECT_EQ(searching.leakedBytes, 0);
    EXPECT_GT(test::failEachAllocation(use).failures, 20u);
    const auto bundle = cf::adopt(CFBundleCreate(nullptr, url.get()));
    EXPECT_EQ(test::takeText(CFBundleCopyLocalizedString(bundle.get(), key, nullptr, nullptr)),
              "v");
}

TEST(ResourceAllocationFailure, LosesNoSettingThatWasTaken) {
    const Silence silence;
    const CFStringRef application = CFSTR("org.example.failing");
    const CFStringRef key = CFSTR("k");
    const auto use = [&] {
        CFPreferencesSetAppValue(key, kBase, application);
        CFPreferencesAppSynchronize(application);
        drop(CFPreferencesCopyAppValue(key, application));
        drop(CFPreferencesCopyMultiple(nullptr, application, kCFPreferencesCurrentUser,
                                       kCFPreferencesAnyHost));
    };
    EXPECT_GT(test::failEachAllocation(use).failures, 20u);
    EXPECT_TRUE(CFPreferencesAppSynchronize(application));
    const auto value = cf::adopt<CFTypeRef>(CFPreferencesCopyAppValue(key, application));
    EXPECT_TRUE(value && CFEqual(value.get(), kBase));
}

} // namespace
