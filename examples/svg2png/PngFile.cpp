// PngFile.cpp: writes a picture to a PNG file.

#include "PngFile.h"

#include "Handles.h"

#include <ImageIO/ImageIO.h>
#include <MobileCoreServices/UTCoreTypes.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

namespace svg {

namespace {

using Data = std::unique_ptr<std::remove_pointer_t<CFMutableDataRef>, Releaser<CFRelease>>;
using Destination =
    std::unique_ptr<std::remove_pointer_t<CGImageDestinationRef>, Releaser<CFRelease>>;

// The file's bytes; none when there is no memory for them.
Data encode(CGContextRef context) {
    const Image image(CGBitmapContextCreateImage(context));
    Data data(CFDataCreateMutable(nullptr, 0));
    const Destination file(CGImageDestinationCreateWithData(data.get(), kUTTypePNG, 1, nullptr));
    CGImageDestinationAddImage(file.get(), image.get(), nullptr);
    return CGImageDestinationFinalize(file.get()) ? std::move(data) : nullptr;
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

    bool isOpen() const { return file_ != nullptr; }
    bool write(CFDataRef data) {
        const auto size = std::size_t(CFDataGetLength(data));
        return std::fwrite(CFDataGetBytePtr(data), 1, size, file_) == size;
    }

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

bool writePng(const std::string& fileName, CGContextRef context, std::string& error) {
    if (isSomethingElse(fileName)) {
        error = "cannot write: not a regular file";
        return false;
    }
    const Data data = encode(context);
    if (!data) {
        error = "no memory for the file";
        return false;
    }
    PartialFile file(fileName);
    if (file.isOpen() && file.write(data.get()) && file.finish())
        return true;
    error = std::string("cannot write: ") + std::strerror(errno);
    return false;
}

} // namespace svg
