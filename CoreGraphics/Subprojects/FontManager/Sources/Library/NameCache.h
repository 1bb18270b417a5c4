// NameCache.h: what names were last resolved to.
#pragma once

#include <CoreFoundation/CFLRUCache.h>
#include <CoreFoundation/CFRef.h>
#include <FontManager/FMBase.h>

#include <optional>
#include <string>

namespace fm {

// Remembers the names used last, with their fonts, which it retains, or that they have none.
class NameCache {
public:
    explicit NameCache(CFIndex capacity);

    // The font, lent, or NULL for a name known to have none; nothing for an unknown name.
    std::optional<FMFontRef> find(const std::u16string& lowerCasedName) const;
    void remember(const std::u16string& lowerCasedName, FMFontRef font);
    void forgetAll();

private:
    cf::Ref<_CFLRUCacheRef> cache_;
};

} // namespace fm
