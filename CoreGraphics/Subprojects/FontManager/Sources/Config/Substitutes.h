// Substitutes.h: which families stand for one that is asked for.
#pragma once

#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>

namespace fm {

// What names of the family are resolved by: the family key of a name that says nothing of style or
// weight. NULL for a name without one.
cf::Ref<CFStringRef> familyKey(CFStringRef name);

// Gathers the candidates for one family.
class Substitutes {
public:
    explicit Substitutes(cf::Ref<CFStringRef> key);

    // Candidates are added in the order of preference.
    void add(CFStringRef family);
    // The family that the host shows text of a language (may be NULL) in when a generic one, such
    // as "sans-serif", is asked for; used where no candidate is installed.
    void addHostDefault(CFStringRef generic, CFStringRef language);

    CFStringRef key() const { return key_.get(); }
    // The keys of all, the first that is installed first; NULL when there are none, or when the
    // family itself comes before others that are installed and so needs no substitute.
    cf::Ref<CFArrayRef> finish() const;

private:
    cf::Ref<CFStringRef> key_;
    cf::Ref<CFMutableArrayRef> families_;
    bool hasInstalled_ = false;
};

} // namespace fm
