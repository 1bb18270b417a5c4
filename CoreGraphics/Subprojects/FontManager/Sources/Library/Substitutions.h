// Substitutions.h: families that stand in for others.
#pragma once

#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFRef.h>

#include "Library/NameText.h"

#include <string>
#include <unordered_map>

namespace fm {

class Substitutions {
public:
    Substitutions() = default;
    // Of a dictionary of names to arrays of names, of which the first counts. Names may be spelt
    // like fonts' or like family keys. Retains the dictionary, which may be NULL.
    explicit Substitutions(CFDictionaryRef dictionary);

    CFDictionaryRef dictionary() const { return dictionary_.get(); }

    // The family key that the chain from `family` leads to: its own when it has no substitute. Says
    // in the log when it gives up on a chain.
    std::u16string resolve(std::u16string family) const;

private:
    cf::Ref<CFDictionaryRef> dictionary_;
    std::unordered_map<std::u16string, std::u16string> substitutes_;
};

} // namespace fm
