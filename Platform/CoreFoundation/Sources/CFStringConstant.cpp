// CFStringConstant.cpp: the table behind CFSTR, where equal texts meet.

#include <CoreFoundation/CFRuntime.h>

#include "CFStringInternal.h"

#include <array>
#include <atomic>
#include <memory>
#include <new>

namespace {

// A string in the table's own memory. It is never changed nor freed once it is in the table, so
// readers need no lock.
struct Entry {
    const Entry* next;
    cf::Ref<CFStringRef>
        decoded; // Holds the contents, unless the text is ASCII and so serves itself.
    _CFStringHead head;
    char text[]; // As the literal has it: UTF-8 with its NUL.

    CFStringRef string() const { return reinterpret_cast<CFStringRef>(&head); }
};

using Slot = std::atomic<const Entry*>;

// By text.
constinit std::array<Slot, 2048> buckets = {};
// By the literal's address, where the text has to be compared once only. The address is no proof:
// a library that is unloaded makes room for other literals.
constinit std::array<Slot, 1024> recent = {};

Slot& recentSlot(const char* text) {
    const auto address = reinterpret_cast<uintptr_t>(text);
    return recent[(address ^ (address >> 10)) % recent.size()];
}

Slot& bucketOf(const char* text) {
    uint32_t hash = 2166136261u; // FNV-1a
    for (const char* c = text; *c; ++c)
        hash = (hash ^ static_cast<uint8_t>(*c)) * 16777619u;
    return buckets[(hash ^ (hash >> 16)) % buckets.size()];
}

const Entry* findIn(const Entry* first, const Entry* end, const char* text) {
    for (const Entry* entry = first; entry != end; entry = entry->next)
        if (std::strcmp(entry->text, text) == 0)
            return entry;
    return nullptr;
}

// Text that is not UTF-8 is taken as Latin-1, so that a literal always stands for some string.
cf::Ref<CFStringRef> decode(const char* text) {
    auto string = cf::adopt(
        CFStringCreateWithCString(kCFAllocatorSystemDefault, text, kCFStringEncodingUTF8));
    if (!string)
        string = cf::adopt(
            CFStringCreateWithCString(kCFAllocatorSystemDefault, text, kCFStringEncodingISOLatin1));
    return string;
}

_CFStringHead immortalHead(unsigned flags, CFIndex length, const void* contents) {
    return {{reinterpret_cast<uintptr_t>(&_CFStringClass) | kCFRuntimeClassTag,
             _kCFRuntimeStringTypeID, static_cast<uint16_t>(flags), _kCFRuntimeImmortalCount},
            0,
            length,
            contents};
}

Entry* createEntry(const char* text) {
    const size_t length = std::strlen(text);
    void* const memory = std::malloc(sizeof(Entry) + length + 1);
    if (!memory)
        return nullptr;
    auto* const entry = ::new (memory) Entry{};
    std::memcpy(entry->text, text, length + 1);
    if (cf::isASCII(reinterpret_cast<const uint8_t*>(text), length)) {
        entry->head = immortalHead(_kCFStringIsASCII | _kCFStringIsCString,
                                   static_cast<CFIndex>(length), entry->text);
        return entry;
    }
    entry->decoded = decode(text);
    if (const CFStringRef string = entry->decoded.get()) {
        entry->head = immortalHead(string->base.flags & _kCFStringStorageFlags, string->length,
                                   string->contents);
        return entry;
    }
    std::free(entry);
    return nullptr;
}

void destroyEntry(Entry* entry) {
    std::destroy_at(entry);
    std::free(entry);
}

const Entry* insert(Slot& bucket, const Entry* seen, const char* text) {
    Entry* const mine = createEntry(text);
    if (!mine)
        return nullptr;
    mine->next = seen;
    while (!bucket.compare_exchange_weak(seen, mine, std::memory_order_acq_rel,
                                         std::memory_order_acquire)) {
        // Others were quicker: only what they put in front of ours has to be looked at.
        if (const Entry* const theirs = findIn(seen, mine->next, text)) {
            destroyEntry(mine);
            return theirs;
        }
        mine->next = seen;
    }
    return mine;
}

} // namespace

CFStringRef __CFStringMakeConstantString(const char* text) {
    if (!text)
        return nullptr;
    Slot& slot = recentSlot(text);
    const Entry* entry = slot.load(std::memory_order_acquire);
    if (entry && std::strcmp(entry->text, text) == 0)
        return entry->string();

    Slot& bucket = bucketOf(text);
    const Entry* const first = bucket.load(std::memory_order_acquire);
    entry = findIn(first, nullptr, text);
    if (!entry)
        entry = insert(bucket, first, text);
    if (!entry)
        return nullptr;
    slot.store(entry, std::memory_order_release);
    return entry->string();
}
