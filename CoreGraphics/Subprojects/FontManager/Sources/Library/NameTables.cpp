// NameTables.cpp: words that stand for weights, and families that go by another name.

#include "Library/NameTables.h"

#include <algorithm>
#include <array>

namespace fm {
namespace {

struct WeightWord {
    std::u16string_view word;
    std::int32_t weight;
};

constexpr std::array kWeightWords = std::to_array<WeightWord>({
    {u"regular", 0},
    {u"book", 0},
    {u"plain", 0},
    {u"medium", 230},
    {u"semibold", 300},
    {u"demibold", 300},
    {u"bold", 400},
    {u"extrabold", 560},
    {u"heavy", 560},
    {u"extrablack", 620},
    {u"ultrabold", 620},
    {u"black", 620},
    {u"light", -400},
    {u"thin", -600},
    {u"ultralight", -800},
});

struct FamilyAlias {
    std::u16string_view family;
    std::u16string_view alias;
};

// Deliberate: some aliases are shortened or misspelled. They meet the family names of the fonts
// that they were made for, and documents and databases hold them.
constexpr std::array kFamilyAliases = std::to_array<FamilyAlias>({
    {u"arialmt", u"arial"},
    {u"arialroundedmt", u"arialroundedmtbol"},
    {u"bodoniornamentsitctt", u"bodoniornamnts"},
    {u"bodonisvtytwoitctt", u"bodoni72"},
    {u"bodonisvtytwoositcttit", u"bodoni72oldstyle"},
    {u"bradleyhanditctt", u"bradleyhand"},
    {u"couriernewpsmt", u"couriernew"},
    {u"diwanmishafi", u"mishafi"},
    {u"futuracondensed", u"futura"},
    {u"academyengravedlet:1.0", u"academyenravedlet"},
    {u"americantypewritercondensed", u"americantypewriter"},
    {u"bodonisvtytwoscitctt", u"bodoni72smallcaps"},
    {u"helveticaneuecondensed", u"helveticaneue"},
    {u"trebuchet", u"trebuchetms"},
    {u"timesnewromanpsmt", u"timesnewroman"},
    {u"savoyelet:1.0", u"savoyelet"},
    {u"palatinoroman", u"palatino"},
    {u"avenirroman", u"avenir"},
    {u"bodonisvtytwoitcttita", u"bodoni72"},
    {u"bodonisvtytwoositctt", u"bodoni72oldstyle"},
    {u"hiraminpronw3", u"hiraginominchopron"},
    {u"hiraminpronw6", u"hiraginominchopron"},
    {u"hiraginominchopronw3", u"hiraginominchopron"},
    {u"hiraginominchopronw6", u"hiraginominchopron"},
    {u"hiraginosansw3", u"hiraginosans"},
    {u"hiraginosansw6", u"hiraginosans"},
    {u"iowanoldstyleroman", u"iowanoldstyle"},
    {u"papyruscondensed", u"papyrus"},
    {u"zapfdingbatsitc", u"zapfdingbats"},
});

} // namespace

const std::int32_t* weightOfWord(std::u16string_view word) {
    const auto* const found = std::ranges::find(kWeightWords, word, &WeightWord::word);
    return found == kWeightWords.end() ? nullptr : &found->weight;
}

std::u16string_view familyAliasOf(std::u16string_view family) {
    const auto* const found = std::ranges::find(kFamilyAliases, family, &FamilyAlias::family);
    return found == kFamilyAliases.end() ? std::u16string_view{} : found->alias;
}

} // namespace fm
