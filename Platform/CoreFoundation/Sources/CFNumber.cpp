// CFNumber.cpp: numbers.

#include "CFNumber.h"

#include "CFDescription.h"
#include "CFRuntimeInternal.h"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

struct __CFNumber {
    CFRuntimeBase base;
    // Which member holds the value follows from the type in the head's own byte of flags.
    union {
        int64_t integer;
        double real;
    };
};

namespace {

constexpr CFNumberType kIndexType =
    sizeof(CFIndex) == 8 ? kCFNumberSInt64Type : kCFNumberSInt32Type;
static_assert(sizeof(CFIndex) == sizeof(long));

// The fixed-width type that stands for each type, in the order of their numbers.
constexpr std::array<CFNumberType, kCFNumberMaxType + 1> kFixedTypes = {
    CFNumberType{},       kCFNumberSInt8Type,   kCFNumberSInt16Type,  kCFNumberSInt32Type,
    kCFNumberSInt64Type,  kCFNumberFloat32Type, kCFNumberFloat64Type, kCFNumberSInt8Type,
    kCFNumberSInt16Type,  kCFNumberSInt32Type,  kIndexType,           kCFNumberSInt64Type,
    kCFNumberFloat32Type, kCFNumberFloat64Type, kIndexType,           kIndexType,
    kCFNumberFloat32Type,
};
static_assert(kFixedTypes[kCFNumberCGFloatType] == kCFNumberFloat32Type);
static_assert(kFixedTypes.size() == kCFNumberMaxType + 1);

constexpr CFNumberType fixedType(CFNumberType type) {
    return type > 0 && type <= kCFNumberMaxType ? kFixedTypes[static_cast<std::size_t>(type)]
                                                : CFNumberType{};
}

// Calls `visit` with a value of the C type that a fixed-width type stands for.
template <typename Visit>
bool withType(CFNumberType fixed, Visit visit) {
    switch (fixed) {
    case kCFNumberSInt8Type:
        return visit(int8_t{});
    case kCFNumberSInt16Type:
        return visit(int16_t{});
    case kCFNumberSInt32Type:
        return visit(int32_t{});
    case kCFNumberSInt64Type:
        return visit(int64_t{});
    case kCFNumberFloat32Type:
        return visit(float{});
    case kCFNumberFloat64Type:
        return visit(double{});
    default:
        return false;
    }
}

bool isFloat(CFNumberType fixed) {
    return fixed == kCFNumberFloat32Type || fixed == kCFNumberFloat64Type;
}

CFNumberType typeOf(CFNumberRef number) {
    return static_cast<CFNumberType>(number->base.flags & 0xff);
}

// 2^63, the first value past the 64-bit integers.
constexpr double kIntegerEnd = 9223372036854775808.0;

// The nearest integer type's value; 0 for NaN.
template <typename Integer>
Integer saturated(double value) {
    using Limits = std::numeric_limits<Integer>;
    if (std::isnan(value))
        return 0;
    if (value < static_cast<double>(Limits::min()))
        return Limits::min();
    // The limit itself may not be a double; the next power of two always is.
    if (value >= -static_cast<double>(Limits::min()))
        return Limits::max();
    return static_cast<Integer>(value);
}

CFComparisonResult compareValues(auto a, auto b) {
    return a < b ? kCFCompareLessThan : a > b ? kCFCompareGreaterThan : kCFCompareEqualTo;
}

CFComparisonResult reversed(CFComparisonResult result) {
    return static_cast<CFComparisonResult>(-static_cast<CFIndex>(result));
}

// Exact, which comparing as doubles would not be beyond 2^53.
CFComparisonResult compareIntegerToReal(int64_t integer, double real) {
    if (std::isnan(real))
        return integer < 0 ? kCFCompareLessThan : kCFCompareGreaterThan;
    if (real >= kIntegerEnd)
        return kCFCompareLessThan;
    if (real < -kIntegerEnd)
        return kCFCompareGreaterThan;
    const double whole = std::floor(real);
    const auto result = compareValues(integer, static_cast<int64_t>(whole));
    return result == kCFCompareEqualTo && real > whole ? kCFCompareLessThan : result;
}

template <typename Target>
bool convertInteger(int64_t value, Target* target) {
    *target = static_cast<Target>(value);
    if constexpr (std::is_integral_v<Target>)
        return *target == value;
    else
        return static_cast<double>(*target) < kIntegerEnd && static_cast<int64_t>(*target) == value;
}

template <typename Target>
bool convertReal(double value, Target* target) {
    if constexpr (std::is_integral_v<Target>) {
        *target = saturated<Target>(value);
        return compareIntegerToReal(*target, value) == kCFCompareEqualTo;
    } else if constexpr (sizeof(Target) < sizeof(double)) {
        // A conversion out of range would be undefined; infinity is what rounding gives.
        const bool fits = std::isnan(value) || std::isinf(value) ||
                          std::fabs(value) <= std::numeric_limits<Target>::max();
        *target = fits ? static_cast<Target>(value)
                       : std::copysign(std::numeric_limits<Target>::infinity(),
                                       static_cast<Target>(value > 0 ? 1 : -1));
    } else {
        *target = value;
    }
    return static_cast<double>(*target) == value || (std::isnan(value) && *target != *target);
}

CFComparisonResult compareReals(double a, double b) {
    if (std::isnan(a) && std::isnan(b))
        return kCFCompareEqualTo;
    if (std::isnan(b))
        return a < 0 ? kCFCompareLessThan : kCFCompareGreaterThan;
    if (std::isnan(a))
        return b < 0 ? kCFCompareGreaterThan : kCFCompareLessThan;
    return compareValues(a, b);
}

CFComparisonResult compareNumbers(CFNumberRef a, CFNumberRef b) {
    const bool aIsFloat = isFloat(typeOf(a));
    const bool bIsFloat = isFloat(typeOf(b));
    if (aIsFloat && bIsFloat)
        return compareReals(a->real, b->real);
    if (aIsFloat)
        return reversed(compareIntegerToReal(b->integer, a->real));
    return bIsFloat ? compareIntegerToReal(a->integer, b->real)
                    : compareValues(a->integer, b->integer);
}

CFNumberRef numberOf(CFTypeRef object) {
    return static_cast<CFNumberRef>(object);
}

// Whole values hash as integers in either representation, since they may be equal.
CFHashCode hashNumber(CFTypeRef object) {
    const CFNumberRef number = numberOf(object);
    if (!isFloat(typeOf(number)))
        return static_cast<CFHashCode>(number->integer);
    const double real = number->real;
    if (real >= -kIntegerEnd && real < kIntegerEnd && std::floor(real) == real)
        return static_cast<CFHashCode>(static_cast<int64_t>(real));
    return std::isnan(real) ? 0 : static_cast<CFHashCode>(std::bit_cast<uint64_t>(real));
}

// The shortest text that reads back as the same value.
CFStringRef copyNumberText(CFTypeRef object, CFTypeRef) {
    const CFNumberRef number = numberOf(object);
    std::array<char, 32> text = {};
    char* const end = text.data() + text.size() - 1;
    switch (typeOf(number)) {
    case kCFNumberFloat32Type:
        std::to_chars(text.data(), end, static_cast<float>(number->real));
        break;
    case kCFNumberFloat64Type:
        std::to_chars(text.data(), end, number->real);
        break;
    default:
        std::to_chars(text.data(), end, number->integer);
    }
    return CFStringCreateWithCString(nullptr, text.data(), kCFStringEncodingUTF8);
}

CFStringRef describeNumber(CFTypeRef object) {
    static constexpr std::array kTypeNames = {"",       "SInt8",   "SInt16", "SInt32",
                                              "SInt64", "Float32", "Float64"};
    const auto value = cf::adopt(copyNumberText(object, nullptr));
    cf::Description text(object);
    text.append(CFSTR("value = %@, type = kCFNumber%sType"), value.get(),
                kTypeNames[static_cast<std::size_t>(typeOf(numberOf(object)))]);
    return text.finish();
}

bool isNumber(CFNumberRef number) {
    return cf::isA(number, cf::kNumberClass);
}

constexpr double kInfinity = std::numeric_limits<double>::infinity();

#define STATIC_REAL(value)                                                                         \
    {                                                                                              \
        CF_STATIC_BASE_WITH_FLAGS(cf::kNumberClass, cf::kTypeNumber, kCFNumberFloat64Type), {      \
            .real = (value)                                                                        \
        }                                                                                          \
    }
__CFNumber positiveInfinity = STATIC_REAL(kInfinity);
__CFNumber negativeInfinity = STATIC_REAL(-kInfinity);
__CFNumber notANumber = STATIC_REAL(std::numeric_limits<double>::quiet_NaN());
#undef STATIC_REAL

} // namespace

namespace cf {

const CFRuntimeClass kNumberClass = {
    .className = "CFNumber",
    .equal = [](CFTypeRef a, CFTypeRef b) -> Boolean {
        return compareNumbers(numberOf(a), numberOf(b)) == kCFCompareEqualTo;
    },
    .hash = hashNumber,
    .copyFormattingDescription = copyNumberText,
    .copyDebugDescription = describeNumber,
};

} // namespace cf

const CFNumberRef kCFNumberPositiveInfinity = &positiveInfinity;
const CFNumberRef kCFNumberNegativeInfinity = &negativeInfinity;
const CFNumberRef kCFNumberNaN = &notANumber;

CFTypeID CFNumberGetTypeID(void) {
    return cf::kTypeNumber;
}

CFNumberRef CFNumberCreate(CFAllocatorRef allocator, CFNumberType type, const void* valuePtr) {
    const CFNumberType fixed = fixedType(type);
    if (!valuePtr || fixed == CFNumberType{})
        return nullptr;
    constexpr auto extra = static_cast<CFIndex>(sizeof(__CFNumber) - sizeof(CFRuntimeBase));
    auto* const number = static_cast<__CFNumber*>(
        const_cast<void*>(_CFRuntimeCreateInstance(allocator, cf::kTypeNumber, extra, nullptr)));
    if (!number)
        return nullptr;
    number->base.flags |= static_cast<uint16_t>(fixed);
    withType(fixed, [&](auto value) {
        std::memcpy(&value, valuePtr, sizeof value);
        if constexpr (std::is_integral_v<decltype(value)>)
            number->integer = value;
        else
            number->real = value;
        return true;
    });
    return number;
}

CFNumberType CFNumberGetType(CFNumberRef number) {
    return isNumber(number) ? typeOf(number) : CFNumberType{};
}

CFIndex CFNumberGetByteSize(CFNumberRef number) {
    CFIndex size = 0;
    withType(CFNumberGetType(number), [&](auto value) {
        size = sizeof value;
        return true;
    });
    return size;
}

Boolean CFNumberIsFloatType(CFNumberRef number) {
    return isFloat(CFNumberGetType(number));
}

Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* valuePtr) {
    if (!isNumber(number) || !valuePtr)
        return false;
    return withType(fixedType(type), [&](auto value) {
        const bool exact = isFloat(typeOf(number)) ? convertReal(number->real, &value)
                                                   : convertInteger(number->integer, &value);
        std::memcpy(valuePtr, &value, sizeof value);
        return exact;
    });
}

CFComparisonResult CFNumberCompare(CFNumberRef number, CFNumberRef other, void*) {
    if (!isNumber(number) || !isNumber(other))
        return compareValues(isNumber(number), isNumber(other));
    return compareNumbers(number, other);
}
