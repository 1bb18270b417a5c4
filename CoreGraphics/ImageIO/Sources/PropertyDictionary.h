// PropertyDictionary.h: putting plain values into dictionaries of properties.
#pragma once

#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFNumber.h>
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>

#include <cstdint>
#include <span>

namespace imageio {

using PropertyDictionary = cf::Ref<CFMutableDictionaryRef>;

PropertyDictionary makeProperties();

// Each does nothing when the value could not be made.
void setValue(CFMutableDictionaryRef properties, CFStringRef key, CFTypeRef value);
void setInteger(CFMutableDictionaryRef properties, CFStringRef key, std::int64_t value);
void setReal(CFMutableDictionaryRef properties, CFStringRef key, double value);
void setBoolean(CFMutableDictionaryRef properties, CFStringRef key, bool value);
void setIntegers(CFMutableDictionaryRef properties, CFStringRef key,
                 std::span<const std::int64_t> values);
void setReals(CFMutableDictionaryRef properties, CFStringRef key, std::span<const double> values);
// UTF-8, or Latin-1 where the bytes are not that.
void setText(CFMutableDictionaryRef properties, CFStringRef key,
             std::span<const std::uint8_t> text);
// Unless it is empty.
void setDictionary(CFMutableDictionaryRef properties, CFStringRef key,
                   const PropertyDictionary& dictionary);

// A CFBoolean or CFNumber of `options`, which may be NULL; `otherwise` where there is none.
bool booleanOption(CFDictionaryRef options, CFStringRef key, bool otherwise);
double numberOption(CFDictionaryRef options, CFStringRef key, double otherwise);

} // namespace imageio
