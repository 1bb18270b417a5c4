// PreferencesStore.cpp: reading, changing and writing the files of settings.

#include "PreferencesStore.h"

#include <CoreFoundation/CFBundle.h>
#include <CoreFoundation/CFPreferences.h>
#include <CoreFoundation/CFPropertyList.h>

#include "CFRuntimeInternal.h"
#include "CFURLSyntax.h"
#include "FileData.h"
#include "StringBytes.h"

#include <cstdio>
#include <cstring>
#include <mutex>
#include <new>

namespace cf::preferences {

namespace {

// ---- Names of files

// Where the process started to look for settings; it keeps to that.
struct Folders {
    char user[PATH_MAX] = "";
    char system[PATH_MAX] = "";
    char machine[256] = "";

    Folders() {
        HostPathGetPreferencesDirectory(user, sizeof user);
        HostPathGetSystemPreferencesDirectory(system, sizeof system);
        if (!HostGetMachineName(machine, sizeof machine))
            std::strcpy(machine, "localhost");
    }
};

const Folders& folders() {
    static const Folders folders;
    return folders;
}

// The file's name for an application. Letters that could lead to another folder are escaped, so
// that a leading '.' is free for a name of our own.
bool appendFileName(CFStringRef application, TextBuffer& result) {
    if (CFEqual(application, kCFPreferencesAnyApplication)) {
        result.append(std::string_view(".AnyApplication"));
        return true;
    }
    TextBuffer name;
    if (!appendUTF8(application, name) || name.empty())
        return false;
    for (size_t i = 0; i < name.size(); ++i) {
        const bool isUnsafe = name[i] == '/' || name[i] == '%' || name[i] == '\0';
        if (isUnsafe || (i == 0 && name[i] == '.'))
            url::appendEscape(static_cast<uint8_t>(name[i]), result);
        else
            result.append(name[i]);
    }
    return !result.failed();
}

bool appendProgramName(TextBuffer& result) {
    char path[PATH_MAX];
    if (!HostPathGetExecutable(path, sizeof path))
        return false;
    const char* const slash = std::strrchr(path, '/');
    result.append(std::string_view(slash ? slash + 1 : path));
    return !result.failed();
}

bool appendApplication(CFStringRef application, TextBuffer& result) {
    if (!application)
        return false;
    if (!CFEqual(application, kCFPreferencesCurrentApplication))
        return appendFileName(application, result);
    const CFStringRef identifier = CFBundleGetIdentifier(CFBundleGetMainBundle());
    return identifier ? appendFileName(identifier, result) : appendProgramName(result);
}

// The folder of a user's domains, or NULL for a user that is neither of the two.
const char* findFolder(CFStringRef user) {
    if (user && CFEqual(user, kCFPreferencesCurrentUser))
        return folders().user;
    if (user && CFEqual(user, kCFPreferencesAnyUser))
        return folders().system;
    return nullptr;
}

// The part of the path for the host, or NULL for one that is neither of the two.
const char* findMachine(CFStringRef host) {
    if (host && CFEqual(host, kCFPreferencesCurrentHost))
        return folders().machine;
    if (host && CFEqual(host, kCFPreferencesAnyHost))
        return ".";
    return nullptr;
}

// ---- Values

Ref<CFMutableDictionaryRef> makeDictionary() {
    return adopt(CFDictionaryCreateMutable(nullptr, 0, &kCFCopyStringDictionaryKeyCallBacks,
                                           &kCFTypeDictionaryValueCallBacks));
}

void applyChange(const void* key, const void* value, void* context) {
    const auto values = static_cast<CFMutableDictionaryRef>(context);
    if (value == kCFNull)
        CFDictionaryRemoveValue(values, key);
    else
        CFDictionarySetValue(values, key, value);
}

void recordChange(const void* key, const void* value, void* context) {
    CFDictionarySetValue(static_cast<CFMutableDictionaryRef>(context), key, value);
}

Ref<CFMutableDictionaryRef> readValues(const Domain& domain, FileState& state) {
    const auto stored = readDictionary(domain.path, state);
    return stored ? adopt(CFDictionaryCreateMutableCopy(nullptr, 0, stored.get()))
                  : makeDictionary();
}

bool makeFolderOf(const char* path) {
    Domain folder;
    const char* const slash = std::strrchr(path, '/');
    if (!slash)
        return false;
    std::memcpy(folder.path, path, static_cast<size_t>(slash - path));
    return HostDirectoryCreate(folder.path);
}

// XML, which people can read and mend, unless a string has letters that XML lacks.
Ref<CFDataRef> serialize(CFDictionaryRef values) {
    auto text =
        adopt(CFPropertyListCreateData(nullptr, values, kCFPropertyListXMLFormat_v1_0, 0, nullptr));
    if (text)
        return text;
    return adopt(
        CFPropertyListCreateData(nullptr, values, kCFPropertyListBinaryFormat_v1_0, 0, nullptr));
}

bool writeValues(const Domain& domain, CFDictionaryRef values) {
    const auto data = serialize(values);
    return data && makeFolderOf(domain.path) &&
           HostFileReplace(domain.path, CFDataGetBytePtr(data.get()),
                           static_cast<size_t>(CFDataGetLength(data.get())));
}

// Somebody may still want to mend it.
void setCorruptFileAside(const Domain& domain) {
    char aside[PATH_MAX];
    const int length = std::snprintf(aside, sizeof aside, "%s.corrupt", domain.path);
    if (length > 0 && static_cast<size_t>(length) < sizeof aside)
        HostFileRename(domain.path, aside);
}

// What the process has read and changed, by the paths of the files.
class Store {
public:
    Ref<CFMutableDictionaryRef> values(const Domain& domain) {
        const auto path = makeString(nullptr, domain.path);
        if (auto known = find(values_, path))
            return known;
        FileState state;
        auto values = readValues(domain, state);
        if (const auto changes = find(changes_, path))
            CFDictionaryApplyFunction(changes.get(), applyChange, values.get());
        if (path && values)
            CFDictionarySetValue(values_.get(), path.get(), values.get());
        return values;
    }

    void change(const Domain& domain, CFDictionaryRef changed) {
        const auto path = makeString(nullptr, domain.path);
        const auto current = values(domain);
        auto changes = find(changes_, path);
        if (!changes)
            changes = makeDictionary();
        if (!path || !current || !changes)
            return;
        CFDictionaryApplyFunction(changed, applyChange, current.get());
        CFDictionaryApplyFunction(changed, recordChange, changes.get());
        CFDictionarySetValue(changes_.get(), path.get(), changes.get());
    }

    bool synchronize(const Domain& domain) {
        const auto path = makeString(nullptr, domain.path);
        const auto changes = find(changes_, path);
        if (changes && !write(domain, changes.get()))
            return false;
        CFDictionaryRemoveValue(changes_.get(), path.get());
        CFDictionaryRemoveValue(values_.get(), path.get());
        return true;
    }

    host::Mutex mutex; // Guards the two dictionaries and those in them.

private:
    using Dictionary = Ref<CFMutableDictionaryRef>;

    static Dictionary find(const Dictionary& dictionary, const Ref<CFStringRef>& path) {
        if (!path)
            return nullptr;
        const void* const found = CFDictionaryGetValue(dictionary.get(), path.get());
        return retain(static_cast<CFMutableDictionaryRef>(const_cast<void*>(found)));
    }

    static bool write(const Domain& domain, CFDictionaryRef changes) {
        FileState state;
        const auto values = readValues(domain, state);
        if (!values || state == FileState::Unreadable)
            return false;
        CFDictionaryApplyFunction(changes, applyChange, values.get());
        if (state == FileState::Corrupt)
            setCorruptFileAside(domain);
        return writeValues(domain, values.get());
    }

    Dictionary values_ = makeDictionary();
    Dictionary changes_ = makeDictionary();
};

// Never destroyed: settings may be asked for until the process is gone.
Store& store() {
    alignas(Store) static char memory[sizeof(Store)];
    static Store* const store = new (memory) Store;
    return *store;
}

} // namespace

Domain findDomain(CFStringRef application, CFStringRef user, CFStringRef host) {
    Domain domain;
    TextBuffer name;
    const char* const folder = findFolder(user);
    const char* const machine = findMachine(host);
    if (!folder || folder[0] == '\0' || !machine || !appendApplication(application, name))
        return domain;
    const int length = std::snprintf(domain.path, sizeof domain.path, "%s/nimbra/%s/%.*s.plist",
                                     folder, machine, static_cast<int>(name.size()), name.data());
    if (length < 0 || static_cast<size_t>(length) >= sizeof domain.path)
        domain.path[0] = '\0';
    return domain;
}

Ref<CFTypeRef> copyValue(const Domain& domain, CFStringRef key) {
    if (!domain.isKnown())
        return nullptr;
    const std::lock_guard hold(store().mutex);
    return retain(CFDictionaryGetValue(store().values(domain).get(), key));
}

Ref<CFDictionaryRef> copyValues(const Domain& domain) {
    if (!domain.isKnown())
        return retain<CFDictionaryRef>(makeDictionary().get());
    const std::lock_guard hold(store().mutex);
    return adopt(CFDictionaryCreateCopy(nullptr, store().values(domain).get()));
}

void change(const Domain& domain, CFDictionaryRef changes) {
    if (!domain.isKnown())
        return;
    const std::lock_guard hold(store().mutex);
    store().change(domain, changes);
}

bool synchronize(const Domain& domain) {
    if (!domain.isKnown())
        return false;
    const std::lock_guard hold(store().mutex);
    return store().synchronize(domain);
}

} // namespace cf::preferences
