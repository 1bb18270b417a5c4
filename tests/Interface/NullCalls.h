/* NullCalls.h: the calls that generate-null-calls writes. */
#pragma once

#include <stdbool.h>

struct NullCall {
    const char* name;
    /* The function itself; NULL when the libraries lack it. */
    void (*function)(void);
    /* Calls the function with NULL for every object; the bytes of all other arguments are `byte`.
     * Whether it answered anything but 0, false or NULL. */
    bool (*call)(int byte);
    /* Whether it has nothing to answer when the bytes are 0 as well. */
    bool isSilent;
};

/* Every exported function; ends with a NULL name. */
extern const struct NullCall kNullCalls[];
/* Functions left out, with the reason; ends with NULL. */
extern const char* const kLeftOutCalls[];
