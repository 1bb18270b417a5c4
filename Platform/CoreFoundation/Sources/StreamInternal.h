// StreamInternal.h: what reading and writing streams have in common.
#pragma once

#include <CoreFoundation/CFNumber.h>
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFStream.h>
#include <Host/Host.h>

#include "CFURLInternal.h"

#include <cstdint>

namespace cf::stream {

// The state that every stream goes through, and the file it may have.
struct State {
    CFStreamStatus status = kCFStreamStatusNotOpen;
    Ref<CFErrorRef> error;
    Ref<CFURLRef> url; // Of a stream on a file.
    host::Descriptor file;
    int64_t offsetToSet = -1; // Given before the stream was opened.

    bool isOpen() const { return status == kCFStreamStatusOpen || status == kCFStreamStatusAtEnd; }
    // Enters the status Error for what the host refused, as errno tells; always false.
    bool fail();
    void close();

    // Takes over a descriptor that the host gave for the stream's file.
    bool openFile(int descriptor);
    Ref<CFTypeRef> copyOffset() const;
    bool setOffset(CFTypeRef value);
};

// The URL if it is a file's, else nothing.
Ref<CFURLRef> fileURL(CFURLRef url);

} // namespace cf::stream
