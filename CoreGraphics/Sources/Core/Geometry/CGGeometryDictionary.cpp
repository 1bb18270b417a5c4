// CGGeometryDictionary.cpp: points, sizes and rectangles as dictionaries of numbers.

#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFNumber.h>
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>
#include <CoreGraphics/CGGeometry.h>

#include <array>
#include <cstddef>
#include <span>

namespace {

// A field of a value under its key. Dictionaries are read in the order of the fields.
struct Field {
    CFStringRef key;
    CGFloat* value;
};

std::array<Field, 2> fieldsOf(CGPoint& point) {
    return {{{CFSTR("X"), &point.x}, {CFSTR("Y"), &point.y}}};
}

std::array<Field, 2> fieldsOf(CGSize& size) {
    return {{{CFSTR("Width"), &size.width}, {CFSTR("Height"), &size.height}}};
}

std::array<Field, 4> fieldsOf(CGRect& rect) {
    const auto size = fieldsOf(rect.size);
    const auto origin = fieldsOf(rect.origin);
    return {{size[0], size[1], origin[0], origin[1]}};
}

template <std::size_t count>
CFDictionaryRef createDictionary(const std::array<Field, count>& fields) {
    std::array<cf::Ref<CFNumberRef>, count> numbers;
    std::array<const void*, count> keys;
    std::array<const void*, count> values;
    for (std::size_t i = 0; i < count; ++i) {
        numbers[i] = cf::adopt(CFNumberCreate(nullptr, kCFNumberCGFloatType, fields[i].value));
        if (!numbers[i])
            return nullptr;
        keys[i] = fields[i].key;
        values[i] = numbers[i].get();
    }
    return CFDictionaryCreate(nullptr, keys.data(), values.data(), CFIndex(count),
                              &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
}

// Writes each field as it is read: a failure part-way leaves those before it written.
bool readDictionary(CFDictionaryRef dictionary, std::span<const Field> fields) {
    for (const auto& [key, value] : fields) {
        const CFTypeRef number = CFDictionaryGetValue(dictionary, key);
        if (!number || CFGetTypeID(number) != CFNumberGetTypeID() ||
            !CFNumberGetValue(static_cast<CFNumberRef>(number), kCFNumberCGFloatType, value))
            return false;
    }
    return true;
}

template <typename Value>
bool readValue(CFDictionaryRef dictionary, Value* value) {
    return dictionary && value && readDictionary(dictionary, fieldsOf(*value));
}

} // namespace

CFDictionaryRef CGPointCreateDictionaryRepresentation(CGPoint point) {
    return createDictionary(fieldsOf(point));
}

bool CGPointMakeWithDictionaryRepresentation(CFDictionaryRef dictionary, CGPoint* point) {
    return readValue(dictionary, point);
}

CFDictionaryRef CGSizeCreateDictionaryRepresentation(CGSize size) {
    return createDictionary(fieldsOf(size));
}

bool CGSizeMakeWithDictionaryRepresentation(CFDictionaryRef dictionary, CGSize* size) {
    return readValue(dictionary, size);
}

CFDictionaryRef CGRectCreateDictionaryRepresentation(CGRect rect) {
    return createDictionary(fieldsOf(rect));
}

bool CGRectMakeWithDictionaryRepresentation(CFDictionaryRef dictionary, CGRect* rect) {
    return readValue(dictionary, rect);
}
