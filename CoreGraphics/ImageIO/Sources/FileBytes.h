// FileBytes.h: a file's bytes in memory, while they are looked at.
#pragma once

#include "XGDataProvider.h"
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CGDataProvider.h>

#include "ImageHeader.h"

namespace imageio {

using Provider = cf::Ref<CGDataProviderRef>;

// `provider` itself when its bytes can be locked without reading a stream, else one over a copy of
// all it has. Nothing when there is nothing to read, or no memory for it.
Provider providerInMemory(CGDataProviderRef provider);

// Locks a provider's bytes for as long as it lives.
class FileBytes {
public:
    explicit FileBytes(CGDataProviderRef provider);
    ~FileBytes();
    FileBytes(const FileBytes&) = delete;
    FileBytes& operator=(const FileBytes&) = delete;

    // None when they could not be locked.
    Bytes bytes() const { return bytes_; }

private:
    CGDataProviderRef provider_;
    Bytes bytes_;
};

} // namespace imageio
