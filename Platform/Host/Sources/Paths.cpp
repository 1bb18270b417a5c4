// Paths.cpp: where programs, libraries, caches and settings lie.

#include <Host/Host.h>

#include <dlfcn.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

using PathBuffer = std::array<char, PATH_MAX>;

// Empties the buffer when the text does not fit.
bool copyTo(char* buffer, size_t capacity, std::string_view text) {
    if (!buffer || capacity == 0)
        return false;
    const bool fits = text.size() < capacity;
    const size_t length = fits ? text.size() : 0;
    std::memcpy(buffer, text.data(), length);
    buffer[length] = '\0';
    return fits;
}

bool makeDirectories(char* path) {
    for (char* slash = std::strchr(path + 1, '/'); slash; slash = std::strchr(slash + 1, '/')) {
        *slash = '\0';
        mkdir(path, 0700);
        *slash = '/';
    }
    mkdir(path, 0700);
    return HostFileIsDirectory(path);
}

// A folder of the user's: the environment's, which counts only when absolute, else one at home.
bool userDirectory(const char* variable, const char* nameAtHome, PathBuffer& path) {
    const char* const fromEnvironment = std::getenv(variable);
    if (fromEnvironment && fromEnvironment[0] == '/')
        return copyTo(path.data(), path.size(), fromEnvironment);
    const char* const home = std::getenv("HOME");
    return home && home[0] == '/' &&
           HostPathConcatenate(home, nameAtHome, path.data(), path.size());
}

// Empties the buffer when `found` says that there is no path, or it cannot be made a folder.
bool createAndCopy(bool found, PathBuffer& path, char* buffer, size_t capacity) {
    const bool made = found && makeDirectories(path.data());
    return copyTo(buffer, capacity, made ? path.data() : "") && made;
}

} // namespace

bool HostPathConcatenate(const char* folder, const char* name, char* buffer, size_t capacity) {
    if (!buffer || capacity == 0)
        return false;
    buffer[0] = '\0';
    if (!folder || !name)
        return false;
    std::string_view head = folder;
    std::string_view tail = name;
    if (head.empty())
        return copyTo(buffer, capacity, tail);
    while (head.ends_with('/'))
        head.remove_suffix(1);
    while (tail.starts_with('/'))
        tail.remove_prefix(1);
    const size_t length = head.size() + 1 + tail.size();
    if (length >= capacity)
        return false;
    std::memcpy(buffer, head.data(), head.size());
    buffer[head.size()] = '/';
    std::memcpy(buffer + head.size() + 1, tail.data(), tail.size());
    buffer[length] = '\0';
    return true;
}

bool HostPathGetExecutable(char* buffer, size_t capacity) {
    PathBuffer path;
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    const bool whole = length > 0 && length < static_cast<ssize_t>(path.size());
    return copyTo(buffer, capacity, {path.data(), whole ? static_cast<size_t>(length) : 0}) &&
           whole;
}

bool HostPathGetImageOfAddress(const void* address, char* buffer, size_t capacity) {
    Dl_info image = {};
    link_map* map = nullptr;
    if (!dladdr1(address, &image, reinterpret_cast<void**>(&map), RTLD_DL_LINKMAP) ||
        !image.dli_fname) {
        copyTo(buffer, capacity, "");
        return false;
    }
    // The program itself has no name in the list of images, and is called by what was typed.
    if (map && map->l_name[0] == '\0')
        return HostPathGetExecutable(buffer, capacity);
    PathBuffer path;
    const char* const resolved = realpath(image.dli_fname, path.data());
    return copyTo(buffer, capacity, resolved ? resolved : image.dli_fname);
}

bool HostPathGetCachesDirectory(char* buffer, size_t capacity) {
    PathBuffer base, program, path;
    const bool found = userDirectory("XDG_CACHE_HOME", ".cache", base) &&
                       HostPathGetExecutable(program.data(), program.size()) &&
                       HostPathConcatenate(base.data(), std::strrchr(program.data(), '/') + 1,
                                           path.data(), path.size());
    return createAndCopy(found, path, buffer, capacity);
}

bool HostPathGetPreferencesDirectory(char* buffer, size_t capacity) {
    PathBuffer path;
    const bool found = userDirectory("XDG_CONFIG_HOME", ".config", path);
    return createAndCopy(found, path, buffer, capacity);
}
