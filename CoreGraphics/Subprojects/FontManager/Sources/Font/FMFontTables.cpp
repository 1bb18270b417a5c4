// FMFontTables.cpp: a font's tables.

#include <FontManager/FMFontTables.h>

#include "Face/SfntTables.h"
#include "Font/FaceUse.h"

bool FMFontHasTable(FMFontRef font, uint32_t tag) {
    const fm::FaceUse use(font);
    return use && fm::hasTable(use.face(), tag);
}

CFDataRef FMFontCopyTable(FMFontRef font, uint32_t tag) {
    const fm::FaceUse use(font);
    return use ? fm::copyTable(use.face(), tag).release() : nullptr;
}

CFIndex FMFontGetAvailableTablesCount(FMFontRef font) {
    const fm::FaceUse use(font);
    return use ? fm::tableCount(use.face()) : 0;
}

CFArrayRef FMFontCopyAvailableTables(FMFontRef font) {
    const fm::FaceUse use(font);
    return use ? fm::copyTableTags(use.face()).release() : nullptr;
}
