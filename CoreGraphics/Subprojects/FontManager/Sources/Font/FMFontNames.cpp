// FMFontNames.cpp: names as the font's name table has them, and how they are kept.

#include "Font/FMFontNames.h"

#include <CoreFoundation/CFNull.h>

#include "Font/FaceUse.h"
#include "Font/NameTable.h"

#include FT_TYPE1_TABLES_H

namespace {

const void* asKey(fm::NameKey key) {
    return reinterpret_cast<const void*>(std::uintptr_t{key});
}

cf::Ref<CFStringRef> textOf(const char* bytes) {
    if (!bytes || !*bytes)
        return nullptr;
    if (cf::Ref text = cf::adopt(CFStringCreateWithCString(nullptr, bytes, kCFStringEncodingUTF8)))
        return text;
    // Notices of old fonts hold a copyright sign as one byte.
    return cf::adopt(CFStringCreateWithCString(nullptr, bytes, kCFStringEncodingISOLatin1));
}

// Fonts without an SFNT wrapper have no name table; their headers say some of the same.
cf::Ref<CFStringRef> nameFromHeader(FT_Face face, fm::NameKey key) {
    PS_FontInfoRec info{};
    const bool hasInfo = FT_Get_PS_Font_Info(face, &info) == 0;
    switch (key) {
    case fm::kNameFamily:
        return textOf(face->family_name);
    case fm::kNameSubFamily:
        return textOf(face->style_name);
    case fm::kNameCopyright:
        return hasInfo ? textOf(info.notice) : nullptr;
    case fm::kNameFull:
        return hasInfo ? textOf(info.full_name) : nullptr;
    case fm::kNameVersion:
        return hasInfo ? textOf(info.version) : nullptr;
    default:
        return nullptr;
    }
}

CFStringRef copyPlainName(FMFontRef font, fm::NameKey key, bool afresh) {
    return fm::copyName(font, key, afresh, [key](FMFont& locked) { return locked.readName(key); });
}

} // namespace

std::optional<cf::Ref<CFStringRef>> fm::keptName(const FMFont& font, NameKey key) {
    const void* const kept =
        font.names ? CFDictionaryGetValue(font.names.get(), asKey(key)) : nullptr;
    if (!kept)
        return std::nullopt;
    return kept == kCFNull ? nullptr : cf::retain(static_cast<CFStringRef>(kept));
}

void fm::keepName(FMFont& font, NameKey key, const cf::Ref<CFStringRef>& name) {
    if (!font.names) {
        font.names = cf::adopt(
            CFDictionaryCreateMutable(nullptr, 0, nullptr, &kCFTypeDictionaryValueCallBacks));
    }
    const CFTypeRef value = name ? static_cast<CFTypeRef>(name.get()) : kCFNull;
    CFDictionarySetValue(font.names.get(), asKey(key), value);
}

std::optional<cf::Ref<CFStringRef>> FMFont::readName(fm::NameKey key) {
    const fm::FaceUse use(this);
    if (!use)
        return std::nullopt;
    if (!FT_IS_SFNT(use.face()))
        return nameFromHeader(use.face(), key);
    // PostScript names identify: they are not translated.
    const auto language =
        key == fm::kNamePostScript ? fm::NameLanguage::English : fm::NameLanguage::Preferred;
    return fm::readName(use.face(), key, language);
}

cf::Ref<CFStringRef> FMFont::readEnglishUniqueName() {
    const fm::FaceUse use(this);
    return use ? fm::readName(use.face(), fm::kNameUnique, fm::NameLanguage::OnlyEnglish) : nullptr;
}

fm::FaceNames FMFont::faceNames() {
    const fm::FaceUse use(this);
    return use ? fm::FaceNames{use.face()->family_name, use.face()->style_name} : fm::FaceNames{};
}

CFStringRef FMFontCopyCopyright(FMFontRef font, bool afresh) {
    return copyPlainName(font, fm::kNameCopyright, afresh);
}

CFStringRef FMFontCopyFamilyName(FMFontRef font, bool afresh) {
    return copyPlainName(font, fm::kNameFamily, afresh);
}

CFStringRef FMFontCopySubFamilyName(FMFontRef font, bool afresh) {
    return copyPlainName(font, fm::kNameSubFamily, afresh);
}

CFStringRef FMFontCopyVersion(FMFontRef font, bool afresh) {
    return copyPlainName(font, fm::kNameVersion, afresh);
}

CFStringRef FMFontCopyTrademark(FMFontRef font, bool afresh) {
    return copyPlainName(font, fm::kNameTrademark, afresh);
}

CFStringRef FMFontCopyManufacturer(FMFontRef font, bool afresh) {
    return copyPlainName(font, fm::kNameManufacturer, afresh);
}

CFStringRef FMFontCopyDesigner(FMFontRef font, bool afresh) {
    return copyPlainName(font, fm::kNameDesigner, afresh);
}

CFStringRef FMFontCopyDescription(FMFontRef font, bool afresh) {
    return copyPlainName(font, fm::kNameDescription, afresh);
}

CFStringRef FMFontCopyVendorURL(FMFontRef font, bool afresh) {
    return copyPlainName(font, fm::kNameVendorURL, afresh);
}

CFStringRef FMFontCopyDesignerURL(FMFontRef font, bool afresh) {
    return copyPlainName(font, fm::kNameDesignerURL, afresh);
}

CFStringRef FMFontCopyLicense(FMFontRef font, bool afresh) {
    return copyPlainName(font, fm::kNameLicense, afresh);
}

CFStringRef FMFontCopyLicenseURL(FMFontRef font, bool afresh) {
    return copyPlainName(font, fm::kNameLicenseURL, afresh);
}

CFStringRef FMFontCopyPreferredFamilyName(FMFontRef font, bool afresh) {
    return copyPlainName(font, fm::kNamePreferredFamily, afresh);
}

CFStringRef FMFontCopyPreferredSubFamilyName(FMFontRef font, bool afresh) {
    return copyPlainName(font, fm::kNamePreferredSubFamily, afresh);
}

CFStringRef FMFontCopySampleText(FMFontRef font, bool afresh) {
    return copyPlainName(font, fm::kNameSampleText, afresh);
}

CFStringRef FMFontCopyPostScriptCIDName(FMFontRef font, bool afresh) {
    return copyPlainName(font, fm::kNamePostScriptCID, afresh);
}

CFStringRef FMFontCopyWWSFamilyName(FMFontRef font, bool afresh) {
    return copyPlainName(font, fm::kNameWWSFamily, afresh);
}

CFStringRef FMFontCopyWWSSubFamilyName(FMFontRef font, bool afresh) {
    return copyPlainName(font, fm::kNameWWSSubFamily, afresh);
}
