// Options.cpp: switches that users set from the environment.

#include <Host/Host.h>

#include <strings.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <optional>

namespace {

struct Node {
    HostOption option;
    Node* next;
};

// Guards the list. Bound values are written under it too, but read by their owners without it:
// they are set when registered, before the owner's first use.
pthread_mutex_t registryMutex = PTHREAD_MUTEX_INITIALIZER;
Node* first = nullptr;

class Lock {
public:
    Lock() { HostMutexLock(&registryMutex); }
    ~Lock() { HostMutexUnlock(&registryMutex); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;
};

std::optional<bool> parseBoolean(const char* text) {
    for (const char* no : {"0", "no", "false", "off"}) {
        if (strcasecmp(text, no) == 0)
            return false;
    }
    for (const char* yes : {"1", "yes", "true", "on"}) {
        if (strcasecmp(text, yes) == 0)
            return true;
    }
    return std::nullopt;
}

std::optional<int32_t> parseInteger(const char* text) {
    char* end = nullptr;
    const long value = std::strtol(text, &end, 0);
    if (end == text || *end != '\0')
        return std::nullopt;
    using Limits = std::numeric_limits<int32_t>;
    return static_cast<int32_t>(std::clamp<long>(value, Limits::min(), Limits::max()));
}

void setFromEnvironment(const HostOption& option) {
    const char* const text = std::getenv(option.name);
    if (!text)
        return;
    if (option.kind == kHostOptionBoolean) {
        if (const auto value = parseBoolean(text))
            *static_cast<bool*>(option.bound) = *value;
    } else if (const auto value = parseInteger(text)) {
        *static_cast<int32_t*>(option.bound) = *value;
    }
}

// The link that holds the option of that name, or the list's last, empty one.
Node** find(const char* name) {
    Node** link = &first;
    while (*link && std::strcmp((*link)->option.name, name) != 0)
        link = &(*link)->next;
    return link;
}

template <typename Value>
bool setValue(const char* name, HostOptionKind kind, Value value) {
    if (!name)
        return false;
    const Lock hold;
    const Node* const node = *find(name);
    if (!node || node->option.kind != kind)
        return false;
    *static_cast<Value*>(node->option.bound) = value;
    return true;
}

} // namespace

bool HostOptionRegister(const HostOption* option) {
    if (!option || !option->name || !option->bound)
        return false;
    const Lock hold;
    Node** const link = find(option->name);
    if (*link)
        return false;
    // Options live as long as the process, as their texts do.
    auto* const node = static_cast<Node*>(std::malloc(sizeof(Node)));
    if (!node)
        return false;
    *node = {*option, nullptr};
    *link = node;
    setFromEnvironment(*option);
    return true;
}

size_t HostOptionGetCount(void) {
    const Lock hold;
    size_t count = 0;
    for (const Node* node = first; node; node = node->next)
        ++count;
    return count;
}

bool HostOptionGetAtIndex(size_t index, HostOption* option) {
    const Lock hold;
    const Node* node = first;
    for (; node && index > 0; --index)
        node = node->next;
    if (!node || !option)
        return false;
    *option = node->option;
    return true;
}

bool HostOptionSetBoolean(const char* name, bool value) {
    return setValue(name, kHostOptionBoolean, value);
}

bool HostOptionSetInteger(const char* name, int32_t value) {
    return setValue(name, kHostOptionInteger, value);
}

int32_t HostOptionReadInteger(const char* name, int32_t initial) {
    const char* const text = name ? std::getenv(name) : nullptr;
    return text ? parseInteger(text).value_or(initial) : initial;
}
