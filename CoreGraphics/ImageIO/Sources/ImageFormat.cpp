// ImageFormat.cpp: the table of formats.

#include "ImageFormat.h"

#include <CoreFoundation/CFString.h>

#include "ImageReader.h"
#include "JpegWriter.h"
#include "PngWriter.h"

#include <MobileCoreServices/UTCoreTypes.h>

#include <cstring>
#include <string_view>

namespace imageio {
namespace {

bool beginsWith(std::span<const std::byte> head, std::string_view signature) {
    return head.size() >= signature.size() &&
           std::memcmp(head.data(), signature.data(), signature.size()) == 0;
}

bool isPng(std::span<const std::byte> head) {
    return beginsWith(head, "\x89PNG\r\n\x1A\n");
}
bool isJpeg(std::span<const std::byte> head) {
    return beginsWith(head, "\xFF\xD8\xFF");
}

// A box file, or the codestream alone.
bool isJpeg2000(std::span<const std::byte> head) {
    using namespace std::string_view_literals;
    return beginsWith(head, "\0\0\0\x0CjP  \r\n\x87\n"sv) || beginsWith(head, "\xFF\x4F\xFF\x51"sv);
}

constexpr ImageFormat kFormats[] = {
    {&kUTTypePNG, {"png"}, isPng, &kPngReader, writePng},
    {&kUTTypeJPEG, {"jpg", "jpeg", "jpe", "jfif"}, isJpeg, &kJpegReader, writeJpeg},
    {&kUTTypeJPEG2000,
     {"jp2", "j2k", "jpf", "jpx", "j2c", "jpc"},
     isJpeg2000,
     &kJpeg2000Reader,
     nullptr},
};

} // namespace

std::span<const ImageFormat> imageFormats() {
    return kFormats;
}

const ImageFormat* formatOfType(CFStringRef type) {
    for (const ImageFormat& format : kFormats)
        if (type && CFEqual(type, *format.type))
            return &format;
    return nullptr;
}

const ImageFormat* formatOfBytes(std::span<const std::byte> head) {
    for (const ImageFormat& format : kFormats)
        if (format.hasSignature(head))
            return &format;
    return nullptr;
}

} // namespace imageio
