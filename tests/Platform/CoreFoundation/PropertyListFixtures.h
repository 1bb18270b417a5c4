// PropertyListFixtures.h: lists in all formats, as other programs write them.
#pragma once

#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFRef.h>

#include <string>
#include <string_view>

namespace test {

// The bytes that pairs of hexadecimal digits stand for.
inline std::string bytesOfHex(std::string_view digits) {
    std::string bytes;
    for (size_t i = 0; i + 1 < digits.size(); i += 2)
        bytes.push_back(char(std::stoi(std::string(digits.substr(i, 2)), nullptr, 16)));
    return bytes;
}

inline cf::Ref<CFDataRef> makeData(std::string_view bytes) {
    return cf::adopt(
        CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(bytes.data()), CFIndex(bytes.size())));
}

// One list in two formats: a, an array of integers about the limits of their widths; b, true;
// c, 1.5; d, two bytes; e, a string beyond ASCII; f, ten seconds after the epoch; g, an empty
// dictionary; h, sixteen letters. The binary one was written by an independent program.
inline std::string binarySample() {
    return bytesOfHex(
        "62706c6973743030d80102030405060708091011121314151651615162516351645165516651675168a60a0b"
        "0c0d0e0f100110ff110100120001000013000000010000000013ffffffffffffffff09233ff8000000000000"
        "4200ff6100e9334024000000000000d05f10107878787878787878787878787878787808191b1d1f21232527"
        "29303234373c454e4f585b5e6768000000000000010100000000000000170000000000000000000000000000"
        "007b");
}

inline std::string xmlSample() {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<!DOCTYPE plist PUBLIC \"-//X//DTD PLIST 1.0//EN\" \"http://h.invalid/[p].dtd\">\n"
           "<plist version=\"1.0\"><!-- a list --><dict>\n"
           "<key>a</key><array><integer>1</integer><integer> 0xFF </integer>\n"
           "<integer>+256</integer><integer>65536</integer><integer>4294967296</integer>\n"
           "<integer>-1</integer></array>\n"
           "<key>b</key><true/><key>c</key><real>15e-1</real>\n"
           "<key>d</key><data> AP\n 8= </data><key>e</key><string>&#xE9;</string>\n"
           "<key>f</key><date>2001-01-01T00:00:10Z</date><key>g</key><dict/>\n"
           "<key>h</key><string>xxxx<![CDATA[xxxxxxxxxxxx]]></string></dict></plist>\n";
}

inline std::string textSample() {
    return "// comment\n{ /* a */ list = (1, two, \"t\\\"h\\U00e9\\351\", ); data = <00 fF>;\n"
           "  'quo ted' = {}; path = /a/b.c-d_$; }\n";
}

} // namespace test
