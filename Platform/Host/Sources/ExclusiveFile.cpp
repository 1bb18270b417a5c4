// ExclusiveFile.cpp: files that one writer at a time may empty and fill.
//
// A lock goes with the file and not with its name. Who has waited for one may therefore hold a file
// that its writer has renamed meanwhile, and must not touch it: the name is looked up again.

#include <Host/ExclusiveFile.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>

namespace {

enum class Outcome { Taken, Busy, Impossible };

bool hasName(int descriptor, const char* path) {
    struct stat file;
    struct stat named;
    return fstat(descriptor, &file) == 0 && stat(path, &named) == 0 &&
           file.st_dev == named.st_dev && file.st_ino == named.st_ino;
}

Outcome take(int descriptor, const char* path) {
    if (HostFileGetSize(descriptor) < 0)
        return Outcome::Impossible;
    if (flock(descriptor, LOCK_EX | LOCK_NB) != 0)
        return errno == EWOULDBLOCK || errno == EINTR ? Outcome::Busy : Outcome::Impossible;
    if (!hasName(descriptor, path))
        return Outcome::Busy;
    return ftruncate(descriptor, 0) == 0 ? Outcome::Taken : Outcome::Impossible;
}

} // namespace

int HostFileOpenExclusively(const char* path, uint32_t milliseconds) {
    using Clock = std::chrono::steady_clock;
    if (!path)
        return -1;
    const auto deadline = Clock::now() + std::chrono::milliseconds(milliseconds);
    while (true) {
        // Not blocking, for the name may be a pipe's.
        const int descriptor = open(path, O_WRONLY | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0666);
        if (descriptor < 0 && errno != EINTR)
            return -1;
        const Outcome outcome = descriptor < 0 ? Outcome::Busy : take(descriptor, path);
        if (outcome == Outcome::Taken)
            return descriptor;
        HostFileClose(descriptor);
        if (outcome == Outcome::Impossible || Clock::now() >= deadline)
            return -1;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}
