// CFErrorTest.cpp: errors and the texts made of them.

#include <CoreFoundation/CFError.h>

#include "Text.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <vector>

namespace {

using test::kNone;
using test::makeText;
using test::takeText;
using Error = cf::Ref<CFErrorRef>;

Error makeError(CFErrorDomain domain, CFIndex code,
                const std::vector<std::pair<CFStringRef, const char*>>& info = {}) {
    std::vector<cf::Ref<CFStringRef>> texts;
    std::vector<const void*> keys;
    std::vector<const void*> values;
    for (const auto& [key, text] : info) {
        texts.push_back(makeText(text));
        keys.push_back(key);
        values.push_back(texts.back().get());
    }
    return cf::adopt(CFErrorCreateWithUserInfoKeysAndValues(nullptr, domain, code, keys.data(),
                                                            values.data(), CFIndex(keys.size())));
}

TEST(CFError, DescribesItselfByWhatItHas) {
    const CFStringRef domain = CFSTR("org.example");
    const std::string opening = "The operation couldn\xE2\x80\x99t be completed.";
    const struct {
        const char* what;
        Error error;
        std::string description;
    } cases[] = {
        {"a description of its own",
         makeError(domain, 3, {{kCFErrorLocalizedDescriptionKey, "All is lost."}}), "All is lost."},
        {"a reason", makeError(domain, 3, {{kCFErrorLocalizedFailureReasonKey, "No ink."}}),
         opening + " No ink."},
        {"what failed, and why",
         makeError(domain, 3,
                   {{kCFErrorLocalizedFailureKey, "Not printed."},
                    {kCFErrorLocalizedFailureReasonKey, "No ink."}}),
         "Not printed. No ink."},
        {"a developer's text", makeError(domain, 3, {{kCFErrorDescriptionKey, "bad magic"}}),
         opening + " (org.example error 3 - bad magic)"},
        {"nothing", makeError(domain, -3), opening + " (org.example error -3.)"},
        {"a code of the host", makeError(kCFErrorDomainPOSIX, ENOENT),
         opening + " " + std::strerror(ENOENT)},
    };
    for (const auto& [what, error, description] : cases)
        EXPECT_EQ(takeText(CFErrorCopyDescription(error.get())), description) << what;
}

TEST(CFError, GivesReasonAndSuggestionOnlyWhenItHasThem) {
    const Error plain = makeError(kCFErrorDomainCocoa, 1);
    const Error full = makeError(kCFErrorDomainCocoa, 1,
                                 {{kCFErrorLocalizedFailureReasonKey, "why"},
                                  {kCFErrorLocalizedRecoverySuggestionKey, "what to do"}});
    EXPECT_EQ(takeText(CFErrorCopyFailureReason(plain.get())), kNone);
    EXPECT_EQ(takeText(CFErrorCopyRecoverySuggestion(plain.get())), kNone);
    EXPECT_EQ(takeText(CFErrorCopyFailureReason(full.get())), "why");
    EXPECT_EQ(takeText(CFErrorCopyRecoverySuggestion(full.get())), "what to do");
}

TEST(CFError, KeepsACopyOfItsUserInfo) {
    const auto info = cf::adopt(CFDictionaryCreateMutable(
        nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    const Error error = cf::adopt(CFErrorCreate(nullptr, kCFErrorDomainPOSIX, 7, info.get()));
    CFDictionarySetValue(info.get(), kCFErrorDescriptionKey, CFSTR("late"));
    const auto kept = cf::adopt(CFErrorCopyUserInfo(error.get()));
    EXPECT_EQ(CFDictionaryGetCount(kept.get()), 0);
    EXPECT_TRUE(CFEqual(CFErrorGetDomain(error.get()), kCFErrorDomainPOSIX));
    EXPECT_EQ(CFErrorGetCode(error.get()), 7);
}

TEST(CFError, EqualityIsOfDomainCodeAndInfo) {
    const Error error = makeError(CFSTR("d"), 1, {{kCFErrorDescriptionKey, "x"}});
    const Error same = makeError(CFSTR("d"), 1, {{kCFErrorDescriptionKey, "x"}});
    EXPECT_TRUE(CFEqual(error.get(), same.get()));
    EXPECT_EQ(CFHash(error.get()), CFHash(same.get()));
    EXPECT_FALSE(CFEqual(error.get(), makeError(CFSTR("d"), 2).get()));
    EXPECT_FALSE(CFEqual(error.get(), makeError(CFSTR("e"), 1).get()));
    EXPECT_FALSE(CFEqual(error.get(), makeError(CFSTR("d"), 1).get()));
}

TEST(CFError, IsNotMadeOfMissingArguments) {
    for (const CFIndex count : {2, -1})
        EXPECT_EQ(
            CFErrorCreateWithUserInfoKeysAndValues(nullptr, CFSTR("d"), 1, nullptr, nullptr, count),
            nullptr);
}

} // namespace
