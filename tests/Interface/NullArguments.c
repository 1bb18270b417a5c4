/* NullArguments.c: every exported function survives a call without any object, whatever the numbers
 * beside it: zeroes, numbers too large for any memory, negative numbers and NaN. Functions of an
 * object answer 0, false or NULL. */

#include "NullCalls.h"

#include <signal.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

static const char* current = "";

/* Says which call it was, then lets the signal end the process as it would have. */
static void reportCrash(int number) {
    static const char text[] = "crashed in ";
    (void)!write(STDERR_FILENO, text, sizeof text - 1);
    (void)!write(STDERR_FILENO, current, strlen(current));
    (void)!write(STDERR_FILENO, "\n", 1);
    signal(number, SIG_DFL);
    raise(number);
}

int main(void) {
    static const int bytes[] = {0x00, 0x7F, 0xFF};
    size_t count = 0;
    size_t missing = 0;
    size_t answering = 0;
    signal(SIGSEGV, reportCrash);
    signal(SIGBUS, reportCrash);
    signal(SIGABRT, reportCrash);
    signal(SIGFPE, reportCrash);
    for (const char* const* reason = kLeftOutCalls; *reason; ++reason)
        printf("left out: %s\n", *reason);
    for (size_t i = 0; i < sizeof bytes / sizeof bytes[0]; ++i)
        for (const struct NullCall* null = kNullCalls; null->name; ++null) {
            current = null->name;
            if (null->function) {
                if (null->call(bytes[i]) && i == 0 && null->isSilent) {
                    printf("answers something for no object: %s\n", null->name);
                    ++answering;
                }
                ++count;
            } else if (i == 0) {
                printf("missing: %s\n", null->name);
                ++missing;
            }
        }
    printf("%zu calls, %zu functions missing\n", count, missing);
    return count > 0 && missing == 0 && answering == 0 ? 0 : 1;
}
