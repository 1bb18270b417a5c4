// FileTimes.h: the modification times of many files, folder by folder.
#pragma once

#include <Host/Host.h>

#include <string>

namespace host {

// Looking up a path goes through all of its folders each time, which is most of the work for files
// that lie deep. The folder of the last file is kept open: files in the order of their paths need
// only their own names looked up.
class FileTimes {
public:
    // As HostFileGetModificationTime() tells it.
    bool get(const std::string& path, double& seconds);

private:
    std::string folder_; // With the slash at its end.
    Descriptor descriptor_;
};

} // namespace host
