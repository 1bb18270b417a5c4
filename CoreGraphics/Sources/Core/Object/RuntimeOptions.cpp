// RuntimeOptions.cpp: entries for the host's registry of options.

#include <Host/Host.h>

#include "RuntimeOptions.h"

namespace {

bool enter(const cg::OptionTexts& texts, HostOptionKind kind, void* bound) {
    const HostOption option = {
        .name = texts.name,
        .title = texts.title,
        .category = texts.category,
        .description = texts.description,
        .kind = kind,
        .bound = bound,
    };
    return HostOptionRegister(&option);
}

} // namespace

bool cg::registerOption(const OptionTexts& texts, bool& flag) {
    return enter(texts, kHostOptionBoolean, &flag);
}

bool cg::registerOption(const OptionTexts& texts, std::int32_t& value) {
    return enter(texts, kHostOptionInteger, &value);
}
