// EveryCall.h: everything that a font can be asked, for tests of whether it survives that.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <FontManager/FontManager.h>

namespace test {

using CopyName = CFStringRef (*)(FMFontRef, bool);

inline constexpr CopyName kNameCalls[] = {
    FMFontCopyCopyright,     FMFontCopyFamilyName,        FMFontCopySubFamilyName,
    FMFontCopyVersion,       FMFontCopyTrademark,         FMFontCopyManufacturer,
    FMFontCopyDesigner,      FMFontCopyDescription,       FMFontCopyVendorURL,
    FMFontCopyDesignerURL,   FMFontCopyLicense,           FMFontCopyLicenseURL,
    FMFontCopySampleText,    FMFontCopyPostScriptCIDName, FMFontCopyPreferredFamilyName,
    FMFontCopyWWSFamilyName, FMFontCopyWWSSubFamilyName,  FMFontCopyPreferredSubFamilyName,
    FMFontCopyFullName,      FMFontCopyPostScriptName,    FMFontCopyUniqueId,
    FMFontCopyStyleName,     FMFontCopyNimbraFamilyName,  FMFontCopyNimbraId,
    FMFontCopyDisplayName,
};

inline void askEverything(FMFontRef font) {
    for (const CopyName copy : kNameCalls) {
        const auto kept = cf::adopt(copy(font, false));
        const auto fresh = cf::adopt(copy(font, true));
    }
    FMFontGetMetrics(font);
    FMFontGetFormat(font);
    FMFontGetRestrictions(font);
    FMFontGetStringEncoding(font);
    FMFontGetNumberOfGlyphs(font);
    FMFontIsSerif(font);
    const auto location = cf::adopt(FMFontCopyLocationURL(font));
    const auto identifier = cf::adopt(FMFontCopyWindowsIdentifier(font));
    FMFontGetFaceIndex(font);
}

} // namespace test
