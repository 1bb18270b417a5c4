// NameInference.cpp: splits the names of fonts into family, style and weight.

#include "Library/NameInference.h"

#include <CoreFoundation/CFCharacterSet.h>
#include <FontManager/FMLibrary.h>

#include "Library/NameTables.h"
#include "Library/NameText.h"

#include <string_view>

namespace fm {
namespace {

// From this weight on a name asks for a bold font.
constexpr std::int32_t kBoldWeight = 400;

bool isMember(CFCharacterSetPredefinedSet set, char32_t character) {
    return CFCharacterSetIsLongCharacterMember(CFCharacterSetGetPredefined(set), character);
}

bool isUpper(char32_t c) {
    return c < 0x80 ? c >= 'A' && c <= 'Z' : isMember(kCFCharacterSetUppercaseLetter, c);
}

bool isLowerOrCaseless(char32_t c) {
    if (c < 0x80)
        return c >= 'a' && c <= 'z';
    return isMember(kCFCharacterSetLetter, c) && !isUpper(c);
}

char32_t characterAt(std::u16string_view text, std::size_t index) {
    const char16_t unit = text[index];
    const bool isPair = (unit & 0xFC00) == 0xD800 && index + 1 < text.size() &&
                        (text[index + 1] & 0xFC00) == 0xDC00;
    if (!isPair)
        return unit;
    return 0x10000u + ((unit & 0x3FFu) << 10) + (text[index + 1] & 0x3FFu);
}

// Calls `take` with each word of the name, of which none is empty.
template <typename Take>
void forEachWord(std::u16string_view name, Take take) {
    std::size_t start = 0;
    char32_t previous = ' ';
    const auto endWord = [&](std::size_t end) {
        if (end > start)
            take(name.substr(start, end - start));
        start = end;
    };
    for (std::size_t index = 0; index < name.size();) {
        const char32_t character = characterAt(name, index);
        const bool isSeparator = character == ' ' || character == '-';
        if (isSeparator || (isUpper(character) && isLowerOrCaseless(previous)))
            endWord(index);
        index += character > 0xFFFF ? 2 : 1;
        if (isSeparator)
            start = index;
        previous = character;
    }
    endWord(name.size());
}

// Builds the answer word by word.
class Inference {
public:
    void add(std::u16string_view original) {
        std::u16string word = lowerCased(original);
        if (!takeWeight(word) && !takeStyle(word))
            name_.family += word;
        previous_ = std::move(word);
    }

    InferredName finish() {
        if (name_.weight >= kBoldWeight)
            name_.traits |= kFMFontTraitBold;
        if (const auto alias = familyAliasOf(name_.family); !alias.empty())
            name_.family = alias;
        return std::move(name_);
    }

private:
    // "semi bold" is one weight, whose first word has gone into the family already.
    bool takeWeight(std::u16string_view word) {
        if (hasWeight_)
            return false;
        const std::int32_t* weight = nullptr;
        if (word == u"bold" || word == u"light" || word == u"black") {
            weight = weightOfWord(previous_ + std::u16string(word));
            if (weight && name_.family.ends_with(previous_))
                name_.family.resize(name_.family.size() - previous_.size());
        }
        if (!weight)
            weight = weightOfWord(word);
        if (weight)
            name_.weight = *weight;
        hasWeight_ = weight != nullptr;
        return hasWeight_;
    }

    bool takeStyle(std::u16string_view word) {
        if (word == u"oblique" || word == u"italic") {
            name_.traits |= kFMFontTraitItalic;
            return true;
        }
        if (word == u"wide") {
            name_.traits |= kFMFontTraitExpanded;
            return true;
        }
        // Deliberate: condensed families are families of their own unless they have an alias.
        if (word == u"condensed")
            name_.traits |= kFMFontTraitCondensed;
        return false;
    }

    InferredName name_;
    std::u16string previous_;
    bool hasWeight_ = false;
};

} // namespace

InferredName inferName(CFStringRef name) {
    Inference inference;
    forEachWord(unitsOf(name), [&](std::u16string_view word) { inference.add(word); });
    return inference.finish();
}

} // namespace fm

void FMLibraryInferFromName(CFStringRef name, CFStringRef* family, uint32_t* traits,
                            int32_t* weight) {
    const fm::InferredName inferred = name ? fm::inferName(name) : fm::InferredName{};
    if (family)
        *family = name ? fm::stringOf(inferred.family).release() : nullptr;
    if (traits)
        *traits = inferred.traits;
    if (weight)
        *weight = inferred.weight;
}
