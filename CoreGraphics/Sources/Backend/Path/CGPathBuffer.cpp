// CGPathBuffer.cpp: paths in flat memory, and their text dump.

#include "CGPathRecord.h"
#include "XGPath.h"
#include <CoreGraphics/CGPath.h>

#include "Core/Object/Diagnostics.h"

#include <cstring>
#include <optional>

// A buffer is what Skia writes of its path, whose size is a multiple of 4, then the flag word as it
// lies in memory.

size_t _CGPathWriteToBuffer(CGPathRef path, void* buffer) {
    if (!path)
        return 0;
    const size_t size = path->path.writeToMemory(buffer);
    if (buffer)
        std::memcpy(static_cast<char*>(buffer) + size, &path->flags, sizeof path->flags);
    return size + sizeof path->flags;
}

CGMutablePathRef _CGPathCreateFromBuffer(const void* buffer, size_t length) {
    uint32_t flags = 0;
    if (!buffer || length < sizeof flags) {
        CG_LOG_WARNING("%zu bytes at %p hold no path", length, buffer);
        return nullptr;
    }
    const size_t size = length - sizeof flags;
    std::memcpy(&flags, static_cast<const char*>(buffer) + size, sizeof flags);
    const CGMutablePathRef path = cg::createPath(flags);
    if (!path)
        return nullptr;

    if (const std::optional<SkPath> read = SkPath::ReadFromMemory(buffer, size)) {
        // A rule that we never write would fill the outside.
        const bool evenOdd = read->getFillType() == SkPathFillType::kEvenOdd;
        path->path = *read;
        path->path.setFillType(evenOdd ? SkPathFillType::kEvenOdd : SkPathFillType::kWinding);
        path->evenOddFlag = evenOdd;
        cg::settle(path->path);
    } else {
        CG_LOG_WARNING("%zu bytes at %p are no path", length, buffer);
    }
    return path;
}

void _CGPathDump(CGPathRef path) {
    if (path)
        path->path.dump();
}
