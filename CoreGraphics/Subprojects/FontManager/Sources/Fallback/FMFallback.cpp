// FMFallback.cpp: parts code points into ranges that the same fonts cover.

#include <FontManager/FMDatabase.h>
#include <FontManager/FMFallback.h>
#include <FontManager/FMFont.h>

#include "Core/Object/Diagnostics.h"
#include "Fallback/FallbackAccess.h"
#include "Fallback/FallbackState.h"
#include "Fallback/MappedCodePoints.h"
#include "Library/LibraryRecord.h"

#include <cstdlib>
#include <mutex>
#include <span>
#include <utility>

namespace {

void release(const FMFallback::FontList& fonts) {
    for (const FMFontRef font : fonts)
        FMFontRelease(font);
}

} // namespace

FMFallback::FMFallback(FMLibraryRef library, FontListCallback fontListCallback)
    : state_(new State{library, std::move(fontListCallback)}) {}

FMFallback::~FMFallback() {
    for (const auto& [set, fonts] : state_->lists)
        release(fonts);
}

const FMFallbackRange* FMFallback::query(std::uint32_t codePoint) {
    const FMFallbackRange* const known = _queryCodepoint(codePoint);
    return known ? known : _getCharRangeForCodepoint(codePoint);
}

const FMFallbackRange* FMFallback::_queryCodepoint(std::uint32_t codePoint) {
    const std::lock_guard hold(state_->mutex);
    return state_->ranges.find(codePoint);
}

const FMFallbackRange* FMFallback::_getCharRangeForCodepoint(std::uint32_t codePoint) {
    const std::vector<FMFontId> fonts = state_->fontsCovering(codePoint);
    if (fonts.empty())
        return nullptr;
    const std::lock_guard hold(state_->mutex);
    if (const FMFallbackRange* const known = state_->ranges.find(codePoint))
        return known;
    return state_->ranges.insert(codePoint, state_->sets.numberOf(fonts));
}

void FMFallback::addFontToCharmaps(FMFontRef font) {
    if (!font)
        return;
    const auto codePoints = fm::mappedCodePoints(font);
    const std::lock_guard hold(state_->mutex);
    state_->characterMaps.add(FMFontGetFontId(font), codePoints);
}

void FMFallback::storeCharmaps(CFCharacterSetRef charSet) {
    const FMDatabaseRef database = fm::databaseOf(state_->library);
    if (!database)
        return;
    const std::lock_guard hold(state_->mutex);
    for (const FMFontId font : state_->characterMaps.fonts()) {
        auto codePoints = state_->characterMaps.codePointsOf(font);
        if (charSet)
            std::erase_if(codePoints, [&](std::uint32_t codePoint) {
                return !CFCharacterSetIsLongCharacterMember(charSet, codePoint);
            });
        FMDatabaseStoreCharmaps(database, font, codePoints.data(), codePoints.size());
    }
}

void FMFallback::initWithCharMaps() {
    const FMFontId count = state_->permanentFonts();
    for (FMFontId font = 1; font <= count && font > 0; ++font) {
        uint32_t* values = nullptr;
        std::size_t valueCount = 0;
        if (!FMDatabaseCopyCharmaps(fm::databaseOf(state_->library), font, &values, &valueCount))
            continue;
        const std::lock_guard hold(state_->mutex);
        state_->characterMaps.add(font, std::span(values, valueCount));
        std::free(values);
    }
}

const FMFallback::FontList& FMFallback::getFontSet(std::uint32_t setNumber) {
    static const auto& none = *new FontList;
    {
        const std::lock_guard hold(state_->mutex);
        if (const auto found = state_->lists.find(setNumber); found != state_->lists.end())
            return found->second;
        if (setNumber >= state_->sets.count())
            return none;
    }
    CG_BUG_UNLESS(state_->fontListCallback);
    FontList fonts = state_->fontListCallback(setNumber, this);
    const std::lock_guard hold(state_->mutex);
    const auto [entry, isNew] = state_->lists.try_emplace(setNumber);
    if (isNew)
        entry->second = std::move(fonts);
    else
        release(fonts);
    return entry->second;
}

namespace fm {

std::optional<FMFallbackRange> FallbackAccess::query(FMFallback& fallback,
                                                     std::uint32_t codePoint) {
    FMFallback::State& state = *fallback.state_;
    {
        const std::lock_guard hold(state.mutex);
        if (const FMFallbackRange* const known = state.ranges.find(codePoint))
            return *known;
    }
    fallback._getCharRangeForCodepoint(codePoint);
    const std::lock_guard hold(state.mutex);
    const FMFallbackRange* const range = state.ranges.find(codePoint);
    return range ? std::optional(*range) : std::nullopt;
}

std::vector<FMFontId> FallbackAccess::fontIdsOf(FMFallback& fallback, std::uint32_t setNumber) {
    FMFallback::State& state = *fallback.state_;
    const std::lock_guard hold(state.mutex);
    if (setNumber >= state.sets.count())
        return {};
    const std::span<const FMFontId> ids = state.sets[setNumber];
    return {ids.begin(), ids.end()};
}

bool FallbackAccess::hasPendingWork(FMFallback& fallback) {
    FMFallback::State& state = *fallback.state_;
    const FMFontId count = state.permanentFonts();
    const std::lock_guard hold(state.mutex);
    return state.isToAsk(count);
}

} // namespace fm
