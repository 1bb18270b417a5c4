// CFStringEncodingTable.cpp: the encodings that can be converted, with their names and numbers.

#include "CFStringEncodingTable.h"

#include <algorithm>

namespace cf {

namespace {

constexpr auto kASCII = Shape::ASCII;
constexpr auto kOther = Shape::Other;

// The numbers of the Mac scripts that stand in the last but one column.
enum : uint8_t {
    kRoman = kCFStringEncodingMacRoman,
    kJapanese = kCFStringEncodingMacJapanese,
    kChineseTrad = kCFStringEncodingMacChineseTrad,
    kKorean = kCFStringEncodingMacKorean,
    kArabic = kCFStringEncodingMacArabic,
    kHebrew = kCFStringEncodingMacHebrew,
    kGreek = kCFStringEncodingMacGreek,
    kCyrillic = kCFStringEncodingMacCyrillic,
    kThai = kCFStringEncodingMacThai,
    kChineseSimp = kCFStringEncodingMacChineseSimp,
    kCentralEur = kCFStringEncodingMacCentralEurRoman,
    kVietnamese = kCFStringEncodingMacVietnamese,
    kTurkish = kCFStringEncodingMacTurkish,
    kUnicode = 0x7E,
};

// clang-format off
constexpr std::array kRows = {
    EncodingRow{kCFStringEncodingUTF8,              "UTF-8",                 "UTF-8",               "Unicode (UTF-8)",                         65001,  3, kUnicode,     kASCII},
    EncodingRow{kCFStringEncodingUTF16,             "UTF-16",                "UTF-16",              "Unicode (UTF-16)",                         1200,  2, kUnicode,     kOther},
    EncodingRow{kCFStringEncodingUTF16BE,           "UTF-16BE",              "UTF-16BE",            "Unicode (UTF-16BE)",                       1201,  2, kUnicode,     kOther},
    EncodingRow{kCFStringEncodingUTF16LE,           "UTF-16LE",              "UTF-16LE",            "Unicode (UTF-16LE)",                       1200,  2, kUnicode,     kOther},
    EncodingRow{kCFStringEncodingUTF32,             "UTF-32",                "UTF-32",              "Unicode (UTF-32)",                        12000,  4, kUnicode,     kOther},
    EncodingRow{kCFStringEncodingUTF32BE,           "UTF-32BE",              "UTF-32BE",            "Unicode (UTF-32BE)",                      12001,  4, kUnicode,     kOther},
    EncodingRow{kCFStringEncodingUTF32LE,           "UTF-32LE",              "UTF-32LE",            "Unicode (UTF-32LE)",                      12000,  4, kUnicode,     kOther},
    EncodingRow{kCFStringEncodingUTF7,              "UTF-7",                 "UTF-7",               "Unicode (UTF-7)",                         65000,  8, kUnicode,     kOther},
    EncodingRow{kCFStringEncodingUTF7_IMAP,         "IMAP-mailbox-name",     nullptr,               "Unicode (UTF-7 for IMAP)",                    0,  8, kUnicode,     kOther},
    EncodingRow{kCFStringEncodingASCII,             "US-ASCII",              "US-ASCII",            "Western (ASCII)",                         20127,  1, kRoman,       kASCII},
    EncodingRow{kCFStringEncodingNonLossyASCII,     nullptr,                 nullptr,               "Non-lossy ASCII",                             0,  6, kRoman,       kOther},
    EncodingRow{kCFStringEncodingISOLatin1,         "ISO-8859-1",            "ISO-8859-1",          "Western (ISO Latin 1)",                   28591,  1, kRoman,       kASCII},
    EncodingRow{kCFStringEncodingMacRoman,          "macintosh",             "macintosh",           "Western (Mac OS Roman)",                  10000,  1, kRoman,       kASCII},
    EncodingRow{kCFStringEncodingNextStepLatin,     nullptr,                 "x-nextstep",          "Western (NextStep)",                          0,  1, kRoman,       kASCII},
    EncodingRow{kCFStringEncodingWindowsLatin1,     "windows-1252",          "windows-1252",        "Western (Windows Latin 1)",                1252,  1, kRoman,       kASCII},
    EncodingRow{kCFStringEncodingISOLatin2,         "iso-8859-2",            "ISO-8859-2",          "Central European (ISO Latin 2)",          28592,  1, kCentralEur,  kASCII},
    EncodingRow{kCFStringEncodingISOLatin3,         "iso-8859-3",            "ISO-8859-3",          "Western (ISO Latin 3)",                   28593,  1, kTurkish,     kASCII},
    EncodingRow{kCFStringEncodingISOLatin4,         "iso-8859-4",            "ISO-8859-4",          "Central European (ISO Latin 4)",          28594,  1, kCentralEur,  kASCII},
    EncodingRow{kCFStringEncodingISOLatinCyrillic,  "iso-8859-5",            "ISO-8859-5",          "Cyrillic (ISO 8859-5)",                   28595,  1, kCyrillic,    kASCII},
    EncodingRow{kCFStringEncodingISOLatinArabic,    "iso-8859-6",            "ISO-8859-6",          "Arabic (ISO 8859-6)",                     28596,  1, kArabic,      kASCII},
    EncodingRow{kCFStringEncodingISOLatinGreek,     "iso-8859-7",            "ISO-8859-7",          "Greek (ISO 8859-7)",                      28597,  1, kGreek,       kASCII},
    EncodingRow{kCFStringEncodingISOLatinHebrew,    "iso-8859-8",            "ISO-8859-8",          "Hebrew (ISO 8859-8)",                     28598,  1, kHebrew,      kASCII},
    EncodingRow{kCFStringEncodingISOLatin5,         "iso-8859-9",            "ISO-8859-9",          "Turkish (ISO Latin 5)",                   28599,  1, kTurkish,     kASCII},
    EncodingRow{kCFStringEncodingISOLatin6,         "iso-8859-10",           "ISO-8859-10",         "Nordic (ISO Latin 6)",                    28600,  1, kRoman,       kASCII},
    EncodingRow{kCFStringEncodingISOLatinThai,      "iso-8859-11",           "ISO-8859-11",         "Thai (ISO 8859-11)",                      28601,  1, kThai,        kASCII},
    EncodingRow{kCFStringEncodingISOLatin7,         "iso-8859-13",           "ISO-8859-13",         "Baltic (ISO Latin 7)",                    28603,  1, kCentralEur,  kASCII},
    EncodingRow{kCFStringEncodingISOLatin8,         "iso-8859-14",           "ISO-8859-14",         "Celtic (ISO Latin 8)",                    28604,  1, kRoman,       kASCII},
    EncodingRow{kCFStringEncodingISOLatin9,         "iso-8859-15",           "ISO-8859-15",         "Western (ISO Latin 9)",                   28605,  1, kRoman,       kASCII},
    EncodingRow{kCFStringEncodingWindowsLatin2,     "windows-1250",          "windows-1250",        "Central European (Windows Latin 2)",       1250,  1, kCentralEur,  kASCII},
    EncodingRow{kCFStringEncodingWindowsCyrillic,   "windows-1251",          "windows-1251",        "Cyrillic (Windows)",                       1251,  1, kCyrillic,    kASCII},
    EncodingRow{kCFStringEncodingWindowsGreek,      "windows-1253",          "windows-1253",        "Greek (Windows)",                          1253,  1, kGreek,       kASCII},
    EncodingRow{kCFStringEncodingWindowsLatin5,     "windows-1254",          "windows-1254",        "Turkish (Windows Latin 5)",                1254,  1, kTurkish,     kASCII},
    EncodingRow{kCFStringEncodingWindowsHebrew,     "windows-1255",          "windows-1255",        "Hebrew (Windows)",                         1255,  1, kHebrew,      kASCII},
    EncodingRow{kCFStringEncodingWindowsArabic,     "windows-1256",          "windows-1256",        "Arabic (Windows)",                         1256,  1, kArabic,      kASCII},
    EncodingRow{kCFStringEncodingWindowsBalticRim,  "windows-1257",          "windows-1257",        "Baltic (Windows)",                         1257,  1, kCentralEur,  kASCII},
    EncodingRow{kCFStringEncodingWindowsVietnamese, "windows-1258",          "windows-1258",        "Vietnamese (Windows)",                     1258,  1, kVietnamese,  kASCII},
    EncodingRow{kCFStringEncodingDOSLatinUS,        "ibm-437",               "IBM437",              "Latin-US (DOS)",                            437,  1, kRoman,       kASCII},
    EncodingRow{kCFStringEncodingDOSGreek,          "ibm-737",               "cp737",               "Greek (DOS)",                               737,  1, kGreek,       kASCII},
    EncodingRow{kCFStringEncodingDOSBalticRim,      "ibm-775",               "IBM775",              "Baltic (DOS)",                              775,  1, kCentralEur,  kASCII},
    EncodingRow{kCFStringEncodingDOSLatin1,         "ibm-850",               "IBM850",              "Western (DOS Latin 1)",                     850,  1, kRoman,       kASCII},
    EncodingRow{kCFStringEncodingDOSGreek1,         "ibm-851",               "IBM851",              "Greek (DOS Greek 1)",                       851,  1, kGreek,       kASCII},
    EncodingRow{kCFStringEncodingDOSLatin2,         "ibm-852",               "IBM852",              "Central European (DOS Latin 2)",            852,  1, kCentralEur,  kASCII},
    EncodingRow{kCFStringEncodingDOSCyrillic,       "ibm-855",               "IBM855",              "Cyrillic (DOS)",                            855,  1, kCyrillic,    kASCII},
    EncodingRow{kCFStringEncodingDOSTurkish,        "ibm-857",               "IBM857",              "Turkish (DOS)",                             857,  1, kTurkish,     kASCII},
    EncodingRow{kCFStringEncodingDOSPortuguese,     "ibm-860",               "IBM860",              "Portuguese (DOS)",                          860,  1, kRoman,       kASCII},
    EncodingRow{kCFStringEncodingDOSIcelandic,      "ibm-861",               "IBM861",              "Icelandic (DOS)",                           861,  1, kRoman,       kASCII},
    EncodingRow{kCFStringEncodingDOSHebrew,         "ibm-862",               "IBM862",              "Hebrew (DOS)",                              862,  1, kHebrew,      kASCII},
    EncodingRow{kCFStringEncodingDOSCanadianFrench, "ibm-863",               "IBM863",              "Canadian French (DOS)",                     863,  1, kRoman,       kASCII},
    EncodingRow{kCFStringEncodingDOSArabic,         "ibm-864",               "IBM864",              "Arabic (DOS)",                              864,  1, kArabic,      kOther},
    EncodingRow{kCFStringEncodingDOSNordic,         "ibm-865",               "IBM865",              "Nordic (DOS)",                              865,  1, kRoman,       kASCII},
    EncodingRow{kCFStringEncodingDOSRussian,        "ibm-866",               "IBM866",              "Russian (DOS)",                             866,  1, kCyrillic,    kASCII},
    EncodingRow{kCFStringEncodingDOSGreek2,         "ibm-869",               "IBM869",              "Greek (DOS Greek 2)",                       869,  1, kGreek,       kASCII},
    EncodingRow{kCFStringEncodingDOSThai,           "windows-874",           "TIS-620",             "Thai (Windows, DOS)",                       874,  1, kThai,        kASCII},
    EncodingRow{kCFStringEncodingDOSJapanese,       "windows-932",           "Windows-31J",         "Japanese (Windows, DOS)",                   932,  2, kJapanese,    kASCII},
    EncodingRow{kCFStringEncodingDOSChineseSimplif, "windows-936",           "CP936",               "Simplified Chinese (Windows, DOS)",         936,  2, kChineseSimp, kASCII},
    EncodingRow{kCFStringEncodingDOSKorean,         "windows-949",           "KS_C_5601-1987",      "Korean (Windows, DOS)",                     949,  2, kKorean,      kASCII},
    EncodingRow{kCFStringEncodingDOSChineseTrad,    "windows-950",           "CP950",               "Traditional Chinese (Windows, DOS)",        950,  2, kChineseTrad, kASCII},
    EncodingRow{kCFStringEncodingShiftJIS,          "Shift_JIS",             "Shift_JIS",           "Japanese (Shift JIS)",                      932,  2, kJapanese,    kASCII},
    EncodingRow{kCFStringEncodingEUC_JP,            "EUC-JP",                "EUC-JP",              "Japanese (EUC)",                          51932,  3, kJapanese,    kASCII},
    EncodingRow{kCFStringEncodingISO_2022_JP,       "ISO-2022-JP",           "ISO-2022-JP",         "Japanese (ISO 2022-JP)",                  50220, 12, kJapanese,    kOther},
    EncodingRow{kCFStringEncodingISO_2022_JP_1,     "ISO-2022-JP-1",         "ISO-2022-JP-1",       "Japanese (ISO 2022-JP-1)",                    0, 12, kJapanese,    kOther},
    EncodingRow{kCFStringEncodingISO_2022_JP_2,     "ISO-2022-JP-2",         "ISO-2022-JP-2",       "Japanese (ISO 2022-JP-2)",                    0, 12, kJapanese,    kOther},
    EncodingRow{kCFStringEncodingEUC_CN,            "EUC-CN",                "GB2312",              "Simplified Chinese (GB 2312)",            51936,  2, kChineseSimp, kASCII},
    EncodingRow{kCFStringEncodingGBK_95,            "GBK",                   "GBK",                 "Simplified Chinese (GBK)",                  936,  2, kChineseSimp, kASCII},
    EncodingRow{kCFStringEncodingGB_18030_2000,     "gb18030",               "GB18030",             "Chinese (GB 18030)",                      54936,  4, kChineseSimp, kASCII},
    EncodingRow{kCFStringEncodingHZ_GB_2312,        "HZ",                    "HZ-GB-2312",          "Simplified Chinese (HZ GB 2312)",         52936,  8, kChineseSimp, kOther},
    EncodingRow{kCFStringEncodingISO_2022_CN,       "ISO-2022-CN",           "ISO-2022-CN",         "Simplified Chinese (ISO 2022-CN)",        50227, 12, kChineseSimp, kOther},
    EncodingRow{kCFStringEncodingISO_2022_CN_EXT,   "ISO-2022-CN-EXT",       "ISO-2022-CN-EXT",     "Simplified Chinese (ISO 2022-CN-EXT)",        0, 12, kChineseSimp, kOther},
    EncodingRow{kCFStringEncodingBig5,              "Big5",                  "Big5",                "Traditional Chinese (Big 5)",               950,  2, kChineseTrad, kASCII},
    EncodingRow{kCFStringEncodingBig5_HKSCS_1999,   "Big5-HKSCS",            "Big5-HKSCS",          "Traditional Chinese (Big 5 HKSCS)",           0,  2, kChineseTrad, kASCII},
    EncodingRow{kCFStringEncodingEUC_TW,            "EUC-TW",                "EUC-TW",              "Traditional Chinese (EUC)",               51950,  4, kChineseTrad, kASCII},
    EncodingRow{kCFStringEncodingEUC_KR,            "EUC-KR",                "EUC-KR",              "Korean (EUC)",                            51949,  2, kKorean,      kASCII},
    EncodingRow{kCFStringEncodingISO_2022_KR,       "ISO-2022-KR",           "ISO-2022-KR",         "Korean (ISO 2022-KR)",                    50225, 12, kKorean,      kOther},
    EncodingRow{kCFStringEncodingKOI8_R,            "KOI8-R",                "KOI8-R",              "Cyrillic (KOI8-R)",                       20866,  1, kCyrillic,    kASCII},
    EncodingRow{kCFStringEncodingKOI8_U,            "KOI8-U",                "KOI8-U",              "Ukrainian (KOI8-U)",                      21866,  1, kCyrillic,    kASCII},
    EncodingRow{kCFStringEncodingEBCDIC_CP037,      "ibm-37",                "IBM037",              "Western (EBCDIC Latin 1)",                   37,  1, kRoman,       kOther},
    EncodingRow{kCFStringEncodingMacGreek,          "x-mac-greek",           "x-mac-greek",         "Greek (Mac OS)",                          10006,  1, kGreek,       kASCII},
    EncodingRow{kCFStringEncodingMacCyrillic,       "x-mac-cyrillic",        "x-mac-cyrillic",      "Cyrillic (Mac OS)",                       10007,  1, kCyrillic,    kASCII},
    EncodingRow{kCFStringEncodingMacUkrainian,      "x-mac-cyrillic",        "x-mac-ukrainian",     "Ukrainian (Mac OS)",                      10017,  1, kCyrillic,    kASCII},
    EncodingRow{kCFStringEncodingMacCentralEurRoman, "x-mac-centraleurroman", "x-mac-ce",            "Central European (Mac OS)",               10029,  1, kCentralEur,  kASCII},
    EncodingRow{kCFStringEncodingMacTurkish,        "x-mac-turkish",         "x-mac-turkish",       "Turkish (Mac OS)",                        10081,  1, kTurkish,     kASCII},
    EncodingRow{kCFStringEncodingMacJapanese,       "Shift_JIS",             "x-mac-japanese",      "Japanese (Mac OS)",                       10001,  2, kJapanese,    kASCII},
    EncodingRow{kCFStringEncodingMacChineseTrad,    "Big5",                  "x-mac-trad-chinese",  "Traditional Chinese (Mac OS)",            10002,  2, kChineseTrad, kASCII},
    EncodingRow{kCFStringEncodingMacKorean,         "EUC-KR",                "x-mac-korean",        "Korean (Mac OS)",                         10003,  2, kKorean,      kASCII},
    EncodingRow{kCFStringEncodingMacChineseSimp,    "GBK",                   "x-mac-simp-chinese",  "Simplified Chinese (Mac OS)",             10008,  2, kChineseSimp, kASCII},
};
// clang-format on

static_assert(kRows.size() < kMaximumEncodings);

} // namespace

std::span<const EncodingRow> encodingRows() {
    return kRows;
}

const EncodingRow* findEncoding(CFStringEncoding encoding) {
    const auto found = std::ranges::find(kRows, encoding, &EncodingRow::encoding);
    return found == kRows.end() ? nullptr : &*found;
}

// clang-format off

// Mac OS Roman as of the euro sign; 0xF0 is the private-use character of that set.
constinit const HighHalf kMacRomanHighHalf = {
    0x00C4, 0x00C5, 0x00C7, 0x00C9, 0x00D1, 0x00D6, 0x00DC, 0x00E1,
    0x00E0, 0x00E2, 0x00E4, 0x00E3, 0x00E5, 0x00E7, 0x00E9, 0x00E8,
    0x00EA, 0x00EB, 0x00ED, 0x00EC, 0x00EE, 0x00EF, 0x00F1, 0x00F3,
    0x00F2, 0x00F4, 0x00F6, 0x00F5, 0x00FA, 0x00F9, 0x00FB, 0x00FC,
    0x2020, 0x00B0, 0x00A2, 0x00A3, 0x00A7, 0x2022, 0x00B6, 0x00DF,
    0x00AE, 0x00A9, 0x2122, 0x00B4, 0x00A8, 0x2260, 0x00C6, 0x00D8,
    0x221E, 0x00B1, 0x2264, 0x2265, 0x00A5, 0x00B5, 0x2202, 0x2211,
    0x220F, 0x03C0, 0x222B, 0x00AA, 0x00BA, 0x03A9, 0x00E6, 0x00F8,
    0x00BF, 0x00A1, 0x00AC, 0x221A, 0x0192, 0x2248, 0x2206, 0x00AB,
    0x00BB, 0x2026, 0x00A0, 0x00C0, 0x00C3, 0x00D5, 0x0152, 0x0153,
    0x2013, 0x2014, 0x201C, 0x201D, 0x2018, 0x2019, 0x00F7, 0x25CA,
    0x00FF, 0x0178, 0x2044, 0x20AC, 0x2039, 0x203A, 0xFB01, 0xFB02,
    0x2021, 0x00B7, 0x201A, 0x201E, 0x2030, 0x00C2, 0x00CA, 0x00C1,
    0x00CB, 0x00C8, 0x00CD, 0x00CE, 0x00CF, 0x00CC, 0x00D3, 0x00D4,
    0xF8FF, 0x00D2, 0x00DA, 0x00DB, 0x00D9, 0x0131, 0x02C6, 0x02DC,
    0x00AF, 0x02D8, 0x02D9, 0x02DA, 0x00B8, 0x02DD, 0x02DB, 0x02C7,
};

// The NextStep set; its last two bytes stand for nothing.
constinit const HighHalf kNextStepHighHalf = {
    0x00A0, 0x00C0, 0x00C1, 0x00C2, 0x00C3, 0x00C4, 0x00C5, 0x00C7,
    0x00C8, 0x00C9, 0x00CA, 0x00CB, 0x00CC, 0x00CD, 0x00CE, 0x00CF,
    0x00D0, 0x00D1, 0x00D2, 0x00D3, 0x00D4, 0x00D5, 0x00D6, 0x00D9,
    0x00DA, 0x00DB, 0x00DC, 0x00DD, 0x00DE, 0x00B5, 0x00D7, 0x00F7,
    0x00A9, 0x00A1, 0x00A2, 0x00A3, 0x2044, 0x00A5, 0x0192, 0x00A7,
    0x00A4, 0x2019, 0x201C, 0x00AB, 0x2039, 0x203A, 0xFB01, 0xFB02,
    0x00AE, 0x2013, 0x2020, 0x2021, 0x00B7, 0x00A6, 0x00B6, 0x2022,
    0x201A, 0x201E, 0x201D, 0x00BB, 0x2026, 0x2030, 0x00AC, 0x00BF,
    0x00B9, 0x02CB, 0x00B4, 0x02C6, 0x02DC, 0x00AF, 0x02D8, 0x02D9,
    0x00A8, 0x00B2, 0x02DA, 0x00B8, 0x00B3, 0x02DD, 0x02DB, 0x02C7,
    0x2014, 0x00B1, 0x00BC, 0x00BD, 0x00BE, 0x00E0, 0x00E1, 0x00E2,
    0x00E3, 0x00E4, 0x00E5, 0x00E7, 0x00E8, 0x00E9, 0x00EA, 0x00EB,
    0x00EC, 0x00C6, 0x00ED, 0x00AA, 0x00EE, 0x00EF, 0x00F0, 0x00F1,
    0x0141, 0x00D8, 0x0152, 0x00BA, 0x00F2, 0x00F3, 0x00F4, 0x00F5,
    0x00F6, 0x00E6, 0x00F9, 0x00FA, 0x00FB, 0x0131, 0x00FC, 0x00FD,
    0x0142, 0x00F8, 0x0153, 0x00DF, 0x00FE, 0x00FF, 0xFFFD, 0xFFFD,
};

// clang-format on

} // namespace cf
