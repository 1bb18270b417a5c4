// NameTable.cpp: choosing among the records of a name.

#include "Font/NameTable.h"

#include <CoreFoundation/CFLocale.h>

#include "Font/NameLanguages.h"

#include FT_TRUETYPE_IDS_H

#include <array>
#include <cstddef>

namespace fm {

namespace {

// The languages asked for, best first.
class Wanted {
public:
    explicit Wanted(NameLanguage language) : strict_(language == NameLanguage::OnlyEnglish) {
        if (language == NameLanguage::Preferred)
            addPreferred();
        add(Language::english());
    }

    // Higher is better; 0 for a language that was not asked for.
    std::uint32_t rank(const Language& language) const {
        for (std::size_t i = 0; i < count_; ++i) {
            if (language.isReadableAs(languages_[i]))
                return static_cast<std::uint32_t>(2 * (count_ - i)) +
                       (language.region == languages_[i].region ? 1 : 0);
        }
        return 0;
    }
    // A text that does not say is taken for English, less gladly than one that does.
    std::uint32_t rankOfUnsaid() const { return 1; }
    bool isStrict() const { return strict_; }

private:
    void add(const Language& language) {
        if (count_ < languages_.size())
            languages_[count_++] = language;
    }

    void addPreferred() {
        const cf::Ref tags = cf::adopt(CFLocaleCopyPreferredLanguages());
        const CFIndex count = tags ? CFArrayGetCount(tags.get()) : 0;
        for (CFIndex i = 0; i < count && count_ + 1 < languages_.size(); ++i) {
            std::array<char, 64> tag;
            const auto text = static_cast<CFStringRef>(CFArrayGetValueAtIndex(tags.get(), i));
            if (!CFStringGetCString(text, tag.data(), CFIndex{tag.size()}, kCFStringEncodingUTF8))
                continue;
            if (const auto language = Language::ofTag(tag.data()))
                add(*language);
        }
    }

    std::array<Language, 8> languages_;
    std::size_t count_ = 0;
    bool strict_;
};

std::uint32_t rankOfPlatform(const FT_SfntName& record) {
    switch (record.platform_id) {
    case TT_PLATFORM_MICROSOFT:
        return record.encoding_id == TT_MS_ID_UNICODE_CS || record.encoding_id == TT_MS_ID_UCS_4
                   ? 6
                   : 4;
    case TT_PLATFORM_APPLE_UNICODE:
        return 5;
    case TT_PLATFORM_MACINTOSH:
        return 3;
    case TT_PLATFORM_ISO:
        return 2;
    default:
        return 1;
    }
}

// Language first, then platform, then the earlier record. 0 for a record that will not do.
std::uint64_t rankOf(FT_Face face, const FT_SfntName& record, FT_UInt index, const Wanted& wanted) {
    const auto language = languageOfRecord(face, record);
    const std::uint32_t rank = language ? wanted.rank(*language) : wanted.rankOfUnsaid();
    if (rank == 0 && wanted.isStrict())
        return 0;
    return (std::uint64_t{rank} << 40) + (std::uint64_t{rankOfPlatform(record)} << 32) +
           (UINT32_MAX - index);
}

struct Candidate {
    FT_SfntName record{};
    std::uint64_t rank = 0;
};

// The best record of the name among those that rank below `limit`.
Candidate bestBelow(FT_Face face, std::uint16_t nameId, const Wanted& wanted, std::uint64_t limit) {
    Candidate best;
    const FT_UInt count = FT_Get_Sfnt_Name_Count(face);
    for (FT_UInt i = 0; i < count; ++i) {
        FT_SfntName record{};
        if (FT_Get_Sfnt_Name(face, i, &record) != 0 || record.name_id != nameId)
            continue;
        const std::uint64_t rank = rankOf(face, record, i, wanted);
        if (rank > best.rank && rank < limit)
            best = {record, rank};
    }
    return best;
}

} // namespace

cf::Ref<CFStringRef> readName(FT_Face face, std::uint16_t nameId, NameLanguage language) {
    // Enough for the broken records of real fonts; a hostile one may have thousands.
    constexpr int kMostTries = 8;
    const Wanted wanted(language);
    std::uint64_t limit = UINT64_MAX;
    for (int tries = 0; tries < kMostTries; ++tries) {
        const Candidate best = bestBelow(face, nameId, wanted, limit);
        if (best.rank == 0)
            break;
        if (cf::Ref text = decodeName(best.record))
            return text;
        limit = best.rank;
    }
    return nullptr;
}

} // namespace fm
