// CGImageSourceStatus.cpp: what kind of file a source has, and how much of it is there.

#include "CGImageSourceRecord.h"
#include <CoreFoundation/CFArray.h>

namespace {

using namespace imageio;

// No signature is longer.
constexpr std::size_t kSignatureSize = 12;

CGImageSourceStatus statusWithoutFormat(const Inspection& found, std::size_t size) {
    if (found.isGrowing && size < kSignatureSize)
        return kCGImageStatusReadingHeader;
    return kCGImageStatusUnknownType;
}

CGImageSourceStatus statusOf(const Inspection& found) {
    const FileBytes file(found.file.get());
    if (!found.format || !found.format->reader)
        return statusWithoutFormat(found, file.bytes().size());
    const bool isComplete = found.format->reader->isComplete(file.bytes());
    if (found.picture && isComplete)
        return kCGImageStatusComplete;
    if (found.isGrowing && !isComplete)
        return found.picture ? kCGImageStatusIncomplete : kCGImageStatusReadingHeader;
    return isComplete ? kCGImageStatusInvalidData : kCGImageStatusUnexpectedEOF;
}

} // namespace

CFArrayRef CGImageSourceCopyTypeIdentifiers(void) {
    const auto types = cf::adopt(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
    if (!types)
        return nullptr;
    for (const ImageFormat& format : imageFormats())
        if (format.reader)
            CFArrayAppendValue(types.get(), *format.type);
    return CFArrayCreateCopy(nullptr, types.get());
}

CFStringRef CGImageSourceGetType(CGImageSourceRef source) {
    if (!source)
        return nullptr;
    const Inspection found = source->inspect();
    if (found.format)
        return *found.format->type;
    // Too few bytes to tell: the hint is as good as anything.
    const FileBytes file(found.file.get());
    const bool mayHint = found.isGrowing && file.bytes().size() < kSignatureSize;
    const ImageFormat* const hinted = mayHint ? formatOfType(source->hint.get()) : nullptr;
    return hinted ? *hinted->type : nullptr;
}

size_t CGImageSourceGetCount(CGImageSourceRef source) {
    return source && source->inspect().picture ? 1 : 0;
}

size_t CGImageSourceGetPrimaryImageIndex(CGImageSourceRef) {
    return 0;
}

CGImageSourceStatus CGImageSourceGetStatus(CGImageSourceRef source) {
    return source ? statusOf(source->inspect()) : kCGImageStatusInvalidData;
}

CGImageSourceStatus CGImageSourceGetStatusAtIndex(CGImageSourceRef source, size_t index) {
    return index == 0 ? CGImageSourceGetStatus(source) : kCGImageStatusInvalidData;
}
