// FileTimes.cpp: the modification times of many files, folder by folder.

#include "FileTimes.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace host {

bool FileTimes::get(const std::string& path, double& seconds) {
    const std::size_t nameStart = path.rfind('/') + 1;
    if (nameStart <= 1 || nameStart == path.size())
        return HostFileGetModificationTime(path.c_str(), &seconds);
    if (path.compare(0, nameStart, folder_) != 0) {
        folder_.assign(path, 0, nameStart);
        descriptor_ = Descriptor(open(folder_.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    }
    if (!descriptor_)
        return HostFileGetModificationTime(path.c_str(), &seconds);
    struct stat status;
    if (fstatat(descriptor_.get(), path.c_str() + nameStart, &status, 0) != 0)
        return false;
    seconds = static_cast<double>(status.st_mtim.tv_sec) +
              static_cast<double>(status.st_mtim.tv_nsec) / 1e9;
    return true;
}

} // namespace host
