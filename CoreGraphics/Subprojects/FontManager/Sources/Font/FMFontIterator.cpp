// FMFontIterator.cpp: the host's fonts, listed when the iterator is made.

#include <Host/Fonts.h>

#include "Core/Object/Diagnostics.h"
#include "Core/Object/RuntimeObject.h"
#include "Font/FontIterator.h"

#include <limits>
#include <memory>
#include <new>

namespace {

struct Item {
    cf::Ref<CFStringRef> name; // The path of a file, or what the host calls the font.
    FMFontIteratorType type;
    std::int64_t modificationTime;
    Item* next = nullptr;
};

} // namespace

struct FMFontIterator {
    CFRuntimeBase base;
    Item* first = nullptr;
    Item** end = &first;      // Where the next item is hooked in.
    Item** current = nullptr; // Points to what points to the current item; NULL before the first.

    ~FMFontIterator() {
        while (Item* const item = first) {
            first = item->next;
            delete item;
        }
    }

    bool add(const HostFont& font) {
        auto name = cf::adopt(CFStringCreateWithCString(nullptr, font.path ? font.path : font.name,
                                                        kCFStringEncodingUTF8));
        const auto type = font.path ? kFMFontIteratorTypeFile : kFMFontIteratorTypeData;
        Item* const item =
            name ? new (std::nothrow) Item{std::move(name), type, font.modificationTime} : nullptr;
        if (!item)
            return false;
        *end = item;
        end = &item->next;
        return true;
    }
};

namespace {

CFTypeID iteratorType() {
    static constexpr CFRuntimeClass kClass = {
        .className = "FMFontIterator",
        .finalize = cg::finalize<FMFontIterator>,
    };
    static const CFTypeID id = _CFRuntimeRegisterClass(&kClass);
    return id;
}

const Item* currentItem(FMFontIteratorRef iterator) {
    return iterator && iterator->current ? *iterator->current : nullptr;
}

cf::Ref<CFStringRef> nameIfOf(FMFontIteratorRef iterator, FMFontIteratorType type) {
    const Item* const item = currentItem(iterator);
    return item && item->type == type ? item->name : nullptr;
}

cf::Ref<CFDataRef> copyOf(const HostMapping& mapping) {
    constexpr auto most = static_cast<std::size_t>(std::numeric_limits<CFIndex>::max());
    if (mapping.size > most)
        return nullptr;
    return cf::adopt(CFDataCreate(nullptr, static_cast<const UInt8*>(mapping.bytes),
                                  static_cast<CFIndex>(mapping.size)));
}

} // namespace

FMFontIteratorRef FMFontIteratorCreate(void) {
    auto iterator = cf::adopt<FMFontIteratorRef>(cg::create<FMFontIterator>(iteratorType()));
    if (!iterator)
        return nullptr;
    const auto add = [](const HostFont* font, void* context) {
        if (!static_cast<FMFontIteratorRef>(context)->add(*font))
            CG_LOG_AS(kHostLogWarning, "FMFontIteratorCreate", "a font was left out");
    };
    return HostFontEnumerate(add, iterator.get()) ? iterator.release() : nullptr;
}

void FMFontIteratorRelease(FMFontIteratorRef iterator) {
    cg::release(iterator);
}

bool FMFontIteratorNext(FMFontIteratorRef iterator) {
    if (!iterator)
        return false;
    if (!iterator->current)
        iterator->current = &iterator->first;
    else if (*iterator->current)
        iterator->current = &(*iterator->current)->next;
    return *iterator->current;
}

FMFontIteratorType FMFontIteratorGetType(FMFontIteratorRef iterator) {
    const Item* const item = currentItem(iterator);
    return item ? item->type : kFMFontIteratorTypeNone;
}

namespace fm {

cf::Ref<CFStringRef> currentPath(FMFontIteratorRef iterator) {
    return nameIfOf(iterator, kFMFontIteratorTypeFile);
}

cf::Ref<CFStringRef> currentWindowsIdentifier(FMFontIteratorRef iterator) {
    return nameIfOf(iterator, kFMFontIteratorTypeData);
}

cf::Ref<CFDataRef> currentData(FMFontIteratorRef iterator, std::int64_t* faceIndex) {
    const auto name = currentWindowsIdentifier(iterator);
    return name ? hostFontData(name.get(), faceIndex) : nullptr;
}

cf::Ref<CFDataRef> hostFontData(CFStringRef name, std::int64_t* faceIndex) {
    char text[1024];
    HostMapping mapping;
    if (!CFStringGetCString(name, text, sizeof text, kCFStringEncodingUTF8) ||
        !HostFontMapByName(text, &mapping, faceIndex))
        return nullptr;
    auto data = copyOf(mapping);
    HostFileUnmap(&mapping);
    return data;
}

std::int64_t currentModificationTime(FMFontIteratorRef iterator) {
    const Item* const item = currentItem(iterator);
    return item ? item->modificationTime : 0;
}

} // namespace fm
