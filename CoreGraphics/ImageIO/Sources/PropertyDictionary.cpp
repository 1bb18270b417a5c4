// PropertyDictionary.cpp: putting plain values into dictionaries of properties.

#include "PropertyDictionary.h"

#include <CoreFoundation/CFArray.h>

namespace imageio {
namespace {

cf::Ref<CFNumberRef> integer(std::int64_t value) {
    return cf::adopt(CFNumberCreate(nullptr, kCFNumberSInt64Type, &value));
}
cf::Ref<CFNumberRef> real(double value) {
    return cf::adopt(CFNumberCreate(nullptr, kCFNumberFloat64Type, &value));
}

template <typename Value>
void setList(CFMutableDictionaryRef properties, CFStringRef key, std::span<const Value> values,
             cf::Ref<CFNumberRef> (*make)(Value)) {
    const auto list = cf::adopt(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
    if (!list)
        return;
    for (const Value value : values)
        if (const auto number = make(value))
            CFArrayAppendValue(list.get(), number.get());
    setValue(properties, key, list.get());
}

CFTypeRef option(CFDictionaryRef options, CFStringRef key, CFTypeID type) {
    const CFTypeRef value = options ? CFDictionaryGetValue(options, key) : nullptr;
    return value && CFGetTypeID(value) == type ? value : nullptr;
}

} // namespace

PropertyDictionary makeProperties() {
    return cf::adopt(CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks,
                                               &kCFTypeDictionaryValueCallBacks));
}

void setValue(CFMutableDictionaryRef properties, CFStringRef key, CFTypeRef value) {
    if (properties && value)
        CFDictionarySetValue(properties, key, value);
}

void setInteger(CFMutableDictionaryRef properties, CFStringRef key, std::int64_t value) {
    setValue(properties, key, integer(value).get());
}

void setReal(CFMutableDictionaryRef properties, CFStringRef key, double value) {
    setValue(properties, key, real(value).get());
}

void setBoolean(CFMutableDictionaryRef properties, CFStringRef key, bool value) {
    setValue(properties, key, value ? kCFBooleanTrue : kCFBooleanFalse);
}

void setIntegers(CFMutableDictionaryRef properties, CFStringRef key,
                 std::span<const std::int64_t> values) {
    setList(properties, key, values, integer);
}

void setReals(CFMutableDictionaryRef properties, CFStringRef key, std::span<const double> values) {
    setList(properties, key, values, real);
}

void setText(CFMutableDictionaryRef properties, CFStringRef key,
             std::span<const std::uint8_t> text) {
    for (const CFStringEncoding encoding : {kCFStringEncodingUTF8, kCFStringEncodingISOLatin1}) {
        const auto string = cf::adopt(CFStringCreateWithBytes(
            nullptr, text.data(), static_cast<CFIndex>(text.size()), encoding, false));
        if (string)
            return setValue(properties, key, string.get());
    }
}

void setDictionary(CFMutableDictionaryRef properties, CFStringRef key,
                   const PropertyDictionary& dictionary) {
    if (dictionary && CFDictionaryGetCount(dictionary.get()) > 0)
        setValue(properties, key, dictionary.get());
}

bool booleanOption(CFDictionaryRef options, CFStringRef key, bool otherwise) {
    const CFTypeRef value = option(options, key, CFBooleanGetTypeID());
    return value ? CFBooleanGetValue(static_cast<CFBooleanRef>(value)) : otherwise;
}

double numberOption(CFDictionaryRef options, CFStringRef key, double otherwise) {
    double number = otherwise;
    if (const CFTypeRef value = option(options, key, CFNumberGetTypeID()))
        CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberFloat64Type, &number);
    return number;
}

} // namespace imageio
