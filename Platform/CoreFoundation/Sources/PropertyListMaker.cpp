// PropertyListMaker.cpp: making the values that the readers of all formats give.

#include <CoreFoundation/CFDate.h>
#include <CoreFoundation/CFNumber.h>

#include "PropertyListInternal.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

namespace cf::plist {

void Problem::setWithArguments(CFIndex code, const char* format, va_list arguments) {
    if (code_ != 0)
        return;
    code_ = code;
    std::vsnprintf(text_, sizeof text_, format, arguments);
}

void Problem::set(CFIndex code, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    setWithArguments(code, format, arguments);
    va_end(arguments);
}

Value Maker::string(const Ref<CFStringRef>& text) const {
    if (!text)
        return nullptr;
    if (makesMutableLeaves())
        return adopt<CFTypeRef>(CFStringCreateMutableCopy(allocator_, 0, text.get()));
    return adopt<CFTypeRef>(CFStringCreateCopy(allocator_, text.get()));
}

Value Maker::data(const uint8_t* bytes, size_t count) const {
    static constexpr uint8_t kNothing = 0;
    const auto fixed =
        adopt(CFDataCreate(allocator_, bytes ? bytes : &kNothing, static_cast<CFIndex>(count)));
    if (!makesMutableLeaves() || !fixed)
        return retain<CFTypeRef>(fixed.get());
    return adopt<CFTypeRef>(CFDataCreateMutableCopy(allocator_, 0, fixed.get()));
}

Value Maker::integer(int64_t value) const {
    return adopt<CFTypeRef>(CFNumberCreate(allocator_, kCFNumberSInt64Type, &value));
}

Value Maker::real(double value) const {
    return adopt<CFTypeRef>(CFNumberCreate(allocator_, kCFNumberFloat64Type, &value));
}

Value Maker::date(CFAbsoluteTime time) const {
    return adopt<CFTypeRef>(CFDateCreate(allocator_, time));
}

ArrayMaker::ArrayMaker(const Maker& maker)
    : maker_(maker),
      array_(adopt(CFArrayCreateMutable(maker.allocator(), 0, &kCFTypeArrayCallBacks))) {}

void ArrayMaker::add(const Value& value) {
    CFArrayAppendValue(array_.get(), value.get());
    ++count_;
}

Value ArrayMaker::finish() const {
    if (CFArrayGetCount(array_.get()) != count_)
        return nullptr;
    if (maker_.makesMutableContainers())
        return retain<CFTypeRef>(array_.get());
    return adopt<CFTypeRef>(array_ ? CFArrayCreateCopy(maker_.allocator(), array_.get()) : nullptr);
}

DictionaryMaker::DictionaryMaker(const Maker& maker)
    : maker_(maker),
      dictionary_(adopt(CFDictionaryCreateMutable(maker.allocator(), 0,
                                                  &kCFCopyStringDictionaryKeyCallBacks,
                                                  &kCFTypeDictionaryValueCallBacks))) {}

void DictionaryMaker::add(const Value& key, const Value& value) {
    CFDictionarySetValue(dictionary_.get(), key.get(), value.get());
    isComplete_ = isComplete_ && CFDictionaryGetValue(dictionary_.get(), key.get()) == value.get();
}

Value DictionaryMaker::finish() const {
    if (!dictionary_ || !isComplete_)
        return nullptr;
    if (maker_.makesMutableContainers())
        return retain<CFTypeRef>(dictionary_.get());
    return adopt<CFTypeRef>(CFDictionaryCreateCopy(maker_.allocator(), dictionary_.get()));
}

bool sortEntries(CFDictionaryRef dictionary, GrowableArray<Entry>& entries) {
    const auto collect = [](const void* key, const void* value, void* context) {
        static_cast<GrowableArray<Entry>*>(context)->append({static_cast<CFStringRef>(key), value});
    };
    CFDictionaryApplyFunction(dictionary, collect, &entries);
    if (entries.failed())
        return false;
    std::sort(entries.data(), entries.data() + entries.size(), [](const Entry& a, const Entry& b) {
        return CFStringCompare(a.key, b.key, 0) == kCFCompareLessThan;
    });
    return true;
}

// ---- Dates

namespace {

constexpr int64_t kDaysTo2001 = 730791; // From 0000-03-01, where the algorithm's years begin.
constexpr double kSecondsPerDay = 86400;

// The proleptic Gregorian calendar in eras of 400 years that begin in March, so that the leap day
// comes last and months follow a linear rule.
int64_t daysFrom2001(int64_t year, int64_t month, int64_t day) {
    year -= month <= 2;
    const int64_t era = (year >= 0 ? year : year - 399) / 400;
    const int64_t yearOfEra = year - era * 400;
    const int64_t dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    const int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + dayOfEra - kDaysTo2001;
}

struct CivilDate {
    int64_t year;
    int64_t month;
    int64_t day;
};

CivilDate civilDate(int64_t daysSince2001) {
    const int64_t days = daysSince2001 + kDaysTo2001;
    const int64_t era = (days >= 0 ? days : days - 146096) / 146097;
    const int64_t dayOfEra = days - era * 146097;
    const int64_t yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const int64_t shifted = (5 * dayOfYear + 2) / 153;
    const int64_t month = shifted < 10 ? shifted + 3 : shifted - 9;
    return {yearOfEra + era * 400 + (month <= 2 ? 1 : 0), month,
            dayOfYear - (153 * shifted + 2) / 5 + 1};
}

// Takes exactly `count` digits, then `mark`, off the front.
bool takeNumber(std::string_view& text, size_t count, char mark, int64_t& value) {
    if (text.size() <= count || text[count] != mark)
        return false;
    value = 0;
    for (const char digit : text.substr(0, count)) {
        if (digit < '0' || digit > '9')
            return false;
        value = value * 10 + (digit - '0');
    }
    text.remove_prefix(count + 1);
    return true;
}

} // namespace

bool parseDate(std::string_view text, CFAbsoluteTime& time) {
    int64_t year, month, day, hour, minute, second;
    if (!takeNumber(text, 4, '-', year) || !takeNumber(text, 2, '-', month) ||
        !takeNumber(text, 2, 'T', day) || !takeNumber(text, 2, ':', hour) ||
        !takeNumber(text, 2, ':', minute) || !takeNumber(text, 2, 'Z', second) || !text.empty())
        return false;
    if (month < 1 || month > 12 || day < 1 || day > 31 || hour > 23 || minute > 59 || second > 60)
        return false;
    time = static_cast<double>(daysFrom2001(year, month, day)) * kSecondsPerDay +
           static_cast<double>(hour * 3600 + minute * 60 + second);
    return true;
}

bool appendDate(CFAbsoluteTime time, TextBuffer& result) {
    const double earliest = static_cast<double>(daysFrom2001(0, 1, 1)) * kSecondsPerDay;
    const double latest = static_cast<double>(daysFrom2001(10000, 1, 1)) * kSecondsPerDay;
    if (!(time >= earliest && time < latest))
        return false;
    const auto seconds = static_cast<int64_t>(time - earliest);
    const auto [year, month, day] = civilDate(daysFrom2001(0, 1, 1) + seconds / 86400);
    const int64_t rest = seconds % 86400;
    char text[32];
    const int length =
        std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02dZ", static_cast<int>(year),
                      static_cast<int>(month), static_cast<int>(day), static_cast<int>(rest / 3600),
                      static_cast<int>(rest / 60 % 60), static_cast<int>(rest % 60));
    result.append(text, static_cast<size_t>(length));
    return true;
}

} // namespace cf::plist
