// RuntimeObject.h: C++ records as instances of the object runtime.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFRuntime.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <type_traits>
#include <utility>

namespace cg {

// A record starts with `CFRuntimeBase base;`. Its members are constructed when the object is made
// and destroyed by `finalize<Record>`, so what a record owns can be read off its members.
template <typename Record>
concept RuntimeRecord = requires(Record record) {
    { record.base } -> std::same_as<CFRuntimeBase&>;
};

namespace detail {

// The constructor runs over memory whose head the runtime has already filled: keep that head.
template <typename Record>
Record* construct(CFTypeRef instance) {
    if (!instance)
        return nullptr;
    void* const memory = const_cast<void*>(instance);
    const CFRuntimeBase base = *static_cast<const CFRuntimeBase*>(instance);
    auto* const record = ::new (memory) Record{};
    record->base = base;
    return record;
}

template <typename Record>
constexpr CFIndex extraBytes(std::size_t trailingBytes) {
    constexpr std::size_t own = sizeof(Record) - sizeof(CFRuntimeBase);
    constexpr auto most = static_cast<std::size_t>(std::numeric_limits<CFIndex>::max());
    return trailingBytes > most - own ? -1 : static_cast<CFIndex>(own + trailingBytes);
}

} // namespace detail

// A new instance of a registered class, with `trailingBytes` of zeroes behind the record; NULL when
// memory runs out or the size overflows.
template <typename Record>
Record* create(CFTypeID type, std::size_t trailingBytes = 0) {
    return detail::construct<Record>(_CFRuntimeCreateInstance(
        nullptr, type, detail::extraBytes<Record>(trailingBytes), nullptr));
}

// The same of a class without a type identifier.
template <typename Record>
Record* create(const CFRuntimeClass& record, std::size_t trailingBytes = 0) {
    return detail::construct<Record>(_CFRuntimeCreateUntypedInstance(
        nullptr, &record, detail::extraBytes<Record>(trailingBytes)));
}

// The memory behind a record that was created with trailing bytes.
template <typename Item, typename Record>
Item* trailing(Record* record) {
    static_assert(sizeof(Record) % alignof(Item) == 0);
    return reinterpret_cast<Item*>(record + 1);
}

// ---- Adaptors: typed functions as class callbacks.

template <typename Record>
void finalize(CFTypeRef object) {
    static_cast<Record*>(const_cast<void*>(object))->~Record();
}

// The object that an untyped callback argument stands for, whatever constness its Ref type has.
template <typename Ref>
Ref as(CFTypeRef object) {
    return static_cast<Ref>(const_cast<void*>(object));
}

namespace detail {

template <typename Function>
struct FirstArgument;
template <typename Result, typename First, typename... Rest>
struct FirstArgument<Result (*)(First, Rest...)> {
    using type = First;
};
template <auto function>
using FirstArgumentOf = typename FirstArgument<decltype(function)>::type;

} // namespace detail

template <auto function>
CFTypeRef copyBy(CFAllocatorRef, CFTypeRef object) {
    return function(as<detail::FirstArgumentOf<function>>(object));
}

template <auto function>
Boolean equalBy(CFTypeRef a, CFTypeRef b) {
    using Ref = detail::FirstArgumentOf<function>;
    return function(as<Ref>(a), as<Ref>(b));
}

template <auto function>
CFHashCode hashBy(CFTypeRef object) {
    return function(as<detail::FirstArgumentOf<function>>(object));
}

template <auto function>
CFStringRef formattingDescriptionBy(CFTypeRef object, CFTypeRef) {
    return function(as<detail::FirstArgumentOf<function>>(object));
}

template <auto function>
CFStringRef debugDescriptionBy(CFTypeRef object) {
    return function(as<detail::FirstArgumentOf<function>>(object));
}

// Copying an immutable object gives the object itself, retained.
inline CFTypeRef copyByRetaining(CFAllocatorRef, CFTypeRef object) {
    return object ? CFRetain(object) : nullptr;
}

// ---- The bodies of all Retain and Release functions.

template <typename Ref>
Ref retain(Ref object) {
    if (object)
        CFRetain(object);
    return object;
}

template <typename Ref>
void release(Ref object) {
    if (object)
        CFRelease(object);
}

} // namespace cg
