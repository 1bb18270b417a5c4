// PngFile.cpp: writes a bitmap to a PNG file.

#include "PngFile.h"

#include <png.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>
#include <vector>

namespace svg {

namespace {

// Rounded to nearest. Of a transparent pixel no colour is left.
std::uint8_t unpremultiply(unsigned component, unsigned alpha) {
    return alpha == 0 ? 0 : std::uint8_t(std::min(255u, (component * 255 + alpha / 2) / alpha));
}

// The same picture with red first, rows without gaps.
std::vector<std::uint8_t> toRgba(const Bitmap& bitmap) {
    std::vector<std::uint8_t> result;
    result.reserve(bitmap.width * bitmap.height * 4);
    for (std::size_t y = 0; y < bitmap.height; ++y) {
        const std::uint8_t* pixel = bitmap.pixels + y * bitmap.bytesPerRow;
        for (std::size_t x = 0; x < bitmap.width; ++x, pixel += 4) {
            const unsigned alpha = pixel[3];
            for (const unsigned component : {pixel[2], pixel[1], pixel[0]})
                result.push_back(unpremultiply(component, alpha));
            result.push_back(std::uint8_t(alpha));
        }
    }
    return result;
}

// A file beside the wanted one that takes its name at the end, and vanishes if that never comes.
class PartialFile {
public:
    explicit PartialFile(const std::string& fileName)
        : target_(fileName), name_(fileName + ".partial-" + std::to_string(getpid())),
          file_(std::fopen(name_.c_str(), "wbx")) {}

    ~PartialFile() {
        if (!file_)
            return;
        std::fclose(file_);
        std::remove(name_.c_str());
    }

    PartialFile(const PartialFile&) = delete;
    PartialFile& operator=(const PartialFile&) = delete;

    std::FILE* get() const { return file_; }

    // Gives the file its name. Closing may fail as well, when the last bytes find no room.
    bool finish() {
        std::FILE* file = file_;
        file_ = nullptr;
        if (std::fclose(file) == 0 && std::rename(name_.c_str(), target_.c_str()) == 0)
            return true;
        const int error = errno;
        std::remove(name_.c_str());
        errno = error;
        return false;
    }

private:
    std::string target_;
    std::string name_;
    std::FILE* file_;
};

// Renaming would replace a directory's or a device's name by a file.
bool isSomethingElse(const std::string& fileName) {
    struct stat status = {};
    return stat(fileName.c_str(), &status) == 0 && !S_ISREG(status.st_mode);
}

} // namespace

bool writePng(const std::string& fileName, const Bitmap& bitmap, std::string& error) {
    if (isSomethingElse(fileName)) {
        error = "cannot write: not a regular file";
        return false;
    }
    PartialFile file(fileName);
    if (!file.get()) {
        error = std::string("cannot write: ") + std::strerror(errno);
        return false;
    }
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = png_uint_32(bitmap.width);
    image.height = png_uint_32(bitmap.height);
    image.format = PNG_FORMAT_RGBA;
    const std::vector<std::uint8_t> pixels = toRgba(bitmap);
    const auto bytesPerRow = png_int_32(bitmap.width * 4);
    if (!png_image_write_to_stdio(&image, file.get(), 0, pixels.data(), bytesPerRow, nullptr)) {
        error = std::string("cannot write: ") + image.message;
        return false;
    }
    if (!file.finish()) {
        error = std::string("cannot write: ") + std::strerror(errno);
        return false;
    }
    return true;
}

} // namespace svg
