// RuntimeOptions.h: switches that users set from the environment, bound to variables of ours.
#pragma once

#include <cstdint>

namespace cg {

// What the registry keeps of an option; the texts live as long as the process.
struct OptionTexts {
    const char* name; // Also the environment variable that sets it.
    const char* title;
    const char* category;
    const char* description;
};

// Enters an option whose value is `flag` or `value`, which hold the initial value and live as long
// as the process; the environment may change them at once, the registry later. Call it where the
// class that the option belongs to registers itself: a second registration of a name does nothing
// and answers false.
bool registerOption(const OptionTexts& texts, bool& flag);
bool registerOption(const OptionTexts& texts, std::int32_t& value);

} // namespace cg
