// FaceOpener.h: faces from files and providers, through the process's one FreeType library.
#pragma once

#include "XGDataReader.h"
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CGDataProvider.h>

#include <ft2build.h>
#include FT_FREETYPE_H

#include <cstdint>
#include <memory>
#include <type_traits>

namespace fm {

// A provider as FreeType reads it. It must not move, and outlives the face.
class FaceStream {
public:
    // NULL when the contents can be neither measured nor had at once.
    static std::unique_ptr<FaceStream> create(CGDataProviderRef provider);
    ~FaceStream();
    FaceStream(const FaceStream&) = delete;
    FaceStream& operator=(const FaceStream&) = delete;

    FT_Stream native() { return &native_; }

private:
    FaceStream() = default;
    static unsigned long read(FT_Stream native, unsigned long offset, unsigned char* buffer,
                              unsigned long count);
    static void close(FT_Stream native);

    bool prepare();
    void unlock();

    FT_StreamRec native_{};
    cf::Ref<XGDataReaderRef> reader_;
    bool locked_ = false;
};

// Opens and closes under the process-wide FreeType lock, which nothing else holds: all other calls
// on a face need only whatever guards that face. NULL when there is no such face.
FT_Face openFaceOfFile(const char* path, std::int64_t faceIndex);
FT_Face openFaceOfStream(FaceStream& stream, std::int64_t faceIndex);
void closeFace(FT_Face face);

// A face that belongs to a scope until it is released to a font.
struct CloseFace {
    void operator()(FT_Face face) const { closeFace(face); }
};
using FacePtr = std::unique_ptr<std::remove_pointer_t<FT_Face>, CloseFace>;

} // namespace fm
