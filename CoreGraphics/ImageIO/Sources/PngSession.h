// PngSession.h: one reading of a PNG file with libpng.
#pragma once

#include "ImageHeader.h"

#include <png.h>

namespace imageio {

enum class PngMetadata { None, Header, All };

// libpng leaves its functions by longjmp when a file is damaged. Every such jump ends in the member
// function that called libpng, which holds nothing that would have to be destroyed; what must be
// freed belongs to the session.
class PngSession {
public:
    PngSession(Bytes file, PngMetadata metadata);
    ~PngSession();
    PngSession(const PngSession&) = delete;
    PngSession& operator=(const PngSession&) = delete;

    // Reads up to the pixels. The getters of libpng work on png() and info() from then on.
    bool readInfo();
    // Decodes into `pixels` in the layout of `header`; how many rows, counted from the top,
    // have been written to. Before it, readInfo() has succeeded.
    std::size_t readRows(const ImageHeader& header, std::uint8_t* pixels);

    png_structp png() const { return png_; }
    png_infop info() const { return info_; }

private:
    static void read(png_structp png, png_bytep out, std::size_t count);
    void ignore(PngMetadata metadata);
    void ignoreBrokenChunk();
    void configure(const ImageHeader& header);
    void readPass(const ImageHeader& header, std::uint8_t* pixels);

    Bytes file_;
    std::size_t position_ = 0;
    std::size_t rowsRead_ = 0;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
};

} // namespace imageio
