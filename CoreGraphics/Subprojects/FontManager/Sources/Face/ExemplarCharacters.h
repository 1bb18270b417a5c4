// ExemplarCharacters.h: the characters that each language of Unicode's locale data is written with.
#pragma once

#include "Face/HarfBuzzFace.h"

#include <unicode/uset.h>

#include <array>
#include <memory>
#include <span>

namespace fm {

using CharacterRanges = std::unique_ptr<USet, DestroyBy<uset_close>>;

inline CharacterRanges makeCharacterRanges() {
    return CharacterRanges(uset_openEmpty());
}

struct ExemplarCharacters {
    std::array<char, 24> tag; // BCP 47: a language, with its script where it has several.
    CharacterRanges characters;
};

// Read from ICU's data once, in some 40 ms, and kept until the process ends. In the order of tags.
// None where memory ran out.
std::span<const ExemplarCharacters> exemplarCharacters();

} // namespace fm
