// CFLRUCache.cpp: the cache of bounded size.

#include "CFLRUCache.h"

#include "CFDescription.h"
#include "Collections.h"
#include "HashTable.h"

#include <algorithm>

namespace {

// Nodes form a ring through the cache's own anchor: behind it the one used last, before it the one
// used longest ago.
struct Link {
    Link* previous;
    Link* next;

    void unlink() {
        previous->next = next;
        next->previous = previous;
    }
    void insertAfter(Link& other) {
        previous = &other;
        next = other.next;
        next->previous = this;
        other.next = this;
    }
};

struct Node : Link {
    const void* key; // The table's own, lent.
    const void* value;
};

} // namespace

struct __CFLRUCache {
    CFRuntimeBase base;
    cf::HashTable nodes; // From keys to nodes.
    CFDictionaryValueCallBacks valueCallBacks;
    Link anchor = {&anchor, &anchor};
    CFIndex capacity;
    CFIndex hits = 0;
    CFIndex misses = 0;

    __CFLRUCache(CFAllocatorRef allocator, CFIndex given,
                 const CFDictionaryKeyCallBacks* keyCallBacks,
                 const CFDictionaryValueCallBacks* values)
        : nodes(allocator, cf::HashTable::Entries::KeysAndValues, keyCallBacks, nullptr),
          valueCallBacks(values ? *values : CFDictionaryValueCallBacks{}), capacity(given) {}
    ~__CFLRUCache() { removeAll(); }

    Node* find(const void* key) const {
        const auto at = nodes.find(key);
        return at == cf::HashTable::kNowhere
                   ? nullptr
                   : static_cast<Node*>(const_cast<void*>(nodes.valueAt(at)));
    }
    void touch(Node& node) {
        node.unlink();
        node.insertAfter(anchor);
    }
    const void* retained(const void* value) const {
        return valueCallBacks.retain ? valueCallBacks.retain(CFGetAllocator(this), value) : value;
    }
    void release(const void* value) const {
        if (valueCallBacks.release)
            valueCallBacks.release(CFGetAllocator(this), value);
    }

    bool add(const void* key, const void* value);
    void replaceValue(Node& node, const void* value);
    void remove(Node& node);
    void removeUntil(CFIndex count);
    void removeAll() { removeUntil(0); }
};

namespace {

CFStringRef describeCache(CFTypeRef object) {
    const auto* const cache = static_cast<const __CFLRUCache*>(object);
    cf::Description text(object);
    text.append(CFSTR("count = %ld, capacity = %ld, hits = %ld, misses = %ld"),
                cache->nodes.count(), cache->capacity, cache->hits, cache->misses);
    return text.finish();
}

constexpr CFRuntimeClass kCacheClass = {
    .className = "CFLRUCache",
    .finalize = cf::finalize<__CFLRUCache>,
    .copyDebugDescription = describeCache,
};

bool isCache(_CFLRUCacheRef cache) {
    return cf::isA(cache, kCacheClass);
}

} // namespace

bool __CFLRUCache::add(const void* key, const void* value) {
    const CFAllocatorRef allocator = CFGetAllocator(this);
    auto* const node = static_cast<Node*>(CFAllocatorAllocate(allocator, sizeof(Node), 0));
    if (!node)
        return false;
    node->value = retained(value);
    if ((value && !node->value) || !nodes.add(key, node)) {
        release(node->value);
        CFAllocatorDeallocate(allocator, node);
        return false;
    }
    node->key = nodes.keyAt(nodes.find(key));
    node->insertAfter(anchor);
    removeUntil(capacity);
    return true;
}

void __CFLRUCache::replaceValue(Node& node, const void* value) {
    const void* const old = std::exchange(node.value, retained(value));
    touch(node);
    release(old);
}

void __CFLRUCache::remove(Node& node) {
    const void* const value = node.value;
    const void* const key = node.key;
    node.unlink();
    CFAllocatorDeallocate(CFGetAllocator(this), &node);
    nodes.remove(key);
    release(value);
}

void __CFLRUCache::removeUntil(CFIndex count) {
    while (nodes.count() > count)
        remove(*static_cast<Node*>(anchor.previous));
}

CFTypeID _CFLRUCacheGetTypeID(void) {
    static const CFTypeID type = _CFRuntimeRegisterClass(&kCacheClass);
    return type;
}

_CFLRUCacheRef _CFLRUCacheCreate(CFAllocatorRef allocator, CFIndex capacity,
                                 const CFDictionaryKeyCallBacks* keyCallBacks,
                                 const CFDictionaryValueCallBacks* valueCallBacks) {
    if (capacity <= 0)
        return nullptr;
    return cf::create<__CFLRUCache>(allocator, _CFLRUCacheGetTypeID(), capacity, keyCallBacks,
                                    valueCallBacks)
        .release();
}

CFIndex _CFLRUCacheGetCount(_CFLRUCacheRef cache) {
    return isCache(cache) ? cache->nodes.count() : 0;
}

CFIndex _CFLRUCacheGetCapacity(_CFLRUCacheRef cache) {
    return isCache(cache) ? cache->capacity : 0;
}

void _CFLRUCacheSetCapacity(_CFLRUCacheRef cache, CFIndex capacity) {
    if (!isCache(cache) || capacity <= 0)
        return;
    cache->capacity = capacity;
    cache->removeUntil(capacity);
}

const void* _CFLRUCacheGetValue(_CFLRUCacheRef cache, const void* key) {
    if (!isCache(cache))
        return nullptr;
    Node* const node = cache->find(key);
    ++(node ? cache->hits : cache->misses);
    if (!node)
        return nullptr;
    cache->touch(*node);
    return node->value;
}

Boolean _CFLRUCacheContainsKey(_CFLRUCacheRef cache, const void* key) {
    return isCache(cache) && cache->find(key);
}

Boolean _CFLRUCacheSetValue(_CFLRUCacheRef cache, const void* key, const void* value) {
    if (!isCache(cache))
        return false;
    Node* const node = cache->find(key);
    if (!node)
        return cache->add(key, value);
    cache->replaceValue(*node, value);
    return true;
}

void _CFLRUCacheRemoveValue(_CFLRUCacheRef cache, const void* key) {
    if (!isCache(cache))
        return;
    if (Node* const node = cache->find(key))
        cache->remove(*node);
}

void _CFLRUCacheRemoveAllValues(_CFLRUCacheRef cache) {
    if (isCache(cache))
        cache->removeAll();
}

CFIndex _CFLRUCacheGetHitCount(_CFLRUCacheRef cache) {
    return isCache(cache) ? cache->hits : 0;
}

CFIndex _CFLRUCacheGetMissCount(_CFLRUCacheRef cache) {
    return isCache(cache) ? cache->misses : 0;
}
