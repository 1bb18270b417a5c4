// CFStringEncodings.cpp: the names and numbers by which encodings are known elsewhere.

#include "CFStringEncodingTable.h"
#include "CFStringICU.h"
#include "CFStringInternal.h"

#include <algorithm>

namespace {

// The numbers that differ from the rule "top bit and CFStringEncoding".
constexpr struct {
    unsigned long number;
    CFStringEncoding encoding;
} kClassNumbers[] = {
    {1, kCFStringEncodingASCII},
    {2, kCFStringEncodingNextStepLatin},
    {3, kCFStringEncodingEUC_JP},
    {4, kCFStringEncodingUTF8},
    {5, kCFStringEncodingISOLatin1},
    {6, kCFStringEncodingMacSymbol},
    {7, kCFStringEncodingNonLossyASCII},
    {8, kCFStringEncodingShiftJIS},
    {9, kCFStringEncodingISOLatin2},
    {10, kCFStringEncodingUnicode},
    {11, kCFStringEncodingWindowsCyrillic},
    {12, kCFStringEncodingWindowsLatin1},
    {13, kCFStringEncodingWindowsGreek},
    {14, kCFStringEncodingWindowsLatin5},
    {15, kCFStringEncodingWindowsLatin2},
    {21, kCFStringEncodingISO_2022_JP},
    {30, kCFStringEncodingMacRoman},
};
constexpr unsigned long kOtherNumbers = 0x80000000UL;

// What ICU calls the encoding that is named `name`, or nullptr.
const char* canonicalName(const char* name) {
    UErrorCode status = U_ZERO_ERROR;
    const char* const canonical = ucnv_getAlias(name, 0, &status);
    return U_SUCCESS(status) ? canonical : nullptr;
}

CFStringEncoding encodingNamed(const char* name) {
    const auto rows = cf::encodingRows();
    for (const auto& row : rows)
        if (row.charSetName && ucnv_compareNames(row.charSetName, name) == 0)
            return row.encoding;
    const char* const wanted = canonicalName(name);
    for (const auto& row : rows) {
        const char* const canonical = row.converter ? canonicalName(row.converter) : nullptr;
        if (wanted && canonical && std::strcmp(canonical, wanted) == 0)
            return row.encoding;
    }
    return kCFStringEncodingInvalidId;
}

} // namespace

CFStringEncoding CFStringGetSystemEncoding(void) {
    return kCFStringEncodingUTF8;
}
CFStringEncoding CFStringGetFileSystemEncoding(void) {
    return kCFStringEncodingUTF8;
}

CFStringEncoding CFStringGetFastestEncoding(CFStringRef string) {
    if (!cf::isString(string) || cf::hasFlag(string, _kCFStringIsASCII))
        return kCFStringEncodingASCII;
    return cf::hasFlag(string, _kCFStringIsWide) ? CFStringEncoding{kCFStringEncodingUTF16}
                                                 : CFStringEncoding{kCFStringEncodingISOLatin1};
}

CFStringEncoding CFStringGetSmallestEncoding(CFStringRef string) {
    const cf::Text text(cf::isString(string) ? string : nullptr);
    for (const CFStringEncoding encoding :
         {kCFStringEncodingASCII, kCFStringEncodingISOLatin1, kCFStringEncodingMacRoman})
        if (cf::encode(text, encoding, 0, cf::ByteOrderMark::Ignore, nullptr, 0).converted ==
            text.length())
            return encoding;
    return kCFStringEncodingUTF16;
}

Boolean CFStringIsEncodingAvailable(CFStringEncoding encoding) {
    return cf::findEncoding(encoding) != nullptr;
}

const CFStringEncoding* CFStringGetListOfAvailableEncodings(void) {
    // The table is constant, and so is what is copied out of it.
    static const auto list = [] {
        std::array<CFStringEncoding, cf::kMaximumEncodings> encodings;
        encodings.fill(kCFStringEncodingInvalidId);
        const auto rows = cf::encodingRows();
        std::ranges::transform(rows, encodings.begin(), &cf::EncodingRow::encoding);
        return encodings;
    }();
    return list.data();
}

CFStringRef CFStringGetNameOfEncoding(CFStringEncoding encoding) {
    const cf::EncodingRow* const row = cf::findEncoding(encoding);
    return row ? __CFStringMakeConstantString(row->name) : nullptr;
}

CFStringRef CFStringConvertEncodingToIANACharSetName(CFStringEncoding encoding) {
    const cf::EncodingRow* const row = cf::findEncoding(encoding);
    return row ? __CFStringMakeConstantString(row->charSetName) : nullptr;
}

CFStringEncoding CFStringConvertIANACharSetNameToEncoding(CFStringRef name) {
    char text[UCNV_MAX_CONVERTER_NAME_LENGTH];
    if (!CFStringGetCString(name, text, sizeof text, kCFStringEncodingASCII) || !*text)
        return kCFStringEncodingInvalidId;
    return encodingNamed(text);
}

UInt32 CFStringConvertEncodingToWindowsCodepage(CFStringEncoding encoding) {
    const cf::EncodingRow* const row = cf::findEncoding(encoding);
    return row && row->codepage != 0 ? row->codepage : kCFStringEncodingInvalidId;
}

CFStringEncoding CFStringConvertWindowsCodepageToEncoding(UInt32 codepage) {
    for (const auto& row : cf::encodingRows())
        if (row.codepage == codepage && codepage != 0)
            return row.encoding;
    return kCFStringEncodingInvalidId;
}

unsigned long CFStringConvertEncodingToNSStringEncoding(CFStringEncoding encoding) {
    for (const auto& row : kClassNumbers)
        if (row.encoding == encoding)
            return row.number;
    return kOtherNumbers | encoding;
}

CFStringEncoding CFStringConvertNSStringEncodingToEncoding(unsigned long encoding) {
    for (const auto& row : kClassNumbers)
        if (row.number == encoding)
            return row.encoding;
    return encoding & kOtherNumbers ? static_cast<CFStringEncoding>(encoding & ~kOtherNumbers)
                                    : kCFStringEncodingInvalidId;
}

CFStringEncoding CFStringGetMostCompatibleMacStringEncoding(CFStringEncoding encoding) {
    const cf::EncodingRow* const row = cf::findEncoding(encoding);
    return row ? row->macScript : kCFStringEncodingInvalidId;
}
