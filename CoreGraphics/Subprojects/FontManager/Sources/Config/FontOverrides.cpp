// FontOverrides.cpp: a list of overrides. There are few of them.

#include "Config/FontOverrides.h"

#include "Core/Object/RuntimeObject.h"

#include <new>
#include <utility>

namespace {

struct Item {
    cf::Ref<CFStringRef> family;
    fm::MetricsOverride metrics;
    Item* next = nullptr;
};

} // namespace

struct FMFontOverrides {
    CFRuntimeBase base;
    Item* first = nullptr;
    Item** end = &first;

    ~FMFontOverrides() {
        while (Item* const item = first) {
            first = item->next;
            delete item;
        }
    }
};

namespace fm {

cf::Ref<FMFontOverridesRef> makeFontOverrides() {
    static constexpr CFRuntimeClass kClass = {
        .className = "FMFontOverrides",
        .finalize = cg::finalize<FMFontOverrides>,
    };
    return cf::adopt<FMFontOverridesRef>(cg::create<FMFontOverrides>(kClass));
}

bool addOverride(FMFontOverridesRef overrides, CFStringRef familyKey,
                 const MetricsOverride& metrics) {
    Item* const item =
        overrides ? new (std::nothrow) Item{cf::retain(familyKey), metrics} : nullptr;
    if (!item)
        return false;
    *overrides->end = item;
    overrides->end = &item->next;
    return true;
}

bool applyOverrides(FMFontOverridesRef overrides, CFStringRef family, FMFontMetrics& metrics) {
    bool isAny = false;
    for (const Item* item = overrides && family ? overrides->first : nullptr; item;
         item = item->next) {
        if (!CFEqual(item->family.get(), family))
            continue;
        item->metrics.apply(metrics);
        isAny = true;
    }
    return isAny;
}

} // namespace fm
