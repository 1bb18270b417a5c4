// Files.cpp: descriptors, reading, writing and mapping.

#include <Host/Host.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <optional>

namespace {

// Repeats a system call that a signal has interrupted.
template <typename Call>
auto retrying(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

std::optional<struct stat> statusOf(const char* path) {
    struct stat status;
    if (!path || stat(path, &status) != 0)
        return std::nullopt;
    return status;
}

// Calls `readSome(bytes, size, done)` until `size` bytes are there or the file ends.
template <typename ReadSome>
int64_t readFully(void* buffer, size_t size, ReadSome readSome) {
    constexpr auto most = static_cast<size_t>(std::numeric_limits<ssize_t>::max());
    size = std::min(size, most);
    size_t done = 0;
    while (done < size) {
        const ssize_t count = retrying(
            [&] { return readSome(static_cast<std::byte*>(buffer) + done, size - done, done); });
        if (count < 0)
            return -1;
        if (count == 0)
            break;
        done += static_cast<size_t>(count);
    }
    return static_cast<int64_t>(done);
}

} // namespace

int HostFileOpenForReading(const char* path) {
    return path ? retrying([&] { return open(path, O_RDONLY | O_CLOEXEC); }) : -1;
}

int HostFileOpenForWriting(const char* path) {
    return path ? retrying(
                      [&] { return open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666); })
                : -1;
}

void HostFileClose(int descriptor) {
    if (descriptor >= 0)
        close(descriptor);
}

int64_t HostFileGetSize(int descriptor) {
    struct stat status;
    const bool regular = fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
    return regular ? static_cast<int64_t>(status.st_size) : -1;
}

int64_t HostFileReadAt(int descriptor, void* buffer, size_t size, int64_t offset) {
    if (!buffer || offset < 0 ||
        size > static_cast<size_t>(std::numeric_limits<int64_t>::max() - offset))
        return -1;
    return readFully(buffer, size, [&](void* bytes, size_t rest, size_t done) {
        return pread(descriptor, bytes, rest, offset + static_cast<off_t>(done));
    });
}

int64_t HostFileRead(int descriptor, void* buffer, size_t size) {
    if (!buffer)
        return -1;
    return readFully(buffer, size, [&](void* bytes, size_t rest, size_t) {
        return read(descriptor, bytes, rest);
    });
}

bool HostFileWrite(int descriptor, const void* bytes, size_t size) {
    if (!bytes && size > 0)
        return false;
    const auto* next = static_cast<const std::byte*>(bytes);
    while (size > 0) {
        const ssize_t count = retrying([&] { return write(descriptor, next, size); });
        if (count < 0)
            return false;
        next += count;
        size -= static_cast<size_t>(count);
    }
    return true;
}

bool HostFileMap(int descriptor, HostMapping* mapping) {
    if (!mapping)
        return false;
    *mapping = {nullptr, 0};
    const int64_t size = HostFileGetSize(descriptor);
    if (size <= 0)
        return size == 0;
    if (static_cast<uint64_t>(size) > std::numeric_limits<size_t>::max())
        return false;
    void* const bytes =
        mmap(nullptr, static_cast<size_t>(size), PROT_READ, MAP_PRIVATE, descriptor, 0);
    if (bytes == MAP_FAILED)
        return false;
    *mapping = {bytes, static_cast<size_t>(size)};
    return true;
}

void HostFileUnmap(HostMapping* mapping) {
    if (!mapping)
        return;
    if (mapping->bytes)
        munmap(const_cast<void*>(mapping->bytes), mapping->size);
    *mapping = {nullptr, 0};
}

bool HostFileGetModificationTime(const char* path, double* seconds) {
    const auto status = statusOf(path);
    if (!status)
        return false;
    if (seconds)
        *seconds = static_cast<double>(status->st_mtim.tv_sec) +
                   static_cast<double>(status->st_mtim.tv_nsec) / 1e9;
    return true;
}

bool HostFileExists(const char* path) {
    return statusOf(path).has_value();
}

bool HostFileIsDirectory(const char* path) {
    const auto status = statusOf(path);
    return status && S_ISDIR(status->st_mode);
}
