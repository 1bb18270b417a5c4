/* NullCalls.h: the calls that generate-null-calls writes. */
#pragma once

struct NullCall {
    const char* name;
    /* The function itself; NULL when the libraries lack it. */
    void (*function)(void);
    /* Calls the function with NULL for every object; the bytes of all other arguments are `byte`.
     */
    void (*call)(int byte);
};

/* Every exported function; ends with a NULL name. */
extern const struct NullCall kNullCalls[];
/* Functions left out, with the reason; ends with NULL. */
extern const char* const kLeftOutCalls[];
