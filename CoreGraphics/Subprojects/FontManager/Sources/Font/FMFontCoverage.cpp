// FMFontCoverage.cpp: the languages and characters that a font covers.

#include <FontManager/FMFontTables.h>

#include "Face/Languages.h"
#include "Font/FaceUse.h"

CFArrayRef FMFontCopySupportedLanguages(FMFontRef font) {
    const fm::FaceUse use(font);
    return use ? fm::copyLanguages(use.face()).release() : nullptr;
}

CFCharacterSetRef FMFontCopyCharacterSet(FMFontRef font) {
    const fm::FaceUse use(font);
    return use ? font->cache.copyCharacterSet(use.face()).release() : nullptr;
}
