// Rewriting.cpp: changing files at a position, at their end and as a whole.

#include <Host/Host.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>

namespace {

// What mkstemp makes is for the owner alone; a replacement is as open as the file it stands for.
void copyPermissions(const char* path, int descriptor) {
    struct stat status;
    if (stat(path, &status) == 0 && fchmod(descriptor, status.st_mode & 07777) != 0)
        errno = 0; // The stricter rights of the new file will do.
}

bool fill(int descriptor, const void* bytes, size_t size) {
    return HostFileWrite(descriptor, bytes, size) && fsync(descriptor) == 0;
}

} // namespace

int HostFileOpenForAppending(const char* path) {
    return path ? open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666) : -1;
}

bool HostFileSetPosition(int descriptor, int64_t offset) {
    return lseek(descriptor, offset, SEEK_SET) >= 0;
}

int64_t HostFileGetPosition(int descriptor) {
    return lseek(descriptor, 0, SEEK_CUR);
}

bool HostFileReplace(const char* path, const void* bytes, size_t size) {
    char temporary[PATH_MAX];
    if (!path || (!bytes && size > 0))
        return false;
    const int length = std::snprintf(temporary, sizeof temporary, "%s.XXXXXX", path);
    if (length < 0 || static_cast<size_t>(length) >= sizeof temporary)
        return false;
    const host::Descriptor file(mkostemp(temporary, O_CLOEXEC));
    if (!file)
        return false;
    copyPermissions(path, file.get());
    if (fill(file.get(), bytes, size) && rename(temporary, path) == 0)
        return true;
    const int reason = errno;
    unlink(temporary);
    errno = reason;
    return false;
}

bool HostFileRename(const char* path, const char* newPath) {
    return path && newPath && rename(path, newPath) == 0;
}
