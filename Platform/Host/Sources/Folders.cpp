// Folders.cpp: making and listing folders, and those that the host itself names.

#include <Host/Host.h>

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

// Empties the buffer when the text does not fit.
bool answer(std::string_view text, char* buffer, size_t capacity) {
    if (!buffer || capacity == 0)
        return false;
    const bool fits = !text.empty() && text.size() < capacity;
    const size_t length = fits ? text.size() : 0;
    std::copy_n(text.data(), length, buffer);
    buffer[length] = '\0';
    return fits;
}

} // namespace

bool HostDirectoryCreate(const char* path) {
    char part[PATH_MAX];
    if (!path || !answer(path, part, sizeof part))
        return false;
    for (char* slash = std::strchr(part + 1, '/'); slash; slash = std::strchr(slash + 1, '/')) {
        *slash = '\0';
        mkdir(part, 0777);
        *slash = '/';
    }
    mkdir(part, 0777);
    return HostFileIsDirectory(part);
}

bool HostDirectoryEnumerate(const char* path, void (*function)(const char* name, void* context),
                            void* context) {
    DIR* const folder = path && function ? opendir(path) : nullptr;
    if (!folder)
        return false;
    errno = 0;
    while (const dirent* const entry = readdir(folder)) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..")
            function(entry->d_name, context);
        errno = 0;
    }
    const bool reachedEnd = errno == 0;
    closedir(folder);
    return reachedEnd;
}

bool HostPathGetSystemPreferencesDirectory(char* buffer, size_t capacity) {
    const char* const folders = std::getenv("XDG_CONFIG_DIRS");
    std::string_view first = folders ? folders : "";
    first = first.substr(0, first.find(':'));
    return answer(first.starts_with('/') ? first : "/etc/xdg", buffer, capacity);
}

bool HostPathGetWorkingDirectory(char* buffer, size_t capacity) {
    char path[PATH_MAX];
    return answer(getcwd(path, sizeof path) ? path : "", buffer, capacity);
}

bool HostGetMachineName(char* buffer, size_t capacity) {
    char name[HOST_NAME_MAX + 1] = {};
    return answer(gethostname(name, sizeof name - 1) == 0 ? name : "", buffer, capacity);
}
